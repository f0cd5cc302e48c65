#pragma once

#include <vector>

#include <base/kv_error_status.h>
#include <base/tv_string.h>

namespace app {

/// Writes a report when the program dies of a signal, into a file of the folder: version, signal,
/// addresses of the calls, the last commands. Then the signal takes its course.
///
/// In the handler nothing but system calls is done; all that it needs was made before. One at a
/// time in a process.
class CrashReporter : public KvCrashRecorder
{
public:
    /// @param folder   made when it is not there; only its owner can look into it. When that fails
    ///                 there are no reports.
    /// @param version  of the program.
    CrashReporter(const TvString& folder, const TvString& version);
    ~CrashReporter() override;
    CrashReporter(const CrashReporter&) = delete;
    CrashReporter& operator=(const CrashReporter&) = delete;

    /// Notes a command's name; the last kCommands of them are in the report.
    void noteCommand(const TvString& name);
    static constexpr int kCommands = 16;

    /// The last failure that was thrown stands in the report, too.
    void record(const KvErrorStatus& status) override;
    void finish() override {}
};

/// The reports in a folder that nobody was told of yet, the oldest first. Each is told once: its
/// path is what it is called from now on.
std::vector<TvString> takeNewCrashReports(const TvString& folder);

} // namespace app
