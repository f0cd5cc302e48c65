#pragma once

#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTest>

#include <rx/tv_user_messages.h>
#include <ui/qt_text.h>
#include <ui/theme.h>
#include <ui/window_state.h>
#include <window/command_panel.h>
#include <window/document_page.h>
#include <window/main_window.h>

#include "../program_scene.h"

/// Notes what is asked, and answers Yes or what the test wants.
class AnsweringMessages : public TvUserMessages
{
public:
    Answer show(const Message& message) override
    {
        asked.push_back(message.text);
        return message.buttons == Buttons::YesNo ? answer : Answer::Ok;
    }
    TaskAnswer showTask(const TaskDialog&) override
    {
        ++tasks;
        return task;
    }
    std::vector<int> asked;
    int tasks = 0;
    TaskAnswer task; // Cancel
    Answer answer = Answer::Yes;
};

/// The program with its window, in a folder of its own.
class WindowTest : public testing::Test, protected ProgramFolder
{
protected:
    WindowTest()
    {
        ui::setStateStore(&m_state);
        ui::rememberText(u"Theme\\Chosen", u"1");
        m_theme = std::make_unique<ui::ThemeManager>();
        main = std::make_unique<window::MainWindow>(program, nullptr, nullptr);
        main->resize(900, 600);
        main->show();
        QApplication::processEvents();
    }
    ~WindowTest() override
    {
        main->commandPanel().refuseAll();
        program.stop();
        main.reset();
        m_theme.reset();
        ui::setStateStore(nullptr);
    }

    window::DocumentPage& open(const TvString& path)
    {
        main->openFiles({path});
        settle();
        return *main->currentPage();
    }
    window::DocumentPage& open(const char* name) { return open(folder.file(name)); }
    /// Until all that waits is done and the picture is finished.
    void settle()
    {
        for (int i = 0; i < 5; ++i)
            QApplication::processEvents();
        if (main->currentPage())
            main->currentPage()->canvas().finishPainting();
    }
    void type(const char* text)
    {
        QTest::keyClicks(&line(), QLatin1String(text));
        QTest::keyClick(&line(), Qt::Key_Return);
        settle();
    }
    QLineEdit& line() { return main->commandPanel().line(); }
    std::string said() { return main->commandPanel().log().toPlainText().toStdString(); }
    QTabWidget& tabs() { return *main->findChild<QTabWidget*>(); }
    static std::string tabText(QTabBar& bar)
    {
        return bar.tabText(bar.currentIndex()).toStdString();
    }

private:
    TarvikConfig m_state{folder.file("state")};
    std::unique_ptr<ui::ThemeManager> m_theme;

protected:
    AnsweringMessages messages;
    app::Program program{{folders(), nullptr, &messages}};
    std::unique_ptr<window::MainWindow> main;
};
