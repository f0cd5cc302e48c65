#include "summary_section.h"

#include <db/convert.h>

#include "byte_stream.h"

namespace dwg {

namespace {

// In the order of the file.
constexpr std::u16string db::SummaryInfo::*kTexts[] = {
    &db::SummaryInfo::title,          &db::SummaryInfo::subject,      &db::SummaryInfo::author,
    &db::SummaryInfo::keywords,       &db::SummaryInfo::comments,     &db::SummaryInfo::lastSavedBy,
    &db::SummaryInfo::revisionNumber, &db::SummaryInfo::hyperlinkBase};
constexpr db::SummaryInfo::Time db::SummaryInfo::*kTimes[] = {
    &db::SummaryInfo::editing, &db::SummaryInfo::created, &db::SummaryInfo::modified};
constexpr std::size_t kLongest = 0xFFFE; // units, without the NUL

class SummaryReader
{
public:
    SummaryReader(Version version, Bytes section, const CodePage& codePage)
        : m_reader(section), m_isWide(hasStringStream(version)), m_codePage(codePage)
    {
    }

    std::optional<db::SummaryInfo> read()
    {
        db::SummaryInfo summary;
        for (const auto text : kTexts)
            summary.*text = readText();
        for (const auto time : kTimes)
            summary.*time = {m_reader.u32(), m_reader.u32()};
        const std::uint16_t count = m_reader.u16();
        for (std::uint16_t i = 0; i < count && !m_reader.failed(); ++i) {
            std::u16string name = readText();
            summary.custom.push_back({std::move(name), readText()});
        }
        if (m_reader.failed())
            return std::nullopt;
        return summary;
    }

private:
    std::u16string readText()
    {
        const std::size_t count = m_reader.u16();
        const Bytes bytes = m_reader.take(m_isWide ? count * 2 : count);
        std::u16string text;
        if (m_isWide) {
            for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
                text += static_cast<char16_t>(readU16(&bytes[i]));
        } else {
            m_codePage.decode(bytes, text);
            text = db::withoutEscapes(text);
        }
        if (!text.empty() && text.back() == 0)
            text.pop_back();
        return text;
    }

    ByteReader m_reader;
    bool m_isWide;
    const CodePage& m_codePage;
};

bool putText(ByteWriter& out, bool isWide, const std::u16string& text, const CodePage& codePage)
{
    const std::string narrow = isWide ? std::string() : codePage.encode(text);
    const std::size_t length = isWide ? text.size() : narrow.size();
    if (length > kLongest)
        return false;
    out.u16(static_cast<std::uint16_t>(length + 1));
    for (const char16_t unit : isWide ? text : std::u16string())
        out.u16(unit);
    for (const char c : narrow)
        out.u8(static_cast<std::uint8_t>(c));
    out.zeros(isWide ? 2 : 1);
    return true;
}

} // namespace

std::optional<db::SummaryInfo> readSummary(Version version, Bytes section, const CodePage& codePage)
{
    return SummaryReader(version, section, codePage).read();
}

std::vector<std::uint8_t> writeSummary(Version version, const db::SummaryInfo& summary,
                                       const CodePage& codePage)
{
    const bool isWide = hasStringStream(version);
    ByteWriter out;
    bool fitsIn = summary.custom.size() <= 0xFFFF;
    for (const auto text : kTexts)
        fitsIn = fitsIn && putText(out, isWide, summary.*text, codePage);
    for (const auto time : kTimes) {
        out.u32((summary.*time).day);
        out.u32((summary.*time).milliseconds);
    }
    out.u16(static_cast<std::uint16_t>(summary.custom.size()));
    for (const auto& [name, value] : summary.custom)
        fitsIn =
            fitsIn && putText(out, isWide, name, codePage) && putText(out, isWide, value, codePage);
    out.zeros(8);
    return fitsIn ? std::move(out.bytes) : std::vector<std::uint8_t>();
}

} // namespace dwg
