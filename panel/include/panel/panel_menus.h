#pragma once

#include <functional>
#include <vector>

#include <ed/menu.h>
#include <panel/sheet_list_page.h>

namespace panel {

/// The commands of the page by their numbers, which are those of the menus' entries.
enum CommandId : int {
    kFirstFormat = 1,
    kLastFormat = 3,
    kPublishFirst = 4,
    kPublishLast = 7,
    kEditPublishList = 10,
    kToggleReverseOrder = 11,
    kToggleStamp = 12,
    kStampSettings = 13,
    kPublishOptions = 14,
    kPdfOptions = 15,
    kPublishDialog = 16,
    kManageSelections = 17,
    kCreateSelection = 18,
    kCloseSheetSet = 19,
    kExploreSheetSet = 20,
    kOpenSheet = 21,
    kOpenSheetReadOnly = 22,
    kExploreSheet = 23,
    kNewSheet = 24,
    kNewSubset = 25,
    kImportLayout = 26,
    kResaveAll = 27,
    kSubsetProperties = 28,
    kRemoveSubset = 29,
    kResaveSubset = 30,
    kRenameSheets = 31,
    kRemoveSheets = 32,
    kArchive = 33,
    kTransmit = 34,
    kTransmitSettings = 35,
    kInsertSheetList = 36,
    kProperties = 37,
    kExcludeSubset = 40,
    kIncludeSubset = 41,
    kIncludeSheet = 42,
    kExcludeSheet = 43,
    kNoPublish = 44, ///< stands where publishing would, while no document is open
    kExpandAll = 47,
    kCollapseAll = 48,
    kHidePanel = 49,
    kFirstTipStyle = 50,
    kLastTipStyle = 57,
    kPageSetups = 58,
    kFirstDynamic = 100, ///< selections of sheets and page setups share the numbers from here on
};

/// What the context menu depends on.
struct ContextFacts {
    std::uint32_t kind = 0; ///< of the item
    int selected = 1;       ///< how many items are
    bool noDocuments = false;
    bool isLocked = false;
    bool isCurrentSheetInSet = true; ///< the current layout is a sheet of the set
    bool hasDrawing = true;          ///< of a sheet: it is there
    bool isDrawingOpen = false;      ///< of a sheet
    bool hasSheets = true;           ///< of a set or subset, at any depth
    bool isSheetSelected = true;     ///< at least one
};

/// What the publish menu depends on.
struct PublishFacts {
    std::uint32_t kind = 0;
    bool isPublishable = true; ///< there is something to publish at the item
    bool isIncluded = true;    ///< a subset that can be published, a sheet that is not excluded
    bool isLocked = false;
    bool reverseOrder = false;
    bool stamp = false;
    std::vector<TvString> pageSetups = {};
};

/// The facts as they are now. @param item  not null.
ContextFacts contextFacts(const SheetTree& tree, const TreeItem& item);

/// The menus as data; positions count from 0 and include separators.
ed::Menu publishMenu(const PublishFacts& facts);
ed::Menu contextMenu(const ContextFacts& facts, ed::Menu&& publish);
ed::Menu formatMenu(int format, bool isLocked);
ed::Menu backgroundMenu();

/// The text of a command in its menu, or null when it has none of its own.
const char16_t* commandText(int id);

/// The menus of the page, with what they remember between being shown and a choice.
class PanelMenus
{
public:
    explicit PanelMenus(SheetListPage& page) : m_page(page) {}

    /// The item that a right click is about: the one that was hit, or with Ctrl or Shift the one
    /// with the caret. Null: on none.
    TreeItem* itemForClick(TreeItem* hit, bool withCtrl, bool withShift) const;
    /// Reads the check marks anew. @param item  not null.
    ed::Menu context(const TreeItem& item);
    /// For the item with the caret; empty without one, and when its object is gone.
    ed::Menu publish();
    ed::Menu selections();
    ed::Menu format() const;

    /// What a number from kFirstDynamic on means now. A page setup whose number is that of a
    /// selection in the selections menu, as it was shown last, means that selection.
    enum class Dynamic { Nothing, Selection, PageSetup };
    Dynamic dynamicOf(int id) const;
    /// The handle of the selection behind that number; empty when it is none.
    TvString selectionOf(int id) const;
    /// The name of the page setup behind that number; empty when it is none.
    TvString pageSetupOf(int id) const;

    /// The selections of the menu as it was made last, in its order, by handle.
    const std::vector<TvString>& selectionSets() const { return m_selectionSets; }
    /// The page setups of the publish menu as it was made last.
    const std::vector<TvString>& pageSetupNames() const { return m_pageSetupNames; }
    /// Who knows the page setups of a set, in the order in which they are shown; asked each time a
    /// publish menu is made. Empty: there are none.
    using PageSetups = std::function<std::vector<TvString>(const TvSmDatabase& database)>;
    void setPageSetups(PageSetups source) { m_pageSetups = std::move(source); }
    bool reverseOrder() const { return m_reverseOrder; }
    bool stamp() const { return m_stamp; }
    /// Each turns the mark over, and keeps it in the settings.
    void toggleReverseOrder();
    void toggleStamp();

private:
    ed::Menu publishFor(const TreeItem& item);

    SheetListPage& m_page;
    PageSetups m_pageSetups;
    std::vector<TvString> m_selectionSets; // handles: the set may be loaded anew in between
    std::vector<TvString> m_pageSetupNames;
    bool m_reverseOrder = false;
    bool m_stamp = false;
};

} // namespace panel
