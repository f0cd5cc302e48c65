#pragma once

#include <vector>

#include <base/tv_string.h>

/// What is shown to the user and what he answers: one place for every message box, so that a window
/// shows it, the command-line tool answers it from its options, and a test sees each question in
/// order.
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

    virtual ~TvUserMessages() = default;
    virtual Answer show(const Message& message) = 0;
};

/// The one of this process; null: nobody can be asked, and every question counts as refused.
TvUserMessages* tvrxUserMessages();
/// Not owned. Null takes it away.
void tvrxSetUserMessages(TvUserMessages* messages);
/// Shows it, or answers Cancel or No where nobody can be asked (Ok where there is nothing to ask).
TvUserMessages::Answer tvrxShowMessage(const TvUserMessages::Message& message);
