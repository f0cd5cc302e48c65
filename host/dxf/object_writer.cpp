#include "object_writer.h"

#include <algorithm>
#include <bit>

#include <db/program_runner.h>

#include "colors.h"
#include "hooks.h"
#include "item_list.h"
#include "units.h"

namespace dxf {

namespace {

/// Notes which slots a version of a record stores; fails where counts and arrays do not agree.
class StoredSlots
{
public:
    StoredSlots(const db::Record& record, std::vector<bool>& stored)
        : m_words(record.words().data()), m_stored(stored)
    {
        m_stored.assign(record.words().size(), false);
    }

    const std::uint64_t* words() const { return m_words; }
    bool ok() const { return m_ok; }
    void field(const db::Op& op, std::uint32_t slot)
    {
        m_stored[slot] = true;
        // The components of a point may be told one by one.
        const bool isReal = op.code == db::OpCode::RawDouble || op.code == db::OpCode::BitDouble ||
                            op.code == db::OpCode::DefaultDouble;
        for (std::uint32_t i = 1; isReal && i < op.arity; ++i)
            m_stored[slot + i] = true;
    }
    void bytes(std::uint32_t slot, std::int64_t count) { counted(slot, count); }
    void chain(std::uint32_t slot, std::int64_t count) { counted(slot, count); }
    std::uint32_t enter(std::uint32_t slot, const db::LoopInfo&, std::int64_t count)
    {
        counted(slot, count);
        return db::arrayOf(m_words[slot]).offset;
    }

private:
    void counted(std::uint32_t slot, std::int64_t count)
    {
        m_stored[slot] = true;
        m_ok = m_ok && db::arrayOf(m_words[slot]).count == count;
    }

    const std::uint64_t* m_words;
    std::vector<bool>& m_stored;
    bool m_ok = true;
};

base::Status refusal(base::Failure failure, base::Reason reason, const TvString& argument)
{
    return {failure, reason, {argument}};
}

} // namespace

base::Status ObjectWriter::write(const db::Record& record,
                                 const std::vector<UnknownGroups>& unknown)
{
    m_record = &record;
    const db::ClassDef& classDef = *record.classDef();
    m_form = formOf(classDef, m_version);
    const TvString name(std::string(classDef.name()).c_str());
    if (!m_form || classDef.name().starts_with("RAW_"))
        return refusal(base::Failure::Unsupported, base::Reason::DxfNotUnderstood, name);
    if (!findStored())
        return refusal(base::Failure::Usage, base::Reason::DxfRecordInvalid,
                       TvString().format(u"%X", static_cast<std::int64_t>(record.handle())));
    m_isRefused = false;
    writeHead();
    writeUnknown(-1, unknown);
    for (std::size_t i = 0; i < m_form->segments.size(); ++i) {
        writeSegment(m_form->segments[i]);
        writeUnknown(static_cast<int>(i), unknown);
    }
    writeExtendedData();
    if (m_isRefused)
        return refusal(base::Failure::Unsupported, base::Reason::DxfNotUnderstood, name);
    return {};
}

// Extended data that is unknown stands behind all that is known; the rest of what stood there is
// written with it.
void ObjectWriter::writeUnknown(int segment, const std::vector<UnknownGroups>& unknown)
{
    for (const UnknownGroups& groups : unknown)
        if (groups.segment == segment)
            m_out.copy(groups.text);
}

bool ObjectWriter::findStored()
{
    m_stored.clear();
    const db::Version own = m_record->version();
    const db::Program& program = m_record->classDef()->program(own);
    if (own == m_version && !m_form->hasConditions && program.loops.empty())
        return true;
    StoredSlots io(*m_record, m_stored);
    return db::ProgramRunner<StoredSlots>(io, program).run();
}

bool ObjectWriter::isSlotStored(std::uint32_t slot) const
{
    return m_stored.empty() || (slot < m_stored.size() && m_stored[slot]);
}

bool ObjectWriter::isStored(db::FieldKey key) const
{
    const db::RecordView view = frame();
    const db::FieldDef* field = view.def()->find(key.id());
    return field && isSlotStored(view.base() + field->slot);
}

std::uint64_t ObjectWriter::owner() const
{
    static const db::FieldId kMode = db::fieldId("entmode"), kOwner = db::fieldId("owner");
    const std::int64_t mode = m_record->classDef()->isEntity() ? m_record->integer(kMode) : 0;
    return mode == 2   ? m_source.modelSpace
           : mode == 1 ? m_source.paperSpace
                       : m_record->handle(kOwner);
}

void ObjectWriter::writeHead()
{
    static const db::FieldId kReactors = db::fieldId("reactors"), kExtension = db::fieldId("xdict"),
                             kNoExtension = db::fieldId("xdict_missing");
    const db::ClassDef& classDef = *m_record->classDef();
    raw(0, fileName(classDef));
    handle(classDef.name() == "DIMSTYLE" ? 105 : 5, m_record->handle());
    if (const db::ArrayView reactors = m_record->array(kReactors); !reactors.isEmpty()) {
        raw(102, "{ACAD_REACTORS");
        for (std::uint32_t i = 0; i < reactors.size(); ++i)
            handle(330, reactors.handle(i));
        raw(102, "}");
    }
    const std::uint64_t dictionary = m_record->handle(kExtension);
    const bool hasNone = m_record->version() >= db::Version::Ac1018 && m_record->flag(kNoExtension);
    if (dictionary != 0 && !hasNone) {
        raw(102, "{ACAD_XDICTIONARY");
        handle(360, dictionary);
        raw(102, "}");
    }
    handle(330, owner());
}

bool ObjectWriter::writeExtendedDataOf(const db::Record& record)
{
    m_record = &record;
    m_isRefused = false;
    writeExtendedData();
    return !m_isRefused;
}

void ObjectWriter::writeExtendedData()
{
    static const db::FieldId kData = db::fieldId("eed");
    const db::ArrayView groups = m_record->array(kData);
    for (std::uint32_t i = 0; i < groups.size(); ++i) {
        text(1001, nameOf(Table::Application, groups[i].handle("app")));
        if (!writeItems(*this, groups[i], true))
            refuse();
    }
}

// An embedded object is there only when one of its groups is.
void ObjectWriter::writeSegment(const Segment& segment)
{
    const std::size_t before = m_out.out().size();
    if (!segment.marker.empty())
        raw(segment.markerCode, segment.marker);
    const std::size_t begin = m_out.out().size();
    writeScope(segment.scope, 0, 0);
    if (segment.markerCode == 101 && m_out.out().size() == begin)
        m_out.out().resize(before);
}

void ObjectWriter::writeScope(const Scope& scope, std::uint32_t base, std::uint32_t index)
{
    for (const Item& item : scope.items)
        if (!item.isAlias)
            writeItem(item, base, index);
}

void ObjectWriter::writeItem(const Item& item, std::uint32_t base, std::uint32_t index)
{
    const bool isPlain = item.kind == Item::Kind::Field || item.kind == Item::Kind::Array ||
                         item.kind == Item::Kind::List || item.kind == Item::Kind::Count;
    if (isPlain && !isSlotStored(base + item.slot))
        return;
    switch (item.kind) {
    case Item::Kind::Ignored: return;
    case Item::Kind::Constant: return raw(item.code, item.text);
    case Item::Kind::Count: return integer(item.code, db::arrayOf(word(base + item.slot)).count);
    case Item::Kind::Field: return writeField(item, base, index);
    case Item::Kind::Array: return writeArray(item, base);
    case Item::Kind::List: return writeList(item, base);
    case Item::Kind::Zip: return writeZip(item, base);
    case Item::Kind::In:
        raw(item.code, item.text);
        writeScope(*item.scope, base, 0);
        if (item.closingCode)
            raw(item.closingCode, item.closing);
        return;
    case Item::Kind::Bits: {
        std::int64_t value = 0;
        for (const Item::Bit& bit : item.bits)
            value |= word(base + bit.slot) != 0 ? bit.value : 0;
        return integer(item.code, value);
    }
    case Item::Kind::Hook:
        m_hookItem = &item;
        m_hookBase = base;
        if (item.hook->write)
            item.hook->write(*this);
        return;
    }
}

bool ObjectWriter::isDefault(const Item& item, std::uint32_t slot) const
{
    const std::uint32_t offset = item.slot - item.holderBase;
    for (std::uint32_t i = 0; i < item.field->width; ++i)
        if (word(slot + i) != item.holder->defaults[offset + i])
            return false;
    return true;
}

void ObjectWriter::writeField(const Item& item, std::uint32_t base, std::uint32_t index)
{
    const std::uint32_t slot = base + item.slot;
    const db::Storage storage = item.field->storage;
    if (item.isOptional && storage == db::Storage::Handle && (word(slot) & db::kTargetMask) == 0)
        return;
    if (item.isOptional && storage == db::Storage::Text && textAt(slot).empty())
        return;
    if (item.isOptional && isDefault(item, slot))
        return;
    const int code = item.code + (item.addsIndex ? static_cast<int>(index) : 0);
    writeValue(item, code, storage, slot, base);
}

void ObjectWriter::writeValue(const Item& item, int code, db::Storage storage, std::uint32_t slot,
                              std::uint32_t base)
{
    switch (storage) {
    case db::Storage::Integer: {
        const auto value = static_cast<std::int64_t>(word(slot));
        return integer(code, item.convert == Convert::Lineweight ? lineweightValue(value) : value);
    }
    case db::Storage::Real: return writeReal(item, code, slot, base);
    case db::Storage::Handle: {
        const std::uint64_t target = word(slot) & db::kTargetMask;
        return item.convert == Convert::Name ? text(code, nameOf(item.table, target))
                                             : handle(code, target);
    }
    case db::Storage::Text: return text(code, textAt(slot));
    case db::Storage::Bytes: {
        const db::Run run = db::arrayOf(word(slot));
        const auto* bytes =
            reinterpret_cast<const std::uint8_t*>(m_record->words().data() + run.offset);
        return hex(code, {bytes, run.count});
    }
    case db::Storage::Struct:
        return color(code, {*m_record, *item.field->structure, slot}, item.convert);
    default: return refuse();
    }
}

void ObjectWriter::writeReal(const Item& item, int code, std::uint32_t slot, std::uint32_t base)
{
    if (item.field->angle)
        return angle(code, std::bit_cast<double>(word(slot)));
    for (std::uint32_t i = 0; i < item.components; ++i) {
        const bool isOwn = i < item.field->width;
        const std::uint32_t at =
            isOwn ? slot + i : base + static_cast<std::uint32_t>(item.elevation);
        real(code + static_cast<int>(i) * item.stride, std::bit_cast<double>(word(at)));
    }
}

void ObjectWriter::writeArray(const Item& item, std::uint32_t base)
{
    const db::Run run = db::arrayOf(word(base + item.slot));
    for (std::uint32_t i = 0; i < run.count; ++i)
        writeValue(item, item.code, item.field->element, run.offset + i * item.field->stride(),
                   base);
}

void ObjectWriter::writeZip(const Item& item, std::uint32_t base)
{
    const std::uint32_t count = db::arrayOf(word(base + item.scope->items[0].slot)).count;
    for (std::uint32_t i = 0; i < count; ++i)
        for (const Item& part : item.scope->items) {
            const db::Run run = db::arrayOf(word(base + part.slot));
            if (i < run.count)
                writeValue(part, part.code, part.field->element,
                           run.offset + i * part.field->stride(), base);
        }
}

void ObjectWriter::writeList(const Item& item, std::uint32_t base)
{
    const db::Run run = db::arrayOf(word(base + item.slot));
    for (std::uint32_t i = 0; i < run.count; ++i) {
        if (item.closingCode)
            raw(item.code, item.text);
        writeScope(*item.scope, run.offset + i * item.field->stride(), i);
        if (item.closingCode)
            raw(item.closingCode, item.closing);
    }
}

std::u16string_view ObjectWriter::textAt(std::uint32_t slot) const
{
    const db::Run run = db::runOf(word(slot));
    const auto* units = reinterpret_cast<const char16_t*>(m_record->words().data() + run.offset);
    return {units, db::TextRun::length(run)};
}

void ObjectWriter::angle(int code, double radians)
{
    real(code, degreesOf(radians));
}

void ObjectWriter::color(int code, const db::RecordView& color, Convert convert)
{
    const db::Version own = m_record->version();
    if (convert == Convert::WideColor)
        return integer(code, wideColor(color, own));
    integer(code, colorIndex(color, own));
    if (convert != Convert::Color || code >= 70 || m_version == db::Version::Ac1015)
        return;
    if (isTrueColor(color))
        integer(code + kTrueColor, color.integer("value") & 0xFFFFFF);
    if (const std::u16string name = colorName(color); !name.empty())
        text(code + kColorName, name);
}

std::string_view fileName(const db::ClassDef& classDef)
{
    struct Name {
        std::string_view start, inFile;
    };
    static constexpr Name kNames[] = {
        {"BLOCK_HEADER", "BLOCK_RECORD"}, {"POLYLINE_", "POLYLINE"}, {"VERTEX_", "VERTEX"},
        {"DIMENSION_", "DIMENSION"},      {"MINSERT", "INSERT"},
    };
    for (const Name& name : kNames)
        if (classDef.name().starts_with(name.start))
            return name.inFile;
    return classDef.name();
}

std::u16string ObjectWriter::nameOf(Table table, std::uint64_t target)
{
    if (target == 0)
        return {};
    const auto [known, isNew] = m_names.try_emplace({table, target});
    if (!isNew)
        return known->second;
    if (table == Table::Block)
        known->second = m_source.blockName(target);
    else if (const db::Record* record = m_source.record(target))
        known->second = record->text("name");
    return known->second;
}

} // namespace dxf
