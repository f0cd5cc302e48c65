#include "app/crash_report.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstring>
#include <string>

#include <execinfo.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <base/clock.h>
#include <base/kv_file_system.h>

namespace app {

namespace {

constexpr int kSignals[] = {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL};
constexpr std::size_t kSignalCount = std::size(kSignals);
constexpr std::size_t kNameBytes = 64;
constexpr std::size_t kStackBytes = 128 << 10; // a stack that overflowed cannot be used any more
constexpr int kMostCalls = 64;
constexpr std::u16string_view kNew = u".new", kTold = u".txt";

/// All that the handler reads: filled before, never allocated in it.
struct Prepared {
    char path[4096] = {};
    char version[kNameBytes] = {};
    char commands[CrashReporter::kCommands][kNameBytes] = {};
    std::atomic<unsigned> commandCount = 0;
    std::atomic<int> thrown = 0; ///< the code of the last KvErrorStatus
    std::array<struct sigaction, kSignalCount> former{};
    stack_t formerStack{};
};

Prepared g_prepared;
alignas(16) char g_stack[kStackBytes];
std::atomic<bool> g_isWriting = false;

void put(int file, const char* text)
{
    std::size_t left = std::strlen(text);
    while (left > 0) {
        const ssize_t written = ::write(file, text, left);
        if (written <= 0)
            return;
        text += written;
        left -= static_cast<std::size_t>(written);
    }
}

void putNumber(int file, long number)
{
    char digits[24];
    char* at = digits + sizeof digits;
    *--at = '\0';
    const bool isNegative = number < 0;
    unsigned long rest =
        isNegative ? 0ul - static_cast<unsigned long>(number) : static_cast<unsigned long>(number);
    do {
        *--at = static_cast<char>('0' + rest % 10);
        rest /= 10;
    } while (rest > 0);
    if (isNegative)
        *--at = '-';
    put(file, at);
}

void putLine(int file, const char* name, const char* value)
{
    put(file, name);
    put(file, value);
    put(file, "\n");
}

void putLine(int file, const char* name, long value)
{
    put(file, name);
    putNumber(file, value);
    put(file, "\n");
}

void writeReport(int signal)
{
    const int file = ::open(g_prepared.path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW,
                            S_IRUSR | S_IWUSR);
    if (file < 0)
        return;
    putLine(file, "tarvik ", g_prepared.version);
    putLine(file, "signal ", signal);
    putLine(file, "time ", static_cast<long>(::time(nullptr)));
    putLine(file, "last failure ", g_prepared.thrown.load());
    const unsigned count = g_prepared.commandCount.load();
    const unsigned kept = count < CrashReporter::kCommands ? count : CrashReporter::kCommands;
    for (unsigned i = count - kept; i < count; ++i)
        putLine(file, "command ", g_prepared.commands[i % CrashReporter::kCommands]);
    put(file, "calls\n");
    void* calls[kMostCalls];
    ::backtrace_symbols_fd(calls, ::backtrace(calls, kMostCalls), file);
    ::fsync(file);
    ::close(file);
}

extern "C" void onCrash(int signal)
{
    if (!g_isWriting.exchange(true))
        writeReport(signal);
    // As it would have gone without us.
    struct sigaction standard {
    };
    standard.sa_handler = SIG_DFL;
    ::sigaction(signal, &standard, nullptr);
    ::raise(signal);
}

void copyName(char (&to)[kNameBytes], const std::string& text)
{
    const std::size_t length = std::min(text.size(), kNameBytes - 1);
    std::memcpy(to, text.data(), length);
    to[length] = '\0';
}

bool makePrivateFolder(const TvString& folder)
{
    if (!KvFileSystem::createDirectory(folder))
        return false;
    return ::chmod(base::nativePath(folder).c_str(), S_IRWXU) == 0;
}

bool preparePath(const TvString& folder)
{
    const TvString name = TvString().format(
        u"crash-%ls-%d", TvString(std::to_string(base::systemClock().utcNs()).c_str()),
        static_cast<int>(::getpid()));
    const std::string path = base::nativePath(base::PathRules::native().join(folder, name + kNew));
    if (path.size() >= sizeof g_prepared.path)
        return false;
    std::memcpy(g_prepared.path, path.c_str(), path.size() + 1);
    return true;
}

void listen()
{
    void* first[1];
    ::backtrace(first, 1); // loads what it needs; in the handler it must not
    stack_t stack{};
    stack.ss_sp = g_stack;
    stack.ss_size = sizeof g_stack;
    ::sigaltstack(&stack, &g_prepared.formerStack);
    struct sigaction action {
    };
    action.sa_handler = onCrash;
    action.sa_flags = SA_ONSTACK | SA_NODEFER;
    for (std::size_t i = 0; i < kSignalCount; ++i)
        ::sigaction(kSignals[i], &action, &g_prepared.former[i]);
}

} // namespace

CrashReporter::CrashReporter(const TvString& folder, const TvString& version)
{
    tarvSetCrashRecorder(this);
    g_prepared.path[0] = '\0';
    g_prepared.commandCount = 0;
    g_prepared.thrown = 0;
    g_isWriting = false;
    if (folder.isEmpty() || !makePrivateFolder(folder) || !preparePath(folder))
        return;
    copyName(g_prepared.version, version.utf8());
    listen();
}

CrashReporter::~CrashReporter()
{
    tarvSetCrashRecorder(nullptr);
    if (!g_prepared.path[0])
        return;
    for (std::size_t i = 0; i < kSignalCount; ++i)
        ::sigaction(kSignals[i], &g_prepared.former[i], nullptr);
    ::sigaltstack(&g_prepared.formerStack, nullptr);
}

void CrashReporter::noteCommand(const TvString& name)
{
    const unsigned count = g_prepared.commandCount.load();
    copyName(g_prepared.commands[count % kCommands], base::escapedForDisplay(name).utf8());
    g_prepared.commandCount = count + 1;
}

void CrashReporter::record(const KvErrorStatus& status)
{
    g_prepared.thrown = status.code();
}

std::vector<TvString> takeNewCrashReports(const TvString& folder)
{
    std::vector<TvString> told;
    if (folder.isEmpty())
        return told;
    for (const KvFileSystem::Entry& entry : KvFileSystem::listFolder(folder)) {
        if (entry.isDirectory || !entry.name.startsWith(u"crash-") || !entry.name.endsWith(kNew))
            continue;
        const TvString from = base::PathRules::native().join(folder, entry.name);
        const TvString to = from.substr(0, from.length() - static_cast<int>(kNew.size())) + kTold;
        told.push_back(KvFileSystem::moveFile(from, to) ? to : from);
    }
    return told;
}

} // namespace app
