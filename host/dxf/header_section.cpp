#include "header_section.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "colors.h"
#include "header_rows.h"
#include "units.h"

namespace dxf {

namespace {

constexpr double kMillisecondsPerDay = 86400000.0;

struct Bits {
    std::string_view name;
    int code;
    int shift;
    std::int64_t mask;
    bool isInverted;
};
// What the record has in its field FLAGS.
constexpr Bits kFlagBits[] = {
    {"CELWEIGHT", 370, 0, 31, false},  {"ENDCAPS", 280, 5, 3, false},
    {"JOINSTYLE", 280, 7, 3, false},   {"LWDISPLAY", 290, 9, 1, true},
    {"XEDIT", 290, 10, 1, true},       {"EXTNAMES", 290, 11, 1, false},
    {"PSTYLEMODE", 290, 13, 1, false}, {"OLESTARTUP", 290, 14, 1, false},
};

struct SummaryText {
    std::string_view name;
    std::u16string db::SummaryInfo::*text;
};
constexpr SummaryText kSummaryTexts[] = {
    {"TITLE", &db::SummaryInfo::title},
    {"SUBJECT", &db::SummaryInfo::subject},
    {"AUTHOR", &db::SummaryInfo::author},
    {"KEYWORDS", &db::SummaryInfo::keywords},
    {"COMMENTS", &db::SummaryInfo::comments},
    {"LASTSAVEDBY", &db::SummaryInfo::lastSavedBy},
    {"REVISIONNUMBER", &db::SummaryInfo::revisionNumber},
};

const HeaderRow* rowNamed(std::string_view name)
{
    const auto rows = headerRows();
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&](const HeaderRow& row) { return row.name == name; });
    return found == rows.end() ? nullptr : &*found;
}

/// The variables of a section, one after the other.
class VariableScanner
{
public:
    explicit VariableScanner(std::string_view text) : m_scanner(text)
    {
        m_hasTag = m_scanner.next(m_tag);
    }
    /// The next name, without its dollar, and its groups.
    bool next(std::string_view& name, std::vector<Tag>& values)
    {
        while (m_hasTag && m_tag.code != 9)
            m_hasTag = m_scanner.next(m_tag);
        if (!m_hasTag)
            return false;
        name = trimmed(m_tag.value);
        name.remove_prefix(name.starts_with('$') ? 1 : 0);
        values.clear();
        while ((m_hasTag = m_scanner.next(m_tag)) && m_tag.code != 9)
            values.push_back(m_tag);
        return true;
    }

private:
    TagScanner m_scanner;
    Tag m_tag;
    bool m_hasTag = false;
};

class HeaderReader
{
public:
    HeaderReader(const Structure& structure, db::Record& record)
        : m_structure(structure), m_header(record)
    {
    }

    void read()
    {
        VariableScanner scanner(m_structure.index().headerText);
        std::string_view name;
        std::vector<Tag> values;
        while (scanner.next(name, values)) {
            if (values.empty())
                continue;
            if (const HeaderRow* row = rowNamed(name))
                setVariable(*row, values);
            else
                setBits(name, values[0]);
        }
    }

private:
    void setBits(std::string_view name, const Tag& tag)
    {
        for (const Bits& bits : kFlagBits) {
            if (bits.name != name)
                continue;
            std::int64_t value = integerIn(tag.value).value_or(0);
            if (bits.code == 370)
                value = lineweightCode(value);
            if (bits.isInverted)
                value = value == 0;
            const std::int64_t before = m_header.integer("FLAGS") & ~(bits.mask << bits.shift);
            m_header.setInteger("FLAGS", before | (value & bits.mask) << bits.shift);
        }
    }

    void setVariable(const HeaderRow& row, const std::vector<Tag>& values)
    {
        const std::string_view field = row.field();
        if (!m_header.has(field))
            return;
        const std::string_view text = values[0].value;
        switch (row.kind) {
        case HeaderRow::Kind::Integer:
            if (const auto value = integerIn(text))
                m_header.setInteger(field, *value);
            return;
        case HeaderRow::Kind::Real:
        case HeaderRow::Kind::Angle:
            if (const auto value = realIn(text))
                m_header.setReal(field,
                                 row.kind == HeaderRow::Kind::Angle ? radiansOf(*value) : *value);
            return;
        case HeaderRow::Kind::Point: return setPoint(field, values);
        case HeaderRow::Kind::Date: return setDate(field, realIn(text).value_or(0));
        case HeaderRow::Kind::Text:
            m_header.setText(field, m_structure.context().coding().decoded(text));
            return;
        case HeaderRow::Kind::Handle: m_header.setHandle(field, handleIn(text).value_or(0)); return;
        case HeaderRow::Kind::Color: {
            db::RecordEditor color = m_header.structure(field);
            setColorIndex(color, integerIn(text).value_or(0), m_structure.index().version);
            return;
        }
        case HeaderRow::Kind::Name: return setName(row, field, text);
        }
    }

    void setPoint(std::string_view field, const std::vector<Tag>& values)
    {
        db::Point point;
        double* const parts[] = {&point.x, &point.y, &point.z};
        for (std::size_t i = 0; i < values.size() && i < 3; ++i)
            *parts[i] = realIn(values[i].value).value_or(0);
        m_header.setPoint(field, point);
    }

    void setDate(std::string_view field, double days)
    {
        if (days < 0 || days > 1e7)
            return;
        const auto day = static_cast<std::int64_t>(days);
        const double rest = (days - static_cast<double>(day)) * kMillisecondsPerDay;
        m_header.setDate(field, day, std::llround(rest));
    }

    void setName(const HeaderRow& row, std::string_view field, std::string_view text)
    {
        if (const std::uint64_t found = m_structure.context().recordNamed(row.table, text))
            m_header.setHandle(field, found);
    }

    const Structure& m_structure;
    db::RecordEditor m_header;
};

// What variables do not tell: it follows from the objects.
void setReferences(const Structure& structure, db::RecordEditor header)
{
    const NameTables& names = structure.context().names();
    const auto setDefault = [&](const char* field, std::uint64_t handle) {
        if (header.handle(field) == 0)
            header.setHandle(field, handle);
    };
    for (const TableFacts& facts : tables())
        header.setHandle(facts.controlVariable, structure.controlHandle(facts.table));
    struct Named {
        const char* field;
        const char16_t* key;
    };
    static constexpr Named kNamed[] = {
        {"DGROUP", u"ACAD_GROUP"},
        {"DMLINESTYLE", u"ACAD_MLINESTYLE"},
        {"DLAYOUT", u"ACAD_LAYOUT"},
        {"DPLOTSETTINGS", u"ACAD_PLOTSETTINGS"},
        {"DPLOTSTYLE", u"ACAD_PLOTSTYLENAME"},
        {"DMATERIAL", u"ACAD_MATERIAL"},
        {"DCOLOR", u"ACAD_COLOR"},
        {"DVISUALSTYLE", u"ACAD_VISUALSTYLE"},
    };
    for (const Named& named : kNamed)
        header.setHandle(named.field, structure.namedObject(named.key));
    header.setHandle("DNAMEDOBJ", structure.namedObjects());
    header.setHandle("BRMSPACE", structure.modelSpace());
    header.setHandle("BRPSPACE", structure.paperSpace());
    header.setHandle("LTBYLAYER", names.find(Table::Linetype, u"ByLayer"));
    header.setHandle("LTBYBLOCK", names.find(Table::Linetype, u"ByBlock"));
    header.setHandle("LTCONTINUOUS", names.find(Table::Linetype, u"Continuous"));
    setDefault("CLAYER", names.find(Table::Layer, u"0"));
    setDefault("CELTYPE", names.find(Table::Linetype, u"ByLayer"));
    setDefault("TEXTSTYLE", names.find(Table::TextStyle, u"Standard"));
    setDefault("DIMTXSTY", names.find(Table::TextStyle, u"Standard"));
    setDefault("CMLSTYLE", names.find(Table::MultilineStyle, u"Standard"));
    setDefault("DIMSTYLE", names.find(Table::DimensionStyle, u"Standard"));
    header.setHandle("HANDSEED", structure.handleSeed());
}

void setEmptyExtents(db::RecordEditor header)
{
    for (const char* field : {"EXTMIN", "PEXTMIN"})
        header.setPoint(field, {1e20, 1e20, 1e20});
    for (const char* field : {"EXTMAX", "PEXTMAX"})
        header.setPoint(field, {-1e20, -1e20, -1e20});
}

} // namespace

std::string_view versionName(db::Version version)
{
    static constexpr std::string_view kNames[] = {"AC1015", "AC1018", "AC1021",
                                                  "AC1024", "AC1027", "AC1032"};
    return kNames[db::indexOf(version)];
}

base::Result<db::Record> readHeader(const Structure& structure)
{
    db::Record record(*db::classNamed("HEADER_VARIABLES"));
    record.setVersion(structure.index().version);
    db::RecordEditor header(record);
    setEmptyExtents(header);
    HeaderReader(structure, record).read();
    setReferences(structure, header);
    return record;
}

std::optional<db::SummaryInfo> readSummary(const Structure& structure)
{
    db::SummaryInfo summary;
    bool hasAny = false;
    VariableScanner scanner(structure.index().headerText);
    std::string_view name;
    std::vector<Tag> values;
    while (scanner.next(name, values)) {
        if (values.empty())
            continue;
        const std::u16string value = structure.context().coding().decoded(values[0].value);
        const auto date = [&](db::SummaryInfo::Time& time) {
            const double days = std::clamp(realIn(values[0].value).value_or(0), 0.0, 1e7);
            time.day = static_cast<std::uint32_t>(days);
            time.milliseconds =
                static_cast<std::uint32_t>(std::llround((days - time.day) * kMillisecondsPerDay));
        };
        for (const SummaryText& text : kSummaryTexts)
            if (text.name == name) {
                summary.*text.text = value;
                hasAny = true;
            }
        if (name == "HYPERLINKBASE")
            summary.hyperlinkBase = value;
        else if (name == "TDCREATE")
            date(summary.created);
        else if (name == "TDUPDATE")
            date(summary.modified);
        else if (name == "TDINDWG")
            date(summary.editing);
        else if (name == "CUSTOMPROPERTYTAG")
            summary.custom.push_back({value, {}});
        else if (name == "CUSTOMPROPERTY" && !summary.custom.empty())
            summary.custom.back().value = value;
    }
    return hasAny || !summary.custom.empty() ? std::optional(summary) : std::nullopt;
}

// ---- writing

namespace {

class HeaderWriter
{
public:
    HeaderWriter(ObjectWriter& writer, const HeaderContent& content)
        : m_writer(writer), m_content(content), m_header(content.header->fields())
    {
        const db::Program& program = content.header->classDef()->program(writer.version());
        for (const db::OpInfo& info : program.info)
            m_stored.insert(info.field);
        collectColors();
    }

    void write()
    {
        m_writer.raw(0, "SECTION");
        m_writer.raw(2, "HEADER");
        begin("ACADVER");
        m_writer.raw(1, versionName(m_writer.version()));
        begin("DWGCODEPAGE");
        m_writer.raw(3, codePageName(m_writer.out().coding().codePage()));
        if (m_content.summary)
            writeSummary(*m_content.summary);
        for (const HeaderRow& row : headerRows())
            writeVariable(row);
        for (const Bits& bits : kFlagBits)
            writeBits(bits);
        writeOthers();
        m_writer.raw(0, "ENDSEC");
    }

private:
    void begin(std::string_view name)
    {
        m_writer.raw(9, "$" + std::string(name));
        m_written.insert(std::string(name));
    }

    // A colour is a struct, whose fields are what programs know.
    void collectColors()
    {
        for (const db::FieldDef& field : m_header.def()->fields)
            if (field.storage == db::Storage::Struct)
                m_stored.insert(&field);
    }

    void writeVariable(const HeaderRow& row)
    {
        const db::FieldDef* field = m_header.def()->find(db::fieldId(row.field()));
        const bool isKept = row.name == "MEASUREMENT"; // no version has it among its variables
        if (!field || (!isKept && !m_stored.contains(field)) || row.since > m_writer.version())
            return;
        if (row.kind == HeaderRow::Kind::Handle && m_header.handle(field->id) == 0)
            return;
        if (row.name == "CPSNID" && m_header.integer("CEPSNTYPE") != 3)
            return;
        begin(row.name);
        switch (row.kind) {
        case HeaderRow::Kind::Integer:
            return m_writer.integer(row.code, m_header.integer(field->id));
        case HeaderRow::Kind::Real: return m_writer.real(row.code, m_header.real(field->id));
        case HeaderRow::Kind::Angle: return m_writer.angle(row.code, m_header.real(field->id));
        case HeaderRow::Kind::Point:
            return m_writer.point(row.code, m_header.point(field->id), field->width);
        case HeaderRow::Kind::Date: {
            const auto date = m_header.date(field->id);
            return m_writer.real(row.code, static_cast<double>(date[0]) +
                                               static_cast<double>(date[1]) / kMillisecondsPerDay);
        }
        case HeaderRow::Kind::Text: return m_writer.text(row.code, m_header.text(field->id));
        case HeaderRow::Kind::Handle: return m_writer.handle(row.code, m_header.handle(field->id));
        case HeaderRow::Kind::Color:
            return m_writer.integer(
                row.code, colorIndex(m_header.structure(field->id), m_content.header->version()));
        case HeaderRow::Kind::Name:
            return m_writer.text(row.code, m_writer.nameOf(row.table, m_header.handle(field->id)));
        }
    }

    void writeBits(const Bits& bits)
    {
        std::int64_t value = m_header.integer("FLAGS") >> bits.shift & bits.mask;
        if (bits.isInverted)
            value = value == 0;
        begin(bits.name);
        m_writer.integer(bits.code, bits.code == 370 ? lineweightValue(value) : value);
    }

    void writeSummary(const db::SummaryInfo& summary)
    {
        if (m_writer.version() < db::Version::Ac1018)
            return;
        for (const SummaryText& text : kSummaryTexts) {
            if ((summary.*text.text).empty())
                continue;
            begin(text.name);
            m_writer.text(1, summary.*text.text);
        }
        for (const db::SummaryInfo::Custom& custom : summary.custom) {
            begin("CUSTOMPROPERTYTAG");
            m_writer.text(1, custom.name);
            begin("CUSTOMPROPERTY");
            m_writer.text(1, custom.value);
        }
    }

    // Variables that we do not know, but for texts about the drawing: those have been told.
    void writeOthers()
    {
        VariableScanner scanner(m_content.before);
        std::string_view name;
        std::vector<Tag> values;
        while (scanner.next(name, values)) {
            if (m_written.contains(std::string(name)) || isSummary(name) || rowNamed(name))
                continue;
            m_writer.raw(9, "$" + std::string(name));
            for (const Tag& tag : values)
                m_writer.raw(tag.code, tag.value);
        }
    }

    static bool isSummary(std::string_view name)
    {
        return name.starts_with("CUSTOMPROPERTY") ||
               std::any_of(std::begin(kSummaryTexts), std::end(kSummaryTexts),
                           [&](const SummaryText& text) { return text.name == name; });
    }

    ObjectWriter& m_writer;
    const HeaderContent& m_content;
    db::RecordView m_header;
    std::set<const db::FieldDef*> m_stored;
    std::set<std::string> m_written;
};

} // namespace

void writeHeader(ObjectWriter& writer, const HeaderContent& content)
{
    HeaderWriter(writer, content).write();
}

void copyHeader(GroupWriter& out, std::string_view before, std::uint64_t handleSeed)
{
    out.raw(0, "SECTION");
    out.raw(2, "HEADER");
    TagScanner scanner(before);
    bool isSeed = false;
    for (Tag tag; scanner.next(tag);) {
        if (tag.code == 9)
            isSeed = tag.value == "$HANDSEED";
        if (isSeed && tag.code == 5)
            out.handle(5, handleSeed);
        else
            out.raw(tag.code, tag.value);
    }
    out.raw(0, "ENDSEC");
}

} // namespace dxf
