#include <cmath>

#include <gtest/gtest.h>

#include <db/modeler_data.h>
#include <solid_edges.h>

#include "scene_tools.h"
#include "solid_body.h"
#include "stored_body.h"

using Bytes = std::vector<std::uint8_t>;
using Verb = gs::SpacePath::Verb;

namespace {

class AnyEntity : public TvDbEntity
{
public:
    explicit AnyEntity(const char* className) : TvDbEntity(className) {}
};

gs::SpacePath edgesOf(const Bytes& body)
{
    gs::SpacePath path;
    gs::addSolidEdges(path, body);
    return path;
}

std::size_t countOf(const gs::SpacePath& path, Verb verb)
{
    return static_cast<std::size_t>(std::count(path.verbs().begin(), path.verbs().end(), verb));
}

void expectPoint(const TvGePoint3d& point, double x, double y, double z)
{
    EXPECT_LT(point.distanceTo({x, y, z}), 1e-6) << point.x << ' ' << point.y << ' ' << point.z;
}

/// The edges of a body with two corners at these places; its edge ends with @p edge, @p more
/// follows as record 6.
gs::SpacePath edgeBetween(BodyForm form, const std::string& from, const std::string& to,
                          const std::string& edge, std::vector<std::string> more)
{
    std::vector<std::string> records{
        "body $-1 $-1",     "edge $-1 i:-1 $-1 " + edge,  "vertex $-1 $1 $4",
        "vertex $-1 $1 $5", "point $-1 i:-1 $-1 " + from, "point $-1 i:-1 $-1 " + to};
    records.insert(records.end(), more.begin(), more.end());
    return edgesOf(bodyOf(form, records));
}

/// Two curved edges and a ring, somewhere.
std::vector<std::string> curvedRecords()
{
    return {"body $-1 $1",
            "transform $-1 [1 0 0 0 1 0 0 0 1 100 200 0 1]",
            "vertex $-1 $6 $4",
            "vertex $-1 $6 $5",
            "point $-1 0,10,0",
            "point $-1 10,0,0",
            "edge $-1 i:-1 $2 0 $3 10 $-1 $7 forward",
            "intcurve-curve $-1 forward { exactcur nubs i:3 open i:2 0 i:3 1 "
            "i:3 0,10,0 1,3,0 2,3,0 10,0,0 0 } I I",
            "edge $-1 i:-1 $2 0 $2 10 $-1 $9 forward",
            "ellipse-curve $-1 0,0,0 0,0,1 0,10,0 1 I I",
            "face $-1 $11 reversed",
            "torus-surface $-1 0,0,0 0,0,1 5 1 1,0,0 I I"};
}

} // namespace

TEST(SolidEdges, ACubeHasTwelveInEachForm)
{
    for (const BodyForm form : kBodyForms) {
        const gs::SpacePath path = edgesOf(bodyOf(form, cubeRecords()));
        ASSERT_EQ(path.points().size(), 24U) << int(form);
        EXPECT_EQ(countOf(path, Verb::Line), 12U);
        expectPoint(path.points()[0], 100, 200, 0);
        expectPoint(path.points()[1], 110, 200, 0);
        TvDbExtents all;
        for (const TvGePoint3d& point : path.points())
            all.addPoint(point);
        expectPoint(all.minPoint(), 100, 200, 0);
        expectPoint(all.maxPoint(), 110, 210, 10);
    }
}

TEST(SolidEdges, AnEllipseIsFollowedInTheDirectionOfItsEdge)
{
    for (const BodyForm form : kBodyForms) {
        const std::string circle = "ellipse-curve $-1 i:-1 $-1 5,5,1 0,0,1 2,0,0 1 I I";
        const gs::SpacePath quarter =
            edgeBetween(form, "7,5,1", "5,7,1", "$2 0 $3 1.5707963 $-1 $6 forward", {circle});
        ASSERT_EQ(countOf(quarter, Verb::Curve), 1U) << int(form);
        expectPoint(quarter.points().back(), 5, 7, 1);
        // Against it, three quarters are left.
        const gs::SpacePath rest =
            edgeBetween(form, "7,5,1", "5,7,1", "$2 0 $3 1.5707963 $-1 $6 reversed", {circle});
        EXPECT_EQ(countOf(rest, Verb::Curve), 3U) << int(form);
        const gs::SpacePath whole =
            edgeBetween(form, "7,5,1", "7,5,1", "$2 0 $2 6.2831853 $-1 $6 forward", {circle});
        EXPECT_EQ(countOf(whole, Verb::Curve), 4U) << int(form);
        EXPECT_EQ(countOf(whole, Verb::Close), 1U) << int(form);
    }
}

TEST(SolidEdges, AFreeCurveIsDrawnBetweenItsCorners)
{
    // x = 3t, y = 9t(1-t): a cubic with the knots 0 and 1.
    const std::string spline = "{ exactcur \"full\" nubs i:3 open i:2 0 i:3 1 i:3 "
                               "0,0,0 1,3,0 2,3,0 3,0,0 0 } I I";
    const std::string curve = "intcurve-curve $-1 i:-1 $-1 forward " + spline;
    for (const BodyForm form : kBodyForms) {
        const gs::SpacePath whole =
            edgeBetween(form, "0,0,0", "3,0,0", "$2 $3 $-1 $6 forward", {curve});
        ASSERT_EQ(whole.points().size(), 4U) << int(form);
        expectPoint(whole.points()[1], 1, 3, 0);
        expectPoint(whole.points()[2], 2, 3, 0);

        const gs::SpacePath half =
            edgeBetween(form, "1.5,2.25,0", "0,0,0", "$2 -0.5 $3 0 $-1 $6 reversed", {curve});
        ASSERT_EQ(half.points().size(), 4U) << int(form);
        expectPoint(half.points()[1], 0.5, 1.5, 0);
        expectPoint(half.points()[3], 1.5, 2.25, 0);

        // A curve that other records told before.
        const gs::SpacePath again = edgeBetween(
            form, "0,0,0", "3,0,0", "$2 $3 $-1 $7 forward",
            {"spline-surface $-1 i:-1 $-1 forward { one { ref i:0 } { ref i:0 } } { two " + spline +
                 " }",
             "intcurve-curve $-1 i:-1 $-1 forward { ref i:2 } I I"});
        ASSERT_EQ(again.points().size(), 4U) << int(form);
        expectPoint(again.points()[1], 1, 3, 0);
    }
}

TEST(SolidEdges, ARationalCurveOfSeveralSpansKeepsItsWeights)
{
    // Half a circle of two quarters.
    const std::string half = "0.70710678118654752";
    const std::string curve =
        "intcurve-curve $-1 i:-1 $-1 forward { exactcur nurbs i:2 open i:3 0 i:2 1 i:2 2 i:2 "
        "1,0,0 1 1,1,0 " +
        half + " 0,1,0 1 -1,1,0 " + half + " -1,0,0 1 0 } I I";
    for (const BodyForm form : kBodyForms) {
        const gs::SpacePath path =
            edgeBetween(form, "1,0,0", "-1,0,0", "$2 0 $3 2 $-1 $6 forward", {curve});
        ASSERT_GT(countOf(path, Verb::Curve), 2U) << int(form);
        expectPoint(path.points().front(), 1, 0, 0);
        for (std::size_t i = 3; i < path.points().size(); i += 3)
            EXPECT_NEAR(std::hypot(path.points()[i].x, path.points()[i].y), 1, 1e-9);
    }
}

TEST(SolidEdges, ACurveThatMissesItsCornersIsTheLineBetweenThem)
{
    for (const BodyForm form : kBodyForms)
        for (const char* curve :
             {"intcurve-curve $-1 $-1 forward { exactcur nubs i:1 open i:2 0 i:1 1 i:1 "
              "7,7,7 8,8,8 0 } I I",
              "intcurve-curve $-1 $-1 forward { exactcur nubs i:1 open i:2 0 i:9 1 i:1 0,0,0 }",
              "intcurve-curve $-1 $-1 forward { exactcur nubs i:1 open i:2000000000 0 i:1 }",
              "intcurve-curve $-1 $-1 forward { ref i:5 } I I",
              "intcurve-curve $-1 $-1 forward { ref i:0 } I I", "intcurve-curve", "helix-curve"}) {
            const gs::SpacePath path =
                edgeBetween(form, "0,0,0", "3,0,0", "$2 0 $3 1 $-1 $6 forward", {curve});
            ASSERT_EQ(path.points().size(), 2U) << int(form) << ' ' << curve;
            expectPoint(path.points()[1], 3, 0, 0);
        }
}

TEST(SolidEdges, WhatItWasBeforeIsNotDrawn)
{
    for (const BodyForm form : kBodyForms) {
        std::vector<std::string> records = cubeRecords();
        records.push_back("Begin-of-ACIS-History-Data i:1");
        records.push_back("edge $-1 i:-1 $-1 $2 0 $9 10 $-1 $-1 forward");
        EXPECT_EQ(countOf(edgesOf(bodyOf(form, records)), Verb::Line), 12U) << int(form);
    }
}

TEST(SolidEdges, AreThoseBeforeTheEndWhereverTheBodyIsCutOff)
{
    for (const BodyForm form : kBodyForms) {
        const Bytes whole = bodyOf(form, curvedRecords());
        std::size_t before = 0;
        for (std::size_t size = 0; size <= whole.size(); ++size) {
            // Nothing may be read behind the end.
            const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
            const std::size_t curves = countOf(edgesOf(cut), Verb::Move);
            EXPECT_GE(curves, before) << int(form) << ' ' << size;
            before = curves;
        }
        EXPECT_EQ(before, 2U + 8U);
    }
}

TEST(SolidEdges, AreFiniteWhateverIsWrongWithABody)
{
    for (const BodyForm form : kBodyForms) {
        const Bytes whole = bodyOf(form, curvedRecords());
        EXPECT_EQ(countOf(edgesOf(whole), Verb::Curve), 5U + 8 * 4U);
        for (std::size_t at = 0; at < whole.size(); ++at)
            for (const std::uint8_t value : {0x00, 0x7F, 0x80, 0xFF}) {
                Bytes damaged = whole;
                damaged[at] = value;
                const auto edges = edgesOf(damaged);
                for (const TvGePoint3d& point : edges.points())
                    ASSERT_TRUE(std::isfinite(point.x + point.y + point.z)) << at;
            }
    }
}

TEST(SolidEdges, OfALargeBodyAreAllThere)
{
    constexpr int kEdges = 20'000;
    for (const BodyForm form : {BodyForm::Text, BodyForm::Binary4}) {
        BodyWriter writer(form);
        writer.record("body $-1 $-1");
        for (int i = 0; i < kEdges; ++i) {
            const int at = 4 * i + 1;
            writer.record("edge $-1 $" + std::to_string(at + 1) + " $" + std::to_string(at + 2) +
                          " $-1 forward");
            writer.record("vertex $-1 $" + std::to_string(at + 3));
            writer.record("vertex $-1 $4");
            writer.record("point $-1 " + std::to_string(i + 1) + ",0,0");
        }
        // All but the first, which begins where they end.
        EXPECT_EQ(countOf(edgesOf(writer.bytes()), Verb::Line), kEdges - 1U) << int(form);
    }
}

TEST(SolidEdges, ThatAllFollowOneHugeCurveAreNotFollowedWithoutEnd)
{
    constexpr int kEdges = 4000, kPoints = 4000;
    BodyWriter writer(BodyForm::Binary4);
    std::string curve =
        "intcurve-curve $-1 forward { exactcur nubs i:1 open i:" + std::to_string(kPoints);
    for (int i = 0; i < kPoints; ++i)
        curve += ' ' + std::to_string(i) + " i:1";
    for (int i = 0; i < kPoints; ++i)
        curve += ' ' + std::to_string(i) + ",0,0";
    writer.record(curve + " 0 }");
    writer.record("vertex $-1 $3");
    writer.record("vertex $-1 $4");
    writer.record("point $-1 0,0,0");
    writer.record("point $-1 " + std::to_string(kPoints - 1) + ",0,0");
    for (int i = 0; i < kEdges; ++i)
        writer.record("edge $-1 $1 $2 $-1 $0 forward");
    const gs::SpacePath path = edgesOf(writer.bytes());
    EXPECT_GT(countOf(path, Verb::Curve), kPoints - 2U);
    EXPECT_LT(path.points().size(), 4 * writer.bytes().size());
}

TEST(SolidEdges, AreDrawnOfABodyThatTheRecordKeepsInBinary)
{
    DrawingScene scene;
    auto* solid = new AnyEntity("3DSOLID");
    db::RecordEditor edit = solid->edit();
    edit.setFlag("empty", false);
    edit.setInteger("version", 2);
    edit.setBytes("sab", bodyOf(BodyForm::Binary4, cubeRecords()));
    scene.add(solid);
    const gs::DisplayList list = scene.list();
    ASSERT_EQ(list.items().size(), 1U);
    EXPECT_EQ(list.path(list.items()[0].path).points.size(), 24U);
}

TEST(SolidEdges, ARoundFaceWithoutEdgesShowsCircles)
{
    for (const BodyForm form : kBodyForms) {
        const gs::SpacePath sphere =
            edgesOf(bodyOf(form, {"body $-1 $-1", "face $-1 i:-1 $-1 $-1 $-1 $-1 $2 forward",
                                  "sphere-surface $-1 i:-1 $-1 1,2,3 5 1,0,0 0,0,1 I I I I I"}));
        ASSERT_EQ(countOf(sphere, Verb::Close), 3U) << int(form);
        for (std::size_t i = 0; i < sphere.points().size(); i += 13) // where each circle begins
            EXPECT_NEAR(sphere.points()[i].distanceTo({1, 2, 3}), 5, 1e-9);

        const gs::SpacePath ring =
            edgesOf(bodyOf(form, {"body $-1 $-1", "face $-1 i:-1 $-1 $-1 $-1 $-1 $2 forward",
                                  "torus-surface $-1 i:-1 $-1 0,0,0 0,0,1 5 1 1,0,0 I I I I"}));
        ASSERT_EQ(countOf(ring, Verb::Close), 8U) << int(form);
        expectPoint(ring.points()[0], 6, 0, 0);
    }
}

namespace {

/// A face on that surface, with two round ends; the second as it is told.
gs::SpacePath pipe(BodyForm form, const std::string& surface, const std::string& firstEnd,
                   const std::string& firstCorner, const std::string& secondEnd,
                   const std::string& secondCorner)
{
    return edgesOf(bodyOf(form, {"body $-1 $-1", "face $-1 i:-1 $-1 $-1 $3 $-1 $2 forward", surface,
                                 "loop $-1 i:-1 $-1 $4 $5 $1", "loop $-1 i:-1 $-1 $-1 $6 $1",
                                 "coedge $-1 i:-1 $-1 $5 $5 $-1 $7 forward $3",
                                 "coedge $-1 i:-1 $-1 $6 $6 $-1 $8 "
                                 "forward $4",
                                 "edge $-1 i:-1 $-1 $9 0 $9 6.28 $5 $11 forward",
                                 "edge $-1 i:-1 $-1 $10 0 $10 6.28 "
                                 "$6 $12 forward",
                                 "vertex $-1 i:-1 $-1 $7 $13", "vertex $-1 i:-1 $-1 $8 $14",
                                 firstEnd, secondEnd, "point $-1 i:-1 $-1 " + firstCorner,
                                 "point $-1 i:-1 $-1 " + secondCorner}));
}

} // namespace

TEST(SolidEdges, APipeShowsLinesFromEndToEnd)
{
    const std::string pipeOf2 = "cone-surface $-1 i:-1 $-1 0,0,0 0,0,1 2,0,0 1 I I 0 1 forward I";
    const std::string low = "ellipse-curve $-1 i:-1 $-1 0,0,0 0,0,1 2,0,0 1 I I";
    for (const BodyForm form : kBodyForms) {
        const gs::SpacePath straight =
            pipe(form, pipeOf2, low, "2,0,0", "ellipse-curve $-1 i:-1 $-1 0,0,9 0,0,-1 0,2,0 1 I I",
                 "0,2,9");
        ASSERT_EQ(countOf(straight, Verb::Line), 4U) << int(form);
        expectPoint(straight.points()[0], 2, 0, 0);
        expectPoint(straight.points()[1], 2, 0, 9);

        const gs::SpacePath slanted =
            pipe(form, pipeOf2, low, "2,0,0",
                 "ellipse-curve $-1 i:-1 $-1 0,0,9 0.70710678118654752,0,-0.70710678118654752 "
                 "2,0,2 0.70710678118654752 I I",
                 "2,0,11");
        ASSERT_EQ(countOf(slanted, Verb::Line), 4U) << int(form);
        expectPoint(slanted.points()[1], 2, 0, 11);

        const gs::SpacePath cone =
            pipe(form, "cone-surface $-1 i:-1 $-1 0,0,0 0,0,1 2,0,0 1 I I -0.6 0.8 forward I", low,
                 "2,0,0", "null-curve $-1", "0,0,5");
        ASSERT_EQ(countOf(cone, Verb::Line), 4U) << int(form);
        expectPoint(cone.points()[1], 0, 0, 5);
    }
}

TEST(SolidEdges, ABentPipeShowsBowsTheShorterWay)
{
    for (const BodyForm form : kBodyForms) {
        const gs::SpacePath bend =
            pipe(form, "torus-surface $-1 i:-1 $-1 0,0,0 0,0,1 5 1 1,0,0 I I I I",
                 "ellipse-curve $-1 i:-1 $-1 5,0,0 0,1,0 1,0,0 1 I I", "6,0,0",
                 "ellipse-curve $-1 i:-1 $-1 0,-5,0 1,0,0 0,1,0 1 I I", "0,-4,0");
        EXPECT_EQ(countOf(bend, Verb::Close), 2U) << int(form); // its ends
        ASSERT_EQ(countOf(bend, Verb::Curve), 4U + 2 * 4U) << int(form);
        expectPoint(bend.points()[0], 6, 0, 0);
        expectPoint(bend.points()[3], 0, -6, 0);

        const std::string r = "3.5355339059327378", x = "0.70710678118654752";
        const gs::SpacePath left = pipe(
            form, "torus-surface $-1 i:-1 $-1 0,0,0 0,0,1 5 1 1,0,0 I I I I",
            "ellipse-curve $-1 i:-1 $-1 -" + r + ',' + r + ",0 -" + x + ",-" + x + ",0 0,0,1 1",
            '-' + r + ',' + r + ",1",
            "ellipse-curve $-1 i:-1 $-1 -" + r + ",-" + r + ",0 " + x + ",-" + x + ",0 0,0,1 1",
            '-' + r + ",-" + r + ",1");
        expectPoint(left.points()[0], -6 * std::sqrt(0.5), 6 * std::sqrt(0.5), 0);
        expectPoint(left.points()[3], -6 * std::sqrt(0.5), -6 * std::sqrt(0.5), 0);
    }
}

TEST(SolidEdges, AreDrawnOfABodyThatStandsBesideItsObject)
{
    dwg::install();
    for (const db::Version version : {db::Version::Ac1027, db::Version::Ac1032}) {
        const DrawingWithBody drawing(version, bodyOf(BodyForm::Binary4, cubeRecords()));
        TvDbDatabase database(false, true);
        ASSERT_EQ(database.readDwgBytes(drawing.bytes), TvStatus::Ok);
        const gs::DisplayList list = gs::DisplayList::ofModel(database);
        ASSERT_EQ(list.items().size(), 3U); // and two lines
        EXPECT_EQ(list.items()[2].handle, drawing.solid);
        EXPECT_EQ(list.path(list.items()[2].path).points.size(), 24U);
    }
}
