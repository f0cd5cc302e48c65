#pragma once

#include <memory>

#include <panel/panel_commands.h>
#include <ui/td_ui_dialog.h>

class CDragTreeCtrl;

/// The page of the sheet list: the box with the current set, its buttons, and the tree.
class CSheetSetDlg : public CTdUiDialog
{
public:
    static constexpr int kNumber = 700;
    enum Control : int {
        kSetBox = 701,
        kPublish = 702,
        kPublishMenu = 703,
        kSelections = 704,
        kBar = 705,
        kExpand = 706,
        kTips = 707,
        kRefresh = 708,
        kTree = 709,
        kFilter = 710, ///< what is looked for in the tree
    };

    /// @param isPanelVisible  whether the palette set is shown and not rolled up; not empty.
    explicit CSheetSetDlg(std::function<bool()> isPanelVisible);
    ~CSheetSetDlg() override;

    panel::SheetListPage& page() { return *m_page; }
    panel::PanelMenus& menus() { return *m_menus; }
    /// Rooms above put their commands in here.
    panel::PanelCommands& commands() { return *m_commands; }
    CDragTreeCtrl& tree() { return *m_tree; }
    bool showsTips() const { return m_showTips; }

    virtual void SelectPreviousSheet() { m_page->SelectPreviousSheet(); }
    virtual void SelectNextSheet() { m_page->SelectNextSheet(); }
    virtual TvSmComponent* GetSelectedComponent() { return m_page->GetSelectedComponent(); }
    virtual void GetSelectedComponents(std::vector<TvSmComponent*>& list)
    {
        m_page->GetSelectedComponents(list);
    }
    virtual void GetSelectedSheets(std::vector<TvSmSheet*>& list)
    {
        m_page->GetSelectedSheets(list);
    }

protected:
    QWidget* MakeControl(const text::ControlTemplate& row, QWidget* parent) override;
    bool OnInitDialog() override;
    void OnCommand(int id) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Window;
    class Program;
    void connectTree();
    void connectMenus();
    void connectFilter();
    void run(int id);
    void popup(const ed::Menu& menu, const QPoint& at);
    void showTreeMenu(panel::TreeItem* hit, Qt::KeyboardModifiers keys, const QPoint& at);
    bool onTreeKey(int key);
    void setShowTips(bool showTips);
    void showButtons();
    void showPublishFormat(int format);
    void enableControls(bool enabled);

    CDragTreeCtrl* m_tree = nullptr; // owned by the toolkit
    std::unique_ptr<Window> m_window;
    std::unique_ptr<Program> m_program;
    std::unique_ptr<panel::SheetListPage> m_page;
    std::unique_ptr<panel::PanelMenus> m_menus;
    std::unique_ptr<panel::PanelCommands> m_commands;
    bool m_showTips = true;
    int m_theme; ///< as it was painted last
};
