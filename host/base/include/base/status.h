#pragma once

#include <optional>
#include <utility>
#include <vector>

#include <base/reasons.h>
#include <base/tv_string.h>

namespace base {

/// What kind of thing went wrong: callers branch on this, and the tool's exit code follows from it.
enum class Failure {
    None = 0,
    NotFound,    ///< The file, folder or object is not there.
    Denied,      ///< No right to read or write it.
    ReadOnly,    ///< It is marked read only, or lies on a read-only file system.
    DiskFull,    ///< No room, or over a quota.
    Exists,      ///< It is there and must not be.
    Locked,      ///< Somebody else holds it.
    Conflict,    ///< It changed since it was read.
    Damaged,     ///< Its content is not what it should be.
    Unsupported, ///< Its content is of a kind or version that we do not write or read.
    Unreachable, ///< The folder or host does not answer.
    TooLarge,    ///< Over a limit that we set for safety.
    Usage,       ///< The caller asked for something that makes no sense.
    Interrupted, ///< The user or a signal ended it.
    Io,          ///< Anything else that the system reports.
};

/// Success, or a failure with its reason.
///
/// The reason is the number of a text and the texts to put into it; the words themselves are in the
/// resources, so that a lower room never holds a sentence for people.
class [[nodiscard]] Status
{
public:
    Status() = default; ///< Success.
    Status(Failure failure, Reason reason, std::vector<TvString> arguments = {})
        : m_failure(failure), m_reason(reason), m_arguments(std::move(arguments))
    {
    }
    /// The failure and reason that belong to a system error number, about the file @p path.
    static Status fromSystem(int errorNumber, const TvString& path);

    explicit operator bool() const { return m_failure == Failure::None; }
    Failure failure() const { return m_failure; }
    Reason reason() const { return m_reason; }
    const std::vector<TvString>& arguments() const { return m_arguments; }

private:
    Failure m_failure = Failure::None;
    Reason m_reason = Reason::None;
    std::vector<TvString> m_arguments;
};

/// A value, or the status that says why there is none.
template <class T>
class [[nodiscard]] Result
{
public:
    Result(T value) : m_value(std::move(value)) {}
    Result(Status failure) : m_status(std::move(failure)) {}

    explicit operator bool() const { return m_value.has_value(); }
    T& operator*() { return *m_value; }
    const T& operator*() const { return *m_value; }
    T* operator->() { return &*m_value; }
    const T* operator->() const { return &*m_value; }
    const Status& status() const { return m_status; }

private:
    std::optional<T> m_value;
    Status m_status;
};

} // namespace base
