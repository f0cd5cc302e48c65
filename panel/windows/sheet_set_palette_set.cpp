#include "panel_windows/sheet_set_palette_set.h"

#include <QApplication>
#include <QLabel>
#include <QVBoxLayout>

#include <ed/tarv_palette_prop_manager.h>
#include <ed/tv_ap_doc_manager.h>
#include <ui/qt_text.h>
#include <ui/theme.h>

#include "panel_windows/sheet_set_dlg.h"

namespace {

constexpr TvChar kToolId[] = u"{473490AC-962C-64E0-23DC-07CA90B4EE68}";
constexpr int kSetTitle = 510, kListTitle = 795, kViewsTitle = 796, kModelTitle = 797;
constexpr int kViewsEmpty = 8950, kModelEmpty = 8951; // texts
constexpr int kMinimumWidth = 200, kMinimumHeight = 300;
constexpr int kEmptyMargin = 16;

/// Nothing else waits for the user, and no command runs.
bool mayAsk()
{
    const TvApDocManager* documents = tvDocManagerPtr();
    return !QApplication::activeModalWidget() && !QApplication::activePopupWidget() &&
           QApplication::mouseButtons() == Qt::NoButton &&
           (!documents || documents->isApplicationContext());
}

TvString tvText(int number)
{
    return ui::fromQt(ui::textOf(number));
}

} // namespace

CTarvSheetSetPalette::CTarvSheetSetPalette(const CTdUiPaletteSet& set)
    : CTdUiPalette(tvText(kListTitle)),
      m_page(new CSheetSetDlg([&set] { return set.isShown() && !set.isRolledUp(); }))
{
    m_page->CreateIn(this);
    setFocusProxy(m_page);
}

CEmptyPalette::CEmptyPalette(int title, int words) : CTdUiPalette(tvText(title))
{
    auto* label = new QLabel(ui::textOf(words), this); // owned by the palette
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    label->setForegroundRole(QPalette::PlaceholderText);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kEmptyMargin, 2 * kEmptyMargin, kEmptyMargin, kEmptyMargin);
    column->addWidget(label, 1);
}

CTarvSheetViewsPalette::CTarvSheetViewsPalette() : CEmptyPalette(kViewsTitle, kViewsEmpty) {}
CTarvModelViewsPalette::CTarvModelViewsPalette() : CEmptyPalette(kModelTitle, kModelEmpty) {}

CTarvSheetSetPaletteSet::CTarvSheetSetPaletteSet(QMainWindow* frame)
    : CTdUiPaletteSet(tvText(kSetTitle), kToolId, frame),
      m_sheetList(new CTarvSheetSetPalette(*this))
{
    SetMinimumSize(kMinimumWidth, kMinimumHeight);
    EnableDocking(ed::kDockLeft | ed::kDockRight);
    AddPalette(m_sheetList);
    AddPalette(new CTarvSheetViewsPalette);
    AddPalette(new CTarvModelViewsPalette);
    connect(&m_watch, &QTimer::timeout, this, [this] { m_poller.tick(mayAsk()); });
    m_watch.start(kWatchMs);
}

void CTarvSheetSetPaletteSet::OnShown(bool shown)
{
    if (TarvikMainAppService* window = tarvikMainAppService())
        window->setSheetSetPaletteState(shown);
}
