#include "object_factory.h"

#include <string_view>
#include <unordered_map>

#include <db/tv_db_annotations.h>
#include <db/tv_db_block_begin.h>
#include <db/tv_db_block_reference.h>
#include <db/tv_db_curves.h>
#include <db/tv_db_data_link.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_entity.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_object_context.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_text.h>
#include <db/tv_db_viewport.h>
#include <db/tv_db_xrecord.h>

namespace db {

namespace {

/// Objects without a class of their own are opened as what they are at least.
template <class Base>
class Plain : public Base
{
public:
    Plain() = default;
};

template <class T>
ObjectType typeFor()
{
    return {T::desc(), [] { return std::unique_ptr<TvDbObject>(new T); }};
}

template <class T>
ObjectType plainType()
{
    return {T::desc(), [] { return std::unique_ptr<TvDbObject>(new Plain<T>); }};
}

struct Row {
    std::string_view className; // in drawings
    ObjectType (*type)();
};

constexpr Row kTypes[] = {
    {"DICTIONARY", typeFor<TvDbDictionary>},
    {"ACDBDICTIONARYWDFLT", typeFor<TvDbDictionaryWithDefault>},
    {"DICTIONARYWDFLT", typeFor<TvDbDictionaryWithDefault>},
    {"XRECORD", typeFor<TvDbXrecord>},
    {"SCALE", typeFor<TvDbScale>},
    {"DATALINK", typeFor<TvDbDataLink>},
    {"BLOCK_CONTROL", typeFor<TvDbBlockTable>},
    {"LAYER_CONTROL", typeFor<TvDbLayerTable>},
    {"STYLE_CONTROL", typeFor<TvDbTextStyleTable>},
    {"LTYPE_CONTROL", typeFor<TvDbLinetypeTable>},
    {"VIEW_CONTROL", typeFor<TvDbViewTable>},
    {"UCS_CONTROL", typeFor<TvDbUCSTable>},
    {"VPORT_CONTROL", typeFor<TvDbViewportTable>},
    {"APPID_CONTROL", typeFor<TvDbRegAppTable>},
    {"DIMSTYLE_CONTROL", typeFor<TvDbDimStyleTable>},
    {"BLOCK_HEADER", typeFor<TvDbBlockTableRecord>},
    {"LAYER", typeFor<TvDbLayerTableRecord>},
    {"STYLE", typeFor<TvDbTextStyleTableRecord>},
    {"LTYPE", typeFor<TvDbLinetypeTableRecord>},
    {"VIEW", typeFor<TvDbViewTableRecord>},
    {"UCS", typeFor<TvDbUCSTableRecord>},
    {"VPORT", typeFor<TvDbViewportTableRecord>},
    {"APPID", typeFor<TvDbRegAppTableRecord>},
    {"DIMSTYLE", typeFor<TvDbDimStyleTableRecord>},
    {"PLOTSETTINGS", typeFor<TvDbPlotSettings>},
    {"LAYOUT", typeFor<TvDbLayout>},
    {"BLOCK", typeFor<TvDbBlockBegin>},
    {"ENDBLK", typeFor<TvDbBlockEnd>},
    {"SEQEND", typeFor<TvDbSequenceEnd>},
    {"INSERT", typeFor<TvDbBlockReference>},
    {"MINSERT", typeFor<TvDbMInsertBlock>},
    {"TEXT", typeFor<TvDbText>},
    {"ATTDEF", typeFor<TvDbAttributeDefinition>},
    {"ATTRIB", typeFor<TvDbAttribute>},
    {"MTEXT", typeFor<TvDbMText>},
    {"VIEWPORT", typeFor<TvDbViewport>},
    {"LINE", typeFor<TvDbLine>},
    {"XLINE", typeFor<TvDbXline>},
    {"RAY", typeFor<TvDbRay>},
    {"CIRCLE", typeFor<TvDbCircle>},
    {"ARC", typeFor<TvDbArc>},
    {"ELLIPSE", typeFor<TvDbEllipse>},
    {"POINT", typeFor<TvDbPoint>},
    {"SPLINE", typeFor<TvDbSpline>},
    {"HELIX", typeFor<TvDbHelix>},
    {"LWPOLYLINE", typeFor<TvDbPolyline>},
    {"POLYLINE_2D", typeFor<TvDb2dPolyline>},
    {"POLYLINE_3D", typeFor<TvDb3dPolyline>},
    {"POLYLINE_PFACE", typeFor<TvDbPolyFaceMesh>},
    {"POLYLINE_MESH", typeFor<TvDbPolygonMesh>},
    {"VERTEX_2D", typeFor<TvDb2dVertex>},
    {"VERTEX_3D", typeFor<TvDb3dPolylineVertex>},
    {"VERTEX_MESH", typeFor<TvDbPolygonMeshVertex>},
    {"VERTEX_PFACE", typeFor<TvDbPolyFaceMeshVertex>},
    {"VERTEX_PFACE_FACE", typeFor<TvDbFaceRecord>},
    {"SOLID", typeFor<TvDbSolid>},
    {"TRACE", typeFor<TvDbTrace>},
    {"3DFACE", typeFor<TvDbFace>},
    {"DIMENSION_LINEAR", typeFor<TvDbRotatedDimension>},
    {"DIMENSION_ALIGNED", typeFor<TvDbAlignedDimension>},
    {"DIMENSION_ANG3PT", typeFor<TvDb3PointAngularDimension>},
    {"DIMENSION_ANG2LN", typeFor<TvDb2LineAngularDimension>},
    {"DIMENSION_RADIUS", typeFor<TvDbRadialDimension>},
    {"DIMENSION_DIAMETER", typeFor<TvDbDiametricDimension>},
    {"DIMENSION_ORDINATE", typeFor<TvDbOrdinateDimension>},
    {"ARC_DIMENSION", typeFor<TvDbArcDimension>},
    {"LARGE_RADIAL_DIMENSION", typeFor<TvDbRadialDimensionLarge>},
    {"LEADER", typeFor<TvDbLeader>},
    {"MULTILEADER", typeFor<TvDbMLeader>},
    {"TOLERANCE", typeFor<TvDbFcf>},
    {"HATCH", typeFor<TvDbHatch>},
    {"IMAGE", typeFor<TvDbRasterImage>},
    {"WIPEOUT", typeFor<TvDbWipeout>},
    {"IMAGEDEF", typeFor<TvDbRasterImageDef>},
    {"PDFUNDERLAY", typeFor<TvDbUnderlayReference>},
    {"DWFUNDERLAY", typeFor<TvDbUnderlayReference>},
    {"DGNUNDERLAY", typeFor<TvDbUnderlayReference>},
    {"PDFDEFINITION", typeFor<TvDbUnderlayDefinition>},
    {"DWFDEFINITION", typeFor<TvDbUnderlayDefinition>},
    {"DGNDEFINITION", typeFor<TvDbUnderlayDefinition>},
};

} // namespace

ObjectType objectTypeOf(const ClassDef* classDef, bool isEntity)
{
    static const auto types = [] {
        std::unordered_map<const ClassDef*, ObjectType> made;
        for (const Row& row : kTypes)
            if (const ClassDef* known = classNamed(row.className))
                made.emplace(known, row.type());
        return made;
    }();
    const auto at = types.find(classDef);
    if (at != types.end())
        return at->second;
    return isEntity ? plainType<TvDbEntity>() : plainType<TvDbObject>();
}

} // namespace db
