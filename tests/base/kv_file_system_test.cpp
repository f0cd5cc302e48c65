#include "file_test_tools.h"

#include <cerrno>

#include <fcntl.h>

#include <gtest/gtest.h>

#include <base/clock.h>
#include <base/kv_file_system.h>

namespace {

using base::Failure;
using base::Reason;
using Names = std::vector<std::string>;

class KvFileSystemTest : public testing::Test
{
protected:
    KvFileSystemTest()
    {
        m_folder.write("a.dwg", "12345");
        ::mkdir(at("folder").c_str(), 0700);
        ::mkfifo(at("pipe").c_str(), 0600);
        EXPECT_EQ(::symlink("a.dwg", at("link").c_str()), 0);
        EXPECT_EQ(::symlink("nowhere", at("dangling").c_str()), 0);
        EXPECT_EQ(::symlink("loop", at("loop").c_str()), 0);
    }

    std::string at(const std::string& name) const { return nativeIn(m_folder, name); }
    TvString file(const std::string& name) const { return m_folder.file(name); }

    TempFolder m_folder;
};

struct ExistsCase {
    const char* name;
    bool isFile, isFolder;
};
constexpr ExistsCase kExists[] = {
    {"a.dwg", true, false},    {"link", true, false},  {"folder", false, true},
    {"folder/", false, true},  {"", false, true},      {"pipe", false, false},
    {"missing", false, false}, {"loop", false, false}, {"dangling", false, false},
    {"a.dwg/", false, false},
};

TEST_F(KvFileSystemTest, TellsFilesFromFolders)
{
    for (const ExistsCase& row : kExists) {
        const TvString path = file(row.name);
        EXPECT_EQ(KvFileSystem::isFileExisting(path), row.isFile) << row.name;
        EXPECT_EQ(KvFileSystem::pathFileExists(path), row.isFile || row.isFolder) << row.name;
        EXPECT_EQ(KvFileSystem::isDirectory(path), row.isFolder) << row.name;
    }
}

TEST_F(KvFileSystemTest, AnswersNoToNothing)
{
    EXPECT_FALSE(KvFileSystem::isFileExisting({}));
    EXPECT_FALSE(KvFileSystem::pathFileExists({}));
    EXPECT_FALSE(KvFileSystem::isDirectory({}));
    EXPECT_FALSE(KvFileSystem::copyFile({}, file("b"), 0));
    EXPECT_FALSE(KvFileSystem::copyFile(file("a.dwg"), {}, 0));
    EXPECT_FALSE(KvFileSystem::moveFile({}, {}));
    EXPECT_FALSE(KvFileSystem::deleteFile({}));
    EXPECT_FALSE(KvFileSystem::createDirectory({}));
    EXPECT_EQ(KvFileSystem::getFileSize({}), -1);
    EXPECT_EQ(KvFileSystem::getModificationTime({}), 0u);
    EXPECT_TRUE(KvFileSystem::isReadOnly({}));
    EXPECT_FALSE(KvFileSystem::isSameFile({}, {}));
    EXPECT_TRUE(KvFileSystem::listFolder({}).empty());
    EXPECT_EQ(KvFileSystem::readFile({}).status().failure(), Failure::NotFound);
}

// Copying and moving
// --------------------------------------------------------------------------------

TEST_F(KvFileSystemTest, CopiesContentAndRights)
{
    ASSERT_EQ(::chmod(at("a.dwg").c_str(), 0604), 0);
    EXPECT_TRUE(KvFileSystem::copyFile(file("a.dwg"), file("b.dwg"), 1));
    EXPECT_EQ(m_folder.read("b.dwg"), "12345");
    EXPECT_EQ(modeOf(at("b.dwg")), 0604u);
}

TEST_F(KvFileSystemTest, OverwritesOnlyWhenToldTo)
{
    m_folder.write("b.dwg", "old");
    EXPECT_FALSE(KvFileSystem::copyFile(file("a.dwg"), file("b.dwg"), 1));
    EXPECT_EQ(m_folder.read("b.dwg"), "old");

    ASSERT_EQ(::chmod(at("a.dwg").c_str(), 0600), 0);
    EXPECT_TRUE(KvFileSystem::copyFile(file("a.dwg"), file("b.dwg"), 0));
    EXPECT_EQ(m_folder.read("b.dwg"), "12345");
    EXPECT_EQ(modeOf(at("b.dwg")), 0600u) << "a copy shows no more than its original";
}

TEST_F(KvFileSystemTest, CopiesWhatALinkLeadsTo)
{
    EXPECT_TRUE(KvFileSystem::copyFile(file("link"), file("b.dwg"), 1));
    EXPECT_FALSE(std::filesystem::is_symlink(at("b.dwg")));
    EXPECT_EQ(m_folder.read("b.dwg"), "12345");
}

TEST_F(KvFileSystemTest, CopiesLargeFiles)
{
    const std::string content(700'000, 'x');
    m_folder.write("large", content);
    EXPECT_TRUE(KvFileSystem::copyFile(file("large"), file("b"), 1));
    EXPECT_TRUE(m_folder.read("b") == content);
}

TEST_F(KvFileSystemTest, CopiesRegularFilesOnly)
{
    const Names before = namesIn(m_folder);
    for (const char* name : {"folder", "pipe", "missing", "loop", "dangling"})
        EXPECT_FALSE(KvFileSystem::copyFile(file(name), file("b"), 0)) << name;
    EXPECT_FALSE(KvFileSystem::copyFile(file("a.dwg"), file("folder"), 0));
    EXPECT_FALSE(KvFileSystem::copyFile(file("a.dwg"), file("missing/b"), 0));
    EXPECT_FALSE(KvFileSystem::copyFile(file("a.dwg"), file("a.dwg"), 0));
    EXPECT_FALSE(KvFileSystem::copyFile(file("a.dwg"), file("link"), 0)) << "the same file";
    EXPECT_EQ(namesIn(m_folder), before);
    EXPECT_EQ(m_folder.read("a.dwg"), "12345");
}

TEST_F(KvFileSystemTest, MovesWithoutOverwriting)
{
    m_folder.write("b.dwg", "old");
    EXPECT_FALSE(KvFileSystem::moveFile(file("a.dwg"), file("b.dwg")));
    EXPECT_FALSE(KvFileSystem::moveFile(file("a.dwg"), file("a.dwg")));
    EXPECT_FALSE(KvFileSystem::moveFile(file("missing"), file("c")));
    EXPECT_TRUE(KvFileSystem::moveFile(file("a.dwg"), file("c.dwg")));
    EXPECT_EQ(m_folder.read("c.dwg"), "12345");
    EXPECT_FALSE(KvFileSystem::isFileExisting(file("a.dwg")));
    EXPECT_EQ(m_folder.read("b.dwg"), "old");
}

TEST_F(KvFileSystemTest, DeletesFilesAndLinksAndNoFolders)
{
    EXPECT_TRUE(KvFileSystem::deleteFile(file("link")));
    EXPECT_EQ(m_folder.read("a.dwg"), "12345");
    EXPECT_TRUE(KvFileSystem::deleteFile(file("a.dwg")));
    EXPECT_FALSE(KvFileSystem::deleteFile(file("a.dwg")));
    EXPECT_FALSE(KvFileSystem::deleteFile(file("folder")));
    EXPECT_TRUE(KvFileSystem::isDirectory(file("folder")));
}

TEST_F(KvFileSystemTest, MakesFoldersWithThoseAbove)
{
    EXPECT_TRUE(KvFileSystem::createDirectory(file("x/y/z")));
    EXPECT_TRUE(KvFileSystem::isDirectory(file("x/y/z")));
    EXPECT_TRUE(KvFileSystem::createDirectory(file("x/y/z/"))) << "is there already";
    EXPECT_TRUE(KvFileSystem::createDirectory(file("x//w/"))) << "is there already";
    EXPECT_FALSE(KvFileSystem::createDirectory(file("a.dwg")));
    EXPECT_FALSE(KvFileSystem::createDirectory(file("a.dwg/sub")));
    EXPECT_FALSE(KvFileSystem::createDirectory(file("dangling")));
    EXPECT_EQ(m_folder.read("a.dwg"), "12345");
}

// Asking
// --------------------------------------------------------------------------------------------

TEST_F(KvFileSystemTest, TellsSizes)
{
    EXPECT_EQ(KvFileSystem::getFileSize(file("a.dwg")), 5);
    EXPECT_EQ(KvFileSystem::getFileSize(file("link")), 5);
    for (const char* name : {"folder", "pipe", "missing"})
        EXPECT_EQ(KvFileSystem::getFileSize(file(name)), -1) << name;
    ASSERT_EQ(::truncate(at("a.dwg").c_str(), off_t(1) << 33), 0);
    EXPECT_EQ(KvFileSystem::getFileSize(file("a.dwg")), std::int64_t(1) << 33);
}

TEST_F(KvFileSystemTest, TellsTheTimeOfTheLastWrite)
{
    const timespec times[2] = {{5, 0}, {1'700'000'000, 123'456'789}};
    ASSERT_EQ(::utimensat(AT_FDCWD, at("a.dwg").c_str(), times, 0), 0);

    const std::uint64_t expected = 133'444'736'001'234'567; // 2023-11-14 22:13:20.1234567 UTC
    EXPECT_EQ(KvFileSystem::getModificationTime(file("a.dwg")), expected);
    EXPECT_EQ(KvFileSystem::getModificationTime(file("link")), expected);
    EXPECT_NE(KvFileSystem::getModificationTime(file("folder")), 0u);
    for (const char* name : {"missing", "pipe", "dangling"})
        EXPECT_EQ(KvFileSystem::getModificationTime(file(name)), 0u) << name;
}

TEST_F(KvFileSystemTest, TellsNoTimeOfAFileThatCannotBeOpened)
{
    if (!isAdministrator())
        GTEST_SKIP() << "needs a file of somebody else";
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(at("a.dwg").c_str(), 0600), 0);
    EXPECT_EQ(asNobody([&] { return KvFileSystem::getModificationTime(file("a.dwg")) ? 1 : 0; }),
              0);
}

TEST_F(KvFileSystemTest, KnowsReadOnlyFiles)
{
    EXPECT_FALSE(KvFileSystem::isReadOnly(file("a.dwg")));
    EXPECT_FALSE(KvFileSystem::isReadOnly(file("link")));
    EXPECT_FALSE(KvFileSystem::isReadOnly(file("folder")));
    for (const char* name : {"missing", "dangling", "loop", "pipe"})
        EXPECT_TRUE(KvFileSystem::isReadOnly(file(name))) << name;

    ASSERT_EQ(::chmod(at("a.dwg").c_str(), 0444), 0);
    EXPECT_TRUE(KvFileSystem::isReadOnly(file("a.dwg"))) << "to the administrator too";
    EXPECT_TRUE(KvFileSystem::isReadOnly(file("link")));
    ASSERT_EQ(::chmod(at("folder").c_str(), 0555), 0);
    EXPECT_TRUE(KvFileSystem::isReadOnly(file("folder")));
}

TEST_F(KvFileSystemTest, TakesAFileThatOthersMayWriteForReadOnly)
{
    if (!isAdministrator())
        GTEST_SKIP() << "needs a file of somebody else";
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0777), 0);
    ASSERT_EQ(::chmod(at("a.dwg").c_str(), 0644), 0);
    EXPECT_EQ(asNobody([&] { return KvFileSystem::isReadOnly(file("a.dwg")) ? 0 : 1; }), 0);
}

TEST_F(KvFileSystemTest, KnowsTwoNamesOfOneFile)
{
    ASSERT_EQ(::link(at("a.dwg").c_str(), at("b.dwg").c_str()), 0);
    m_folder.write("c.dwg", "12345");
    EXPECT_TRUE(KvFileSystem::isSameFile(file("a.dwg"), file("b.dwg")));
    EXPECT_TRUE(KvFileSystem::isSameFile(file("a.dwg"), file("link")));
    EXPECT_TRUE(KvFileSystem::isSameFile(file("folder"), file("folder/../folder")));
    EXPECT_FALSE(KvFileSystem::isSameFile(file("a.dwg"), file("c.dwg")));
    EXPECT_FALSE(KvFileSystem::isSameFile(file("missing"), file("missing")));
}

TEST_F(KvFileSystemTest, ListsAFolderInOneOrderEverywhere)
{
    const TempFolder folder;
    for (const std::string name : {"b.dwg", "B.dwg", "a.dwg", "C.dwg", "_.dwg", "\xC3\xA4.dwg",
                                   "\xC3\x84.dwg", ".x", "10", "9", "\xFF"})
        folder.write(name, "");
    ::mkdir(nativeIn(folder, "bb").c_str(), 0700);
    EXPECT_EQ(::symlink("bb", nativeIn(folder, "bc").c_str()), 0);

    Names names, folders;
    for (const KvFileSystem::Entry& entry :
         KvFileSystem::listFolder(base::pathFromNative(folder.path().string()))) {
        names.push_back(base::nativePath(entry.name));
        if (entry.isDirectory)
            folders.push_back(names.back());
    }

    EXPECT_EQ(names, (Names{".x", "10", "9", "_.dwg", "a.dwg", "B.dwg", "b.dwg", "bb", "bc",
                            "C.dwg", "\xC3\x84.dwg", "\xC3\xA4.dwg", "\xFF"}));
    EXPECT_EQ(folders, (Names{"bb", "bc"}));
}

TEST_F(KvFileSystemTest, ListsNothingWhereThereIsNoFolder)
{
    for (const char* name : {"a.dwg", "missing", "pipe"})
        EXPECT_TRUE(KvFileSystem::listFolder(file(name)).empty()) << name;
}

// Reading
// -------------------------------------------------------------------------------------------

TEST_F(KvFileSystemTest, ReadsRegularFilesWhole)
{
    const auto bytes = KvFileSystem::readFile(file("link"));
    ASSERT_TRUE(bool(bytes));
    EXPECT_EQ(textOf(*bytes), "12345");
}

TEST_F(KvFileSystemTest, RefusesToReadTheRest)
{
    EXPECT_EQ(KvFileSystem::readFile(file("a.dwg"), 4).status().failure(), Failure::TooLarge);
    EXPECT_EQ(KvFileSystem::readFile(file("a.dwg"), -1).status().failure(), Failure::TooLarge);
    EXPECT_TRUE(bool(KvFileSystem::readFile(file("a.dwg"), 5)));
    for (const TvString& path :
         {file("pipe"), file("folder"), TvString(u"/dev/zero"), TvString(u"/proc/self/status")})
        EXPECT_EQ(KvFileSystem::readFile(path).status().reason(), Reason::NotRegularFile)
            << path.utf8();
    EXPECT_FALSE(bool(KvFileSystem::readFile(u"/proc/self/mem")));
    EXPECT_EQ(KvFileSystem::readFile(file("missing")).status().failure(), Failure::NotFound);
    EXPECT_EQ(KvFileSystem::readFile(file("dangling")).status().failure(), Failure::NotFound);
    EXPECT_EQ(KvFileSystem::readFile(file("loop")).status().reason(), Reason::LinkLoop);
}

TEST_F(KvFileSystemTest, AsksNoHostThatNobodyAgreedTo)
{
    const TvString path(u"\\\\kv-test-host\\share\\a.dwg");
    EXPECT_FALSE(KvFileSystem::isTouchAllowed(path));
    EXPECT_EQ(KvFileSystem::readFile(path).status().reason(), Reason::NetworkNotTouched);

    KvFileSystem::allowHost(u"kv-TEST-host");

    EXPECT_TRUE(KvFileSystem::isTouchAllowed(path));
    EXPECT_TRUE(KvFileSystem::isTouchAllowed(u"/plans/a.dwg"));
    EXPECT_FALSE(KvFileSystem::isTouchAllowed(u"\\\\kv-test-other\\share\\a.dwg"));
    EXPECT_EQ(KvFileSystem::readFile(path).status().failure(), Failure::NotFound);
}

} // namespace
