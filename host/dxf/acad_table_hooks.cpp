// Tables: cells as versions up to 2007 store them, and contents with styles of their own later.

#include <algorithm>
#include <bit>
#include <map>
#include <set>

#include "cell_groups.h"
#include "hook_lists.h"

namespace dxf {

namespace {

constexpr const char* kLaterPart = "{ACAD_TABLECONTENT";
constexpr int kStyle = 342, kBlock = 343;

bool isLater(const GroupSequence& groups)
{
    return groups.version() >= db::Version::Ac1024;
}

/// A field that is stored when a bit of the flags is set.
struct Override {
    std::int64_t bit;
    const char* field;
};

constexpr Override kCellOverrides[] = {
    {0x1, "alignment"},      {0x2, "fill_none"},    {0x4, "fill_color"},     {0x8, "content_color"},
    {0x10, "text_style"},    {0x20, "text_height"}, {0x40, "top_color"},     {0x400, "top_lw"},
    {0x4000, "top_vis"},     {0x80, "right_color"}, {0x800, "right_lw"},     {0x8000, "right_vis"},
    {0x100, "bottom_color"}, {0x1000, "bottom_lw"}, {0x10000, "bottom_vis"}, {0x200, "left_color"},
    {0x2000, "left_lw"},     {0x20000, "left_vis"},
};
constexpr Override kTableOverrides[] = {
    {0x1, "title_off"},          {0x4, "flow"},
    {0x8, "margin_h"},           {0x10, "margin_v"},
    {0x20, "title_color"},       {0x40, "header_color"},
    {0x80, "data_color"},        {0x100, "title_fill_none"},
    {0x200, "header_fill_none"}, {0x400, "data_fill_none"},
    {0x800, "title_fill"},       {0x1000, "header_fill"},
    {0x2000, "data_fill"},       {0x4000, "title_align"},
    {0x8000, "header_align"},    {0x10000, "data_align"},
    {0x20000, "title_style"},    {0x40000, "header_style"},
    {0x80000, "data_style"},     {0x100000, "title_height"},
    {0x200000, "header_height"}, {0x400000, "data_height"},
};

// Written in this order; read in any, as far as their codes tell them apart.
void tellOverrides(GroupSequence& groups, Part part, const char* flags,
                   std::span<const Override> all)
{
    std::vector<const char*> pending;
    for (const Override& one : all)
        if (groups.number(part, flags) & one.bit)
            pending.push_back(one.field);
    while (!pending.empty() && groups.ok()) {
        const auto next = std::find_if(pending.begin(), pending.end(), [&](const char* field) {
            return !groups.isReading() || groups.isNext(part.def->find(db::fieldId(field))->dxf);
        });
        if (next == pending.end())
            return;
        groups.nameOrField(part, *next);
        pending.erase(next);
    }
}

// ---- up to 2007

enum CellType : std::int64_t { kText = 1, kBlockCell = 2 };

void tellAttribute(GroupSequence& groups, Part attribute, std::uint32_t at)
{
    constexpr int kIndex = 90;
    const std::int64_t expected = static_cast<std::int64_t>(at) + 1;
    groups.fields(attribute, {"a_def"});
    groups.fieldUnless(attribute, "a_index", kIndex, expected);
    groups.fields(attribute, {"a_text"});
}

void tellCellContent(GroupSequence& groups, Part cell)
{
    constexpr int kField = 344, kBlockRecord = 340;
    const std::int64_t type = groups.number(cell, "type");
    groups.handleIfAny(cell, "content", type == kBlockCell ? kBlockRecord : kField);
    if (type != kBlockCell)
        return;
    groups.fields(cell, {"block_scale"});
    if (!groups.when(cell, "has_attrs", 179))
        return;
    const std::uint32_t count = groups.count(cell, "attrs", 179, 2);
    for (std::uint32_t i = 0; i < count && groups.ok(); ++i)
        tellAttribute(groups, groups.element(cell, "attrs", i), i);
}

constexpr int kFlags = 177, kWideFlags = 91;

bool hasWideFlags(const GroupSequence& groups, Part cell)
{
    if (groups.isReading())
        return groups.isNext(kWideFlags);
    return groups.version() == db::Version::Ac1021 || groups.number(cell, "cflags") > INT16_MAX;
}

// Flags of borders do not fit the shorter number.
void tellFlags(GroupSequence& groups, Part cell)
{
    const int code = hasWideFlags(groups, cell) ? kWideFlags : kFlags;
    if (!groups.when(cell, "has_override", code))
        return;
    groups.field(cell, "cflags", code);
    groups.fields(cell, {"virtual_edges"});
}

void tellCell(GroupSequence& groups, Part cell)
{
    groups.fields(cell, {"type", "edge_flags", "merged", "autofit", "merge_w", "merge_h"});
    // Programs differ in where the flags stand.
    const bool isFirst = groups.isNext(kFlags) || groups.isNext(kWideFlags);
    if (isFirst)
        tellFlags(groups, cell);
    groups.fields(cell, {"rotation"});
    tellCellContent(groups, cell);
    if (!isFirst)
        tellFlags(groups, cell);
    tellOverrides(groups, cell, "cflags", kCellOverrides);
    if (groups.version() == db::Version::Ac1021) {
        groups.field(cell, "unknown", 92);
        groups.mark(301, "CELL_VALUE");
        tellValue(groups, groups.inner(cell, "value"));
    } else if (groups.number(cell, "type") == kText && groups.view(cell).handle("content") == 0) {
        groups.longText(cell, "text", 2, 1);
    }
}

void tellBorders(GroupSequence& groups, const char* has, const char* flags, int flagsCode,
                 const char* array, int code)
{
    constexpr std::int64_t kBits = 0x3FFFF;
    const Part table = groups.root();
    if (!groups.when(table, has, flagsCode))
        return;
    groups.field(table, flags, flagsCode);
    const auto bits = static_cast<std::uint64_t>(groups.number(table, flags) & kBits);
    groups.resize(table, array, std::popcount(bits), 1);
    groups.elements(table, array, code);
}

void tellHead(GroupSequence& groups)
{
    const Part table = groups.root();
    groups.optionalMark(280, "0"); // version of the data
    groups.field(table, "tablestyle", kStyle);
    groups.repeat(table, "block", kBlock);
    groups.fields(table, {"x_dir", "flags"});
}

void tellEarlier(GroupSequence& groups)
{
    const Part table = groups.root();
    tellHead(groups);
    const std::int64_t rows = groups.count(table, "row_heights", 91, 1);
    const std::int64_t columns = groups.count(table, "col_widths", 92, 1);
    if (groups.when(table, "has_overrides", 93)) {
        groups.fields(table, {"tflags"});
        tellOverrides(groups, table, "tflags", kTableOverrides);
    }
    tellBorders(groups, "has_border_colors", "bc_flags", 94, "border_colors", 64);
    tellBorders(groups, "has_border_lw", "bl_flags", 95, "border_lineweights", 274);
    tellBorders(groups, "has_border_vis", "bv_flags", 96, "border_visibilities", 284);
    groups.elements(table, "row_heights", 141);
    groups.elements(table, "col_widths", 142);
    groups.resize(table, "cells", rows * columns, 7);
    const std::uint32_t cells = groups.view(table).array("cells").size();
    for (std::uint32_t i = 0; i < cells && groups.ok(); ++i)
        tellCell(groups, groups.element(table, "cells", i));
}

// ---- from 2010 on

void tellBreaks(GroupSequence& groups, Part table)
{
    groups.field(table, "has_breaks", 92);
    if (groups.number(table, "has_breaks") != 0) {
        groups.field(table, "break_options", 93);
        groups.field(table, "break_flow", 94);
        groups.field(table, "break_spacing", 40);
        groups.field(table, "break_u1", 95);
        groups.field(table, "break_u2", 96);
        const std::uint32_t breaks = groups.count(table, "breaks", 97, 5);
        for (std::uint32_t i = 0; i < breaks && groups.ok(); ++i) {
            const Part one = groups.element(table, "breaks", i);
            groups.field(one, "bk_pt", 10);
            groups.field(one, "bk_height", 40);
            groups.field(one, "bk_flags", 90);
        }
    }
    const std::uint32_t ranges = groups.count(table, "ranges", 98, 5);
    for (std::uint32_t i = 0; i < ranges && groups.ok(); ++i) {
        const Part one = groups.element(table, "ranges", i);
        groups.field(one, "rg_pt", 10);
        groups.field(one, "rg_start", 90);
        groups.field(one, "rg_end", 91);
    }
}

void tellLater(GroupSequence& groups)
{
    const Part table = groups.root();
    groups.mark(102, kLaterPart);
    groups.field(table, "rc", 70);
    groups.field(table, "bs", 71);
    groups.field(table, "h1", 330);
    groups.field(table, "bl", 90);
    if (groups.version() == db::Version::Ac1024)
        groups.field(table, "b1", 290);
    else
        groups.field(table, "bl2", 91);
    groups.field(table, "x_dir", 11);
    tellBreaks(groups, table);
    tellTableContent(groups, groups.inner(table, "content"), 300);
    groups.mark(102, "}");
}

/// The same table as cells of a text or a block each, which is what other programs look at.
class PlainTable
{
public:
    explicit PlainTable(ObjectWriter& writer)
        : m_writer(writer), m_content(writer.root().structure("content")),
          m_rows(m_content.array("rows")), m_columns(m_content.array("cols"))
    {
    }

    void write()
    {
        const db::RecordView table = m_writer.root();
        m_writer.integer(280, 0);
        m_writer.handle(kStyle, m_content.handle("tablestyle"));
        m_writer.handle(kBlock, table.handle("block"));
        m_writer.point(11, table.point("x_dir"));
        constexpr int kPlainFlags = 22;
        m_writer.integer(90, kPlainFlags);
        m_writer.integer(91, m_rows.size());
        m_writer.integer(92, m_columns.size());
        for (const int code : {93, 94, 95, 96})
            m_writer.integer(code, 0);
        for (std::uint32_t i = 0; i < m_rows.size(); ++i)
            m_writer.real(141, m_rows[i].real("row_height"));
        for (std::uint32_t i = 0; i < m_columns.size(); ++i)
            m_writer.real(142, m_columns[i].real("col_width"));
        findMerged();
        for (std::uint32_t row = 0; row < m_rows.size(); ++row) {
            const db::ArrayView cells = m_rows[row].array("cells");
            for (std::uint32_t i = 0; i < m_columns.size() && i < cells.size(); ++i)
                writeCell(cells[i], {row, i});
        }
    }

private:
    using Place = std::pair<std::int64_t, std::int64_t>; // row, column

    void findMerged()
    {
        const db::ArrayView merged = m_content.array("merged");
        for (std::uint32_t i = 0; i < merged.size(); ++i) {
            const Place first{merged[i].integer("top"), merged[i].integer("left")};
            const Place last{merged[i].integer("bottom"), merged[i].integer("right")};
            m_merged[first] = {last.first - first.first + 1, last.second - first.second + 1};
            cover(first, last);
        }
    }

    // Ranges that overlap, which no program makes, are not worth looking at each cell twice.
    void cover(const Place& first, const Place& last)
    {
        const std::int64_t rows = m_rows.size(), columns = m_columns.size();
        for (std::int64_t row = std::max<std::int64_t>(first.first, 0);
             row <= last.first && row < rows; ++row)
            for (std::int64_t i = std::max<std::int64_t>(first.second, 0);
                 i <= last.second && i < columns; ++i)
                if (Place(row, i) != first && !m_covered.emplace(row, i).second)
                    return;
    }

    void writeCell(const db::RecordView& cell, const Place& place)
    {
        const db::ArrayView contents = cell.array("contents");
        const db::RecordView content = contents.isEmpty() ? db::RecordView() : contents[0];
        constexpr std::int64_t kField = 2, kBlockContent = 4;
        const std::int64_t kind = content ? content.integer("type") : 0;
        const auto merged = m_merged.find(place);
        const Place size = merged == m_merged.end() ? Place(1, 1) : merged->second;
        m_writer.integer(171, kind == kBlockContent ? kBlockCell : kText);
        m_writer.integer(172, 0);
        m_writer.integer(173, m_covered.contains(place) ? 1 : 0);
        m_writer.integer(174, 0);
        m_writer.integer(175, size.second);
        m_writer.integer(176, size.first);
        m_writer.real(145, 0);
        if (kind == kField)
            m_writer.handle(344, content.handle("field"));
        if (kind == kBlockContent) {
            m_writer.handle(340, content.handle("block"));
            m_writer.real(144, 1);
            m_writer.integer(179, 0);
        }
        for (const int code : {91, 178, 92})
            m_writer.integer(code, 0);
        m_writer.raw(301, "CELL_VALUE");
        writeValue(kind == 1 ? content.structure("value") : db::RecordView());
    }

    void writeValue(const db::RecordView& value)
    {
        GroupSequence groups(m_writer);
        if (value)
            return tellValue(groups, {value.def(), value.base()});
        for (const int code : {93, 90, 91, 94})
            m_writer.integer(code, 0);
        m_writer.raw(300, "");
        m_writer.raw(302, "");
        m_writer.raw(304, "ACVALUE_END");
    }

    ObjectWriter& m_writer;
    const db::RecordView m_content;
    const db::ArrayView m_rows, m_columns;
    std::map<Place, Place> m_merged; // by the first cell: rows and columns
    std::set<Place> m_covered;       // the other cells of these
};

// ---- both

bool keepTag(ObjectReader& reader, const Tag& tag)
{
    reader.scratch().tags.push_back(tag);
    return true;
}

void writeTable(ObjectWriter& writer)
{
    GroupSequence groups(writer);
    if (!isLater(groups))
        return tellEarlier(groups);
    PlainTable(writer).write();
    tellLater(groups);
}

void finishTable(ObjectReader& reader)
{
    const std::vector<Tag>& tags = reader.scratch().tags;
    const auto later = std::find_if(tags.begin(), tags.end(), [](const Tag& tag) {
        return tag.code == 102 && trimmed(tag.value) == kLaterPart;
    });
    const bool isNewer = reader.version() >= db::Version::Ac1024;
    const auto skipped = isNewer ? static_cast<std::size_t>(later - tags.begin()) : 0;
    GroupSequence groups(reader, std::span(tags).subspan(skipped));
    if (isNewer)
        tellLater(groups);
    else
        tellEarlier(groups);
    if (groups.ok() && !groups.isAtEnd())
        groups.refuse();
}

constexpr Hook kHooks[] = {
    {.name = "table",
     .read = keepTag,
     .write = writeTable,
     .finish = finishTable,
     .takesAll = true},
};

} // namespace

std::span<const Hook> acadTableHooks()
{
    return kHooks;
}

} // namespace dxf
