#include <ed/file_dialog.h>

namespace {

struct Prompts : ed::UserPrompts {
    int askText(const TvString&, bool, TvString&) override { return ed::kCancelled; }
    int askFiles(const FileQuestion& question, std::vector<TvString>& out) override
    {
        title = question.title;
        out = answer;
        return answer.empty() ? ed::kCancelled : 5100;
    }
    void print(const TvString&) override {}
    void say(int, const std::vector<TvString>&) override {}
    TvString title;
    std::vector<TvString> answer;
};

TEST(FileDialog, GivesWhatWasChosenAndNothingWhenTheUserGaveUp)
{
    Prompts prompts;
    ed::UserPrompts::FileQuestion question;
    question.title = u"Open";
    CFileDialog dialog(question);
    EXPECT_EQ(dialog.DoModal(), 2) << "nobody can be asked";
    ed::setUserPrompts(&prompts);
    prompts.answer = {u"/a.dst"};
    EXPECT_EQ(dialog.DoModal(), 1);
    EXPECT_EQ(prompts.title, u"Open");
    EXPECT_EQ(dialog.paths(), prompts.answer);
    prompts.answer.clear();
    EXPECT_EQ(dialog.DoModal(), 2);
    EXPECT_TRUE(dialog.paths().empty());
    ed::setUserPrompts(nullptr);
}

} // namespace
