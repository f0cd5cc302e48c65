#include "host_style.h"

#include <QGroupBox>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

#include "control_paint.h"
#include "ui/theme.h"

namespace ui {

namespace {

struct PaletteRow {
    QPalette::ColorRole role;
    ColorRole color;
    ColorRole disabled;
};

// clang-format off
constexpr PaletteRow kPalette[] = {
    {QPalette::Window,          ColorRole::Window,     ColorRole::Window},
    {QPalette::WindowText,      ColorRole::Text,       ColorRole::Disabled},
    {QPalette::Base,            ColorRole::Base,       ColorRole::Window},
    {QPalette::AlternateBase,   ColorRole::Window,     ColorRole::Window},
    {QPalette::Text,            ColorRole::Text,       ColorRole::Disabled},
    {QPalette::PlaceholderText, ColorRole::DimText,    ColorRole::Disabled},
    {QPalette::Button,          ColorRole::Raised,     ColorRole::Window},
    {QPalette::ButtonText,      ColorRole::Text,       ColorRole::Disabled},
    {QPalette::BrightText,      ColorRole::Bad,        ColorRole::Disabled},
    {QPalette::Highlight,       ColorRole::Accent,     ColorRole::Raised},
    {QPalette::HighlightedText, ColorRole::AccentText, ColorRole::Disabled},
    {QPalette::ToolTipBase,     ColorRole::Tip,        ColorRole::Tip},
    {QPalette::ToolTipText,     ColorRole::TipText,    ColorRole::TipText},
    {QPalette::Link,            ColorRole::Link,       ColorRole::Disabled},
    {QPalette::LinkVisited,     ColorRole::Link,       ColorRole::Disabled},
    {QPalette::Light,           ColorRole::Hover,      ColorRole::Raised},
    {QPalette::Midlight,        ColorRole::Raised,     ColorRole::Raised},
    {QPalette::Mid,             ColorRole::Edge,       ColorRole::Border},
    {QPalette::Dark,            ColorRole::Edge,       ColorRole::Border},
    {QPalette::Shadow,          ColorRole::Border,     ColorRole::Border},
};
// clang-format on

/// Below the title, which stands on the ground of the window.
void paintGroup(QPainter& painter, const QStyleOption& option, const QWidget* widget)
{
    const auto* group = dynamic_cast<const QGroupBox*>(widget);
    QStyleOption frame = option;
    frame.state &= ~QStyle::State_HasFocus;
    if (group && !group->title().isEmpty())
        frame.rect.setTop(frame.rect.top() + option.fontMetrics.height() + 2);
    paintFrame(painter, frame);
}

constexpr int kRowRoomPx = 4; // between the lines of lists and trees

} // namespace

HostStyle::HostStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

QPalette HostStyle::standardPalette() const
{
    QPalette palette;
    for (const PaletteRow& row : kPalette) {
        palette.setColor(QPalette::Active, row.role, color(row.color));
        palette.setColor(QPalette::Inactive, row.role, color(row.color));
        palette.setColor(QPalette::Disabled, row.role, color(row.disabled));
    }
    return palette;
}

void HostStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                              QPainter* painter, const QWidget* widget) const
{
    switch (element) {
    case PE_FrameFocusRect: paintFocus(*painter, option->rect); break;
    case PE_FrameGroupBox: paintGroup(*painter, *option, widget); break;
    case PE_Frame:
    case PE_FrameLineEdit: paintFrame(*painter, *option); break;
    case PE_PanelButtonCommand: paintButton(*painter, *option); break;
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck: paintCheck(*painter, *option); break;
    case PE_IndicatorRadioButton: paintRadio(*painter, *option); break;
    default: QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void HostStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const
{
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    // A large button of a task dialog has an edge at all times, so that it is seen to be one.
    if (element == CE_PushButtonBevel && button &&
        (button->features & QStyleOptionButton::CommandLinkButton))
        paintButton(*painter, *option);
    else
        QProxyStyle::drawControl(element, option, painter, widget);
}

void HostStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                   QPainter* painter, const QWidget* widget) const
{
    const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    if (control == CC_ComboBox && combo && combo->frame)
        paintCombo(*painter, *combo, subControlRect(CC_ComboBox, option, SC_ComboBoxArrow, widget));
    else
        QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QSize HostStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                  const QWidget* widget) const
{
    const QSize usual = QProxyStyle::sizeFromContents(type, option, size, widget);
    return type == CT_ItemViewItem ? usual + QSize(0, kRowRoomPx) : usual;
}

int HostStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* result) const
{
    switch (hint) {
    case SH_EtchDisabledText: return 0;  // a shadow behind grey text makes it harder to read
    case SH_UnderlineShortcut: return 1; // what the keyboard can do is seen, not guessed
    case SH_Menu_SubMenuPopupDelay: return 150;
    default: return QProxyStyle::styleHint(hint, option, widget, result);
    }
}

} // namespace ui
