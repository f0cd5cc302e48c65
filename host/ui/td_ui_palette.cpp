#include "ui/td_ui_palette.h"

#include <QTabWidget>

#include "td_ui_palette_set_parts.h"
#include "ui/qt_text.h"
#include "ui/td_ui_palette_set.h"

CTdUiPalette::CTdUiPalette(const TvString& title) : m_title(title) {}

void CTdUiPalette::SetTitle(const TvString& title)
{
    m_title = title;
    if (!m_set)
        return;
    QTabWidget& tabs = *m_set->m_parts->tabs;
    tabs.setTabText(tabs.indexOf(this), ui::withoutMnemonics(ui::toQt(title)));
}

bool CTdUiPalette::IsActive() const
{
    return m_set && m_set->GetActivePalette() == this;
}

void CTdUiPalette::OnActivated(bool) {}
