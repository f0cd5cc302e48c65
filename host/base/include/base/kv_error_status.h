#pragma once

#include <base/tv_string.h>

/// What low-level containers and the configuration throw: a code and a text, usually empty.
///
/// Thrown only through throwErrorStatus(), so that the crash recorder has seen each one.
class KvErrorStatus
{
public:
    explicit KvErrorStatus(int code, TvString text = {}) : m_code(code), m_text(std::move(text)) {}

    int code() const { return m_code; }
    const TvString& text() const { return m_text; }

private:
    int m_code;
    TvString m_text;
};

/// Codes in use. Numbers are forever.
enum KvErrorCode : int {
    kvErrInvalidArgument = 2, ///< An index or argument out of range.
    kvErrInvalidLength = 3,   ///< A length below 1.
    kvErrOutOfMemory = 6,
    kvErrOutOfRange = 24, ///< Past the end of a container.
};

/// Hears of each KvErrorStatus before it is thrown. The host supplies one; tests supply their own.
class KvCrashRecorder
{
public:
    virtual ~KvCrashRecorder() = default;
    virtual void record(const KvErrorStatus& status) = 0;
    /// Called once after record(): writes out what it keeps.
    virtual void finish() = 0;
};

/// The recorder in force, or null.
KvCrashRecorder* tarvGetCrashRecorder();
/// @param recorder not owned; null takes the present one away. Gives the former one.
KvCrashRecorder* tarvSetCrashRecorder(KvCrashRecorder* recorder);

/// Makes the status, hands it to the recorder if there is one, finishes the record, and throws it.
[[noreturn]] void throwErrorStatus(int code);
