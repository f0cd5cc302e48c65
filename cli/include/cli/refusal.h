#pragma once

#include <exception>

#include <base/status.h>
#include <cli/exit_code.h>
#include <cli/words.h>

namespace cli {

/// A sentence for the user: what happened, and what to do about it.
struct Message {
    int number = 0;        ///< Of the sentence's text in the resources.
    TvString text;         ///< May hold text from outside: escape on showing.
    TvString advice;       ///< Empty where the sentence says it all.
    TvString code() const; ///< "E21016".
};

/// Ends a verb with nothing changed. Thrown within the tool only; attempt() turns it into an
/// outcome.
class Refusal : public std::exception
{
public:
    Refusal(ExitCode code, Message message) : m_code(code), m_message(std::move(message)) {}
    ExitCode exitCode() const { return m_code; }
    const Message& message() const { return m_message; }
    const char* what() const noexcept override { return "refused"; }

private:
    ExitCode m_code;
    Message m_message;
};

/// The sentence and the advice that belong to the status of a lower room.
Message messageOf(const base::Status& status);
template <class... Args>
Message messageOf(Word word, const Args&... arguments)
{
    return {static_cast<int>(word), words(word, arguments...), {}};
}

[[noreturn]] void refuse(const base::Status& status, Doing doing);
template <class... Args>
[[noreturn]] void refuse(ExitCode code, Word word, const Args&... arguments)
{
    throw Refusal(code, messageOf(word, arguments...));
}
template <class... Args>
[[noreturn]] void refuseUsage(Word word, const Args&... arguments)
{
    refuse(ExitCode::Usage, word, arguments...);
}

} // namespace cli
