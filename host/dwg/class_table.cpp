#include "dwg/class_table.h"

#include <algorithm>

#include "framed_section.h"

namespace dwg {

namespace {

constexpr std::size_t kLargestRecord = 16u << 20;
constexpr std::size_t kMostClasses = 0xFFFF;

RawText readText(Version version, RecordStreams& streams)
{
    if (!hasStringStream(version))
        return {streams.data.readT(), {}};
    return {{}, streams.hasStrings ? streams.strings.readTU() : std::u16string()};
}

ClassRecord readRecord(Version version, RecordStreams& streams)
{
    BitReader& data = streams.data;
    ClassRecord record;
    record.number = data.readBS();
    record.proxyFlags = data.readBS();
    record.application = readText(version, streams);
    record.cppName = readText(version, streams);
    record.dxfName = readText(version, streams);
    record.wasProxy = data.readB();
    record.kind = data.readBS();
    if (version == Version::Ac1015)
        return record;
    record.instances = data.readBL();
    record.version = data.readBL();
    record.maintenance = data.readBL();
    record.unknown1 = data.readBL();
    record.unknown2 = data.readBL();
    return record;
}

void writeText(Version version, BitWriter& out, const RawText& text)
{
    if (hasStringStream(version))
        return out.writeTU(text.wide);
    out.writeT(text.narrow);
}

void writeRecord(Version version, BitWriter& data, BitWriter& strings, const ClassRecord& record)
{
    data.writeBS(record.number);
    data.writeBS(record.proxyFlags);
    writeText(version, strings, record.application);
    writeText(version, strings, record.cppName);
    writeText(version, strings, record.dxfName);
    data.writeB(record.wasProxy);
    data.writeBS(record.kind);
    if (version == Version::Ac1015)
        return;
    data.writeBL(record.instances);
    data.writeBL(record.version);
    data.writeBL(record.maintenance);
    data.writeBL(record.unknown1);
    data.writeBL(record.unknown2);
}

} // namespace

std::string ClassRecord::dxfNameText() const
{
    std::string text = dxfName.narrow;
    for (const char16_t unit : dxfName.wide)
        text += unit < 0x80 ? static_cast<char>(unit) : '?';
    if (!text.empty() && text.back() == '\0')
        text.pop_back();
    return text;
}

base::Result<ClassTable> ClassTable::read(Version version, Bytes section)
{
    const base::Status damaged(base::Failure::Damaged, base::Reason::DwgSectionDamaged,
                               {u"AcDb:Classes"});
    const auto frame = readFrame(version, section, kClassesBegin);
    if (!frame || frame->record.size() > kLargestRecord)
        return damaged;
    ClassTable table;
    table.m_version = version;
    table.m_hasHighSize = frame->hasHighSize;
    table.m_checksumRight = frame->checksumRight && frame->endSentinelRight;
    table.m_trailing.assign(frame->trailing.begin(), frame->trailing.end());
    auto streams = splitRecord(version, frame->record, frame->beginBit, frame->endBit);
    if (version >= Version::Ac1018) {
        table.m_highest = streams.data.readBS();
        streams.data.skip(17); // two zero bytes and a set bit
    }
    while (!streams.failed() && streams.data.remaining() >= 8) {
        table.m_records.push_back(readRecord(version, streams));
        if (streams.failed() || table.m_records.size() > kMostClasses)
            return damaged;
        table.m_highest = std::max(table.m_highest, table.m_records.back().number);
    }
    if (streams.failed())
        return damaged;
    return table;
}

ClassTable ClassTable::makeEmpty(Version version)
{
    ClassTable table;
    table.m_version = version;
    table.m_hasHighSize = hasHandleStreamSize(version);
    if (version >= Version::Ac1018)
        table.m_trailing.assign(8, 0);
    return table;
}

const ClassRecord* ClassTable::find(std::uint16_t number) const
{
    // Nearly always the classes are numbered without gaps from 500 on.
    const std::size_t guess = number - 500u;
    if (guess < m_records.size() && m_records[guess].number == number)
        return &m_records[guess];
    const auto found = std::find_if(m_records.begin(), m_records.end(),
                                    [&](const ClassRecord& r) { return r.number == number; });
    return found == m_records.end() ? nullptr : &*found;
}

const ClassRecord* ClassTable::findNamed(std::string_view dxfName) const
{
    const auto found = std::find_if(m_records.begin(), m_records.end(), [&](const ClassRecord& r) {
        return r.dxfNameText() == dxfName;
    });
    return found == m_records.end() ? nullptr : &*found;
}

std::uint16_t ClassTable::add(ClassRecord record)
{
    if (m_highest == 0xFFFF)
        return 0;
    record.number = ++m_highest;
    m_records.push_back(std::move(record));
    return m_highest;
}

void ClassTable::count(std::uint16_t number, int change)
{
    const ClassRecord* const found = find(number);
    if (!found || m_version == Version::Ac1015)
        return;
    ClassRecord& record = m_records[static_cast<std::size_t>(found - m_records.data())];
    const auto instances = static_cast<std::int64_t>(record.instances) + change;
    record.instances = static_cast<std::uint32_t>(std::max<std::int64_t>(instances, 0));
}

std::vector<std::uint8_t> ClassTable::section() const
{
    const bool split = hasStringStream(m_version);
    BitWriter data, strings;
    if (split)
        data.writeRL(0);
    if (m_version >= Version::Ac1018) {
        data.writeBS(m_highest);
        data.writeBits(1, 17);
    }
    for (const ClassRecord& record : m_records)
        writeRecord(m_version, data, split ? strings : data, record);
    if (split) {
        appendStrings(data, strings);
        data.patchRL(0, static_cast<std::uint32_t>(data.bitCount()));
    }
    if (data.failed() || strings.failed())
        return {};
    return writeFrame(kClassesBegin, data.take(), m_hasHighSize, m_trailing);
}

} // namespace dwg
