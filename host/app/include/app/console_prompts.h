#pragma once

#include <functional>
#include <string_view>

#include <ed/user_prompts.h>
#include <rx/tv_user_messages.h>

namespace app {

/// What a program without a window says, and how it answers: it refuses.
///
/// What commands print goes to the output; messages go to the errors, and are counted when they
/// tell of a failure or are a warning. Control characters of foreign texts do not get through.
class ConsolePrompts : public ed::UserPrompts, public TvUserMessages
{
public:
    using Write = std::function<void(std::string_view utf8)>;
    ConsolePrompts(Write out, Write err) : m_out(std::move(out)), m_err(std::move(err)) {}

    int askText(const TvString& prompt, bool withBlanks, TvString& out) override;
    int askFiles(const FileQuestion& question, std::vector<TvString>& out) override;
    void print(const TvString& text) override;
    void say(int text, const std::vector<TvString>& arguments) override;
    Answer show(const Message& message) override;

    /// How many messages told of a failure.
    int failures() const { return m_failures; }
    /// Ends a line that was begun on the output.
    void endLine();

private:
    void tell(int text, const std::vector<TvString>& arguments, bool isFailure);

    Write m_out, m_err;
    int m_failures = 0;
    bool m_isInLine = false;
};

} // namespace app
