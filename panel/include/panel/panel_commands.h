#pragma once

#include <functional>
#include <map>
#include <set>

#include <panel/open_sheets.h>
#include <panel/panel_menus.h>

namespace panel {

/// What commands ask of the program around the panel.
class PanelProgram
{
public:
    virtual ~PanelProgram() = default;
    /// Shows the file in the desktop's file manager, selected.
    virtual void exploreFile(const TvString& path) = 0;
    virtual void hidePanel() = 0;
    /// Lets the user wait for a file whose folder does not answer at once; see WaitForDisk.
    virtual bool waitForDisk(const TvString& file, const std::function<bool()>& isThere);
    /// Tips follow the style from now on.
    virtual void tipStyleChanged() {}
};

/// Where a new sheet goes, by the item with the caret.
struct InsertionPlace {
    TreeItem* parent = nullptr;      ///< null: nowhere
    TreeItem* after = nullptr;       ///< null: at the end
    TvSmComponent* before = nullptr; ///< the object to insert in front of; null: at the end
};

/// The commands of the page. Those of other rooms are put in at start; one that nobody has put in
/// says that it is not available yet.
///
/// Without the objects that it works on, and while the set is locked, a command ends quietly. A
/// commit brings a reload: no command keeps items across it.
class PanelCommands
{
public:
    using Handler = std::function<void(SheetListPage& page)>;

    PanelCommands(SheetListPage& page, PanelMenus& menus, PanelProgram& program);

    /// Takes the place of what the command did before.
    void setHandler(int id, Handler handler);
    /// What publishing with a page setup does.
    using PageSetupHandler = std::function<void(SheetListPage& page, const TvString& name)>;
    void setPageSetupHandler(PageSetupHandler handler) { m_pageSetup = std::move(handler); }
    PanelMenus& menus() { return m_menus; }
    /// @return false for a number that is no command here; the default handler gets it.
    bool run(int id);
    /// Of an item that was hit, or null. @return whether that was all: the tree must not open or
    /// close the item as well.
    bool OpenSheetByDoubleClick(const TreeItem* item, bool withCtrl);
    InsertionPlace GetInsertionPlace() const;
    /// The name of the command's handler; null for a number that is none.
    static const char* nameOf(int id);

    /// The handles of all items that were selected when a sheet list was asked for.
    static std::vector<TvString>& sheetListHandles();

private:
    void addOwn();
    TvSmDatabase* database() const;
    std::vector<TvString> selectedHandles() const;
    WaitForDisk waiting();
    std::vector<core::DrawingLook::Question> askedBeforehand(int id) const;
    bool isAnswered(std::vector<core::DrawingLook::Question> questions);
    void refreshStatus() { m_page.statusTimer().UpdateSheetStatusIfEnabled(); }
    void applySelection(const TvString& handle);
    void setFormat(int id);
    void exploreSheet();
    void moveCaretOff(const std::set<TvString>& removed);
    void removeSubset();
    void removeSheets();
    void setExcluded(std::uint32_t kind, bool excluded);
    void insertSheetList();

    SheetListPage& m_page;
    PanelMenus& m_menus;
    PanelProgram& m_program;
    std::map<int, Handler> m_handlers;
    PageSetupHandler m_pageSetup;
};

} // namespace panel
