#include "panel_windows/sheet_set_dlg.h"

#include <QEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QShortcut>
#include <QTimer>

#include <core/session.h>
#include <ed/palette_set.h>
#include <resources/texts.h>
#include <ui/qt_text.h>
#include <ui/theme.h>

#include "explore_file.h"
#include "panel_windows/drag_tree_ctrl.h"
#include "panel_windows/open_combo_box.h"
#include "panel_windows/panel_buttons.h"
#include "selection_commands.h"
#include "wait_for_disk.h"

namespace {

using Dlg = CSheetSetDlg;

constexpr int kFollowingSet[] = {Dlg::kPublish, Dlg::kPublishMenu, Dlg::kSelections, Dlg::kRefresh,
                                 Dlg::kTips,    Dlg::kExpand,      Dlg::kFilter};

// Texts.
constexpr int kFormatTip = 423, kPublishTip = 424, kSelectionsTip = 425;
constexpr int kCollapseTip = 568, kExpandTip = 569, kTipsOnTip = 570, kTipsOffTip = 571;
constexpr int kRefreshTip = 572;
constexpr int kFindText = 8926, kFindTip = 8927;

constexpr int kIdleMs = 5; // between two looks at what the disk answered

struct Format {
    const char16_t* icon;
    int name;
};
constexpr Format kFormats[] = {{u"publish", 426}, {u"publish", 427}, {u"publish-pdf", 428}};

} // namespace

/// What the rules of the page ask of its window.
class CSheetSetDlg::Window : public panel::PageWindow
{
public:
    Window(CSheetSetDlg& page, std::function<bool()> isPanelVisible)
        : m_page(page), m_isPanelVisible(std::move(isPanelVisible))
    {
        connect(m_status, [this] { m_page.page().statusTimer().fired(GetCurrentDatabase()); });
        connect(m_idle, [this] {
            if (m_page.page().workOnStatus())
                m_idle.stop();
        });
    }

    void suspendPainting() override { setPainting(false); }
    void resumePainting() override { setPainting(true); }
    void enableControls(bool enabled) override { m_page.enableControls(enabled); }
    void redrawSetBox() override
    {
        if (QWidget* box = m_page.GetDlgItem(kSetBox)) {
            box->setAccessibleName(COpenComboBox::text());
            box->update();
        }
    }
    void showPublishFormat(int format) override { m_page.showPublishFormat(format); }
    panel::TreeItem* firstVisible() const override
    {
        return m_page.m_tree ? m_page.m_tree->firstVisible() : nullptr;
    }
    void scrollToTop(panel::TreeItem* item) override
    {
        if (m_page.m_tree)
            m_page.m_tree->scrollToTop(item);
    }
    void ensureVisible(panel::TreeItem* item) override
    {
        if (m_page.m_tree)
            m_page.m_tree->ensureVisible(item);
    }
    bool isVisible() const override { return m_isPanelVisible(); }
    void startTimer(int, int periodMs) override { m_status.start(periodMs); }
    void stopTimer(int) override { m_status.stop(); }
    void wantIdleTime() override { m_idle.start(kIdleMs); }
    void updateUiStyle() override { m_page.update(); }

private:
    template <class Step>
    void connect(QTimer& timer, Step step)
    {
        QObject::connect(&timer, &QTimer::timeout, &m_page, std::move(step));
    }
    void setPainting(bool isOn)
    {
        if (m_page.m_tree)
            m_page.m_tree->setUpdatesEnabled(isOn);
    }

    CSheetSetDlg& m_page;
    std::function<bool()> m_isPanelVisible;
    QTimer m_status, m_idle;
};

/// What commands ask of the desktop and the palette set.
class CSheetSetDlg::Program : public panel::PanelProgram
{
public:
    explicit Program(QWidget& page) : m_page(page) {}
    bool waitForDisk(const TvString& file, const std::function<bool()>& isThere) override
    {
        return panel::waitForDisk(&m_page, file, isThere);
    }
    void exploreFile(const TvString& path) override { panel::exploreFile(path); }
    void hidePanel() override
    {
        const core::SessionHost* host = core::sessionHost();
        if (ed::PaletteSet* palettes = host ? core::sessionHost()->paletteSet() : nullptr)
            palettes->setShown(false);
    }

private:
    QWidget& m_page;
};

CSheetSetDlg::CSheetSetDlg(std::function<bool()> isPanelVisible)
    : CTdUiDialog(kNumber), m_window(std::make_unique<Window>(*this, std::move(isPanelVisible))),
      m_program(std::make_unique<Program>(*this)),
      m_page(std::make_unique<panel::SheetListPage>(*m_window, base::systemClock())),
      m_menus(std::make_unique<panel::PanelMenus>(*m_page)),
      m_commands(std::make_unique<panel::PanelCommands>(*m_page, *m_menus, *m_program)),
      m_theme(static_cast<int>(ui::theme()))
{
}

CSheetSetDlg::~CSheetSetDlg()
{
    delete m_tree; // shows what goes with the page
}

QWidget* CSheetSetDlg::MakeControl(const text::ControlTemplate& row, QWidget* parent)
{
    switch (row.id) {
    case kSetBox: return new COpenComboBox(parent);
    case kPublish: return new CDropMenuButton(CDropMenuButton::Opens::ByArrow, parent);
    case kPublishMenu:
    case kSelections: return new CDropMenuButton(CDropMenuButton::Opens::Always, parent);
    case kBar: return new CStaticBar(parent);
    case kExpand:
    case kTips:
    case kRefresh: return new CIconButton(parent);
    case kTree: return m_tree = new CDragTreeCtrl(m_page->tree(), parent);
    default: return nullptr;
    }
}

bool CSheetSetDlg::OnInitDialog()
{
    Item<CIconButton>(kPublishMenu)->setLook(u"print", ui::textOf(kPublishTip));
    Item<CIconButton>(kSelections)->setLook(u"selection", ui::textOf(kSelectionsTip));
    Item<CIconButton>(kRefresh)->setLook(u"refresh", ui::textOf(kRefreshTip));
    m_tree->setAccessibleName(ui::textOf(795));
    showPublishFormat(m_page->publishFormat());
    showButtons();
    connectTree();
    connectMenus();
    connectFilter();
    panel::addSelectionCommands(*this);
    core::readTipStyle();
    enableControls(false);
    return true;
}

void CSheetSetDlg::connectTree()
{
    m_tree->events.pressed = [this] { EnableDlgItem(kPublish, m_page->canPublishSelection()); };
    m_tree->events.clicked = [this] { m_page->statusTimer().UpdateSheetStatusIfEnabled(); };
    m_tree->events.menuWanted = [this](panel::TreeItem* hit, Qt::KeyboardModifiers keys,
                                       const QPoint& at) { showTreeMenu(hit, keys, at); };
    m_tree->events.doubleClicked = [this](panel::TreeItem* item, bool withCtrl) {
        return m_commands->OpenSheetByDoubleClick(item, withCtrl);
    };
    m_tree->events.moveWanted = [this](panel::MoveKey key) {
        if (panel::moveByKey(m_page->tree(), GetCurrentDatabase(), key))
            m_page->statusTimer().UpdateSheetStatusIfEnabled();
    };
    m_tree->events.key = [this](int key) { return onTreeKey(key); };
    m_tree->MakeTips(std::make_unique<CTarvSheetSetToolTipCtrl>());
}

void CSheetSetDlg::connectMenus()
{
    Item<CDropMenuButton>(kPublish)->onMenu = [this](const QPoint& at) {
        popup(m_menus->format(), at);
    };
    Item<CDropMenuButton>(kPublishMenu)->onMenu = [this](const QPoint& at) {
        popup(m_menus->publish(), at);
    };
    Item<CDropMenuButton>(kSelections)->onMenu = [this](const QPoint& at) {
        popup(m_menus->selections(), at);
    };
}

void CSheetSetDlg::connectFilter()
{
    auto* box = Item<QLineEdit>(kFilter);
    box->setPlaceholderText(ui::textOf(kFindText));
    box->setToolTip(ui::textOf(kFindTip));
    box->setAccessibleName(ui::textOf(kFindTip));
    box->setClearButtonEnabled(true);
    box->installEventFilter(this);
    connect(box, &QLineEdit::textChanged, this,
            [this](const QString& words) { m_tree->SetFilter(ui::fromQt(words)); });
    auto* find = new QShortcut(QKeySequence::Find, this); // owned by the page
    find->setContext(Qt::WidgetWithChildrenShortcut);
    connect(find, &QShortcut::activated, this, [this] { FocusDlgItem(kFilter); });
}

/// The keys of the filter box: Escape empties it, Down and Enter lead to what was found.
bool CSheetSetDlg::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != GetDlgItem(kFilter) || event->type() != QEvent::KeyPress)
        return CTdUiDialog::eventFilter(watched, event);
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Escape:
        Item<QLineEdit>(kFilter)->clear();
        m_tree->setFocus();
        return true;
    case Qt::Key_Down:
    case Qt::Key_Return:
    case Qt::Key_Enter: m_tree->setFocus(); return true;
    default: return CTdUiDialog::eventFilter(watched, event);
    }
}

void CSheetSetDlg::run(int id)
{
    if (id == 0)
        return;
    m_commands->run(id);
    showButtons();
}

void CSheetSetDlg::popup(const ed::Menu& menu, const QPoint& at)
{
    run(ed::popupMenu(menu, at.x(), at.y()));
}

void CSheetSetDlg::showTreeMenu(panel::TreeItem* hit, Qt::KeyboardModifiers keys, const QPoint& at)
{
    const bool withCtrl = keys.testFlag(Qt::ControlModifier);
    const bool withShift = keys.testFlag(Qt::ShiftModifier);
    if (const panel::TreeItem* item = hit ? m_menus->itemForClick(hit, withCtrl, withShift) : hit)
        popup(m_menus->context(*item), at);
    else if (!hit && m_page->tree().root())
        popup(panel::backgroundMenu(), at);
}

bool CSheetSetDlg::onTreeKey(int key)
{
    panel::TreeItem* item = m_page->tree().caret();
    if (!item)
        return false;
    const bool isSheet = item->kind() == TreeItemData::kSheet;
    const bool isSubset = item->kind() == TreeItemData::kSubset;
    if (key == Qt::Key_F2)
        run(isSheet ? panel::kRenameSheets : panel::kProperties);
    else if (key == Qt::Key_Delete)
        run(isSubset && m_page->tree().selectedCount() == 1 ? panel::kRemoveSubset
                                                            : panel::kRemoveSheets);
    else if (isSheet)
        run(panel::kOpenSheet);
    else
        m_page->tree().setExpanded(item, !item->isExpanded());
    return true;
}

void CSheetSetDlg::setShowTips(bool showTips)
{
    m_showTips = showTips;
    m_tree->tips()->SetShowTips(showTips);
    showButtons();
}

void CSheetSetDlg::OnCommand(int id)
{
    switch (id) {
    case kPublish: return run(panel::kPublishFirst + m_page->publishFormat() - 1);
    case kExpand: return run(m_page->isCollapsed() ? panel::kExpandAll : panel::kCollapseAll);
    case kTips: return setShowTips(!m_showTips);
    case kRefresh: return m_page->UpdateStatusImages();
    default: CTdUiDialog::OnCommand(id);
    }
}

void CSheetSetDlg::showButtons()
{
    const bool isCollapsed = m_page->isCollapsed();
    Item<CIconButton>(kExpand)->setLook(isCollapsed ? u"expand-all" : u"collapse-all",
                                        ui::textOf(isCollapsed ? kExpandTip : kCollapseTip));
    Item<CIconButton>(kTips)->setLook(m_showTips ? u"tips" : u"tips-off",
                                      ui::textOf(m_showTips ? kTipsOnTip : kTipsOffTip));
}

void CSheetSetDlg::showPublishFormat(int format)
{
    auto* button = Item<CIconButton>(kPublish);
    if (!button || format < 1 || format > static_cast<int>(std::size(kFormats)))
        return;
    const Format& row = kFormats[format - 1];
    const TvString tip = TvString().format(text::find(kFormatTip), text::find(row.name));
    button->setLook(row.icon, ui::toQt(tip));
}

void CSheetSetDlg::enableControls(bool enabled)
{
    for (const int id : kFollowingSet)
        EnableDlgItem(id, enabled);
}

void CSheetSetDlg::changeEvent(QEvent* event)
{
    CTdUiDialog::changeEvent(event);
    if (event->type() != QEvent::PaletteChange || m_theme == static_cast<int>(ui::theme()))
        return;
    m_theme = static_cast<int>(ui::theme());
    m_page->updateUiStyle();
}
