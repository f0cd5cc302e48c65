#include <cerrno>

#include <gtest/gtest.h>

#include <base/status.h>

namespace {

using base::Failure;
using base::Reason;
using base::Status;

struct ErrorCase {
    int error;
    Failure failure;
    Reason reason;
};

constexpr ErrorCase kErrors[] = {
    {ENOENT, Failure::NotFound, Reason::FileMissing},
    {ENOTDIR, Failure::NotFound, Reason::FileMissing},
    {EACCES, Failure::Denied, Reason::AccessDenied},
    {EPERM, Failure::Denied, Reason::AccessDenied},
    {EROFS, Failure::ReadOnly, Reason::FileReadOnly},
    {ENOSPC, Failure::DiskFull, Reason::DiskFull},
    {EDQUOT, Failure::DiskFull, Reason::DiskFull},
    {EEXIST, Failure::Exists, Reason::FileExists},
    {EAGAIN, Failure::Locked, Reason::LockHeld},
    {EBUSY, Failure::Locked, Reason::LockHeld},
    {EISDIR, Failure::Unsupported, Reason::NotRegularFile},
    {ELOOP, Failure::Io, Reason::LinkLoop},
    {ENAMETOOLONG, Failure::Usage, Reason::PathTooLong},
    {EFBIG, Failure::TooLarge, Reason::FileTooLarge},
    {ETIMEDOUT, Failure::Unreachable, Reason::FolderUnreachable},
    {ESTALE, Failure::Unreachable, Reason::FolderUnreachable},
    {EHOSTDOWN, Failure::Unreachable, Reason::FolderUnreachable},
    {EHOSTUNREACH, Failure::Unreachable, Reason::FolderUnreachable},
    {ENOTCONN, Failure::Unreachable, Reason::FolderUnreachable},
    {EINTR, Failure::Interrupted, Reason::Cancelled},
    {EIO, Failure::Io, Reason::SystemError},
    {EBADF, Failure::Io, Reason::SystemError},
    {99999, Failure::Io, Reason::SystemError},
};

TEST(Status, KnowsTheKindOfEverySystemError)
{
    for (const ErrorCase& row : kErrors) {
        const Status status = Status::fromSystem(row.error, u"/p/a.dwg");
        EXPECT_FALSE(bool(status)) << row.error;
        EXPECT_EQ(status.failure(), row.failure) << row.error;
        EXPECT_EQ(status.reason(), row.reason) << row.error;
        ASSERT_FALSE(status.arguments().empty()) << row.error;
        EXPECT_EQ(status.arguments()[0].utf8(), "/p/a.dwg") << row.error;
    }
}

TEST(Status, QuotesTheSystemWhereItHasNoWordsOfItsOwn)
{
    const Status status = Status::fromSystem(EIO, u"/p/a.dwg");

    ASSERT_EQ(status.arguments().size(), 2u);
    EXPECT_FALSE(status.arguments()[1].isEmpty());
}

TEST(Status, OfNoErrorIsSuccess)
{
    EXPECT_TRUE(bool(Status::fromSystem(0, u"/p/a.dwg")));
    EXPECT_EQ(Status::fromSystem(0, u"/p/a.dwg").reason(), Reason::None);
}

TEST(Status, WhoeverHoldsAFileHasAName)
{
    const Status status = Status::fromSystem(EAGAIN, u"a.dwg");
    ASSERT_EQ(status.arguments().size(), 2u);
    EXPECT_FALSE(status.arguments()[1].isEmpty());
}

} // namespace
