#pragma once

#include <base/tv_string.h>

/// The words of the tool, by the numbers of their texts in the resources (22000 to 22999). Numbers
/// are forever: add, never renumber or reuse. What is put into a text stands in its pattern.
// clang-format off
#define KV_TOOL_WORDS(X) \
    /* the tool and its help */                         \
    X(Tool, 22000)                                      \
    X(ToolSummary, 22001)                               \
    X(ToolDetails, 22002)                               \
    X(ToolExamples, 22003)                              \
    X(ToolUsage, 22004)                                 \
    X(ToolMore, 22005)                                  \
    X(VerbMore, 22006)                                  \
    X(OptionPlaceholder, 22007)                         \
    X(HeadExamples, 22008)                              \
    X(HeadVerbs, 22009)                                 \
    X(HeadOptions, 22010)                               \
    X(HeadUsage, 22011)                                 \
    X(ErrorLine, 22012)                                 \
    X(WarningLine, 22013)                               \
    X(VersionLine, 22014)                               \
    X(VersionFormat, 22015)                             \
    X(GroupMore, 22016)                                 \
    /* man page */                                      \
    X(ManName, 22020)                                   \
    X(ManSynopsis, 22021)                               \
    X(ManDescription, 22022)                            \
    X(ManVerbs, 22023)                                  \
    X(ManOptions, 22024)                                \
    X(ManExitStatus, 22025)                             \
    X(ManMessages, 22026)                               \
    X(ManFindings, 22027)                               \
    X(ManEnvironment, 22028)                            \
    X(ManConventions, 22029)                            \
    X(ManNoColor, 22030)                                \
    X(ExitOk, 22031)                                    \
    X(ExitPartlyFailed, 22032)                          \
    X(ExitUsage, 22033)                                 \
    X(ExitNoInput, 22034)                               \
    X(ExitLocked, 22035)                                \
    X(ExitConflict, 22036)                              \
    X(ExitCheckFailed, 22037)                           \
    X(ExitDamaged, 22038)                               \
    X(ExitCannotWrite, 22039)                           \
    X(ExitInternal, 22040)                              \
    X(ExitInterrupted, 22041)                           \
    /* verbs: summary, details, examples */             \
    X(SumNew, 22100)                                    \
    X(SumTree, 22101)                                   \
    X(SumInfo, 22102)                                   \
    X(SumSubsetAdd, 22103)                              \
    X(SumMove, 22104)                                   \
    X(SumSet, 22105)                                    \
    X(SumPropSet, 22106)                                \
    X(SumPropRemove, 22107)                             \
    X(SumPropList, 22108)                               \
    X(SumRemove, 22109)                                 \
    X(SumCheck, 22110)                                  \
    X(SumLock, 22111)                                   \
    X(SumHelp, 22112)                                   \
    X(SumCompletion, 22113)                             \
    X(DetNew, 22120)                                    \
    X(DetTree, 22121)                                   \
    X(DetInfo, 22122)                                   \
    X(DetSubsetAdd, 22123)                              \
    X(DetMove, 22124)                                   \
    X(DetSet, 22125)                                    \
    X(DetPropSet, 22126)                                \
    X(DetPropRemove, 22127)                             \
    X(DetPropList, 22128)                               \
    X(DetRemove, 22129)                                 \
    X(DetCheck, 22130)                                  \
    X(DetLock, 22131)                                   \
    X(DetHelp, 22132)                                   \
    X(DetCompletion, 22133)                             \
    X(ExNew, 22140)                                     \
    X(ExTree, 22141)                                    \
    X(ExInfo, 22142)                                    \
    X(ExSubsetAdd, 22143)                               \
    X(ExMove, 22144)                                    \
    X(ExSet, 22145)                                     \
    X(ExPropSet, 22146)                                 \
    X(ExPropRemove, 22147)                              \
    X(ExPropList, 22148)                                \
    X(ExRemove, 22149)                                  \
    X(ExCheck, 22150)                                   \
    X(ExLock, 22151)                                    \
    X(ExHelp, 22152)                                    \
    X(ExCompletion, 22153)                              \
    /* options */                                       \
    X(HelpFile, 22160)                                  \
    X(HelpNewFile, 22161)                               \
    X(HelpHandle, 22162)                                \
    X(HelpName, 22163)                                  \
    X(HelpDesc, 22164)                                  \
    X(HelpTemplate, 22165)                              \
    X(HelpDepth, 22166)                                 \
    X(HelpSubsetName, 22167)                            \
    X(HelpIn, 22168)                                    \
    X(HelpTo, 22169)                                    \
    X(HelpBefore, 22170)                                \
    X(HelpAfter, 22171)                                 \
    X(HelpAssignments, 22172)                           \
    X(HelpProperties, 22173)                            \
    X(HelpPropertyNames, 22174)                         \
    X(HelpFor, 22175)                                   \
    X(HelpDrawings, 22176)                              \
    X(HelpVerb, 22177)                                  \
    X(HelpMan, 22178)                                   \
    X(HelpShell, 22179)                                 \
    X(HelpDryRun, 22180)                                \
    X(HelpJson, 22181)                                  \
    X(HelpLockWait, 22182)                              \
    X(HelpFolder, 22183)                                \
    X(HelpQuiet, 22184)                                 \
    X(HelpShort, 22185)                                 \
    X(HelpLong, 22186)                                  \
    X(HelpVersion, 22187)                               \
    /* what verbs say */                                \
    X(WaitingForLock, 22200)                            \
    X(DryRunDone, 22201)                                \
    X(NextAfterNew, 22202)                              \
    X(NothingToChange, 22203)                           \
    X(Moved, 22204)                                     \
    X(ChangedFromTo, 22205)                             \
    X(TreeHidden, 22206)                                \
    X(TreeExcluded, 22207)                              \
    X(MovedWithin, 22208)                               \
    X(InfoName, 22210)                                  \
    X(InfoDescription, 22211)                           \
    X(InfoFile, 22212)                                  \
    X(InfoSize, 22213)                                  \
    X(InfoVersion, 22214)                               \
    X(InfoHandle, 22215)                                \
    X(InfoSubsets, 22216)                               \
    X(InfoSheets, 22217)                                \
    X(InfoDrawings, 22218)                              \
    X(InfoLock, 22219)                                  \
    X(InfoBytes, 22220)                                 \
    X(InfoSheetCounts, 22221)                           \
    X(InfoDrawingCounts, 22222)                         \
    X(InfoDrawingsNotLooked, 22223)                     \
    X(LockFree, 22230)                                  \
    X(LockHeldByMe, 22231)                              \
    X(LockHeldSameHost, 22232)                          \
    X(LockHeldOtherHost, 22233)                         \
    X(LockAbandoned, 22234)                             \
    X(LockLost, 22235)                                  \
    X(LockDenied, 22236)                                \
    X(LockUnsupported, 22237)                           \
    X(LockUnreachable, 22238)                           \
    X(LockStateAndOwner, 22239)                         \
    X(LockUserAtHost, 22240)                            \
    X(LockProgram, 22241)                               \
    X(LockLabelState, 22242)                            \
    X(LockLabelOwner, 22243)                            \
    X(LockLabelSince, 22244)                            \
    X(LockLabelProgram, 22245)                          \
    X(LockLabelPurpose, 22246)                          \
    X(CheckError, 22250)                                \
    X(CheckNote, 22251)                                 \
    X(CheckSummary, 22252)                              \
    X(KindSheetSet, 22260)                              \
    X(KindSubset, 22261)                                \
    X(KindSheet, 22262)                                 \
    X(KindView, 22263)                                  \
    X(KindCategory, 22264)                              \
    X(KindSelection, 22265)                             \
    X(KindOther, 22266)                                 \
    X(FieldPropertyName, 22267)                         \
    /* errors and warnings: shown with their numbers */ \
    X(UnknownReason, 22400)                             \
    X(UnknownVerb, 22401)                               \
    X(UnknownVerbNear, 22402)                           \
    X(VerbIncomplete, 22403)                            \
    X(UnknownOption, 22404)                             \
    X(UnknownOptionNear, 22405)                         \
    X(TooManyArguments, 22406)                          \
    X(ArgumentMissing, 22407)                           \
    X(OptionValue, 22408)                               \
    X(OptionsExclude, 22409)                            \
    X(CannotParse, 22410)                               \
    X(EmptyArgument, 22411)                             \
    X(NotUtf8, 22412)                                   \
    X(NotANumber, 22413)                                \
    X(NotAScope, 22414)                                 \
    X(UnknownShell, 22415)                              \
    X(CannotEnterFolder, 22416)                         \
    X(CannotWriteOutput, 22417)                         \
    X(InternalError, 22418)                             \
    X(NoVerb, 22419)                                    \
    X(NotAHandle, 22420)                                \
    X(NoSuchHandle, 22421)                              \
    X(NotAComponent, 22422)                             \
    X(NotASubset, 22423)                                \
    X(NotAChild, 22424)                                 \
    X(NeighbourIsItself, 22425)                         \
    X(NeighbourElsewhere, 22426)                        \
    X(MoveIntoItself, 22427)                            \
    X(TreeTooDeep, 22428)                               \
    X(RemoveTheSet, 22429)                              \
    X(TextTooLong, 22430)                               \
    X(NameEmpty, 22431)                                 \
    X(NotADstName, 22432)                               \
    X(BadFileName, 22433)                               \
    X(NotAnAssignment, 22434)                           \
    X(UnknownKey, 22435)                                \
    X(KeyOfOtherKind, 22436)                            \
    X(KeyTwice, 22437)                                  \
    X(NotYesOrNo, 22438)                                \
    X(NotAProperty, 22439)                              \
    X(NoSuchProperty, 22440)                            \
    X(NoneOfTheProperties, 22441)                       \
    X(SetterRefused, 22442)                             \
    X(WarnDryRunLocked, 22450)                          \
    X(WarnNewerVersion, 22451)                          \
    /* advice */                                        \
    X(AdviceNotFound, 22700)                            \
    X(AdviceDenied, 22701)                              \
    X(AdviceReadOnly, 22702)                            \
    X(AdviceDiskFull, 22703)                            \
    X(AdviceExists, 22704)                              \
    X(AdviceLocked, 22705)                              \
    X(AdviceConflict, 22706)                            \
    X(AdviceDamaged, 22707)                             \
    X(AdviceUnsupported, 22708)                         \
    X(AdviceUnreachable, 22709)
// clang-format on

namespace cli {

enum class Word : int {
#define KV_ENUMERATOR(name, number) name = number,
    KV_TOOL_WORDS(KV_ENUMERATOR)
#undef KV_ENUMERATOR
};

/// The pattern in the language in force.
TvString patternOf(Word word);

/// The text with its arguments put in.
template <class... Args>
TvString words(Word word, const Args&... arguments)
{
    return TvString().format(patternOf(word), arguments...);
}

} // namespace cli
