#include "file_test_tools.h"

#include <cerrno>
#include <stdexcept>

#include <sys/sysmacros.h>
#include <sys/xattr.h>

#include <gtest/gtest.h>

#include <base/atomic_replace.h>
#include <base/faulty_file_ops.h>

namespace {

using base::Failure;
using base::FaultyFileOps;
using base::Reason;
using base::ReplaceRequest;
using base::Status;
using Kind = base::FaultyFileOps::Kind;
using Names = std::vector<std::string>;

class AtomicReplaceTest : public testing::Test
{
protected:
    std::string at(const std::string& name) const { return nativeIn(m_folder, name); }

    Status replace(const std::string& name, const std::string& content, ReplaceRequest request = {})
    {
        request.bytes = bytesOf(content);
        const Status status = replaceFile(m_ops, m_folder.file(name), request);
        EXPECT_EQ(m_ops.openFiles(), 0) << name;
        return status;
    }

    /// The same, and a refusal for @p reason is expected that leaves the folder as it is.
    void expectRefused(const std::string& name, Failure failure, Reason reason,
                       const ReplaceRequest& request = {})
    {
        const Names before = namesIn(m_folder);
        const Status status = replace(name, "new", request);
        EXPECT_EQ(status.failure(), failure) << name;
        EXPECT_EQ(status.reason(), reason) << name;
        EXPECT_FALSE(status.arguments().empty()) << name;
        EXPECT_EQ(namesIn(m_folder), before) << name;
    }

    /// A request whose verify() does something to the world, as another program might just then.
    static ReplaceRequest meanwhile(std::function<void()> change)
    {
        ReplaceRequest request;
        request.verify = [change = std::move(change)](const TvString&) {
            change();
            return Status();
        };
        return request;
    }

    TempFolder m_folder;
    FaultyFileOps m_ops{base::systemFileOps()};
};

// What it does
// --------------------------------------------------------------------------------------

TEST_F(AtomicReplaceTest, PutsTheNewVersionInPlace)
{
    m_folder.write("a.dwg", "old");
    EXPECT_TRUE(bool(replace("a.dwg", "new and longer")));
    EXPECT_EQ(m_folder.read("a.dwg"), "new and longer");
    EXPECT_EQ(namesIn(m_folder), Names{"a.dwg"});
}

TEST_F(AtomicReplaceTest, WritesContentOfEverySize)
{
    for (const std::size_t size : {0u, 1u, 262'143u, 262'144u, 262'145u, 1'000'000u}) {
        std::string content(size, '\0');
        for (std::size_t i = 0; i < size; ++i)
            content[i] = static_cast<char>(i * 7 + i / 251);
        EXPECT_TRUE(bool(replace("a.dwg", content))) << size;
        EXPECT_TRUE(m_folder.read("a.dwg") == content) << size;
    }
}

TEST_F(AtomicReplaceTest, TakesThePlaceInOneStep)
{
    m_folder.write("a.dwg", "old");
    ASSERT_TRUE(bool(replace("a.dwg", "new")));

    // The order is what makes it safe: written, flushed, read back, looked again, renamed, flushed.
    Names steps;
    for (const FaultyFileOps::Call& call : m_ops.trace()) {
        const std::string name = FaultyFileOps::nameOf(call.kind);
        if (name != "open" && name != "close" && name != "describe")
            steps.push_back(name);
    }
    EXPECT_EQ(steps, (Names{"describeName", "write", "copyMetadata", "flush", "read",
                            "describeName", "rename", "flush"}));
}

TEST_F(AtomicReplaceTest, MakesAFileThatWasNotThere)
{
    const ScopedUmask mask(027);
    EXPECT_TRUE(bool(replace("a.dwg", "new")));
    EXPECT_EQ(m_folder.read("a.dwg"), "new");
    EXPECT_EQ(modeOf(at("a.dwg")), 0640u);
    EXPECT_EQ(namesIn(m_folder), Names{"a.dwg"});
}

TEST_F(AtomicReplaceTest, KeepsNamesOfFullLength)
{
    const std::string ascii = std::string(251, 'x') + ".dwg";
    std::string wide;
    for (int i = 0; i < 127; ++i)
        wide += "\xC3\xA9";
    ReplaceRequest request;
    request.verify = [](const TvString& temporary) { // some systems take no half characters
        EXPECT_TRUE(base::isWellFormedUtf8(base::nativePath(temporary))) << temporary.utf8();
        return Status();
    };
    for (const std::string& name : {ascii, wide}) {
        EXPECT_TRUE(bool(replace(name, "new", request))) << name;
        EXPECT_TRUE(bool(replace(name, "newer"))) << name;
        EXPECT_EQ(m_folder.read(name), "newer") << name;
    }
}

TEST_F(AtomicReplaceTest, KeepsNamesThatAreNoText)
{
    EXPECT_TRUE(bool(replace("\xFF.dwg", "new")));
    EXPECT_EQ(m_folder.read("\xFF.dwg"), "new");
}

TEST_F(AtomicReplaceTest, KeepsOddModes)
{
    for (const unsigned mode : {0640u, 0604u, 0666u, 0200u | 0400u, 06755u}) {
        m_folder.write("a.dwg", "old");
        ASSERT_EQ(::chmod(at("a.dwg").c_str(), mode), 0);
        EXPECT_TRUE(bool(replace("a.dwg", "new"))) << std::oct << mode;
        EXPECT_EQ(modeOf(at("a.dwg")), mode) << std::oct << mode;
    }
}

TEST_F(AtomicReplaceTest, KeepsExtendedAttributes)
{
    m_folder.write("a.dwg", "old");
    if (::setxattr(at("a.dwg").c_str(), "user.kv.origin", "scan", 4, 0) != 0)
        GTEST_SKIP() << "no such attributes on this file system";
    EXPECT_TRUE(bool(replace("a.dwg", "new")));
    char value[8] = {};
    EXPECT_EQ(::getxattr(at("a.dwg").c_str(), "user.kv.origin", value, sizeof value), 4);
    EXPECT_STREQ(value, "scan");
}

TEST_F(AtomicReplaceTest, HidesTheNewVersionWhileItIsMade)
{
    m_folder.write("a.dwg", "old");
    ASSERT_EQ(::chmod(at("a.dwg").c_str(), 0640), 0);
    TvString temporary;
    ReplaceRequest request;
    request.verify = [&](const TvString& path) {
        temporary = path;
        const std::string native = base::nativePath(path);
        EXPECT_EQ(modeOf(native), 0640u) << "of the old version";
        EXPECT_EQ(m_folder.read(std::filesystem::path(native).filename().string()), "new");
        EXPECT_EQ(m_folder.read("a.dwg"), "old");
        return Status();
    };

    EXPECT_TRUE(bool(replace("a.dwg", "new", request)));

    const TvString name = base::PathRules::native().fileNameOf(temporary);
    EXPECT_TRUE(name.startsWith(u".a.dwg.tmp.")) << name.utf8();
    EXPECT_EQ(name.length(), 11 + 32);
    EXPECT_EQ(namesIn(m_folder), Names{"a.dwg"});
}

TEST_F(AtomicReplaceTest, ShowsNobodyTheNewVersionBeforeItHasTheRightsOfTheOld)
{
    const ScopedUmask mask(0);
    m_folder.write("a.dwg", "old");
    unsigned mode = 0;
    m_ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Write || call.kind == Kind::CopyMetadata)
            mode |= modeOf(call.kind == Kind::Write ? call.path : call.second);
    };
    EXPECT_TRUE(bool(replace("a.dwg", "new")));
    EXPECT_EQ(mode, 0600u);
    EXPECT_EQ(modeOf(at("a.dwg")), 0666u);
}

TEST_F(AtomicReplaceTest, BelievesNoFileThatCouldNotBeClosed)
{
    m_folder.write("a.dwg", "old");
    bool isFailed = false;
    m_ops.before = [&](int n, const FaultyFileOps::Call& call) {
        const bool isTemporary = call.path.find(".tmp.") != std::string::npos;
        if (call.kind == Kind::Close && isTemporary && !std::exchange(isFailed, true))
            m_ops.failAt(n, EDQUOT); // where a share tells that it could not write
    };
    expectRefused("a.dwg", Failure::DiskFull, Reason::DiskFull);
    EXPECT_EQ(m_folder.read("a.dwg"), "old");
}

TEST_F(AtomicReplaceTest, LeavesOneNameWhereTheAnswerToALinkIsLost)
{
    m_ops.before = [&](int n, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::RenameNew)
            m_ops.failAt(n, EINVAL);
        if (call.kind == Kind::Link)
            m_ops.failAfter(n, EIO);
    };
    EXPECT_TRUE(bool(replace("a.dwg", "new")));
    EXPECT_EQ(m_folder.read("a.dwg"), "new");
    EXPECT_EQ(namesIn(m_folder), Names{"a.dwg"});
}

TEST_F(AtomicReplaceTest, TakesANameInTheCurrentFolder)
{
    const std::filesystem::path former = std::filesystem::current_path();
    std::filesystem::current_path(m_folder.path());
    const std::string content = "new";
    ReplaceRequest request;
    request.bytes = bytesOf(content);
    EXPECT_TRUE(bool(replaceFile(m_ops, u"a.dwg", request)));
    EXPECT_TRUE(bool(replaceFile(m_ops, u"a.dwg", request)));
    std::filesystem::current_path(former);
    EXPECT_EQ(m_folder.read("a.dwg"), "new");
}

// Links
// ---------------------------------------------------------------------------------------------

TEST_F(AtomicReplaceTest, FollowsLinksToTheFile)
{
    ASSERT_EQ(::mkdir(at("sub").c_str(), 0700), 0);
    m_folder.write("sub/a.dwg", "old");
    ASSERT_EQ(::symlink("sub/a.dwg", at("relative").c_str()), 0);
    ASSERT_EQ(::symlink(at("sub/a.dwg").c_str(), at("absolute").c_str()), 0);
    ASSERT_EQ(::symlink("../relative", at("sub/chain").c_str()), 0);

    for (const std::string link : {"relative", "absolute", "sub/chain"}) {
        EXPECT_TRUE(bool(replace(link, "by " + link))) << link;
        EXPECT_EQ(m_folder.read("sub/a.dwg"), "by " + link);
        EXPECT_TRUE(std::filesystem::is_symlink(at(link))) << link;
    }
    EXPECT_EQ(namesIn(m_folder), (Names{"absolute", "relative", "sub"}));
}

TEST_F(AtomicReplaceTest, MakesTheFileThatALinkPromises)
{
    ASSERT_EQ(::mkdir(at("sub").c_str(), 0700), 0);
    ASSERT_EQ(::symlink("sub/a.dwg", at("link").c_str()), 0);
    EXPECT_TRUE(bool(replace("link", "new")));
    EXPECT_EQ(m_folder.read("sub/a.dwg"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(at("link")));
}

TEST_F(AtomicReplaceTest, RefusesLinksThatLeadInACircle)
{
    ASSERT_EQ(::symlink("b", at("a").c_str()), 0);
    ASSERT_EQ(::symlink("a", at("b").c_str()), 0);
    expectRefused("a", Failure::Io, Reason::LinkLoop);
    EXPECT_LT(m_ops.count(), 100);
}

TEST_F(AtomicReplaceTest, RefusesAFileOfSeveralNamesUnlessToldToSplitThem)
{
    m_folder.write("a.dwg", "old");
    ASSERT_EQ(::link(at("a.dwg").c_str(), at("b.dwg").c_str()), 0);
    expectRefused("a.dwg", Failure::Unsupported, Reason::HardLinked);

    ReplaceRequest request;
    request.allowHardLinked = true;
    EXPECT_TRUE(bool(replace("a.dwg", "new", request)));
    EXPECT_EQ(m_folder.read("a.dwg") + m_folder.read("b.dwg"), "newold");
}

// Refusals
// ------------------------------------------------------------------------------------------

TEST_F(AtomicReplaceTest, RefusesWhatIsNoRegularFile)
{
    ASSERT_EQ(::mkdir(at("folder").c_str(), 0700), 0);
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    for (const std::string name : {"folder", "pipe"})
        expectRefused(name, Failure::Unsupported, Reason::NotRegularFile);
    // Not even opened: that alone would wake the reader of a pipe.
    for (const FaultyFileOps::Call& call : m_ops.trace())
        EXPECT_NE(call.kind, Kind::Open);
}

TEST_F(AtomicReplaceTest, RefusesADevice)
{
    if (::mknod(at("zero").c_str(), S_IFCHR | 0666, makedev(1, 5)) != 0)
        GTEST_SKIP() << "may not make devices here";
    expectRefused("zero", Failure::Unsupported, Reason::NotRegularFile);
}

TEST_F(AtomicReplaceTest, RefusesAReadOnlyFileToTheAdministratorToo)
{
    m_folder.write("a.dwg", "old");
    ASSERT_EQ(::chmod(at("a.dwg").c_str(), 0444), 0);
    expectRefused("a.dwg", Failure::ReadOnly, Reason::FileReadOnly);
    EXPECT_EQ(m_folder.read("a.dwg"), "old");
}

TEST_F(AtomicReplaceTest, RefusesAReadOnlyFolderToTheAdministratorToo)
{
    m_folder.write("a.dwg", "old");
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0555), 0);
    expectRefused("a.dwg", Failure::Denied, Reason::AccessDenied);
    expectRefused("new.dwg", Failure::Denied, Reason::AccessDenied);
    EXPECT_EQ(m_folder.read("a.dwg"), "old");
}

TEST_F(AtomicReplaceTest, RefusesAFileThatOnlyItsFolderWouldLetUsReplace)
{
    if (!isAdministrator())
        GTEST_SKIP() << "needs a file of somebody else";
    m_folder.write("a.dwg", "old");
    ASSERT_EQ(::chmod(at("a.dwg").c_str(), 0644), 0);
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0777), 0);

    EXPECT_EQ(asNobody([&] {
                  const Status status = replace("a.dwg", "new");
                  return status.failure() == Failure::Denied ? 0 : 1;
              }),
              0);
    EXPECT_EQ(m_folder.read("a.dwg"), "old");
    EXPECT_EQ(namesIn(m_folder), Names{"a.dwg"});
}

TEST_F(AtomicReplaceTest, PassesOnThatTheFileSystemIsReadOnly)
{
    m_folder.write("a.dwg", "old");
    m_ops.before = [&](int n, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Open)
            m_ops.failAt(n, EROFS);
    };
    expectRefused("a.dwg", Failure::ReadOnly, Reason::FileReadOnly);
}

TEST_F(AtomicReplaceTest, RefusesPathsThatNameNothing)
{
    m_folder.write("a.dwg", "old");
    expectRefused("missing/a.dwg", Failure::NotFound, Reason::FileMissing);
    expectRefused("a.dwg/b.dwg", Failure::NotFound, Reason::FileMissing);
    expectRefused("missing/", Failure::NotFound, Reason::FileMissing);
    EXPECT_EQ(replaceFile(m_ops, {}, {}).failure(), Failure::NotFound);
    EXPECT_EQ(replaceFile(m_ops, TvString(u"a\0.dwg", 6), {}).failure(), Failure::NotFound);
}

// What was expected
// ---------------------------------------------------------------------------------

TEST_F(AtomicReplaceTest, ReplacesWhatWasRead)
{
    m_folder.write("a.dwg", "old");
    const std::string old = "old";
    ReplaceRequest request;
    request.expected = base::hashOf(bytesOf(old));
    EXPECT_TRUE(bool(replace("a.dwg", "new", request)));
    EXPECT_EQ(m_folder.read("a.dwg"), "new");
}

TEST_F(AtomicReplaceTest, LeavesAFileAloneThatChangedSinceItWasRead)
{
    m_folder.write("a.dwg", "another's");
    const std::string old = "old";
    ReplaceRequest request;
    request.expected = base::hashOf(bytesOf(old));
    expectRefused("a.dwg", Failure::Conflict, Reason::ChangedOnDisk, request);
    EXPECT_EQ(m_folder.read("a.dwg"), "another's");
}

TEST_F(AtomicReplaceTest, LeavesAFileAloneThatChangesAtTheLastMoment)
{
    m_folder.write("a.dwg", "old");
    const std::string old = "old";
    // Written in place: the same inode, the same size, and perhaps the same time.
    ReplaceRequest request = meanwhile([&] { m_folder.write("a.dwg", "odd"); });
    request.expected = base::hashOf(bytesOf(old));
    expectRefused("a.dwg", Failure::Conflict, Reason::ChangedOnDisk, request);
    EXPECT_EQ(m_folder.read("a.dwg"), "odd");
}

TEST_F(AtomicReplaceTest, NoticesThatTheFileIsAnotherOneByNow)
{
    m_folder.write("a.dwg", "old");
    m_folder.write("b.dwg", "another's");
    const Status status = replace(
        "a.dwg", "new", meanwhile([&] { ::rename(at("b.dwg").c_str(), at("a.dwg").c_str()); }));
    EXPECT_EQ(status.failure(), Failure::Conflict);
    EXPECT_EQ(m_folder.read("a.dwg"), "another's");
    EXPECT_EQ(namesIn(m_folder), Names{"a.dwg"});
}

struct ChangeCase {
    const char* what;
    std::function<void(const std::string& path)> change;
    Failure failure;
};

TEST_F(AtomicReplaceTest, NoticesWhatHappenedToTheFileMeanwhile)
{
    const ChangeCase kChanges[] = {
        {"vanished", [](const std::string& path) { ::unlink(path.c_str()); }, Failure::NotFound},
        {"read only", [](const std::string& path) { ::chmod(path.c_str(), 0444); },
         Failure::Conflict},
        {"a second name",
         [](const std::string& path) { ::link(path.c_str(), (path + ".2").c_str()); },
         Failure::Conflict},
        {"a folder",
         [](const std::string& path) {
             ::unlink(path.c_str());
             ::mkdir(path.c_str(), 0700);
         },
         Failure::Conflict},
    };
    for (const ChangeCase& row : kChanges) {
        const std::string name = std::string("a ") + row.what;
        m_folder.write(name, "old");
        const Status status = replace(name, "new", meanwhile([&] { row.change(at(name)); }));
        EXPECT_EQ(status.failure(), row.failure) << row.what;
        EXPECT_TRUE(!std::filesystem::is_regular_file(at(name)) || m_folder.read(name) == "old")
            << row.what;
    }
    for (const std::string& name : namesIn(m_folder))
        EXPECT_EQ(name.find(".tmp."), std::string::npos) << name;
}

TEST_F(AtomicReplaceTest, SaysThatAFileHasVanished)
{
    const std::string old = "old";
    ReplaceRequest request;
    request.expected = base::hashOf(bytesOf(old));
    expectRefused("a.dwg", Failure::NotFound, Reason::FileMissing, request);
}

TEST_F(AtomicReplaceTest, MakesNoFileOverOneThatMustNotBeThere)
{
    ReplaceRequest request;
    request.mustNotExist = true;
    m_folder.write("a.dwg", "old");
    ASSERT_EQ(::symlink("nowhere", at("link").c_str()), 0);

    expectRefused("a.dwg", Failure::Exists, Reason::FileExists, request);
    expectRefused("link", Failure::Exists, Reason::FileExists, request);
    EXPECT_TRUE(bool(replace("b.dwg", "new", request)));
    EXPECT_EQ(m_folder.read("a.dwg") + m_folder.read("b.dwg"), "oldnew");
}

/// File systems differ in how they can promise not to overwrite.
struct NoOverwriteCase {
    const char* what;
    int renameNewError, linkError;
};
constexpr NoOverwriteCase kFileSystems[] = {
    {"rename without replacing", 0, 0},
    {"links", EINVAL, 0},
    {"neither", EINVAL, EPERM},
    {"neither, in other words", EINVAL, EOPNOTSUPP},
};

TEST_F(AtomicReplaceTest, MakesNewFilesOnEveryFileSystem)
{
    for (const NoOverwriteCase& row : kFileSystems) {
        m_ops.reset();
        m_ops.failKind(Kind::RenameNew, row.renameNewError);
        m_ops.failKind(Kind::Link, row.linkError);
        ReplaceRequest request;
        request.mustNotExist = true;
        EXPECT_TRUE(bool(replace("a.dwg", row.what, request))) << row.what;
        EXPECT_EQ(m_folder.read("a.dwg"), row.what);
        EXPECT_EQ(namesIn(m_folder), Names{"a.dwg"}) << row.what;
        ::unlink(at("a.dwg").c_str());
    }
}

TEST_F(AtomicReplaceTest, LeavesAFileAloneThatAppearsMeanwhile)
{
    for (const NoOverwriteCase& row : kFileSystems) {
        for (const bool mustNotExist : {false, true}) {
            m_ops.reset();
            m_ops.failKind(Kind::RenameNew, row.renameNewError);
            m_ops.failKind(Kind::Link, row.linkError);
            ReplaceRequest request = meanwhile([&] { m_folder.write("a.dwg", "another's"); });
            request.mustNotExist = mustNotExist;
            const Status status = replace("a.dwg", "new", request);
            EXPECT_EQ(status.failure(), mustNotExist ? Failure::Exists : Failure::Conflict)
                << row.what;
            EXPECT_EQ(m_folder.read("a.dwg"), "another's") << row.what;
            EXPECT_EQ(namesIn(m_folder), Names{"a.dwg"}) << row.what;
            ::unlink(at("a.dwg").c_str());
        }
    }
}

TEST_F(AtomicReplaceTest, LeavesAFileAloneThatAppearsAtTheVeryLastMoment)
{
    for (const Kind last : {Kind::RenameNew, Kind::Link}) {
        m_ops.reset();
        if (last == Kind::Link)
            m_ops.failKind(Kind::RenameNew, EINVAL);
        m_ops.before = [&](int, const FaultyFileOps::Call& call) {
            if (call.kind == last)
                m_folder.write("a.dwg", "another's");
        };
        EXPECT_EQ(replace("a.dwg", "new").failure(), Failure::Conflict);
        m_ops.before = nullptr;
        EXPECT_EQ(m_folder.read("a.dwg"), "another's");
        EXPECT_EQ(namesIn(m_folder), Names{"a.dwg"});
        ::unlink(at("a.dwg").c_str());
    }
}

// Verifying
// -----------------------------------------------------------------------------------------

TEST_F(AtomicReplaceTest, ReplacesNothingByWhatDoesNotReadBack)
{
    m_folder.write("a.dwg", "old");
    ReplaceRequest request;
    request.verify = [](const TvString& path) {
        return Status(Failure::Damaged, Reason::DwgVerifyFailed, {path});
    };
    expectRefused("a.dwg", Failure::Damaged, Reason::DwgVerifyFailed, request);
    EXPECT_EQ(m_folder.read("a.dwg"), "old");
}

TEST_F(AtomicReplaceTest, CleansUpWhenVerifyingThrows)
{
    m_folder.write("a.dwg", "old");
    ReplaceRequest request;
    request.verify = [](const TvString&) -> Status { throw std::runtime_error("no memory"); };
    EXPECT_THROW(static_cast<void>(replace("a.dwg", "new", request)), std::runtime_error);
    EXPECT_EQ(m_folder.read("a.dwg"), "old");
    EXPECT_EQ(namesIn(m_folder), Names{"a.dwg"});
    EXPECT_EQ(m_ops.openFiles(), 0);
}

TEST_F(AtomicReplaceTest, ComparesWhatIsOnTheDisk)
{
    const char* const kDamages[] = {"neW", "ne", "newer", ""};
    for (const std::string damage : kDamages) {
        m_folder.write("a.dwg", "old");
        m_ops.reset();
        // A disk that holds something else than it was given.
        int opens = 0;
        m_ops.before = [&, damage](int, const FaultyFileOps::Call& call) {
            const bool isTemporary = call.path.find(".tmp.") != std::string::npos;
            if (call.kind == Kind::Open && isTemporary && ++opens == 2)
                m_folder.write(std::filesystem::path(call.path).filename().string(), damage);
        };
        expectRefused("a.dwg", Failure::Damaged, Reason::VerifyFailed);
        EXPECT_EQ(m_folder.read("a.dwg"), "old") << damage;
    }
}

// Reading
// -------------------------------------------------------------------------------------------

class ReadWholeTest : public AtomicReplaceTest
{
protected:
    base::Result<base::FileContent> read(const std::string& name, std::uint64_t limit = 1 << 20)
    {
        auto result = readWhole(m_ops, m_folder.file(name), limit);
        EXPECT_EQ(m_ops.openFiles(), 0) << name;
        return result;
    }
};

TEST_F(ReadWholeTest, GivesContentAndStamp)
{
    m_folder.write("a.dwg", "content");
    base::FileInfo info;
    ASSERT_EQ(m_ops.describeName(at("a.dwg"), info), 0);

    const auto content = read("a.dwg");

    ASSERT_TRUE(bool(content));
    EXPECT_EQ(textOf(content->bytes), "content");
    EXPECT_EQ(content->stamp, info.stamp);
}

TEST_F(ReadWholeTest, LeavesRoomBehindTheContent)
{
    for (const std::size_t size : {0u, 1u, 100'000u, 2'000'000u}) {
        m_folder.write("a.dwg", std::string(size, 'x'));
        const auto content = read("a.dwg", 1 << 22);
        ASSERT_TRUE(bool(content)) << size;
        EXPECT_GE(content->bytes.capacity(), size + base::kReadPadding) << size;
    }
}

TEST_F(ReadWholeTest, FollowsLinksAndReadsEmptyFiles)
{
    m_folder.write("a.dwg", "");
    ASSERT_EQ(::symlink("a.dwg", at("link").c_str()), 0);
    const auto content = read("link");
    ASSERT_TRUE(bool(content));
    EXPECT_TRUE(content->bytes.empty());
}

TEST_F(ReadWholeTest, ReadsHoweverLittleComesAtATime)
{
    m_folder.write("a.dwg", "content");
    m_ops.shortenFrom(1, 2);
    const auto content = read("a.dwg");
    ASSERT_TRUE(bool(content));
    EXPECT_EQ(textOf(content->bytes), "content");
}

TEST_F(ReadWholeTest, StopsAtTheLimit)
{
    m_folder.write("a.dwg", "1234567");
    EXPECT_TRUE(bool(read("a.dwg", 7)));
    EXPECT_EQ(read("a.dwg", 6).status().reason(), Reason::FileTooLarge);
    EXPECT_EQ(read("a.dwg", 0).status().failure(), Failure::TooLarge);
}

TEST_F(ReadWholeTest, RefusesAHugeSparseFileAtOnce)
{
    m_folder.write("a.dwg", "");
    if (::truncate(at("a.dwg").c_str(), off_t(1) << 40) != 0)
        GTEST_SKIP() << "no such large files here";
    EXPECT_EQ(read("a.dwg", 1 << 30).status().failure(), Failure::TooLarge);
}

TEST_F(ReadWholeTest, RefusesPipesDevicesAndFolders)
{
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    ASSERT_EQ(::mkdir(at("folder").c_str(), 0700), 0);
    ASSERT_EQ(::symlink("/dev/zero", at("zero").c_str()), 0);
    for (const std::string name : {"pipe", "folder", "zero"})
        EXPECT_EQ(read(name).status().reason(), Reason::NotRegularFile) << name;
}

TEST_F(ReadWholeTest, RefusesFilesThatGiveMoreThanTheyHave)
{
    const auto content = readWhole(m_ops, u"/proc/self/status", 1 << 20);
    EXPECT_EQ(content.status().reason(), Reason::NotRegularFile);
}

TEST_F(ReadWholeTest, ReadsAFileToTheEndThatGrowsMeanwhile)
{
    m_folder.write("a.dwg", "1234");
    bool hasGrown = false;
    m_ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Read && !hasGrown)
            std::ofstream(at("a.dwg"), std::ios::app) << "5678", hasGrown = true;
    };
    const auto content = read("a.dwg");
    ASSERT_TRUE(bool(content));
    EXPECT_EQ(textOf(content->bytes), "12345678");
    EXPECT_EQ(content->stamp.size, 4u) << "from before: a later look shows that it changed";

    hasGrown = false;
    EXPECT_EQ(read("a.dwg", 10).status().failure(), Failure::TooLarge);
}

TEST_F(ReadWholeTest, PassesOnWhyAFileCannotBeRead)
{
    EXPECT_EQ(read("missing").status().failure(), Failure::NotFound);
    m_folder.write("a.dwg", "content");
    for (int n = 1; n <= 4; ++n) {
        m_ops.reset();
        m_ops.failAt(n, EACCES);
        EXPECT_EQ(read("a.dwg").status().failure(), n <= 4 ? Failure::Denied : Failure::None) << n;
    }
}

} // namespace
