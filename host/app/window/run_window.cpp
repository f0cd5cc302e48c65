#include "window/run_window.h"

#include <algorithm>
#include <clocale>
#include <csignal>
#include <optional>

#include <QApplication>
#include <QSocketNotifier>
#include <QTimer>

#include <app/console_prompts.h>
#include <app/words.h>
#include <base/path_rules.h>
#include <base/tarvik_config.h>
#include <ed/menu.h>
#include <rx/tv_product.h>
#include <rx/tv_user_messages.h>
#include <ui/menu.h>
#include <ui/message_windows.h>
#include <ui/qt_text.h>
#include <ui/theme.h>
#include <ui/window_state.h>
#include <unistd.h>

#include "window/command_panel.h"
#include "window/document_page.h"
#include "window/guarded_application.h"
#include "window/main_window.h"
#include "window/single_instance.h"

namespace window {

namespace {

TvString below(const TvString& folder, std::u16string_view name)
{
    return folder.isEmpty() ? folder : base::PathRules::native().join(folder, name);
}

/// The services of windows that rooms without windows ask for, as long as it lives.
class WindowServices
{
public:
    explicit WindowServices(const TvString& stateFolder) : m_state(stateFolder)
    {
        ui::setStateStore(stateFolder.isEmpty() ? nullptr : &m_state);
        ed::setMenuService(&m_menus);
    }
    ~WindowServices()
    {
        ed::setMenuService(nullptr);
        ui::setStateStore(nullptr);
    }
    WindowServices(const WindowServices&) = delete;
    WindowServices& operator=(const WindowServices&) = delete;

private:
    TarvikConfig m_state;
    ui::MenuWindows m_menus;
};

int g_signalPipe[2] = {-1, -1};

extern "C" void onEndSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(g_signalPipe[1], &byte, 1);
}

/// A signal that asks the program to end closes it in order, without questions; a second one ends
/// it at once.
void listenToEndSignals(QApplication& application)
{
    if (::pipe(g_signalPipe) != 0)
        return;
    auto* notifier = new QSocketNotifier(g_signalPipe[0], QSocketNotifier::Read, &application);
    QObject::connect(notifier, &QSocketNotifier::activated, &application, [notifier] {
        notifier->setEnabled(false);
        QCoreApplication::exit(static_cast<int>(app::ExitCode::Interrupted));
    });
    struct sigaction action {
    };
    action.sa_handler = onEndSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        ::sigaction(signal, &action, nullptr);
}

bool hasCopies(const app::LostSession& session)
{
    return std::ranges::any_of(session.drawings,
                               [](const auto& drawing) { return !drawing.copy.isEmpty(); });
}

bool wantsRecovery(const app::LostSession& session)
{
    std::vector<const app::LostDrawing*> changed;
    for (const app::LostDrawing& drawing : session.drawings)
        if (!drawing.copy.isEmpty())
            changed.push_back(&drawing);
    TvUserMessages::Message message;
    message.text = static_cast<int>(app::Word::AskRecover);
    message.caption = static_cast<int>(app::Word::TitleRecover);
    message.arguments = {
        changed.size() == 1
            ? base::PathRules::native().fileNameOf(changed[0]->file)
            : app::textOf(app::Word::RecoverDrawings,
                          {TvString().format(u"%d", static_cast<int>(changed.size()))})};
    message.buttons = TvUserMessages::Buttons::YesNo;
    message.icon = TvUserMessages::Icon::Question;
    message.standard = TvUserMessages::Answer::Yes;
    return tvrxShowMessage(message) == TvUserMessages::Answer::Yes;
}

/// What earlier runs left behind: told, offered, and taken away once this run ends in order.
class FormerRuns
{
public:
    explicit FormerRuns(const app::ProgramFolders& folders)
        : m_reports(app::takeNewCrashReports(below(folders.state, u"crashes"))),
          m_lost(app::lostSessions(below(folders.state, u"sessions")))
    {
    }
    void tell(MainWindow& window)
    {
        for (const TvString& report : m_reports)
            window.commandPanel().say(static_cast<int>(app::Word::CrashReportAt), {report});
        for (const app::LostSession& session : m_lost)
            if (!hasCopies(session) ? !m_reports.empty() : wantsRecovery(session))
                window.recover(session);
    }
    void end() const
    {
        for (const app::LostSession& session : m_lost)
            app::discard(session);
    }

private:
    std::vector<TvString> m_reports;
    std::vector<app::LostSession> m_lost;
};

/// Answers for a run that nobody watches: the standard button of each question, told at the console
/// like every message. A question in a window would wait for ever.
class StandardAnswers : public TvUserMessages
{
public:
    explicit StandardAnswers(app::ConsolePrompts& console) : m_console(console) {}
    Answer show(const Message& message) override
    {
        const Answer refusal = m_console.show(message);
        return message.buttons == Buttons::Ok ? refusal : message.standard;
    }

private:
    app::ConsolePrompts& m_console; // not owned; of the same function
};

/// Until each widget has the place that it keeps, and the drawing is painted in it.
void settle(MainWindow& window)
{
    constexpr int kRounds = 5; // a layout that is done may ask for another one
    for (int i = 0; i < kRounds; ++i) {
        QApplication::processEvents();
        window.synchronise();
    }
    if (DocumentPage* page = window.currentPage())
        page->canvas().finishPainting();
}

void openAtStart(MainWindow& window, const app::Options& options, const app::HeadlessPorts& ports)
{
    const bool isWatched = options.hidden.empty();
    if (!isWatched)
        window.commandPanel().refuseAll(); // what the script does not answer nobody does
    window.openFiles(options.files);
    if (!isWatched)
        settle(window); // a view is made for the window as it will be
    app::runStartScript(options, ports);
    window.synchronise();
}

/// For pictures in the documentation, and tests of what a crash leaves: "picture=FILE" takes one of
/// the window and ends, "crash" keeps what a crash would lose and then crashes.
void obeyHidden(MainWindow& window, const std::string& order)
{
    constexpr std::string_view kPicture = "picture=";
    if (order == "crash") {
        window.autosave();
        std::raise(SIGSEGV);
    } else if (order.starts_with(kPicture)) {
        settle(window);
        const bool isSaved =
            window.grab().save(QString::fromStdString(order.substr(kPicture.size())));
        QCoreApplication::exit(
            static_cast<int>(isSaved ? app::ExitCode::Ok : app::ExitCode::CannotWrite));
    }
}

app::ExitCode runProgram(QApplication& application, SingleInstance& instance,
                         const app::Options& options, const app::ProgramFolders& folders,
                         const app::HeadlessPorts& ports)
{
    app::CrashReporter crashes(below(folders.state, u"crashes"), app::programVersion());
    const bool isWatched = options.hidden.empty();
    std::optional<FormerRuns> former; // a run that nobody watches leaves them to the next one
    if (isWatched)
        former.emplace(folders);
    app::RecoveryKeeper recovery(below(folders.state, u"sessions"));
    ui::MessageWindows messages;
    app::ConsolePrompts console(ports.out, ports.err); // until the window is there
    StandardAnswers answers(console);
    TvUserMessages& asked = isWatched ? static_cast<TvUserMessages&>(messages) : answers;
    app::Program program({folders, &console, &asked});
    const WindowServices services(folders.state);
    const ui::ThemeManager theme;
    int code = 0;
    {
        MainWindow window(program, &recovery, &crashes);
        program.loadModules();
        window.show();
        instance.onHandover = [&](const app::Handover& handover) {
            window.takeOver(handover.files);
        };
        QTimer::singleShot(0, &window, [&] {
            if (former)
                former->tell(window);
            openAtStart(window, options, ports);
            obeyHidden(window, options.hidden);
        });
        code = QApplication::exec();
        instance.onHandover = nullptr;
        window.commandPanel().refuseAll();
        if (code == static_cast<int>(app::ExitCode::Interrupted) && window.hasUnsavedChanges()) {
            window.autosave();
            recovery.leave();
        }
        program.stop();
        ed::setUserPrompts(nullptr);
    }
    static_cast<void>(application);
    if (former)
        former->end();
    return static_cast<app::ExitCode>(code);
}

} // namespace

app::ExitCode runWindow(const app::Options& options, const app::ProgramFolders& folders,
                        const app::HeadlessPorts& ports, int& argc, char** argv)
{
    GuardedApplication application(argc, argv);
    application.onFailure = [](const TvString& what) {
        if (ed::UserPrompts* prompts = ed::userPrompts())
            prompts->say(static_cast<int>(app::Word::InternalError), {what});
    };
    std::setlocale(LC_NUMERIC, "C"); // numbers never go through a locale
    QApplication::setApplicationName(QStringLiteral("tarvik"));
    QApplication::setApplicationDisplayName(ui::toQt(GetOemProductName()));
    QApplication::setApplicationVersion(ui::toQt(app::programVersion()));
    QApplication::setDesktopFileName(QStringLiteral("org.tarvik.Tarvik"));
    SingleInstance instance(folders.runtime);
    if (!options.wantsNewInstance && options.hidden.empty()) {
        app::Handover handover;
        for (const TvString& file : options.files)
            handover.files.push_back(app::absolutePath(file));
        if (options.script.isEmpty() && instance.handOver(handover)) {
            ports.err(app::textOf(app::Word::HandedOver).utf8() + "\n");
            return app::ExitCode::Ok;
        }
        instance.listen();
    }
    listenToEndSignals(application);
    return runProgram(application, instance, options, folders, ports);
}

} // namespace window
