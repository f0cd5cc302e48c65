#include "file_writer.h"

#include <algorithm>

#include "block_names.h"
#include "header_section.h"
#include "known_classes.h"
#include "tags.h"

namespace dxf {

namespace {

// In memory and in the other format only: files tell it with the viewports.
constexpr std::string_view kNotWritten[] = {"VPENT_HDR", "VPENT_HDR_CONTROL"};

bool isNotWritten(std::string_view className)
{
    return std::find(std::begin(kNotWritten), std::end(kNotWritten), className) !=
           std::end(kNotWritten);
}

const DxfFile* sameForm(const db::DrawingFile* origin, db::Version version)
{
    const auto* file = dynamic_cast<const DxfFile*>(origin);
    return file && file->version() == version && !file->structure().index().isOld ? file : nullptr;
}

int codePageOf(const db::Contents& contents)
{
    return contents.origin ? contents.origin->codePage() : 30;
}

std::string_view lineEndOf(const db::Contents& contents)
{
    const auto* file = dynamic_cast<const DxfFile*>(contents.origin);
    return file ? file->structure().index().lineEnd : std::string_view("\r\n");
}

// What of a DWG file's check() tells of damage that the text would hide, or have lost something by.
constexpr base::Reason kDamages[] = {
    base::Reason::DwgCheckSectionOutside,    base::Reason::DwgCheckSectionChecksum,
    base::Reason::DwgCheckSectionUnreadable, base::Reason::DwgCheckPageChecksum,
    base::Reason::DwgCheckPageUnreadable,    base::Reason::DwgCheckMapOrder,
    base::Reason::DwgCheckObjectUnreadable,  base::Reason::DwgCheckObjectChecksum,
    base::Reason::DwgCheckObjectHandle,      base::Reason::DwgCheckObjectsOverlap};

bool isDamaged(const db::DrawingFile* origin)
{
    if (!origin || origin->format() != db::FileFormat::Dwg)
        return false;
    const auto found = origin->check();
    return std::any_of(found.begin(), found.end(), [](const base::Status& status) {
        return std::find(std::begin(kDamages), std::end(kDamages), status.reason()) !=
               std::end(kDamages);
    });
}

} // namespace

FileWriter::FileWriter(const db::Contents& contents, db::Version version)
    : m_contents(contents), m_version(version), m_origin(sameForm(contents.origin, version)),
      m_records(contents, version), m_coding(version, codePageOf(contents)),
      m_out(m_coding, lineEndOf(contents)), m_writer(m_out, version, m_source)
{
    m_source.codePage = codePageOf(contents);
    m_source.record = [this](std::uint64_t handle) -> const db::Record* {
        auto found = record(handle);
        if (!found)
            return nullptr;
        m_looked = std::move(*found);
        return &m_looked;
    };
    m_source.blockName = [this](std::uint64_t handle) {
        const auto known = m_blockNames.find(handle);
        return known == m_blockNames.end() ? std::u16string() : known->second;
    };
}

base::Status FileWriter::write()
{
    if (isDamaged(m_contents.origin))
        return {base::Failure::Damaged, base::Reason::DwgDamageNotSaved};
    if (base::Status done = prepare(); !done)
        return done;
    if (base::Status done = writeSections(); !done)
        return done;
    return leftOut();
}

// ---- what there is

base::Status FileWriter::prepare()
{
    if (base::Status done = learnObjects(); !done)
        return done;
    if (base::Status done = learnBlocks(); !done)
        return done;
    learnLayouts();
    learnNames();
    learnRenames();
    return {};
}

FileWriter::Known FileWriter::knownOf(std::uint64_t handle) const
{
    Known known;
    if (m_contents.changed)
        if (const auto changed = m_contents.changed->find(handle);
            changed != m_contents.changed->end()) {
            known.classDef = changed->second->classDef();
            known.className = known.classDef->name();
            known.isEntity = known.classDef->isEntity();
            known.isChanged = true;
            return known;
        }
    if (!m_contents.origin)
        return known;
    const auto kind = m_contents.origin->kind(handle);
    if (!kind)
        return known;
    known.classDef = kind->classDef;
    known.className = kind->className;
    known.isEntity = kind->isEntity;
    return known;
}

// Whether an object's groups may be taken as they stand. A name that has changed somewhere stands
// in them too.
bool FileWriter::mayCopy(std::uint64_t handle, const Known& known) const
{
    if (!m_origin || known.isChanged || m_origin->groups(handle).empty())
        return false;
    return !m_hasRenamed || !known.classDef || !hasForm(*known.classDef, m_version);
}

base::Status FileWriter::learnObjects()
{
    std::set<std::string> refused;
    for (const std::uint64_t handle : m_contents.handles) {
        Known known = knownOf(handle);
        if (isNotWritten(known.className))
            continue;
        const bool isControl = known.classDef && known.classDef->kind() == db::ClassKind::Control;
        const bool isTold = known.classDef && (isControl || hasForm(*known.classDef, m_version)) &&
                            !known.className.starts_with("RAW_");
        if ((!isTold && !mayCopy(handle, known)) || !m_records.survey(handle))
            refused.insert(known.className);
        m_objects.emplace(handle, std::move(known));
    }
    if (refused.empty())
        return finishSurvey();
    std::string names;
    for (const std::string& name : refused)
        names += (names.empty() ? "" : ", ") + name;
    return {
        base::Failure::Unsupported, base::Reason::DxfClassesNotWritten, {TvString(names.c_str())}};
}

base::Status FileWriter::finishSurvey()
{
    if (base::Status done = m_records.finishSurvey(); !done)
        return done;
    std::erase_if(m_objects, [&](const auto& one) { return m_records.isSuperseded(one.first); });
    if (const std::uint64_t summary = m_records.summaryHandle()) {
        const db::ClassDef* const classDef = db::classNamed("XRECORD");
        m_objects[summary] = {classDef, std::string(classDef->name())};
    }
    return {};
}

// Names of blocks with their numbers: what their BLOCK says, as long as no other block has it.
base::Status FileWriter::learnBlocks()
{
    m_source.modelSpace = m_records.header().handle("BRMSPACE");
    m_source.paperSpace = m_records.header().handle("BRPSPACE");
    std::vector<std::uint64_t> others;
    const std::uint64_t controlHandle = m_records.header().handle("BLOCKCTL");
    const auto control = record(controlHandle);
    if (!control)
        return control.status();
    const db::ArrayView entries = control->array("entries");
    for (std::uint32_t i = 0; i < entries.size(); ++i)
        others.push_back(entries.handle(i));
    m_blocks = {m_source.modelSpace, m_source.paperSpace};
    for (const std::uint64_t handle : others)
        if (handle != 0 && handle != m_source.modelSpace && handle != m_source.paperSpace)
            m_blocks.push_back(handle);
    std::set<std::u16string> taken;
    std::map<std::u16string, std::uint64_t> nextNumber;
    std::vector<std::pair<std::uint64_t, std::u16string>> unnamed;
    for (const std::uint64_t handle : m_blocks) {
        const auto block = record(handle);
        if (!block)
            return block.status();
        const std::u16string base(block->text("name"));
        std::u16string name = base;
        const bool isSpace = handle == m_source.modelSpace || handle == m_source.paperSpace;
        if (!isSpace && isNumberedBlock(base)) {
            const auto begin = record(block->handle("block_entity"));
            const std::u16string told(begin ? begin->text("name") : u"");
            const bool fits =
                told.size() > base.size() && base::equalNoCase(baseBlockName(told), base);
            if (!fits || !taken.insert(foldedName(told)).second) {
                unnamed.emplace_back(handle, base);
                continue;
            }
            name = told;
        }
        m_blockNames[handle] = name;
        taken.insert(foldedName(name));
    }
    for (const auto& [handle, base] : unnamed) {
        std::u16string name;
        do {
            const std::uint64_t number = nextNumber[foldedName(base)]++;
            name = base + std::u16string(
                              TvString().format(u"%d", static_cast<std::int64_t>(number)).view());
        } while (!taken.insert(foldedName(name)).second);
        m_blockNames[handle] = name;
    }
    return {};
}

void FileWriter::learnLayouts()
{
    for (const std::uint64_t handle : m_blocks) {
        if (handle == m_source.modelSpace)
            continue;
        const auto block = record(handle);
        if (!block || block->handle("layout") == 0)
            continue;
        const auto layout = record(block->handle("layout"));
        m_source.paperLayouts[handle] =
            layout ? std::u16string(layout->text("name")) : std::u16string();
        int number = 0;
        const db::ArrayView owned = block->array("owned");
        for (std::uint32_t i = 0; i < owned.size(); ++i) {
            const auto known = m_objects.find(owned.handle(i));
            if (known != m_objects.end() && known->second.className == "VIEWPORT")
                m_source.viewportNumbers[owned.handle(i)] = ++number;
        }
    }
}

void FileWriter::learnNames()
{
    const auto linetypes = record(m_records.header().handle("LTYPECTL"));
    if (!linetypes)
        return;
    const db::ArrayView entries = linetypes->array("entries");
    for (std::uint32_t i = 0; i < entries.size(); ++i)
        m_source.linetypes.push_back(entries.handle(i));
    const auto styles = record(m_records.header().handle("STYLECTL"));
    const db::ArrayView all = styles ? styles->array("entries") : db::ArrayView();
    for (std::uint32_t i = 0; i < all.size() && m_source.shapeStyle == 0; ++i)
        if (const auto style = record(all.handle(i)); style && style->flag("is_shape"))
            m_source.shapeStyle = all.handle(i);
}

// Records whose name differs from the one that copied groups would tell.
void FileWriter::learnRenames()
{
    if (!m_origin || !m_contents.changed)
        return;
    for (const auto& [handle, changed] : *m_contents.changed)
        for (const TableFacts& facts : tables()) {
            db::Record before;
            if (changed->classDef()->name() != facts.recordClass || !m_origin->kind(handle) ||
                !m_origin->read(handle, before))
                continue;
            const std::u16string old(before.text("name")), now(changed->text("name"));
            if (old == now)
                continue;
            m_hasRenamed = true;
            m_renamed[static_cast<std::size_t>(facts.table)].emplace(foldedName(old), now);
        }
}

// ---- sections

base::Status FileWriter::writeSections()
{
    writeHeaderSection();
    writeClasses();
    using Step = base::Status (FileWriter::*)();
    for (const Step step : {&FileWriter::writeTables, &FileWriter::writeBlocks,
                            &FileWriter::writeEntities, &FileWriter::writeObjects})
        if (base::Status done = (this->*step)(); !done)
            return done;
    writeOtherSections();
    writePreview();
    m_out.raw(0, "EOF");
    return {};
}

void FileWriter::writeHeaderSection()
{
    const std::string_view before =
        m_origin ? m_origin->structure().index().headerText : std::string_view();
    const bool isSame = m_origin && !m_contents.headerChanged && !m_contents.summary &&
                        !m_hasRenamed && before.find("$HANDSEED") != before.npos;
    if (isSame)
        return copyHeader(m_out, before, m_records.header().handle("HANDSEED"));
    const std::optional<db::SummaryInfo>& summary = m_records.summary();
    writeHeader(m_writer, {&m_records.header(), summary ? &*summary : nullptr, before});
}

void FileWriter::writeClasses()
{
    std::map<std::string, std::uint32_t> counts;
    for (const auto& [handle, known] : m_objects)
        ++counts[known.className];
    std::vector<db::ClassEntry> entries;
    if (m_contents.origin)
        entries = m_contents.origin->classes();
    addKnownClasses(entries, counts);
    m_out.raw(0, "SECTION");
    m_out.raw(2, "CLASSES");
    for (const db::ClassEntry& entry : entries) {
        m_out.raw(0, "CLASS");
        m_out.raw(1, entry.dxfName);
        m_out.raw(2, entry.cppName);
        m_out.raw(3, entry.application);
        m_out.integer(90, entry.proxyFlags);
        if (m_version >= db::Version::Ac1018)
            m_out.integer(91, counts[entry.dxfName]);
        m_out.integer(280, entry.wasProxy);
        m_out.integer(281, entry.isEntity);
    }
    m_out.raw(0, "ENDSEC");
}

base::Status FileWriter::writeTables()
{
    m_out.raw(0, "SECTION");
    m_out.raw(2, "TABLES");
    for (const TableFacts& facts : tables())
        if (base::Status done = writeTable(facts.table); !done)
            return done;
    m_out.raw(0, "ENDSEC");
    return {};
}

base::Status FileWriter::writeTable(Table table)
{
    const TableFacts& facts = factsOf(table);
    const auto control = record(m_records.header().handle(facts.controlVariable));
    if (!control)
        return control.status();
    std::vector<std::uint64_t> entries;
    for (const char* special : {"byblock", "bylayer", "model_space", "paper_space"})
        if (control->has(special))
            entries.push_back(control->handle(special));
    const db::ArrayView list = control->array("entries");
    for (std::uint32_t i = 0; i < list.size(); ++i)
        entries.push_back(list.handle(i));
    std::erase_if(entries, [&](std::uint64_t handle) { return !m_objects.contains(handle); });
    m_out.raw(0, "TABLE");
    m_out.raw(2, facts.name);
    m_out.handle(5, control->handle());
    const std::uint64_t dictionary = control->handle("xdict");
    if (dictionary != 0 && m_objects.contains(dictionary)) {
        m_out.raw(102, "{ACAD_XDICTIONARY");
        m_out.handle(360, dictionary);
        m_out.raw(102, "}");
    }
    m_out.handle(330, 0);
    m_out.raw(100, "AcDbSymbolTable");
    m_out.integer(70, static_cast<std::int64_t>(entries.size()));
    if (table == Table::DimensionStyle) {
        const db::ArrayView more = control->array("more");
        m_out.raw(100, "AcDbDimStyleTable");
        m_out.integer(71, more.size());
        for (std::uint32_t i = 0; i < more.size(); ++i)
            m_out.handle(340, more.handle(i));
    }
    if (!m_writer.writeExtendedDataOf(*control))
        return {base::Failure::Unsupported,
                base::Reason::DxfNotUnderstood,
                {TvString(std::string(facts.controlClass).c_str())}};
    m_done.insert(control->handle());
    for (const std::uint64_t handle : entries)
        if (base::Status done = writeObject(handle); !done)
            return done;
    m_out.raw(0, "ENDTAB");
    return {};
}

base::Status FileWriter::writeBlocks()
{
    m_out.raw(0, "SECTION");
    m_out.raw(2, "BLOCKS");
    for (const std::uint64_t handle : m_blocks) {
        const auto block = record(handle);
        if (!block)
            return block.status();
        // What a file tells with the block's BLOCK may have changed in the block's record.
        const std::uint64_t begin = block->handle("block_entity");
        auto known = m_objects.find(begin);
        if (known != m_objects.end() && m_objects.at(handle).isChanged)
            known->second.isChanged = true;
        if (base::Status done = writeObject(begin); !done)
            return done;
        const bool isSpace = handle == m_source.modelSpace || handle == m_source.paperSpace;
        if (!isSpace)
            if (base::Status done = writeOwned(*block); !done)
                return done;
        if (base::Status done = writeObject(block->handle("endblk_entity")); !done)
            return done;
    }
    m_out.raw(0, "ENDSEC");
    return {};
}

base::Status FileWriter::writeEntities()
{
    m_out.raw(0, "SECTION");
    m_out.raw(2, "ENTITIES");
    for (const std::uint64_t handle : {m_source.modelSpace, m_source.paperSpace}) {
        const auto block = record(handle);
        if (!block)
            return block.status();
        if (base::Status done = writeOwned(*block); !done)
            return done;
    }
    m_out.raw(0, "ENDSEC");
    return {};
}

base::Status FileWriter::writeOwned(const db::Record& block)
{
    const db::ArrayView owned = block.array("owned");
    for (std::uint32_t i = 0; i < owned.size(); ++i)
        if (m_objects.contains(owned.handle(i)))
            if (base::Status done = writeEntity(owned.handle(i)); !done)
                return done;
    return {};
}

// With the attributes or vertices that follow it.
base::Status FileWriter::writeEntity(std::uint64_t handle)
{
    if (base::Status done = writeObject(handle); !done)
        return done;
    const Known& known = m_objects.at(handle);
    const bool mayOwn = known.classDef && (known.classDef->layout().find(db::fieldId("vertices")) ||
                                           known.classDef->layout().find(db::fieldId("attribs")));
    if (!mayOwn)
        return {};
    const auto owner = record(handle);
    if (!owner)
        return owner.status();
    const bool isInsert = owner->has("attribs");
    if (isInsert && !owner->flag("has_attribs"))
        return {};
    const db::ArrayView parts = owner->array(isInsert ? "attribs" : "vertices");
    for (std::uint32_t i = 0; i < parts.size(); ++i)
        if (m_objects.contains(parts.handle(i)))
            if (base::Status done = writeObject(parts.handle(i)); !done)
                return done;
    const std::uint64_t end = owner->handle("seqend");
    return m_objects.contains(end) ? writeObject(end) : base::Status();
}

// The named dictionary is the first one.
base::Status FileWriter::writeObjects()
{
    m_out.raw(0, "SECTION");
    m_out.raw(2, "OBJECTS");
    const std::uint64_t root = m_records.header().handle("DNAMEDOBJ");
    if (m_objects.contains(root))
        if (base::Status done = writeObject(root); !done)
            return done;
    for (const auto& [handle, known] : m_objects) {
        const bool isObject =
            !known.isEntity && (!known.classDef || known.classDef->kind() == db::ClassKind::Object);
        if (isObject && handle != root)
            if (base::Status done = writeObject(handle); !done)
                return done;
    }
    m_out.raw(0, "ENDSEC");
    return {};
}

// Sections that are not about objects stay as they are.
void FileWriter::writeOtherSections()
{
    static constexpr std::string_view kOurs[] = {"HEADER",   "CLASSES", "TABLES",        "BLOCKS",
                                                 "ENTITIES", "OBJECTS", "THUMBNAILIMAGE"};
    if (!m_origin)
        return;
    for (const SectionText& section : m_origin->structure().index().sections)
        if (std::find(std::begin(kOurs), std::end(kOurs), section.name) == std::end(kOurs))
            copyGroups(
                m_origin->structure().text().substr(section.begin, section.end - section.begin));
}

void FileWriter::writePreview()
{
    db::Preview preview;
    if (m_contents.preview)
        preview = *m_contents.preview;
    else if (m_contents.origin)
        preview = m_contents.origin->preview();
    if (preview.kind != db::Preview::Kind::Bmp || preview.bytes.empty())
        return;
    m_out.raw(0, "SECTION");
    m_out.raw(2, "THUMBNAILIMAGE");
    m_out.integer(90, static_cast<std::int64_t>(preview.bytes.size()));
    m_out.hex(310, preview.bytes);
    m_out.raw(0, "ENDSEC");
}

// ---- objects

// But for escapes, so that a name looks the same wherever it stands.
void FileWriter::copyGroups(std::string_view groups)
{
    const std::size_t begin = m_out.out().size();
    if (m_out.lineEnd() == m_origin->structure().index().lineEnd)
        m_out.out() += groups;
    else
        m_out.copy(groups);
    TextCoding::capitaliseEscapes(m_out.out(), begin);
}

base::Status FileWriter::writeObject(std::uint64_t handle)
{
    const auto known = m_objects.find(handle);
    if (known == m_objects.end() || !m_done.insert(handle).second)
        return {};
    if (mayCopy(handle, known->second)) {
        copyGroups(m_origin->groups(handle));
        return {};
    }
    std::size_t begin = 0;
    if (base::Status done = writeRecord(handle, begin); !done)
        return done;
    m_written.push_back({handle, begin, m_out.out().size()});
    return {};
}

base::Status FileWriter::writeRecord(std::uint64_t handle, std::size_t& begin)
{
    const auto found = record(handle);
    if (!found)
        return found.status();
    begin = m_out.out().size();
    return m_writer.write(*found, m_origin ? m_origin->unknownGroups(handle)
                                           : std::vector<UnknownGroups>());
}

base::Result<std::string> FileWriter::groupsOf(std::uint64_t handle)
{
    if (m_objects.empty())
        if (base::Status done = prepare(); !done)
            return done;
    m_out.out().clear();
    std::size_t begin = 0;
    if (base::Status done = writeRecord(handle, begin); !done)
        return done;
    return m_out.out();
}

// Entities that no block lists have no place in a file.
base::Status FileWriter::leftOut() const
{
    std::set<std::string> names;
    for (const auto& [handle, known] : m_objects)
        if (!m_done.contains(handle))
            names.insert(known.className);
    if (names.empty())
        return {};
    std::string list;
    for (const std::string& name : names)
        list += (list.empty() ? "" : ", ") + name;
    return {
        base::Failure::Unsupported, base::Reason::DxfClassesNotWritten, {TvString(list.c_str())}};
}

} // namespace dxf
