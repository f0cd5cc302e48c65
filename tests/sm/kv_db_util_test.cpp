#include <sm/kv_db_util.h>

#include <gtest/gtest.h>

#include <sm/ask_disk.h>

#include "kill_at_syscall.h"
#include "sheet_set_builder.h"

namespace {

using Sheets = std::vector<TvSmSheet*>;

/// A layout that the user has before him, as the host would say it.
class FixedLayout : public sm::CurrentLayoutProvider
{
public:
    bool currentLayout(TvDbDatabase*& db, TvString& drawingName, TvDbHandle& layout) override
    {
        if (!isThere)
            return false;
        db = nullptr;
        drawingName = drawing;
        layout = handle;
        return true;
    }
    bool isThere = true;
    TvString drawing;
    TvDbHandle handle;
};

class DbUtil : public SheetSetTest
{
protected:
    DbUtil()
    {
        folder.write("a.dwg", "");
        folder.write("b.dwg", "");
        first = addSheet(set, u"1", u"S");
        setLayout(first, folder.file("a.dwg"), u"1F", u"L1");
        subset = addSubset(set, u"D");
        inner = addSheet(subset, u"2", u"T");
        setLayout(inner, folder.file("a.dwg"), u"2F", u"L2");
        other = addSheet(subset, u"3", u"U");
        setLayout(other, u"b.dwg", u"1F", u"L1"); // relative to the set
        bare = addSheet(set, u"4", u"V");
        sm::environment().layout = &layout;
    }
    TvSmSheet* find(const TvString& drawing, std::uint64_t handle) const
    {
        return KvDbUtil::FindSheetFromSubset(set, drawing.kwszPtr(), TvDbHandle(handle));
    }

    TvSmDatabase* db = create();
    TvSmSheetSet* set = db->getSheetSet();
    TvSmSubset* subset;
    TvSmSheet *first, *inner, *other, *bare;
    FixedLayout layout;
};

} // namespace

TEST(DbUtilManager, IsOneForTheProcess)
{
    EXPECT_NE(KvDbUtil::tarvGetSheetSetMgr(), nullptr);
    EXPECT_EQ(KvDbUtil::tarvGetSheetSetMgr(), KvDbUtil::tarvGetSheetSetMgr());
}

TEST_F(DbUtil, SheetsAreCountedAndListedDepthFirst)
{
    Sheets sheets;
    KvDbUtil::GetAllSheetsInTheSubSet(set, sheets);
    EXPECT_EQ(sheets, (Sheets{first, inner, other, bare}));
    KvDbUtil::GetAllSheetsInTheSubSet(subset, sheets);
    EXPECT_EQ(sheets, (Sheets{first, inner, other, bare, inner, other}));
    EXPECT_EQ(KvDbUtil::GetSheetNumsInSubSet(set), 4);
    EXPECT_EQ(KvDbUtil::GetSheetNumsInSubSet(subset), 2);
}

TEST_F(DbUtil, NullIsHarmless)
{
    Sheets sheets;
    KvDbUtil::GetAllSheetsInTheSubSet(nullptr, sheets);
    EXPECT_EQ(KvDbUtil::GetSheetNumsInSubSet(nullptr), 0);
    EXPECT_FALSE(KvDbUtil::GetAllSheetOfOneDwgInSheetSet(nullptr, u"a.dwg", sheets));
    EXPECT_FALSE(KvDbUtil::GetAllSheetOfOneDwgInSheetSet(set, nullptr, sheets));
    EXPECT_EQ(KvDbUtil::FindSheetFromSubset(nullptr, u"a.dwg", TvDbHandle(1)), nullptr);
    EXPECT_EQ(KvDbUtil::FindSheetFromSubset(set, nullptr, TvDbHandle(1)), nullptr);
    EXPECT_FALSE(KvDbUtil::IsCurrentSheetInSheetSet(nullptr));
    EXPECT_TRUE(sheets.empty());
    // Null is no drawing, not even one without a name.
    setLayout(bare, u"", u"1", u"L");
    EXPECT_EQ(KvDbUtil::FindSheetFromSubset(set, nullptr, TvDbHandle(1)), nullptr);
    EXPECT_FALSE(KvDbUtil::GetAllSheetOfOneDwgInSheetSet(set, nullptr, sheets));
}

TEST_F(DbUtil, OfTwoSheetsOfOneLayoutTheFirstIsFound)
{
    setLayout(bare, folder.file("a.dwg"), u"2F", u"L2");
    EXPECT_EQ(find(folder.file("a.dwg"), 0x2F), inner);
    ASSERT_TRUE(set->insertComponent(bare, subset));
    EXPECT_EQ(find(folder.file("a.dwg"), 0x2F), bare);
}

TEST_F(DbUtil, ASheetIsFoundByDrawingAndHandleAtAnyDepth)
{
    EXPECT_EQ(find(folder.file("a.dwg"), 0x1F), first);
    EXPECT_EQ(find(folder.file("a.dwg"), 0x2F), inner);
    EXPECT_EQ(find(folder.file("b.dwg"), 0x1F), other);
    EXPECT_EQ(find(folder.file("a.dwg"), 0x3F), nullptr);
    EXPECT_EQ(find(folder.file("c.dwg"), 0x1F), nullptr);
    EXPECT_EQ(
        KvDbUtil::FindSheetFromSubset(subset, folder.file("a.dwg").kwszPtr(), TvDbHandle(0x1F)),
        nullptr);
}

TEST_F(DbUtil, DrawingNamesAreComparedWithoutRegardToCase)
{
    EXPECT_EQ(find(folder.file("A.DWG"), 0x1F), first);
    // But for two files whose names differ in case only.
    folder.write("A.DWG", "");
    EXPECT_EQ(find(folder.file("A.DWG"), 0x1F), nullptr);
    EXPECT_EQ(find(folder.file("a.dwg"), 0x1F), first);
}

TEST_F(DbUtil, AnotherDrawingOfTheSameNameIsNotTheOne)
{
    std::filesystem::create_directory(folder.path() / "sub");
    folder.write("sub/a.dwg", "");
    EXPECT_EQ(find(folder.file("sub/a.dwg"), 0x1F), nullptr);
}

TEST_F(DbUtil, ADrawingIsTheSameBehindALinkedFolder)
{
    std::filesystem::create_directory_symlink(folder.path(), folder.path() / "link");
    EXPECT_EQ(find(folder.file("link/a.dwg"), 0x1F), first);
}

TEST_F(DbUtil, AllSheetsOfOneDrawingAreListed)
{
    Sheets sheets;
    EXPECT_TRUE(
        KvDbUtil::GetAllSheetOfOneDwgInSheetSet(set, folder.file("a.dwg").kwszPtr(), sheets));
    EXPECT_EQ(sheets, (Sheets{first, inner}));
    EXPECT_FALSE(
        KvDbUtil::GetAllSheetOfOneDwgInSheetSet(set, folder.file("c.dwg").kwszPtr(), sheets));
    EXPECT_EQ(sheets.size(), 2u);
    EXPECT_TRUE(
        KvDbUtil::GetAllSheetOfOneDwgInSheetSet(set, folder.file("b.dwg").kwszPtr(), sheets));
    EXPECT_EQ(sheets.back(), other);
}

TEST_F(DbUtil, ADrawingThatIsGoneIsStillFoundByItsStoredPath)
{
    std::filesystem::remove(folder.path() / "a.dwg");
    EXPECT_EQ(find(folder.file("a.dwg"), 0x1F), first);
}

TEST_F(DbUtil, TheCurrentLayoutComesFromTheHost)
{
    layout.drawing = folder.file("a.dwg");
    layout.handle = TvDbHandle(0x2F);
    TvDbDatabase* drawing = nullptr;
    const TvChar* name = nullptr;
    TvDbHandle handle;
    EXPECT_TRUE(KvDbUtil::GetCurrentLayout(drawing, name, handle));
    EXPECT_EQ(TvString(name), layout.drawing);
    EXPECT_EQ(handle, layout.handle);
    EXPECT_TRUE(KvDbUtil::IsCurrentSheetInSheetSet(db));
    layout.handle = TvDbHandle(0x99);
    EXPECT_FALSE(KvDbUtil::IsCurrentSheetInSheetSet(db));
}

TEST_F(DbUtil, WithoutDocumentThereIsNoCurrentLayout)
{
    const TvChar* const former = u"former";
    const TvChar* name = former;
    TvDbDatabase* drawing = nullptr;
    TvDbHandle handle(7);
    layout.isThere = false;
    EXPECT_FALSE(KvDbUtil::GetCurrentLayout(drawing, name, handle));
    EXPECT_FALSE(KvDbUtil::IsCurrentSheetInSheetSet(db));
    sm::environment().layout = nullptr;
    EXPECT_FALSE(KvDbUtil::GetCurrentLayout(drawing, name, handle));
    EXPECT_EQ(name, former);
    EXPECT_EQ(handle, TvDbHandle(7));
}

TEST_F(DbUtil, AskingForTheCurrentLayoutTouchesTheDiskAHandfulOfTimesOnly)
{
    for (int i = 0; i < 10'000; ++i)
        setLayout(addSheet(subset, u"", u""), folder.file("a" + std::to_string(i) + ".dwg"),
                  TvString().format(u"%X", 256 + i % 500), u"L");
    // The spelling differs, so the disk has to be asked; nineteen before it have the same handle.
    layout.drawing = folder.file("A9577.dwg");
    layout.handle = TvDbHandle(256 + 77);
    const KillOutcome outcome =
        runKilledAt(0, [&] { return KvDbUtil::IsCurrentSheetInSheetSet(db) ? 0 : 1; });
    if (outcome.end == KillOutcome::End::NotPermitted)
        GTEST_SKIP() << textOf(outcome);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_LT(outcome.calls, 20);
}
namespace {

/// Notes what is asked, and answers no.
std::vector<std::size_t> g_asked;
std::vector<bool> answerNo(std::vector<sm::DiskQuestion> questions, sm::Wanted)
{
    g_asked.push_back(questions.size());
    return std::vector<bool>(questions.size());
}

} // namespace

TEST_F(DbUtil, WhatTheDiskDoesNotAnswerInTimeIsNotTheDrawing)
{
    std::filesystem::create_directory_symlink(folder.path(), folder.path() / "link");
    const TvString linked = folder.file("link/a.dwg"), stored = folder.file("a.dwg");
    g_asked.clear();
    sm::setDiskAsker(&answerNo);
    Sheets sheets;
    EXPECT_EQ(find(linked, 0x1F), nullptr);
    EXPECT_FALSE(KvDbUtil::GetAllSheetOfOneDwgInSheetSet(set, linked.kwszPtr(), sheets));
    EXPECT_EQ(g_asked, (std::vector<std::size_t>{1, 2})) << "those of that name, all at once";
    EXPECT_EQ(find(stored, 0x1F), first) << "the same text needs no disk";
    sm::setDiskAsker(nullptr);
    EXPECT_EQ(find(linked, 0x1F), first);
}
