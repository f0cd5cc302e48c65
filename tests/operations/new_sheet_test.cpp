// The dialog that makes a sheet, without its window.

#include <operations/new_sheet.h>

#include <core/settings.h>
#include <operations/sheet_duplicate.h>

#include "new_sheet_scene.h"

namespace {

using operations::NewSheet;
using operations::NewSheetField;
using operations::NewSheetFields;
using operations::SheetTemplate;
using Numbers = std::vector<int>;
using Told = std::vector<std::string>;
using Answer = TvUserMessages::Answer;

class NewSheetTest : public NewSheetScene
{
protected:
    void SetUp() override
    {
        NewSheetScene::SetUp();
        ASSERT_TRUE(house->lockDb(house));
    }
    void TearDown() override
    {
        if (house->getLockStatus() != 0)
            house->unlockDb(house, false);
        NewSheetScene::TearDown();
    }
    NewSheet begun(TvSmSubset* subset)
    {
        NewSheet sheet(*subset, window);
        EXPECT_TRUE(sheet.begin());
        return sheet;
    }
    /// What the OK of these fields turns to, and what is said.
    void expectRefused(const NewSheetFields& fields, NewSheetField focus, const Numbers& asked,
                       const Told& told = {})
    {
        NewSheet sheet = begun(ground);
        const NewSheet::Answer answer = sheet.accept(fields, true);
        EXPECT_FALSE(answer.isDone);
        EXPECT_EQ(answer.focus, focus);
        for (const TvUserMessages::Message& message : answers.asked) {
            EXPECT_EQ(message.icon, TvUserMessages::Icon::Warning);
            EXPECT_EQ(message.caption, message.text == 498 ? 497 : message.text == 500 ? 499 : 0);
        }
        EXPECT_EQ(askedNumbers(), asked);
        EXPECT_EQ(std::exchange(window.told, {}), told);
        EXPECT_EQ(sheet.sheet(), nullptr);
        EXPECT_EQ(drawings(), std::vector<std::string>{});
        EXPECT_FALSE(NewSheet::opensInEditor()) << "remembered only when it works";
    }
};

// --- before the fields

TEST_F(NewSheetTest, ASubsetInheritsTemplateAndFolderFromTheNearestThatHasThemEachOnItsOwn)
{
    TvSmSubset* inner = addSubset(ground, u"Inner");
    setFolder(*ground, path(""));
    EXPECT_EQ(operations::newSheetFolder(*inner), path(""));
    EXPECT_EQ(operations::inheritedTemplate(*inner), (SheetTemplate{u"A1", path("house.dwt")}));
    setTemplate(*inner, path("house.dwt"), u"A3");
    EXPECT_EQ(operations::inheritedTemplate(*inner).layout, u"A3");
    EXPECT_EQ(operations::inheritedTemplate(*ground).layout, u"A1");
    EXPECT_EQ(operations::newSheetFolder(*roof), path("sheets"));
}

TEST_F(NewSheetTest, ATemplateWithoutALayoutOrAFileIsPassedOver)
{
    setTemplate(*ground, path("house.dwt"), u"");
    EXPECT_EQ(operations::inheritedTemplate(*ground).layout, u"A1");
    setTemplate(*ground, u"", u"A3");
    EXPECT_EQ(operations::inheritedTemplate(*ground).layout, u"A1");
}

TEST_F(NewSheetTest, ATemplateOfAnotherMachineIsTakenFromTheUsersOwn)
{
    const TvString elsewhere = u"C:\\Kevrin\\TARVIK\\Template\\SheetSets\\own.dwt";
    setTemplate(*ground, elsewhere, u"A1");
    EXPECT_EQ(operations::inheritedTemplate(*ground).drawing, elsewhere) << "he has none";
    host.templates = path("own");
    std::filesystem::create_directories(folder.path() / "own/SheetSets");
    std::filesystem::copy_file(folder.path() / "house.dwt",
                               folder.path() / "own/SheetSets/own.dwt");
    EXPECT_EQ(operations::inheritedTemplate(*ground).drawing, path("own/SheetSets/own.dwt"));
    EXPECT_TRUE(NewSheet(*ground, window).begin());
}

TEST_F(NewSheetTest, WithoutATemplateTheUserMayChooseOneWhichBecomesThatOfTheSubset)
{
    house->getSheetSet()->setDefaultTemplateLayout(nullptr);
    answers.answers = {Answer::Ok};
    window.choice = {u"A3", path("house.dwt")};
    NewSheet sheet = begun(ground);
    EXPECT_EQ(answers.asked.front().buttons, TvUserMessages::Buttons::OkCancel);
    EXPECT_EQ(answers.asked.front().caption, 410);
    EXPECT_EQ(answers.asked.front().icon, TvUserMessages::Icon::Question);
    EXPECT_EQ(askedNumbers(), Numbers{495});
    ASSERT_TRUE(sheet.accept({u"2", u"Section", u"2 Section"}, false).isDone);
    EXPECT_EQ(operations::inheritedTemplate(*ground), window.choice);
    EXPECT_EQ(house->getSheetSet()->getDefaultTemplateLayout(), nullptr);
}

TEST_F(NewSheetTest, WithoutATemplateCancelEndsItAndSoDoesAChoiceThatIsGivenUp)
{
    house->getSheetSet()->setDefaultTemplateLayout(nullptr);
    EXPECT_FALSE(NewSheet(*ground, window).begin());
    EXPECT_EQ(askedNumbers(), Numbers{495});
    EXPECT_EQ(window.told, Told{});
    answers.answers = {Answer::Ok};
    EXPECT_FALSE(NewSheet(*ground, window).begin());
    EXPECT_EQ(window.told, Told{"choose"});
    EXPECT_EQ(askedNumbers(), Numbers{495}) << "nothing more is said";
}

TEST_F(NewSheetTest, ATemplateThatIsReplacedKeepsItsReference)
{
    setTemplate(*ground, path("gone.dwt"), u"A1");
    TvSmTvDbLayoutReference* reference = ground->getDefaultTemplateLayout();
    answers.answers = {Answer::Ok};
    window.choice = {u"A3", path("house.dwt")};
    ASSERT_TRUE(begun(ground).accept({u"2", u"Section", u"2 Section"}, false).isDone);
    EXPECT_EQ(ground->getDefaultTemplateLayout(), reference);
    EXPECT_EQ(operations::inheritedTemplate(*ground), window.choice);
}

TEST_F(NewSheetTest, ATemplateAndAFolderAreLookedForBesideTheSet)
{
    setTemplate(*ground, u"house.dwt", u"A3");
    setFolder(*ground, u"sheets");
    EXPECT_EQ(operations::inheritedTemplate(*ground), (SheetTemplate{u"A3", path("house.dwt")}));
    EXPECT_EQ(operations::newSheetFolder(*ground), path("sheets"));
    setFolder(*ground, u"");
    EXPECT_EQ(operations::newSheetFolder(*ground), path("sheets")) << "of the set";
}

TEST_F(NewSheetTest, ATemplateThatCannotBeOpenedMayBeReplacedByAnotherOne)
{
    folder.write("broken.dwt", "no drawing");
    DrawingMaker().paper(u"A1").dropLayouts().saveAs(path("damaged.dwt"));
    for (const auto& [file, layout] :
         {std::pair{"gone.dwt", u"A1"}, std::pair{"broken.dwt", u"A1"},
          std::pair{"damaged.dwt", u"A1"}, std::pair{"house.dwt", u"A9"}}) {
        setTemplate(*ground, path(file), layout);
        answers.answers = {Answer::Ok};
        window.choice = {u"A3", path("house.dwt")};
        NewSheet sheet = begun(ground);
        EXPECT_EQ(askedNumbers(), Numbers{612}) << file;
        EXPECT_EQ(sheet.sheetTemplate(), window.choice);
    }
}

TEST_F(NewSheetTest, ASubsetThatPromptsAsksForEachSheetAndNeverStoresTheAnswer)
{
    ground->setPromptForTemplate(true);
    window.choice = {u"A3", path("house.dwt")};
    for (const TvChar* title : {u"One", u"Two"}) {
        NewSheet sheet = begun(ground);
        EXPECT_EQ(std::exchange(window.told, {}), Told{"choose"});
        ASSERT_TRUE(sheet.accept({u"", title, title}, false).isDone);
        EXPECT_EQ(ground->getDefaultTemplateLayout(), nullptr);
    }
    window.choice = {};
    EXPECT_FALSE(NewSheet(*ground, window).begin());
    EXPECT_EQ(askedNumbers(), Numbers{});
}

TEST_F(NewSheetTest, AFolderThatIsNoneEndsItWithAWarning)
{
    for (const char* where : {"nowhere", "house.dwt"}) {
        setFolder(*ground, path(where));
        EXPECT_FALSE(NewSheet(*ground, window).begin());
        ASSERT_EQ(answers.asked.size(), 1u);
        EXPECT_EQ(answers.asked.front().caption, 511);
        EXPECT_EQ(answers.asked.front().arguments, std::vector<TvString>{path(where)});
        EXPECT_EQ(answers.asked.front().icon, TvUserMessages::Icon::Warning);
        EXPECT_EQ(askedNumbers(), Numbers{610});
    }
    house->getSheetSet()->setNewSheetLocation(nullptr);
    EXPECT_FALSE(NewSheet(*roof, window).begin());
    EXPECT_EQ(askedNumbers(), Numbers{610});
}

// --- the fields

TEST_F(NewSheetTest, NumberAndTitleMakeTheFileNameWithOneBlankUntilTheUserTurnsToIt)
{
    NewSheet sheet = begun(ground);
    EXPECT_EQ(sheet.fileNameFor(u"A-01", u"Plan"), TvString(u"A-01 Plan"));
    EXPECT_EQ(sheet.fileNameFor(u"", u"Plan"), TvString(u"Plan"));
    EXPECT_EQ(sheet.fileNameFor(u"A-01", u""), TvString(u"A-01"));
    sheet.fileNameIsOwn();
    EXPECT_EQ(sheet.fileNameFor(u"A-02", u"Plan"), std::nullopt);
}

TEST_F(NewSheetTest, ANumberWithAnUnsupportedCharacterIsRefusedBeforeAnythingElse)
{
    expectRefused({u"A,1", u"", u""}, NewSheetField::Number, {}, {"characters"});
    expectRefused({u"A:1", u"a*b", u"<"}, NewSheetField::Number, {}, {"characters"});
}

TEST_F(NewSheetTest, ATitleThatIsEmptyOrBlankIsRefusedNext)
{
    expectRefused({u"2", u"", u""}, NewSheetField::Title, {498});
    expectRefused({u"2", u"  \t", u"a,b"}, NewSheetField::Title, {498});
}

TEST_F(NewSheetTest, ATitleWithAnUnsupportedCharacterIsRefusedNext)
{
    expectRefused({u"1", u"Pl,an", u""}, NewSheetField::Title, {}, {"characters"});
}

TEST_F(NewSheetTest, ASecondSheetWithThatNumberAndTitleIsRefusedNext)
{
    expectRefused({u"1", u"Plan", u""}, NewSheetField::Title, {500});
}

TEST_F(NewSheetTest, AFileNameThatIsEmptyOrBlankIsRefusedNext)
{
    expectRefused({u"2", u"Plan", u""}, NewSheetField::FileName, {498});
    expectRefused({u"2", u"Plan", u"   "}, NewSheetField::FileName, {498});
}

TEST_F(NewSheetTest, AFileNameWithAnUnsupportedCharacterIsRefusedNext)
{
    expectRefused({u"2", u"Plan", u"a,b"}, NewSheetField::FileName, {}, {"characters"});
    expectRefused({u"2", u"Plan", u"../b"}, NewSheetField::FileName, {}, {"characters"});
}

TEST_F(NewSheetTest, APathThatIsTooLongOrNoNameOfAFileIsRefusedNext)
{
    expectRefused({u"2", u"Plan", TvString(std::u16string(260, u'a'))}, NewSheetField::None, {507});
    expectRefused({u"2", u"Plan", u"con"}, NewSheetField::None, {507});
}

TEST_F(NewSheetTest, APathHasRoomForTwoHundredAndFiftyNineUnits)
{
    const std::size_t room = 259 - static_cast<std::size_t>(path("sheets").length()) - 5;
    const auto problemWith = [&](std::size_t length) {
        return operations::planNewSheet({u"", u"T", TvString(std::u16string(length, u'a'))},
                                        *ground, path("sheets"))
            .problem;
    };
    EXPECT_EQ(problemWith(room), operations::NewSheetProblem::None);
    EXPECT_EQ(problemWith(room + 1), operations::NewSheetProblem::PathNotPossible);
}

TEST_F(NewSheetTest, AFileThatIsThereIsReplacedOnlyAfterAYes)
{
    folder.write("sheets/2 Plan.dwg", "somebody's");
    NewSheet sheet = begun(ground);
    answers.answers = {Answer::No};
    EXPECT_EQ(sheet.accept({u"2", u"Plan", u"2 Plan"}, false).focus, NewSheetField::FileName);
    ASSERT_EQ(answers.asked.size(), 1u);
    EXPECT_EQ(answers.asked.front().caption, 501);
    EXPECT_EQ(answers.asked.front().standard, Answer::No);
    EXPECT_EQ(answers.asked.front().buttons, TvUserMessages::Buttons::YesNo);
    EXPECT_EQ(answers.asked.front().arguments, std::vector<TvString>{sheetPath("2 Plan.dwg")});
    EXPECT_EQ(askedNumbers(), Numbers{502});
    EXPECT_EQ(folder.read("sheets/2 Plan.dwg"), "somebody's");
    answers.answers = {Answer::Yes};
    EXPECT_TRUE(sheet.accept({u"2", u"Plan", u"2 Plan"}, false).isDone);
    EXPECT_EQ(folder.read("sheets/2 Plan.dwg").substr(0, 6), "AC1032");
}

TEST_F(NewSheetTest, ADrawingThatCannotBeMadeLeavesTheSetUntouched)
{
    const std::string before = Outline::of(house);
    NewSheet sheet = begun(ground);
    std::filesystem::remove(folder.path() / "house.dwt");
    const NewSheet::Answer answer = sheet.accept({u"2", u"Section", u"2 Section"}, true);
    EXPECT_FALSE(answer.isDone);
    EXPECT_EQ(answer.focus, NewSheetField::None);
    ASSERT_EQ(answers.asked.size(), 1u);
    EXPECT_EQ(answers.asked.front().caption, 0);
    EXPECT_EQ(askedNumbers(), Numbers{507});
    EXPECT_EQ(Outline::of(house), before);
}

// --- what is made

TEST_F(NewSheetTest, TheSheetHasWhatWasTypedAndLeadsToItsDrawing)
{
    NewSheet sheet = begun(ground);
    ASSERT_TRUE(sheet.accept({u" A-02", u"  Section ", u"A-02 Section"}, true).isDone);
    ASSERT_TRUE(sheet.sheet());
    EXPECT_EQ(sheet.sheet()->getTitle(), u"  Section ") << "blanks in front are kept";
    EXPECT_EQ(sheet.sheet()->getName(), u"  Section ");
    EXPECT_EQ(sheet.sheet()->getNumber(), u" A-02");
    EXPECT_EQ(sheet.sheet()->getDesc(), u"");
    const TvSmTvDbLayoutReference* reference = sheet.sheet()->getLayoutReference();
    ASSERT_TRUE(reference);
    EXPECT_EQ(reference->getFileName(), sheetPath("A-02 Section.dwg"));
    EXPECT_EQ(reference->getName(), u"A-02 Section");
    TvDbDatabase drawing(false, true);
    ASSERT_EQ(drawing.readDwgFile(sheetPath("A-02 Section.dwg")), TvStatus::Ok);
    EXPECT_EQ(reference->getHandle(), DrawingMaker(drawing).handleOf(u"A-02 Section"));
    EXPECT_EQ(ground->getDefaultTemplateLayout(), nullptr) << "it was inherited";
    EXPECT_TRUE(NewSheet::opensInEditor());
    EXPECT_EQ(askedNumbers(), Numbers{});
}

TEST_F(NewSheetTest, AnExtensionInAnyCaseIsTakenOffTheFileName)
{
    NewSheet sheet = begun(ground);
    ASSERT_TRUE(sheet.accept({u"", u"Section", u"Plan.DWG"}, false).isDone);
    EXPECT_EQ(drawings(), std::vector<std::string>{"Plan.dwg"});
    EXPECT_EQ(sheet.sheet()->getLayoutReference()->getName(), u"Plan");
}

TEST_F(NewSheetTest, AnExtensionAloneIsTheNameOfNoDrawing)
{
    EXPECT_FALSE(begun(ground).accept({u"2", u"Plan", u".dwg"}, false).isDone);
    EXPECT_EQ(askedNumbers(), Numbers{507});
    EXPECT_EQ(drawings(), std::vector<std::string>{});
}

TEST_F(NewSheetTest, ANumberMayBeEmpty)
{
    EXPECT_TRUE(begun(ground).accept({u"", u"Cover", u"Cover"}, false).isDone);
}

TEST_F(NewSheetTest, WhetherSheetsAreOpenedAfterwardsIsRememberedAsOneOrZero)
{
    constexpr TvChar kKey[] = u"UserInterfaceSettings\\CreateNewSheetDialog\\OpenInEditor";
    EXPECT_FALSE(NewSheet::opensInEditor());
    int value = -1;
    EXPECT_TRUE(begun(ground).accept({u"", u"One", u"One"}, true).isDone);
    EXPECT_TRUE(ReadConfigInt(kKey, value) && value == 1);
    EXPECT_TRUE(begun(ground).accept({u"", u"Two", u"Two"}, false).isDone);
    EXPECT_TRUE(ReadConfigInt(kKey, value) && value == 0);
}

TEST_F(NewSheetTest, SheetsAreDoublesOnlyWithEqualNumberAndTitleInOneSubset)
{
    EXPECT_TRUE(IsSheetDuplicate(u"1", u"Plan", ground, nullptr));
    EXPECT_EQ(answers.asked.front().arguments, std::vector<TvString>{u"Plan"});
    EXPECT_EQ(answers.asked.front().caption, 499);
    EXPECT_EQ(askedNumbers(), Numbers{500});
    EXPECT_FALSE(IsSheetDuplicate(u"1", u"Section", ground, nullptr)) << "another title";
    EXPECT_FALSE(IsSheetDuplicate(u"1", u"plan", ground, nullptr)) << "case counts";
    EXPECT_FALSE(IsSheetDuplicate(u"1", u"Plan", roof, nullptr)) << "another subset";
    EXPECT_FALSE(IsSheetDuplicate(u"1", u"Plan", ground, plan)) << "itself";
    EXPECT_FALSE(IsSheetDuplicate(u"1", u"Plan", nullptr, nullptr));
    EXPECT_EQ(askedNumbers(), Numbers{});
}

TEST_F(NewSheetTest, EqualNumberAndTitleInAnotherSubsetAndEqualNumberAloneAreAccepted)
{
    EXPECT_TRUE(begun(roof).accept({u"1", u"Plan", u"roof"}, false).isDone);
    EXPECT_TRUE(begun(ground).accept({u"1", u"Section", u"section"}, false).isDone);
}

TEST_F(NewSheetTest, ASheetGetsTheSetsPropertiesForSheetsWithTheirFlagsAndItsPlace)
{
    TvSmCustomPropertyBag* bag = house->getSheetSet()->getCustomProperties();
    ASSERT_TRUE(sm::setTextProperty(bag, u"Client", u"Town", 1));
    ASSERT_TRUE(sm::setTextProperty(bag, u"Checked by", u"N. N.", 2));
    ASSERT_TRUE(sm::setTextProperty(bag, u"Phase", u"Design", 3));
    NewSheet sheet = begun(ground);
    ASSERT_TRUE(sheet.accept({u"0", u"First", u"first"}, false).isDone);
    ASSERT_TRUE(operations::placeNewSheet(*ground, *sheet.sheet(), plan));
    EXPECT_EQ(childrenOf(ground), (std::vector<TvString>{u"First", u"Plan"}));
    std::map<TvString, std::pair<int, TvString>> found;
    for (const sm::Property& each : sm::propertiesOf(sheet.sheet()->getCustomProperties())) {
        TvVariant value;
        TvString text;
        each.value->getValue(value);
        EXPECT_TRUE(value.getString(text));
        found[each.name] = {each.value->getFlags(), text};
    }
    EXPECT_EQ(found, (std::map<TvString, std::pair<int, TvString>>{{u"Checked by", {2, u"N. N."}},
                                                                   {u"Phase", {3, u"Design"}}}));
}

TEST_F(NewSheetTest, WithoutTheLockThereIsNoSheet)
{
    NewSheet sheet = begun(ground);
    ASSERT_TRUE(house->unlockDb(house, false));
    EXPECT_FALSE(sheet.accept({u"2", u"Section", u"2 Section"}, true).isDone);
    EXPECT_EQ(sheet.sheet(), nullptr);
    EXPECT_FALSE(NewSheet::opensInEditor());
}

TEST_F(NewSheetTest, GivingUpAfterARefusedOkLeavesNoFileAndNoSheet)
{
    const std::string before = Outline::of(house);
    {
        NewSheet sheet = begun(ground);
        EXPECT_FALSE(sheet.accept({u"1", u"Plan", u"1 Plan"}, true).isDone);
    }
    ASSERT_TRUE(house->unlockDb(house, false));
    EXPECT_EQ(Outline::of(house), before);
    EXPECT_EQ(drawings(), std::vector<std::string>{});
}

} // namespace
