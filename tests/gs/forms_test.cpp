// Every kind of entity that can be seen has a form, also where its contents are another program's.

#include <bit>
#include <set>

#include <db/record_editor.h>
#include <db/tv_db_annotations.h>
#include <gs/picture.h>
#include <temp_folder.h>

#include "drawers.h"
#include "scene_tools.h"

namespace {

/// An entity of a class that has no type of its own.
class AnyEntity : public TvDbEntity
{
public:
    explicit AnyEntity(const char* className) : TvDbEntity(className) {}
};

void expectBox(const gs::Box& box, double lowX, double lowY, double highX, double highY)
{
    EXPECT_NEAR(box.lowX, lowX, 1e-6);
    EXPECT_NEAR(box.lowY, lowY, 1e-6);
    EXPECT_NEAR(box.highX, highX, 1e-6);
    EXPECT_NEAR(box.highY, highY, 1e-6);
}

void putReal(std::vector<std::uint8_t>& bytes, double number)
{
    const auto bits = std::bit_cast<std::uint64_t>(number);
    for (int i = 0; i < 8; ++i)
        bytes.push_back(static_cast<std::uint8_t>(bits >> 8 * i & 0xFF));
}

/// What an embedded object keeps before its own bytes: its corners from the upper left one on.
std::vector<std::uint8_t> oleHeader(double x, double y, double width, double height)
{
    std::vector<std::uint8_t> bytes{0x80, 0x55};
    const double corners[4][2] = {{x, y + height}, {x + width, y + height}, {x + width, y}, {x, y}};
    for (const auto& corner : corners) {
        putReal(bytes, corner[0]);
        putReal(bytes, corner[1]);
        putReal(bytes, 0);
    }
    bytes.resize(128, 0);
    return bytes;
}

gs::Picture redAboveBlue()
{
    gs::Picture picture;
    picture.width = 2, picture.height = 2;
    picture.pixels = {0xFFFF0000, 0xFFFF0000, 0xFF0000FF, 0xFF0000FF};
    return picture;
}

gs::DisplayList listOf(TvDbEntity* entity)
{
    DrawingScene scene;
    scene.add(entity);
    return scene.list();
}

/// One pixel a unit, from the origin on.
gs::Picture pictureOf(const gs::DisplayList& list, int side)
{
    gs::View view;
    view.center = {side / 2.0, side / 2.0};
    view.width = view.height = side;
    return gs::pictureOf(list, view);
}

/// As modelers keep their text in drawings.
void setSolidText(TvDbEntity& entity, std::string_view text)
{
    std::vector<std::uint8_t> bytes;
    for (const char letter : text)
        bytes.push_back(static_cast<std::uint8_t>(letter > ' ' ? 159 - letter : letter));
    db::RecordEditor edit = entity.edit();
    edit.setFlag("empty", false);
    edit.setInteger("version", 1);
    db::ArrayEditor blocks = edit.array("sat");
    blocks.resize(1);
    blocks[0].setBytes("data", bytes);
}

} // namespace

TEST(Forms, AreThereForEveryEntityThatCanBeSeen)
{
    // Parts of others, and what nobody understands.
    const std::set<std::string_view> kWithout = {
        "BLOCK",       "ENDBLK",      "SEQEND",       "VERTEX_2D",
        "VERTEX_3D",   "VERTEX_MESH", "VERTEX_PFACE", "VERTEX_PFACE_FACE",
        "PROXY_ENTITY"};
    for (const db::ClassDef* of : db::allClasses())
        if (of->isEntity()) {
            EXPECT_EQ(gs::drawerFor(of->name()) == nullptr, kWithout.contains(of->name()))
                << of->name();
        }
}

TEST(Forms, AShapeIsACrossedBoxOfItsSize)
{
    auto* shape = new AnyEntity("SHAPE");
    db::RecordEditor edit = shape->edit();
    edit.setPoint("ins_pt", {10, 5, 0});
    edit.setReal("size", 4);
    edit.setReal("width_factor", 2);
    const gs::DisplayList list = listOf(shape);
    ASSERT_EQ(list.items().size(), 1U);
    expectBox(list.extents(), 10, 5, 18, 9);
}

TEST(Forms, AnEmbeddedObjectIsAFrameWithAName)
{
    auto* ole = new AnyEntity("OLE2FRAME");
    ole->edit().setBytes("data", oleHeader(20, 10, 60, 30));
    const gs::DisplayList list = listOf(ole);
    expectBox(list.extents(), 20, 10, 80, 40);
    ASSERT_EQ(list.texts().size(), 1U);
    EXPECT_EQ(list.texts()[0].text, TvString(u"OLE"));
}

TEST(Forms, AnEmbeddedObjectShowsThePictureThatItBrings)
{
    auto* ole = new AnyEntity("OLE2FRAME");
    std::vector<std::uint8_t> bytes = oleHeader(0, 0, 40, 40);
    bytes.insert(bytes.end(), 100, 0x28); // something else
    const std::vector<std::uint8_t> bitmap = gs::bitmapBytes(redAboveBlue());
    bytes.insert(bytes.end(), bitmap.begin(), bitmap.end());
    ole->edit().setBytes("data", bytes);
    const gs::Picture picture = pictureOf(listOf(ole), 40);
    EXPECT_EQ(picture.at(20, 4) & 0xFFFFFF, 0xFF0000U);
    EXPECT_EQ(picture.at(20, 36) & 0xFFFFFF, 0x0000FFU);
}

TEST(Forms, AnEmbeddedObjectOfOtherBytesIsNothing)
{
    for (const std::size_t size : {0U, 5U, 98U, 128U, 1000U}) {
        auto* ole = new AnyEntity("OLE2FRAME");
        ole->edit().setBytes("data", std::vector<std::uint8_t>(size, 0xFF));
        EXPECT_TRUE(listOf(ole).items().empty()) << size;
    }
}

TEST(Forms, AnImageIsDrawnFromItsFileBesideTheDrawing)
{
    const TempFolder folder;
    const std::vector<std::uint8_t> png = gs::pngBytes(redAboveBlue());
    folder.write("photo.png", std::string(png.begin(), png.end()));
    DrawingScene scene;
    auto* file = new TvDbRasterImageDef;
    file->setSourceFileName(folder.file("photo.png"));
    TvDbObjectId fileId;
    ASSERT_EQ(scene.database().addTvDbObject(fileId, file), TvStatus::Ok);
    file->close();
    auto* image = new TvDbRasterImage;
    db::RecordEditor edit = image->edit();
    edit.setPoint("u_vec", {20, 0, 0});
    edit.setPoint("v_vec", {0, 20, 0});
    edit.setPoint("size", {2, 2, 0});
    edit.setInteger("display", 1);
    const TvDbObjectId id = scene.add(image);
    TvDbObjectPointer<TvDbRasterImage>(id, TvDb::kForWrite)->setImageDefId(fileId);
    const auto show = [&](std::int64_t brightness, std::int64_t contrast, std::int64_t fade) {
        const TvDbObjectPointer<TvDbRasterImage> entity(id, TvDb::kForWrite);
        db::RecordEditor look = entity->edit();
        look.setInteger("brightness", brightness);
        look.setInteger("contrast", contrast);
        look.setInteger("fade", fade);
    };
    const auto expectRed = [&](int red, int others) {
        const std::uint32_t pixel = pictureOf(scene.list(), 40).at(20, 4);
        EXPECT_NEAR(pixel >> 16 & 0xFF, red, 2);
        EXPECT_NEAR(pixel >> 8 & 0xFF, others, 2);
    };
    show(50, 25, 0);
    expectRed(191, 64);
    show(100, 50, 0);
    expectRed(255, 128);
    show(50, 50, 40); // on what is dark
    EXPECT_LT(pictureOf(scene.list(), 40).at(20, 4) >> 16 & 0xFF, 190U);
    show(50, 50, 0);
    const gs::DisplayList list = scene.list();
    ASSERT_EQ(list.items().size(), 2U); // the picture, and its frame
    EXPECT_NE(list.fillingOf(list.items()[0]), nullptr);
    const gs::Picture picture = pictureOf(list, 40);
    EXPECT_EQ(picture.at(20, 4) & 0xFFFFFF, 0xFF0000U);
    EXPECT_EQ(picture.at(20, 36) & 0xFFFFFF, 0x0000FFU);

    folder.write("photo.png", "no picture at all");
    EXPECT_EQ(scene.list().items().size(), 1U); // the frame alone
}

TEST(Forms, AnUnderlayOfUnknownSizeIsAFrameWithItsName)
{
    DrawingScene scene;
    auto* file = new TvDbUnderlayDefinition;
    file->setSourceFileName(u"plans\\site.pdf");
    TvDbObjectId fileId;
    ASSERT_EQ(scene.database().addTvDbObject(fileId, file), TvStatus::Ok);
    file->close();
    auto* page = new TvDbUnderlayReference;
    db::RecordEditor edit = page->edit();
    edit.setPoint("ins_pt", {5, 6, 0});
    edit.setPoint("scale", {10, 10, 10});
    edit.setInteger("flags", 2);
    const TvDbObjectId id = scene.add(page);
    TvDbObjectPointer<TvDbUnderlayReference>(id, TvDb::kForWrite)
        ->edit()
        .setHandle("definition", fileId.handle().value());
    const gs::DisplayList list = scene.list();
    expectBox(list.extents(), 5, 6, 15, 16);
    ASSERT_EQ(list.texts().size(), 1U);
}

TEST(Forms, ASolidWithoutWiresShowsTheEdgesThatItsModelerWrote)
{
    auto* solid = new AnyEntity("REGION");
    setSolidText(*solid, "400 10 1 0\n"
                         "9 Our maker 8 nowhere 1 24 Mon Jan 1 00:00:00 2001\n"
                         "1 1e-06 1e-10\n"
                         "body $-1 $1 $-1 $9 #\n"
                         "edge $-1 $3 $4 $-1 $-1 forward #\n"
                         "edge $-1 $5 $5 $-1 $8 forward #\n"
                         "vertex $-1 $1 $6 #\n"
                         "vertex $-1 $1 $7 #\n"
                         "vertex $-1 $2 $10 #\n"
                         "point $-1 0 0 0 #\n"
                         "point $-1 30 20 0 #\n"
                         "ellipse-curve $-1 50 10 0 0 0 1 5 0 0 1 I I #\n"
                         "transform $-1 1 0 0 0 1 0 0 0 1 100 200 0 1 no_rotate no_reflect #\n"
                         "point $-1 55 10 0 #\n"
                         "End-of-ACIS-data");
    const gs::DisplayList list = listOf(solid);
    ASSERT_EQ(list.items().size(), 1U);
    const gs::PathView path = list.path(list.items()[0].path);
    EXPECT_EQ(path.points[0], TvGePoint2d(100, 200));
    EXPECT_EQ(path.points[1], TvGePoint2d(130, 220));
    gs::Box circle;
    for (const TvGePoint2d& point : path.points.subspan(2))
        circle.add(point);
    expectBox(circle, 145, 205, 155, 215);
}

TEST(Forms, ASolidOfUnreadableTextIsNothing)
{
    for (const char* text : {"", "#", "edge", "400 0 1 0 body $0 # edge $1 $1 $1 # vertex $1 $2 #",
                             "vertex $0 $0 # edge $0 $99999999999999999999 # point 1e999 # #"}) {
        auto* solid = new AnyEntity("3DSOLID");
        setSolidText(*solid, text);
        EXPECT_TRUE(listOf(solid).items().empty()) << text;
    }
}

TEST(Forms, ALightIsAMarkOfTheSameSizeAtAnyScale)
{
    auto* light = new AnyEntity("LIGHT");
    light->edit().setPoint("position", {3, 4, 5});
    const gs::DisplayList list = listOf(light);
    ASSERT_EQ(list.items().size(), 1U);
    EXPECT_EQ(list.items()[0].kind, gs::Item::Kind::Marker);
    expectBox(list.items()[0].box, 3, 4, 3, 4);
}
