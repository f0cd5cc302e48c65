#include "second_header.h"

#include <algorithm>

#include "byte_stream.h"
#include "sentinels.h"

namespace dwg {

namespace {

constexpr std::size_t kMostRecords = 64;
constexpr std::size_t kJunk = 8;

std::uint8_t bytesOf(std::uint64_t value)
{
    return static_cast<std::uint8_t>((std::bit_width(value) + 7) / 8);
}

bool readRecords(BitReader& reader, SecondHeader& header)
{
    const std::size_t sections = reader.readBS();
    for (std::size_t i = 0; i < sections && sections <= kMostRecords; ++i) {
        SecondHeader::Section section;
        section.number = reader.readRC();
        section.offset = reader.readBL();
        section.size = reader.readBL();
        header.sections.push_back(section);
    }
    const std::size_t handles = reader.readBS();
    for (std::size_t i = 0; i < handles && handles <= kMostRecords && !reader.failed(); ++i) {
        SecondHeader::Handle handle;
        handle.size = reader.readRC();
        handle.index = reader.readRC();
        if (handle.size > 8)
            return false;
        for (unsigned k = 0; k < handle.size; ++k)
            handle.value = handle.value << 8 | reader.readRC();
        header.handles.push_back(handle);
    }
    return !reader.failed() && sections <= kMostRecords && handles <= kMostRecords;
}

} // namespace

std::optional<SecondHeader> readSecondHeader(Bytes file, std::size_t offset)
{
    if (!standsAt(kSecondHeaderBegin, file, offset))
        return std::nullopt;
    const std::size_t end = findSentinel(endOf(kSecondHeaderBegin), file, offset);
    if (end == file.size())
        return std::nullopt;
    const Bytes body = file.subspan(offset + 16, end - offset - 16);
    BitReader reader(body);
    SecondHeader header;
    header.fileSize = end + 16 - offset;
    const std::uint32_t size = reader.readRL();
    header.ownOffset = reader.readBL();
    header.fileHead.resize(13);
    reader.readBytes(header.fileHead);
    header.application = reader.readBS();
    header.codePage = reader.readRS();
    if (!readRecords(reader, header))
        return std::nullopt;
    const std::size_t crcAt = (reader.position() + 7) / 8;
    if (!fits(crcAt, 2, body.size()))
        return std::nullopt;
    header.hasJunk = body.size() >= crcAt + 2 + kJunk;
    header.checksumRight = crc16(body.first(crcAt)) == readU16(body.data() + crcAt) &&
                           size == body.size() && header.ownOffset == offset;
    return header;
}

std::vector<std::uint8_t> writeSecondHeader(const SecondHeader& header)
{
    BitWriter body;
    body.writeRL(0);
    body.writeBL(header.ownOffset);
    body.writeBytes(header.fileHead);
    body.writeBS(header.application);
    body.writeRS(header.codePage);
    body.writeBS(static_cast<std::uint16_t>(header.sections.size()));
    for (const SecondHeader::Section& section : header.sections) {
        body.writeRC(section.number);
        body.writeBL(section.offset);
        body.writeBL(section.size);
    }
    body.writeBS(static_cast<std::uint16_t>(header.handles.size()));
    for (const SecondHeader::Handle& handle : header.handles) {
        body.writeRC(handle.size);
        body.writeRC(handle.index);
        for (unsigned k = handle.size; k-- > 0;)
            body.writeRC(static_cast<std::uint8_t>(handle.value >> (8 * k)));
    }
    auto bytes = body.take();
    putU32(bytes.data(),
           static_cast<std::uint32_t>(bytes.size() + 2 + (header.hasJunk ? kJunk : 0)));
    ByteWriter out;
    out.append(kSecondHeaderBegin);
    out.append(bytes);
    out.u16(crc16(bytes));
    if (header.hasJunk)
        out.zeros(kJunk);
    out.append(endOf(kSecondHeaderBegin));
    return std::move(out.bytes);
}

std::vector<SecondHeader::Handle> secondHeaderHandles(const HeaderVariables& variables)
{
    static constexpr std::string_view kNames[] = {
        "HANDSEED", "BLOCKCTL", "LAYERCTL",    "STYLECTL", "LTYPECTL",  "VIEWCTL",     "UCSCTL",
        "VPORTCTL", "APPIDCTL", "DIMSTYLECTL", "VXCTL",    "DNAMEDOBJ", "DMLINESTYLE", "DGROUP"};
    std::vector<SecondHeader::Handle> handles;
    for (const std::string_view name : kNames) {
        const std::uint64_t value = variables.handle(name);
        handles.push_back({static_cast<std::uint8_t>(handles.size()), bytesOf(value), value});
    }
    return handles;
}

void setHandle(SecondHeader& header, std::uint8_t index, std::uint64_t value)
{
    for (SecondHeader::Handle& handle : header.handles) {
        if (handle.index != index)
            continue;
        handle.size = std::max(handle.size, bytesOf(value));
        handle.value = value;
        return;
    }
    header.handles.push_back({index, bytesOf(value), value});
}

} // namespace dwg
