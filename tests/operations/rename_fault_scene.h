#pragma once

#include <utility>

#include <operations/rename_apply.h>

#include "rename_scene.h"

/// Renames of all sheets of House, with what lies beside its set.
class RenameFaultScene : public RenameTest
{
protected:
    using RenamePlan = operations::RenamePlan;
    using RenameRecovery = operations::RenameRecovery;
    using Kind = base::FaultyFileOps::Kind;

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
    enum class Set { Old, Written };
    /// As if the machine had stopped close to the writing of the set: everything but the set is
    /// where it was at that moment.
    void stop(const RenamePlan& effects, Set state = Set::Old)
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
        const base::Status done = operations::applyRename(*database, effects, [&] {
            if (state == Set::Written) {
                EXPECT_TRUE(database->unlockDb(database, true));
            }
            for (const auto& file : ofRename(folder.path()))
                std::filesystem::copy(file, image / file.filename());
            return false;
        });
        ASSERT_EQ(bool(done), state == Set::Written);
        if (state == Set::Old) {
            ASSERT_TRUE(database->unlockDb(database, false));
        }
        for (const auto& file : ofRename(folder.path()))
            std::filesystem::remove(file);
        for (const auto& file : ofRename(image))
            std::filesystem::copy(file, folder.path() / file.filename());
        std::filesystem::remove_all(image);
        ASSERT_TRUE(operations::hasRenameToRecover(database->getFileName()));
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
