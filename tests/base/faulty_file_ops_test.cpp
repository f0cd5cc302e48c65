#include "file_test_tools.h"

#include <cerrno>

#include <gtest/gtest.h>

#include <base/faulty_file_ops.h>

namespace {

using base::FaultyFileOps;
using base::FileInfo;
using base::FileOps;
using Kind = base::FaultyFileOps::Kind;
using OpenMode = base::FileOps::OpenMode;

class FaultyFileOpsTest : public testing::Test
{
protected:
    FaultyFileOpsTest() { m_folder.write("a", "0123456789"); }

    std::string at(const std::string& name) const { return nativeIn(m_folder, name); }
    int look() { return m_ops.describeName(at("a"), m_info); }
    FileOps::Descriptor open(const std::string& name, OpenMode mode = OpenMode::ReadWriteNoFollow)
    {
        FileOps::Descriptor file = FileOps::kNone;
        EXPECT_EQ(m_ops.open(at(name), mode, file), 0);
        return file;
    }

    TempFolder m_folder;
    FaultyFileOps m_ops{base::systemFileOps()};
    FileInfo m_info;
};

TEST_F(FaultyFileOpsTest, PassesEverythingOnWhenNothingIsAskedOfIt)
{
    const auto file = open("a");
    std::size_t moved = 0;

    EXPECT_EQ(m_ops.write(file, 0, bytesOf("new"), moved), 0);
    EXPECT_EQ(m_ops.close(file), 0);
    EXPECT_EQ(m_ops.rename(at("a"), at("b")), 0);

    EXPECT_EQ(m_folder.read("b"), "new3456789");
    EXPECT_EQ(m_ops.traceText(), "1 open a\n2 write a\n3 close a\n4 rename a b\n");
}

TEST_F(FaultyFileOpsTest, FailsOneOperation)
{
    m_ops.failAt(2, ENOSPC);
    EXPECT_EQ(look(), 0);
    EXPECT_EQ(m_ops.remove(at("a")), ENOSPC);
    EXPECT_EQ(look(), 0) << "and did nothing";
    EXPECT_EQ(m_ops.trace()[1].error, ENOSPC);
    EXPECT_EQ(FaultyFileOps::textOf(m_ops.trace()[1]), "remove a -> 28");
}

TEST_F(FaultyFileOpsTest, FailsAllFromOneOn)
{
    m_ops.failFrom(2, EIO);
    EXPECT_EQ(look(), 0);
    EXPECT_EQ(look(), EIO);
    EXPECT_EQ(m_ops.remove(at("a")), EIO);
    EXPECT_EQ(namesIn(m_folder), std::vector<std::string>{"a"});
}

TEST_F(FaultyFileOpsTest, FailsOneKind)
{
    m_ops.failKind(Kind::Remove, EACCES);
    EXPECT_EQ(look(), 0);
    EXPECT_EQ(m_ops.remove(at("a")), EACCES);
    EXPECT_EQ(m_ops.remove(at("a")), EACCES);
}

TEST_F(FaultyFileOpsTest, LosesTheAnswerOfWhatItDid)
{
    m_ops.failAfter(1, EIO);
    EXPECT_EQ(m_ops.remove(at("a")), EIO);
    EXPECT_TRUE(namesIn(m_folder).empty());
}

TEST_F(FaultyFileOpsTest, ShortensReadsAndWrites)
{
    const auto file = open("a");
    std::vector<std::byte> buffer(8);
    std::size_t moved = 0;
    m_ops.shortenAt(2, 3);
    m_ops.shortenFrom(4, 1);

    EXPECT_EQ(m_ops.read(file, 0, buffer, moved), 0);
    EXPECT_EQ(moved, 3u);
    EXPECT_EQ(m_ops.read(file, 0, buffer, moved), 0);
    EXPECT_EQ(moved, 8u);
    EXPECT_EQ(m_ops.write(file, 0, bytesOf("xyz"), moved), 0);
    EXPECT_EQ(moved, 1u);
    EXPECT_EQ(m_folder.read("a"), "x123456789");
}

TEST_F(FaultyFileOpsTest, DiesWithItsLocks)
{
    const auto file = open("a");
    ASSERT_EQ(m_ops.lockByte(file, 0), 0);
    m_ops.dieAt(3);

    EXPECT_EQ(m_ops.remove(at("a")), EIO);
    EXPECT_TRUE(m_ops.isDead());
    EXPECT_EQ(look(), EIO);
    EXPECT_EQ(m_ops.close(file), EIO);
    EXPECT_EQ(namesIn(m_folder), std::vector<std::string>{"a"});
    EXPECT_EQ(m_ops.openFiles(), 0);

    m_ops.reset(); // the next process
    EXPECT_EQ(m_ops.lockByte(open("a"), 0), 0);
}

TEST_F(FaultyFileOpsTest, ClosesEvenWhereClosingFails)
{
    const auto file = open("a");
    m_ops.failAt(2, EIO);
    EXPECT_EQ(m_ops.openFiles(), 1);
    EXPECT_EQ(m_ops.close(file), EIO);
    EXPECT_EQ(m_ops.openFiles(), 0);
    EXPECT_EQ(m_ops.close(file), EBADF) << "a second time";
}

TEST_F(FaultyFileOpsTest, LeavesNothingOpenBehindAnOpeningThatWasNotToldOf)
{
    FileOps::Descriptor file = FileOps::kNone;
    m_ops.failAfter(1, EIO);
    EXPECT_EQ(m_ops.open(at("new"), OpenMode::CreateExclusive, file), EIO);
    EXPECT_EQ(file, FileOps::kNone);
    EXPECT_EQ(m_ops.openFiles(), 0);
    EXPECT_EQ(namesIn(m_folder), (std::vector<std::string>{"a", "new"}));
}

TEST_F(FaultyFileOpsTest, LetsTheWorldChangeBeforeAnOperation)
{
    m_ops.before = [&](int n, const FaultyFileOps::Call& call) {
        if (n == 2 && call.kind == Kind::DescribeName)
            ::unlink(call.path.c_str());
    };
    EXPECT_EQ(look(), 0);
    EXPECT_EQ(look(), ENOENT);
}

TEST_F(FaultyFileOpsTest, StartsAfreshOnReset)
{
    m_ops.failFrom(1, EIO);
    EXPECT_EQ(look(), EIO);
    m_ops.reset();
    EXPECT_EQ(m_ops.count(), 0);
    EXPECT_EQ(look(), 0);
    EXPECT_EQ(m_ops.count(), 1);
}

TEST_F(FaultyFileOpsTest, SkipsFlushingButNotItsFaults)
{
    m_ops.skipFlushing();
    m_ops.failAt(2, EIO);
    EXPECT_EQ(m_ops.flush(-1), 0) << "nobody was asked";
    EXPECT_EQ(m_ops.flush(-1), EIO);
}

TEST_F(FaultyFileOpsTest, HasANameForEveryKind)
{
    for (int kind = 0; kind <= int(Kind::IsByteLocked); ++kind)
        EXPECT_STRNE(FaultyFileOps::nameOf(Kind(kind)), "?") << kind;
}

} // namespace
