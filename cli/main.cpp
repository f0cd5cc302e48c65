#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <unistd.h>

#include <dwg/dwg_codec.h>
#include <dxf/dxf_codec.h>

#include "cli/application.h"

namespace {

volatile std::sig_atomic_t g_interrupted = 0;

void onInterrupt(int)
{
    g_interrupted = 1;
}

/// The first signal asks, the second ends at once: what is half written then is a temporary file,
/// and the system frees the locks.
void listenToSignals()
{
    struct sigaction action = {};
    action.sa_handler = onInterrupt;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN); // a reader that went shows as EPIPE
}

/// 0, or the system's error number.
int writeAll(int file, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = ::write(file, text.data(), text.size());
        if (written < 0 && errno != EINTR)
            return errno;
        text.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return 0;
}

class ProcessPorts : public cli::Ports
{
public:
    void out(std::string_view text) override { m_out += text; }
    void err(std::string_view text) override { writeAll(STDERR_FILENO, text); }
    bool flush() override
    {
        const int error = writeAll(STDOUT_FILENO, m_out);
        m_out.clear();
        return error == 0 || error == EPIPE;
    }
    bool isInterrupted() override { return g_interrupted != 0; }
    bool isColorful() override { return m_isColorful; }

private:
    static bool wantsColor()
    {
        const char* refused = std::getenv("NO_COLOR");
        const char* terminal = std::getenv("TERM");
        return ::isatty(STDOUT_FILENO) && !(refused && *refused) && terminal &&
               std::strcmp(terminal, "dumb") != 0;
    }

    std::string m_out; // at the end, whole: no verb shows a part of what then fails
    const bool m_isColorful = wantsColor();
};

} // namespace

int main(int argc, char** argv)
{
    listenToSignals();
    dwg::install();
    dxf::install();
    ProcessPorts ports;
    const std::vector<std::string> arguments(argv + (argc > 0), argv + argc);
    return cli::runTool(arguments, ports);
}
