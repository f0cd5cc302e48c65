#include "window/main_window.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPointer>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolBar>
#include <QUrl>

#include <app/options.h>
#include <app/words.h>
#include <base/kv_file_system.h>
#include <db/tv_db_layout.h>
#include <ed/layouts.h>
#include <ed/recent_files.h>
#include <ed/system_variables.h>
#include <ed/tarv_sheet_set_internal.h>
#include <rx/tv_product.h>
#include <rx/tv_user_messages.h>
#include <ui/icon.h>
#include <ui/main_frame.h>
#include <ui/menu.h>
#include <ui/qt_text.h>
#include <ui/theme.h>
#include <ui/window_state.h>

#include "window/command_panel.h"
#include "window/document_page.h"
#include "window/start_page.h"

namespace window {

namespace {

constexpr int kPulseMs = 300;      // what nobody tells of is noticed so soon
constexpr int kAutosaveMs = 60000; // at most so much work is lost
constexpr TvChar kWindowName[] = u"Main";

QString words(app::Word word, const std::vector<TvString>& arguments = {})
{
    return ui::toQt(app::textOf(word, arguments));
}

bool isSheetSet(const TvString& path)
{
    return base::PathRules::native().extensionOf(path).compareNoCase(u".dst") == 0;
}

} // namespace

/// Tells the window what happens to documents.
class MainWindow::Reactor : public TvEditorReactor
{
public:
    explicit Reactor(MainWindow& window) : m_window(window)
    {
        m_window.m_program.editor().addReactor(this);
    }
    ~Reactor() override { m_window.m_program.editor().removeReactor(this); }
    void endDwgOpen(const TvChar*, TvDbDatabase*) override { m_window.m_soon.start(); }
    void saveComplete(TvDbDatabase*, const TvChar*) override { m_window.m_soon.start(); }
    void documentClosing(TvDbDatabase* database) override { m_window.removePage(database); }
    void sysVarChanged(const TvChar*) override { m_window.m_soon.start(); }
    void commandWillStart(const TvChar* name) override
    {
        if (m_window.m_crashes)
            m_window.m_crashes->noteCommand(name);
    }
    void commandEnded(const TvChar*) override { m_window.m_soon.start(); }
    void commandCancelled(const TvChar*) override { m_window.m_soon.start(); }

private:
    MainWindow& m_window;
};

MainWindow::MainWindow(app::Program& program, app::RecoveryKeeper* recovery,
                       app::CrashReporter* crashes)
    : m_program(program), m_recovery(recovery), m_crashes(crashes),
      m_commands(new CommandPanel(program.commandLine(), program.commands(), this)),
      m_pages(new QStackedWidget(this)), m_start(new StartPage(m_pages)),
      m_tabs(new QTabWidget(m_pages)), m_coordinates(new QLabel(this)), m_state(new QLabel(this)),
      m_view([this](const TvDbDatabase* database) { return pageOf(database); })
{
    ui::setMainFrame(this);
    ed::setUserPrompts(m_commands);
    ed::setJigInput(m_commands);
    ed::setProgramControl(this);
    setWindowIcon(ui::icon(u"tarvik"));
    setAcceptDrops(true);
    setDockOptions(AnimatedDocks | AllowNestedDocks | AllowTabbedDocks);
    makePanels();
    makeActions();
    m_reactor = std::make_unique<Reactor>(*this);
    for (QTimer* timer : {&m_soon, &m_pulse})
        QObject::connect(timer, &QTimer::timeout, this, [this] { synchronise(); });
    m_soon.setSingleShot(true);
    m_pulse.start(kPulseMs);
    QObject::connect(&m_autosave, &QTimer::timeout, this, [this] { autosave(); });
    m_autosave.start(kAutosaveMs);
    resize(1280, 800);
    ui::restoreWindow(*this, kWindowName);
    synchronise();
}

MainWindow::~MainWindow()
{
    ui::rememberWindow(*this, kWindowName);
    m_reactor.reset();
    ed::setProgramControl(nullptr);
    ed::setJigInput(nullptr);
    ed::setUserPrompts(nullptr);
    ui::setMainFrame(nullptr);
}

void MainWindow::makePanels()
{
    m_tabs->setDocumentMode(true);
    m_tabs->setTabsClosable(true);
    m_tabs->setMovable(true);
    m_tabs->setElideMode(Qt::ElideMiddle);
    m_pages->addWidget(m_start);
    m_pages->addWidget(m_tabs);
    setCentralWidget(m_pages);
    makeStartPage();
    QObject::connect(m_tabs, &QTabWidget::currentChanged, this, [this] {
        if (DocumentPage* page = m_isSynchronising ? nullptr : currentPage()) {
            m_program.documents().activateDocument(&page->document());
            synchronise();
        }
    });
    QObject::connect(m_tabs, &QTabWidget::tabCloseRequested, this, [this](int index) {
        if (auto* page = static_cast<DocumentPage*>(m_tabs->widget(index)))
            runOn(page->document(), u"_CLOSE");
    });
    auto* dock = new QDockWidget(words(app::Word::CommandLine), this);
    dock->setObjectName(QStringLiteral("CommandLine"));
    dock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    dock->setAllowedAreas(Qt::TopDockWidgetArea | Qt::BottomDockWidgetArea);
    dock->setWidget(m_commands);
    addDockWidget(Qt::BottomDockWidgetArea, dock);
    resizeDocks({dock}, {120}, Qt::Vertical);
    setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    m_commands->onWorked = [this] { synchronise(); };
    m_commands->onPointerQuestion = [this](const PointerQuestion* question) {
        askPointer(question);
    };
    m_commands->onDragged = [this](const TvDbEntity* entity) { showDragged(entity); };
    m_coordinates->setTextFormat(Qt::PlainText);
    m_state->setTextFormat(Qt::PlainText);
    statusBar()->addWidget(m_coordinates);
    statusBar()->addPermanentWidget(m_state);
}

void MainWindow::makeActions()
{
    auto* bar = new QToolBar(words(app::Word::ToolBar), this);
    bar->setObjectName(QStringLiteral("MainTools"));
    bar->setMovable(false);
    bar->setIconSize(QSize(20, 20));
    addToolBar(bar);
    QMenu* menu = nullptr;
    app::Word current = app::Word(0);
    for (const app::MenuRow& row : app::menuRows()) {
        if (row.menu != current) {
            menu = menuBar()->addMenu(words(row.menu));
            current = row.menu;
            if (!bar->actions().isEmpty() && !bar->actions().last()->isSeparator())
                bar->addSeparator();
        }
        if (row.label == app::kSeparator) {
            menu->addSeparator();
            continue;
        }
        if (row.own == app::WindowAction::RecentFiles) {
            QMenu* recent = menu->addMenu(words(row.label));
            QObject::connect(recent, &QMenu::aboutToShow, this,
                             [this, recent] { fillRecent(*recent); });
            continue;
        }
        QAction* action = menu->addAction(row.icon ? ui::icon(QLatin1String(row.icon)) : QIcon(),
                                          words(row.label));
        if (row.keys)
            action->setShortcut(QKeySequence::fromString(QLatin1String(row.keys)));
        QObject::connect(action, &QAction::triggered, this, [this, &row] {
            if (row.action)
                m_commands->run(row.action);
            else
                perform(row.own);
        });
        if (row.label == app::Word::SheetSets)
            showPanelState(*action);
        if (row.isOnToolBar)
            bar->addAction(action);
    }
}

/// The entry is checked while the panel of sheet sets is shown, and hides it then.
void MainWindow::showPanelState(QAction& action)
{
    action.setCheckable(true);
    action.disconnect();
    QObject::connect(&action, &QAction::triggered, this, [this, &action](bool isWanted) {
        m_commands->run(isWanted ? u"_SHEETSET" : u"_SHEETSETHIDE");
        action.setChecked(m_program.mainAppService().isSheetSetPaletteShown());
    });
    m_program.mainAppService().setSheetSetPaletteListener(
        [entry = QPointer<QAction>(&action)](bool isShown) {
            if (entry)
                entry->setChecked(isShown);
        });
}

void MainWindow::fillRecent(QMenu& menu)
{
    menu.clear();
    for (const TvString& path : ed::recentFiles()) {
        const QString name = ui::toQt(base::PathRules::native().fileNameOf(path));
        QAction* action = menu.addAction(ui::icon(isSheetSet(path) ? u"sheet-set" : u"drawing"),
                                         ui::withoutMnemonics(name));
        action->setStatusTip(ui::toQt(path));
        QObject::connect(action, &QAction::triggered, this, [this, path] { openFiles({path}); });
    }
    if (menu.isEmpty())
        menu.addAction(words(app::Word::NoRecent))->setEnabled(false);
}

void MainWindow::perform(app::WindowAction action)
{
    using app::WindowAction;
    DocumentPage* page = currentPage();
    switch (action) {
    case WindowAction::FocusCommandLine: return m_commands->line().setFocus();
    case WindowAction::NextDrawing: return stepTabs(m_tabs->tabBar(), 1);
    case WindowAction::PreviousDrawing: return stepTabs(m_tabs->tabBar(), -1);
    case WindowAction::About: return about();
    case WindowAction::Theme: {
        const bool isDark = ui::theme() == ui::Theme::Dark;
        ed::setVariable(u"COLORTHEME",
                        static_cast<std::int16_t>(isDark ? ui::Theme::Light : ui::Theme::Dark));
        return;
    }
    default: break;
    }
    if (!page)
        return;
    switch (action) {
    case WindowAction::ZoomIn: return page->canvas().zoomBy(app::kWheelStep);
    case WindowAction::ZoomOut: return page->canvas().zoomBy(1 / app::kWheelStep);
    case WindowAction::ZoomExtents: return page->canvas().zoomExtents();
    case WindowAction::ZoomWindow: return page->canvas().beginZoomWindow();
    case WindowAction::NextLayout: return stepTabs(&page->layoutTabs(), 1);
    case WindowAction::PreviousLayout: return stepTabs(&page->layoutTabs(), -1);
    default: break;
    }
}

void MainWindow::stepTabs(QTabBar* tabs, int by)
{
    if (tabs->count() > 0)
        tabs->setCurrentIndex((tabs->currentIndex() + by + tabs->count()) % tabs->count());
}

// Pages

DocumentPage* MainWindow::currentPage() const
{
    return static_cast<DocumentPage*>(m_tabs->currentWidget());
}

DocumentPage* MainWindow::pageOf(const TvDbDatabase* database) const
{
    for (int i = 0; i < m_tabs->count(); ++i)
        if (auto* page = static_cast<DocumentPage*>(m_tabs->widget(i));
            page->document().database() == database)
            return page;
    return nullptr;
}

void MainWindow::addPage(TvApDocument& document)
{
    m_watch.watch(document.database());
    auto* page = new DocumentPage(document, m_watch, m_program.attached());
    page->canvas().onTyped = [this](QKeyEvent* event) { m_commands->type(event); };
    page->canvas().onFocusTaken = [this] { m_commands->line().setFocus(); };
    followPointer(*page);
    page->onLayoutChosen = [this](const TvString& name) {
        if (ed::setVariable(u"CTAB", name))
            synchronise();
        m_soon.start(); // a layout that could not be shown: the tabs go back
    };
    page->onLayoutMenu = [this](TvDbObjectId layout, const QPoint& at) { layoutMenu(layout, at); };
    m_tabs->addTab(page, QString());
}

void MainWindow::removePage(const TvDbDatabase* database)
{
    DocumentPage* page = pageOf(database);
    m_watch.forget(const_cast<TvDbDatabase*>(database));
    if (!page)
        return;
    if (m_asked == page)
        m_asked = nullptr;
    const bool former = std::exchange(m_isSynchronising, true);
    m_tabs->removeTab(m_tabs->indexOf(page));
    page->onLayoutChosen = nullptr;
    page->onLayoutMenu = nullptr;
    page->canvas().onViewChanged = nullptr;
    page->canvas().onCursor = nullptr;
    page->hide();
    page->deleteLater(); // what closes it may have begun in it
    m_isSynchronising = former;
    m_soon.start();
}

void MainWindow::synchronise()
{
    if (m_isSynchronising)
        return;
    m_isSynchronising = true;
    TvApDocManager& documents = m_program.documents();
    const std::unique_ptr<TvApDocumentIterator> each(documents.newTvApDocumentIterator());
    for (; !each->done(); each->step())
        if (!pageOf(each->document()->database()))
            addPage(*each->document());
    if (const TvApDocument* active = documents.mdiActiveDocument())
        m_tabs->setCurrentWidget(pageOf(active->database()));
    if (DocumentPage* page = currentPage())
        page->refresh();
    showStartPageIfAlone();
    showState();
    m_isSynchronising = false;
}

void MainWindow::showState()
{
    for (int i = 0; i < m_tabs->count(); ++i) {
        const TvApDocument& document = static_cast<DocumentPage*>(m_tabs->widget(i))->document();
        TvString title = document.docTitle();
        if (document.isReadOnly())
            title = app::textOf(app::Word::TabReadOnly, {title});
        if (document.database()->isModified())
            title += u" *";
        const QString text = ui::withoutMnemonics(ui::toQt(title));
        if (m_tabs->tabText(i) != text)
            m_tabs->setTabText(i, text);
        m_tabs->setTabToolTip(i, ui::toQt(document.fileName()).toHtmlEscaped());
    }
    const TvApDocument* active = m_program.documents().mdiActiveDocument();
    const QString product = ui::toQt(GetOemProductName());
    setWindowTitle(active ? words(app::Word::WindowTitle, {active->docTitle(), GetOemProductName()})
                          : product);
    setWindowModified(active && active->database()->isModified());
    m_state->setText(active ? ui::toQt(ed::currentLayoutName(*active->database())) : QString());
    if (!active)
        m_coordinates->clear();
}

void MainWindow::runOn(TvApDocument& document, const TvString& command)
{
    m_commands->cancel();
    m_program.documents().activateDocument(&document);
    m_commands->run(command);
}

void MainWindow::layoutMenu(TvDbObjectId layout, const QPoint& at)
{
    enum { kNew = 1, kRename, kDelete };
    TvString name;
    bool isModel = true;
    if (const TvDbObjectPointer<TvDbLayout> open(layout); open) {
        name = open->getLayoutName();
        isModel = open->isModelLayout();
    }
    ed::Menu menu;
    menu.add(kNew, app::textOf(app::Word::NewLayout));
    menu.add(kRename, app::textOf(app::Word::RenameLayout), !isModel);
    menu.add(kDelete, app::textOf(app::Word::DeleteLayout), !isModel);
    switch (ed::popupMenu(menu, at.x(), at.y())) {
    case kNew: return m_commands->run(u"_LAYOUT New");
    case kRename: return m_commands->run(u"_LAYOUT Rename\n" + name);
    case kDelete: return m_commands->run(u"_LAYOUT Delete\n" + name);
    default: break;
    }
}

// Files

void MainWindow::openFile(const TvString& path)
{
    if (isSheetSet(path)) {
        if (TarvSheetSetInternal* module = tarvGetSheetSetInternal())
            return module->OpenSheetSetFile(path.kwszPtr());
        return m_commands->say(static_cast<int>(app::Word::NotSupportedFile), {path});
    }
    TvApDocument* document = nullptr;
    const TvStatusCode status = m_program.open(path, false, document);
    if (status != TvStatus::FileInUse && status != TvStatus::FileReadOnly)
        return;
    TvUserMessages::Message message;
    message.text = static_cast<int>(app::Word::AskReadOnly);
    message.caption = static_cast<int>(app::Word::TitleReadOnly);
    message.arguments = {base::PathRules::native().fileNameOf(path)};
    message.buttons = TvUserMessages::Buttons::YesNo;
    message.icon = TvUserMessages::Icon::Question;
    message.standard = TvUserMessages::Answer::Yes;
    if (tvrxShowMessage(message) == TvUserMessages::Answer::Yes)
        m_program.openReadOnly(path, document);
}

void MainWindow::openFiles(const std::vector<TvString>& files)
{
    for (const TvString& file : files)
        openFile(app::absolutePath(file));
    synchronise();
}

void MainWindow::takeOver(const std::vector<TvString>& files)
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
    activateWindow();
    openFiles(files);
}

void MainWindow::recover(const app::LostSession& session)
{
    for (const app::LostDrawing& lost : session.drawings) {
        TvApDocument* document = nullptr;
        if (!lost.copy.isEmpty() && m_program.openCopy(lost.copy, document) == TvStatus::Ok) {
            app::markAsChanged(*document->database());
            m_commands->say(static_cast<int>(app::Word::RecoveredAs), {lost.file});
        } else if (lost.copy.isEmpty() && lost.hasFile) {
            openFile(lost.file);
        }
    }
    synchronise();
}

void MainWindow::autosave()
{
    if (!m_recovery || !m_program.commandLine().isIdle())
        return;
    const base::Status status = m_recovery->keep(m_program.documents(), m_watch);
    if (!status && !std::exchange(m_saidAutosaveFailed, true)) {
        m_commands->say(static_cast<int>(app::Word::AutosaveFailed), {});
        m_commands->say(static_cast<int>(status.reason()), status.arguments());
    }
}

bool MainWindow::hasUnsavedChanges() const
{
    for (int i = 0; i < m_tabs->count(); ++i)
        if (static_cast<DocumentPage*>(m_tabs->widget(i))->document().database()->isModified())
            return true;
    return false;
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    std::vector<TvString> files;
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile())
            files.push_back(ui::fromQt(url.toLocalFile()));
    event->acceptProposedAction();
    openFiles(files);
}

// The end

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (m_isQuitting)
        return event->accept();
    event->ignore();
    m_commands->run(u"_QUIT");
}

void MainWindow::quit()
{
    m_isQuitting = true;
    QTimer::singleShot(0, this, [this] {
        m_commands->refuseAll();
        close();
    });
}

void MainWindow::posted()
{
    m_commands->workSoon();
}

bool MainWindow::showHelp(const TvString&)
{
    return false; // the command line says what it knows
}

void MainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_reactor)
        m_soon.start();
}

void MainWindow::about()
{
    TvString modules;
    for (const TvString& name : m_program.linker().loadedModules())
        modules += (modules.isEmpty() ? TvString() : TvString(u", ")) + name;
    TvUserMessages::Message message;
    message.text = static_cast<int>(app::Word::AboutText);
    message.icon = TvUserMessages::Icon::Information;
    message.arguments = {GetOemProductName(), app::programVersion(), TvString(qVersion()),
                         TvString(KV_CAIRO_VERSION),
                         modules.isEmpty() ? app::textOf(app::Word::NoModules) : modules};
    tvrxShowMessage(message);
}

} // namespace window
