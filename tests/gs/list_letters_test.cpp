// Letters in a display list: kept once, put together when they are asked for.

#include <numbers>

#include <db/tv_db_text.h>
#include <gs/fonts.h>
#include <gs/text_shape.h>

#include "scene_tools.h"

namespace {

TvDbText* textAt(double x, double y, const TvString& words)
{
    auto* text = new TvDbText;
    text->setPosition({x, y, 0});
    text->setHeight(2);
    text->setTextString(words);
    return text;
}

void expectSamePoints(std::span<const TvGePoint2d> points, const std::vector<TvGePoint2d>& wanted)
{
    ASSERT_EQ(points.size(), wanted.size());
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        EXPECT_NEAR(points[i].x, wanted[i].x, 1e-9) << i;
        EXPECT_NEAR(points[i].y, wanted[i].y, 1e-9) << i;
    }
}

/// The points of a text that is drawn in one stroke, as its shape has them.
std::vector<TvGePoint2d> shapePoints(const TvDbText& text)
{
    gs::Fonts fonts;
    const gs::TextShape shape = gs::shapeOf(text, fonts);
    std::vector<TvGePoint2d> points;
    for (const TvGePoint2d& point : shape.parts.at(0).path.points()) {
        const TvGePoint3d there = shape.placement * TvGePoint3d(point.x, point.y, 0);
        points.push_back({there.x, there.y});
    }
    return points;
}

} // namespace

TEST(ListLetters, AreWhatTheShapeOfTheTextIs)
{
    struct Row {
        const TvChar* words;
        double rotation, oblique, widthFactor;
    };
    constexpr Row kRows[] = {
        {u"Level 7, room \u00E9", 0, 0, 1},
        {u"turned", 0.7, 0, 1},
        {u"upright", std::numbers::pi / 2, 0, 1},
        {u"leaning and wide", 0, 0.3, 1.8},
        {u"a %%ulined%%u word", 0.2, 0, 1},
        {u"\u0628\u0628\u0644\u0627", 0, 0.2, 1.5}, // joined
        {u"\u05E9\u05BC\u05DC", 0.3, 0, 0.7},       // with a mark
    };
    for (const Row& row : kRows) {
        DrawingScene scene;
        TvDbText* text = textAt(5, 3, row.words);
        text->setRotation(row.rotation);
        text->setOblique(row.oblique);
        text->setWidthFactor(row.widthFactor);
        const TvDbObjectId id = scene.add(text);
        const gs::DisplayList list = scene.list();
        ASSERT_EQ(list.items().size(), 1U);
        const gs::Item& item = list.items()[0];
        gs::Path room;
        const gs::PathView given = list.path(item.path, room);
        EXPECT_EQ(given.points.size(), item.path.pointCount);
        EXPECT_EQ(given.verbs.size(), item.path.verbCount);
        const TvDbObjectPointer<TvDbText> read(id);
        // Underlines come before all letters in a list, and in their order in a shape.
        if (TvString(row.words).view().find(u'%') == std::u16string_view::npos)
            expectSamePoints(given.points, shapePoints(*read));
        gs::Box box;
        for (const TvGePoint2d& point : given.points)
            box.add(point);
        EXPECT_NEAR(item.box.lowX, box.lowX, 1e-9);
        EXPECT_NEAR(item.box.lowY, box.lowY, 1e-9);
        EXPECT_NEAR(item.box.highX, box.highX, 1e-9);
        EXPECT_NEAR(item.box.highY, box.highY, 1e-9);
    }
}

TEST(ListLetters, AreTheSameWithAndWithoutRoomForThem)
{
    DrawingScene scene;
    scene.add(textAt(0, 0, u"first"));
    scene.add(textAt(0, 9, u"%%osecond%%o"));
    const gs::DisplayList list = scene.list();
    ASSERT_EQ(list.items().size(), 2U);
    for (const gs::Item& item : list.items()) {
        gs::Path room;
        const gs::PathView kept = list.path(item.path), given = list.path(item.path, room);
        EXPECT_TRUE(std::equal(kept.verbs.begin(), kept.verbs.end(), given.verbs.begin(),
                               given.verbs.end()));
        expectSamePoints(kept.points, {given.points.begin(), given.points.end()});
        EXPECT_EQ(list.path(item.path).points.data(), kept.points.data()); // put together once
    }
}

TEST(ListLetters, TakeLittleMemoryForManyTexts)
{
    DrawingScene scene;
    constexpr int kTexts = 200;
    for (int i = 0; i < kTexts; ++i)
        scene.add(textAt(0, i * 3, u"General arrangement of the second level"));
    const gs::DisplayList list = scene.list();
    gs::Path room;
    const gs::PathView letters = list.path(list.items()[0].path, room);
    EXPECT_LT(list.memory(), kTexts * letters.points.size() * sizeof(TvGePoint2d) / 2);
}

TEST(ListLetters, OfSpacesAloneAreNothing)
{
    DrawingScene scene;
    scene.add(textAt(0, 0, u"   "));
    EXPECT_TRUE(scene.list().items().empty());
}
