// Files of shapes, and what is drawn of them.

#include <cmath>

#include <base/user_folders.h>
#include <db/record_editor.h>
#include <db/tv_db_curves.h>
#include <gs/linetype.h>
#include <temp_folder.h>

#include "scene_tools.h"
#include "shape_file.h"

namespace {

using Strokes = std::vector<int>; // bytes; negative ones as they are stored

class AnyEntity : public TvDbEntity
{
public:
    explicit AnyEntity(const char* className) : TvDbEntity(className) {}
};

struct Shape {
    int number;
    Strokes strokes;
};

std::string fileOf(const std::vector<Shape>& shapes)
{
    std::string bytes = "draughting shapes V1.0\r\n\x1A";
    const auto word = [&](std::size_t value) {
        bytes += static_cast<char>(value & 0xFF);
        bytes += static_cast<char>(value >> 8);
    };
    const std::string name("NAME\0", 5);
    word(static_cast<std::size_t>(shapes.front().number));
    word(static_cast<std::size_t>(shapes.back().number));
    word(shapes.size());
    for (const Shape& shape : shapes) {
        word(static_cast<std::size_t>(shape.number));
        word(name.size() + shape.strokes.size());
    }
    for (const Shape& shape : shapes) {
        bytes += name;
        for (const int value : shape.strokes)
            bytes += static_cast<char>(value);
    }
    return bytes + "EOF";
}

std::optional<gs::ShapeFile> read(const std::string& bytes)
{
    return gs::ShapeFile::fromBytes(std::as_bytes(std::span(bytes)));
}

gs::Path drawn(const Strokes& strokes, int number = 1, const std::vector<Shape>& others = {})
{
    std::vector<Shape> all{{number, strokes}};
    all.insert(all.end(), others.begin(), others.end());
    auto file = read(fileOf(all));
    const gs::Path* const path = file ? file->shape(static_cast<std::uint16_t>(number)) : nullptr;
    return path ? *path : gs::Path();
}

void expectPlaces(const gs::Path& path, const std::vector<TvGePoint2d>& expected)
{
    ASSERT_EQ(path.points().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_NEAR(path.points()[i].x, expected[i].x, 1e-9) << i;
        EXPECT_NEAR(path.points()[i].y, expected[i].y, 1e-9) << i;
    }
}

void expectEnd(const gs::Path& path, double x, double y)
{
    ASSERT_FALSE(path.points().empty());
    EXPECT_NEAR(path.points().back().x, x, 1e-9);
    EXPECT_NEAR(path.points().back().y, y, 1e-9);
}

} // namespace

TEST(ShapeFile, AByteIsALengthAndOneOfSixteenDirections)
{
    expectPlaces(drawn({0x20, 0x24, 0x1A, 0x21, 0x2D, 0}),
                 {{0, 0}, {2, 0}, {2, 2}, {1, 1}, {3, 2}, {4, 0}});
}

TEST(ShapeFile, ThePenIsLiftedAndPutDownAgain)
{
    const gs::Path path = drawn({0x10, 2, 0x10, 1, 0x10, 0});
    expectPlaces(path, {{0, 0}, {1, 0}, {2, 0}, {3, 0}});
    EXPECT_EQ(path.verbs()[2], gs::Path::Verb::Move);
}

TEST(ShapeFile, StepsAreScaledAndPlacesKept)
{
    expectPlaces(drawn({4, 3, 0x10, 5, 0x10, 6, 3, 6, 0x14, 0}),
                 {{0, 0}, {3, 0}, {6, 0}, {3, 0}, {3, 0.5}});
}

TEST(ShapeFile, DisplacementsHaveSigns)
{
    expectPlaces(drawn({8, -3, 5, 9, 1, 2, -4, -4, 0, 0, 0x10, 0}),
                 {{0, 0}, {-3, 5}, {-2, 7}, {-6, 3}, {-5, 3}});
}

TEST(ShapeFile, AnArcRunsOverEighthsOfItsCircle)
{
    expectEnd(drawn({10, 2, 0x02, 0}), -2, 2);         // from the right, to the top
    expectEnd(drawn({10, 2, 0x02 | 0x80, 0}), -2, -2); // clockwise: to the bottom
    const gs::Path whole = drawn({10, 2, 0x40, 0});    // all eight
    expectEnd(whole, 0, 0);
    EXPECT_EQ(whole.points().size(), 13U);
}

TEST(ShapeFile, AnArcMayBeginAndEndWithinAnEighth)
{
    const double degree = 3.14159265358979323846 / 180;
    // From 55 degrees to 95: 57 parts of 256 of the first eighth, 28 of the last.
    const gs::Path path = drawn({11, 57, 28, 0, 10, 0x12, 0});
    const double from = (45 + 45 * 57 / 256.0) * degree, to = (90 + 45 * 28 / 256.0) * degree;
    expectEnd(path, 10 * (std::cos(to) - std::cos(from)), 10 * (std::sin(to) - std::sin(from)));
}

TEST(ShapeFile, ABulgeIsAnArcOverItsChord)
{
    const gs::Path path = drawn({12, 4, 0, 127, 13, 0, 3, 0, 3, 0, -127, 0, 0, 0});
    const gs::Box box = [&] {
        gs::Box around;
        for (const TvGePoint2d& point : path.points())
            around.add(point);
        return around;
    }();
    EXPECT_NEAR(box.lowY, -2, 1e-9); // half a circle below the chord, counter-clockwise
    expectEnd(path, 7, 3);
}

TEST(ShapeFile, AShapeStandsWithinAnother)
{
    expectPlaces(drawn({0x10, 7, 2, 0x10, 0}, 1, {{2, {0x14, 0}}}),
                 {{0, 0}, {1, 0}, {1, 1}, {2, 1}});
}

TEST(ShapeFile, StepsForVerticalTextsAreLeftOut)
{
    expectPlaces(drawn({14, 8, 9, 9, 0x10, 14, 13, 1, 1, 1, 0, 0, 0x10, 0}),
                 {{0, 0}, {1, 0}, {2, 0}});
}

TEST(ShapeFile, AShapeWithinItselfEnds)
{
    EXPECT_LT(drawn({0x10, 7, 1, 7, 1, 0}).points().size(), 100'000U);
    EXPECT_LT(drawn({4, 255, 4, 255, 0x10, 7, 1, 0}).points().size(), 100U);
}

TEST(ShapeFile, WhatIsNoSuchFileIsRefused)
{
    const std::string sound = fileOf({{1, {0x10, 0}}, {2, {0x14, 0}}});
    EXPECT_FALSE(read(""));
    EXPECT_FALSE(read(std::string(100, 'x')));
    EXPECT_FALSE(read("draughting shapes V1.0\r\n\x1A"));
    EXPECT_FALSE(read("draughting unifont 1.0\r\n\x1A" + sound.substr(25)));
    std::string many = sound;
    many[25 + 4] = many[25 + 5] = '\xFF';
    EXPECT_FALSE(read(many));
    for (std::size_t i = 0; i < sound.size(); ++i) // cut anywhere: no harm
        if (auto file = read(sound.substr(0, i)); file)
            file->shape(2);
}

TEST(ShapeFile, AShapeBeyondTheEndIsLeftOut)
{
    const std::string sound = fileOf({{1, {0x10, 0}}, {2, {0x14, 0}}});
    auto file = read(sound.substr(0, sound.size() - 6));
    ASSERT_TRUE(file);
    EXPECT_NE(file->shape(1), nullptr);
    EXPECT_EQ(file->shape(2), nullptr);
}

// In drawings

namespace {

/// A drawing with a style of shapes from @p file.
class ShapeScene : public DrawingScene
{
public:
    explicit ShapeScene(const TvString& file)
    {
        TvDbObjectPointer<TvDbTextStyleTable> styles(
            database().symbolTableId(TvDb::SymbolTable::TextStyle), TvDb::kForWrite);
        auto* record = new TvDbTextStyleTableRecord;
        record->setName(u"SIGNS");
        record->edit().setFlag("is_shape", true);
        record->edit().setText("font", file);
        EXPECT_EQ(styles->add(style, record), TvStatus::Ok);
        record->close();
    }

    TvDbObjectId addShape(int number)
    {
        auto* shape = new AnyEntity("SHAPE");
        db::RecordEditor edit = shape->edit();
        edit.setPoint("ins_pt", {10, 5, 0});
        edit.setReal("size", 4);
        edit.setReal("width_factor", 2);
        edit.setInteger("shape_number", number);
        edit.setHandle("style", style.handle().value());
        return add(shape);
    }

    /// A linetype of gaps of 1, each with a shape half as large.
    TvDbObjectId addLinetype(int number, double second = -1)
    {
        TvDbObjectPointer<TvDbLinetypeTable> types(
            database().symbolTableId(TvDb::SymbolTable::Linetype), TvDb::kForWrite);
        auto* record = new TvDbLinetypeTableRecord;
        record->setName(u"FENCE");
        db::RecordEditor edit = record->edit();
        db::ArrayEditor dashes = edit.array("dashes"), styles = edit.array("styles");
        dashes.resize(2);
        styles.resize(2);
        dashes[0].setReal("length", 1);
        dashes[1].setReal("length", second);
        dashes[1].setReal("scale", 0.5);
        dashes[1].setReal("x_offset", -1);
        dashes[1].setInteger("flags", 4);
        dashes[1].setInteger("shape_number", number);
        styles.setHandle(1, style.handle().value());
        TvDbObjectId id;
        EXPECT_EQ(types->add(id, record), TvStatus::Ok);
        record->close();
        return id;
    }

    void addLine(TvDbObjectId linetype)
    {
        const TvDbObjectId id = add(new TvDbLine({0, 0, 0}, {7, 0, 0}));
        TvDbObjectPointer<TvDbEntity>(id, TvDb::kForWrite)
            ->edit()
            .setHandle("ltype", linetype.handle().value());
    }

    TvDbObjectId style;
};

void expectBox(const gs::Box& box, double lowX, double lowY, double highX, double highY)
{
    EXPECT_NEAR(box.lowX, lowX, 1e-6);
    EXPECT_NEAR(box.lowY, lowY, 1e-6);
    EXPECT_NEAR(box.highX, highX, 1e-6);
    EXPECT_NEAR(box.highY, highY, 1e-6);
}

} // namespace

TEST(Shapes, AShapeHasTheOutlineOfItsFile)
{
    const TempFolder folder;
    folder.write("signs.shx", fileOf({{7, {0x20, 0x14, 0}}}));
    ShapeScene scene(folder.file("signs.shx"));
    scene.addShape(7);
    const gs::DisplayList list = scene.list();
    ASSERT_EQ(list.items().size(), 1U);
    EXPECT_EQ(list.path(list.items()[0].path).points.size(), 3U);
    expectBox(list.extents(), 10, 5, 26, 9); // two units of 4, twice as wide; one high
}

TEST(Shapes, AFileIsFoundInTheUsersFolderOfFonts)
{
    const TempFolder folder;
    const char* const former = std::getenv("XDG_DATA_HOME");
    const std::string kept = former ? former : "";
    ::setenv("XDG_DATA_HOME", folder.path().c_str(), 1);
    std::filesystem::create_directories(folder.path() / "tarvik" / "Fonts");
    folder.write("tarvik/Fonts/signs.shx", fileOf({{7, {0x20, 0x14, 0}}}));
    ShapeScene scene(u"c:\\work\\signs"); // the ending may be left out
    scene.addShape(7);
    EXPECT_EQ(scene.list().path(scene.list().items()[0].path).points.size(), 3U);
    former ? ::setenv("XDG_DATA_HOME", kept.c_str(), 1) : ::unsetenv("XDG_DATA_HOME");
}

TEST(Shapes, AShapeOfABrokenFileIsACrossedBox)
{
    const TempFolder folder;
    folder.write("signs.shx", "no shapes at all");
    ShapeScene scene(folder.file("signs.shx"));
    scene.addShape(7);
    expectBox(scene.list().extents(), 10, 5, 18, 9);
}

TEST(Shapes, StandInTheLinesOfALinetype)
{
    const TempFolder folder;
    folder.write("signs.shx", fileOf({{7, {2, 0x1C, 1, 0x24, 0}}})); // a tie
    ShapeScene scene(folder.file("signs.shx"));
    const TvDbObjectId type = scene.addLinetype(7);
    scene.addLine(type);
    const gs::DisplayList list = scene.list();
    expectBox(list.extents(), 0, -0.5, 7, 0.5);

    folder.write("signs.shx", "");
    expectBox(scene.list().extents(), 0, 0, 7, 0); // the dashes alone
}

TEST(Shapes, StandInLinesWithoutGaps)
{
    ShapeScene scene(u"ltypeshp.shx");
    const TvDbObjectId type = scene.addLinetype(130, 1); // ties, on a line that runs on
    scene.addLine(type);
    expectBox(scene.list().extents(), 0, -0.5, 7, 0.5);
}

TEST(Shapes, OfUsualLinetypesAreDrawnWithoutTheirFile)
{
    ShapeScene scene(u"ltypeshp.shx");
    const TvDbObjectId type = scene.addLinetype(132); // boxes
    scene.addLine(type);
    const gs::DisplayList list = scene.list();
    ASSERT_EQ(list.items().size(), 1U);
    expectBox(list.items()[0].box, 0, -0.5, 7, 0.5);
}
