#pragma once

#include <functional>
#include <map>
#include <set>
#include <span>
#include <vector>

#include <base/status.h>
#include <base/tv_db_handle.h>

class TvSmDatabase;
class TvSmSheetSetMgr;

/// Which layouts of drawings may become sheets.
///
/// A layout is known by its drawing's path and its handle. It belongs to a set when a sheet of an
/// open set leads to it, or one of the set that the drawing itself names. A drawing that was moved
/// is another drawing.
namespace operations {

/// Whether a layout may become a sheet. The numbers are those of the words that say so.
enum class LayoutUse : int {
    Free = 404,
    NotListed = 405, ///< the drawing names a set, which does not have it
    InUse = 406,     ///< it is a sheet already
};

/// A layout on which something stands.
struct LayoutRow {
    TvString drawing; ///< path
    TvString layout;
    TvDbHandle handle;
    LayoutUse use = LayoutUse::Free;
    bool isTicked = false;
    bool isImportable() const { return use != LayoutUse::InUse; }
};

/// Layouts in the order of the drawing's dictionary, or as its tabs stand.
enum class LayoutOrder { Dictionary, Tabs };

/// What a drawing has for a sheet set.
struct DrawingLayouts {
    struct Layout {
        TvString name;
        TvDbHandle handle;
    };
    std::vector<Layout> layouts; ///< those on which something stands, never the model
    TvString sheetSet;           ///< path of the set that it names, as it stands there; else empty
};

/// Reads what @p path has for a sheet set.
/// @return why it cannot be read, or has no list of layouts; then @p out is empty.
/// @note reads the drawing's map of objects, and the few that matter.
base::Status readDrawingLayouts(const TvString& path, LayoutOrder order, DrawingLayouts& out);

/// Which layouts of some drawings the sheets of sets lead to.
class LayoutUses
{
public:
    /// @param drawings  paths; sheets of others are passed over without a question to the disk.
    explicit LayoutUses(std::span<const TvString> drawings);
    /// Notes all sheets of the set, at any depth. Null is harmless.
    /// @note O(sheets) in memory; the disk is asked for those in a drawing of such a name.
    void add(const TvSmDatabase* set);
    /// Paths are compared without regard to case, unless both spellings are different files.
    bool contains(const TvString& drawing, TvDbHandle layout) const;

private:
    struct Drawing {
        TvString path;
        std::set<TvDbHandle> layouts;
    };
    struct Collated {
        bool operator()(const TvString& left, const TvString& right) const
        {
            return left.collateNoCase(right) < 0;
        }
    };
    Drawing& drawingAt(const TvString& path);

    std::set<TvString> m_names;                                    // file names, as keys
    std::map<TvString, std::vector<Drawing>, Collated> m_drawings; // by the path's key
};

/// The layouts of drawings, with what was wrong with some of these.
struct LoadedLayouts {
    struct Unreadable {
        TvString drawing;
        base::Status status;
    };
    std::vector<LayoutRow> rows; ///< in the order of the drawings; none is ticked
    std::vector<Unreadable> unreadable;
    std::vector<TvString> withoutLayouts; ///< nothing stands on any paper of theirs
};

/// Where layouts may be in use already.
struct KnownSets {
    TvSmSheetSetMgr* manager = nullptr;    ///< not owned; all that it has open counts
    const TvSmDatabase* besides = nullptr; ///< not owned; counts as open; may be null
};

/// Looks at each drawing, and judges its layouts. The sets that drawings name are opened for that,
/// once each, and closed again; one that cannot be opened has no sheets, and one that was open
/// before stays as it is, locked or not.
/// @param beforeEach  called before each drawing is read; what it throws ends the load. May be
/// empty.
/// @return empty without a manager.
/// @note O(layouts + sheets), each set being walked once.
LoadedLayouts loadLayouts(std::span<const TvString> drawings, const KnownSets& sets,
                          LayoutOrder order = LayoutOrder::Dictionary,
                          const std::function<void()>& beforeEach = {});

} // namespace operations
