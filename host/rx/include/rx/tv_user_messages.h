#pragma once

#include <vector>

#include <base/tv_string.h>

/// What is shown to the user and what he answers: one place for every message box and task dialog,
/// so that a window shows it, the command-line tool answers it from its options, and a test sees
/// each question in order.
class TvUserMessages
{
public:
    enum class Buttons { Ok, OkCancel, YesNo };
    enum class Icon { None, Information, Warning, Question, Stop };
    enum class Answer { Ok = 1, Cancel = 2, Yes = 6, No = 7 };

    struct Message {
        int text = 0;                    ///< the number of its text, a pattern
        int caption = 0;                 ///< the number of its title; 0: the program's name
        std::vector<TvString> arguments; ///< of the text
        Buttons buttons = Buttons::Ok;
        Icon icon = Icon::None;
        Answer standard = Answer::Ok; ///< the button that Enter presses
    };

    /// A text by number, with what its pattern takes.
    struct Text {
        int number = 0; ///< 0: there is none
        std::vector<TvString> arguments;
    };
    /// A large button, or a choice of several: what it says, and the number that stands for it in
    /// the answer. Command buttons count from 100 up, so that they are no Answer.
    struct Choice {
        int result = 0;
        Text text;
    };
    /// A question with its answers written out, one below the other.
    struct TaskDialog {
        std::vector<Text> title; ///< with " - " between them; none: the program's name
        Text instruction;        ///< the question, in large letters
        Text content;            ///< below it; may be missing
        Icon icon = Icon::None;
        std::vector<Choice> commands;
        int standard = 0;            ///< what Enter presses: of a command, or an Answer
        bool mayBeCancelled = true;  ///< there is a Cancel button, and Escape presses it
        std::vector<Choice> choices; ///< one of which is marked; may be empty
        int marked = 0;              ///< the result of the one that is marked at first
        Text check;                  ///< of the check box; 0: there is none
        bool isChecked = false;
    };
    struct TaskAnswer {
        int button = static_cast<int>(Answer::Cancel); ///< of a command, or an Answer
        int marked = 0;                                ///< as it was left, cancelled or not
        bool isChecked = false;                        ///< as it was left, cancelled or not
        bool hasFailed = false; ///< it could not be shown at all; nobody refused anything
    };

    virtual ~TvUserMessages() = default;
    virtual Answer show(const Message& message) = 0;
    /// Refused, where nobody supplies more.
    virtual TaskAnswer showTask(const TaskDialog& dialog);
};

/// The one of this process; null: nobody can be asked, and every question counts as refused.
TvUserMessages* tvrxUserMessages();
/// Not owned. Null takes it away.
void tvrxSetUserMessages(TvUserMessages* messages);
/// Shows it, or answers Cancel or No where nobody can be asked (Ok where there is nothing to ask).
TvUserMessages::Answer tvrxShowMessage(const TvUserMessages::Message& message);
/// Shows it, or answers Cancel where nobody can be asked, with marks as they stand. That nobody is
/// there is a refusal, never a failure.
TvUserMessages::TaskAnswer tvrxShowTaskDialog(const TvUserMessages::TaskDialog& dialog);
