#include <db/record_editor.h>

#include "drawing_tools.h"
#include "record_difference.h"

namespace {

constexpr std::uint64_t kNew = 0x500;
constexpr std::uint32_t kRed = 0xC2F01020;

const char* const kVersions[] = {"ac1015", "ac1018", "ac1021", "ac1024", "ac1027", "ac1032"};

/// A cell style with values of its own everywhere.
void fillStyle(db::RecordEditor style)
{
    style.setInteger("type", 5);
    style.setInteger("has_data", 1);
    style.setInteger("overrides", 0x40);
    style.setInteger("merge_flags", 0x8000);
    style.structure("bg_color").setInteger("value", static_cast<std::int32_t>(kRed));
    style.setInteger("layout", 1);
    db::RecordEditor format = style.structure("fmt");
    format.setInteger("data_type", 512);
    format.setText("format", u"%lu2 Übung");
    format.setReal("rotation", 0.5);
    format.setReal("text_height", 0.25);
    style.setInteger("margin_flags", 1);
    style.setReal("margin_vert", 0.06);
    style.setReal("spacing_v", 0.18);
    style.array("borders").resize(2);
    for (std::uint32_t i = 0; i < 2; ++i) {
        db::RecordEditor border = style.array("borders")[i];
        border.setInteger("b_lineweight", -2);
        border.setReal("b_spacing", 0.045);
        border.setInteger("edge", i == 0 ? 2 : 16);
    }
}

void fillNamed(db::RecordEditor named, std::u16string_view name, int id)
{
    fillStyle(named.structure("style"));
    named.setInteger("id", id);
    named.setInteger("cls", 2);
    named.setText("name", name);
}

void fillRows(db::RecordEditor style, bool hasFormats)
{
    style.setText("description", u"Maße");
    style.setInteger("flow", 1);
    style.setReal("margin_h", 0.5);
    style.setInteger("title_off", 1);
    for (std::uint32_t i = 0; i < 3; ++i) {
        style.array("rows")[i].setReal("text_height", 0.25 * (i + 1));
        style.array("rows")[i].setInteger("alignment", i + 2);
        style.array("rows")[i].setInteger("fill_on", i == 1);
        style.array("rows")[i].structure("fill_color").setInteger("value", static_cast<int>(kRed));
        if (hasFormats)
            style.array("rows")[i].setText("format", u"%lu6");
        for (std::uint32_t edge = 0; edge < 6; ++edge) {
            db::RecordEditor border = style.array("rows")[i].array("borders")[edge];
            border.setInteger("b_lineweight", 5 * edge);
            border.setInteger("b_visible", edge != i);
        }
    }
}

void fillLater(db::RecordEditor style)
{
    style.setText("description", u"Maße");
    style.setInteger("bl2", 101);
    fillNamed(style.structure("table_style"), u"Table", 4);
    style.array("styles").resize(2);
    for (std::uint32_t i = 0; i < 2; ++i) {
        style.array("styles")[i].setInteger("key", i + 1);
        fillNamed(style.array("styles")[i].structure("style"), u"_TITLE", static_cast<int>(i) + 1);
    }
}

/// What is lost of the new object when the drawing is written as text and read again.
std::vector<std::string> lostOf(Edit& edit, db::Version version)
{
    const OpenFile back = edit.written(version);
    if (!back)
        return {"unreadable"};
    return differences(edit.changed().at(kNew), recordOf(*back, kNew), {});
}

TEST(TableStyle, ComesBackWithItsRowsAndCellStyles)
{
    for (const char* version : kVersions) {
        const OpenFile drawing = openMinimal(std::string("line-") + version + ".dwg");
        ASSERT_TRUE(drawing);
        Edit edit(*drawing);
        db::RecordEditor style(edit.add("TABLESTYLE", kNew));
        if (drawing->version() < db::Version::Ac1024)
            fillRows(style, drawing->version() == db::Version::Ac1021);
        else
            fillLater(style);

        EXPECT_EQ(lostOf(edit, drawing->version()), std::vector<std::string>()) << version;
    }
}

TEST(TableStyle, OfAnotherProgramHasCellStylesFromItsRows)
{
    const OpenFile drawing = openMinimal("line-ac1032.dwg");
    ASSERT_TRUE(drawing);
    Edit edit(*drawing);
    db::RecordEditor later(edit.add("TABLESTYLE", kNew));
    fillLater(later);
    for (std::uint32_t i = 0; i < 2; ++i) // the borders at the bottom
        later.array("styles")[0]
            .structure("style")
            .structure("style")
            .array("borders")[i]
            .setInteger("edge", i == 0 ? 1 : 4);
    ASSERT_TRUE(edit.written(drawing->version()));
    const auto begin = edit.text.find("102\r\n{ACAD_CELLSTYLES");
    ASSERT_NE(begin, std::string::npos);
    const auto end = edit.text.find("102\r\n}\r\n", begin) + 8;
    edit.text.erase(begin, end - begin);

    const OpenFile file = openDxf(edit.text);

    ASSERT_TRUE(file);
    const db::Record style = recordOf(*file, kNew);
    EXPECT_EQ(style.text("description"), u"Maße");
    ASSERT_EQ(style.array("styles").size(), 3u);
    const db::RecordView title = style.array("styles")[0].structure("style");
    EXPECT_EQ(title.text("name"), u"_TITLE");
    EXPECT_EQ(title.structure("style").structure("fmt").real("text_height"), 0.25);
    const db::ArrayView borders = title.structure("style").array("borders");
    ASSERT_EQ(borders.size(), 6u);
    for (std::uint32_t i = 0; i < 6; ++i)
        EXPECT_EQ(borders[i].integer("edge"), 1 << i);
    EXPECT_EQ(borders[2].integer("b_lineweight"), -2);
}

TEST(CellStyleMap, ComesBack)
{
    for (const char* version : kVersions) {
        const OpenFile drawing = openMinimal(std::string("line-") + version + ".dwg");
        ASSERT_TRUE(drawing);
        Edit edit(*drawing);
        db::RecordEditor map(edit.add("CELLSTYLEMAP", kNew));
        map.array("styles").resize(2);
        fillNamed(map.array("styles")[0], u"_TITLE", 1);
        fillNamed(map.array("styles")[1], u"Größe", 101);

        EXPECT_EQ(lostOf(edit, drawing->version()), std::vector<std::string>()) << version;
    }
}

TEST(CellStyleMap, ThatIsNotUnderstoodStaysAsItIs)
{
    const OpenFile drawing = openMinimal("line-ac1032.dwg");
    ASSERT_TRUE(drawing);
    Edit edit(*drawing);
    db::RecordEditor map(edit.add("CELLSTYLEMAP", kNew));
    map.array("styles").resize(1);
    fillNamed(map.array("styles")[0], u"_TITLE", 1);
    ASSERT_TRUE(edit.written(drawing->version()));
    // As many styles as no file has groups for.
    const auto marker = edit.text.find("AcDbCellStyleMap\r\n 90\r\n", edit.text.find("OBJECTS"));
    ASSERT_NE(marker, std::string::npos);
    edit.text.replace(marker + 23, 1, "2000000000");

    const OpenFile file = openDxf(edit.text);

    ASSERT_TRUE(file);
    db::Record record;
    EXPECT_EQ(file->read(kNew, record).failure(), base::Failure::Unsupported);
    Edit again(*file);
    again.header();
    ASSERT_TRUE(again.written(file->version()));
    EXPECT_NE(again.text.find("2000000000"), std::string::npos);
}

} // namespace
