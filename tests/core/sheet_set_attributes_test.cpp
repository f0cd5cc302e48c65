#include <core/sheet_set_attributes.h>

#include "session_scene.h"

namespace {

class AttributesTest : public testing::Test
{
protected:
    bool copy() { return CopySheetSetAttributes(from.getSheetSet(), to.getSheetSet()); }
    static TvString textOf(TvSmDatabase& database, const TvString& property)
    {
        const TvSmCustomPropertyValue* value =
            database.getSheetSet()->getCustomProperties()->getProperty(property);
        TvVariant content;
        if (value)
            value->getValue(content);
        TvString text;
        content.getString(text);
        return text;
    }
    TvSmDatabase from, to;
};

TEST_F(AttributesTest, TextsAndTheQuestionForATemplateAreCopied)
{
    TvSmSheetSet& source = *from.getSheetSet();
    source.setName(u"House");
    source.setDesc(u"at the river");
    source.setSheetSetText1(u"1");
    source.setSheetSetText2(u"2");
    source.setSheetSetText3(u"3");
    source.setSheetSetText4(u"4");
    source.setPromptForTemplate(true);
    EXPECT_TRUE(copy());
    const TvSmSheetSet& copied = *to.getSheetSet();
    TvString text;
    EXPECT_EQ(copied.getName(text), u"House");
    EXPECT_EQ(copied.getDesc(text), u"at the river");
    EXPECT_EQ(copied.getSheetSetText1(text), u"1");
    EXPECT_EQ(copied.getSheetSetText2(text), u"2");
    EXPECT_EQ(copied.getSheetSetText3(text), u"3");
    EXPECT_EQ(copied.getSheetSetText4(text), u"4");
    EXPECT_TRUE(copied.getPromptForTemplate());
}

TEST_F(AttributesTest, PlaceAndTemplateAreMadeFilledAndTakenAway)
{
    auto* place = newFor<TvSmFileReference>(from.getSheetSet());
    place->setFileName(u"/plans/new");
    from.getSheetSet()->setNewSheetLocation(place);
    auto* layout = newFor<TvSmTvDbLayoutReference>(from.getSheetSet());
    layout->setFileName(u"/templates/a1.dwt");
    layout->setName(u"A1");
    layout->setHandle(u"2F");
    from.getSheetSet()->setDefaultTemplateLayout(layout);
    ASSERT_TRUE(copy());
    ASSERT_NE(to.getSheetSet()->getNewSheetLocation(), nullptr);
    EXPECT_EQ(to.getSheetSet()->getNewSheetLocation()->getFileName(), u"/plans/new");
    TvSmTvDbLayoutReference* made = to.getSheetSet()->getDefaultTemplateLayout();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->getName(), u"A1");
    EXPECT_EQ(made->getFileName(), u"/templates/a1.dwt");

    layout->setName(u"A0");
    ASSERT_TRUE(copy());
    EXPECT_EQ(to.getSheetSet()->getDefaultTemplateLayout(), made) << "the present one is filled";
    EXPECT_EQ(made->getName(), u"A0");

    from.getSheetSet()->setNewSheetLocation(nullptr);
    from.getSheetSet()->setDefaultTemplateLayout(nullptr);
    ASSERT_TRUE(copy());
    EXPECT_EQ(to.getSheetSet()->getNewSheetLocation(), nullptr);
    EXPECT_EQ(to.getSheetSet()->getDefaultTemplateLayout(), nullptr);
}

TEST_F(AttributesTest, CustomPropertiesBecomeThoseOfTheSource)
{
    sm::setTextProperty(from.getSheetSet()->getCustomProperties(), u"Client", u"Miller", 1);
    sm::setTextProperty(from.getSheetSet()->getCustomProperties(), u"Scale", u"1:50", 2);
    sm::setTextProperty(to.getSheetSet()->getCustomProperties(), u"Scale", u"old", 1);
    sm::setTextProperty(to.getSheetSet()->getCustomProperties(), u"Gone", u"x", 1);
    const TvSmCustomPropertyValue* scale =
        to.getSheetSet()->getCustomProperties()->getProperty(u"Scale");
    ASSERT_TRUE(copy());
    EXPECT_EQ(textOf(to, u"Client"), u"Miller");
    EXPECT_EQ(textOf(to, u"Scale"), u"1:50");
    EXPECT_EQ(scale->getFlags(), 2);
    EXPECT_EQ(to.getSheetSet()->getCustomProperties()->getProperty(u"Scale"), scale);
    EXPECT_EQ(to.getSheetSet()->getCustomProperties()->getProperty(u"Gone"), nullptr);
    EXPECT_EQ(sm::propertiesOf(to.getSheetSet()->getCustomProperties()).size(), 2u);
}

TEST_F(AttributesTest, SheetsAndCategoriesStayBehind)
{
    addSheet(from.getSheetSet(), u"1", u"Plan");
    addCategory(from.getSheetSet(), u"Elevations");
    ASSERT_TRUE(copy());
    EXPECT_EQ(KvDbUtil::GetSheetNumsInSubSet(to.getSheetSet()), 0);
}

TEST_F(AttributesTest, NullIsRefused)
{
    EXPECT_FALSE(CopySheetSetAttributes(nullptr, to.getSheetSet()));
    EXPECT_FALSE(CopySheetSetAttributes(from.getSheetSet(), nullptr));
    EXPECT_FALSE(CopySheetSetAttributes(nullptr, nullptr));
}

} // namespace
