#include <db/tv_db_host_application_services.h>
#include <ed/layouts.h>
#include <ed/tv_db_layout_manager.h>

#include "host_scene.h"

namespace {

using Names = std::vector<std::string>;

class NotingLayouts : public TvDbLayoutManagerReactor
{
public:
    void layoutCreated(const TvChar* name, TvDbObjectId) override { note("created", name); }
    void layoutToBeRemoved(const TvChar* name, TvDbObjectId) override { note("removing", name); }
    void layoutRemoved(const TvChar* name, TvDbObjectId) override { note("removed", name); }
    void layoutToBeRenamed(const TvChar* before, const TvChar* after, TvDbObjectId) override
    {
        note("renaming", before, after);
    }
    void layoutRenamed(const TvChar* before, const TvChar* after, TvDbObjectId) override
    {
        note("renamed", before, after);
    }
    void layoutCopied(const TvChar* source, TvDbObjectId from, const TvChar* copy,
                      TvDbObjectId to) override
    {
        note("copied", source, copy);
        EXPECT_NE(from, to);
    }
    void layoutsReordered(TvDbDatabase*) override { told.push_back("reordered"); }
    void layoutSwitched(const TvChar* name, TvDbObjectId) override { note("switched", name); }
    Names told;

private:
    void note(const char* what, const TvChar* name, const TvChar* other = u"")
    {
        const TvString second(other);
        told.push_back(std::string(what) + " " + TvString(name).utf8() +
                       (second.isEmpty() ? "" : " " + second.utf8()));
    }
};

class LayoutsTest : public HostTest
{
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        open("a.dwg");
        layoutsOf().addReactor(&noting);
        reactor.told.clear();
    }
    void TearDown() override
    {
        layoutsOf().removeReactor(&noting);
        HostTest::TearDown();
    }
    static TvDbLayoutManager& layoutsOf()
    {
        return *tvdbHostApplicationServices()->layoutManager();
    }
    Names noted() { return std::exchange(noting.told, {}); }
    NotingLayouts noting;
};

TEST_F(LayoutsTest, AreMadeRenamedCopiedMovedAndDeletedAndReactorsAreTold)
{
    TvDbLayoutManager& all = layoutsOf();
    TvDbObjectId layout, block;
    EXPECT_EQ(all.createLayout(u"Plan", layout, block), TvStatus::Ok);
    EXPECT_EQ(TvDbObjectPointer<TvDbLayout>(layout)->getBlockTableRecordId(), block);
    EXPECT_EQ(all.renameLayout(u"plan", u"Section"), TvStatus::Ok);
    EXPECT_EQ(all.copyLayout(u"Section", u"Section 2"), TvStatus::Ok);
    TvDbObjectId made;
    EXPECT_EQ(all.cloneLayout(layout, u"First", 1, made), TvStatus::Ok);
    EXPECT_EQ(all.moveLayout(made, 2), TvStatus::Ok);
    EXPECT_EQ(layouts(), (Names{"Model", "Layout1", "First", "Section", "Section 2"}));
    EXPECT_EQ(all.countLayouts(), 5);
    EXPECT_EQ(all.deleteLayout(u"SECTION"), TvStatus::Ok);
    EXPECT_FALSE(all.layoutExists(u"Section"));
    EXPECT_EQ(noted(), (Names{"created Plan", "renaming Plan Section", "renamed Plan Section",
                              "copied Section Section 2", "copied Section First", "reordered",
                              "removing Section", "removed Section"}));
}

TEST_F(LayoutsTest, AreFoundByNameAndByWhatIsShown)
{
    TvDbLayoutManager& all = layoutsOf();
    EXPECT_EQ(all.findActiveLayout(true), u"Model");
    EXPECT_EQ(all.findActiveLayout(false), u"Layout1");
    EXPECT_EQ(all.getActiveLayoutBTRId(), drawing().modelSpaceId());
    EXPECT_EQ(all.setCurrentLayout(u"layout1"), TvStatus::Ok);
    EXPECT_EQ(all.findActiveLayout(false), u"Layout1");
    EXPECT_EQ(all.activeLayoutId(), all.findLayoutNamed(u"LAYOUT1"));
    TvDbLayout* opened = nullptr;
    EXPECT_EQ(all.findLayoutNamed(u"Layout1", opened, TvDb::kForWrite), TvStatus::Ok);
    ASSERT_NE(opened, nullptr);
    EXPECT_TRUE(opened->isWriteEnabled());
    opened->close();
    EXPECT_EQ(all.findLayoutNamed(u"None", opened), TvStatus::KeyNotFound);
    EXPECT_EQ(opened, nullptr);
    EXPECT_EQ(all.setCurrentLayout(u"None"), TvStatus::KeyNotFound);
    EXPECT_EQ(all.setCurrentLayoutId({}), TvStatus::NotThatObject);
    EXPECT_EQ(noted(), (Names{"switched Layout1"}));
}

TEST_F(LayoutsTest, ASwitchIsToldHoweverItComesAbout)
{
    ed::setVariable(u"CTAB", TvString(u"Layout1"));
    ed::setVariable(u"TILEMODE", std::int16_t(1));
    ed::setVariable(u"TILEMODE", std::int16_t(0));
    ed::setVariable(u"TILEMODE", std::int16_t(0));
    EXPECT_EQ(noted(), (Names{"switched Layout1", "switched Model", "switched Layout1"}));
    EXPECT_EQ(reactor.told, (Names{"changed TILEMODE", "changed CTAB", "changed TILEMODE",
                                   "changed CTAB", "changed TILEMODE", "changed CTAB"}));
}

TEST_F(LayoutsTest, TheShownOneMayGoAndItsNeighbourIsShown)
{
    TvDbLayoutManager& all = layoutsOf();
    TvDbObjectId layout, block;
    all.createLayout(u"B", layout, block);
    all.createLayout(u"C", layout, block);
    all.setCurrentLayout(u"B");
    noted();
    EXPECT_EQ(all.deleteLayout(u"B"), TvStatus::Ok);
    EXPECT_EQ(all.findActiveLayout(true), u"C");
    EXPECT_EQ(all.deleteLayout(u"C"), TvStatus::Ok);
    EXPECT_EQ(all.findActiveLayout(true), u"Layout1");
    EXPECT_EQ(noted(), (Names{"removing B", "switched C", "removed B", "removing C",
                              "switched Layout1", "removed C"}));
}

TEST_F(LayoutsTest, WhatMayNotBeIsRefusedAndNothingChanges)
{
    TvDbLayoutManager& all = layoutsOf();
    TvDbObjectId layout, block;
    EXPECT_EQ(all.createLayout(u"", layout, block), TvStatus::InvalidName);
    EXPECT_EQ(all.createLayout(u"a|b", layout, block), TvStatus::InvalidName);
    EXPECT_EQ(all.createLayout(u" a", layout, block), TvStatus::InvalidName);
    EXPECT_EQ(all.createLayout(u"LAYOUT1", layout, block), TvStatus::DuplicateName);
    EXPECT_EQ(all.createLayout(u"model", layout, block), TvStatus::NameReserved);
    EXPECT_TRUE(layout.isNull());
    EXPECT_TRUE(block.isNull());
    EXPECT_EQ(all.renameLayout(u"Model", u"Other"), TvStatus::NameReserved);
    EXPECT_EQ(all.renameLayout(u"Layout1", u"model"), TvStatus::NameReserved);
    EXPECT_EQ(all.renameLayout(u"None", u"Other"), TvStatus::KeyNotFound);
    EXPECT_EQ(all.copyLayout(u"Model", u"Other"), TvStatus::NotApplicable);
    EXPECT_EQ(all.copyLayout(u"None", u"Other"), TvStatus::KeyNotFound);
    EXPECT_EQ(all.copyLayout(u"Layout1", u"Layout1"), TvStatus::DuplicateName);
    EXPECT_EQ(all.deleteLayout(u"Model"), TvStatus::NameReserved);
    EXPECT_EQ(all.deleteLayout(u"None"), TvStatus::KeyNotFound);
    EXPECT_EQ(all.deleteLayout(u"Layout1"), TvStatus::StillInUse) << "it is the last one";
    EXPECT_EQ(layouts(), (Names{"Model", "Layout1"}));
    for (const std::string& line : noted())
        EXPECT_TRUE(line.starts_with("renaming")) << line;
}

TEST_F(LayoutsTest, WithoutADrawingThereIsNothing)
{
    manager.closeDocument(manager.curDocument());
    TvDbLayoutManager& all = layoutsOf();
    TvDbObjectId layout, block;
    EXPECT_EQ(all.setCurrentLayout(u"Model"), TvStatus::NoDatabase);
    EXPECT_EQ(all.createLayout(u"A", layout, block), TvStatus::NoDatabase);
    EXPECT_EQ(all.renameLayout(u"A", u"B"), TvStatus::NoDatabase);
    EXPECT_EQ(all.deleteLayout(u"A"), TvStatus::NoDatabase);
    EXPECT_EQ(all.copyLayout(u"A", u"B"), TvStatus::NoDatabase);
    EXPECT_TRUE(all.findActiveLayout(true).isEmpty());
    EXPECT_EQ(all.countLayouts(), 0);
}

// The command

TEST_F(LayoutsTest, TheCommandDoesEachOfItsOptionsInAScriptsWords)
{
    type(u"LAYOUT N Plan\n-layout copy Plan\nPlan B\n_lo _R Plan B\nSection\nLAYOUT d Plan\n"
         u"LAYOUT S Section\n");
    EXPECT_TRUE(told().empty());
    EXPECT_EQ(layouts(), (Names{"Model", "Layout1", "Section"}));
    EXPECT_EQ(ed::currentLayoutName(drawing()), u"Section");
}

TEST_F(LayoutsTest, TheCommandAsksInItsOrderAndOffersNames)
{
    prompts.answers = {u"Copy", u"Layout1", u""};
    type(u"LAYOUT\n");
    EXPECT_EQ(told(), (Names{"word: Enter layout option [Copy/Delete/New/Rename/Set/?] <Set>: ",
                             "line: Enter name of the layout to copy <Model>: ",
                             "line: Enter name of the copy <Layout1 (2)>: "}));
    prompts.answers = {u"New", u""};
    type(u"LAYOUT\n");
    EXPECT_EQ(layouts(), (Names{"Model", "Layout1", "Layout1 (2)", "Layout2"}));
    told();
    prompts.answers = {u"", u"  layout2 "};
    type(u"LAYOUT\n");
    EXPECT_EQ(told().back(), "line: Enter layout to make current <Model>: ");
    EXPECT_EQ(ed::currentLayoutName(drawing()), u"Layout2");
}

TEST_F(LayoutsTest, TheCommandListsThemInTheOrderOfTheirTabs)
{
    type(u"LAYOUT ?\n");
    EXPECT_EQ(told(), (Names{"say 23201 Model *Model_Space", "say 23201 Layout1 *Paper_Space"}));
}

TEST_F(LayoutsTest, TheCommandTellsWhyNot)
{
    type(u"LAYOUT S None\nLAYOUT N Layout1\nLAYOUT N a*b\nLAYOUT D Layout1\nLAYOUT D Model\n"
         u"LAYOUT R None\nLAYOUT C None\n");
    EXPECT_EQ(told(), (Names{"say 23202 None", "say 23203 Layout1", "say 23204 a*b", "say 23206",
                             "say 23205", "say 23202 None", "say 23202 None"}));
}

TEST_F(LayoutsTest, EachCommandIsOneStepBack)
{
    type(u"LAYOUT N Plan\nLAYOUT C Plan\nPlan 2\nLAYOUT S Plan 2\n");
    type(u"U\n");
    EXPECT_EQ(ed::currentLayoutName(drawing()), u"Model");
    type(u"U\n");
    EXPECT_EQ(layouts(), (Names{"Model", "Layout1", "Plan"}));
    type(u"U\n");
    EXPECT_EQ(layouts(), (Names{"Model", "Layout1"}));
}

} // namespace
