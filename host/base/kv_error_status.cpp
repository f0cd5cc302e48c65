#include "base/kv_error_status.h"

#include <utility>

namespace {

KvCrashRecorder* g_recorder = nullptr; // not owned; whoever set it takes it away

} // namespace

KvCrashRecorder* tarvGetCrashRecorder()
{
    return g_recorder;
}

KvCrashRecorder* tarvSetCrashRecorder(KvCrashRecorder* recorder)
{
    return std::exchange(g_recorder, recorder);
}

void throwErrorStatus(int code)
{
    const KvErrorStatus status(code);
    if (KvCrashRecorder* recorder = tarvGetCrashRecorder()) {
        recorder->record(status);
        recorder->finish();
    }
    throw status;
}
