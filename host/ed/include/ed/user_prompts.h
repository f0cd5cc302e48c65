#pragma once

#include <optional>
#include <vector>

#include <base/tv_string.h>
#include <ge/tv_ge_point.h>

struct resbuf;

namespace ed {

/// What a prompt answers besides 5100.
constexpr int kCancelled = -5002; ///< the user gave up, or nobody can be asked

/// Who asks the user and shows him what is said: a window, or whoever runs without one.
class UserPrompts
{
public:
    struct FileQuestion {
        TvString title;
        TvString start;                   ///< a file or folder to begin at; may be empty
        std::vector<TvString> extensions; ///< without dots; empty: any file
        TvString dialogName;              ///< under which the dialog remembers its folder
        bool isForFolder = false;
        bool mayBeSeveral = false;
        bool isForSaving = false; ///< the file need not be there
    };
    struct PointQuestion {
        TvString prompt;
        std::optional<TvGePoint3d> base; ///< a line may be drawn from here to the pointer; world
        bool isCorner = false;           ///< a rectangle instead of the line
    };

    virtual ~UserPrompts() = default;
    /// @param withBlanks  false: a blank ends the answer.
    /// @return 5100 or kCancelled.
    virtual int askText(const TvString& prompt, bool withBlanks, TvString& out) = 0;
    virtual int askFiles(const FileQuestion& question, std::vector<TvString>& out) = 0;
    /// A word that is typed, or a point that is picked; without a window the first only.
    /// @param picked  world coordinates; when it is set, @p typed does not count.
    virtual int askPoint(const PointQuestion& question, TvString& typed,
                         std::optional<TvGePoint3d>& picked);
    /// Text that is shown as it is.
    virtual void print(const TvString& text) = 0;
    /// The text of that number with its arguments, on a line of its own.
    virtual void say(int text, const std::vector<TvString>& arguments) = 0;
};

UserPrompts* userPrompts();
/// Not owned; null: nobody can be asked, and nothing is shown.
void setUserPrompts(UserPrompts* prompts);

/// Asks for a point: what was posted or scripted comes first, then the user is asked. As askPoint()
/// of the prompts.
int askForPoint(const UserPrompts::PointQuestion& question, TvString& typed,
                std::optional<TvGePoint3d>& picked);

} // namespace ed

/// Asks for a text: what was posted or scripted comes first, then the user is asked.
/// @param withBlanks  nonzero: blanks belong to the answer, only the end of the line ends it.
/// @return 5100, or another number with @p out alone.
int tvedGetString(int withBlanks, const TvChar* prompt, TvString& out);

/// Asks for a file.
/// @param extensions  without dots, with ; between them.
/// @param flags       bit 1: a file to be written; bit 4096: several files; bit 2048: a folder.
/// @param out         a chain of texts (5005), the caller's; null when the answer is not 5100.
/// @return 5100, or another number.
int tvedGetFileNavDialog(const TvChar* title, const TvChar* start, const TvChar* extensions,
                         const TvChar* dialogName, int flags, resbuf*& out);

/// Shows text at the command line. Arguments as TvString::format() takes them.
template <class... Args>
void tvutPrintf(const TvString& pattern, const Args&... args)
{
    if (ed::UserPrompts* prompts = ed::userPrompts())
        prompts->print(TvString().format(pattern, args...));
}

/// Puts text into the command line, as if it were typed once what runs now is done. An escape
/// character ends the command that runs; a blank or line feed ends a word.
void tvedPostCommand(const TvString& text);
