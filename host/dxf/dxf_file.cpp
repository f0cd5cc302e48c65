#include "dxf_file.h"

#include <algorithm>

#include "binary_form.h"
#include "block_names.h"
#include "header_section.h"
#include "tags.h"

namespace dxf {

base::Result<std::unique_ptr<DxfFile>> DxfFile::open(std::vector<std::uint8_t> bytes)
{
    std::unique_ptr<DxfFile> file(new DxfFile);
    file->m_bytes = std::move(bytes);
    if (isBinaryForm(file->m_bytes)) {
        auto text = textFromBinary(file->m_bytes);
        if (!text)
            return text.status();
        file->m_bytes = std::move(*text);
    }
    std::string_view text(reinterpret_cast<const char*>(file->m_bytes.data()),
                          file->m_bytes.size());
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    auto structure = Structure::make(text);
    if (!structure)
        return structure.status();
    file->m_structure = std::move(*structure);
    file->m_reader = std::make_unique<ObjectReader>(file->m_structure->context());
    return file;
}

base::Status DxfFile::missing(std::uint64_t handle)
{
    return {base::Failure::NotFound,
            base::Reason::DxfObjectMissing,
            {TvString().format(u"%X", static_cast<std::int64_t>(handle))}};
}

base::Result<db::ObjectKind> DxfFile::kind(std::uint64_t handle) const
{
    const auto source = m_structure->find(handle);
    if (!source)
        return missing(handle);
    db::ObjectKind kind;
    switch (source->kind) {
    case Structure::Source::Kind::Entry: {
        const Entry& entry = m_structure->entry(source->index);
        kind.classDef = entry.classDef;
        kind.isEntity = entry.isEntity;
        kind.className = entry.type->name;
        break;
    }
    case Structure::Source::Kind::Control:
        kind.classDef = db::classNamed(tables()[source->index].controlClass);
        break;
    case Structure::Source::Kind::Block: kind.classDef = db::classNamed("BLOCK_HEADER"); break;
    case Structure::Source::Kind::Made:
        kind.classDef = m_structure->made(source->index).classDef();
        kind.isEntity = kind.classDef->isEntity();
        break;
    }
    if (kind.classDef) {
        kind.className = kind.classDef->name();
        kind.typeNumber = kind.classDef->typeNumber();
    }
    return kind;
}

base::Status DxfFile::read(std::uint64_t handle, db::Record& out) const
{
    const auto source = m_structure->find(handle);
    if (!source)
        return missing(handle);
    switch (source->kind) {
    case Structure::Source::Kind::Entry: return readEntry(source->index, out);
    case Structure::Source::Kind::Block: return readBlock(source->index, out);
    case Structure::Source::Kind::Control:
        out = m_structure->control(tables()[source->index].table);
        return {};
    default: out = m_structure->made(source->index); return {};
    }
}

base::Status DxfFile::readEntry(std::uint32_t at, db::Record& out) const
{
    const Entry& entry = m_structure->entry(at);
    if (!entry.classDef)
        return {base::Failure::Unsupported,
                base::Reason::DxfNotUnderstood,
                {TvString(std::string(entry.type->name.substr(0, 80)).c_str())}};
    base::Status done = m_reader->read(*entry.classDef, m_structure->textOf(entry),
                                       m_structure->placeOf(entry), out);
    if (!done)
        return done;
    if (entry.isEntity) {
        addDefaultNames(out);
        addLinks(at, out);
    } else {
        addTold(entry, out);
    }
    return {};
}

// An entity that names none has the layer and the styles that every drawing has.
void DxfFile::addDefaultNames(db::Record& out) const
{
    struct Default {
        db::FieldId field;
        Table table;
        std::u16string_view name;
    };
    static const Default kDefaults[] = {
        {db::fieldId("layer"), Table::Layer, u"0"},
        {db::fieldId("style"), Table::TextStyle, u"Standard"},
        {db::fieldId("dimstyle"), Table::DimensionStyle, u"Standard"},
    };
    static constexpr std::string_view kTexts[] = {"TEXT", "MTEXT", "ATTRIB", "ATTDEF"};
    db::RecordEditor entity(out);
    for (const Default& one : kDefaults) {
        const bool isOfText = std::find(std::begin(kTexts), std::end(kTexts),
                                        out.classDef()->name()) != std::end(kTexts);
        // A style of what is no text is of another kind.
        if (one.table == Table::TextStyle && !isOfText)
            continue;
        if (entity.has(one.field) && entity.handle(one.field) == 0)
            entity.setHandle(one.field, m_structure->context().names().find(one.table, one.name));
    }
}

// What records of objects hold and files tell elsewhere: the viewports of a layout, by its block;
// the block that an object keeps, which is the one that it hangs on.
void DxfFile::addTold(const Entry& entry, db::Record& out) const
{
    static const db::FieldId kViewports = db::fieldId("viewports"),
                             kBlockRecord = db::fieldId("block_record");
    if (entry.type->name == "LAYOUT") {
        const auto source = m_structure->find(out.handle(kBlockRecord));
        if (!source || source->kind != Structure::Source::Kind::Block)
            return;
        const BlockEntry& block = m_structure->block(source->index);
        // One layout a block: others would make the file as long as they like.
        if (block.layout != entry.handle || version() < db::Version::Ac1018)
            return;
        db::ArrayEditor viewports = db::RecordEditor(out).array(kViewports);
        for (const std::uint32_t at : block.owned)
            if (m_structure->entry(at).type->name == "VIEWPORT")
                viewports.setHandle(viewports.add(), m_structure->entry(at).handle);
    } else if (entry.type->name == "ACDB_DYNAMICBLOCKPURGEPREVENTER_VERSION") {
        const auto owner = m_structure->find(entry.owner);
        if (owner && owner->kind == Structure::Source::Kind::Entry)
            db::RecordEditor(out).setHandle("block", m_structure->entry(owner->index).owner);
    }
}

// The neighbours of an entity, where records hold them, and what belongs to it.
void DxfFile::addLinks(std::uint32_t at, db::Record& out) const
{
    static const db::FieldId kNoLinks = db::fieldId("nolinks"), kNext = db::fieldId("next"),
                             kPrevious = db::fieldId("prev");
    const Entry& entry = m_structure->entry(at);
    if (version() == db::Version::Ac1015) {
        const auto [previous, next] = m_structure->neighbours(at);
        db::RecordEditor entity(out);
        entity.setInteger(kNoLinks, 0);
        entity.setHandle(kPrevious, previous);
        entity.setHandle(kNext, next);
    }
    if (entry.children || entry.seqend != kNone || entry.type->family == TypeInfo::Family::Polyline)
        addSequence(at, out);
}

void DxfFile::addSequence(std::uint32_t at, db::Record& out) const
{
    const Entry& entry = m_structure->entry(at);
    db::RecordEditor owner(out);
    const bool isInsert = owner.has("attribs");
    const bool isPolyline = owner.has("vertices");
    if (!isInsert && !isPolyline)
        return;
    if (isInsert)
        owner.setFlag("has_attribs", true);
    db::ArrayEditor parts = owner.array(isInsert ? "attribs" : "vertices");
    parts.resize(entry.children);
    for (std::uint32_t i = 0; i < entry.children; ++i)
        parts.setHandle(i, m_structure->entry(at + 1 + i).handle);
    if (entry.children) {
        owner.setHandle(isInsert ? "first_attrib" : "first_vertex", parts.handle(0));
        owner.setHandle(isInsert ? "last_attrib" : "last_vertex", parts.handle(entry.children - 1));
    }
    owner.setHandle("seqend", m_structure->seqendOf(at));
}

// ---- blocks

base::Status DxfFile::readBlock(std::uint32_t at, db::Record& out) const
{
    const BlockEntry& block = m_structure->block(at);
    const std::uint64_t control = m_structure->controlHandle(Table::Block);
    if (block.record != kNone) {
        const Entry& entry = m_structure->entry(block.record);
        base::Status done =
            m_reader->read(*db::classNamed("BLOCK_HEADER"), m_structure->textOf(entry),
                           {block.handle, control, 0}, out);
        if (!done)
            return done;
    } else {
        out = db::Record(*db::classNamed("BLOCK_HEADER"));
        out.setVersion(version());
        out.setHandle(block.handle);
        db::RecordEditor(out).setHandle("owner", control);
    }
    db::RecordEditor record(out);
    const bool isModel = block.handle == m_structure->modelSpace();
    const bool isPaper = block.handle == m_structure->paperSpace();
    const std::u16string name = isModel   ? u"*Model_Space"
                                : isPaper ? u"*Paper_Space"
                                          : m_structure->context().coding().decoded(block.name);
    record.setText("name", baseBlockName(name));
    record.setFlag("xref_ref", true);
    readBlockBegin(block, out);
    if (isNumberedBlock(name) && !isPaper)
        record.setFlag("anonymous", !base::equalNoCase(baseBlockName(name), u"*Paper_Space"));
    record.setHandle("block_entity", block.beginHandle);
    record.setHandle("endblk_entity", block.endHandle);
    record.setHandle("layout", block.layout);
    const auto fill = [&](const char* field, std::size_t size, auto handleAt) {
        db::ArrayEditor array = record.array(field);
        array.resize(static_cast<std::uint32_t>(size));
        for (std::uint32_t i = 0; i < size; ++i)
            array.setHandle(i, handleAt(i));
    };
    const auto entityAt = [&](std::size_t i) { return m_structure->entry(block.owned[i]).handle; };
    fill("inserts", block.inserts.size(), [&](std::size_t i) { return block.inserts[i]; });
    if (record.flag("is_xref") || record.flag("xref_overlaid"))
        return {};
    fill("owned", block.owned.size(), entityAt);
    if (!block.owned.empty()) {
        record.setHandle("first_entity", entityAt(0));
        record.setHandle("last_entity", entityAt(block.owned.size() - 1));
    }
    return {};
}

// The second half of what files tell about a block.
void DxfFile::readBlockBegin(const BlockEntry& block, db::Record& out) const
{
    constexpr std::int64_t kAnonymous = 1, kHasAttributes = 2, kXref = 4, kOverlay = 8,
                           kResolved = 32;
    if (block.begin == kNone)
        return;
    db::RecordEditor record(out);
    db::Point base;
    const TextCoding& coding = m_structure->context().coding();
    TagScanner scanner(m_structure->textOf(m_structure->entry(block.begin)));
    bool isInBraces = false;
    for (Tag tag; scanner.next(tag) && tag.code < 1000;) {
        isInBraces = tag.code == 102 ? tag.value.starts_with('{') : isInBraces;
        if (isInBraces)
            continue;
        const auto number = [&] { return integerIn(tag.value).value_or(0); };
        switch (tag.code) {
        case 70: {
            const std::int64_t flags = number();
            record.setFlag("anonymous", (flags & kAnonymous) != 0);
            record.setFlag("has_attdefs", (flags & kHasAttributes) != 0);
            record.setFlag("is_xref", (flags & (kXref | kOverlay)) != 0);
            record.setFlag("xref_overlaid", (flags & kOverlay) != 0);
            record.setFlag("xref_unloaded",
                           (flags & (kXref | kOverlay)) != 0 && (flags & kResolved) == 0);
            break;
        }
        case 10: base.x = realIn(tag.value).value_or(0); break;
        case 20: base.y = realIn(tag.value).value_or(0); break;
        case 30: base.z = realIn(tag.value).value_or(0); break;
        case 1: record.setText("xref_path", coding.decoded(tag.value)); break;
        case 4: record.setText("description", coding.decoded(tag.value)); break;
        default: break;
        }
    }
    record.setPoint("base_pt", base);
}

// ---- what is not understood

base::Status DxfFile::readCommon(std::uint64_t handle, db::Record& out) const
{
    const auto source = m_structure->find(handle);
    if (!source)
        return missing(handle);
    if (source->kind != Structure::Source::Kind::Entry)
        return read(handle, out);
    const Entry& entry = m_structure->entry(source->index);
    const db::ClassDef& raw = *db::classNamed(entry.isEntity ? "RAW_ENTITY" : "RAW_OBJECT");
    const std::string_view text = m_structure->textOf(entry);
    if (base::Status done = m_reader->read(raw, text, m_structure->placeOf(entry), out); !done)
        return done;
    if (entry.isEntity)
        addLinks(source->index, out);
    addReferences(text, out);
    return {};
}

void addReferences(std::string_view text, db::Record& record)
{
    db::ArrayEditor ids = db::RecordEditor(record).array("ids");
    TagScanner scanner(text);
    int markers = 0;
    const int own = record.classDef()->isEntity() ? 2 : 1; // groups behind the common ones
    for (Tag tag; scanner.next(tag) && tag.code < 1000;) {
        markers += tag.code == 100;
        const bool refers = (tag.code >= 330 && tag.code < 370) ||
                            (tag.code >= 390 && tag.code < 400) || tag.code == 480 ||
                            tag.code == 481;
        const std::uint64_t target = refers ? handleIn(tag.value).value_or(0) : 0;
        if (markers >= own && target != 0)
            ids.setHandle(ids.add(), target);
    }
}

bool DxfFile::isEditable(std::uint64_t handle) const
{
    db::Record record;
    return static_cast<bool>(read(handle, record));
}

std::string_view DxfFile::groups(std::uint64_t handle) const
{
    const auto source = m_structure->find(handle);
    if (!source)
        return {};
    if (source->kind == Structure::Source::Kind::Block) {
        const std::uint32_t record = m_structure->block(source->index).record;
        const bool isComplete = record != kNone && m_structure->entry(record).isComplete;
        return isComplete ? m_structure->textOf(m_structure->entry(record)) : std::string_view();
    }
    if (source->kind != Structure::Source::Kind::Entry)
        return {};
    const Entry& entry = m_structure->entry(source->index);
    return entry.isComplete ? m_structure->textOf(entry) : std::string_view();
}

std::vector<UnknownGroups> DxfFile::unknownGroups(std::uint64_t handle) const
{
    db::Record record;
    const auto source = m_structure->find(handle);
    const bool hasGroups = source && (source->kind == Structure::Source::Kind::Entry ||
                                      source->kind == Structure::Source::Kind::Block);
    if (!hasGroups || m_structure->index().isOld || !read(handle, record))
        return {};
    return m_reader->unknown();
}

// ---- the file

base::Result<db::Record> DxfFile::header() const
{
    return readHeader(*m_structure);
}

std::optional<db::SummaryInfo> DxfFile::summary() const
{
    return readSummary(*m_structure);
}

std::vector<db::ClassEntry> DxfFile::classes() const
{
    std::vector<db::ClassEntry> all;
    TagScanner scanner(m_structure->index().classesText);
    const auto ascii = [](const Tag& tag) { return std::string(trimmed(tag.value)); };
    for (Tag tag; scanner.next(tag);) {
        if (tag.code == 0 && tag.value == "CLASS")
            all.emplace_back();
        if (all.empty())
            continue;
        db::ClassEntry& entry = all.back();
        const std::int64_t number =
            valueKind(tag.code) == ValueKind::Integer ? integerIn(tag.value).value_or(0) : 0;
        switch (tag.code) {
        case 1: entry.dxfName = ascii(tag); break;
        case 2: entry.cppName = ascii(tag); break;
        case 3: entry.application = ascii(tag); break;
        case 90: entry.proxyFlags = static_cast<std::uint32_t>(number); break;
        case 91: entry.instances = static_cast<std::uint32_t>(number); break;
        case 280: entry.wasProxy = number != 0; break;
        case 281: entry.isEntity = number != 0; break;
        default: break;
        }
    }
    return all;
}

db::Preview DxfFile::preview() const
{
    db::Preview preview;
    TagScanner scanner(m_structure->index().thumbnailText);
    for (Tag tag; scanner.next(tag);) {
        if (tag.code != 310)
            continue;
        const std::string_view digits = trimmed(tag.value);
        for (std::size_t at = 0; at + 1 < digits.size(); at += 2)
            preview.bytes.push_back(
                static_cast<std::uint8_t>(handleIn(digits.substr(at, 2)).value_or(0)));
    }
    if (!preview.bytes.empty())
        preview.kind = db::Preview::Kind::Bmp;
    return preview;
}

std::vector<base::Status> DxfFile::check() const
{
    std::vector<base::Status> findings;
    for (const std::uint64_t handle : m_structure->doubleHandles())
        findings.emplace_back(
            base::Failure::Damaged, base::Reason::DxfDoubleHandle,
            std::vector<TvString>{TvString().format(u"%X", static_cast<std::int64_t>(handle))});
    db::Record record;
    for (const std::uint64_t handle : handles()) {
        base::Status done = read(handle, record);
        if (done.failure() == base::Failure::Unsupported)
            done = readCommon(handle, record);
        if (!done)
            findings.push_back(std::move(done));
    }
    return findings;
}

} // namespace dxf
