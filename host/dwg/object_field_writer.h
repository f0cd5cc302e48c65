#pragma once

#include <db/program_runner.h>
#include <db/record.h>

#include "dwg/bit_writer.h"
#include "dwg/code_page.h"
#include "dwg/version.h"

namespace dwg {

/// Writes the values of a record's fields into its streams; run by db::ProgramRunner.
class FieldWriter
{
public:
    FieldWriter(const db::Record& record, Version version, const CodePage& codePage);
    FieldWriter(const FieldWriter&) = delete;
    FieldWriter& operator=(const FieldWriter&) = delete;

    BitWriter data;
    BitWriter strings;
    BitWriter handles;

    /// Up to 2004 the handles of the header variables stand among the data.
    void writeHandlesToData() { m_handles = &data; }
    /// A count and its array disagree, or a value has no form in this version.
    bool isInconsistent() const { return m_failed; }

    const std::uint64_t* words() const { return m_words; }
    bool ok() const
    {
        return !m_failed && !data.failed() && !strings.failed() && !handles.failed();
    }
    void field(const db::Op& op, std::uint32_t slot);
    void bytes(std::uint32_t slot, std::int64_t count);
    void chain(std::uint32_t slot, std::int64_t count);
    std::uint32_t enter(std::uint32_t slot, const db::LoopInfo& loop, std::int64_t count);

private:
    std::uint32_t unsignedAt(std::uint32_t slot) const
    {
        return static_cast<std::uint32_t>(m_words[slot]);
    }
    double realAt(std::uint32_t slot) const { return std::bit_cast<double>(m_words[slot]); }
    Triple tripleAt(std::uint32_t slot) const
    {
        return {realAt(slot), realAt(slot + 1), realAt(slot + 2)};
    }
    std::span<const std::uint8_t> bytesAt(db::Run run) const
    {
        return {reinterpret_cast<const std::uint8_t*>(m_words + run.offset), run.count};
    }

    void writeRare(const db::Op& op, std::uint32_t slot);
    void writeShort(std::uint32_t slot);
    void writeScale(const Triple& scale);
    void writeText(db::Run run);
    void writeHandle(BitWriter& writer, std::uint64_t word, std::uint8_t code);
    bool writeRelative(BitWriter& writer, std::uint8_t code, std::uint64_t target);
    void writeExtendedData(std::uint32_t slot);
    void writeXrecord(std::uint32_t slot);
    std::vector<std::uint8_t> contentBytes(std::uint32_t slot, bool isExtended);
    void appendItem(std::vector<std::uint8_t>& out, std::uint32_t item, bool isExtended);
    void appendText(std::vector<std::uint8_t>& out, std::uint32_t item, bool isExtended);
    std::string narrowBytes(db::Run run, const CodePage& codePage, bool newEndsInNul) const;
    std::u16string wideUnits(db::Run run) const;
    std::u16string_view textAt(db::Run run) const
    {
        return {reinterpret_cast<const char16_t*>(m_words + run.offset), db::TextRun::length(run)};
    }
    void writeSatBlocks(std::uint32_t slot);
    void writeRestOfHandles(std::uint32_t slot);
    void writeBits(BitWriter& writer, std::uint32_t slot);

    const db::Record& m_record;
    const std::uint64_t* m_words;
    const CodePage& m_codePage;
    BitWriter* m_texts;
    BitWriter* m_handles = &handles;
    bool m_isWide;
    bool m_isSameVersion; // as the record was read in
    bool m_failed = false;
};

} // namespace dwg
