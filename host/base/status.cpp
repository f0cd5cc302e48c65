#include "base/status.h"

#include <cerrno>
#include <system_error>

namespace base {

namespace {

struct ErrorRow {
    int number;
    Failure failure;
    Reason reason;
};

// clang-format off
constexpr ErrorRow kErrors[] = {
    {ENOENT,        Failure::NotFound,    Reason::FileMissing},
    {ENOTDIR,       Failure::NotFound,    Reason::FileMissing},
    {EACCES,        Failure::Denied,      Reason::AccessDenied},
    {EPERM,         Failure::Denied,      Reason::AccessDenied},
    {EROFS,         Failure::ReadOnly,    Reason::FileReadOnly},
    {ENOSPC,        Failure::DiskFull,    Reason::DiskFull},
    {EDQUOT,        Failure::DiskFull,    Reason::DiskFull},
    {EEXIST,        Failure::Exists,      Reason::FileExists},
    {ENOTEMPTY,     Failure::Exists,      Reason::FileExists},
    {EFBIG,         Failure::TooLarge,    Reason::FileTooLarge},
    {EOVERFLOW,     Failure::TooLarge,    Reason::FileTooLarge},
    {EISDIR,        Failure::Unsupported, Reason::NotRegularFile},
    {ENXIO,         Failure::Unsupported, Reason::NotRegularFile}, // a socket, or a pipe without reader
    {ENODEV,        Failure::Unsupported, Reason::NotRegularFile},
    {ESPIPE,        Failure::Unsupported, Reason::NotRegularFile},
    {ELOOP,         Failure::Io,          Reason::LinkLoop},
    {ENAMETOOLONG,  Failure::Usage,       Reason::PathTooLong},
    {EAGAIN,        Failure::Locked,      Reason::LockHeld},
    {EBUSY,         Failure::Locked,      Reason::LockHeld},
    {ETXTBSY,       Failure::Locked,      Reason::LockHeld},
    {EINTR,         Failure::Interrupted, Reason::Cancelled},
    {ETIMEDOUT,     Failure::Unreachable, Reason::FolderUnreachable},
    {ESTALE,        Failure::Unreachable, Reason::FolderUnreachable},
    {EHOSTDOWN,     Failure::Unreachable, Reason::FolderUnreachable},
    {EHOSTUNREACH,  Failure::Unreachable, Reason::FolderUnreachable},
    {ENETDOWN,      Failure::Unreachable, Reason::FolderUnreachable},
    {ENETUNREACH,   Failure::Unreachable, Reason::FolderUnreachable},
    {ENETRESET,     Failure::Unreachable, Reason::FolderUnreachable},
    {ENOTCONN,      Failure::Unreachable, Reason::FolderUnreachable},
    {ECONNREFUSED,  Failure::Unreachable, Reason::FolderUnreachable},
    {ECONNRESET,    Failure::Unreachable, Reason::FolderUnreachable},
    {ECONNABORTED,  Failure::Unreachable, Reason::FolderUnreachable},
    {ENOLINK,       Failure::Unreachable, Reason::FolderUnreachable},
};
// clang-format on

/// The texts that belong to @p reason, in their order.
std::vector<TvString> argumentsFor(Reason reason, int errorNumber, const TvString& path)
{
    if (reason == Reason::SystemError)
        return {path, TvString(std::string_view(std::generic_category().message(errorNumber)))};
    if (reason == Reason::LockHeld)
        return {path, u"?"}; // the system does not tell who
    return {path};
}

} // namespace

Status Status::fromSystem(int errorNumber, const TvString& path)
{
    if (errorNumber == 0)
        return {};
    ErrorRow found{errorNumber, Failure::Io, Reason::SystemError};
    for (const ErrorRow& row : kErrors) {
        if (row.number == errorNumber)
            found = row;
    }
    return {found.failure, found.reason, argumentsFor(found.reason, errorNumber, path)};
}

} // namespace base
