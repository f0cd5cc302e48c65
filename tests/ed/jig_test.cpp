#include <deque>
#include <limits>
#include <numbers>

#include <db/tv_db_curves.h>
#include <ed/prompts.h>
#include <ed/tv_ed_jig.h>

#include "host_scene.h"

namespace {

using ed::JigEvent;
using Names = std::vector<std::string>;

JigEvent moved(double x, double y, double z = 0)
{
    return {JigEvent::Moved, {x, y, z}, {}};
}

JigEvent picked(double x, double y, double z = 0)
{
    return {JigEvent::Picked, {x, y, z}, {}};
}

JigEvent typed(const TvChar* text)
{
    return {JigEvent::Typed, {}, TvString(text)};
}

/// A window whose user does what a list says.
class ListedInput : public ed::JigInput
{
public:
    bool next(const ed::JigQuestion& question, JigEvent& out) override
    {
        prompt = question.prompt;
        base = question.base;
        if (events.empty())
            return false;
        out = events.front();
        events.pop_front();
        return true;
    }
    void show(const TvDbEntity* entity) override
    {
        const auto* line = tvrxCast<TvDbLine>(entity);
        shown.push_back(line ? line->endPoint().x : std::numeric_limits<double>::quiet_NaN());
    }
    std::deque<JigEvent> events;
    std::vector<double> shown;
    TvString prompt;
    std::optional<TvGePoint3d> base;
};

/// Drags the end of a line.
class LineJig : public TvEdJig
{
public:
    enum What { Point, Distance, Angle, Text };
    explicit LineJig(What asked = Point) : m_asked(asked) {}
    DragStatus sampler() override
    {
        ++samples;
        switch (m_asked) {
        case Distance: return acquireDist(number, base);
        case Angle: return acquireAngle(number, base);
        case Text: return acquireString(text);
        default: return acquirePoint(point);
        }
    }
    bool update() override
    {
        ++updates;
        line->setEndPoint(point);
        return true;
    }
    TvDbEntity* entity() const override { return line.get(); }

    std::unique_ptr<TvDbLine> line = std::make_unique<TvDbLine>();
    TvGePoint3d point, base;
    double number = -1;
    TvString text;
    int samples = 0, updates = 0;

private:
    What m_asked;
};

class JigTest : public HostTest
{
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        open("a.dwg");
        ed::setJigInput(&input);
        ed::setLastPoint({10, 0, 0});
    }
    void TearDown() override
    {
        ed::setJigInput(nullptr);
        HostTest::TearDown();
    }
    ListedInput input;
};

TEST_F(JigTest, FollowsThePointerUntilAPointIsPicked)
{
    input.events = {moved(1, 0), moved(2, 0), moved(2, 0), picked(3, 0), moved(9, 9)};
    LineJig jig;
    jig.setDispPrompt(u"Where? ");
    EXPECT_EQ(jig.drag(), TvEdJig::kNormal);
    EXPECT_EQ(jig.point, TvGePoint3d(3, 0, 0));
    EXPECT_EQ(jig.samples, 4);
    EXPECT_EQ(jig.updates, 3) << "not for a pointer that stood still";
    ASSERT_EQ(input.shown.size(), 4u);
    EXPECT_EQ(input.shown[2], 3);
    EXPECT_TRUE(std::isnan(input.shown[3])) << "the image is gone at the end";
    EXPECT_EQ(input.prompt, u"Where? ");
    EXPECT_EQ(ed::lastPoint(), TvGePoint3d(3, 0, 0));
}

TEST_F(JigTest, APickWhereThePointerIsAlreadyEndsItToo)
{
    input.events = {moved(1, 0), picked(1, 0)};
    LineJig jig;
    EXPECT_EQ(jig.drag(), TvEdJig::kNormal);
    EXPECT_EQ(jig.updates, 1);
}

TEST_F(JigTest, TypedPointsCountAsPickedOnes)
{
    input.events = {moved(1, 0), typed(u"@2,3")};
    LineJig jig;
    EXPECT_EQ(jig.drag(), TvEdJig::kNormal);
    EXPECT_EQ(jig.point, TvGePoint3d(12, 3, 0));
    tvedPostCommand(u"4,5\n");
    LineJig posted;
    EXPECT_EQ(posted.drag(), TvEdJig::kNormal);
    EXPECT_EQ(posted.point, TvGePoint3d(4, 5, 0)) << "what was posted comes first";
}

TEST_F(JigTest, WhatMakesNoSenseIsToldAndTheDraggingGoesOn)
{
    input.events = {typed(u"there"), typed(u"1,2")};
    LineJig jig;
    EXPECT_EQ(jig.drag(), TvEdJig::kNormal);
    EXPECT_EQ(told(), Names{"say 23161 there"});
    input.events.assign(1000, typed(u"there"));
    EXPECT_EQ(jig.drag(), TvEdJig::kCancel) << "but not for ever";
}

TEST_F(JigTest, EndsWithKeywordsEnterEscapeAndWhenTheWindowGoes)
{
    LineJig jig;
    jig.setKeywordList(u"Drehen Skalieren _ Rotate Scale");
    input.events = {moved(1, 0), typed(u"s")};
    EXPECT_EQ(jig.drag(), TvEdJig::kKW2);
    input.events = {typed(u"_Rotate")};
    EXPECT_EQ(jig.drag(), TvEdJig::kKW1);
    input.events = {typed(u"")};
    EXPECT_EQ(jig.drag(), TvEdJig::kNull);
    input.events = {moved(1, 0), {JigEvent::Escaped, {}, {}}};
    EXPECT_EQ(jig.drag(), TvEdJig::kCancel);
    EXPECT_TRUE(std::isnan(input.shown.back()));
    EXPECT_EQ(jig.drag(), TvEdJig::kCancel) << "nothing more comes";
    jig.setUserInputControls(TvEdJig::kAcceptOtherInputString);
    input.events = {typed(u"free text")};
    EXPECT_EQ(jig.drag(), TvEdJig::kOther);
    EXPECT_EQ(jig.otherInput(), u"free text");
}

TEST_F(JigTest, WithoutAWindowTheUserIsAskedAndWithoutAUserItIsCancelled)
{
    ed::setJigInput(nullptr);
    prompts.answers = {u"6,7"};
    LineJig jig;
    jig.setDispPrompt(u"Where? ");
    EXPECT_EQ(jig.drag(), TvEdJig::kNormal);
    EXPECT_EQ(jig.point, TvGePoint3d(6, 7, 0));
    EXPECT_EQ(told(), Names{"word: Where? "});
    EXPECT_EQ(jig.drag(), TvEdJig::kCancel);
    ed::setUserPrompts(nullptr);
    EXPECT_EQ(jig.drag(), TvEdJig::kCancel);
    ed::setUserPrompts(&prompts);
}

TEST_F(JigTest, PointsLieInThePlaneUnlessSpaceIsAllowed)
{
    input.events = {picked(1, 2, 3)};
    LineJig jig;
    jig.drag();
    EXPECT_EQ(jig.point, TvGePoint3d(1, 2, 0));
    input.events = {picked(1, 2, 3)};
    jig.setUserInputControls(224);
    jig.drag();
    EXPECT_EQ(jig.point, TvGePoint3d(1, 2, 3));
    input.events = {picked(5, 5)};
    jig.setUserInputControls(TvEdJig::kDontUpdateLastPoint);
    jig.drag();
    EXPECT_EQ(ed::lastPoint(), TvGePoint3d(1, 2, 3));
}

TEST_F(JigTest, DistancesAreMeasuredFromTheBaseOrTyped)
{
    LineJig jig(LineJig::Distance);
    jig.base = {1, 1, 0};
    input.events = {moved(4, 5), picked(7, 9)};
    EXPECT_EQ(jig.drag(), TvEdJig::kNormal);
    EXPECT_DOUBLE_EQ(jig.number, 10);
    EXPECT_EQ(input.base, jig.base);
    jig.setUserInputControls(TvEdJig::kNoZeroResponseAccepted);
    input.events = {typed(u"-1"), typed(u"0"), typed(u"2.5")};
    EXPECT_EQ(jig.drag(), TvEdJig::kNormal);
    EXPECT_DOUBLE_EQ(jig.number, 2.5);
    EXPECT_EQ(said(), (std::vector<int>{23162, 23162}));
}

TEST_F(JigTest, AnglesAreThoseOfTheLineFromTheBaseOrTyped)
{
    LineJig jig(LineJig::Angle);
    jig.base = {1, 1, 0};
    input.events = {moved(2, 1), picked(1, -4)};
    EXPECT_EQ(jig.drag(), TvEdJig::kNormal);
    EXPECT_DOUBLE_EQ(jig.number, 1.5 * std::numbers::pi);
    input.events = {typed(u"180")};
    EXPECT_EQ(jig.drag(), TvEdJig::kNormal);
    EXPECT_DOUBLE_EQ(jig.number, std::numbers::pi);
}

TEST_F(JigTest, TextsAreLinesAndPicksAreNone)
{
    LineJig jig(LineJig::Text);
    input.events = {moved(1, 1), picked(2, 2), typed(u"a b")};
    EXPECT_EQ(jig.drag(), TvEdJig::kNormal);
    EXPECT_EQ(jig.text, u"a b");
    tvedPostCommand(u"c d\n");
    EXPECT_EQ(jig.drag(), TvEdJig::kNormal);
    EXPECT_EQ(jig.text, u"c d");
}

TEST_F(JigTest, TheEntityComesIntoTheSpaceThatIsShown)
{
    LineJig jig;
    const TvDbObjectId id = jig.append();
    ASSERT_TRUE(id.isValid());
    jig.line.release(); // the drawing's now
    EXPECT_EQ(TvDbObjectPointer<TvDbLine>(id)->ownerId(), drawing().modelSpaceId());
    tvdbHostApplicationServices()->setWorkingDatabase(nullptr);
    LineJig without;
    EXPECT_TRUE(without.append().isNull());
    tvdbHostApplicationServices()->setWorkingDatabase(&drawing());
}

TEST_F(JigTest, ACancelledJigCancelsItsCommandAndLeavesNothing)
{
    stack.addCommand(u"T", u"DRAG", u"DRAG", 0, [] {
        LineJig jig;
        EXPECT_EQ(jig.drag(), TvEdJig::kCancel);
    });
    const std::size_t objects = drawing().objectIds().size();
    input.events = {moved(1, 1), {JigEvent::Escaped, {}, {}}};
    reactor.told.clear();
    type(u"DRAG\n");
    EXPECT_EQ(reactor.told, (Names{"starts DRAG", "cancelled DRAG"}));
    EXPECT_EQ(drawing().objectIds().size(), objects);
    EXPECT_FALSE(drawing().isModified());
}

TEST(Jig, ThatAsksNothingEnds)
{
    struct : TvEdJig {
        DragStatus sampler() override { return kNormal; }
    } silent;
    EXPECT_EQ(silent.drag(), TvEdJig::kNormal);
}

} // namespace
