#include "ui/theme.h"

#include <QApplication>
#include <QToolTip>

#include <ed/system_variables.h>
#include <ed/tv_editor.h>

#include "host_style.h"
#include "theme_state.h"
#include "ui/window_state.h"

namespace ui {

namespace {

constexpr TvChar kVariable[] = u"COLORTHEME";
/// That the variable says what somebody wants, the desktop or the user.
constexpr TvChar kChosen[] = u"Theme\\Chosen";

/// The desktop told the toolkit its colours before we came.
Theme desktopTheme()
{
    const QPalette palette = QGuiApplication::palette();
    const bool isDark = palette.color(QPalette::Window).lightness() <
                        palette.color(QPalette::WindowText).lightness();
    return isDark ? Theme::Dark : Theme::Light;
}

void chooseAtFirstStart()
{
    if (!rememberedText(kChosen).isEmpty())
        return;
    if (ed::setVariable(kVariable, static_cast<std::int16_t>(desktopTheme())))
        rememberText(kChosen, u"1");
}

/// A value that cannot be read leaves the theme as it is.
Theme wantedTheme()
{
    const auto value = ed::variable(kVariable);
    const auto* number = value ? std::get_if<std::int16_t>(&*value) : nullptr;
    return number ? static_cast<Theme>(*number != 0) : theme();
}

} // namespace

class ThemeManager::Reactor : public TvEditorReactor
{
public:
    explicit Reactor(ThemeManager& manager) : m_manager(manager)
    {
        if (TvEditor* editor = tvedEditor())
            editor->addReactor(this);
    }
    ~Reactor() override
    {
        if (TvEditor* editor = tvedEditor())
            editor->removeReactor(this);
    }
    void sysVarChanged(const TvChar* name) override
    {
        if (TvString(name).compareNoCase(kVariable) == 0)
            m_manager.update();
    }

private:
    ThemeManager& m_manager;
};

ThemeManager::ThemeManager()
{
    chooseAtFirstStart();
    m_reactor = std::make_unique<Reactor>(*this);
    setTheme(wantedTheme());
    QApplication::setStyle(new HostStyle); // owned by the application
    update();
}

ThemeManager::~ThemeManager() = default;

void ThemeManager::update()
{
    setTheme(wantedTheme());
    const QPalette palette = QApplication::style()->standardPalette();
    QApplication::setPalette(palette);
    QToolTip::setPalette(palette);
    // Windows change with the variable, not at the next turn of the loop.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::ApplicationPaletteChange);
}

} // namespace ui
