// Renames of many drawings on a disk that fails, and beside people who do not wait.

#include <utility>

#include <sys/stat.h>

#include <operations/rename_apply.h>

#include "rename_scene.h"

using operations::RenamePlan;
using operations::RenameRecovery;
using Kind = base::FaultyFileOps::Kind;

namespace {

class RenameFaultTest : public RenameTest
{
protected:
    /// New numbers, layouts and files for all sheets.
    RenamePlan all() const
    {
        return operations::planRename(operations::renumberTargets(
            *house, *operations::SheetNumbers::make(u"A-10", 1), {true, true}));
    }
    base::Status apply(const RenamePlan& effects)
    {
        return operations::applyRename(*database, effects,
                                       [this] { return database->unlockDb(database, true); });
    }
    /// Names and contents of all that a user made.
    std::map<std::string, std::string> files() const
    {
        std::map<std::string, std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
            const std::string name = entry.path().filename().string();
            if (name.ends_with(".dwg") || name.starts_with(".kvrename"))
                found[name] = folder.read(name);
        }
        return found;
    }
    std::vector<std::string> names() const
    {
        std::vector<std::string> all;
        for (const auto& [name, content] : files())
            all.push_back(name);
        return all;
    }
    /// As if the machine had stopped in front of the writing of the set: everything but the set is
    /// where it was at that moment.
    void stopBeforeTheSetIsWritten(const RenamePlan& effects)
    {
        const auto isOfRename = [](const std::filesystem::path& path) {
            const std::string name = path.filename().string();
            return name.ends_with(".dwg") || name.starts_with(".kvrename") ||
                   name == ".house.dst.rename";
        };
        const std::filesystem::path image = folder.path() / "image";
        std::filesystem::create_directory(image);
        const auto ofRename = [&](const std::filesystem::path& where) {
            std::vector<std::filesystem::path> found;
            for (const auto& entry : std::filesystem::directory_iterator(where))
                if (isOfRename(entry.path()))
                    found.push_back(entry.path());
            return found;
        };
        EXPECT_FALSE(operations::applyRename(*database, effects, [&] {
            for (const auto& file : ofRename(folder.path()))
                std::filesystem::copy(file, image / file.filename());
            return false;
        }));
        ASSERT_TRUE(database->unlockDb(database, false));
        for (const auto& file : ofRename(folder.path()))
            std::filesystem::remove(file);
        for (const auto& file : ofRename(image))
            std::filesystem::copy(file, folder.path() / file.filename());
        ASSERT_EQ(names().size(), 2u + effects.drawings.size()) << "new ones, and former contents";
    }
    void recover()
    {
        ASSERT_TRUE(database->getLockStatus() == 1 || database->lockDb(database));
        EXPECT_TRUE(operations::recoverRename(*database));
        EXPECT_TRUE(database->unlockDb(database, false));
    }
    /// Called once, in front of the first move of a file of that name.
    void beforeMoveOf(const std::string& name, std::function<void()> step)
    {
        ops.before = [this, name, step](int, const base::FaultyFileOps::Call& call) {
            if (call.kind != Kind::RenameNew || std::filesystem::path(call.path).filename() != name)
                return;
            const auto only = std::exchange(ops.before, nullptr); // keeps this function alive
            step();
        };
    }

    const std::vector<std::string> oldNames{"plan.dwg", "section.dwg"};
    const std::vector<std::string> newNames{"A-10 Plan.dwg", "A-12 Section.dwg"};
};

TEST_F(RenameFaultTest, WhicheverCallFailsItIsAllOldOrAllNewOnceRecovered)
{
    ASSERT_TRUE(database->unlockDb(database, true));
    const std::string before = folder.read("house.dst");
    const auto drawings = files();
    const std::filesystem::path store = folder.path() / "store";
    std::filesystem::create_directory(store);
    for (const char* name : {"house.dst", "plan.dwg", "section.dwg"})
        std::filesystem::copy(folder.path() / name, store / name);
    int oldOnes = 0, newOnes = 0;
    for (int n = 1;; n += 3) {
        ASSERT_TRUE(database->lockDb(database));
        const RenamePlan effects = all();
        ASSERT_FALSE(effects.hasClash()) << n;
        ops.reset();
        ops.failAt(n, EIO);
        const bool isDone = bool(apply(effects));
        const bool isThrough = ops.count() < n;
        ops.reset();
        recover();
        if (names() == newNames) {
            ++newOnes;
            EXPECT_NE(folder.read("house.dst").find("A-12 Section.dwg"), std::string::npos) << n;
        } else {
            ++oldOnes;
            EXPECT_FALSE(isDone) << n;
            EXPECT_EQ(names(), oldNames) << n;
            EXPECT_TRUE(files() == drawings) << n;
            EXPECT_EQ(folder.read("house.dst").find("A-1"), std::string::npos) << n;
        }
        EXPECT_FALSE(operations::hasRenameToRecover(database->getFileName())) << n;
        if (isThrough)
            break;
        for (const auto& [name, content] : files())
            std::filesystem::remove(folder.path() / name);
        for (const char* name : {"plan.dwg", "section.dwg"})
            std::filesystem::copy(store / name, folder.path() / name);
        std::filesystem::copy(store / "house.dst", folder.path() / "next");
        std::filesystem::rename(folder.path() / "next", folder.path() / "house.dst");
        ASSERT_TRUE(database->lockDb(database) && database->unlockDb(database, false));
    }
    EXPECT_GT(oldOnes, 10);
    EXPECT_GT(newOnes, 1);
}

TEST_F(RenameFaultTest, AFileSystemWithoutMovesThatSpareOthersIsServedByASecondName)
{
    ops.failKind(Kind::RenameNew, EINVAL);
    EXPECT_TRUE(apply(all()));
    EXPECT_EQ(names(), newNames);
    EXPECT_EQ(layoutOnDisk(section), u"A-12 Section");
}

TEST_F(RenameFaultTest, ADrawingKeepsItsRights)
{
    std::filesystem::permissions(folder.path() / "plan.dwg", std::filesystem::perms(0640));
    ASSERT_TRUE(apply(all()));
    struct stat now {
    };
    ASSERT_EQ(stat((folder.path() / "A-10 Plan.dwg").c_str(), &now), 0);
    EXPECT_EQ(now.st_mode & 0777u, 0640u);
}

TEST_F(RenameFaultTest, ADrawingThatIsWrittenWhileItLeavesKeepsThatContent)
{
    const std::string theirs = folder.read("section.dwg") + "their work";
    const RenamePlan effects = all();
    beforeMoveOf("plan.dwg", [&] { folder.write("plan.dwg", theirs); });
    const base::Status status = apply(effects);
    EXPECT_EQ(status.failure(), base::Failure::Conflict);
    EXPECT_EQ(names(), oldNames);
    EXPECT_EQ(folder.read("plan.dwg"), theirs);
}

TEST_F(RenameFaultTest, WhatSomebodyMadeOfANewDrawingBeforeItWentBackIsKeptBesideIt)
{
    const auto before = files();
    const RenamePlan effects = all();
    EXPECT_FALSE(operations::applyRename(*database, effects, [this] {
        folder.write("A-12 Section.dwg", "their work");
        database->unlockDb(database, false);
        return false;
    }));
    std::vector<std::string> now = names();
    ASSERT_EQ(now.size(), 3u);
    EXPECT_TRUE(now[0].starts_with("A-12 Section (recovered ")) << now[0];
    EXPECT_EQ(folder.read(now[0]), "their work");
    EXPECT_EQ(folder.read("plan.dwg"), before.at("plan.dwg"));
    EXPECT_EQ(folder.read("section.dwg"), before.at("section.dwg"));
}

TEST_F(RenameFaultTest, WhatSomebodyMadeOfANewDrawingBeforeTheRecoveryIsKeptBesideIt)
{
    const auto before = files();
    stopBeforeTheSetIsWritten(all());
    folder.write("A-12 Section.dwg", "their work");
    recover();
    const std::vector<std::string> now = names();
    ASSERT_EQ(now.size(), 3u);
    EXPECT_TRUE(now[0].starts_with("A-12 Section (recovered ")) << now[0];
    EXPECT_EQ(folder.read(now[0]), "their work");
    EXPECT_EQ(folder.read("plan.dwg"), before.at("plan.dwg"));
    EXPECT_EQ(folder.read("section.dwg"), before.at("section.dwg"));
}

TEST_F(RenameFaultTest, ARecoveryOverwritesNoDrawingThatSomebodyPutInItsPlace)
{
    const auto before = files();
    stopBeforeTheSetIsWritten(all());
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

TEST_F(RenameFaultTest, ASetThatSomebodyChangedMeanwhileWithoutTheNewNamesIsTakenBackToo)
{
    const auto before = files();
    stopBeforeTheSetIsWritten(all());
    change(database, [this](TvSmSheetSet&) { section->setTitle(u"Cut"); });
    recover();
    EXPECT_TRUE(files() == before);
    EXPECT_EQ(section->getNumber(), u"3");
}

TEST_F(RenameFaultTest, ASetThatNobodyWroteIsTakenBackEvenIfItHadTheNewNamesBefore)
{
    const auto before = files();
    operations::SheetTarget target; // the set calls the layout so already
    target.sheet = stair;
    target.layout = u"old name";
    stopBeforeTheSetIsWritten(operations::planRename(std::vector{target}));
    recover();
    EXPECT_TRUE(files() == before);
    EXPECT_EQ(layoutOnDisk(stair), u"A2");
}

TEST_F(RenameFaultTest, ASetThatWasWrittenAlthoughTheAnswerWasLostHasTheNewNames)
{
    EXPECT_TRUE(operations::applyRename(*database, all(), [this] {
        EXPECT_TRUE(database->unlockDb(database, true));
        return false;
    }));
    EXPECT_EQ(names(), newNames);
    EXPECT_FALSE(operations::hasRenameToRecover(database->getFileName()));
}

TEST_F(RenameFaultTest, WhoChangesHisMindIsToldOfNoOtherFailure)
{
    const base::Status status = operations::applyRename(*database, all(), [] { return false; });
    EXPECT_EQ(status.failure(), base::Failure::Interrupted);
    EXPECT_EQ(names(), oldNames);
}

TEST_F(RenameFaultTest, NothingButTheDrawingsAndTheNoteForTheUndoIsLeft)
{
    ASSERT_TRUE(apply(all()));
    std::vector<std::string> hidden;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        if (const std::string name = entry.path().filename().string();
            name.starts_with(".") && name.find(".dwg") != std::string::npos)
            hidden.push_back(name);
    EXPECT_EQ(hidden, std::vector<std::string>());
    EXPECT_TRUE(isThere(".house.dst.renamed"));
}

TEST_F(RenameFaultTest, AJournalAtItsEndIsFinishedWhateverTheSetSays)
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

} // namespace
