// Compiled into every program of a sanitizer build. The leak checker looks when the program ends. A
// thread of a library whose work is over (Qt's pool, which paints with it, waits for the work only)
// may then still be on its way out, and what it is about to give back would be told as a leak,
// once in a great many runs. So such a program ends after its threads; one
// that never ends (it asks a folder that gives no answer) is not waited for.

#include <chrono>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <thread>

namespace {

[[gnu::destructor]] void endAfterThreads()
{
    constexpr int kAttempts = 500;
    constexpr std::chrono::milliseconds kPause(1);
    for (int i = 0; i < kAttempts; ++i) {
        std::error_code error;
        const std::filesystem::directory_iterator tasks("/proc/self/task", error);
        if (error || std::distance(begin(tasks), end(tasks)) <= 1)
            return;
        std::this_thread::sleep_for(kPause);
    }
}

} // namespace
