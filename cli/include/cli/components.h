#pragma once

#include <string_view>
#include <vector>

#include <sm/tv_sm_database.h>

#include <cli/console.h>
#include <cli/requests.h>

namespace cli {

enum class Kind { SheetSet, Subset, Sheet, View, Category, Selection, Other };

Kind kindOf(const TvSmPersist& object);
/// As JSON documents have it: "sheetSet", "subset", "sheet", ...
std::string_view kindName(Kind kind);
/// For a sentence: "the sheet set", "a subset", ...
TvString kindWords(Kind kind);

TvString handleOf(const TvSmPersist& object);
/// How a person knows it: "A-101 - Ground floor" for a sheet, the name for anything else.
TvString labelOf(const TvSmComponent& component);
Json jsonOf(const TvSmComponent& component);

/// Refuses (Usage) what cannot be a handle, before anything is opened or locked.
void requireHandle(const TvString& handle);
/// The same for one that may be left out.
void requireHandleIfGiven(const TvString& handle);
/// Refuses (Usage) a text that is longer than @p limit UTF-16 units. @p field  as the user calls
/// it.
void requireFits(const TvString& field, const TvString& text, int limit);

/// The component of that handle, or refuses: NoInput when there is none, Usage when it is of
/// another kind than the function's name says.
TvSmComponent& componentAt(const TvSmDatabase& db, const TvString& handle);
TvSmSubset& subsetAt(const TvSmDatabase& db, const TvString& handle);
/// A sheet or a subset, never the set itself.
TvSmComponent& childAt(const TvSmDatabase& db, const TvString& handle);
TvSmSubset& parentOf(const TvSmComponent& child);

/// Refuses (Usage) a place whose handles make no sense.
void requirePlace(const Place& place);
/// Puts @p child into @p parent at @p place, or refuses.
void putAt(TvSmSubset& parent, TvSmComponent& child, const Place& place);

/// "name=value" in two. False when there is no "=" or nothing before it.
bool splitAssignment(const TvString& assignment, TvString& name, TvString& value);

struct Counts {
    int subsets = 0;
    int sheets = 0;
};
/// What stands below @p subset, at any depth.
Counts countBelow(const TvSmSubset& subset);

} // namespace cli
