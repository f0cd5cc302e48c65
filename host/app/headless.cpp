#include "app/headless.h"

#include <ed/program_control.h>
#include <ed/script.h>

#include "app/console_prompts.h"
#include "app/program.h"
#include "app/words.h"

namespace app {

namespace {

/// What happened so far, from which the exit code follows.
struct Tally {
    ExitCode firstFailure = ExitCode::Ok;
    bool anyOpen = false;

    void failed(ExitCode code)
    {
        if (firstFailure == ExitCode::Ok)
            firstFailure = code;
    }
};

void openAll(Program& program, const Options& options, Tally& tally)
{
    TvApDocument* first = nullptr;
    for (const TvString& file : options.files) {
        TvApDocument* document = nullptr;
        if (program.open(absolutePath(file), false, document) == TvStatus::Ok)
            first = first ? first : document;
        else
            tally.failed(exitCodeOf(program.documents().lastFailure().failure()));
    }
    tally.anyOpen = first != nullptr;
    if (first)
        program.documents().activateDocument(first);
}

/// A script may end the program.
class EndOfScript : public ed::ProgramControl
{
public:
    EndOfScript() { ed::setProgramControl(this); }
    ~EndOfScript() override { ed::setProgramControl(nullptr); }
    EndOfScript(const EndOfScript&) = delete;
    EndOfScript& operator=(const EndOfScript&) = delete;
    void quit() override
    {
        if (ed::CommandLine* line = ed::commandLine())
            line->stopScript();
    }
    bool showHelp(const TvString&) override { return false; }
    void recentFilesChanged() override {}
};

void tellOpen(TvApDocManager& documents, ConsolePrompts& prompts)
{
    const std::unique_ptr<TvApDocumentIterator> each(documents.newTvApDocumentIterator());
    for (; !each->done(); each->step()) {
        const TvApDocument& document = *each->document();
        if (document.database()->isModified())
            prompts.say(static_cast<int>(Word::UnsavedDiscarded), {document.fileName()});
    }
}

ExitCode codeOf(const Tally& tally, bool hasFailures)
{
    if (tally.firstFailure != ExitCode::Ok)
        return tally.anyOpen ? ExitCode::PartlyFailed : tally.firstFailure;
    return hasFailures ? ExitCode::PartlyFailed : ExitCode::Ok;
}

} // namespace

base::Failure runStartScript(const Options& options, const HeadlessPorts& ports)
{
    if (options.script.isEmpty())
        return base::Failure::None;
    base::Status status;
    if (options.script == u"-") {
        const base::Result<std::vector<std::byte>> bytes = ports.readStandardInput();
        status = bytes.status();
        if (bytes && ed::commandLine()->startScript(ed::scriptText(*bytes)))
            ed::commandLine()->work();
    } else {
        status = ed::runScript(absolutePath(options.script));
    }
    if (!status)
        ed::userPrompts()->say(static_cast<int>(status.reason()), status.arguments());
    return status.failure();
}

ExitCode runHeadless(const Options& options, const ProgramFolders& folders,
                     const HeadlessPorts& ports)
{
    ConsolePrompts prompts(ports.out, ports.err);
    Program program({folders, &prompts, &prompts});
    program.loadModules();
    const int ofModules = prompts.failures(); // the work goes on without them
    Tally tally;
    openAll(program, options, tally);
    const EndOfScript control;
    if (const base::Failure failure = runStartScript(options, ports);
        failure != base::Failure::None)
        tally.failed(exitCodeOf(failure));
    prompts.endLine();
    tellOpen(program.documents(), prompts);
    program.stop();
    return codeOf(tally, prompts.failures() > ofModules);
}

} // namespace app
