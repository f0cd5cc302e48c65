#pragma once

#include <vector>

#include <base/status.h>
#include <base/tv_string.h>

/// The program's words, by the numbers of their texts in the resources (23500 to 23799). Numbers
/// are forever: add, never renumber or reuse. What is put into a text stands in its pattern.
// clang-format off
#define KV_PROGRAM_WORDS(X) \
    /* start and options */                             \
    X(ProgramName, 23500)                               \
    X(Usage, 23501)                                     \
    X(Summary, 23502)                                   \
    X(HeadOptions, 23503)                               \
    X(HelpFiles, 23504)                                 \
    X(HelpHeadless, 23505)                              \
    X(HelpScript, 23506)                                \
    X(HelpNewInstance, 23507)                           \
    X(HelpVersion, 23508)                               \
    X(HelpHelp, 23509)                                  \
    X(HeadExamples, 23510)                              \
    X(Examples, 23511)                                  \
    X(VersionLine, 23512)                               \
    X(VersionFormats, 23513)                            \
    X(UnknownOption, 23514)                             \
    X(OptionNeedsValue, 23515)                          \
    X(OptionTwice, 23516)                               \
    X(CannotParse, 23517)                               \
    X(TryHelp, 23518)                                   \
    X(ErrorLine, 23519)                                 \
    X(MessageLine, 23520)                               \
    /* opening and running */                           \
    X(InUseBy, 23530)                                   \
    X(OpenedReadOnly, 23531)                            \
    X(Opened, 23532)                                    \
    X(UnsavedDiscarded, 23533)                          \
    X(InternalError, 23534)                             \
    X(UnknownReason, 23535)                             \
    X(Interrupted, 23536)                               \
    X(Question, 23537)                                  \
    X(CannotOpen, 23538)
// clang-format on

namespace app {

enum class Word : int {
#define KV_ENUMERATOR(name, number) name = number,
    KV_PROGRAM_WORDS(KV_ENUMERATOR)
#undef KV_ENUMERATOR
};

/// The text of that number with its arguments; that of Word::UnknownReason when there is none.
TvString textOf(int number, const std::vector<TvString>& arguments = {});
TvString textOf(Word word, const std::vector<TvString>& arguments = {});
/// Why something failed, in a sentence.
TvString textOf(const base::Status& status);

} // namespace app
