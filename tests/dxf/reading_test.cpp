// What depends on the order of groups, or follows from groups that are not there.

#include <db/record_editor.h>

#include "drawing_tools.h"

namespace {

const std::string kHead =
    "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1032\n9\n$HANDSEED\n5\nFFF\n0\nENDSEC\n";

std::string withSection(const std::string& name, const std::string& body)
{
    return kHead + "0\nSECTION\n2\n" + name + "\n" + body + "0\nENDSEC\n0\nEOF\n";
}

/// Read, and once more after it was written from its record.
std::vector<db::Record> readTwice(const std::string& text, std::uint64_t handle)
{
    std::vector<db::Record> records;
    const OpenFile file = openDxf(text);
    if (!file)
        return records;
    records.push_back(recordOf(*file, handle));
    Edit edit(*file);
    edit.change(handle);
    if (const OpenFile back = edit.written(file->version()))
        records.push_back(recordOf(*back, handle));
    return records;
}

TEST(Reading, GivesEntitiesThatNameNoneTheLayerAndStylesOfEveryDrawing)
{
    const OpenFile file = openDxf(withSection(
        "ENTITIES",
        "0\nTEXT\n5\n2A\n10\n0\n20\n0\n40\n1\n1\nx\n0\nDIMENSION\n5\n2B\n70\n0\n10\n0\n20\n0\n"));
    ASSERT_TRUE(file);
    const db::Record text = recordOf(*file, 0x2A), dimension = recordOf(*file, 0x2B);
    EXPECT_EQ(recordOf(*file, text.handle("layer")).text("name"), u"0");
    EXPECT_EQ(recordOf(*file, text.handle("style")).text("name"), u"Standard");
    EXPECT_EQ(recordOf(*file, dimension.handle("dimstyle")).text("name"), u"Standard");
}

TEST(Reading, TakesCodesOfExtendedDataAsContentOfXrecords)
{
    const auto records =
        readTwice(withSection("OBJECTS", "0\nDICTIONARY\n5\nC\n100\nAcDbDictionary\n3\nX\n350\n2A\n"
                                         "0\nXRECORD\n5\n2A\n330\nC\n100\nAcDbXrecord\n280\n1\n"
                                         "1071\n7\n70\n5\n1070\n9\n"),
                  0x2A);
    ASSERT_EQ(records.size(), 2u);
    for (const db::Record& record : records) {
        const db::ArrayView items = record.structure("content").array("items");
        ASSERT_EQ(items.size(), 3u);
        EXPECT_EQ(items[0].integer("code"), 1071);
        EXPECT_EQ(items[0].integer("integer"), 7);
        EXPECT_EQ(items[2].integer("code"), 1070);
        EXPECT_TRUE(record.array("eed").isEmpty());
    }
}

TEST(Reading, TellsSecondGroupsOfOneCodeApart)
{
    const auto records = readTwice(
        withSection(
            "TABLES",
            "0\nTABLE\n2\nDIMSTYLE\n5\nA\n0\nDIMSTYLE\n105\n2A\n100\nAcDbSymbolTableRecord\n"
            "100\nAcDbDimStyleTableRecord\n2\nD\n70\n0\n69\n2\n70\n97\n0\nENDTAB\n"),
        0x2A);
    ASSERT_EQ(records.size(), 2u);
    for (const db::Record& record : records) {
        EXPECT_FALSE(record.flag("flag0"));
        EXPECT_EQ(record.structure("DIMTFILLCLR").integer("value") & 0xFF, 97);
    }
}

TEST(Reading, TellsTheStyleOfAShapeThatIsNotTheFirst)
{
    const auto style = [](const char* handle, const char* file) {
        return std::string("0\nSTYLE\n5\n") + handle +
               "\n100\nAcDbSymbolTableRecord\n100\nAcDbTextStyleTableRecord\n2\n\n70\n1\n3\n" +
               file + "\n";
    };
    const std::string text =
        kHead + "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nSTYLE\n5\n3\n" + style("2B", "a.shx") +
        style("2C", "b.shx") +
        "0\nENDTAB\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nSHAPE\n5\n2A\n100\nAcDbEntity\n8\n0\n"
        "100\nAcDbShape\n10\n0\n20\n0\n40\n1\n2\n130\n0\nENDSEC\n0\nEOF\n";
    const OpenFile file = openDxf(text);
    ASSERT_TRUE(file);
    EXPECT_EQ(recordOf(*file, 0x2A).handle("style"), 0x2Bu);
    Edit edit(*file);
    db::RecordEditor(edit.change(0x2A)).setHandle("style", 0x2C);

    const OpenFile back = edit.written(file->version());

    ASSERT_TRUE(back);
    EXPECT_EQ(recordOf(*back, 0x2A).handle("style"), 0x2Cu);
}

TEST(Reading, ListsTheViewportsOfALayout)
{
    const OpenFile file = openDxf(kHead + "0\nSECTION\n2\nENTITIES\n0\nVIEWPORT\n5\n2A\n100\nAcDbEn"
                                          "tity\n67\n1\n8\n0\n100\nAcDbViewport\n69\n1\n"
                                          "0\nVIEWPORT\n5\n2B\n100\nAcDbEntity\n67\n1\n8\n0\n100\nA"
                                          "cDbViewport\n69\n2\n0\nENDSEC\n0\nSECTION\n2\n"
                                          "TABLES\n0\nTABLE\n2\nBLOCK_RECORD\n5\n1\n0\nBLOCK_"
                                          "RECORD\n5\n1B\n100\nAcDbBlockTableRecord\n2\n"
                                          "*Paper_"
                                          "Space\n0\nENDTAB\n0\nENDSEC\n0\nSECTION\n2\nOBJECTS\n0\n"
                                          "DICTIONARY\n5\nC\n100\nAcDbDictionary\n"
                                          "0\nLAYOUT\n5\n22\n100\nAcDbPlotSettings\n100\nAcDbLayout"
                                          "\n1\nSheet\n330\n1B\n0\nENDSEC\n0\nEOF\n");
    ASSERT_TRUE(file);
    const db::Record layout = recordOf(*file, 0x22);
    const db::ArrayView viewports = layout.array("viewports");
    ASSERT_EQ(viewports.size(), 2u);
    EXPECT_EQ(viewports.handle(0), 0x2Au);
    EXPECT_EQ(viewports.handle(1), 0x2Bu);
}

} // namespace
