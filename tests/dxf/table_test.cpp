#include <db/record_editor.h>

#include "drawing_tools.h"
#include "told_objects.h"

namespace {

constexpr std::uint64_t kNew = 0x500;
constexpr std::uint32_t kBlue = 0xC2102080;

const char* const kVersions[] = {"ac1015", "ac1018", "ac1021", "ac1024", "ac1027", "ac1032"};

/// The bytes of a text as values hold it.
std::vector<std::uint8_t> bytesOfText(std::u16string_view text)
{
    std::vector<std::uint8_t> bytes;
    for (const char16_t c : std::u16string(text) + u'\0') {
        bytes.push_back(static_cast<std::uint8_t>(c & 0xFF));
        bytes.push_back(static_cast<std::uint8_t>(c >> 8));
    }
    return bytes;
}

void fillText(db::RecordEditor value, std::u16string_view text)
{
    value.setInteger("flags", 4);
    value.setInteger("type", 4);
    value.setText("text", text);
    value.setBytes("bytes", bytesOfText(text));
}

/// A table with one row of three cells, of every type: without styles of its own.
void fillCells(db::RecordEditor table, db::Version version, std::uint64_t style)
{
    table.setInteger("flags", 22);
    table.array("row_heights").resize(1);
    table.array("row_heights").setReal(0, 0.5);
    table.array("col_widths").resize(3);
    table.array("col_widths").setReal(1, 2.5);
    table.array("cells").resize(3);
    db::RecordEditor text = table.array("cells")[0];
    text.setInteger("type", 1);
    text.setInteger("merge_w", 2);
    text.setReal("rotation", 0.5);
    if (version == db::Version::Ac1021)
        fillText(text.structure("value"), u"Maß");
    else
        text.setText("text", std::u16string(300, u'x') + u" Maß");
    db::RecordEditor block = table.array("cells")[1];
    block.setInteger("type", 2);
    block.setHandle("content", table.handle("block"));
    block.setReal("block_scale", 0.25);
    block.setInteger("has_attrs", 1);
    block.array("attrs").resize(2);
    for (std::uint32_t i = 0; i < 2; ++i) {
        block.array("attrs")[i].setInteger("a_index", i == 0 ? 1 : 7);
        block.array("attrs")[i].setText("a_text", u"Wert");
    }
    db::RecordEditor styled = table.array("cells")[2];
    styled.setInteger("type", 1);
    styled.setInteger("has_override", 1);
    styled.setInteger("cflags", 0x4 | 0x10 | 0x20 | 0x40 | 0x8000);
    styled.structure("fill_color").setInteger("value", static_cast<std::int32_t>(kBlue));
    styled.setHandle("text_style", style);
    styled.setReal("text_height", 0.75);
    styled.setInteger("right_vis", 1);
    table.setInteger("has_overrides", 1);
    table.setInteger("tflags", 0x8 | 0x800 | 0x20000);
    table.setReal("margin_h", 0.125);
    table.setHandle("title_style", style);
    table.setInteger("has_border_colors", 1);
    table.setInteger("bc_flags", 0x5);
    table.array("border_colors").resize(2);
    table.array("border_colors")[1].setInteger("value", static_cast<std::int32_t>(kBlue));
    table.setInteger("has_border_lw", 1);
    table.setInteger("bl_flags", 0x2);
    table.array("border_lineweights").resize(1);
    table.array("border_lineweights").setInteger(0, -2);
}

/// Two rows; the first is one cell with a text, the second has a number, a block and a field.
void fillContent(db::RecordEditor content, std::uint64_t block)
{
    content.setText("name", u"Liste");
    content.array("cols").resize(2);
    for (std::uint32_t i = 0; i < 2; ++i)
        content.array("cols")[i].setReal("col_width", 2.5 + i);
    content.array("rows").resize(2);
    for (std::uint32_t row = 0; row < 2; ++row) {
        content.array("rows")[row].setReal("row_height", 0.5 + row);
        content.array("rows")[row].array("cells").resize(2);
    }
    const auto cell = [&](std::uint32_t row, std::uint32_t column) {
        return content.array("rows")[row].array("cells")[column];
    };
    cell(0, 0).setText("tooltip", u"Tipp");
    cell(0, 0).setInteger("style_id", 1);
    cell(0, 0).array("contents").resize(1);
    cell(0, 0).array("contents")[0].setInteger("type", 1);
    fillText(cell(0, 0).array("contents")[0].structure("value"), u"Übersicht");
    cell(1, 0).array("contents").resize(2);
    cell(1, 0).array("contents")[0].setInteger("type", 1);
    cell(1, 0).array("contents")[0].structure("value").setInteger("type", 2);
    cell(1, 0).array("contents")[0].structure("value").setReal("real", 1.5);
    db::RecordEditor dated = cell(1, 0).array("contents")[1].structure("value");
    cell(1, 0).array("contents")[1].setInteger("type", 1);
    dated.setInteger("type", 8);
    dated.setBytes("bytes", bytesOf("0123456789abcdef"));
    cell(1, 1).array("contents").resize(1);
    cell(1, 1).array("contents")[0].setInteger("type", 4);
    cell(1, 1).array("contents")[0].setHandle("block", block);
    cell(1, 1).setInteger("has_geom", 1);
    cell(1, 1).setReal("g_width", 3);
    cell(1, 1).array("geoms").resize(1);
    cell(1, 1).array("geoms")[0].setPoint("center", {1, 2, 3});
    db::RecordEditor data = cell(1, 1).structure("cdata");
    data.array("values").resize(1);
    data.array("values")[0].setText("key", u"Schlüssel");
    data.array("values")[0].structure("v").setInteger("long", 17);
    content.array("merged").resize(1);
    content.array("merged")[0].setInteger("right", 1);
}

/// A new table in the drawing's model space.
db::RecordEditor addTable(const db::DrawingFile& file, Edit& edit)
{
    auto header = file.header();
    EXPECT_TRUE(header);
    const std::uint64_t space = header->handle("BRMSPACE");
    db::Record& owner = edit.change(space);
    EXPECT_TRUE(db::fillOwnedFromChain(file, owner));
    db::ArrayEditor owned = db::RecordEditor(owner).array("owned");
    owned.setHandle(owned.add(), kNew);
    db::RecordEditor table(edit.add("ACAD_TABLE", kNew));
    table.setInteger("entmode", 2);
    table.setHandle("layer", recordOf(file, handlesOf(file, "LINE")[0]).handle("layer"));
    table.setHandle("block", header->handle("BRPSPACE"));
    table.setPoint("ins_pt", {10, 20, 0});
    return table;
}

std::vector<std::string> lostOf(Edit& edit, db::Version version)
{
    const OpenFile back = edit.written(version);
    if (!back)
        return {"unreadable"};
    const db::Record& made = edit.changed().at(kNew);
    std::vector<std::string> lost = differences(made, recordOf(*back, kNew), {});
    std::erase_if(lost, [&](const std::string& difference) {
        return isAccepted(made.classDef()->name(), difference);
    });
    return lost;
}

TEST(Table, ComesBackWithItsCells)
{
    for (const char* version : kVersions) {
        const OpenFile drawing = openMinimal(std::string("line-") + version + ".dwg");
        ASSERT_TRUE(drawing);
        Edit edit(*drawing);
        db::RecordEditor table = addTable(*drawing, edit);
        if (drawing->version() < db::Version::Ac1024)
            fillCells(table, drawing->version(), handlesOf(*drawing, "STYLE")[0]);
        else
            fillContent(table.structure("content"), table.handle("block"));

        EXPECT_EQ(lostOf(edit, drawing->version()), std::vector<std::string>()) << version;
    }
}

TEST(Table, IsReadWithItsOverridesInAnotherOrder)
{
    const OpenFile drawing = openMinimal("line-ac1018.dwg");
    ASSERT_TRUE(drawing);
    Edit edit(*drawing);
    db::RecordEditor table = addTable(*drawing, edit);
    fillCells(table, drawing->version(), handlesOf(*drawing, "STYLE")[0]);
    ASSERT_TRUE(edit.written(drawing->version()));
    const auto swap = [&](const std::string& first, const std::string& second) {
        const auto at = edit.text.find(first + second);
        ASSERT_NE(at, std::string::npos) << first << second;
        edit.text.replace(at, first.size() + second.size(), second + first);
    };
    swap("140\r\n0.75\r\n", " 69\r\n256\r\n");
    swap("145\r\n0.0\r\n", " 91\r\n32884\r\n178\r\n0\r\n");

    const OpenFile file = openDxf(edit.text);

    ASSERT_TRUE(file);
    EXPECT_EQ(differences(edit.changed().at(kNew), recordOf(*file, kNew)),
              std::vector<std::string>());
}

TEST(Table, HasPlainCellsForOtherPrograms)
{
    const OpenFile drawing = openMinimal("line-ac1032.dwg");
    ASSERT_TRUE(drawing);
    Edit edit(*drawing);
    db::RecordEditor table = addTable(*drawing, edit);
    fillContent(table.structure("content"), table.handle("block"));

    ASSERT_TRUE(edit.written(drawing->version()));

    const auto begin = edit.text.find("AcDbTable\r\n");
    ASSERT_NE(begin, std::string::npos);
    const std::string plain = edit.text.substr(begin, edit.text.find("{ACAD_TABLECONTENT") - begin);
    EXPECT_NE(plain.find(" 91\r\n2\r\n 92\r\n2\r\n"), std::string::npos) << plain;
    EXPECT_NE(plain.find("175\r\n2\r\n176\r\n1\r\n"), std::string::npos) << plain;
    EXPECT_NE(plain.find("173\r\n1\r\n"), std::string::npos) << plain;
    EXPECT_NE(plain.find("  1\r\nÜbersicht\r\n"), std::string::npos) << plain;
}

TEST(TableContent, ComesBack)
{
    for (const char* version : kVersions) {
        const OpenFile drawing = openMinimal(std::string("line-") + version + ".dwg");
        ASSERT_TRUE(drawing);
        Edit edit(*drawing);
        db::RecordEditor content(edit.add("TABLECONTENT", kNew));
        fillContent(content, 0x20);

        EXPECT_EQ(lostOf(edit, drawing->version()), std::vector<std::string>()) << version;
    }
}

TEST(TableGeometry, ComesBack)
{
    for (const char* version : kVersions) {
        const OpenFile drawing = openMinimal(std::string("line-") + version + ".dwg");
        ASSERT_TRUE(drawing);
        Edit edit(*drawing);
        db::RecordEditor geometry(edit.add("TABLEGEOMETRY", kNew));
        geometry.setInteger("n_rows", 1);
        geometry.setInteger("n_cols", 2);
        geometry.array("cells").resize(2);
        for (std::uint32_t i = 0; i < 2; ++i) {
            geometry.array("cells")[i].setReal("c_width", 2.5);
            geometry.array("cells")[i].array("geoms").resize(2 - i);
            geometry.array("cells")[i].array("geoms")[0].setPoint("center", {1, 2, 3});
            geometry.array("cells")[i].array("geoms")[0].setInteger("flags", 4);
        }

        EXPECT_EQ(lostOf(edit, drawing->version()), std::vector<std::string>()) << version;
    }
}

} // namespace
