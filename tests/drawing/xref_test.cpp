// External references: where their files are, and which drawings they lead to.

#include <db/tv_db_xref_graph.h>

#include <base/faulty_file_ops.h>

#include "attach_drawing.h"
#include "real_drawing.h"
#include "temp_folder.h"

namespace {

class XrefTest : public testing::TestWithParam<std::string>
{
protected:
    struct Ref {
        const char* name;
        const char16_t* path;
        bool isOverlay = false, isUnloaded = false;
    };
    /// A drawing in the folder that refers to others.
    void file(const std::string& name, std::initializer_list<Ref> refs) const
    {
        const auto drawing = openBytes(minimalDrawing("line-" + GetParam() + ".dwg"));
        for (const Ref& ref : refs)
            attachDrawing(*drawing, TvString(base::utf16FromUtf8(ref.name)), ref.path,
                          ref.isOverlay, ref.isUnloaded);
        std::filesystem::create_directories((folder.path() / name).parent_path());
        EXPECT_EQ(drawing->saveAs(folder.file(name)), TvStatus::Ok);
    }
    std::unique_ptr<TvDbDatabase> open(const std::string& name) const
    {
        dwg::install();
        auto drawing = std::make_unique<TvDbDatabase>(false, true);
        EXPECT_EQ(drawing->readDwgFile(folder.file(name)), TvStatus::Ok);
        return drawing;
    }
    static std::vector<std::string> namesOut(const TvDbXrefGraphNode* node)
    {
        std::vector<std::string> names;
        for (int i = 0; node && i < node->numOut(); ++i)
            names.push_back(node->out(i)->name().utf8());
        return names;
    }

    TempFolder folder;
};
INSTANTIATE_TEST_SUITE_P(Versions, XrefTest, testing::Values("ac1015", "ac1018", "ac1032"),
                         [](const auto& version) { return version.param; });

using Names = std::vector<std::string>;

} // namespace

TEST_P(XrefTest, BlockTellsItsPathAndHowItStands)
{
    file("b.dwg", {});
    file("host.dwg", {{"Base", u".\\b.dwg"},
                      {"Gone", u"gone.dwg"},
                      {"Off", u"b.dwg", false, true},
                      {"Over", u"b.dwg", true},
                      {"Far", u"\\\\server\\share\\far.dwg"}});
    const auto host = open("host.dwg");
    const auto block = [&](const TvChar* name) {
        TvDbObjectId id;
        TvDbObjectPointer<TvDbBlockTable>(host->symbolTableId(TvDb::SymbolTable::Block))
            ->getIdAt(name, id);
        return TvDbObjectPointer<TvDbBlockTableRecord>(id, TvDb::kForWrite);
    };
    EXPECT_TRUE(block(u"Base")->isFromExternalReference());
    EXPECT_FALSE(block(u"Base")->isFromOverlayReference());
    EXPECT_TRUE(block(u"Over")->isFromExternalReference());
    EXPECT_TRUE(block(u"Over")->isFromOverlayReference());
    EXPECT_EQ(block(u"Base")->xrefStatus(), TvDb::kXrfResolved);
    EXPECT_EQ(block(u"Gone")->xrefStatus(), TvDb::kXrfFileNotFound);
    EXPECT_EQ(block(u"Off")->xrefStatus(), TvDb::kXrfUnloaded);
    EXPECT_EQ(block(u"Far")->xrefStatus(), TvDb::kXrfUnresolved) << "nobody looked for it";
    EXPECT_EQ(block(u"*Model_Space")->xrefStatus(), TvDb::kXrfNotAnXref);
    EXPECT_EQ(block(u"*Model_Space")->setPathName(u"x.dwg"), TvStatus::InvalidInput);
    EXPECT_EQ(block(u"Gone")->setPathName(u""), TvStatus::InvalidInput);
    EXPECT_EQ(block(u"Gone")->setPathName(u"b.dwg"), TvStatus::Ok);
    EXPECT_EQ(block(u"Gone")->xrefStatus(), TvDb::kXrfResolved);
    const auto read = savedAndRead(*host);
    TvDbObjectId id;
    TvDbObjectPointer<TvDbBlockTable>(read->symbolTableId(TvDb::SymbolTable::Block))
        ->getIdAt(u"Gone", id);
    EXPECT_EQ(TvDbObjectPointer<TvDbBlockTableRecord>(id)->pathName(), u"b.dwg");
}

TEST_P(XrefTest, FullPathBeginsAtTheDrawing)
{
    file("sub/b.dwg", {});
    file("moved.dwg", {});
    file("host.dwg", {{"Base", u"sub\\b.dwg"},
                      {"Moved", u"C:\\project\\moved.dwg"},
                      {"Gone", u"../none/gone.dwg"}});
    const auto host = open("host.dwg");
    const auto pathOf = [&](const TvChar* name, TvStatusCode expected) {
        TvDbObjectId id;
        TvDbObjectPointer<TvDbBlockTable>(host->symbolTableId(TvDb::SymbolTable::Block))
            ->getIdAt(name, id);
        TvString path(u"before");
        EXPECT_EQ(tvdbOriginalXrefFullPathFor(host.get(), id, path), expected);
        return path;
    };
    EXPECT_EQ(pathOf(u"Base", TvStatus::Ok), folder.file("sub/b.dwg"));
    EXPECT_EQ(pathOf(u"Moved", TvStatus::Ok), folder.file("moved.dwg")) << "beside the drawing";
    EXPECT_EQ(pathOf(u"Gone", TvStatus::FileNotFound),
              base::PathRules::native().normalise(folder.file("../none/gone.dwg").view()));
    EXPECT_EQ(pathOf(u"*Model_Space", TvStatus::InvalidInput), u"");
    TvString path;
    EXPECT_EQ(tvdbOriginalXrefFullPathFor(nullptr, TvDbObjectId(), path), TvStatus::NoDatabase);
    EXPECT_EQ(tvdbOriginalXrefFullPathFor(host.get(), TvDbObjectId(), path),
              TvStatus::InvalidInput);
}

TEST_P(XrefTest, GraphLeadsToNestedDrawingsOnceEach)
{
    file("sub/deep.dwg", {});
    file("sub/mid.dwg", {{"Deep", u"deep.dwg"}});
    file("other.dwg", {{"Below", u"sub/deep.dwg"}, {"Missing", u"missing.dwg"}});
    file("host.dwg", {{"Mid", u"sub\\mid.dwg"}, {"Other", u"other.dwg"}});
    const auto host = open("host.dwg");
    TvDbXrefGraph graph;
    ASSERT_EQ(tvdbGetHostDwgXrefGraph(host.get(), graph, false), TvStatus::Ok);
    EXPECT_EQ(graph.numNodes(), 5) << "the host and four, the deep one once";
    EXPECT_FALSE(graph.hadCircles());
    EXPECT_EQ(graph.hostNode()->name(), u"host");
    EXPECT_EQ(namesOut(graph.hostNode()), (Names{"Mid", "Other"}));
    EXPECT_EQ(namesOut(graph.xrefNode(u"mid")), (Names{"Deep"}));
    EXPECT_EQ(namesOut(graph.xrefNode(u"Other")), (Names{"Deep", "Missing"}));
    const TvDbXrefGraphNode* deep = graph.xrefNode(u"Deep");
    EXPECT_EQ(deep->numIn(), 2);
    EXPECT_TRUE(deep->isNested());
    EXPECT_TRUE(deep->btrId().isNull());
    EXPECT_EQ(deep->path(), folder.file("sub/deep.dwg"));
    EXPECT_EQ(deep->savedPath(), u"deep.dwg");
    EXPECT_EQ(deep->xrefStatus(), TvDb::kXrfResolved);
    EXPECT_EQ(graph.xrefNode(u"Missing")->xrefStatus(), TvDb::kXrfFileNotFound);
    const TvDbXrefGraphNode* mid = graph.xrefNode(u"Mid");
    EXPECT_FALSE(mid->isNested());
    EXPECT_EQ(graph.xrefNode(mid->btrId()), mid);
    EXPECT_EQ(graph.xrefNode(TvDbObjectId()), nullptr);
    EXPECT_EQ(graph.xrefNode(u"nothing"), nullptr);
    EXPECT_EQ(graph.node(5), nullptr);
    EXPECT_EQ(mid->out(1), nullptr);
    EXPECT_EQ(mid->in(0), graph.hostNode());
    EXPECT_EQ(tvdbGetHostDwgXrefGraph(nullptr, graph, false), TvStatus::NoDatabase);
}

TEST_P(XrefTest, CirclesAreEnded)
{
    file("a.dwg", {{"B", u"b.dwg"}});
    file("b.dwg", {{"C", u"c.dwg"}, {"Self", u"b.dwg"}});
    file("c.dwg", {{"A", u"a.dwg"}});
    const auto host = open("a.dwg");
    TvDbXrefGraph graph;
    ASSERT_EQ(tvdbGetHostDwgXrefGraph(host.get(), graph, true), TvStatus::Ok);
    EXPECT_TRUE(graph.hadCircles());
    EXPECT_EQ(graph.numNodes(), 3);
    EXPECT_EQ(namesOut(graph.hostNode()), (Names{"B"}));
    EXPECT_EQ(namesOut(graph.xrefNode(u"B")), (Names{"C"}));
    EXPECT_EQ(namesOut(graph.xrefNode(u"C")), Names());
    EXPECT_EQ(graph.hostNode()->numIn(), 0);
}

TEST_P(XrefTest, OverlaysOfReferencesAreGhosts)
{
    file("over.dwg", {});
    file("mid.dwg", {{"Over", u"over.dwg", true}});
    file("host.dwg", {{"Mid", u"mid.dwg", true}, {"Off", u"mid2.dwg", false, true}});
    const auto host = open("host.dwg");
    TvDbXrefGraph graph;
    ASSERT_EQ(tvdbGetHostDwgXrefGraph(host.get(), graph, false), TvStatus::Ok);
    EXPECT_EQ(graph.xrefNode(u"Over"), nullptr);
    EXPECT_TRUE(graph.xrefNode(u"Mid")->isOverlay());
    EXPECT_FALSE(graph.xrefNode(u"Mid")->isGhost());
    EXPECT_EQ(graph.xrefNode(u"Off")->xrefStatus(), TvDb::kXrfUnloaded);
    ASSERT_EQ(tvdbGetHostDwgXrefGraph(host.get(), graph, true), TvStatus::Ok);
    ASSERT_TRUE(graph.xrefNode(u"Over"));
    EXPECT_TRUE(graph.xrefNode(u"Over")->isGhost());
}

TEST_P(XrefTest, WhatCannotBeReadOrAskedForIsUnresolved)
{
    folder.write("broken.dwg", "AC1032 nothing more");
    file("host.dwg", {{"Broken", u"broken.dwg"},
                      {"Far", u"\\\\server\\share\\far.dwg"},
                      {"Web", u"https://example.invalid/a.dwg"}});
    const auto host = open("host.dwg");
    base::FaultyFileOps ops(base::systemFileOps());
    int foreign = 0;
    ops.before = [&](int, const base::FaultyFileOps::Call& call) {
        foreign += call.path.find("server") != std::string::npos ||
                           call.path.find("example") != std::string::npos
                       ? 1
                       : 0;
    };
    db::setDatabaseEnvironment(&ops, nullptr);
    TvDbXrefGraph graph;
    const TvStatusCode status = tvdbGetHostDwgXrefGraph(host.get(), graph, true);
    db::setDatabaseEnvironment(nullptr, nullptr);
    ASSERT_EQ(status, TvStatus::Ok);
    EXPECT_EQ(graph.numNodes(), 4);
    for (int i = 1; i < graph.numNodes(); ++i)
        EXPECT_EQ(graph.node(i)->xrefStatus(), TvDb::kXrfUnresolved)
            << graph.node(i)->name().utf8();
    EXPECT_EQ(foreign, 0);
    EXPECT_GT(ops.count(), 0) << "the broken one was looked at";
}

TEST(Xrefs, OfADrawingWithoutAFileWithRelativePathsAreUnresolved)
{
    TvDbDatabase drawing(true, true);
    const TvDbObjectId id = attachDrawing(drawing, u"Base", u"base.dwg");
    EXPECT_EQ(TvDbObjectPointer<TvDbBlockTableRecord>(id)->xrefStatus(), TvDb::kXrfUnresolved);
    TvDbXrefGraph graph;
    ASSERT_EQ(tvdbGetHostDwgXrefGraph(&drawing, graph, false), TvStatus::Ok);
    ASSERT_EQ(graph.numNodes(), 2);
    EXPECT_EQ(graph.node(1)->xrefStatus(), TvDb::kXrfUnresolved);
    EXPECT_EQ(graph.node(1)->btrId(), id);
}

TEST(Xrefs, RealDrawingsHaveNone)
{
    forEachDrawing("ac10", [](TvDbDatabase& drawing, const nlohmann::json&) {
        TvDbXrefGraph graph;
        ASSERT_EQ(tvdbGetHostDwgXrefGraph(&drawing, graph, true), TvStatus::Ok);
        EXPECT_EQ(graph.numNodes(), 1);
        EXPECT_EQ(graph.hostNode()->xrefStatus(), TvDb::kXrfNotAnXref);
    });
}
