#pragma once

#include <optional>
#include <vector>

#include <base/clock.h>
#include <core/session_host.h>
#include <core/status_pass.h>
#include <core/status_timer.h>
#include <panel/sheet_tree.h>
#include <panel/view_memory.h>

class TvSmComponent;
class TvSmSheet;

namespace panel {

/// What the page of the sheet list asks of the window that shows it.
class PageWindow
{
public:
    virtual ~PageWindow() = default;
    /// Painting of the tree stops, and goes on.
    virtual void suspendPainting() {}
    virtual void resumePainting() {}
    /// Everything but the box that chooses a set.
    virtual void enableControls(bool /*enabled*/) {}
    virtual void redrawSetBox() {}
    /// The format in which button 702 publishes, 1 to 3.
    virtual void showPublishFormat(int /*format*/) {}
    /// The item at the top of what is scrolled; null when there is none.
    virtual TreeItem* firstVisible() const { return nullptr; }
    virtual void scrollToTop(TreeItem* /*item*/) {}
    virtual void ensureVisible(TreeItem* /*item*/) {}
    /// Shown, and not rolled up.
    virtual bool isVisible() const { return true; }
    virtual void startTimer(int /*id*/, int /*periodMs*/) {}
    virtual void stopTimer(int /*id*/) {}
    /// workOnStatus() is to be called whenever there is time, until it answers true.
    virtual void wantIdleTime() {}
    virtual void updateUiStyle() {}
};

/// The page of the sheet list: which set it shows, how the tree follows it, and what of its display
/// is remembered.
class SheetListPage : public core::SheetSetPalette, private core::StatusTimer::Page
{
public:
    /// @param window  not owned; outlives the page. @param clock, files  not owned; of the status
    /// pass. The files are asked in another thread.
    SheetListPage(PageWindow& window, base::Clock& clock,
                  base::FileOps& files = base::systemFileOps());
    ~SheetListPage() override;

    SheetTree& tree() { return m_tree; }
    const ViewMemory& memory() const { return m_memory; }

    /// The current database is another one. The view of the one that was shown is remembered, or
    /// forgotten.
    void SwitchDatabase(bool remember);
    /// The content of the set that is shown changed: the tree becomes that of the set, with the
    /// same view. Only what differs is told. Nothing when none is shown.
    void ReloadDatabase();
    /// Fills the tree anew and puts its view back.
    void RebuildTree();

    /// Of the item with the caret; null when there is none, or it is gone.
    TvSmComponent* GetSelectedComponent() const;
    /// Of all selected items in the order of the tree; null for what is gone.
    void GetSelectedComponents(std::vector<TvSmComponent*>& list) const;
    /// The sheets of the selection, excluded ones too: a sheet set stands for all of them and ends
    /// the list, a subset for all below it.
    void GetSelectedSheets(std::vector<TvSmSheet*>& list) const;
    /// The next sheet before or behind the caret among its siblings becomes caret and selection;
    /// nothing when there is none.
    void SelectPreviousSheet();
    void SelectNextSheet();

    core::StatusTimer& statusTimer() { return m_statusTimer; }
    /// Begins a look at all drawings, in the place of one that runs; where that waits for the disk,
    /// behind it. A small set is done at once, as long as its disk answers.
    void UpdateStatusImages() override;
    void ResetStatusImages() override;
    /// Goes on with it for a moment, and waits for nothing. @return whether it is done.
    bool workOnStatus();

    /// Opens or closes all below the root; what the button shows next.
    void expandAll(bool expanded);
    bool isCollapsed() const { return m_collapsed; }
    /// The format of the publish button, 1 to 3.
    int publishFormat() const { return m_publishFormat; }
    void setPublishFormat(int format);
    /// The publish button is enabled.
    bool canPublishSelection() const { return m_tree.SelectionHasSheet(); }
    /// What the caret's last command of the tree left as the origin of a range.
    void anchorAtCaret() { m_tree.setAnchor(m_tree.caret()); }

    // core::SheetSetPalette
    void switchDatabase(bool keepState) override { SwitchDatabase(keepState); }
    void reloadDatabase() override { ReloadDatabase(); }
    void refreshLockState() override { m_window.redrawSetBox(); }
    TvSmDatabase* displayedDatabase() const override { return m_displayedDb; }
    void updateUiStyle() override;

private:
    void startTimer(int id, int periodMs) override { m_window.startTimer(id, periodMs); }
    void stopTimer(int id) override { m_window.stopTimer(id); }
    bool isVisible() const override { return m_window.isVisible(); }

    void fill(const ViewMemory::View* view);
    void rememberView();
    bool workOnStatus(int waitMs);
    void readPublishFormat();
    void selectSibling(TreeItem* (TreeItem::*next)() const);

    PageWindow& m_window;
    base::Clock& m_clock;
    base::FileOps& m_files;
    core::StatusTimer m_statusTimer;
    SheetTree m_tree;
    ViewMemory m_memory;
    TvSmDatabase* m_displayedDb = nullptr; // the manager's; told when it goes
    std::optional<core::StatusPass> m_pass;
    bool m_isPassDue = false; // another one, behind the one that waits for the disk
    bool m_collapsed = false;
    int m_publishFormat = 1;
};

} // namespace panel
