// Asking the disk about drawings in another thread.

#include <core/disk_look.h>

#include <db/file_open_info_tip_manager.h>
#include <db/tv_db_database.h>

#include "blocking_files.h"
#include "session_scene.h"

namespace {

using core::DiskLook;
using What = DiskLook::What;

/// Counts the questions, and answers those about some names with an error.
class CountingFiles : public base::FaultyFileOps
{
public:
    CountingFiles() : FaultyFileOps(base::systemFileOps()) {}
    int describeName(const std::string& path, base::FileInfo& out) override
    {
        ++looks;
        return error ? error : base::systemFileOps().describeName(path, out);
    }
    int list(const std::string& folder, std::vector<std::string>& out) override
    {
        ++lists;
        return base::systemFileOps().list(folder, out);
    }
    int looks = 0, lists = 0, error = 0;
};

class DiskLookTest : public testing::Test
{
protected:
    DiskLook::Question about(const std::string& name) const
    {
        return {{(folder.path() / name).string()}};
    }
    std::vector<What> answersTo(std::vector<DiskLook::Question> questions)
    {
        const std::size_t count = questions.size();
        const DiskLook look(std::move(questions), files);
        EXPECT_TRUE(look.hasAnswered(count, DiskLook::kForEver));
        std::vector<What> answers;
        for (std::size_t i = 0; i < count; ++i)
            answers.push_back(look.answer(i).what);
        return answers;
    }

    TempFolder folder;
    CountingFiles files;
};

TEST_F(DiskLookTest, TellsFilesFromFoldersAndFromNothing)
{
    folder.write("a.dwg", "a");
    EXPECT_EQ(answersTo({about("a.dwg"), about("gone.dwg"), about(""), {}}),
              (std::vector<What>{What::File, What::Nothing, What::Other, What::Nothing}));
}

TEST_F(DiskLookTest, TheFirstPlaceWhereSomethingIsCounts)
{
    folder.write("b.dwg", "b");
    DiskLook::Question question = about("gone.dwg");
    question.places.push_back(about("b.dwg").places.front());
    const DiskLook look({question}, files);
    ASSERT_TRUE(look.hasAnswered(1, DiskLook::kForEver));
    EXPECT_EQ(look.answer(0).what, What::File);
    EXPECT_EQ(look.answer(0).place, 1u);
}

TEST_F(DiskLookTest, ADrawingThatIsBeingEditedIsInUseByALinkToItAsWell)
{
    folder.write("a.dwg", "a");
    folder.write("b.dwg", "b");
    std::filesystem::create_symlink(folder.path() / "a.dwg", folder.path() / "link.dwg");
    TvDbDatabase user(false, true);
    ASSERT_TRUE(db::beginUse(user, folder.file("a.dwg")));
    EXPECT_EQ(answersTo({about("a.dwg"), about("b.dwg"), about("link.dwg")}),
              (std::vector<What>{What::FileInUse, What::File, What::FileInUse}));
    db::endUse(user);
    EXPECT_EQ(answersTo({about("a.dwg")}), std::vector<What>{What::File});
}

TEST_F(DiskLookTest, AsksOnceForEachDrawingAndListsAFolderOnce)
{
    std::vector<DiskLook::Question> questions;
    for (int i = 0; i < 50; ++i) {
        const std::string name = std::to_string(i) + ".dwg";
        folder.write(name, "a");
        questions.push_back(about(name));
    }
    answersTo(questions);
    EXPECT_EQ(files.looks, 50);
    EXPECT_EQ(files.lists, 1);
}

TEST_F(DiskLookTest, AFolderThatDoesNotAnswerIsAskedOnce)
{
    files.error = ETIMEDOUT;
    const std::vector<DiskLook::Question> questions(50, about("a.dwg"));
    EXPECT_EQ(answersTo(questions), std::vector<What>(50, What::Nothing));
    EXPECT_EQ(files.looks, 1);
}

TEST_F(DiskLookTest, WhoAsksWaitsNoLongerThanHeWantsTo)
{
    folder.write("a.dwg", "a");
    BlockingFiles away(std::this_thread::get_id());
    {
        const DiskLook look({about("a.dwg")}, away);
        away.waitForQuestion();
        EXPECT_FALSE(look.hasAnswered(1, 1));
        EXPECT_FALSE(look.hasAnswered(1, 0));
        away.answer();
        EXPECT_TRUE(look.hasAnswered(1, DiskLook::kForEver));
        EXPECT_EQ(look.answer(0).what, What::File);
    }
    EXPECT_EQ(away.askedByForbidden(), 0) << "another thread asked";
}

TEST_F(DiskLookTest, OneThatIsGivenUpIsNotWaitedForAndAsksNoFurther)
{
    folder.write("a.dwg", "a");
    BlockingFiles away(std::this_thread::get_id());
    auto look = std::make_unique<DiskLook>(
        std::vector<DiskLook::Question>{about("a.dwg"), about("b.dwg")}, away);
    away.waitForQuestion();
    look.reset();
    EXPECT_EQ(away.asked(), 1);
    away.answer();
    away.waitForEnd();
    EXPECT_EQ(away.asked(), 1) << "neither the first drawing's folder nor the second drawing";
}

} // namespace
