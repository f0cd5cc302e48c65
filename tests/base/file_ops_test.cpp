#include "file_test_tools.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/xattr.h>

#include <gtest/gtest.h>

#include <base/file_ops.h>

namespace {

using base::FileInfo;
using base::FileOps;
using OpenMode = base::FileOps::OpenMode;
using namespace std::string_literals;

class FileOpsTest : public testing::Test
{
protected:
    ~FileOpsTest() override
    {
        for (const FileOps::Descriptor file : m_opened)
            m_ops.close(file);
    }

    std::string at(const std::string& name) const { return nativeIn(m_folder, name); }

    /// Opens, and closes at the end of the test.
    FileOps::Descriptor open(const std::string& name, OpenMode mode)
    {
        FileOps::Descriptor file = FileOps::kNone;
        EXPECT_EQ(m_ops.open(at(name), mode, file), 0) << name;
        m_opened.push_back(file);
        return file;
    }

    int errorOfOpening(const std::string& name, OpenMode mode)
    {
        FileOps::Descriptor file = FileOps::kNone;
        const int error = m_ops.open(at(name), mode, file);
        EXPECT_EQ(error == 0, file != FileOps::kNone) << name;
        if (!error)
            m_opened.push_back(file);
        return error;
    }

    FileInfo described(const std::string& name)
    {
        FileInfo info;
        EXPECT_EQ(m_ops.describeName(at(name), info), 0) << name;
        return info;
    }

    FileOps& m_ops = base::systemFileOps();
    TempFolder m_folder;
    std::vector<FileOps::Descriptor> m_opened;
};

// Opening
// -------------------------------------------------------------------------------------------

TEST_F(FileOpsTest, FollowsALinkOnlyWhereTheModeSaysSo)
{
    m_folder.write("a", "text");
    ASSERT_EQ(::symlink("a", at("link").c_str()), 0);

    EXPECT_EQ(errorOfOpening("link", OpenMode::Read), 0);
    EXPECT_EQ(errorOfOpening("link", OpenMode::ReadNoFollow), ELOOP);
    EXPECT_EQ(errorOfOpening("link", OpenMode::ReadWriteNoFollow), ELOOP);
    EXPECT_EQ(errorOfOpening("link", OpenMode::CreateOrOpen), ELOOP);
    EXPECT_EQ(errorOfOpening("link", OpenMode::CreateExclusive), EEXIST);
    EXPECT_EQ(errorOfOpening("link", OpenMode::CreateOrdinary), EEXIST);
}

TEST_F(FileOpsTest, CreatesNothingThroughALinkThatLeadsNowhere)
{
    ASSERT_EQ(::symlink("nowhere", at("link").c_str()), 0);

    EXPECT_EQ(errorOfOpening("link", OpenMode::CreateExclusive), EEXIST);
    EXPECT_EQ(errorOfOpening("link", OpenMode::CreateOrdinary), EEXIST);
    EXPECT_EQ(errorOfOpening("link", OpenMode::CreateOrOpen), ELOOP);
    EXPECT_EQ(namesIn(m_folder), std::vector<std::string>{"link"});
}

TEST_F(FileOpsTest, GivesNewFilesTheModeThatWasAskedFor)
{
    const ScopedUmask mask(027);

    open("exclusive", OpenMode::CreateExclusive);
    open("ordinary", OpenMode::CreateOrdinary);
    open("either", OpenMode::CreateOrOpen);

    EXPECT_EQ(modeOf(at("exclusive")), 0600u);
    EXPECT_EQ(modeOf(at("ordinary")), 0640u);
    EXPECT_EQ(modeOf(at("either")), 0640u);
}

TEST_F(FileOpsTest, OpensAnExistingFileInsteadOfMakingItWhereEitherWillDo)
{
    m_folder.write("a", "text");
    open("a", OpenMode::CreateOrOpen);
    EXPECT_EQ(m_folder.read("a"), "text");
}

TEST_F(FileOpsTest, MakesNothingWhereOnlyExistingFilesAreMeant)
{
    for (const OpenMode mode :
         {OpenMode::Read, OpenMode::ReadNoFollow, OpenMode::ReadWriteNoFollow, OpenMode::Folder})
        EXPECT_EQ(errorOfOpening("missing", mode), ENOENT) << int(mode);
    EXPECT_TRUE(namesIn(m_folder).empty());
}

TEST_F(FileOpsTest, DoesNotBlockOnAPipe)
{
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);

    const auto reading = open("pipe", OpenMode::Read);
    open("pipe", OpenMode::ReadWriteNoFollow);
    open("pipe", OpenMode::CreateOrOpen);

    FileInfo info;
    EXPECT_EQ(m_ops.describe(reading, info), 0);
    EXPECT_EQ(info.kind, FileInfo::Kind::Other);
}

TEST_F(FileOpsTest, OpensOnlyFoldersAsFolders)
{
    m_folder.write("a", "text");
    EXPECT_EQ(errorOfOpening("a", OpenMode::Folder), ENOTDIR);
    EXPECT_EQ(errorOfOpening("", OpenMode::Folder), 0);
    EXPECT_EQ(errorOfOpening("", OpenMode::ReadWriteNoFollow), EISDIR);
}

TEST_F(FileOpsTest, KeepsDescriptorsFromOtherPrograms)
{
    m_folder.write("a", "text");
    for (const OpenMode mode : {OpenMode::Read, OpenMode::ReadNoFollow, OpenMode::ReadWriteNoFollow,
                                OpenMode::CreateOrOpen})
        EXPECT_TRUE(::fcntl(open("a", mode), F_GETFD) & FD_CLOEXEC) << int(mode);
    EXPECT_TRUE(::fcntl(open("new", OpenMode::CreateExclusive), F_GETFD) & FD_CLOEXEC);
    EXPECT_TRUE(::fcntl(open("", OpenMode::Folder), F_GETFD) & FD_CLOEXEC);
}

TEST_F(FileOpsTest, TakesNoPartOfANameForTheWhole)
{
    m_folder.write("a", "text");
    const std::string cut = at("a") + "\0.dwg"s;
    FileInfo info;
    std::string target;
    std::vector<std::string> names;
    FileOps::Descriptor file = FileOps::kNone;

    EXPECT_EQ(m_ops.open(cut, OpenMode::Read, file), ENOENT);
    EXPECT_EQ(m_ops.describeName(cut, info), ENOENT);
    EXPECT_EQ(m_ops.describeTarget(cut, info), ENOENT);
    EXPECT_EQ(m_ops.remove(cut), ENOENT);
    EXPECT_EQ(m_ops.rename(cut, at("b")), ENOENT);
    EXPECT_EQ(m_ops.rename(at("a"), at("b") + "\0"s), ENOENT);
    EXPECT_EQ(m_ops.renameNew(cut, at("b")), ENOENT);
    EXPECT_EQ(m_ops.renameNew(at("a"), at("b") + "\0"s), ENOENT);
    EXPECT_EQ(m_ops.link(cut, at("b")), ENOENT);
    EXPECT_EQ(m_ops.link(at("a"), at("b") + "\0"s), ENOENT);
    EXPECT_EQ(m_ops.makeFolder(at("b") + "\0"s), ENOENT);
    EXPECT_EQ(m_ops.list(m_folder.path().string() + "\0"s, names), ENOENT);
    EXPECT_EQ(m_ops.readLink(cut, target), ENOENT);
    EXPECT_EQ(namesIn(m_folder), std::vector<std::string>{"a"});
}

// Content
// -------------------------------------------------------------------------------------------

TEST_F(FileOpsTest, ReadsAndWritesWhereItIsTold)
{
    const auto file = open("a", OpenMode::CreateExclusive);
    std::size_t moved = 0;

    EXPECT_EQ(m_ops.write(file, 3, bytesOf("def"), moved), 0);
    EXPECT_EQ(moved, 3u);
    EXPECT_EQ(m_ops.write(file, 0, bytesOf("abc"), moved), 0);
    EXPECT_EQ(m_folder.read("a"), "abcdef");

    std::vector<std::byte> buffer(4);
    EXPECT_EQ(m_ops.read(file, 4, buffer, moved), 0);
    EXPECT_EQ(moved, 2u);
    EXPECT_EQ(textOf({buffer.data(), moved}), "ef");
    EXPECT_EQ(m_ops.read(file, 6, buffer, moved), 0);
    EXPECT_EQ(moved, 0u);

    EXPECT_EQ(m_ops.truncate(file, 2), 0);
    EXPECT_EQ(m_folder.read("a"), "ab");
    EXPECT_EQ(m_ops.flush(file), 0);
}

TEST_F(FileOpsTest, FlushesFolders)
{
    EXPECT_EQ(m_ops.flush(open("", OpenMode::Folder)), 0);
}

TEST_F(FileOpsTest, TakesAFolderThatNeedsNoFlushingForFlushed)
{
    FileOps::Descriptor folder = FileOps::kNone, file = FileOps::kNone;
    ASSERT_EQ(m_ops.open("/proc/self", OpenMode::Folder, folder), 0);
    m_opened.push_back(folder);
    ASSERT_EQ(m_ops.open("/proc/self/status", OpenMode::Read, file), 0);
    m_opened.push_back(file);

    EXPECT_EQ(m_ops.flush(folder), 0);
    EXPECT_EQ(m_ops.flush(file), EINVAL) << "content is another matter";
}

TEST_F(FileOpsTest, TouchesNoResultWhenItFails)
{
    m_folder.write("a", "text");
    const auto unwritable = open("a", OpenMode::Read);
    std::size_t moved = 77;
    FileOps::Descriptor file = 77;
    FileInfo info;
    info.mode = 77;
    bool flag = true;
    std::string target = "77";
    std::vector<std::string> names = {"77"};

    EXPECT_EQ(m_ops.write(unwritable, 0, bytesOf("x"), moved), EBADF);
    EXPECT_EQ(m_ops.read(-1, 0, {}, moved), EBADF);
    EXPECT_EQ(m_ops.open(at("missing"), OpenMode::Read, file), ENOENT);
    EXPECT_EQ(m_ops.describe(-1, info), EBADF);
    EXPECT_EQ(m_ops.describeName(at("missing"), info), ENOENT);
    EXPECT_EQ(m_ops.describeTarget(at("missing"), info), ENOENT);
    EXPECT_EQ(m_ops.copyMetadata(at("missing"), unwritable, flag), ENOENT);
    EXPECT_EQ(m_ops.isByteLocked(-1, 0, flag), EBADF);
    EXPECT_EQ(m_ops.readLink(at("a"), target), EINVAL);
    EXPECT_EQ(m_ops.list(at("missing"), names), ENOENT);
    EXPECT_EQ(m_ops.flush(-1), EBADF);
    EXPECT_EQ(m_ops.truncate(-1, 0), EBADF);
    EXPECT_EQ(m_ops.close(-1), EBADF);

    EXPECT_EQ(moved, 77u);
    EXPECT_EQ(file, 77);
    EXPECT_EQ(info.mode, 77u);
    EXPECT_TRUE(flag);
    EXPECT_EQ(target, "77");
    EXPECT_EQ(names, std::vector<std::string>{"77"});
}

// Names
// ---------------------------------------------------------------------------------------------

TEST_F(FileOpsTest, DescribesWhatANameStandsFor)
{
    m_folder.write("a", "12345");
    ASSERT_EQ(::chmod(at("a").c_str(), 0640), 0);
    ASSERT_EQ(::symlink("a", at("link").c_str()), 0);
    ASSERT_EQ(::link(at("a").c_str(), at("second").c_str()), 0);
    ASSERT_EQ(::mkdir(at("folder").c_str(), 0700), 0);

    const FileInfo info = described("a");
    EXPECT_EQ(info.kind, FileInfo::Kind::Regular);
    EXPECT_EQ(info.stamp.size, 5u);
    EXPECT_EQ(info.mode, 0640u);
    EXPECT_EQ(info.owner, ::geteuid());
    EXPECT_EQ(info.links, 2u);
    EXPECT_EQ(described("second").stamp, info.stamp);
    EXPECT_EQ(described("link").kind, FileInfo::Kind::Link);
    EXPECT_EQ(described("folder").kind, FileInfo::Kind::Folder);

    FileInfo target, opened;
    EXPECT_EQ(m_ops.describeTarget(at("link"), target), 0);
    EXPECT_EQ(target.stamp, info.stamp);
    EXPECT_EQ(m_ops.describe(open("a", OpenMode::Read), opened), 0);
    EXPECT_EQ(opened.stamp, info.stamp);
}

TEST_F(FileOpsTest, TellsTheTimeOfTheLastWriteInNanoseconds)
{
    m_folder.write("a", "");
    const timespec times[2] = {{1, 2}, {-5, 999'999'999}};
    ASSERT_EQ(::utimensat(AT_FDCWD, at("a").c_str(), times, 0), 0);

    EXPECT_EQ(described("a").stamp.modifiedNs, -4'000'000'001);
}

TEST_F(FileOpsTest, ReplacesOnRenamingUnlessToldNotTo)
{
    m_folder.write("a", "new"), m_folder.write("b", "old");

    EXPECT_EQ(m_ops.renameNew(at("a"), at("b")), EEXIST);
    EXPECT_EQ(m_folder.read("a") + m_folder.read("b"), "newold");
    EXPECT_EQ(m_ops.rename(at("a"), at("b")), 0);
    EXPECT_EQ(m_folder.read("b"), "new");
    EXPECT_EQ(m_ops.renameNew(at("b"), at("c")), 0);
    EXPECT_EQ(namesIn(m_folder), std::vector<std::string>{"c"});
}

TEST_F(FileOpsTest, NeverReplacesOnLinking)
{
    m_folder.write("a", "one"), m_folder.write("b", "two");

    EXPECT_EQ(m_ops.link(at("a"), at("b")), EEXIST);
    EXPECT_EQ(m_ops.link(at("a"), at("c")), 0);
    EXPECT_EQ(described("c").stamp, described("a").stamp);
    EXPECT_EQ(m_folder.read("b"), "two");
}

TEST_F(FileOpsTest, RemovesFilesAndNoFolders)
{
    m_folder.write("a", "");
    EXPECT_EQ(m_ops.makeFolder(at("folder")), 0);
    EXPECT_EQ(m_ops.makeFolder(at("folder")), EEXIST);

    EXPECT_EQ(m_ops.remove(at("a")), 0);
    EXPECT_EQ(m_ops.remove(at("a")), ENOENT);
    EXPECT_NE(m_ops.remove(at("folder")), 0);
    EXPECT_EQ(namesIn(m_folder), std::vector<std::string>{"folder"});
}

TEST_F(FileOpsTest, ListsEveryNameButTheTwoDots)
{
    m_folder.write("a", ""), m_folder.write(".b", ""), m_folder.write("...", "");
    m_folder.write("\xFF", "");
    std::vector<std::string> names;

    EXPECT_EQ(m_ops.list(m_folder.path().string(), names), 0);

    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"...", ".b", "a", "\xFF"}));
}

TEST_F(FileOpsTest, ReadsLinksOfAnyLength)
{
    for (const std::size_t length : {1u, 255u, 256u, 257u, 4000u}) {
        const std::string wanted(length, 'x');
        ::unlink(at("link").c_str());
        ASSERT_EQ(::symlink(wanted.c_str(), at("link").c_str()), 0) << length;
        std::string target;
        EXPECT_EQ(m_ops.readLink(at("link"), target), 0) << length;
        EXPECT_EQ(target, wanted) << length;
    }
}

// Locks
// ---------------------------------------------------------------------------------------------

constexpr std::uint64_t kLockedByte = std::uint64_t(1) << 40;

TEST_F(FileOpsTest, LocksExcludeASecondDescriptorOfThisProcess)
{
    m_folder.write("a", "");
    const auto mine = open("a", OpenMode::ReadWriteNoFollow);
    const auto other = open("a", OpenMode::ReadWriteNoFollow);

    EXPECT_EQ(m_ops.lockByte(mine, kLockedByte), 0);
    EXPECT_EQ(m_ops.lockByte(other, kLockedByte), EAGAIN);
    EXPECT_EQ(m_ops.lockByte(other, kLockedByte + 1), 0);
    EXPECT_EQ(m_ops.unlockByte(mine, kLockedByte), 0);
    EXPECT_EQ(m_ops.lockByte(other, kLockedByte), 0);
}

TEST_F(FileOpsTest, AsksForALockWithoutTakingIt)
{
    m_folder.write("a", "");
    const auto mine = open("a", OpenMode::ReadWriteNoFollow);
    const auto other = open("a", OpenMode::ReadWriteNoFollow);
    bool isLocked = true;

    EXPECT_EQ(m_ops.isByteLocked(other, kLockedByte, isLocked), 0);
    EXPECT_FALSE(isLocked);
    EXPECT_EQ(m_ops.lockByte(mine, kLockedByte), 0);
    EXPECT_EQ(m_ops.isByteLocked(other, kLockedByte, isLocked), 0);
    EXPECT_TRUE(isLocked);
    EXPECT_EQ(m_ops.isByteLocked(mine, kLockedByte, isLocked), 0);
    EXPECT_FALSE(isLocked) << "by somebody else";
}

TEST_F(FileOpsTest, LocksOutliveOtherDescriptorsOfTheFileAndEndWithTheirOwn)
{
    m_folder.write("a", "");
    auto& ops = m_ops;
    FileOps::Descriptor mine = FileOps::kNone, passing = FileOps::kNone;
    ASSERT_EQ(ops.open(at("a"), OpenMode::ReadWriteNoFollow, mine), 0);
    ASSERT_EQ(ops.lockByte(mine, kLockedByte), 0);
    const auto other = open("a", OpenMode::ReadWriteNoFollow);

    ASSERT_EQ(ops.open(at("a"), OpenMode::Read, passing), 0);
    EXPECT_EQ(ops.close(passing), 0); // a lock of the old kind would end here
    EXPECT_EQ(ops.lockByte(other, kLockedByte), EAGAIN);
    EXPECT_EQ(ops.close(mine), 0);
    EXPECT_EQ(ops.lockByte(other, kLockedByte), 0);
}

TEST_F(FileOpsTest, LocksExcludeOtherProcesses)
{
    m_folder.write("a", "");
    ASSERT_EQ(m_ops.lockByte(open("a", OpenMode::ReadWriteNoFollow), kLockedByte), 0);

    const pid_t child = ::fork();
    if (child == 0) {
        FileOps::Descriptor file = FileOps::kNone;
        m_ops.open(at("a"), OpenMode::ReadWriteNoFollow, file);
        ::_exit(m_ops.lockByte(file, kLockedByte));
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), EAGAIN);
}

// Metadata
// ------------------------------------------------------------------------------------------

class MetadataTest : public FileOpsTest
{
protected:
    /// Copies from "old" to a new file "new".
    void copy()
    {
        const auto file = open("new", OpenMode::CreateExclusive);
        EXPECT_EQ(m_ops.copyMetadata(at("old"), file, m_ownershipKept), 0);
    }

    static std::string attribute(const std::string& path, const char* name)
    {
        char value[256];
        const ssize_t length = ::getxattr(path.c_str(), name, value, sizeof value);
        return length < 0 ? "none" : std::string(value, static_cast<std::size_t>(length));
    }

    static bool setAttribute(const std::string& path, const char* name, const std::string& value)
    {
        return ::setxattr(path.c_str(), name, value.data(), value.size(), 0) == 0;
    }

    /// An access list as the system stores it, with @p rights for user 1234.
    static std::string accessList(std::uint16_t rights)
    {
        struct Entry {
            std::uint16_t tag, rights;
            std::uint32_t id;
        };
        constexpr std::uint32_t kNoId = 0xFFFFFFFF;
        const Entry entries[] = {{0x01, 6, kNoId},
                                 {0x02, rights, 1234},
                                 {0x04, 4, kNoId},
                                 {0x10, 6, kNoId},
                                 {0x20, 0, kNoId}};
        constexpr std::uint32_t kVersion = 2;
        std::string bytes(sizeof kVersion + sizeof entries, '\0');
        std::memcpy(bytes.data(), &kVersion, sizeof kVersion);
        std::memcpy(bytes.data() + sizeof kVersion, entries, sizeof entries);
        return bytes;
    }

    bool m_ownershipKept = false;
};

TEST_F(MetadataTest, KeepsOddModes)
{
    for (const unsigned mode : {0640u, 0604u, 0444u, 0777u, 0600u, 01644u, 06755u}) {
        ::unlink(at("new").c_str());
        m_folder.write("old", "");
        ASSERT_EQ(::chmod(at("old").c_str(), mode), 0);
        copy();
        EXPECT_EQ(modeOf(at("new")), mode) << std::oct << mode;
        EXPECT_TRUE(m_ownershipKept);
        ::unlink(at("old").c_str());
    }
}

TEST_F(MetadataTest, KeepsOwnerAndSetIdBitsForTheAdministrator)
{
    if (!isAdministrator())
        GTEST_SKIP() << "only the administrator gives files away";
    m_folder.write("old", "");
    ASSERT_EQ(::chown(at("old").c_str(), 1234, 2345), 0);
    ASSERT_EQ(::chmod(at("old").c_str(), 06751), 0); // after chown, which clears them

    copy();

    const FileInfo info = described("new");
    EXPECT_EQ(info.owner, 1234u);
    EXPECT_EQ(info.group, 2345u);
    EXPECT_EQ(info.mode, 06751u);
    EXPECT_TRUE(m_ownershipKept);
}

TEST_F(MetadataTest, LeavesOwnerAndSetIdBitsToOthersWhereItMust)
{
    if (!isAdministrator())
        GTEST_SKIP() << "needs a file of somebody else";
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0777), 0);
    m_folder.write("old", "");
    ASSERT_EQ(::chmod(at("old").c_str(), 06755), 0);

    const int mode = asNobody([&] {
        copy();
        return m_ownershipKept ? 1 : HasFailure() ? 2 : 0;
    });

    EXPECT_EQ(mode, 0);
    EXPECT_EQ(modeOf(at("new")), 0755u);
    EXPECT_EQ(described("new").owner, 65534u);
}

TEST_F(MetadataTest, KeepsAtLeastTheGroup)
{
    if (!isAdministrator())
        GTEST_SKIP() << "needs a file of somebody else";
    constexpr gid_t kProject = 2345;
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0777), 0);
    m_folder.write("old", "");
    ASSERT_EQ(::chown(at("old").c_str(), 1234, kProject), 0);
    ASSERT_EQ(::chmod(at("old").c_str(), 0664), 0);

    EXPECT_EQ(asNobody(
                  [&] {
                      copy();
                      return m_ownershipKept ? 1 : 0;
                  },
                  {kProject}),
              0);

    EXPECT_EQ(described("new").group, kProject);
    EXPECT_EQ(modeOf(at("new")), 0664u);
}

TEST_F(MetadataTest, KeepsExtendedAttributes)
{
    m_folder.write("old", "");
    if (!setAttribute(at("old"), "user.kv.origin", "scan\0 7"s))
        GTEST_SKIP() << "no such attributes on this file system";
    setAttribute(at("old"), "user.kv.empty", "");

    copy();

    EXPECT_EQ(attribute(at("new"), "user.kv.origin"), "scan\0 7"s);
    EXPECT_EQ(attribute(at("new"), "user.kv.empty"), "");
}

TEST_F(MetadataTest, KeepsAccessLists)
{
    m_folder.write("old", "");
    if (!setAttribute(at("old"), "system.posix_acl_access", accessList(6)))
        GTEST_SKIP() << "no access lists on this file system";

    copy();

    EXPECT_EQ(attribute(at("new"), "system.posix_acl_access"), accessList(6));
    EXPECT_EQ(modeOf(at("new")), modeOf(at("old")));
}

TEST_F(MetadataTest, DoesNotGiveAwayWhatOnlyTheFolderGrants)
{
    m_folder.write("old", "");
    ASSERT_EQ(::chmod(at("old").c_str(), 0640), 0);
    if (!setAttribute(m_folder.path().string(), "system.posix_acl_default", accessList(6)))
        GTEST_SKIP() << "no access lists on this file system";

    copy(); // the new file inherits the folder's list, the old one had none

    EXPECT_EQ(attribute(at("new"), "system.posix_acl_access"), "none");
    EXPECT_EQ(modeOf(at("new")), 0640u);
}

TEST_F(MetadataTest, FollowsNoLinkToItsSource)
{
    m_folder.write("secret", "");
    ASSERT_EQ(::symlink("secret", at("old").c_str()), 0);
    const auto file = open("new", OpenMode::CreateExclusive);
    EXPECT_EQ(m_ops.copyMetadata(at("old"), file, m_ownershipKept), ELOOP);
}

} // namespace
