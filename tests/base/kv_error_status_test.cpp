#include <base/kv_error_status.h>

namespace {

struct ListedRecorder : KvCrashRecorder {
    void record(const KvErrorStatus& status) override { steps.push_back(status.code()); }
    void finish() override { steps.push_back(-1); }
    std::vector<int> steps; // codes recorded; -1 for a finish
};

/// Puts the recorder that was in force back.
class RecorderScope
{
public:
    explicit RecorderScope(KvCrashRecorder* recorder) : m_former(tarvSetCrashRecorder(recorder)) {}
    ~RecorderScope() { tarvSetCrashRecorder(m_former); }
    RecorderScope(const RecorderScope&) = delete;
    RecorderScope& operator=(const RecorderScope&) = delete;

private:
    KvCrashRecorder* m_former; // not owned
};

TEST(ThrowErrorStatus, IsRecordedBeforeItIsThrown)
{
    ListedRecorder recorder;
    const RecorderScope scope(&recorder);

    try {
        throwErrorStatus(kvErrOutOfRange);
    } catch (const KvErrorStatus& status) {
        EXPECT_EQ(status.code(), 24);
        EXPECT_TRUE(status.text().isEmpty());
    }

    EXPECT_EQ(recorder.steps, (std::vector<int>{24, -1}));
}

TEST(ThrowErrorStatus, NeedsNoRecorder)
{
    const RecorderScope scope(nullptr);

    EXPECT_THROW(throwErrorStatus(kvErrInvalidArgument), KvErrorStatus);
}

TEST(SetCrashRecorder, GivesTheFormerOne)
{
    ListedRecorder recorder;
    const RecorderScope scope(nullptr);

    EXPECT_EQ(tarvSetCrashRecorder(&recorder), nullptr);
    EXPECT_EQ(tarvGetCrashRecorder(), &recorder);
    EXPECT_EQ(tarvSetCrashRecorder(nullptr), &recorder);
    EXPECT_EQ(tarvGetCrashRecorder(), nullptr);
}

} // namespace
