// Styles of tables and maps of cell styles; contents of tables that are objects of their own.

#include <db/convert.h>

#include "cell_groups.h"
#include "colors.h"
#include "hook_lists.h"

namespace dxf {

namespace {

constexpr std::uint32_t kRows = 3, kBorders = 6;
constexpr const char* kLaterStyles = "{ACAD_CELLSTYLES";

bool keepTag(ObjectReader& reader, const Tag& tag)
{
    reader.scratch().tags.push_back(tag);
    return true;
}

/// Reads all groups that were kept by what tells them.
void readSequence(ObjectReader& reader, void (*tell)(GroupSequence&, Part))
{
    GroupSequence groups(reader, reader.scratch().tags);
    tell(groups, groups.root());
    if (groups.ok() && !groups.isAtEnd())
        groups.refuse();
}

template <void (*Tell)(GroupSequence&, Part)>
void writeAll(ObjectWriter& writer)
{
    GroupSequence groups(writer);
    Tell(groups, groups.root());
}

template <void (*Tell)(GroupSequence&, Part)>
void readAll(ObjectReader& reader)
{
    readSequence(reader, Tell);
}

void tellStyleMap(GroupSequence& groups, Part map)
{
    const std::uint32_t count = groups.count(map, "styles", 90, 9);
    for (std::uint32_t i = 0; i < count && groups.ok(); ++i)
        tellNamedStyle(groups, groups.element(map, "styles", i));
}

void tellContent(GroupSequence& groups, Part content)
{
    tellTableContent(groups, content, 100);
}

// ---- table styles: three rows in every version, and from 2010 on cell styles besides

void tellLaterStyles(GroupSequence& groups, Part style)
{
    groups.mark(102, kLaterStyles);
    groups.field(style, "rc", 70);
    groups.field(style, "bl1", 90);
    groups.field(style, "bl2", 91);
    groups.field(style, "cellstyle_map", 360);
    tellNamedStyle(groups, groups.inner(style, "table_style"));
    const std::uint32_t count = groups.count(style, "styles", 94, 10);
    for (std::uint32_t i = 0; i < count && groups.ok(); ++i) {
        groups.field(groups.element(style, "styles", i), "key", 90);
        tellNamedStyle(groups, groups.inner(groups.element(style, "styles", i), "style"));
    }
    groups.mark(102, "}");
}

void writeRow(ObjectWriter& writer, const db::RecordView& row)
{
    writer.text(7, writer.nameOf(Table::TextStyle, row.handle("text_style")));
    writer.real(140, row.real("text_height"));
    writer.integer(170, row.integer("alignment"));
    const auto color = [&](int code, const db::RecordView& value) {
        writer.integer(code, colorIndex(value, writer.version()));
        if (isTrueColor(value))
            writer.integer(code + kTrueColor, value.integer("value") & 0xFFFFFF);
        if (const std::u16string name = colorName(value); !name.empty())
            writer.text(code + kColorName, name);
    };
    color(62, row.structure("text_color"));
    color(63, row.structure("fill_color"));
    writer.integer(283, row.integer("fill_on"));
    if (writer.version() >= db::Version::Ac1021) {
        writer.integer(90, row.integer("data_type"));
        writer.integer(91, row.integer("unit_type"));
        writer.text(1, row.text("format"));
    }
    const db::ArrayView borders = row.array("borders");
    for (std::uint32_t i = 0; i < borders.size(); ++i) {
        const int at = static_cast<int>(i);
        writer.integer(274 + at, borders[i].integer("b_lineweight"));
        writer.integer(284 + at, borders[i].integer("b_visible"));
        color(64 + at, borders[i].structure("b_color"));
    }
}

void writeTableStyle(ObjectWriter& writer)
{
    db::Record style = writer.record();
    const bool isLater = writer.version() >= db::Version::Ac1024;
    if (isLater) {
        writer.integer(280, 0);
        if (!db::Conversion(db::Version::Ac1021).convert(style))
            return writer.refuse();
    }
    writer.text(3, style.text("description"));
    writer.integer(70, style.integer("flow"));
    writer.integer(71, style.integer("flags"));
    writer.real(40, style.real("margin_h"));
    writer.real(41, style.real("margin_v"));
    writer.integer(280, style.integer("title_off"));
    writer.integer(281, style.integer("header_off"));
    const db::ArrayView rows = style.array("rows");
    for (std::uint32_t i = 0; i < rows.size(); ++i)
        writeRow(writer, rows[i]);
    if (!isLater)
        return;
    GroupSequence groups(writer);
    tellLaterStyles(groups, groups.root());
}

/// Reads the part that all versions have: its groups may stand in any order within a row.
class StyleRows
{
public:
    explicit StyleRows(ObjectReader& reader) : m_reader(reader) {}

    /// False when the group has no place.
    bool take(const Tag& tag)
    {
        if (tag.code == 7)
            return begin(tag);
        return m_count == 0 ? takeHead(tag) : takeOfRow(tag);
    }

private:
    db::RecordEditor row() { return m_reader.root().array("rows")[m_count - 1]; }
    bool begin(const Tag& tag)
    {
        const std::uint64_t style = m_reader.named(Table::TextStyle, tag.value);
        return m_count < kRows && ++m_count && (style != 0 || trimmed(tag.value).empty()) &&
               row().setHandle("text_style", style);
    }
    bool setInteger(db::RecordEditor to, const char* field, const Tag& tag)
    {
        const auto value = fittedInteger(tag.code, m_reader.integer(tag));
        return value && to.setInteger(field, *value);
    }
    bool takeHead(const Tag& tag)
    {
        db::RecordEditor style = m_reader.root();
        switch (tag.code) {
        case 3: return style.setText("description", m_reader.text(tag));
        case 70: return setInteger(style, "flow", tag);
        case 71: return setInteger(style, "flags", tag);
        case 40: return style.setReal("margin_h", m_reader.real(tag));
        case 41: return style.setReal("margin_v", m_reader.real(tag));
        // The first of two is the version of the data.
        case 280: return style.setInteger("title_off", m_reader.integer(tag) != 0);
        case 281: return style.setInteger("header_off", m_reader.integer(tag) != 0);
        default: return false;
        }
    }
    bool takeOfRow(const Tag& tag)
    {
        switch (tag.code) {
        case 140: return row().setReal("text_height", m_reader.real(tag));
        case 170: return setInteger(row(), "alignment", tag);
        case 283: return row().setInteger("fill_on", m_reader.integer(tag) != 0);
        case 90: return setInteger(row(), "data_type", tag);
        case 91: return setInteger(row(), "unit_type", tag);
        case 1: return row().setText("format", m_reader.text(tag));
        default: return takeColor(tag) || takeBorder(tag);
        }
    }
    /// The colour under 62 + @p at.
    db::RecordEditor colorAt(int at)
    {
        return at == 0   ? row().structure("text_color")
               : at == 1 ? row().structure("fill_color")
                         : row().array("borders")[static_cast<std::uint32_t>(at) - 2].structure(
                               "b_color");
    }
    bool takeColor(const Tag& tag)
    {
        constexpr int kFirst = 62, kCount = kBorders + 2;
        const auto placeFrom = [&](int first) {
            const int at = tag.code - first - kFirst;
            return at >= 0 && at < kCount ? at : -1;
        };
        if (const int at = placeFrom(0); at >= 0) {
            db::RecordEditor color = colorAt(at);
            setColorIndex(color, m_reader.integer(tag), m_reader.version());
            return true;
        }
        if (const int at = placeFrom(kTrueColor); at >= 0) {
            db::RecordEditor color = colorAt(at);
            setTrueColor(color, m_reader.integer(tag));
            return true;
        }
        const int at = placeFrom(kColorName);
        if (at < 0)
            return false;
        db::RecordEditor color = colorAt(at);
        setColorName(color, m_reader.text(tag));
        return true;
    }
    bool takeBorder(const Tag& tag)
    {
        constexpr int kLineweight = 274, kVisible = 284;
        const int place = tag.code % 10 - kLineweight % 10;
        if (tag.code < kLineweight || tag.code >= kVisible + static_cast<int>(kBorders) ||
            place < 0 || place >= static_cast<int>(kBorders))
            return false;
        db::RecordEditor border = row().array("borders")[static_cast<std::uint32_t>(place)];
        if (tag.code < kVisible)
            return setInteger(border, "b_lineweight", tag);
        return border.setInteger("b_visible", m_reader.integer(tag) != 0);
    }

    ObjectReader& m_reader;
    std::uint32_t m_count = 0;
};

void finishTableStyle(ObjectReader& reader)
{
    const std::vector<Tag>& tags = reader.scratch().tags;
    StyleRows rows(reader);
    std::size_t at = 0;
    for (; at < tags.size() && tags[at].code != 102; ++at)
        if (!rows.take(tags[at]))
            return reader.refuse();
    const bool isLater = reader.version() >= db::Version::Ac1024;
    if (at < tags.size()) {
        GroupSequence groups(reader, std::span(tags).subspan(at));
        if (!isLater)
            return groups.refuse();
        tellLaterStyles(groups, groups.root());
        if (groups.ok() && !groups.isAtEnd())
            groups.refuse();
    } else if (isLater) {
        // Other programs tell the rows only, from which the cell styles follow.
        reader.record().setVersion(db::Version::Ac1021);
        if (!db::Conversion(reader.version()).convert(reader.record()))
            reader.refuse();
        reader.record().setVersion(reader.version());
    }
}

constexpr Hook kHooks[] = {
    {.name = "table_style",
     .read = keepTag,
     .write = writeTableStyle,
     .finish = finishTableStyle,
     .takesAll = true},
    {.name = "cell_style_map",
     .read = keepTag,
     .write = writeAll<tellStyleMap>,
     .finish = readAll<tellStyleMap>,
     .takesAll = true},
    {.name = "table_content",
     .read = keepTag,
     .write = writeAll<tellContent>,
     .finish = readAll<tellContent>,
     .takesAll = true},
};

} // namespace

std::span<const Hook> tableStyleHooks()
{
    return kHooks;
}

} // namespace dxf
