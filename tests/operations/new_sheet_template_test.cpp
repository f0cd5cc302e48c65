// The dialog that chooses a template and a layout of it, without its window.

#include <operations/template_choice.h>

#include "import_scene.h"

namespace {

using operations::TemplateChoice;
using Names = std::vector<TvString>;
using Numbers = std::vector<int>;

class TemplateChoiceTest : public ImportScene
{
protected:
    void SetUp() override
    {
        ImportScene::SetUp();
        house = drawing("house.dwt", {u"A1", u"A3"});
    }
    Numbers asked()
    {
        Numbers numbers = messages.numbers();
        messages.asked.clear();
        return numbers;
    }
    TvString house;
    TemplateChoice choice;
};

TEST_F(TemplateChoiceTest, OfADrawingTheLayoutsWithSomethingOnThemAreListedAndTheFirstIsSelected)
{
    choice.load(house);
    EXPECT_EQ(choice.layouts(), (Names{u"A1", u"A3"}));
    EXPECT_EQ(choice.selected(), 0u);
    EXPECT_EQ(choice.chosen().drawing, house);
    EXPECT_TRUE(choice.accept(house));
    EXPECT_EQ(choice.chosen(), (operations::SheetTemplate{u"A1", house}));
    EXPECT_EQ(asked(), Numbers{});
}

TEST_F(TemplateChoiceTest, AFileThatIsNotThereListsNothingAndNothingIsSaid)
{
    choice.load(house);
    choice.load(path("gone.dwt"));
    EXPECT_EQ(choice.layouts(), Names{});
    EXPECT_EQ(choice.chosen().drawing, u"");
    EXPECT_EQ(asked(), Numbers{});
}

TEST_F(TemplateChoiceTest, AFileThatCannotBeReadIsSaidToBeSo)
{
    folder.write("broken.dwt", "no drawing");
    choice.load(path("broken.dwt"));
    EXPECT_EQ(choice.layouts(), Names{});
    EXPECT_EQ(messages.asked.front().caption, 410);
    EXPECT_EQ(asked(), Numbers{409});
}

TEST_F(TemplateChoiceTest, ADrawingThatLostTheListOfItsLayoutsIsSaidToBeUnreadable)
{
    DrawingMaker().paper(u"A1").dropLayouts().saveAs(path("damaged.dwt"));
    choice.load(path("damaged.dwt"));
    EXPECT_EQ(choice.layouts(), Names{});
    EXPECT_EQ(asked(), Numbers{409});
}

TEST_F(TemplateChoiceTest, ADrawingWithEmptyPapersIsSaidToBeSo)
{
    choice.load(drawing("empty.dwt", {}));
    EXPECT_EQ(choice.layouts(), Names{});
    EXPECT_EQ(choice.chosen().drawing, u"");
    EXPECT_EQ(messages.asked.front().caption, 410);
    EXPECT_EQ(asked(), Numbers{496});
}

TEST_F(TemplateChoiceTest, WhatWasChosenBeforeIsListedAndSelectedWithoutRegardToCase)
{
    choice.begin({u"a3", house});
    EXPECT_EQ(choice.selected(), 1u);
    choice.begin({u"A9", house});
    EXPECT_EQ(choice.layouts().size(), 2u);
    EXPECT_EQ(choice.selected(), std::nullopt);
    choice.begin({u"", house});
    EXPECT_EQ(choice.selected(), std::nullopt) << "nor is the first one";
}

TEST_F(TemplateChoiceTest, WithNothingChosenBeforeNothingIsListedAndNothingIsSaid)
{
    choice.begin({});
    EXPECT_EQ(choice.layouts(), Names{});
    EXPECT_EQ(asked(), Numbers{});
}

TEST_F(TemplateChoiceTest, OkLooksForTheFileFirstThenForItsExtension)
{
    for (const auto& [name, text] : {std::pair{"gone.dwt", 515}, std::pair{"gone.txt", 515},
                                     std::pair{"house.dxf", 516}, std::pair{"dwt", 516}}) {
        if (text == 516)
            folder.write(name, "x");
        choice.load(house);
        EXPECT_FALSE(choice.accept(path(name))) << name;
        EXPECT_EQ(choice.layouts(), Names{}) << name;
        EXPECT_EQ(choice.chosen().drawing, u"") << name;
        EXPECT_EQ(messages.asked.front().caption, 0);
        EXPECT_EQ(asked(), Numbers{text}) << name;
    }
}

TEST_F(TemplateChoiceTest, AnExtensionMayHaveAnyCase)
{
    const TvString upper = drawing("UPPER.DWS", {u"A1"});
    choice.load(upper);
    EXPECT_TRUE(choice.accept(upper));
}

TEST_F(TemplateChoiceTest, ATypedDrawingShowsItsLayoutsFirst)
{
    const TvString other = drawing("other.dwg", {u"B1"});
    choice.load(house);
    EXPECT_FALSE(choice.accept(other));
    EXPECT_EQ(choice.layouts(), Names{u"B1"});
    EXPECT_EQ(asked(), Numbers{});
    EXPECT_TRUE(choice.accept(other));
    EXPECT_EQ(choice.chosen(), (operations::SheetTemplate{u"B1", other}));
}

TEST_F(TemplateChoiceTest, ATypedDrawingThatCannotBeListedStaysOpen)
{
    choice.load(house);
    EXPECT_FALSE(choice.accept(drawing("empty.dwg", {})));
    EXPECT_EQ(choice.layouts(), Names{});
    EXPECT_EQ(asked(), Numbers{496});
    EXPECT_FALSE(choice.accept(path("empty.dwg"))) << "nor the second time";
    EXPECT_EQ(asked(), Numbers{496});
}

TEST_F(TemplateChoiceTest, ThePathIsComparedWithoutRegardToCase)
{
    choice.load(house);
    std::filesystem::copy(folder.path() / "house.dwt", folder.path() / "HOUSE.dwt",
                          std::filesystem::copy_options::skip_existing);
    EXPECT_TRUE(choice.accept(path("HOUSE.dwt")));
    EXPECT_EQ(choice.chosen().drawing, house) << "what is listed counts";
}

TEST_F(TemplateChoiceTest, ASelectionThatIsNotListedIsNone)
{
    choice.load(house);
    choice.select(2);
    EXPECT_EQ(choice.selected(), std::nullopt);
    EXPECT_FALSE(choice.accept(house));
    EXPECT_EQ(asked(), Numbers{403});
}

TEST_F(TemplateChoiceTest, WithoutALayoutThereIsNoOk)
{
    choice.load(house);
    choice.select(std::nullopt);
    EXPECT_FALSE(choice.accept(house));
    EXPECT_EQ(choice.layouts().size(), 2u) << "the list stays";
    EXPECT_EQ(messages.asked.front().caption, 0);
    EXPECT_EQ(asked(), Numbers{403});
}

} // namespace
