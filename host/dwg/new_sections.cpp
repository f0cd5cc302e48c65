#include "new_sections.h"

#include "byte_stream.h"
#include "container.h"
#include "preview_block.h"

namespace dwg {

namespace {

constexpr std::uint16_t kApplication = 0x21, kMaintenance = 8;
constexpr std::uint32_t kFirstSave = 1;

void putDate(ByteWriter& out, const db::Record& header, const char* name)
{
    const auto date = header.date(name);
    out.u32(static_cast<std::uint32_t>(date[0]));
    out.u32(static_cast<std::uint32_t>(date[1]));
}

// In 2018 three of the numbers are twice as wide, and what follows them moves.
std::vector<std::uint8_t> auxHeader(Version version, const db::Record& header)
{
    ByteWriter out;
    const auto maintenance = [&](std::uint16_t value) {
        version >= Version::Ac1032 ? out.u32(value) : out.u16(value);
    };
    out.append(std::array<std::uint8_t, 3>{0xFF, 0x77, 0x01});
    out.u16(kApplication);
    maintenance(kMaintenance);
    out.u32(kFirstSave);
    out.u32(0xFFFFFFFF);
    out.u16(kFirstSave);
    out.u16(0);
    out.u32(0);
    for (int i = 0; i < 2; ++i) {
        out.u16(kApplication);
        maintenance(kMaintenance);
    }
    for (const std::uint16_t number : {4, 0x565, 0, 0, 0, 1})
        out.u16(number);
    out.zeros(20);
    putDate(out, header, "TDCREATE");
    putDate(out, header, "TDUPDATE");
    out.u64(header.handle("HANDSEED"));
    out.zeros(4);
    out.zeros(12);
    out.u32(kFirstSave);
    out.zeros(16);
    return std::move(out.bytes);
}

std::vector<std::uint8_t> freeSpace(Version version, const db::Record& header,
                                    std::size_t objectCount)
{
    const bool isWide = version >= Version::Ac1024;
    ByteWriter out;
    const auto number = [&](std::uint64_t value) {
        isWide ? out.u64(value) : out.u32(static_cast<std::uint32_t>(value));
    };
    number(0);
    number(objectCount);
    putDate(out, header, "TDUPDATE");
    if (!isWide)
        out.u32(0); // where the objects begin, in files that tell it
    out.u8(4);
    for (const std::uint64_t limit : {0x32ull, 0x64ull, 0x200ull, 0xFFFFFFFFull}) {
        out.u64(limit);
        if (isWide)
            out.u64(0);
    }
    return std::move(out.bytes);
}

std::vector<std::uint8_t> revisionHistory()
{
    ByteWriter out;
    for (const std::uint32_t number : {0, 0, 1, 0})
        out.u32(number);
    return std::move(out.bytes);
}

} // namespace

std::vector<std::uint8_t> templateSection(Version version, const std::u16string& description,
                                          const CodePage& codePage, int measurement)
{
    const bool isWide = hasStringStream(version);
    const std::string narrow = isWide ? std::string() : codePage.encode(description);
    const std::size_t length = isWide ? description.size() : narrow.size();
    ByteWriter out;
    // With its NUL, but for the empty text of 8 bits.
    const bool endsInNul = isWide || length > 0;
    out.u16(static_cast<std::uint16_t>(length + endsInNul));
    for (const char16_t unit : isWide ? description : std::u16string())
        out.u16(unit);
    for (const char c : narrow)
        out.u8(static_cast<std::uint8_t>(c));
    out.zeros(endsInNul ? (isWide ? 2 : 1) : 0);
    out.u16(static_cast<std::uint16_t>(measurement));
    return std::move(out.bytes);
}

std::u16string templateDescription(Version version, Bytes section, const CodePage& codePage)
{
    ByteReader reader(section);
    const std::size_t length = reader.u16();
    const Bytes bytes = reader.take(hasStringStream(version) ? length * 2 : length);
    std::u16string text;
    if (!hasStringStream(version))
        codePage.decode(bytes, text);
    else
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
            text += static_cast<char16_t>(readU16(&bytes[i]));
    if (!text.empty() && text.back() == 0)
        text.pop_back();
    return text;
}

std::vector<std::uint8_t> withMeasurement(Version version, Bytes section, int measurement)
{
    ByteReader reader(section);
    const std::size_t length = reader.u16();
    reader.take(hasStringStream(version) ? length * 2 : length);
    if (reader.failed() || reader.remaining() < 2)
        return {};
    std::vector<std::uint8_t> changed(section.begin(), section.end());
    putU16(&changed[reader.position()], static_cast<std::uint16_t>(measurement));
    return changed;
}

std::map<std::string, std::vector<std::uint8_t>>
newSections(Version version, const db::Record& header, std::size_t objectCount)
{
    std::map<std::string, std::vector<std::uint8_t>> sections;
    const auto put = [&](std::string_view name, std::vector<std::uint8_t> bytes) {
        sections[std::string(name)] = std::move(bytes);
    };
    put(section::kAuxHeader, auxHeader(version, header));
    put(section::kTemplate, templateSection(version, {}, CodePage::numbered(0),
                                            static_cast<int>(header.integer("MEASUREMENT"))));
    if (version == Version::Ac1015) {
        put(section::kPreview, previewBlock({}));
        return sections;
    }
    put(section::kObjFreeSpace, freeSpace(version, header, objectCount));
    put(section::kRevHistory, revisionHistory());
    return sections;
}

} // namespace dwg
