#include "dwg/header_record.h"

#include "dwg/object_codec.h"
#include "framed_section.h"
#include "object_field_reader.h"
#include "object_field_writer.h"

namespace dwg {

namespace {

constexpr std::size_t kLargestRecord = 64 * 1024;

base::Status headerFailure(base::Failure failure)
{
    const bool isRead = failure == base::Failure::Damaged || failure == base::Failure::Unsupported;
    return {failure,
            isRead ? base::Reason::DwgSectionDamaged : base::Reason::DwgSectionNotWritten,
            {u"AcDb:Header"}};
}

const db::ClassDef& headerClass()
{
    return *db::classNamed("HEADER_VARIABLES");
}

// What was behind the variables is of no use in another version; and less than a byte is padding,
// which depends on what is before it.
bool keepsTail(const db::Record& record, Version version)
{
    return record.version() == databaseVersion(version) && record.bits("tail").count >= 8;
}

void forgetTail(db::Record& record)
{
    const db::FieldDef* const tail = headerClass().layout().find(db::fieldId("tail"));
    record.words().data()[tail->slot] = 0;
}

void padAsBefore(BitWriter& writer, const db::BitRun& padding)
{
    const auto missing = static_cast<unsigned>((8 - writer.bitCount() % 8) % 8);
    if (missing != 0 && missing == padding.count)
        writer.writeBits(padding.bytes()[0] >> (8 - missing), missing);
    writer.padToByte();
}

} // namespace

base::Result<db::Record> decodeHeader(Version version, Bytes section, const CodePage& codePage)
{
    const auto frame = readFrame(version, section, kVariablesBegin);
    if (!frame || frame->record.size() > kLargestRecord)
        return headerFailure(base::Failure::Damaged);
    db::Record record;
    record.reset(headerClass(), static_cast<std::uint32_t>(frame->record.size() / 8));
    record.setVersion(databaseVersion(version));
    FieldReader reader(splitRecord(version, frame->record, frame->beginBit, frame->endBit), version,
                       codePage, record, frame->record.size());
    if (!hasStringStream(version))
        reader.readHandlesFromData();
    const db::Program& program = headerClass().program(record.version());
    const bool ran = db::ProgramRunner<FieldReader>(reader, program).run();
    const RecordStreams& left = reader.streams();
    if (!ran || !left.data.atEnd() || !left.strings.atEnd() || !left.handles.atEnd())
        return headerFailure(base::Failure::Damaged);
    return record;
}

base::Result<std::vector<std::uint8_t>> encodeHeader(const db::Record& record, Version version,
                                                     const CodePage& codePage)
{
    if (record.classDef() != &headerClass())
        return headerFailure(base::Failure::Usage);
    db::Record copy = record;
    if (!keepsTail(record, version))
        forgetTail(copy);
    FieldWriter writer(copy, version, codePage);
    const bool isSplit = hasStringStream(version);
    if (isSplit)
        writer.data.writeRL(0); // its size in bits, known later
    else
        writer.writeHandlesToData();
    const db::Program& program = headerClass().program(databaseVersion(version));
    if (!db::ProgramRunner<FieldWriter>(writer, program).run())
        return headerFailure(base::Failure::TooLarge);
    BitWriter& all = writer.data;
    if (isSplit) {
        appendStrings(all, writer.strings);
        const auto end = static_cast<std::uint32_t>(all.bitCount());
        all.append(writer.handles);
        if (!keepsTail(record, version))
            for (int i = 0; i < 4; ++i)
                all.writeBS(0); // four numbers without use
        padAsBefore(all, {});
        all.patchRL(0, end);
    } else {
        padAsBefore(all, record.bits("tail"));
    }
    if (all.failed())
        return headerFailure(base::Failure::TooLarge);
    return writeFrame(kVariablesBegin, all.take(), hasHandleStreamSize(version), {});
}

} // namespace dwg
