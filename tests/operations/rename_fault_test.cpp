// Renames of many drawings on a disk that fails, and beside people who do not wait.

#include <sys/stat.h>

#include "rename_fault_scene.h"

namespace {

class RenameFaultTest : public RenameFaultScene
{
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

TEST_F(RenameFaultTest, ANewContentWhoseWritingFailedAtItsEndIsNotUsed)
{
    ops.before = [this](int n, const base::FaultyFileOps::Call& call) {
        if (call.kind == Kind::Close && call.path.ends_with(".new"))
            ops.failAt(n, EIO);
    };
    EXPECT_FALSE(apply(all()));
    ops.before = nullptr;
    EXPECT_EQ(names(), oldNames);
}

TEST_F(RenameFaultTest, AFormerContentThatIsGoneAlreadyLeavesNothingToDo)
{
    EXPECT_TRUE(operations::applyRename(*database, all(), [this] {
        for (const std::string& name : names())
            if (name.ends_with(".old"))
                std::filesystem::remove(folder.path() / name);
        return database->unlockDb(database, true);
    }));
    EXPECT_FALSE(operations::hasRenameToRecover(database->getFileName()));
}

TEST_F(RenameFaultTest, TheNewNamesAreOnTheDiskBeforeTheSetIsWritten)
{
    base::FaultyFileOps noting(base::systemFileOps());
    noting.skipFlushing();
    sm::environment().files = &noting;
    EXPECT_TRUE(operations::applyRename(*database, all(), [&] {
        const auto& calls = noting.trace();
        const auto isMove = [](const auto& call) { return call.kind == Kind::RenameNew; };
        const auto last = std::ranges::find_if(calls.rbegin(), calls.rend(), isMove).base();
        const auto isFolder = [this](const auto& call) {
            return call.kind == Kind::Flush && call.path == folder.path().string();
        };
        EXPECT_TRUE(std::any_of(last, calls.end(), isFolder));
        return database->unlockDb(database, true);
    }));
    sm::environment().files = &ops;
}

TEST_F(RenameFaultTest, WhatHindersTheWayBackIsToldRatherThanWhatBeganIt)
{
    const base::Status status = operations::applyRename(*database, all(), [this] {
        folder.write("section.dwg", "their work");
        return false;
    });
    EXPECT_FALSE(status);
    EXPECT_NE(status.failure(), base::Failure::Interrupted);
    EXPECT_EQ(folder.read("section.dwg"), "their work");
    EXPECT_TRUE(operations::hasRenameToRecover(database->getFileName()));
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

TEST_F(RenameFaultTest, ASetThatSomebodyElseWroteInsteadHasNotTheNewNames)
{
    EXPECT_FALSE(operations::applyRename(*database, all(), [this] {
        EXPECT_TRUE(database->unlockDb(database, false));
        change(database, [](TvSmSheetSet& top) { top.setName(u"House 2"); });
        return false;
    }));
    EXPECT_EQ(names(), oldNames);
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

} // namespace
