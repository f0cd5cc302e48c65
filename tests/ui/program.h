#pragma once

#include <functional>

#include <QApplication>
#include <QDir>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <base/tarvik_config.h>
#include <ed/system_variables.h>
#include <ed/tv_editor.h>
#include <ui/theme.h>
#include <ui/window_state.h>

#include "temp_folder.h"

/// What windows find in a program: settings, a state store, an editor and the theme.
class Program : public testing::Test
{
protected:
    TempFolder m_folder;
    TarvikConfig m_config{m_folder.file("config")};
    TarvikConfig m_state{m_folder.file("state")};
    std::unique_ptr<ui::ThemeManager> m_theme;

    Program()
    {
        tarvSetConfig(&m_config);
        ui::setStateStore(&m_state);
        ui::rememberText(u"Theme\\Chosen", u"1");
        m_theme = std::make_unique<ui::ThemeManager>();
    }
    ~Program() override
    {
        m_theme.reset();
        ui::setStateStore(nullptr);
        tarvSetConfig(nullptr);
    }
    void switchTo(ui::Theme theme)
    {
        ed::setVariable(u"COLORTHEME", static_cast<std::int16_t>(theme));
        m_theme->update();
    }
};

/// Runs once the loop that starts now waits for somebody.
inline void whenWaiting(std::function<void()> step)
{
    QTimer::singleShot(0, qApp, std::move(step));
}

/// The one that waits now, of that kind; null when there is none.
template <class T = QWidget>
T* runningDialog()
{
    return dynamic_cast<T*>(QApplication::activeModalWidget());
}

/// Where somebody wants to look at what the tests see.
inline void keepPicture(QWidget& window, const QString& name)
{
    const QString folder = qEnvironmentVariable("KV_UI_PICTURES");
    if (folder.isEmpty())
        return;
    QDir().mkpath(folder);
    window.grab().save(folder + QLatin1Char('/') + name + QLatin1String(".png"));
}
