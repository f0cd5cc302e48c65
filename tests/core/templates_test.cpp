#include <core/templates.h>

#include <db/tv_db_database.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_text.h>
#include <dwg/dwg_codec.h>

#include "session_scene.h"

namespace {

class TemplatesTest : public SessionTest
{
protected:
    void SetUp() override
    {
        SessionTest::SetUp();
        dwg::install();
        std::filesystem::create_directories(folder.path() / "own/SheetSets");
        host.templates = folder.file("own");
    }
    TvString own(const std::string& name) const { return folder.file("own/SheetSets/" + name); }
    void write(const std::string& name) const { folder.write("own/SheetSets/" + name, "x"); }

    static TvDbObjectId layoutOf(const TvDbDatabase& drawing, const TvString& name)
    {
        const TvDbObjectPointer<TvDbDictionary> layouts(drawing.layoutDictionaryId());
        TvDbObjectId id;
        layouts->getAt(name, id);
        return id;
    }
    static bool isPopulated(const TvDbDatabase& drawing, const TvString& name)
    {
        const TvDbObjectPointer<TvDbLayout> layout(layoutOf(drawing, name));
        return IsLayoutPopulated(layout.object());
    }
    static void empty(const TvDbDatabase& drawing, const TvString& name)
    {
        const TvDbObjectPointer<TvDbLayout> layout(layoutOf(drawing, name));
        const TvDbObjectPointer<TvDbBlockTableRecord> block(layout->getBlockTableRecordId());
        for (const TvDbObjectId id : block->entityIds())
            TvDbObjectPointer<TvDbEntity>(id, TvDb::kForWrite)->erase();
    }
    static void addText(const TvDbDatabase& drawing, const TvString& name)
    {
        const TvDbObjectPointer<TvDbLayout> layout(layoutOf(drawing, name));
        const TvDbObjectPointer<TvDbBlockTableRecord> block(layout->getBlockTableRecordId(),
                                                            TvDb::kForWrite);
        auto* text = new TvDbText;
        TvDbObjectId id;
        ASSERT_EQ(block->appendTvDbEntity(id, text), TvStatus::Ok);
        text->close();
    }
};

TEST_F(TemplatesTest, ALayoutWithAnEntityCanBecomeASheet)
{
    TvDbDatabase drawing(true, true);
    empty(drawing, u"Layout1");
    EXPECT_FALSE(isPopulated(drawing, u"Layout1"));
    addText(drawing, u"Layout1");
    EXPECT_TRUE(isPopulated(drawing, u"Layout1"));
}

TEST_F(TemplatesTest, TheModelCannotBecomeASheet)
{
    TvDbDatabase drawing(true, true);
    addText(drawing, u"Model");
    EXPECT_FALSE(isPopulated(drawing, u"Model"));
    EXPECT_FALSE(IsLayoutPopulated(nullptr));
}

TEST_F(TemplatesTest, AnInstalledTemplateIsKnownByBothPartsOfItsPath)
{
    EXPECT_TRUE(IsInstalledTemplatePath(
        u"C:\\Program Files\\Kevrin\\TARVIK\\24\\Template\\SheetSets\\a.dwt"));
    EXPECT_FALSE(IsInstalledTemplatePath(u"C:\\Kevrin\\TARVIK\\a.dwt"));
    EXPECT_FALSE(IsInstalledTemplatePath(u"C:\\Template\\SheetSets\\a.dwt"));
    EXPECT_FALSE(IsInstalledTemplatePath(u""));
}

TEST_F(TemplatesTest, TheUsersCopyOfATemplateIsFoundByItsName)
{
    write("A1.dwt");
    TvString path = u"before";
    EXPECT_TRUE(FindUserTemplateCopy(u"A1.dwt", path));
    EXPECT_EQ(path, own("A1.dwt"));
    path = u"before";
    EXPECT_FALSE(FindUserTemplateCopy(u"A0.dwt", path));
    EXPECT_FALSE(FindUserTemplateCopy(u"", path));
    EXPECT_EQ(path, u"before");
    host.templates = u"";
    EXPECT_FALSE(FindUserTemplateCopy(u"A1.dwt", path));
}

TEST_F(TemplatesTest, AMissingInstalledTemplateIsReplacedByTheUsersCopyAndNoOther)
{
    write("A1.dwt");
    EXPECT_EQ(core::resolvedTemplate(own("A1.dwt")), own("A1.dwt"));
    EXPECT_EQ(core::resolvedTemplate(u"D:\\Kevrin\\TARVIK\\Template\\SheetSets\\A1.dwt"),
              own("A1.dwt"));
    EXPECT_EQ(core::resolvedTemplate(u"D:\\Kevrin\\TARVIK\\Template\\SheetSets\\A0.dwt"), u"");
    EXPECT_EQ(core::resolvedTemplate(u"D:\\elsewhere\\A1.dwt"), u"");
}

TEST_F(TemplatesTest, TheFirstTemplateAndItsFirstPopulatedLayoutAreTheDefault)
{
    TvDbDatabase drawing(true, true);
    empty(drawing, u"Layout1");
    addText(drawing, u"Layout2");
    ASSERT_EQ(drawing.saveAs(own("b.DWT")), TvStatus::Ok);
    write("c.dwt");
    write("a.txt");
    std::filesystem::create_directory(folder.path() / "own/SheetSets/a.dwt");
    TvString path, layout;
    ASSERT_TRUE(FindDefaultSheetTemplate(path, layout));
    EXPECT_EQ(path, own("b.DWT"));
    EXPECT_EQ(layout, u"Layout2");
}

TEST_F(TemplatesTest, OnlyTheFirstTemplateIsTried)
{
    TvDbDatabase drawing(true, true);
    addText(drawing, u"Layout1");
    ASSERT_EQ(drawing.saveAs(own("b.dwt")), TvStatus::Ok);
    write("a.dwt"); // no drawing
    TvString path = u"before", layout = u"before";
    EXPECT_FALSE(FindDefaultSheetTemplate(path, layout));
    EXPECT_EQ(path, u"before");
    EXPECT_EQ(layout, u"before");
}

TEST_F(TemplatesTest, ATemplateWithoutAPopulatedLayoutIsNoDefault)
{
    TvDbDatabase drawing(true, true);
    empty(drawing, u"Layout1");
    empty(drawing, u"Layout2");
    ASSERT_EQ(drawing.saveAs(own("b.dwt")), TvStatus::Ok);
    TvString path, layout;
    EXPECT_FALSE(FindDefaultSheetTemplate(path, layout));
    host.templates = u"";
    EXPECT_FALSE(FindDefaultSheetTemplate(path, layout));
}

} // namespace
