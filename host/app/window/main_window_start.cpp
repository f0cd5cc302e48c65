// The start page, and what the desktop is told of recent files.

#include <tuple>

#include <QListWidget>
#include <QStackedWidget>
#include <QTabWidget>

#include <app/desktop_recent.h>
#include <base/clock.h>
#include <base/file_ops.h>
#include <base/path_rules.h>
#include <ed/recent_files.h>

#include "window/command_panel.h"
#include "window/main_window.h"
#include "window/start_page.h"

namespace window {

namespace {

/// The list that all programs of the desktop share; it lies beside the program's own data.
TvString desktopListBeside(const TvString& dataFolder)
{
    const base::PathRules& rules = base::PathRules::native();
    return dataFolder.isEmpty() ? dataFolder
                                : rules.join(rules.folderOf(dataFolder), u"recently-used.xbel");
}

} // namespace

void MainWindow::makeStartPage()
{
    m_start->onCommand = [this](const TvString& command) { m_commands->run(command); };
    m_start->onOpen = [this](const TvString& path) { openFiles({path}); };
    m_start->onForget = [](const TvString& path) { ed::removeRecentFile(path); };
    m_start->onTyped = [this](QKeyEvent* event) { m_commands->type(event); };
    m_recent = ed::recentFiles();
    m_start->setFiles(m_recent);
}

void MainWindow::showStartPageIfAlone()
{
    QWidget* wanted = m_tabs->count() == 0 ? static_cast<QWidget*>(m_start) : m_tabs;
    if (m_pages->currentWidget() == wanted)
        return;
    if (wanted == m_start)
        m_start->setFiles(ed::recentFiles()); // other processes write it, too
    m_pages->setCurrentWidget(wanted);
}

void MainWindow::recentFilesChanged()
{
    const std::vector<TvString> files = ed::recentFiles();
    m_start->setFiles(files);
    const std::vector<TvString> before = std::exchange(m_recent, files);
    const bool isForgotten = files.size() < before.size();
    if (!isForgotten && !files.empty() && (before.empty() || before.front() != files.front()))
        // Nobody misses it where it could not be written.
        std::ignore =
            app::noteRecentFile(base::systemFileOps(), base::systemClock(),
                                desktopListBeside(m_program.folders().data), files.front());
}

} // namespace window
