#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <QMainWindow>
#include <QTimer>

#include <app/crash_report.h>
#include <app/drawing_watch.h>
#include <app/menu_table.h>
#include <app/program.h>
#include <app/recovery.h>
#include <ed/program_control.h>
#include <window/program_view.h>

class QLabel;
class QAction;
class QMenu;
class QStackedWidget;
class QTabWidget;
class TvDbEntity;

namespace window {

class CommandPanel;
class DocumentPage;
class StartPage;
struct PointerQuestion;

/// The program's window: a tab for each drawing, the command line below, palette sets at the edges.
///
/// It follows the documents: whatever opens, closes, saves or switches them, the window shows it.
class MainWindow : public QMainWindow, public ed::ProgramControl
{
public:
    /// @param program   not owned; outlives the window.
    /// @param recovery  not owned; null: no copies are kept.
    /// @param crashes   not owned; null: commands are not noted.
    MainWindow(app::Program& program, app::RecoveryKeeper* recovery, app::CrashReporter* crashes);
    ~MainWindow() override;

    /// Opens drawings and sheet sets; what cannot be opened is said at the command line.
    void openFiles(const std::vector<TvString>& files);
    /// Opens the copies of a run that ended in disorder, and lets the user save them.
    void recover(const app::LostSession& session);
    /// Shows what is open now.
    void synchronise();
    void perform(app::WindowAction action);

    StartPage& startPage() { return *m_start; }
    CommandPanel& commandPanel() { return *m_commands; }
    /// Null when nothing is open.
    DocumentPage* currentPage() const;
    DocumentPage* pageOf(const TvDbDatabase* database) const;
    /// Lets the files of a second start in, and comes to the front.
    void takeOver(const std::vector<TvString>& files);
    /// Keeps copies of unsaved changes now. Nothing while a command runs.
    void autosave();
    bool hasUnsavedChanges() const;
    bool isQuitting() const { return m_isQuitting; }

    // ed::ProgramControl
    void quit() override;
    bool showHelp(const TvString& topic) override;
    void recentFilesChanged() override;
    void layoutsChanged(TvApDocument&) override { m_soon.start(); }
    void posted() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    class Reactor;
    void makeActions();
    void makePanels();
    void showPanelState(QAction& action);
    void makeStartPage();
    void showStartPageIfAlone();
    void fillRecent(QMenu& menu);
    void openFile(const TvString& path);
    void addPage(TvApDocument& document);
    void followPointer(DocumentPage& page);
    void askPointer(const PointerQuestion* question);
    void showDragged(const TvDbEntity* entity);
    void removePage(const TvDbDatabase* database);
    void showState();
    void runOn(TvApDocument& document, const TvString& command);
    void layoutMenu(TvDbObjectId layout, const QPoint& at);
    void stepTabs(class QTabBar* tabs, int by);
    void about();

    app::Program& m_program;
    app::RecoveryKeeper* m_recovery;
    app::CrashReporter* m_crashes;
    app::DrawingWatch m_watch;
    CommandPanel* m_commands; // owned by the toolkit, as all below
    QStackedWidget* m_pages;  // start page and tabs
    StartPage* m_start;
    QTabWidget* m_tabs;
    QLabel* m_coordinates;
    QLabel* m_state;
    std::unique_ptr<Reactor> m_reactor;
    ProgramView m_view;
    QTimer m_soon, m_pulse, m_autosave;
    DocumentPage* m_asked = nullptr; // not owned; for a point
    bool m_isSynchronising = false;
    bool m_isQuitting = false;
    bool m_saidAutosaveFailed = false;
    std::vector<TvString> m_recent; // files, as they were told last
};

} // namespace window
