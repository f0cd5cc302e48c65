// Pictures as a whole, held against ones that were looked at; and pictures as files.

#include <numbers>

#include <db/tv_db_block_reference.h>
#include <db/tv_db_curves.h>
#include <db/tv_db_layout.h>
#include <dwg/dwg_codec.h>
#include <temp_folder.h>

#include "pictures.h"
#include "scene_tools.h"

namespace {

constexpr int kWidth = 320, kHeight = 240;

gs::PlayOptions onWhite()
{
    gs::PlayOptions options;
    options.background = gs::Background::Light;
    return options;
}

TvDbObjectId layoutNamed(TvDbDatabase& database, const std::string& name)
{
    for (const TvDbObjectId id : db::layoutsInTabOrder(database))
        if (TvDbObjectPointer<TvDbLayout>(id, TvDb::kForNotify)->getLayoutName().utf8() == name)
            return id;
    return {};
}

/// A circle in a turned square with a wide rounded line across, a filled triangle and a face.
void fillScene(DrawingScene& scene)
{
    const TvDbObjectId block = scene.addBlock(u"square");
    auto* outline = new TvDbPolyline;
    for (int i = 0; i < 4; ++i)
        outline->addVertexAt(i, {i == 1 || i == 2 ? 10.0 : 0.0, i > 1 ? 10.0 : 0.0});
    outline->setClosed(true);
    scene.addTo(block, outline);
    auto* insert = new TvDbBlockReference({10, 0, 0}, block);
    insert->setRotation(std::numbers::pi / 4);
    scene.add(insert);
    auto* circle = new TvDbCircle;
    circle->setCenter({10, 7, 0});
    circle->setRadius(4);
    const TvDbObjectId red = scene.addLayer(u"red", 1);
    const TvDbObjectId id = scene.add(circle);
    TvDbObjectPointer<TvDbEntity>(id, TvDb::kForWrite)->setLayer(red);
    auto* bow = new TvDbPolyline;
    bow->addVertexAt(0, {0, 2}, 0.5, 1, 1);
    bow->addVertexAt(1, {8, 2}, 0, 1, 1);
    bow->addVertexAt(2, {8, 2});
    bow->setConstantWidth(1);
    scene.add(bow);
    auto* solid = new TvDbSolid;
    db::RecordEditor edit = solid->edit();
    edit.setPoint("p1", {16, 1, 0});
    edit.setPoint("p2", {20, 1, 0});
    edit.setPoint("p3", {18, 4, 0});
    edit.setPoint("p4", {18, 4, 0});
    scene.add(solid);
}

} // namespace

TEST(Picture, OfADrawingMadeHere)
{
    DrawingScene scene;
    fillScene(scene);
    expectPicture(gs::layoutPicture(scene.database(), {}, kWidth, kHeight, onWhite()), "made-here",
                  0.002);
}

TEST(Picture, OfRealDrawings)
{
    struct Case {
        const char *file, *layout, *name;
    };
    constexpr Case kCases[] = {
        {"layouts-ac1032.dwg", "Layout1", "layouts-layout1"},
        {"layouts-ac1032.dwg", "hatch", "layouts-hatch"},
        {"layouts-ac1032.dwg", "line-types", "layouts-line-types"},
        {"mixed-ac1015.dwg", "Model", "mixed-model"},
        {"mixed-ac1032.dwg", "Model", "mixed-model"},
        {"mixed-ac1032.dwg", "Layout1", "mixed-layout1"},
        {"tables-ac1032.dwg", "Model", "tables-model"},
        {"leaders-ac1024.dwg", "Model", "leaders-model"},
        {"line-ac1032.dwg", "Model", "line-model"},
    };
    if (!std::filesystem::exists(drawingsFolder() / kCases[0].file))
        GTEST_SKIP() << "no real drawings here";
    dwg::install();
    for (const Case& one : kCases) {
        SCOPED_TRACE(one.file);
        TvDbDatabase database(false, true);
        ASSERT_EQ(database.readDwgBytes(readFile(drawingsFolder() / one.file)), TvStatus::Ok);
        const TvDbObjectId layout = layoutNamed(database, one.layout);
        ASSERT_FALSE(layout.isNull());
        expectPicture(gs::layoutPicture(database, layout, kWidth, kHeight, onWhite()), one.name);
    }
}

TEST(Picture, OfNothingIsTheBackgroundAlone)
{
    DrawingScene scene;
    const gs::Picture picture = gs::layoutPicture(scene.database(), {}, 20, 10, onWhite());
    ASSERT_EQ(picture.pixels.size(), 200u);
    for (const std::uint32_t pixel : picture.pixels)
        EXPECT_EQ(pixel, 0xFFFFFFFFu);
}

TEST(Picture, OfAnImpossibleSizeOrLayoutIsNone)
{
    DrawingScene scene;
    EXPECT_TRUE(gs::layoutPicture(scene.database(), {}, 0, 10).isEmpty());
    EXPECT_TRUE(gs::layoutPicture(scene.database(), {}, 10, gs::kLargestSide + 1).isEmpty());
    EXPECT_TRUE(gs::layoutPicture(scene.database(), scene.model(), 10, 10).isEmpty());
}

TEST(Picture, IsTheSameAfterItsFile)
{
    DrawingScene scene;
    fillScene(scene);
    const gs::Picture picture = gs::layoutPicture(scene.database(), {}, 50, 40);
    const TempFolder folder;
    ASSERT_TRUE(bool(gs::writePng(picture, folder.file("a.png"))));
    const std::string bytes = folder.read("a.png");
    const gs::Picture png = gs::pictureFromPreview(
        {db::Preview::Kind::Png, std::vector<std::uint8_t>(bytes.begin(), bytes.end())});
    EXPECT_EQ(png.pixels, picture.pixels);
    EXPECT_FALSE(bool(gs::writePng(picture, folder.file("missing/a.png"))));
    EXPECT_FALSE(bool(gs::writePng({}, folder.file("b.png"))));
    const gs::Picture bitmap =
        gs::pictureFromPreview({db::Preview::Kind::Bmp, gs::bitmapBytes(picture)});
    EXPECT_EQ(bitmap.pixels, picture.pixels);
    EXPECT_EQ(bitmap.width, 50);
}

TEST(Picture, OfDamagedBytesIsNone)
{
    DrawingScene scene;
    fillScene(scene);
    const gs::Picture picture = gs::layoutPicture(scene.database(), {}, 50, 40);
    for (const db::Preview::Kind kind : {db::Preview::Kind::Png, db::Preview::Kind::Bmp}) {
        const std::vector<std::uint8_t> whole =
            kind == db::Preview::Kind::Png ? gs::pngBytes(picture) : gs::bitmapBytes(picture);
        for (std::size_t size = 0; size < whole.size(); size += 7)
            EXPECT_TRUE(
                gs::pictureFromPreview(
                    {kind, std::vector<std::uint8_t>(
                               whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))})
                    .isEmpty() ||
                kind == db::Preview::Kind::Png) // its end may be missing
                << size;
        std::vector<std::uint8_t> huge = whole;
        huge[kind == db::Preview::Kind::Png ? 16 : 6] = 0x7F; // a width beyond all bounds
        EXPECT_TRUE(gs::pictureFromPreview({kind, huge}).isEmpty());
    }
    EXPECT_TRUE(gs::pictureFromPreview({db::Preview::Kind::Wmf, {1, 2, 3}}).isEmpty());
}

TEST(Thumbnail, IsBlackOnWhiteInTheProportionsOfWhatIsThere)
{
    DrawingScene scene;
    scene.add(new TvDbLine({0, 0, 0}, {200, 100, 0}));
    const db::Preview preview = gs::thumbnail(scene.database(), 100);
    ASSERT_EQ(preview.kind, db::Preview::Kind::Png);
    const gs::Picture picture = gs::pictureFromPreview(preview);
    EXPECT_EQ(picture.width, 100);
    EXPECT_EQ(picture.height, 50);
    EXPECT_EQ(picture.at(0, 0), 0xFFFFFFFFu);
    EXPECT_LT(picture.at(50, 24) & picture.at(50, 25) & 0xFF, 192u);
    EXPECT_EQ(gs::thumbnail(scene.database(), 100, db::Preview::Kind::Bmp).kind,
              db::Preview::Kind::Bmp);
}

TEST(Thumbnail, OfAnEmptyDrawingIsNone)
{
    DrawingScene scene;
    EXPECT_EQ(gs::thumbnail(scene.database()).kind, db::Preview::Kind::None);
}
