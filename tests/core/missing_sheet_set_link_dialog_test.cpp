#include <core/missing_sheet_set_link_dialog.h>

#include <resources/texts.h>
#include <rx/tv_user_messages.h>

namespace {

class Answers : public TvUserMessages
{
public:
    explicit Answers(Answer answer) : m_answer(answer) { tvrxSetUserMessages(this); }
    ~Answers() override { tvrxSetUserMessages(nullptr); }
    Answer show(const Message& message) override
    {
        asked.push_back(message);
        return m_answer;
    }
    std::vector<Message> asked;

private:
    Answer m_answer;
};

const CMissingSheetSetLinkDialog kDialog(u"/plans/ground/a.dwg", u"C:\\sets\\house.dst");

} // namespace

TEST(MissingSheetSetLinkDialog, AsksWithTheDrawingsNameAndTheSetAsStored)
{
    Answers answers(TvUserMessages::Answer::Yes);
    EXPECT_EQ(kDialog.DoModal(), 1);
    ASSERT_EQ(answers.asked.size(), 1u);
    EXPECT_EQ(answers.asked[0].text, 350);
    EXPECT_EQ(answers.asked[0].buttons, TvUserMessages::Buttons::YesNo);
    EXPECT_EQ(answers.asked[0].arguments,
              (std::vector<TvString>{u"a.dwg", u"C:\\sets\\house.dst"}));
}

TEST(MissingSheetSetLinkDialog, AnyOtherAnswerKeepsTheLink)
{
    Answers answers(TvUserMessages::Answer::No);
    EXPECT_NE(kDialog.DoModal(), 1);
}

TEST(MissingSheetSetLinkDialog, KeepsTheLinkWhereNobodyCanBeAsked)
{
    EXPECT_NE(kDialog.DoModal(), 1);
}

TEST(MissingSheetSetLinkDialog, ItsTextTakesBothNames)
{
    const char16_t* pattern = text::find(350);
    ASSERT_NE(pattern, nullptr);
    const TvString shown = TvString().format(pattern, u"a.dwg", u"house.dst");
    EXPECT_NE(shown.find(u"a.dwg"), TvString::npos);
    EXPECT_NE(shown.find(u"house.dst"), TvString::npos);
}
