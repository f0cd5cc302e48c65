// Styles and contents of cells, as groups in one order.

#include "cell_groups.h"

namespace dxf {

namespace {

constexpr int kBegin = 1, kEnd = 309;

void tellFormat(GroupSequence& groups, Part format)
{
    groups.mark(kBegin, "CONTENTFORMAT_BEGIN");
    groups.fields(format, {"overrides", "flags", "data_type", "unit_type", "format", "rotation",
                           "block_scale", "alignment", "color", "text_style", "text_height"});
    groups.mark(kEnd, "CONTENTFORMAT_END");
}

void tellMargins(GroupSequence& groups, Part style)
{
    constexpr std::int64_t kHasMargins = 1;
    if (!(groups.number(style, "margin_flags") & kHasMargins))
        return;
    groups.mark(301, "MARGIN");
    groups.mark(kBegin, "CELLMARGIN_BEGIN");
    groups.fields(style, {"margin_vert", "margin_horiz", "margin_bottom", "margin_right",
                          "spacing_h", "spacing_v"});
    groups.mark(kEnd, "CELLMARGIN_END");
}

void tellBorder(GroupSequence& groups, Part border)
{
    groups.fields(border, {"edge"});
    if (groups.number(border, "edge") == 0)
        return;
    groups.mark(302, "GRIDFORMAT");
    groups.mark(kBegin, "GRIDFORMAT_BEGIN");
    groups.fields(border, {"b_overrides", "b_type", "b_color", "b_lineweight", "b_ltype",
                           "b_invisible", "b_spacing"});
    groups.mark(kEnd, "GRIDFORMAT_END");
}

void tellCustomData(GroupSequence& groups, Part data)
{
    groups.mark(301, "CUSTOMDATA");
    groups.mark(kBegin, "DATAMAP_BEGIN");
    const std::uint32_t count = groups.count(data, "values", 90, 5);
    for (std::uint32_t i = 0; i < count && groups.ok(); ++i) {
        groups.fields(groups.element(data, "values", i), {"key"});
        groups.mark(301, "DATAMAP_VALUE");
        tellValue(groups, groups.inner(groups.element(data, "values", i), "v"));
    }
    groups.mark(kEnd, "DATAMAP_END");
}

enum ContentKind : std::int64_t { kValue = 1, kField = 2, kBlock = 4 };

void tellContent(GroupSequence& groups, Part content)
{
    groups.mark(302, "CONTENT");
    groups.mark(kBegin, "CELLCONTENT_BEGIN");
    groups.fields(content, {"type"});
    switch (groups.number(content, "type")) {
    case kValue:
        groups.mark(300, "VALUE");
        tellValue(groups, groups.inner(content, "value"));
        break;
    case kField: groups.fields(content, {"field"}); break;
    case kBlock: groups.fields(content, {"block"}); break;
    default: break;
    }
    const std::uint32_t count = groups.count(content, "attrs", 91, 3);
    for (std::uint32_t i = 0; i < count && groups.ok(); ++i)
        groups.fields(groups.element(content, "attrs", i), {"attdef", "text", "index"});
    groups.mark(kEnd, "CELLCONTENT_END");
    groups.mark(kBegin, "FORMATTEDCELLCONTENT_BEGIN");
    groups.fields(content, {"has_format"});
    if (groups.number(content, "has_format") != 0) {
        groups.mark(300, "CONTENTFORMAT");
        tellFormat(groups, groups.inner(content, "fmt"));
    }
    groups.mark(kEnd, "FORMATTEDCELLCONTENT_END");
}

void tellGeometry(GroupSequence& groups, Part cell)
{
    groups.fields(cell, {"has_geom"});
    if (groups.number(cell, "has_geom") == 0)
        return;
    groups.fields(cell, {"g_unknown", "g_width", "g_height"});
    const std::uint32_t count = groups.count(cell, "geoms", 94, 11);
    groups.fields(cell, {"g_ref"});
    for (std::uint32_t i = 0; i < count && groups.ok(); ++i)
        groups.fields(
            groups.element(cell, "geoms", i),
            {"top_left", "center", "content_width", "content_height", "width", "height", "flags"});
}

void tellCell(GroupSequence& groups, Part cell)
{
    groups.mark(300, "CELL");
    groups.mark(kBegin, "LINKEDTABLEDATACELL_BEGIN");
    groups.fields(cell, {"flags", "tooltip", "custom"});
    tellCustomData(groups, groups.inner(cell, "cdata"));
    groups.fields(cell, {"has_link"});
    if (groups.number(cell, "has_link") != 0)
        groups.fields(cell, {"datalink", "link_rows", "link_cols", "link_unknown"});
    const std::uint32_t count = groups.count(cell, "contents", 95, 8);
    for (std::uint32_t i = 0; i < count && groups.ok(); ++i)
        tellContent(groups, groups.element(cell, "contents", i));
    groups.mark(kEnd, "LINKEDTABLEDATACELL_END");
    groups.mark(kBegin, "FORMATTEDTABLEDATACELL_BEGIN");
    groups.mark(300, "CELLTABLEFORMAT");
    tellCellStyle(groups, groups.inner(cell, "style"));
    groups.mark(kEnd, "FORMATTEDTABLEDATACELL_END");
    groups.mark(kBegin, "TABLECELL_BEGIN");
    groups.fields(cell, {"style_id"});
    tellGeometry(groups, cell);
    groups.mark(kEnd, "TABLECELL_END");
}

void tellColumn(GroupSequence& groups, Part column)
{
    groups.mark(300, "COLUMN");
    groups.mark(kBegin, "LINKEDTABLEDATACOLUMN_BEGIN");
    groups.fields(column, {"col_name", "col_custom"});
    tellCustomData(groups, groups.inner(column, "col_data"));
    groups.mark(kEnd, "LINKEDTABLEDATACOLUMN_END");
    groups.mark(kBegin, "FORMATTEDTABLEDATACOLUMN_BEGIN");
    groups.mark(300, "COLUMNTABLEFORMAT");
    tellCellStyle(groups, groups.inner(column, "col_style"));
    groups.mark(kEnd, "FORMATTEDTABLEDATACOLUMN_END");
    groups.mark(kBegin, "TABLECOLUMN_BEGIN");
    groups.fields(column, {"col_style_id", "col_width"});
    groups.mark(kEnd, "TABLECOLUMN_END");
}

void tellRow(GroupSequence& groups, Part row)
{
    groups.mark(301, "ROW");
    groups.mark(kBegin, "LINKEDTABLEDATAROW_BEGIN");
    const std::uint32_t count = groups.count(row, "cells", 90, 20);
    for (std::uint32_t i = 0; i < count && groups.ok(); ++i)
        tellCell(groups, groups.element(row, "cells", i));
    groups.fields(row, {"row_custom"});
    tellCustomData(groups, groups.inner(row, "row_data"));
    groups.mark(kEnd, "LINKEDTABLEDATAROW_END");
    groups.mark(kBegin, "FORMATTEDTABLEDATAROW_BEGIN");
    groups.mark(300, "ROWTABLEFORMAT");
    tellCellStyle(groups, groups.inner(row, "row_style"));
    groups.mark(kEnd, "FORMATTEDTABLEDATAROW_END");
    groups.mark(kBegin, "TABLEROW_BEGIN");
    groups.fields(row, {"row_style_id", "row_height"});
    groups.mark(kEnd, "TABLEROW_END");
}

enum ValueType : std::int64_t { kUnknown = 0, kLong = 1, kReal = 2, kString = 4, kObject = 64 };

void tellPayload(GroupSequence& groups, Part value)
{
    switch (groups.number(value, "type")) {
    case kUnknown:
    case kLong: return groups.fields(value, {"long"});
    case kReal: return groups.fields(value, {"real"});
    case kObject: return groups.fields(value, {"id"});
    case kString: return groups.textInBytes(value, "bytes", 2, 1);
    default: return groups.bytes(value, "bytes", 92, 310);
    }
}

} // namespace

void tellValue(GroupSequence& groups, Part value)
{
    constexpr std::int64_t kHasNone = 1;
    const bool isLater = groups.version() >= db::Version::Ac1021;
    if (isLater)
        groups.fields(value, {"flags"});
    groups.fields(value, {"type"});
    if (!isLater || !(groups.number(value, "flags") & kHasNone))
        tellPayload(groups, value);
    if (isLater)
        groups.fields(value, {"unit_type", "format", "text"});
    groups.mark(304, "ACVALUE_END");
}

void tellCellStyle(GroupSequence& groups, Part style)
{
    groups.mark(kBegin, "TABLEFORMAT_BEGIN");
    groups.fields(style, {"type", "has_data"});
    if (groups.number(style, "has_data") != 0) {
        groups.fields(style, {"overrides", "merge_flags", "bg_color", "layout"});
        groups.mark(300, "CONTENTFORMAT");
        tellFormat(groups, groups.inner(style, "fmt"));
        groups.fields(style, {"margin_flags"});
        tellMargins(groups, style);
        const std::uint32_t count = groups.count(style, "borders", 94, 1);
        for (std::uint32_t i = 0; i < count && groups.ok(); ++i)
            tellBorder(groups, groups.element(style, "borders", i));
    }
    groups.mark(kEnd, "TABLEFORMAT_END");
}

void tellNamedStyle(GroupSequence& groups, Part named)
{
    groups.mark(300, "CELLSTYLE");
    tellCellStyle(groups, groups.inner(named, "style"));
    groups.mark(kBegin, "CELLSTYLE_BEGIN");
    groups.fields(named, {"id", "cls", "name"});
    groups.mark(kEnd, "CELLSTYLE_END");
}

void tellTableContent(GroupSequence& groups, Part content, int markerCode)
{
    constexpr std::uint32_t kPerLine = 15; // groups of a row or column at least
    groups.fields(content, {"name", "description"});
    groups.mark(markerCode, "AcDbLinkedTableData");
    const std::uint32_t columns = groups.count(content, "cols", 90, kPerLine);
    for (std::uint32_t i = 0; i < columns && groups.ok(); ++i)
        tellColumn(groups, groups.element(content, "cols", i));
    const std::uint32_t rows = groups.count(content, "rows", 91, kPerLine);
    for (std::uint32_t i = 0; i < rows && groups.ok(); ++i)
        tellRow(groups, groups.element(content, "rows", i));
    groups.count(content, "fields", 92, 1);
    groups.elements(content, "fields", 360);
    groups.mark(markerCode, "AcDbFormattedTableData");
    groups.mark(300, "TABLEFORMAT");
    tellCellStyle(groups, groups.inner(content, "table_style"));
    const std::uint32_t merged = groups.count(content, "merged", 90, 4);
    for (std::uint32_t i = 0; i < merged && groups.ok(); ++i)
        groups.fields(groups.element(content, "merged", i), {"top", "left", "bottom", "right"});
    groups.mark(markerCode, "AcDbTableContent");
    groups.fields(content, {"tablestyle"});
}

} // namespace dxf
