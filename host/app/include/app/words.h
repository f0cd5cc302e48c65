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
    X(CannotOpen, 23538)                                \
    /* the window */                                    \
    X(CommandLine, 23540)                               \
    X(CommandPrompt, 23541)                             \
    X(MenuFile, 23542)                                  \
    X(MenuEdit, 23543)                                  \
    X(MenuView, 23544)                                  \
    X(MenuLayout, 23545)                                \
    X(MenuTools, 23546)                                 \
    X(MenuHelp, 23547)                                  \
    X(New, 23548)                                       \
    X(Open, 23549)                                      \
    X(OpenRecent, 23550)                                \
    X(Save, 23551)                                      \
    X(SaveAs, 23552)                                    \
    X(Close, 23553)                                     \
    X(Quit, 23554)                                      \
    X(Undo, 23555)                                      \
    X(Redo, 23556)                                      \
    X(ToCommandLine, 23557)                             \
    X(ZoomExtents, 23558)                               \
    X(ZoomWindow, 23559)                                \
    X(ZoomIn, 23560)                                    \
    X(ZoomOut, 23561)                                   \
    X(Regenerate, 23562)                                \
    X(SavedViews, 23563)                                \
    X(SwitchTheme, 23564)                               \
    X(NextDrawing, 23565)                               \
    X(PreviousDrawing, 23566)                           \
    X(NextLayout, 23567)                                \
    X(PreviousLayout, 23568)                            \
    X(NewLayout, 23569)                                 \
    X(SheetSets, 23570)                                 \
    X(OpenSheetSet, 23571)                              \
    X(NewSheetSet, 23572)                               \
    X(RunScript, 23573)                                 \
    X(Help, 23574)                                      \
    X(About, 23575)                                     \
    X(RenameLayout, 23576)                              \
    X(DeleteLayout, 23577)                              \
    X(AskLayoutName, 23578)                             \
    X(AskReadOnly, 23579)                               \
    X(TitleReadOnly, 23580)                             \
    X(TabReadOnly, 23581)                               \
    X(Coordinates, 23582)                               \
    X(ToolBar, 23583)                                   \
    X(AboutText, 23584)                                 \
    X(NoModules, 23585)                                 \
    X(CrashReportAt, 23586)                             \
    X(AskRecover, 23587)                                \
    X(TitleRecover, 23588)                              \
    X(RecoveredAs, 23589)                               \
    X(RecoverDrawings, 23590)                           \
    X(AutosaveFailed, 23591)                            \
    X(WindowTitle, 23592)                               \
    X(NotSupportedFile, 23593)                          \
    X(NoRecent, 23594)                                  \
    X(HandedOver, 23595)                                \
    X(CloseTab, 23596)                                  \
    X(AskQuitLosing, 23597)                             \
    X(StartNew, 23600)                                  \
    X(StartOpen, 23601)                                 \
    X(StartOpenSet, 23602)                              \
    X(StartRecent, 23603)                               \
    X(StartEmpty, 23604)
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
