// Questions with and without somebody who can be asked.

#include <rx/tv_user_messages.h>

namespace {

using Messages = TvUserMessages;

Messages::TaskDialog question()
{
    Messages::TaskDialog dialog;
    dialog.instruction = {1302, {u"House"}};
    dialog.commands = {{1001, {620, {}}}, {1002, {621, {}}}};
    dialog.standard = 1001;
    dialog.choices = {{1, {1, {}}}, {2, {2, {}}}};
    dialog.marked = 2;
    dialog.check = {3, {}};
    dialog.isChecked = true;
    return dialog;
}

struct BoxesOnly : Messages {
    Answer show(const Message&) override { return Answer::Ok; }
};

struct Answering : BoxesOnly {
    TaskAnswer showTask(const TaskDialog& dialog) override
    {
        asked = dialog.instruction.number;
        return answer;
    }
    int asked = 0;
    TaskAnswer answer;
};

void expectRefused(const Messages::TaskAnswer& answer)
{
    EXPECT_EQ(answer.button, 2);
    EXPECT_EQ(answer.marked, 2) << "marks stay as they stand";
    EXPECT_TRUE(answer.isChecked);
    EXPECT_FALSE(answer.hasFailed) << "a refusal is no failure";
}

TEST(TvUserMessages, ATaskDialogThatNobodySeesIsCancelled)
{
    ASSERT_EQ(tvrxUserMessages(), nullptr);
    expectRefused(tvrxShowTaskDialog(question()));
}

TEST(TvUserMessages, SoIsOneWhereOnlyBoxesAreSupplied)
{
    BoxesOnly boxes;
    tvrxSetUserMessages(&boxes);
    expectRefused(tvrxShowTaskDialog(question()));
    tvrxSetUserMessages(nullptr);
}

TEST(TvUserMessages, ATaskDialogIsAnsweredByTheNumberOfItsButton)
{
    Answering answering;
    answering.answer.button = 1002;
    answering.answer.marked = 1;
    tvrxSetUserMessages(&answering);
    const Messages::TaskAnswer answer = tvrxShowTaskDialog(question());
    tvrxSetUserMessages(nullptr);
    EXPECT_EQ(answering.asked, 1302);
    EXPECT_EQ(answer.button, 1002);
    EXPECT_EQ(answer.marked, 1);
}

} // namespace
