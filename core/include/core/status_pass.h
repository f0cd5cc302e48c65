#pragma once

#include <cstddef>
#include <functional>
#include <memory>

#include <base/clock.h>
#include <base/file_ops.h>
#include <base/tv_string.h>

class TvSmDatabase;

namespace core {

/// The picture of an item of the sheet list; numbers are those of the tree's list of images.
enum class SheetImage : int {
    ImageSet = 0,
    ImageSubset = 1,          ///< in order
    ImageSubsetBad = 2,       ///< no usable place for new sheets, or all its sheets are missing
    ImageSubsetNoPublish = 3, ///< in order, and excluded from publishing
    ImageSheet = 4,           ///< the drawing is there
    ImageSheetMissing = 5,
    ImageSheetInUse = 6, ///< somebody has the drawing open
};

/// Looks at the drawings of all sheets of a set, a little at a time, and tells the image of each
/// sheet and subset: sheets in the order of the tree, a subset behind what is below it.
///
/// The disk is asked in another thread, so that nobody waits for a folder that does not answer; see
/// DiskLook. Each drawing is asked about once in a pass, however many of its layouts are sheets.
/// Objects are found anew by their handles in each step, so the set may be changed and loaded
/// between two; what is gone keeps its image. The pass must be given up before its set closes.
class StatusPass
{
public:
    using Tell = std::function<void(const TvString& handle, SheetImage image)>;

    /// @param database  null is a pass that is done.
    /// @param tell      called in work(); it must not give up the pass.
    /// @param ops       asked in the other thread; not owned, outlives it.
    StatusPass(const TvSmDatabase* database, Tell tell, base::FileOps& ops = base::systemFileOps());
    ~StatusPass();
    StatusPass(StatusPass&&) noexcept;
    StatusPass& operator=(StatusPass&&) noexcept;

    bool isDone() const;
    /// The disk has not answered yet what comes next.
    bool isWaiting() const;
    /// Goes on with one sheet or subset, and waits for the disk. False when there was none left.
    bool step();
    /// Goes on until @p budgetMs are over. @return whether it is done.
    /// @param waitMs  for what the disk has not answered yet: it never waits longer than this.
    bool work(base::Clock& clock, int budgetMs = kSliceMs, int waitMs = kSliceMs);
    /// Everything at once.
    void finish();
    /// How many different drawings were asked about so far.
    std::size_t drawingsAsked() const;

    static constexpr int kSliceMs = 20;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace core
