#pragma once

#include <optional>

#include <db/tv_db_entity.h>

/// A line or bow. Those that name a normal are flat, and have their points in its coordinates.
class TvDbCurve : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbCurve)

protected:
    explicit TvDbCurve(const char* className) : TvDbEntity(className) {}
};

class TvDbLine : public TvDbCurve
{
    TVRX_DECLARE_MEMBERS(TvDbLine)

    TvDbLine() : TvDbCurve("LINE") {}
    TvDbLine(const TvGePoint3d& start, const TvGePoint3d& end);
    TvGePoint3d startPoint() const { return db::asPoint(fields().point("start")); }
    TvGePoint3d endPoint() const { return db::asPoint(fields().point("end")); }
    TvStatusCode setStartPoint(const TvGePoint3d& point) { return setEnds(point, endPoint()); }
    TvStatusCode setEndPoint(const TvGePoint3d& point) { return setEnds(startPoint(), point); }
    TVDB_REAL(thickness, setThickness, "thickness")
    TVDB_VECTOR(normal, setNormal, "normal")
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;

private:
    TvStatusCode setEnds(const TvGePoint3d& start, const TvGePoint3d& end);
};

/// A line without ends, or with one.
class TvDbXline : public TvDbCurve
{
    TVRX_DECLARE_MEMBERS(TvDbXline)

    TvDbXline() : TvDbXline("XLINE") {}
    TVDB_POINT(basePoint, setBasePoint, "point")
    TVDB_VECTOR(unitDir, setUnitDir, "direction")

protected:
    explicit TvDbXline(const char* className) : TvDbCurve(className) {}
};

class TvDbRay : public TvDbXline
{
    TVRX_DECLARE_MEMBERS(TvDbRay)
    TvDbRay() : TvDbXline("RAY") {}
};

class TvDbCircle : public TvDbCurve
{
    TVRX_DECLARE_MEMBERS(TvDbCircle)

    TvDbCircle() : TvDbCurve("CIRCLE") {}
    TVDB_POINT(center, setCenter, "center") ///< in object coordinates
    TVDB_REAL(radius, setRadius, "radius")
    TVDB_REAL(thickness, setThickness, "thickness")
    TVDB_VECTOR(normal, setNormal, "normal")
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;
};

/// Part of a circle, counter-clockwise from its start angle to its end angle.
class TvDbArc : public TvDbCurve
{
    TVRX_DECLARE_MEMBERS(TvDbArc)

    TvDbArc() : TvDbCurve("ARC") {}
    TVDB_POINT(center, setCenter, "center") ///< in object coordinates
    TVDB_REAL(radius, setRadius, "radius")
    TVDB_REAL(startAngle, setStartAngle, "start")
    TVDB_REAL(endAngle, setEndAngle, "end")
    TVDB_REAL(thickness, setThickness, "thickness")
    TVDB_VECTOR(normal, setNormal, "normal")
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;
};

/// An ellipse or part of one; its angles are parameters: center + major cos(t) + minor sin(t).
class TvDbEllipse : public TvDbCurve
{
    TVRX_DECLARE_MEMBERS(TvDbEllipse)

    TvDbEllipse() : TvDbCurve("ELLIPSE") {}
    TVDB_POINT(center, setCenter, "center")
    TVDB_VECTOR(majorAxis, setMajorAxis, "major")
    TVDB_REAL(radiusRatio, setRadiusRatio, "ratio")
    TVDB_REAL(startParam, setStartParam, "start")
    TVDB_REAL(endParam, setEndParam, "end")
    TVDB_VECTOR(normal, setNormal, "normal")
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;
};

class TvDbPoint : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbPoint)

    TvDbPoint() : TvDbEntity("POINT") {}
    TVDB_POINT(position, setPosition, "point")
    TVDB_REAL(thickness, setThickness, "thickness")
    TVDB_VECTOR(normal, setNormal, "normal")
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;
};

/// A free curve, by control points and knots, or by the points that it goes through.
class TvDbSpline : public TvDbCurve
{
    TVRX_DECLARE_MEMBERS(TvDbSpline)

    TvDbSpline() : TvDbSpline("SPLINE") {}
    int degree() const { return static_cast<int>(fields().integer("degree")); }
    bool isClosed() const { return fields().flag("closed"); }
    bool isPeriodic() const { return fields().flag("periodic"); }
    /// Only fit points are known.
    bool hasOnlyFitPoints() const { return controlPoints().empty(); }
    std::vector<double> knots() const;
    std::vector<TvGePoint3d> controlPoints() const;
    /// As many as control points; empty when all are 1.
    std::vector<double> weights() const;
    std::vector<TvGePoint3d> fitPoints() const;
    /// Zero where the curve is to find its own.
    TvGeVector3d startTangent() const { return db::asVector(fields().point("start_tan")); }
    TvGeVector3d endTangent() const { return db::asVector(fields().point("end_tan")); }
    /// The box of the control points, in which the curve lies; of fit points only, theirs.
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;

protected:
    explicit TvDbSpline(const char* className) : TvDbCurve(className) {}
};

class TvDbHelix : public TvDbSpline
{
    TVRX_DECLARE_MEMBERS(TvDbHelix)
    TvDbHelix() : TvDbSpline("HELIX") {}
};

/// A chain of lines and arcs in a plane; points are in object coordinates, at its elevation.
class TvDbPolyline : public TvDbCurve
{
    TVRX_DECLARE_MEMBERS(TvDbPolyline)

    TvDbPolyline() : TvDbCurve("LWPOLYLINE") {}
    int numVerts() const { return static_cast<int>(fields().array("points").size()); }
    TvGePoint2d pointAt(int index) const; ///< (0,0) out of range, as 0 below
    /// Of the segment that begins there: see ge::bulgeArc().
    double bulgeAt(int index) const;
    double startWidthAt(int index) const;
    double endWidthAt(int index) const;
    /// OutOfRange below 0 and above numVerts().
    TvStatusCode addVertexAt(int index, const TvGePoint2d& point, double bulge = 0,
                             double startWidth = 0, double endWidth = 0);
    TvStatusCode removeVertexAt(int index);
    bool isClosed() const;
    TvStatusCode setClosed(bool closed);
    /// The pattern of its linetype runs through, instead of beginning anew at each vertex.
    bool hasPlinegen() const;
    TVDB_REAL(constantWidth, setConstantWidth, "const_width")
    TVDB_REAL(elevation, setElevation, "elevation")
    TVDB_REAL(thickness, setThickness, "thickness")
    TvGeVector3d normal() const;
    TvStatusCode setNormal(const TvGeVector3d& normal);
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;
};

/// A corner of one of the polylines below.
class TvDbVertex : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbVertex)

    TvGePoint3d position() const { return db::asPoint(fields().point("point")); }
    /// It only shapes the curve, which does not go through it.
    bool isControlPoint() const { return (fields().integer("flags") & 16) != 0; }
    double bulge() const { return fields().real("bulge"); } ///< flat polylines have them
    double startWidth() const;
    double endWidth() const;

protected:
    explicit TvDbVertex(const char* className) : TvDbEntity(className) {}
};

#define TVDB_VERTEX(Class, dxfName)                                                                \
    class Class : public TvDbVertex                                                                \
    {                                                                                              \
        TVRX_DECLARE_MEMBERS(Class)                                                                \
        Class() : TvDbVertex(dxfName) {}                                                           \
    };

TVDB_VERTEX(TvDb2dVertex, "VERTEX_2D")
TVDB_VERTEX(TvDb3dPolylineVertex, "VERTEX_3D")
TVDB_VERTEX(TvDbPolygonMeshVertex, "VERTEX_MESH")
TVDB_VERTEX(TvDbPolyFaceMeshVertex, "VERTEX_PFACE")
/// A face: up to four corners by number, from 1 on; negative: the edge that begins there is hidden.
TVDB_VERTEX(TvDbFaceRecord, "VERTEX_PFACE_FACE")

/// A chain, or mesh, whose corners are objects of their own.
class TvDbVertexOwner : public TvDbCurve
{
    TVRX_DECLARE_MEMBERS(TvDbVertexOwner)

    /// Those that are not erased, in order.
    std::vector<TvDbObjectId> vertexIds() const;
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;

protected:
    explicit TvDbVertexOwner(const char* className) : TvDbCurve(className) {}
};

/// Flat: vertices are in object coordinates, at its elevation.
class TvDb2dPolyline : public TvDbVertexOwner
{
    TVRX_DECLARE_MEMBERS(TvDb2dPolyline)

    TvDb2dPolyline() : TvDbVertexOwner("POLYLINE_2D") {}
    bool isClosed() const { return (fields().integer("flags") & 1) != 0; }
    TVDB_REAL(elevation, setElevation, "elevation")
    TVDB_REAL(thickness, setThickness, "thickness")
    TVDB_REAL(defaultStartWidth, setDefaultStartWidth, "start_width")
    TVDB_REAL(defaultEndWidth, setDefaultEndWidth, "end_width")
    TVDB_VECTOR(normal, setNormal, "normal")
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;
};

class TvDb3dPolyline : public TvDbVertexOwner
{
    TVRX_DECLARE_MEMBERS(TvDb3dPolyline)

    TvDb3dPolyline() : TvDbVertexOwner("POLYLINE_3D") {}
    bool isClosed() const { return (fields().integer("closed_flags") & 1) != 0; }
};

class TvDbPolyFaceMesh : public TvDbVertexOwner
{
    TVRX_DECLARE_MEMBERS(TvDbPolyFaceMesh)
    TvDbPolyFaceMesh() : TvDbVertexOwner("POLYLINE_PFACE") {}
};

class TvDbPolygonMesh : public TvDbVertexOwner
{
    TVRX_DECLARE_MEMBERS(TvDbPolygonMesh)

    TvDbPolygonMesh() : TvDbVertexOwner("POLYLINE_MESH") {}
    int mSize() const { return static_cast<int>(fields().integer("m_count")); }
    int nSize() const { return static_cast<int>(fields().integer("n_count")); }
    bool isMClosed() const { return (fields().integer("flags") & 1) != 0; }
    bool isNClosed() const { return (fields().integer("flags") & 32) != 0; }
};

/// A filled triangle or quadrangle; corners are in object coordinates, the third and fourth
/// crosswise.
class TvDbSolid : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbSolid)

    TvDbSolid() : TvDbSolid("SOLID") {}
    TvGePoint3d pointAt(int index) const; ///< 0 to 3
    TVDB_REAL(thickness, setThickness, "thickness")
    TVDB_VECTOR(normal, setNormal, "normal")
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;

protected:
    explicit TvDbSolid(const char* className) : TvDbEntity(className) {}
};

class TvDbTrace : public TvDbSolid
{
    TVRX_DECLARE_MEMBERS(TvDbTrace)
    TvDbTrace() : TvDbSolid("TRACE") {}
};

/// A triangle or quadrangle in space.
class TvDbFace : public TvDbEntity
{
    TVRX_DECLARE_MEMBERS(TvDbFace)

    TvDbFace() : TvDbEntity("3DFACE") {}
    TvGePoint3d vertexAt(int index) const; ///< 0 to 3
    bool isEdgeVisibleAt(int index) const;
    TvStatusCode getGeomExtents(TvDbExtents& out) const override;
};
