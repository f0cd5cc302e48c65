#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <base/tv_string.h>

namespace cli {

/// What every verb that changes a set is told besides.
struct ChangeOptions {
    /// How long to wait for somebody else's lock.
    std::chrono::milliseconds lockWait{0};
    /// Works on a private copy and tells what would change: takes no lock, writes nothing.
    bool dryRun = false;
};

/// A place among the children of a subset, by handles; at most one of both is given. Neither: at
/// the end.
struct Place {
    TvString before;
    TvString after;
};

struct NewRequest {
    TvString file;
    std::optional<TvString> name; ///< None: the file's name without its extension.
    std::optional<TvString> description;
    TvString templateFile; ///< Empty: an empty set.
    TvString from;         ///< A folder whose drawings become sheets; empty: none.
    bool subsets = false;  ///< Each folder below that becomes a subset.
    bool prefix = false;   ///< Sheets are named after their drawings, as they are anyway.
    bool noPrefix = false; ///< They are not.
    ChangeOptions change;
};

struct TreeRequest {
    TvString file;
    std::optional<int> depth; ///< Levels below the set that are shown; none: all.
};

struct InfoRequest {
    TvString file;
};

struct SubsetAddRequest {
    TvString file;
    TvString name;
    TvString in; ///< Empty: where the neighbour stands, or the set itself.
    Place place;
    ChangeOptions change;
};

struct SheetImportRequest {
    TvString file;
    std::vector<TvString> drawings;
    std::vector<TvString> layouts; ///< Names; empty: all that can be sheets.
    TvString in;                   ///< Empty: the set itself.
    bool noPrefix = false;
    bool all = false; ///< As without layouts; not together with them.
    ChangeOptions change;
};

struct MoveRequest {
    TvString file;
    TvString handle;
    TvString to;
    Place place;
    ChangeOptions change;
};

struct SetRequest {
    TvString file;
    TvString handle;
    std::vector<TvString> assignments; ///< key=value
    ChangeOptions change;
};

/// Whom a property belongs to.
enum class PropertyScope { Keep, SheetSet, Sheets };

struct PropSetRequest {
    TvString file;
    TvString handle;
    std::vector<TvString> assignments; ///< name=value
    /// Keep: as it is; a new one follows the object: a sheet's for a sheet, the set's elsewhere.
    PropertyScope scope = PropertyScope::Keep;
    ChangeOptions change;
};

struct PropRemoveRequest {
    TvString file;
    TvString handle;
    std::vector<TvString> names;
    ChangeOptions change;
};

struct PropListRequest {
    TvString file;
    TvString handle;
};

struct SheetRenameRequest {
    TvString file;
    TvString handle;
    std::optional<TvString> number, title; ///< None: as it is.
    std::optional<TvString> layout;        ///< In its drawing.
    std::optional<TvString> drawing;       ///< The drawing's file name.
    ChangeOptions change;
};

struct RenumberRequest {
    TvString file;
    TvString in; ///< Empty: the whole set.
    std::optional<TvString> first;
    std::optional<int> step; ///< None: 1.
    bool renameLayouts = false;
    bool renameFiles = false;
    bool undo = false;    ///< Takes the last rename back instead.
    bool recover = false; ///< Only looks after one that was broken off.
    ChangeOptions change;
};

struct RemoveRequest {
    TvString file;
    TvString handle;
    ChangeOptions change;
};

struct CheckRequest {
    TvString file;
    bool drawings = false; ///< A drawing that is not there is an error.
};

struct PublishRequest {
    TvString file;
    std::vector<TvString> select; ///< Handles of subsets and sheets; none: the whole set.
    TvString out; ///< A file or folder; empty: as the set's options say, or beside it.
    std::string format = "pdf";
    bool reverse = false;
    TvString pageSetup; ///< By name; empty: each layout's own.
    std::optional<int> jobs;
    std::string progress = "auto";
};

struct LockRequest {
    TvString file;
};

struct SheetNewRequest {
    TvString file;
    TvString number; ///< May be empty.
    TvString title;
    TvString in; ///< Empty: where the neighbour stands, or the set itself.
    Place place;
    TvString templateFile;   ///< Given with a layout; empty: what the set has for this place.
    TvString templateLayout; ///< Alone: another layout of that template.
    std::optional<TvString> fileName; ///< None: number, a blank, title.
    TvString folder;                  ///< For its drawing; empty: what the set has for this place.
    ChangeOptions change;
};

struct DrawingInfoRequest {
    TvString file;
};

struct DrawingCheckRequest {
    TvString file;
};

struct DrawingCopyRequest {
    TvString file;
    TvString to;
    std::string as; ///< A format ("AC1032", "dxf"); empty: as it is, by the new name's extension.
    bool overwrite = false;
    ChangeOptions change;
};

struct DrawingNewRequest {
    TvString file;
    std::string as; ///< Empty: the current format.
    ChangeOptions change;
};

struct LayoutListRequest {
    TvString file;
};

struct LayoutAddRequest {
    TvString file;
    TvString name;
    ChangeOptions change;
};

struct LayoutRenameRequest {
    TvString file;
    TvString name;
    TvString newName;
    ChangeOptions change;
};

struct LayoutRemoveRequest {
    TvString file;
    TvString name;
    ChangeOptions change;
};

struct SheetDataShowRequest {
    TvString file;
};

struct SheetDataWriteRequest {
    TvString file;
    std::optional<TvString> layout; ///< The layout by its name, or
    std::optional<TvString> handle; ///< by its handle; exactly one of both.
    TvString set;                   ///< Path of the sheet set.
    ChangeOptions change;
};

struct SheetDataRemoveRequest {
    TvString file;
    ChangeOptions change;
};

struct HelpRequest {
    std::vector<std::string> verb; ///< Its words; empty: the tool as a whole.
    bool manual = false;           ///< The man page's source instead.
    bool brief = false; ///< Without examples and without the options that all verbs have.
};

struct CompletionRequest {
    std::string shell;
};

struct VersionRequest {
};

} // namespace cli
