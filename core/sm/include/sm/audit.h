#pragma once

#include <vector>

#include <base/tv_string.h>
#include <sm/tv_sm_fwd.h>

namespace sm {

enum class Severity {
    Error, ///< Something will not work, or not as it looks.
    Note,  ///< Worth a look; a set may be meant so.
};

/// What an audit can find. Each number is that of a text in the resources, and the rule is shown as
/// "K" and its last three digits (K007). Numbers are forever: add, never renumber or reuse.
/// The texts' arguments are told beside each.
enum class AuditRule : int {
    HandlesUsedUp = 22501,       ///< The next handle is out of range.
    NameTooLong = 22502,         ///< 1: length, 2: limit.
    TitleTooLong = 22503,        ///< 1: length, 2: limit.
    NumberTooLong = 22504,       ///< 1: length, 2: limit.
    PropertyNameTooLong = 22505, ///< 1: property, 2: length, 3: limit.
    PropertyNameEmpty = 22506,
    PropertyTwice = 22507,    ///< 1: property.
    SubsetTooDeep = 22508,    ///< 1: depth, 2: limit.
    LayoutIncomplete = 22509, ///< A layout reference without drawing, or without handle and name.
    ObjectHandleInvalid = 22510, ///< 1: the text that is no handle of a drawing object.
    LayoutTwice = 22511,         ///< 1: handle of the sheet that has the same layout.
    DrawingMissing = 22512,      ///< 1: path as stored.
    ReferenceMissing = 22513,    ///< Folder, template or other file; 1: path as stored.
    HintDisagrees = 22514,       ///< 1: stored path, 2: what the kept relative path leads to.
    NetworkNotLooked = 22515,    ///< 1: path as stored.
    CategoryGone = 22516,        ///< A view's category is not in the set.
    SelectionMemberGone = 22517, ///< 1: handle.
    NumberTwice = 22518,         ///< 1: number, 2: handle of the sheet that has it first.
    TitleEmpty = 22519,
    SubsetNameEmpty = 22520,
    SheetWithoutLayout = 22521,
    NewerVersion = 22522, ///< 1: version.
};

/// "K007".
TvString auditCode(AuditRule rule);

struct Finding {
    AuditRule rule;
    Severity severity;
    TvString handle; ///< Of the component that it is about.
    std::vector<TvString> arguments;
};

struct AuditOptions {
    /// A drawing that is not there is an error; otherwise a note, since drawings may be elsewhere
    /// for good reasons.
    bool drawingsMustBeThere = false;
};

/// Looks through a whole sheet set for what its reader lets pass and its user would want to know.
///
/// Changes nothing. Asks the disk about each referenced file once; files on network hosts that were
/// not agreed to are not touched, and noted.
/// @param db  null gives no findings.
/// @return in the order of the set's objects.
std::vector<Finding> auditSheetSet(const TvSmDatabase* db, const AuditOptions& options = {});

} // namespace sm
