#include <algorithm>
#include <unordered_set>

#include "file_index.h"
#include "tags.h"
#include "text_coding.h"

namespace dxf {

namespace {

struct FamilyName {
    std::string_view name;
    TypeInfo::Family family;
};
constexpr FamilyName kFamilies[] = {
    {"POLYLINE", TypeInfo::Family::Polyline},
    {"VERTEX", TypeInfo::Family::Vertex},
    {"DIMENSION", TypeInfo::Family::Dimension},
    {"INSERT", TypeInfo::Family::Insert},
};

// Names that the field tables use for what files call otherwise; and what files do not hold.
constexpr std::string_view kNotInFiles[] = {
    "BLOCK_HEADER",       "MINSERT",
    "VERTEX_2D",          "VERTEX_3D",
    "VERTEX_MESH",        "VERTEX_PFACE",
    "VERTEX_PFACE_FACE",  "POLYLINE_2D",
    "POLYLINE_3D",        "POLYLINE_MESH",
    "POLYLINE_PFACE",     "RAW_OBJECT",
    "RAW_ENTITY",         "HEADER_VARIABLES",
    "PROXY_OBJECT",       "PROXY_ENTITY",
    "DIMENSION_LINEAR",   "DIMENSION_ALIGNED",
    "DIMENSION_ANG3PT",   "DIMENSION_ANG2LN",
    "DIMENSION_RADIUS",   "DIMENSION_DIAMETER",
    "DIMENSION_ORDINATE",
};

TypeInfo makeType(std::string_view name)
{
    TypeInfo type{.name = name};
    for (const FamilyName& family : kFamilies)
        if (family.name == name)
            type.family = family.family;
    const bool isForeign =
        std::find(std::begin(kNotInFiles), std::end(kNotInFiles), name) != std::end(kNotInFiles);
    if (type.family == TypeInfo::Family::None && !isForeign)
        type.classDef = db::classNamed(name == "BLOCK_RECORD" ? "BLOCK_HEADER" : name);
    if (type.classDef && type.classDef->kind() == db::ClassKind::Control)
        type.classDef = nullptr;
    return type;
}

base::Status damaged(std::string_view text, const char* at)
{
    const auto line = 1 + std::count(text.data(), at, '\n');
    return {base::Failure::Damaged,
            base::Reason::DxfNotGroups,
            {TvString().format(u"%d", static_cast<std::int64_t>(line))}};
}

struct VersionName {
    std::string_view name;
    db::Version version;
};
constexpr VersionName kVersionNames[] = {
    {"AC1015", db::Version::Ac1015}, {"AC1018", db::Version::Ac1018},
    {"AC1021", db::Version::Ac1021}, {"AC1024", db::Version::Ac1024},
    {"AC1027", db::Version::Ac1027}, {"AC1032", db::Version::Ac1032},
};
// These have fewer groups, but none that mean something else. Still older ones have neither block
// records nor layouts, and entities of other kinds.
constexpr std::string_view kOldNames[] = {"AC1012", "AC1014"};

constexpr std::size_t kLargest = std::size_t(2) << 30;

/// A set of names as written, with the last one at hand: most objects lie on the layer of the one
/// before.
class UsedNames
{
public:
    explicit UsedNames(std::vector<std::string_view>& names) : m_names(names) {}
    void add(std::string_view name)
    {
        if (name == m_last)
            return;
        m_last = name;
        if (m_seen.insert(name).second)
            m_names.push_back(name);
    }

private:
    std::vector<std::string_view>& m_names;
    std::string_view m_last;
    std::unordered_set<std::string_view> m_seen;
};

class FileScanner
{
public:
    FileScanner(std::string_view text, FileIndex& index)
        : m_text(text), m_scanner(text), m_index(index), m_layers(used(Table::Layer)),
          m_linetypes(used(Table::Linetype)), m_styles(used(Table::TextStyle)),
          m_applications(used(Table::Application)), m_dimensionStyles(used(Table::DimensionStyle))
    {
    }

    base::Status scan()
    {
        const auto firstLine = m_text.substr(0, m_text.find('\n'));
        m_index.lineEnd = firstLine.ends_with('\r') ? "\r\n" : "\n";
        m_index.entries.reserve(m_text.size() / 200);
        if (!next())
            return damaged(m_text, m_scanner.at());
        while (m_tag.code == 999 && next())
            ;
        while (m_tag.code == 0 && m_tag.value == "SECTION")
            if (base::Status done = scanSection(); !done)
                return done;
        // Without its end a file may lack anything.
        if (m_tag.code != 0 || m_tag.value != "EOF")
            return m_isAtEnd ? base::Status(base::Failure::Damaged, base::Reason::DxfTruncated)
                             : damaged(m_text, m_begin);
        return {};
    }

private:
    std::vector<std::string_view>& used(Table table)
    {
        return m_index.usedNames[static_cast<std::size_t>(table)];
    }

    bool next()
    {
        m_begin = m_scanner.at();
        if (m_scanner.next(m_tag))
            return true;
        m_isAtEnd = m_scanner.at() == m_text.data() + m_text.size();
        m_tag = {};
        m_tag.code = -1;
        return false;
    }
    std::uint32_t offset(const char* at) const
    {
        return static_cast<std::uint32_t>(at - m_text.data());
    }

    // From SECTION up to and with ENDSEC.
    base::Status scanSection()
    {
        SectionText section{.begin = offset(m_begin)};
        if (!next() || m_tag.code != 2)
            return broken();
        section.name = m_tag.value;
        m_section = sectionNamed(section.name);
        const char* const body = m_scanner.at();
        next();
        if (base::Status done = scanBody(); !done)
            return done;
        if (m_tag.code != 0 || m_tag.value != "ENDSEC")
            return broken();
        const std::string_view text(body, static_cast<std::size_t>(m_begin - body));
        if (m_section == Section::Classes)
            m_index.classesText = text;
        if (section.name == "THUMBNAILIMAGE")
            m_index.thumbnailText = text;
        section.end = offset(m_scanner.at());
        m_index.sections.push_back(section);
        if (m_section == Section::Header) {
            m_index.headerText = text;
            if (base::Status done = readHeader(); !done)
                return done;
        }
        next();
        return {};
    }

    base::Status broken() const
    {
        return m_isAtEnd ? base::Status(base::Failure::Damaged, base::Reason::DxfTruncated)
                         : damaged(m_text, m_begin);
    }

    static Section sectionNamed(std::string_view name)
    {
        return name == "HEADER"     ? Section::Header
               : name == "CLASSES"  ? Section::Classes
               : name == "TABLES"   ? Section::Tables
               : name == "BLOCKS"   ? Section::Blocks
               : name == "ENTITIES" ? Section::Entities
               : name == "OBJECTS"  ? Section::Objects
                                    : Section::Other;
    }

    base::Status scanBody()
    {
        switch (m_section) {
        case Section::Tables: return scanTables();
        case Section::Blocks:
        case Section::Entities:
        case Section::Objects: return scanObjects();
        default:
            while (m_tag.code >= 0 && !(m_tag.code == 0 && m_tag.value == "ENDSEC"))
                next();
            return {};
        }
    }

    bool isEndOfSection() const
    {
        return m_tag.code < 0 || (m_tag.code == 0 && m_tag.value == "ENDSEC");
    }

    // ---- tables

    base::Status scanTables()
    {
        while (!isEndOfSection()) {
            if (m_tag.code != 0 || m_tag.value != "TABLE")
                return broken();
            scanTable();
        }
        return {};
    }

    void scanTable()
    {
        TableEntry unknown;
        TableEntry* table = &unknown;
        unknown.begin = offset(m_begin);
        std::uint64_t handle = 0;
        while (next() && m_tag.code != 0) {
            if (m_tag.code == 2)
                if (const Table named = tableNamed(m_tag.value); named != Table::None) {
                    table = &m_index.tables[static_cast<std::size_t>(named)];
                    table->begin = unknown.begin;
                }
            if (m_tag.code == 5 && handle == 0)
                handle = handleIn(m_tag.value).value_or(0);
        }
        table->end = offset(m_begin);
        if (handle != 0)
            table->handle = handle;
        while (m_tag.code == 0 && m_tag.value != "ENDTAB" && m_tag.value != "ENDSEC" &&
               m_tag.value != "TABLE") {
            const auto at = static_cast<std::uint32_t>(m_index.entries.size());
            scanObject();
            table->records.push_back(at);
        }
        if (m_tag.code == 0 && m_tag.value == "ENDTAB")
            next();
    }

    // ---- objects

    base::Status scanObjects()
    {
        m_block = kNone;
        m_sequence = kNone;
        while (!isEndOfSection()) {
            if (m_tag.code != 0)
                return broken();
            const auto at = static_cast<std::uint32_t>(m_index.entries.size());
            scanObject();
            place(at);
        }
        return {};
    }

    // Attributes and vertices belong to what they follow, up to the end of the sequence.
    void place(std::uint32_t at)
    {
        Entry& entry = m_index.entries[at];
        if (m_section == Section::Objects)
            return;
        if (entry.type->name == "BLOCK")
            return beginBlock(at);
        if (entry.type->name == "ENDBLK") {
            if (m_block != kNone)
                m_index.blocks[m_block].end = at;
            m_block = kNone;
            m_sequence = kNone;
            return;
        }
        if (m_sequence != kNone && joinsSequence(entry, at))
            return;
        const bool begins = entry.type->family == TypeInfo::Family::Polyline ||
                            entry.type->family == TypeInfo::Family::Insert ||
                            entry.type->name == "ACAD_TABLE";
        m_sequence = begins ? at : kNone;
        if (m_block != kNone)
            m_index.blocks[m_block].owned.push_back(at);
        else
            m_index.entities.push_back(at);
    }

    bool joinsSequence(Entry& entry, std::uint32_t at)
    {
        Entry& owner = m_index.entries[m_sequence];
        const bool ends = entry.type->name == "SEQEND";
        const bool isPart = owner.type->family == TypeInfo::Family::Polyline
                                ? entry.type->family == TypeInfo::Family::Vertex
                                : entry.type->name == "ATTRIB";
        if (!ends && !isPart)
            return false;
        entry.parent = m_sequence;
        if (ends) {
            owner.seqend = at;
            m_sequence = kNone;
        } else {
            entry.position = owner.children++;
        }
        return true;
    }

    void beginBlock(std::uint32_t at)
    {
        m_block = static_cast<std::uint32_t>(m_index.blocks.size());
        m_sequence = kNone;
        BlockEntry block;
        block.begin = at;
        block.name = m_index.entries[at].name;
        m_index.blocks.push_back(std::move(block));
    }

    void scanObject()
    {
        Entry entry;
        entry.begin = offset(m_begin);
        entry.section = m_section;
        entry.type = &typeOf(m_tag.value);
        entry.classDef = entry.type->classDef;
        entry.isEntity = m_section == Section::Entities || m_section == Section::Blocks;
        scanGroups(entry);
        entry.end = offset(m_begin);
        if (entry.type->family != TypeInfo::Family::None)
            entry.classDef = chooseClass(entry);
        // A class that the tables have as an entity, among objects or the other way round.
        if (entry.classDef && entry.classDef->isEntity() != entry.isEntity)
            entry.classDef = nullptr;
        entry.isComplete = entry.handle != 0 && !m_index.isOld;
        m_index.entries.push_back(entry);
    }

    const TypeInfo& typeOf(std::string_view name)
    {
        if (!m_lastType || m_lastType->name != name) {
            const auto known = m_index.types.find(name);
            m_lastType = known != m_index.types.end()
                             ? &known->second
                             : &m_index.types.emplace(name, makeType(name)).first->second;
        }
        return *m_lastType;
    }

    void scanGroups(Entry& entry)
    {
        m_marker = {};
        m_flags = m_columns = m_rows = 0;
        bool inBraces = false;
        const bool isEntity = entry.isEntity;
        while (next() && m_tag.code != 0) {
            switch (m_tag.code) {
            case 5:
            case 105:
                if (entry.handle == 0 && m_marker.empty())
                    entry.handle = handleIn(m_tag.value).value_or(0);
                break;
            case 102: inBraces = m_tag.value.starts_with('{'); break;
            case 330:
                if (entry.owner == 0 && m_marker.empty() && !inBraces)
                    entry.owner = handleIn(m_tag.value).value_or(0);
                break;
            case 100: m_marker = m_tag.value; break;
            case 2:
                if (entry.name.empty())
                    entry.name = m_tag.value;
                break;
            case 8:
                if (isEntity)
                    m_layers.add(m_tag.value);
                break;
            case 6:
                if (isEntity || m_section == Section::Tables)
                    m_linetypes.add(m_tag.value);
                break;
            case 7:
                if (isEntity)
                    m_styles.add(m_tag.value);
                break;
            case 3:
                if (isEntity && usesDimensionStyle(entry))
                    m_dimensionStyles.add(m_tag.value);
                break;
            case 1001: m_applications.add(m_tag.value); break;
            case 67: entry.isPaper = isEntity && trimmed(m_tag.value) == "1"; break;
            case 70:
                if (entry.type->family != TypeInfo::Family::None) {
                    m_flags = integerIn(m_tag.value).value_or(0);
                    m_columns = m_flags;
                }
                break;
            case 71: m_rows = integerIn(m_tag.value).value_or(0); break;
            default: break;
            }
        }
    }

    static bool usesDimensionStyle(const Entry& entry)
    {
        return entry.type->family == TypeInfo::Family::Dimension || entry.type->name == "LEADER" ||
               entry.type->name == "TOLERANCE" || entry.type->name == "ARC_DIMENSION" ||
               entry.type->name == "LARGE_RADIAL_DIMENSION";
    }

    // ---- families

    const db::ClassDef* chooseClass(const Entry& entry) const
    {
        switch (entry.type->family) {
        case TypeInfo::Family::Insert: {
            const bool isArray = m_marker == "AcDbMInsertBlock" || m_columns > 1 || m_rows > 1;
            return db::classNamed(isArray ? "MINSERT" : "INSERT");
        }
        case TypeInfo::Family::Polyline:
            return db::classNamed(m_flags & 64   ? "POLYLINE_PFACE"
                                  : m_flags & 16 ? "POLYLINE_MESH"
                                  : m_flags & 8  ? "POLYLINE_3D"
                                                 : "POLYLINE_2D");
        case TypeInfo::Family::Vertex: return vertexClass();
        default: return dimensionClass();
        }
    }

    const db::ClassDef* vertexClass() const
    {
        if (m_marker == "AcDbFaceRecord")
            return db::classNamed("VERTEX_PFACE_FACE");
        if (m_marker == "AcDb2dVertex")
            return db::classNamed("VERTEX_2D");
        if (m_flags & 128)
            return db::classNamed(m_flags & 64 ? "VERTEX_PFACE" : "VERTEX_PFACE_FACE");
        return db::classNamed(m_flags & 64   ? "VERTEX_MESH"
                              : m_flags & 32 ? "VERTEX_3D"
                                             : "VERTEX_2D");
    }

    const db::ClassDef* dimensionClass() const
    {
        static constexpr std::string_view kNames[] = {
            "DIMENSION_LINEAR", "DIMENSION_ALIGNED", "DIMENSION_ANG2LN",  "DIMENSION_DIAMETER",
            "DIMENSION_RADIUS", "DIMENSION_ANG3PT",  "DIMENSION_ORDINATE"};
        const auto type = static_cast<std::size_t>(m_flags & 7);
        return type < std::size(kNames) ? db::classNamed(kNames[type]) : nullptr;
    }

    // ---- what the header says about the file

    base::Status readHeader()
    {
        TagScanner scanner(m_index.headerText);
        std::string_view variable;
        Tag tag;
        while (scanner.next(tag)) {
            if (tag.code == 9)
                variable = tag.value;
            else if (variable == "$ACADVER" && !setVersion(tag.value))
                return {base::Failure::Unsupported,
                        base::Reason::DxfVersion,
                        {TvString(std::string(tag.value.substr(0, 20)).c_str())}};
            else if (variable == "$DWGCODEPAGE")
                m_index.codePage = codePageNumber(tag.value);
            else if (variable == "$HANDSEED")
                m_index.handleSeed = handleIn(tag.value).value_or(0);
        }
        return {};
    }

    bool setVersion(std::string_view name)
    {
        name = trimmed(name);
        for (const VersionName& known : kVersionNames)
            if (known.name == name) {
                m_index.version = known.version;
                m_index.isOld = false;
                return true;
            }
        return std::find(std::begin(kOldNames), std::end(kOldNames), name) != std::end(kOldNames);
    }

    std::string_view m_text;
    TagScanner m_scanner;
    FileIndex& m_index;
    Tag m_tag;
    const char* m_begin = nullptr; // of m_tag
    bool m_isAtEnd = false;
    Section m_section = Section::Other;
    std::uint32_t m_block = kNone;    // the block we are in
    std::uint32_t m_sequence = kNone; // the insert or polyline whose parts follow
    const TypeInfo* m_lastType = nullptr;
    std::string_view m_marker; // the object's last one
    std::int64_t m_flags = 0, m_columns = 0, m_rows = 0;
    UsedNames m_layers, m_linetypes, m_styles, m_applications, m_dimensionStyles;
};

} // namespace

base::Result<FileIndex> FileIndex::make(std::string_view text)
{
    if (text.size() > kLargest)
        return base::Status(base::Failure::TooLarge, base::Reason::DxfTooLarge);
    FileIndex index;
    index.isOld = true; // until the header says otherwise
    if (base::Status done = FileScanner(text, index).scan(); !done)
        return done;
    return index;
}

} // namespace dxf
