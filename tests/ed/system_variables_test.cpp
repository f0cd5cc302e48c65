#include <db/dictionary_variable.h>
#include <ed/layouts.h>
#include <ed/system_variables.h>
#include <ed/tarv_sheet_set_internal.h>

#include <cmath>

#include "editor_scene.h"

namespace {

using Told = std::vector<std::string>;
using ed::VariableValue;

VariableValue whole(int value)
{
    return static_cast<std::int16_t>(value);
}

class VariablesTest : public EditorTest
{
protected:
    void SetUp() override
    {
        EditorTest::SetUp();
        ASSERT_EQ(drawing.readDwgFile(folder.file("a.dwg")), TvStatus::Ok);
        tvdbHostApplicationServices()->setWorkingDatabase(&drawing);
    }
    static int get(const TvChar* name, TvResbufPtr& out)
    {
        out = TvResbufPtr(tvutNewRb(5003));
        return tvedGetVar(name, out.get());
    }
    static int set(const TvChar* name, const TvResbufPtr& value)
    {
        return tvedSetVar(name, value.get());
    }
    TvDbDatabase drawing{false, true};
};

TEST_F(VariablesTest, OfSheetSetsBeginAsUsersExpect)
{
    const std::pair<const TvChar*, int> expected[] = {
        {u"SSLOCATE", 1},     {u"SSMAUTOOPEN", 1},
        {u"SSMPOLLTIME", 60}, {u"SSMSHEETSTATUS", 2},
        {u"SSKEEPCREATE", 1}, {u"COLORTHEME", 0},
        {u"ATTREQ", 1},       {u"_KV_INSPECTORCONTROLSTYLES", 0},
    };
    for (const auto& [name, value] : expected) {
        TvResbufPtr item;
        EXPECT_EQ(get(name, item), 5100) << TvString(name).utf8();
        EXPECT_EQ(item->restype, 5003);
        EXPECT_EQ(item->resval.rint, value) << TvString(name).utf8();
    }
}

TEST_F(VariablesTest, AreGivenInTheFormOfTheirKind)
{
    TvResbufPtr item;
    EXPECT_EQ(get(u"LTSCALE", item), 5100);
    EXPECT_EQ(item->restype, 5001);
    EXPECT_EQ(item->resval.rreal, drawing.headerRecord().real("LTSCALE"));
    EXPECT_EQ(get(u"extmin", item), 5100);
    EXPECT_EQ(item->restype, 5009);
    EXPECT_EQ(item->resval.rpoint[0], drawing.extmin().x);
    EXPECT_EQ(get(u"ctab", item), 5100);
    EXPECT_EQ(item->restype, 5005);
    EXPECT_EQ(TvString(item->resval.rstring), u"Model");
    EXPECT_EQ(tvedGetVar(u"SSLOCATE", item.get()), 5100) << "a text in the item is released";
    EXPECT_EQ(item->restype, 5003);
}

TEST_F(VariablesTest, UnknownOnesAndNullAreRefused)
{
    TvResbufPtr item;
    EXPECT_NE(get(u"NOSUCHVARIABLE", item), 5100);
    EXPECT_EQ(item->restype, 5003);
    EXPECT_NE(tvedGetVar(nullptr, item.get()), 5100);
    EXPECT_NE(tvedGetVar(u"SSLOCATE", nullptr), 5100);
    EXPECT_NE(set(u"NOSUCHVARIABLE", item), 5100);
    EXPECT_NE(tvedSetVar(u"SSLOCATE", nullptr), 5100);
    EXPECT_NE(tvedSetVar(nullptr, item.get()), 5100);
}

TEST_F(VariablesTest, OfTheUserOutliveTheProgram)
{
    EXPECT_EQ(set(u"SSMPOLLTIME", TvResbufPtr(tvutBuildList(5003, 90))), 5100);
    TarvikConfig later(folder.file("config"));
    tarvSetConfig(&later);
    EXPECT_EQ(ed::variable(u"SSMPOLLTIME"), whole(90));
}

TEST_F(VariablesTest, OfTheUserHoldUntilTheEndWhereTheyCannotBeKept)
{
    folder.write("file", "");
    TarvikConfig nowhere(folder.file("file") + u"/config");
    tarvSetConfig(&nowhere);
    EXPECT_TRUE(ed::setVariable(u"SSMPOLLTIME", whole(90)));
    EXPECT_EQ(ed::variable(u"SSMPOLLTIME"), whole(90));
    tarvSetConfig(&config);
    EXPECT_TRUE(ed::setVariable(u"SSMPOLLTIME", whole(45)));
    config.setValue(1, u"SystemVariables\\SSMPOLLTIME", TarvikConfigValue::ofInt(50));
    EXPECT_EQ(ed::variable(u"SSMPOLLTIME"), whole(50)) << "kept again, and seen from others";
}

TEST_F(VariablesTest, OfTheSessionDoNot)
{
    EXPECT_TRUE(ed::setVariable(u"_KV_INSPECTORCONTROLSTYLES", whole(2)));
    EXPECT_EQ(ed::variable(u"_KV_INSPECTORCONTROLSTYLES"), whole(2));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "config"));
    EXPECT_TRUE(ed::setVariable(u"_KV_INSPECTORCONTROLSTYLES", whole(0)));
}

TEST_F(VariablesTest, OfTheDrawingAreItsHeadersAndComeBackWithUndo)
{
    drawing.startUndoRecord();
    EXPECT_EQ(set(u"LTSCALE", TvResbufPtr(tvutBuildList(5001, 2.5))), 5100);
    EXPECT_EQ(drawing.headerRecord().real("LTSCALE"), 2.5);
    EXPECT_TRUE(drawing.isModified());
    drawing.undo();
    EXPECT_EQ(ed::variable(u"LTSCALE"), VariableValue(1.0));
    EXPECT_TRUE(ed::setVariable(u"INSBASE", db::Point{1, 2, 3}));
    EXPECT_EQ(drawing.headerRecord().point("INSBASE"), (db::Point{1, 2, 3}));
}

TEST_F(VariablesTest, OfTheDrawingAreNotThereWithoutOne)
{
    tvdbHostApplicationServices()->setWorkingDatabase(nullptr);
    EXPECT_EQ(ed::variable(u"LTSCALE"), std::nullopt);
    EXPECT_FALSE(ed::setVariable(u"LTSCALE", 2.0));
    EXPECT_EQ(ed::variable(u"CTAB"), std::nullopt);
    EXPECT_FALSE(ed::setVariable(u"CTAB", TvString(u"Layout1")));
    EXPECT_EQ(ed::variable(u"SSLOCATE"), whole(1)) << "the user's are";
}

TEST_F(VariablesTest, AChangeIsToldAndTheSameValueIsNone)
{
    EXPECT_TRUE(ed::setVariable(u"colortheme", whole(1)));
    EXPECT_TRUE(ed::setVariable(u"COLORTHEME", whole(1)));
    EXPECT_EQ(reactor.told, (Told{"changed COLORTHEME"}));
}

TEST_F(VariablesTest, OutOfRangeOrOfAnotherKindIsRefusedAndChangesNothing)
{
    EXPECT_FALSE(ed::setVariable(u"SSMPOLLTIME", whole(19)));
    EXPECT_FALSE(ed::setVariable(u"SSMPOLLTIME", whole(601)));
    EXPECT_TRUE(ed::setVariable(u"SSMPOLLTIME", whole(20)));
    EXPECT_TRUE(ed::setVariable(u"SSMPOLLTIME", whole(600)));
    EXPECT_FALSE(ed::setVariable(u"SSMPOLLTIME", 60.0)) << "a real is no whole number";
    EXPECT_FALSE(ed::setVariable(u"SSMPOLLTIME", TvString(u"60")));
    EXPECT_EQ(ed::variable(u"SSMPOLLTIME"), whole(600));
    EXPECT_FALSE(ed::setVariable(u"LTSCALE", 0.0));
    EXPECT_FALSE(ed::setVariable(u"LTSCALE", std::nan("")));
    EXPECT_TRUE(ed::setVariable(u"LTSCALE", whole(3))) << "a whole number is a real";
    EXPECT_FALSE(ed::setVariable(u"INSBASE", db::Point{1, HUGE_VAL, 0}));
    EXPECT_NE(set(u"SSMPOLLTIME", TvResbufPtr(tvutBuildList(5010, 65536 + 70))), 5100);
    EXPECT_EQ(set(u"SSMPOLLTIME", TvResbufPtr(tvutBuildList(5010, 70))), 5100);
}

TEST_F(VariablesTest, ASettingThatMakesNoSenseReadsAsTheStandard)
{
    config.setValue(1, u"SystemVariables\\SSMPOLLTIME", TarvikConfigValue::ofInt(5));
    EXPECT_EQ(ed::variable(u"SSMPOLLTIME"), whole(60));
    config.setValue(1, u"SystemVariables\\SSMPOLLTIME", TarvikConfigValue::ofText(u"often"));
    EXPECT_EQ(ed::variable(u"SSMPOLLTIME"), whole(60));
}

TEST_F(VariablesTest, ReadOnlyOnesCannotBeSet)
{
    for (const TvChar* name : {u"EXTMIN", u"DWGNAME", u"DBMOD", u"TDCREATE", u"DWGPREFIX"}) {
        const auto info = ed::systemVariable(name);
        ASSERT_TRUE(info) << TvString(name).utf8();
        EXPECT_TRUE(info->isReadOnly);
        const auto value = ed::variable(name);
        ASSERT_TRUE(value) << TvString(name).utf8();
        EXPECT_FALSE(ed::setVariable(name, *value));
    }
}

TEST_F(VariablesTest, TheCurrentTabSwitchesLayouts)
{
    EXPECT_TRUE(ed::setVariable(u"CTAB", TvString(u"layout1")));
    EXPECT_FALSE(drawing.tilemode());
    EXPECT_EQ(ed::variable(u"CTAB"), VariableValue(TvString(u"Layout1")));
    EXPECT_EQ(ed::variable(u"TILEMODE"), whole(0));
    EXPECT_EQ(reactor.told, (Told{"changed TILEMODE", "changed CTAB"}));
    EXPECT_FALSE(ed::setVariable(u"CTAB", TvString(u"Nowhere")));
    reactor.told.clear();
    EXPECT_TRUE(ed::setVariable(u"CTAB", TvString(u"Layout1")));
    EXPECT_TRUE(reactor.told.empty());
    EXPECT_TRUE(ed::setVariable(u"TILEMODE", whole(1)));
    EXPECT_EQ(ed::currentLayoutName(drawing), u"Model");
}

TEST_F(VariablesTest, LayoutsOfNewDrawingsAreSwitchedToAndFound)
{
    TvDbDatabase made(true, true);
    EXPECT_EQ(ed::setCurrentLayout(made, u"Layout2"), TvStatus::Ok);
    EXPECT_EQ(ed::currentLayoutName(made), u"Layout2");
    EXPECT_EQ(ed::setCurrentLayout(made, u"Layout1"), TvStatus::Ok);
    EXPECT_EQ(ed::currentLayoutName(made), u"Layout1");
    EXPECT_EQ(reactor.told, (Told{"changed TILEMODE", "changed CTAB", "changed CTAB"}));
    EXPECT_EQ(ed::setCurrentLayout(made, u"Model"), TvStatus::Ok);
    EXPECT_TRUE(made.tilemode());
    EXPECT_EQ(ed::setCurrentLayout(made, made.clayer()), TvStatus::NotThatObject);
    EXPECT_EQ(ed::setCurrentLayout(made, ed::currentLayout(drawing)), TvStatus::NotThatObject);
    EXPECT_EQ(ed::setCurrentLayout(made, TvDbObjectId()), TvStatus::NotThatObject);
}

TEST_F(VariablesTest, NamesOfTheDrawingFollowFromItsFile)
{
    EXPECT_EQ(ed::variable(u"DWGNAME"), VariableValue(TvString(u"a.dwg")));
    EXPECT_EQ(ed::variable(u"DWGPREFIX"),
              VariableValue(base::PathRules::native().folderOf(folder.file("a.dwg").view())));
    EXPECT_EQ(ed::variable(u"DWGTITLED"), whole(1));
    EXPECT_EQ(ed::variable(u"DBMOD"), whole(0));
    EXPECT_TRUE(ed::setVariable(u"LTSCALE", 4.0));
    EXPECT_EQ(ed::variable(u"DBMOD"), whole(1));
}

TEST_F(VariablesTest, TheCurrentLayerIsOneThatThereIs)
{
    EXPECT_EQ(ed::variable(u"CLAYER"), VariableValue(TvString(u"0")));
    EXPECT_FALSE(ed::setVariable(u"CLAYER", TvString(u"Walls")));
    EXPECT_TRUE(ed::setVariable(u"CLAYER", TvString(u"0")));
    EXPECT_TRUE(reactor.told.empty());
    EXPECT_EQ(ed::variable(u"TEXTSTYLE"), VariableValue(TvString(u"Standard")));
}

TEST_F(VariablesTest, TheCurrentTableStyleIsOneOfTheDrawings)
{
    TvDbDatabase made(true, true);
    tvdbHostApplicationServices()->setWorkingDatabase(&made);
    EXPECT_EQ(ed::variable(u"CTABLESTYLE"), VariableValue(TvString(u"Standard"))) << "none yet";
    EXPECT_FALSE(ed::setVariable(u"CTABLESTYLE", TvString(u"Sheets")));
    made.startUndoRecord();
    const TvDbObjectId styles = db::neededDictionaryEntry(made.namedObjectsDictionaryId(),
                                                          u"ACAD_TABLESTYLE", "DICTIONARY");
    ASSERT_TRUE(db::neededDictionaryEntry(styles, u"Sheets", "TABLESTYLE"));
    made.startUndoRecord();
    TvResbufPtr item(tvutNewRb(5003));
    EXPECT_EQ(set(u"ctablestyle", TvResbufPtr(tvutBuildList(5005, TvString(u"SHEETS")))), 5100);
    EXPECT_EQ(get(u"CTABLESTYLE", item), 5100);
    EXPECT_EQ(item->restype, 5005);
    EXPECT_EQ(TvString(item->resval.rstring), u"Sheets") << "as its dictionary spells it";
    EXPECT_EQ(db::dictionaryVariable(made, u"CTABLESTYLE"), u"Sheets");
    EXPECT_TRUE(ed::setVariable(u"CTABLESTYLE", TvString(u"Sheets")));
    EXPECT_EQ(reactor.told, (Told{"changed CTABLESTYLE"})) << "the same again is no change";
    EXPECT_EQ(made.undo(), TvStatus::Ok);
    EXPECT_EQ(ed::variable(u"CTABLESTYLE"), VariableValue(TvString(u"Standard")));
}

TEST_F(VariablesTest, ATableStyleThatIsGoneIsStillTold)
{
    EXPECT_EQ(db::setDictionaryVariable(drawing, u"CTABLESTYLE", u"Gone"), TvStatus::Ok);
    EXPECT_EQ(ed::variable(u"CTABLESTYLE"), VariableValue(TvString(u"Gone")));
}

TEST_F(VariablesTest, AllThatAreToldOfCanBeReadAndStandInOrder)
{
    const std::vector<ed::VariableInfo> all = ed::systemVariables();
    for (std::size_t i = 0; i < all.size(); ++i) {
        const TvString name(all[i].name);
        EXPECT_EQ(name, name.toUpper());
        EXPECT_TRUE(i == 0 || TvString(all[i - 1].name) < name) << name.utf8();
        const auto value = ed::variable(name.toLower());
        ASSERT_TRUE(value) << name.utf8();
        EXPECT_EQ(value->index(), static_cast<std::size_t>(all[i].kind)) << name.utf8();
    }
    EXPECT_EQ(ed::systemVariable(u"NOSUCHVARIABLE"), std::nullopt);
}

TEST_F(VariablesTest, ValuesAreTypedAndShownAlike)
{
    using Kind = ed::VariableKind;
    EXPECT_EQ(ed::parsedValue(Kind::Short, u"-12"), whole(-12));
    EXPECT_EQ(ed::parsedValue(Kind::Short, u"+12"), whole(12));
    for (const TvChar* wrong : {u"", u"1.5", u"40000", u"x", u"1 2", u"ä"})
        EXPECT_EQ(ed::parsedValue(Kind::Short, wrong), std::nullopt) << TvString(wrong).utf8();
    EXPECT_EQ(ed::parsedValue(Kind::Real, u".25"), VariableValue(0.25));
    EXPECT_EQ(ed::parsedValue(Kind::Real, u"1e400"), std::nullopt);
    EXPECT_EQ(ed::parsedValue(Kind::Real, u"nan"), std::nullopt);
    EXPECT_EQ(ed::parsedValue(Kind::Point, u"1,2"), VariableValue(db::Point{1, 2, 0}));
    EXPECT_EQ(ed::parsedValue(Kind::Point, u"1,2,-3"), VariableValue(db::Point{1, 2, -3}));
    for (const TvChar* wrong : {u"1", u"1,2,3,4", u"1,", u",1"})
        EXPECT_EQ(ed::parsedValue(Kind::Point, wrong), std::nullopt) << TvString(wrong).utf8();
    EXPECT_EQ(ed::parsedValue(Kind::Text, u"Layout 1"), VariableValue(TvString(u"Layout 1")));
    EXPECT_EQ(ed::valueText(whole(-12)), u"-12");
    EXPECT_EQ(ed::valueText(0.25), u"0.25");
    EXPECT_EQ(ed::valueText(db::Point{1, 2.5, -3}), u"1,2.5,-3");
    EXPECT_EQ(ed::valueText(TvString(u"x")), u"x");
}

/// Notes what the sheet-set module is told.
struct SheetSets : TarvSheetSetInternal {
    SheetSets() { tarvSetSheetSetInternal(this); }
    ~SheetSets() override { tarvSetSheetSetInternal(nullptr); }
    void GetCurrentLayoutSheetSetFile(TvString&) override {}
    void OnSheetStatusPollTimeChanged(short seconds) override
    {
        told.push_back("time " + std::to_string(seconds));
    }
    void OnSheetStatusModeChanged(short mode) override
    {
        told.push_back("mode " + std::to_string(mode));
    }
    void OpenSheetSetFile(const TvChar*) override {}
    void OpenSheetSetByDialog() override {}
    void RunNewSheetSetWizard() override {}
    Told told;
};

TEST_F(VariablesTest, TheSheetSetModuleIsToldOfTheVariablesThatItWorksBy)
{
    {
        SheetSets module;
        EXPECT_TRUE(ed::setVariable(u"ssmpolltime", whole(90)));
        EXPECT_TRUE(ed::setVariable(u"SSMPOLLTIME", whole(90))) << "the same again";
        EXPECT_TRUE(ed::setVariable(u"SSMSHEETSTATUS", whole(0)));
        EXPECT_TRUE(ed::setVariable(u"SSLOCATE", whole(0)));
        EXPECT_FALSE(ed::setVariable(u"SSMPOLLTIME", whole(3)));
        EXPECT_EQ(module.told, (Told{"time 90", "mode 0"}));
    }
    EXPECT_TRUE(ed::setVariable(u"SSMPOLLTIME", whole(60))) << "without the module too";
}

} // namespace
