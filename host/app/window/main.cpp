#include <cerrno>
#include <csignal>
#include <string>
#include <vector>

#include <unistd.h>

#include <base/status.h>

#include <app/headless.h>
#include <app/words.h>

#include "window/run_window.h"

namespace {

void writeAll(int file, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = ::write(file, text.data(), text.size());
        if (written < 0 && errno != EINTR)
            return; // a reader that went, or a full disk: nobody is left to be told
        text.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
}

void out(std::string_view text)
{
    writeAll(STDOUT_FILENO, text);
}

void err(std::string_view text)
{
    writeAll(STDERR_FILENO, text);
}

base::Result<std::vector<std::byte>> readStandardInput()
{
    constexpr std::size_t kLongest = 16 << 20, kPiece = 64 << 10;
    std::vector<std::byte> text;
    while (true) {
        const std::size_t before = text.size();
        text.resize(before + kPiece);
        const ssize_t got = ::read(STDIN_FILENO, text.data() + before, kPiece);
        text.resize(before + (got > 0 ? static_cast<std::size_t>(got) : 0));
        if (got < 0 && errno != EINTR)
            return base::Status::fromSystem(errno, u"-");
        if (got == 0)
            return text;
        if (text.size() > kLongest)
            return base::Status(base::Failure::TooLarge, base::Reason::FileTooLarge, {u"-"});
    }
}

void sayLine(const TvString& text)
{
    err(app::textOf(app::Word::MessageLine, {base::escapedForDisplay(text)}).utf8() + "\n");
}

app::ExitCode run(const std::vector<std::string>& arguments, int& argc, char** argv)
{
    using app::Word;
    const app::Options options = app::parseOptions(arguments);
    if (!options.error.isEmpty()) {
        sayLine(options.error);
        sayLine(app::textOf(Word::TryHelp));
        return app::ExitCode::Usage;
    }
    if (options.wantsHelp || options.wantsVersion) {
        out((options.wantsHelp ? app::helpText() : app::versionText()).utf8());
        return app::ExitCode::Ok;
    }
    const app::HeadlessPorts ports{out, err, readStandardInput};
    const app::ProgramFolders folders = app::ProgramFolders::ofUser();
    return options.isHeadless ? app::runHeadless(options, folders, ports)
                              : window::runWindow(options, folders, ports, argc, argv);
}

} // namespace

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN); // a reader that went shows as EPIPE
    try {
        return static_cast<int>(run({argv + (argc > 0), argv + argc}, argc, argv));
    } catch (const std::exception& failure) {
        sayLine(app::textOf(app::Word::InternalError, {TvString(failure.what())}));
    } catch (...) {
        sayLine(app::textOf(app::Word::UnknownReason));
    }
    return static_cast<int>(app::ExitCode::Internal);
}
