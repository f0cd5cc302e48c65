#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include <cli/console.h>
#include <cli/requests.h>
#include <cli/words.h>

namespace CLI {
class App;
}

namespace cli {

/// All that one command line can say: what every verb is told, and the requests of the verbs, of
/// which one is filled in.
struct Invocation {
    bool json = false;
    bool quiet = false;
    bool version = false;
    std::string folder; ///< Where to work (-C); empty: here.
    ChangeOptions change;

    NewRequest newSet;
    TreeRequest tree;
    InfoRequest info;
    SubsetAddRequest subsetAdd;
    SheetImportRequest sheetImport;
    MoveRequest move;
    SetRequest set;
    PropSetRequest propSet;
    PropRemoveRequest propRemove;
    PropListRequest propList;
    SheetRenameRequest sheetRename;
    RenumberRequest renumber;
    RemoveRequest remove;
    CheckRequest check;
    PublishRequest publish;
    LockRequest lock;
    SheetNewRequest sheetNew;
    DrawingInfoRequest drawingInfo;
    DrawingCheckRequest drawingCheck;
    DrawingCopyRequest drawingCopy;
    DrawingNewRequest drawingNew;
    LayoutListRequest layoutList;
    LayoutAddRequest layoutAdd;
    LayoutRenameRequest layoutRename;
    LayoutRemoveRequest layoutRemove;
    SheetDataShowRequest sheetDataShow;
    SheetDataWriteRequest sheetDataWrite;
    SheetDataRemoveRequest sheetDataRemove;
    HelpRequest help;
    CompletionRequest completion;
};

class OptionList;

/// One verb: its row in the table of verbs.
struct Verb {
    const char* name; ///< One to three words: "tree", "subset add".
    Word summary;
    Word details;  ///< A paragraph for the long help and the man page.
    Word examples; ///< Command lines, one a line.
    void (*options)(OptionList& list, Invocation& into);
    Outcome (*run)(Invocation& invocation, Console& console);
};

std::span<const Verb> verbs();
/// Null when there is no such verb.
const Verb* findVerb(std::span<const std::string> words);
std::vector<std::string> wordsOf(const Verb& verb);
/// How many of the first words name a group, that is, begin a verb that goes on behind them.
std::size_t groupWords(std::span<const std::string> words);
/// The words with which the verbs go on behind those of @p group, in the order of the help; for no
/// words the first words of all.
std::vector<std::string> nextWords(std::span<const std::string> group);
/// Refuses (Usage) words that begin no verb, or break off within one, and tells what was meant.
[[noreturn]] void refuseUnknownVerb(std::span<const std::string> typed);
/// "subset add" from its words.
std::string joined(std::span<const std::string> words, const char* separator = " ");

/// How an option stands in help, man page and completion.
struct OptionInfo {
    std::string names; ///< "-n, --dry-run"; empty for an argument.
    std::string value; ///< "SECONDS", "FILE"; empty for a flag.
    std::string help;
    bool isRequired = false;
    bool isRepeated = false;
    bool isCommon = false;              ///< Every verb has it.
    std::vector<std::string> spellings; ///< "-n", "--dry-run".
};

/// The options and arguments of one verb in the order of the table; of the tool itself, before any
/// verb, for null. Read from the very tree that parses.
std::vector<OptionInfo> optionsOf(const Verb* verb);

/// What became of parsing one verb's arguments.
enum class Parsed { Ready, ShortHelp, LongHelp };

/// Parses what stands before the verb; @p rest gets the verb and all behind it.
Parsed parseBeforeVerb(std::span<const std::string> arguments, Invocation& into,
                       std::vector<std::string>& rest);
/// Parses a verb's options and arguments. Wrong usage is a Refusal with a sentence.
Parsed parseVerb(const Verb& verb, std::span<const std::string> arguments, Invocation& into);

/// The candidate that @p word was probably meant to be; empty when none is near.
std::string nearest(const std::string& word, std::span<const std::string> candidates);

} // namespace cli
