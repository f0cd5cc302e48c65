#include "dwg/object_codec.h"

#include <base/tv_db_handle.h>

#include "object_field_reader.h"
#include "object_field_writer.h"

namespace dwg {

namespace {

base::Status objectFailure(base::Failure failure, std::uint64_t handle)
{
    const auto reason = [&] {
        switch (failure) {
        case base::Failure::Unsupported: return base::Reason::DwgCheckObjectUnreadable;
        case base::Failure::TooLarge:
        case base::Failure::Usage: return base::Reason::DwgRecordInvalid;
        default: return base::Reason::DwgObjectDamaged;
        }
    };
    return {failure, reason(), {base::hexText(handle)}};
}

// What must hold when the table has been run: nothing is left over, except less than a byte of
// padding.
base::Failure leftOver(const RecordStreams& streams)
{
    if (streams.failed())
        return base::Failure::Damaged;
    const bool all =
        streams.data.atEnd() && streams.strings.atEnd() && streams.handles.remaining() < 8;
    return all ? base::Failure::None : base::Failure::Unsupported;
}

db::Record::Padding readPadding(BitReader& handles)
{
    db::Record::Padding padding;
    padding.count = static_cast<std::uint8_t>(handles.remaining());
    padding.bits = static_cast<std::uint8_t>(handles.readBits(padding.count));
    return padding;
}

base::Status decodeAs(const db::ClassDef& classDef, const ObjectRecord& object,
                      const ObjectContext& context, db::Record& record)
{
    record.reset(classDef, static_cast<std::uint32_t>(object.data.size() / 4 + 8));
    record.setVersion(databaseVersion(context.version));
    record.setHandle(object.handle);
    record.setTypeNumber(object.type);
    FieldReader reader(object.streams(context.version), context.version, context.codePage, record,
                       object.data.size());
    const db::Program& program = classDef.program(record.version());
    const bool ran = db::ProgramRunner<FieldReader>(reader, program).run();
    const base::Failure failure = ran ? leftOver(reader.streams()) : base::Failure::Damaged;
    if (failure != base::Failure::None)
        return objectFailure(failure, object.handle);
    record.setPadding(readPadding(reader.streams().handles));
    return {};
}

// As the record had them; behind handles of another length all ones or all zeros, as the writer of
// the record does it.
void writePadding(BitWriter& writer, db::Record::Padding padding)
{
    const auto count = static_cast<unsigned>((8 - writer.bitCount() % 8) % 8);
    if (count == padding.count)
        return writer.writeBits(padding.bits, count);
    writer.writeBits(padding.bits != 0 ? 0xFF : 0, count);
}

std::size_t writeHead(BitWriter& writer, const db::Record& record, Version version)
{
    const auto type = static_cast<std::uint16_t>(record.typeNumber());
    std::size_t bitSizeAt = 0;
    if (hasHandleStreamSize(version)) {
        writer.writeOT(type);
    } else {
        writer.writeBS(type);
        bitSizeAt = writer.bitCount();
        writer.writeRL(0);
    }
    writer.writeH(0, record.handle());
    return bitSizeAt;
}

bool canBeCoded(const db::Record& record)
{
    return record.classDef() && record.typeNumber() > 0 && record.typeNumber() <= 0xFFFF;
}

} // namespace

void ObjectClasses::add(int number, std::string_view dxfName, bool isEntity)
{
    m_classes.emplace(number, Entry{db::classNamed(dxfName), isEntity});
}

const db::ClassDef* ObjectClasses::find(int typeNumber) const
{
    if (typeNumber < 500)
        return db::classNumbered(typeNumber);
    const auto found = m_classes.find(typeNumber);
    if (found == m_classes.end() || !found->second.classDef)
        return nullptr;
    // The list decides which common part the object has; a table for the other kind is another
    // class.
    const db::ClassDef* const classDef = found->second.classDef;
    return classDef->isEntity() == found->second.isEntity ? classDef : nullptr;
}

bool ObjectClasses::isEntity(int typeNumber) const
{
    if (const auto found = m_classes.find(typeNumber); found != m_classes.end())
        return found->second.isEntity;
    if (const db::ClassDef* known = db::classNumbered(typeNumber))
        return known->isEntity();
    constexpr int kOleFrame = 0x2B; // the only fixed entity without a table
    return typeNumber == kOleFrame;
}

base::Status decodeObject(const ObjectRecord& object, const ObjectContext& context,
                          db::Record& record)
{
    const db::ClassDef* const classDef = context.classes.find(object.type);
    if (!classDef)
        return objectFailure(base::Failure::Unsupported, object.handle);
    return decodeAs(*classDef, object, context, record);
}

base::Result<db::Record> decodeObject(const ObjectRecord& object, const ObjectContext& context)
{
    db::Record record;
    if (auto status = decodeObject(object, context, record); !status)
        return status;
    return record;
}

base::Status decodeCommonPart(const ObjectRecord& object, const ObjectContext& context,
                              db::Record& record)
{
    const bool isEntity = context.classes.isEntity(object.type);
    const db::ClassDef* const classDef = db::classNamed(isEntity ? "RAW_ENTITY" : "RAW_OBJECT");
    return decodeAs(*classDef, object, context, record);
}

base::Result<db::Record> decodeCommonPart(const ObjectRecord& object, const ObjectContext& context)
{
    db::Record record;
    if (auto status = decodeCommonPart(object, context, record); !status)
        return status;
    return record;
}

base::Result<std::vector<std::uint8_t>> encodeObject(const db::Record& record,
                                                     const ObjectContext& context)
{
    if (!canBeCoded(record))
        return objectFailure(base::Failure::Usage, record.handle());
    const Version version = context.version;
    FieldWriter writer(record, version, context.codePage);
    const std::size_t bitSizeAt = writeHead(writer.data, record, version);
    const db::Program& program = record.classDef()->program(databaseVersion(version));
    if (!db::ProgramRunner<FieldWriter>(writer, program).run())
        return objectFailure(writer.isInconsistent() ? base::Failure::Usage
                                                     : base::Failure::TooLarge,
                             record.handle());
    BitWriter& all = writer.data;
    if (hasStringStream(version))
        appendStrings(all, writer.strings);
    const std::size_t end = all.bitCount();
    all.append(writer.handles);
    writePadding(all, record.padding());
    if (!hasHandleStreamSize(version))
        all.patchRL(bitSizeAt, static_cast<std::uint32_t>(end));
    auto frame = frameRecord(version, all.take(), end);
    if (all.failed() || frame.empty())
        return objectFailure(base::Failure::TooLarge, record.handle());
    return frame;
}

bool reencodesExactly(const ObjectRecord& object, const ObjectContext& context)
{
    const auto record = decodeObject(object, context);
    if (!record)
        return false;
    const auto bytes = encodeObject(*record, context);
    return bytes &&
           std::equal(bytes->begin(), bytes->end(), object.frame.begin(), object.frame.end());
}

} // namespace dwg
