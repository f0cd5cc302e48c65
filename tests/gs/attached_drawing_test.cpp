// Drawings that are shown within others: what is drawn of them, where, and how it looks.

#include <numbers>
#include <set>

#include <sys/stat.h>

#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_viewport.h>

#include "attached_scene.h"

namespace {

class AttachedDrawing : public testing::Test
{
protected:
    /// What the file "host.dwg" shows.
    gs::DisplayList shown(db::AttachedDrawings* attached = nullptr)
    {
        return gs::DisplayList::ofModel(*openFile(folder, "host.dwg"), {}, attached);
    }
    /// The same of the host as it is, once it is saved.
    gs::DisplayList saved()
    {
        host.save(folder, "host.dwg");
        return shown();
    }
    /// A drawing with one line, from the origin to (x, 0).
    void lineFile(const std::string& name, double x = 10)
    {
        AttachedScene drawing;
        drawing.line({0, 0, 0}, {x, 0, 0});
        drawing.save(folder, name);
    }
    static std::string layerOf(const gs::DisplayList& list, std::size_t item)
    {
        return list.layers()[list.items()[item].layer].name.utf8();
    }

    TempFolder folder;
    AttachedScene host;
};

struct NewFilter : TvDbObject {
    NewFilter() : TvDbObject("SPATIAL_FILTER") {}
};

void expectBox(const gs::Box& box, double lowX, double lowY, double highX, double highY)
{
    EXPECT_NEAR(box.lowX, lowX, 1e-9);
    EXPECT_NEAR(box.lowY, lowY, 1e-9);
    EXPECT_NEAR(box.highX, highX, 1e-9);
    EXPECT_NEAR(box.highY, highY, 1e-9);
}

} // namespace

TEST_F(AttachedDrawing, StandsWhereItsInsertSaysFromItsBasePoint)
{
    AttachedScene plan;
    plan.database().editHeader().setPoint("INSBASE", {1, 0, 0});
    plan.line({1, 0, 0}, {5, 0, 0});
    plan.save(folder, "plan.dwg");
    auto* insert =
        new TvDbBlockReference({100, 50, 0}, attachDrawing(host.database(), u"plan", u"plan.dwg"));
    insert->setScaleFactors({2, 2, 2});
    insert->setRotation(std::numbers::pi / 2);
    const TvDbObjectId id = host.add(insert);

    const gs::DisplayList list = saved();
    ASSERT_EQ(list.items().size(), 1U);
    expectBox(list.items()[0].box, 100, 50, 100, 58);
    EXPECT_EQ(list.items()[0].handle, id.handle().value()) << "it is the host's entity";
    EXPECT_TRUE(list.lost().empty());
}

TEST_F(AttachedDrawing, IsShownInEachPlaceOfAnArrayAndReadOnce)
{
    lineFile("plan.dwg");
    auto* array = new TvDbMInsertBlock;
    array->setBlockTableRecord(attachDrawing(host.database(), u"plan", u"plan.dwg"));
    array->setColumns(3);
    array->setRows(2);
    array->setColumnSpacing(20);
    array->setRowSpacing(5);
    host.add(array);
    host.save(folder, "host.dwg");

    db::AttachedDrawings attached;
    const gs::DisplayList list = shown(&attached);
    EXPECT_EQ(list.items().size(), 6U);
    expectBox(list.extents(), 0, 0, 50, 5);
    EXPECT_EQ(attached.loads(), 1U);
    shown(&attached);
    EXPECT_EQ(attached.loads(), 1U) << "it is the same still";
}

TEST_F(AttachedDrawing, IsReadAnewAfterItsFileChanged)
{
    lineFile("plan.dwg", 10);
    host.show(u"plan", u"plan.dwg");
    host.save(folder, "host.dwg");
    db::AttachedDrawings attached;
    expectBox(shown(&attached).extents(), 0, 0, 10, 0);
    lineFile("plan.dwg", 25);
    expectBox(shown(&attached).extents(), 0, 0, 25, 0);
    EXPECT_EQ(attached.loads(), 2U);
}

TEST_F(AttachedDrawing, BringsItsLayersUnderItsName)
{
    AttachedScene plan;
    plan.line({0, 0, 0}, {10, 0, 0}, u"Walls", 3);
    plan.line({0, 1, 0}, {10, 1, 0}); // on layer "0"
    const TvDbObjectId off = plan.line({0, 2, 0}, {10, 2, 0}, u"Hidden", 3);
    TvDbObjectPointer<TvDbLayerTableRecord>(plan.layerOf(u"Hidden", 3), TvDb::kForWrite)
        ->setIsOff(true);
    EXPECT_TRUE(off.isValid());
    plan.save(folder, "plan.dwg");
    const TvDbObjectId insert = host.show(u"Plan", u"plan.dwg");
    TvDbObjectPointer<TvDbEntity>(insert, TvDb::kForWrite)->setLayer(host.addLayer(u"Refs", 5));

    const gs::DisplayList list = saved();
    ASSERT_EQ(list.items().size(), 2U);
    EXPECT_EQ(layerOf(list, 0), "Plan|Walls");
    EXPECT_EQ(list.items()[0].color, gs::Color::given(0x00FF00));
    EXPECT_EQ(layerOf(list, 1), "Refs") << "what is on 0 is on the layer of the insert";
    EXPECT_EQ(list.items()[1].color, gs::Color::given(0x0000FF));
}

TEST_F(AttachedDrawing, LooksAsTheHostsLayersOfItSay)
{
    AttachedScene plan;
    plan.line({0, 0, 0}, {10, 0, 0}, u"Walls", 3);
    plan.line({0, 1, 0}, {10, 1, 0}, u"Off", 3);
    plan.line({0, 2, 0}, {10, 2, 0}, u"Frozen", 3);
    plan.save(folder, "plan.dwg");
    host.show(u"Plan", u"plan.dwg");
    host.addLayer(u"PLAN|walls", 6);
    const TvDbObjectId off = host.addLayer(u"Plan|Off", 6),
                       frozen = host.addLayer(u"Plan|Frozen", 6);
    TvDbObjectPointer<TvDbLayerTableRecord>(off, TvDb::kForWrite)->setIsOff(true);
    TvDbObjectPointer<TvDbLayerTableRecord>(frozen, TvDb::kForWrite)->setIsFrozen(true);

    const gs::DisplayList list = saved();
    ASSERT_EQ(list.items().size(), 1U);
    EXPECT_EQ(layerOf(list, 0), "PLAN|walls");
    EXPECT_EQ(list.items()[0].color, gs::Color::given(0xFF00FF));

    host.database().editHeader().setFlag("VISRETAIN", false);
    const gs::DisplayList own = saved();
    EXPECT_EQ(own.items().size(), 3U) << "the host does not keep what it changed";
    EXPECT_EQ(own.items()[0].color, gs::Color::given(0x00FF00));
}

TEST_F(AttachedDrawing, DoesNotShowTheLayersThatAViewportFroze)
{
    AttachedScene plan;
    plan.line({0, 0, 0}, {10, 0, 0}, u"Walls", 3);
    plan.line({0, 1, 0}, {10, 1, 0}, u"Doors", 3);
    plan.save(folder, "plan.dwg");
    host.show(u"Plan", u"plan.dwg");
    const TvDbObjectId walls = host.addLayer(u"Plan|Walls", 3);
    TvDbObjectId layout;
    ASSERT_EQ(db::addLayout(host.database(), u"Sheet", layout), TvStatus::Ok);
    const TvDbObjectId paper =
        TvDbObjectPointer<TvDbLayout>(layout, TvDb::kForNotify)->getBlockTableRecordId();
    if (TvDbObjectPointer<TvDbLayout>(layout, TvDb::kForNotify)->getViewportArray().empty())
        host.addTo(paper, new TvDbViewport);
    auto* window = new TvDbViewport;
    window->setWidth(100);
    window->setHeight(100);
    window->setViewHeight(100);
    const TvDbObjectId viewport = host.addTo(paper, window);
    const auto layersShown = [&] {
        host.save(folder, "host.dwg");
        const auto drawing = openFile(folder, "host.dwg");
        const gs::DisplayList list =
            gs::DisplayList::ofLayout(drawing->find(layout.handle().value()));
        std::set<std::string> names;
        for (std::size_t i = 0; i < list.items().size(); ++i)
            if (list.items()[i].clip != gs::Item::kNoClip)
                names.insert(layerOf(list, i));
        return names;
    };
    using Names = std::set<std::string>;
    EXPECT_EQ(layersShown(), (Names{"Plan|Walls", "Plan|Doors"}));
    TvDbObjectPointer<TvDbViewport>(viewport, TvDb::kForWrite)->freezeLayers({walls});
    EXPECT_EQ(layersShown(), Names{"Plan|Doors"});
}

TEST_F(AttachedDrawing, AreCutByTheBoundaryOfTheirInsert)
{
    AttachedScene plan;
    plan.database().editHeader().setPoint("INSBASE", {100, 0, 0});
    plan.line({100, 0, 0}, {110, 0, 0});
    plan.line({150, 0, 0}, {160, 0, 0});
    plan.save(folder, "plan.dwg");
    const TvDbObjectId insert = host.show(u"Plan", u"plan.dwg");
    {
        const TvDbObjectPointer<TvDbEntity> entity(insert, TvDb::kForWrite);
        ASSERT_EQ(entity->createExtensionDictionary(), TvStatus::Ok);
        TvDbObjectId filters, id;
        const TvDbObjectPointer<TvDbDictionary> own(entity->extensionDictionary(), TvDb::kForWrite);
        auto* dictionary = new TvDbDictionary;
        ASSERT_EQ(own->setAt(u"ACAD_FILTER", dictionary, filters), TvStatus::Ok);
        auto* filter = new NewFilter;
        ASSERT_EQ(dictionary->setAt(u"SPATIAL", filter, id), TvStatus::Ok);
        db::RecordEditor edit = filter->edit();
        edit.setFlag("display_on", true);
        db::ArrayEditor points = edit.array("points");
        for (const db::Point& corner : {db::Point{90, -5, 0}, db::Point{120, 5, 0}})
            points.setPoint(points.add(), corner);
        for (const char* name : {"inverse_block", "block_to_world"})
            for (std::uint32_t i = 0; i < 12; ++i)
                edit.array(name).setReal(i, i % 5 == 0 ? 1 : 0);
        filter->close();
        dictionary->close();
    }
    const gs::DisplayList list = saved();
    ASSERT_EQ(list.items().size(), 1U) << "the other line lies outside";
    expectBox(list.items()[0].box, 0, 0, 10, 0);
    ASSERT_EQ(list.clips().size(), 1U);
    expectBox(list.clips()[0].box, -10, -5, 20, 5);
}

TEST_F(AttachedDrawing, ShowsWhatIsAttachedToItAndNoOverlaysOfIt)
{
    std::filesystem::create_directories(folder.path() / "sub/deep");
    lineFile("sub/deep/a.dwg", 10);
    AttachedScene mid;
    mid.show(u"A", u"deep/a.dwg");
    mid.show(u"B", u"deep/b.dwg", true);
    AttachedScene over;
    over.line({0, 0, 0}, {50, 0, 0}, u"L");
    over.save(folder, "sub/deep/b.dwg");
    mid.save(folder, "sub/mid.dwg");
    host.show(u"Mid", u"sub/mid.dwg", true);
    const gs::DisplayList list = saved();
    ASSERT_EQ(list.items().size(), 1U) << "an overlay of the host itself is shown, one of its "
                                          "references is not";
    expectBox(list.extents(), 0, 0, 10, 0);
}

TEST_F(AttachedDrawing, NamesNestedLayersAfterTheInnerReference)
{
    AttachedScene inner;
    inner.line({0, 0, 0}, {10, 0, 0}, u"Walls", 3);
    inner.line({0, 1, 0}, {10, 1, 0}, u"Doors", 3);
    inner.save(folder, "inner.dwg");
    AttachedScene mid;
    mid.show(u"Inner", u"inner.dwg");
    mid.addLayer(u"Inner|Walls", 2);
    mid.save(folder, "mid.dwg");
    host.show(u"Mid", u"mid.dwg");
    const gs::DisplayList list = saved();
    ASSERT_EQ(list.items().size(), 2U);
    EXPECT_EQ(layerOf(list, 0), "Inner|Walls");
    EXPECT_EQ(list.items()[0].color, gs::Color::given(0xFFFF00)) << "as the one between says";
    EXPECT_EQ(layerOf(list, 1), "Inner|Doors");
    EXPECT_EQ(list.items()[1].color, gs::Color::given(0x00FF00));
}

TEST_F(AttachedDrawing, InACircleEndsQuietly)
{
    AttachedScene b;
    b.line({0, 0, 0}, {10, 0, 0});
    b.show(u"C", u"c.dwg");
    b.show(u"Self", u"b.dwg");
    b.save(folder, "b.dwg");
    AttachedScene c;
    c.line({0, 1, 0}, {10, 1, 0});
    c.show(u"B", u"b.dwg");
    c.show(u"Host", u"host.dwg");
    c.save(folder, "c.dwg");
    host.show(u"B", u"b.dwg");
    host.line({0, 2, 0}, {10, 2, 0});
    const gs::DisplayList list = saved();
    EXPECT_EQ(list.items().size(), 3U);
    EXPECT_TRUE(list.lost().empty());
    EXPECT_FALSE(list.isCut());
}

TEST_F(AttachedDrawing, IsNotDrawnWhileItIsUnloaded)
{
    lineFile("plan.dwg");
    host.show(u"Plan", u"plan.dwg", false, true);
    host.show(u"Gone", u"gone.dwg", false, true);
    const gs::DisplayList list = saved();
    EXPECT_TRUE(list.items().empty());
    EXPECT_TRUE(list.lost().empty());
}

TEST_F(AttachedDrawing, ThatIsMissingLeavesItsPathAndIsTold)
{
    const TvDbObjectId block = attachDrawing(host.database(), u"Gone", u"..\\old\\%%ugone.dwg");
    host.insert(block, {100, 50, 0});
    host.insert(block, {100, 80, 0});
    host.line({0, 0, 0}, {1, 0, 0});
    const gs::DisplayList list = saved();
    ASSERT_EQ(list.texts().size(), 2U);
    EXPECT_EQ(list.texts()[0].text, u"..\\old\\%%ugone.dwg");
    EXPECT_NEAR(list.texts()[0].origin.x, 100, 1e-9);
    EXPECT_NEAR(list.texts()[0].origin.y, 50, 1e-9);
    EXPECT_GT(list.texts()[0].along.x, 0);
    ASSERT_EQ(list.lost().size(), 1U) << "once, however often it is inserted";
    EXPECT_EQ(list.lost()[0].name, u"Gone");
    EXPECT_EQ(list.lost()[0].why.reason(), db::kXrefMissing);
}

TEST_F(AttachedDrawing, ThatCannotBeReadLeavesItsPathAndIsTriedOnce)
{
    folder.write("text.dwg", "no drawing");
    folder.write("cut.dwg", "AC1032 nothing more");
    ASSERT_EQ(mkfifo((folder.path() / "pipe.dwg").c_str(), 0600), 0);
    std::filesystem::create_directories(folder.path() / "folder.dwg");
    for (const TvChar* name : {u"text", u"cut", u"pipe", u"folder"})
        host.show(name, (TvString(name) + u".dwg").kwszPtr());
    host.show(u"net", u"\\\\203.0.113.5\\share\\a.dwg");
    host.show(u"zero", u"/dev/zero");
    host.save(folder, "host.dwg");
    db::AttachedDrawings attached;
    const gs::DisplayList list = shown(&attached);
    EXPECT_EQ(list.texts().size(), 6U);
    ASSERT_EQ(list.lost().size(), 6U);
    EXPECT_EQ(list.lost()[0].why.reason(), db::kXrefUnreadable);
    EXPECT_EQ(list.lost()[1].why.reason(), db::kXrefUnreadable);
    EXPECT_EQ(list.lost()[4].why.reason(), db::kXrefNotTouched);
    const std::size_t loads = attached.loads();
    EXPECT_EQ(shown(&attached).lost().size(), 6U);
    EXPECT_EQ(attached.loads(), loads);
}

TEST_F(AttachedDrawing, IsNeitherChangedNorHeld)
{
    lineFile("plan.dwg");
    const std::string before = folder.read("plan.dwg");
    host.show(u"Plan", u"plan.dwg");
    host.save(folder, "host.dwg");
    db::AttachedDrawings attached;
    EXPECT_EQ(shown(&attached).items().size(), 1U);
    EXPECT_EQ(folder.read("plan.dwg"), before);
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        names.insert(entry.path().filename().string());
    EXPECT_EQ(names, (std::set<std::string>{"host.dwg", "plan.dwg"})) << "no marks beside it";
    TvDbDatabase other(false, true);
    EXPECT_EQ(other.readDwgFile(folder.file("plan.dwg"), TvDb::kReadAndWrite), TvStatus::Ok);
}

TEST_F(AttachedDrawing, WithinOthersManyTimesIsBounded)
{
    // Twelve drawings, each of which shows the next ten times.
    lineFile("d12.dwg");
    for (int i = 11; i >= 0; --i) {
        AttachedScene drawing;
        const TvDbObjectId block = attachDrawing(drawing.database(), u"next",
                                                 TvString().format(u"d%d.dwg", i + 1).kwszPtr());
        for (int k = 0; k < 10; ++k)
            drawing.insert(block, {k * 1.0, 0, 0});
        drawing.save(folder, "d" + std::to_string(i) + ".dwg");
    }
    gs::ListLimits limits;
    limits.visits = 20'000;
    const gs::DisplayList list = gs::DisplayList::ofModel(*openFile(folder, "d0.dwg"), limits);
    EXPECT_TRUE(list.isCut());
    EXPECT_LE(list.items().size(), 20'000U);
}

TEST_F(AttachedDrawing, KeepsDashesAsLongAsThoseOfTheHost)
{
    AttachedScene plan;
    plan.database().editHeader().setReal("LTSCALE", 50);
    const TvDbObjectId line = plan.line({0, 0, 0}, {100, 0, 0});
    TvDbObjectId type;
    {
        TvDbObjectPointer<TvDbLinetypeTable> types(
            plan.database().symbolTableId(TvDb::SymbolTable::Linetype), TvDb::kForWrite);
        auto* dashed = new TvDbLinetypeTableRecord;
        dashed->setName(u"DASHED");
        ASSERT_EQ(types->add(type, dashed), TvStatus::Ok);
        db::RecordEditor edit = dashed->edit();
        edit.setReal("pattern_len", 4);
        db::ArrayEditor dashes = edit.array("dashes");
        for (const double length : {3.0, -1.0})
            dashes[dashes.add()].setReal("length", length);
        dashed->close();
        TvDbObjectPointer<TvDbEntity> entity(line, TvDb::kForWrite);
        db::RecordEditor fields = entity->edit();
        fields.setHandle("ltype", type.handle().value());
    }
    plan.save(folder, "plan.dwg");
    host.show(u"Plan", u"plan.dwg");
    host.database().editHeader().setReal("LTSCALE", 2);
    const gs::DisplayList list = saved();
    ASSERT_EQ(list.items().size(), 1U);
    EXPECT_FLOAT_EQ(list.items()[0].detail, 8) << "4 long, by the host's factor";
}
