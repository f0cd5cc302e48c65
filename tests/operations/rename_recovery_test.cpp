// Renames of many drawings that were broken off, and what happened until somebody looked after
// them.

#include <operations/rename_journal.h>

#include "rename_fault_scene.h"

namespace {

class RenameRecoveryTest : public RenameFaultScene
{
};

TEST_F(RenameRecoveryTest, WhatSomebodyMadeOfANewDrawingBeforeTheRecoveryIsKeptBesideIt)
{
    const auto before = files();
    stop(all());
    folder.write("A-12 Section.dwg", "their work");
    recover();
    const std::vector<std::string> now = names();
    ASSERT_EQ(now.size(), 3u);
    EXPECT_TRUE(now[0].starts_with("A-12 Section (recovered ")) << now[0];
    EXPECT_EQ(folder.read(now[0]), "their work");
    EXPECT_EQ(folder.read("plan.dwg"), before.at("plan.dwg"));
    EXPECT_EQ(folder.read("section.dwg"), before.at("section.dwg"));
}

TEST_F(RenameRecoveryTest, ANewDrawingThatSomebodyTookAwayBeforeTheRecoveryHindersNothing)
{
    const auto before = files();
    stop(all());
    std::filesystem::remove(folder.path() / "A-10 Plan.dwg");
    recover();
    EXPECT_TRUE(files() == before);
}

TEST_F(RenameRecoveryTest, AMoveThatStoppedBetweenItsTwoNamesIsTakenBackFromBoth)
{
    const auto before = files();
    const RenamePlan effects = all();
    for (const char* reached : {".old", "A-10 Plan.dwg"}) { // leaving, and arriving
        ops.failKind(Kind::RenameNew, EINVAL);
        ops.before = [this, reached](int n, const base::FaultyFileOps::Call& call) {
            if (call.kind == Kind::Link && call.second.ends_with(reached))
                ops.failFrom(n + 1, EIO);
        };
        EXPECT_FALSE(apply(effects));
        ops.before = nullptr;
        ops.reset();
        const auto isReached = [reached](const auto& name) { return name.ends_with(reached); };
        EXPECT_TRUE(std::ranges::any_of(names(), isReached)) << "its other name waits as well";
        recover();
        EXPECT_TRUE(files() == before) << reached;
        ASSERT_TRUE(database->lockDb(database));
    }
}

TEST_F(RenameRecoveryTest, ARecoveryOverwritesNoDrawingThatSomebodyPutInItsPlace)
{
    const auto before = files();
    stop(all());
    folder.write("section.dwg", "their work");
    ASSERT_TRUE(database->lockDb(database));
    EXPECT_FALSE(operations::recoverRename(*database));
    EXPECT_EQ(folder.read("section.dwg"), "their work");
    EXPECT_TRUE(operations::hasRenameToRecover(database->getFileName())) << "for another try";
    std::filesystem::rename(folder.path() / "section.dwg", folder.path() / "theirs");
    recover();
    EXPECT_TRUE(files() == before);
    EXPECT_FALSE(operations::hasRenameToRecover(database->getFileName()));
}

TEST_F(RenameRecoveryTest, ASetThatSomebodyChangedMeanwhileWithoutTheNewNamesIsTakenBackToo)
{
    const auto before = files();
    stop(all());
    change(database, [this](TvSmSheetSet&) { section->setTitle(u"Cut"); });
    recover();
    EXPECT_TRUE(files() == before);
    EXPECT_EQ(section->getNumber(), u"3");

    operations::SheetTarget file; // and all other names stay as they are
    file.sheet = section;
    file.file = u"cut.dwg";
    ASSERT_TRUE(database->lockDb(database));
    stop(operations::planRename(std::vector{file}));
    change(database, [](TvSmSheetSet& top) { top.setName(u"House 2"); });
    recover();
    EXPECT_EQ(names(), oldNames);
}

TEST_F(RenameRecoveryTest, OneKindOfNewNamesIsEnoughToSeeThatTheSetWasWritten)
{
    using Target = operations::SheetTarget;
    const std::function<void(Target&)> kinds[] = {
        [](Target& target) { target.number = u"30"; },
        [](Target& target) { target.title = u"Cut"; },
        [](Target& target) { target.layout = u"C1"; },
        [](Target& target) { target.file = u"cut.dwg"; },
    };
    for (const auto& rename : kinds) {
        Target target;
        target.sheet = section;
        rename(target);
        const RenamePlan effects = operations::planRename(std::vector{target});
        stop(effects, Set::Written);
        ASSERT_TRUE(database->lockDb(database));
        const auto recovered = operations::recoverRename(*database);
        ASSERT_TRUE(recovered);
        EXPECT_EQ(*recovered, RenameRecovery::Finished) << &rename - kinds;
    }
    EXPECT_EQ(layoutOnDisk(section), u"C1");
    EXPECT_EQ(names(), (std::vector<std::string>{"cut.dwg", "plan.dwg"}));
}

TEST_F(RenameRecoveryTest, ASetThatNobodyWroteIsTakenBackEvenIfItHadTheNewNamesBefore)
{
    const auto before = files();
    operations::SheetTarget target; // the set calls the layout so already
    target.sheet = stair;
    target.layout = u"old name";
    stop(operations::planRename(std::vector{target}));
    recover();
    EXPECT_TRUE(files() == before);
    EXPECT_EQ(layoutOnDisk(stair), u"A2");
}

TEST_F(RenameRecoveryTest, AJournalAtItsEndIsFinishedWhateverTheSetSays)
{
    operations::RenameJournal journal;
    journal.token = base::newToken();
    journal.stage = operations::RenameStage::Done;
    journal.drawings.push_back(
        {folder.file("plan.dwg"), folder.file("plan.dwg"), true, base::ContentHash()});
    folder.write(std::filesystem::path(journal.asidePath(0)).filename().string(), "former");
    folder.write(".house.dst.rename", operations::journalText(journal));
    const auto recovered = operations::recoverRename(*database);
    ASSERT_TRUE(recovered);
    EXPECT_EQ(*recovered, RenameRecovery::Finished);
    EXPECT_EQ(names(), oldNames) << "the former content is gone";
    EXPECT_TRUE(isThere(".house.dst.renamed"));
}

TEST_F(RenameRecoveryTest, AFormerContentThatCannotBeRemovedKeepsNoRecoveryFromItsEnd)
{
    stop(all(), Set::Written);
    ops.failKind(Kind::Remove, EACCES);
    ASSERT_TRUE(database->lockDb(database));
    EXPECT_TRUE(operations::recoverRename(*database));
    ops.reset();
    EXPECT_FALSE(operations::hasRenameToRecover(database->getFileName()));
    EXPECT_TRUE(isThere(".house.dst.renamed"));
}

} // namespace
