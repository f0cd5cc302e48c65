#include "app/headless.h"

#include <base/kv_file_system.h>
#include <db/version.h>

#include "app/console_prompts.h"
#include "app/program.h"
#include "app/words.h"

namespace app {

namespace {

constexpr std::int64_t kLongestScript = 16 << 20;

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

void runScript(Program& program, const Options& options, const HeadlessPorts& ports, Tally& tally)
{
    if (options.script.isEmpty())
        return;
    const base::Result<TvString> script = options.script == u"-"
                                              ? ports.readStandardInput()
                                              : readScript(absolutePath(options.script));
    if (!script) {
        ed::userPrompts()->say(static_cast<int>(script.status().reason()),
                               script.status().arguments());
        tally.failed(exitCodeOf(script.status().failure()));
        return;
    }
    program.commandLine().post(*script + u"\n");
    program.commandLine().work();
}

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

TvString scriptText(std::string_view utf8)
{
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    if (utf8.starts_with(kMark))
        utf8.remove_prefix(kMark.size());
    std::string text;
    text.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size(); ++at)
        if (utf8[at] != '\r')
            text += utf8[at];
        else if (at + 1 == utf8.size() || utf8[at + 1] != '\n')
            text += '\n';
    return TvString(std::string_view(text));
}

base::Result<TvString> readScript(const TvString& path)
{
    const auto bytes = KvFileSystem::readFile(path, kLongestScript);
    if (!bytes)
        return bytes.status();
    return scriptText({reinterpret_cast<const char*>(bytes->data()), bytes->size()});
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
    runScript(program, options, ports, tally);
    prompts.endLine();
    tellOpen(program.documents(), prompts);
    program.stop();
    return codeOf(tally, prompts.failures() > ofModules);
}

} // namespace app
