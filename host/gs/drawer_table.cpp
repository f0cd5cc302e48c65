#include <unordered_map>

#include "drawers.h"

namespace gs {

Drawer drawerFor(std::string_view className)
{
    // By the names of the classes in drawings.
    static const std::unordered_map<std::string_view, Drawer> kDrawers = {
        {"LINE", draw::line},
        {"CIRCLE", draw::circle},
        {"ARC", draw::arc},
        {"ELLIPSE", draw::ellipse},
        {"XLINE", draw::xline},
        {"RAY", draw::ray},
        {"POINT", draw::point},
        {"LWPOLYLINE", draw::polyline},
        {"POLYLINE_2D", draw::polyline2d},
        {"POLYLINE_3D", draw::polyline3d},
        {"POLYLINE_MESH", draw::polygonMesh},
        {"POLYLINE_PFACE", draw::polyFaceMesh},
        {"MESH", draw::subdivisionMesh},
        {"SOLID", draw::solid},
        {"TRACE", draw::solid},
        {"3DFACE", draw::face},
        {"REGION", draw::modelerWires},
        {"3DSOLID", draw::modelerWires},
        {"BODY", draw::modelerWires},
        // Surfaces, of which but the body is known.
        {"RAW_ENTITY", draw::modelerWires},
        {"INSERT", draw::insert},
        {"MINSERT", draw::insertArray},
        {"ACAD_TABLE", draw::table},
        {"DIMENSION_LINEAR", draw::dimension},
        {"DIMENSION_ALIGNED", draw::dimension},
        {"DIMENSION_ANG3PT", draw::dimension},
        {"DIMENSION_ANG2LN", draw::dimension},
        {"DIMENSION_RADIUS", draw::dimension},
        {"DIMENSION_DIAMETER", draw::dimension},
        {"DIMENSION_ORDINATE", draw::dimension},
        {"ARC_DIMENSION", draw::dimension},
        {"LARGE_RADIAL_DIMENSION", draw::dimension},
        {"VIEWPORT", draw::viewport},
        {"TEXT", draw::text},
        {"ATTRIB", draw::attribute},
        {"ATTDEF", draw::attributeDefinition},
        {"MTEXT", draw::mtext},
        {"TOLERANCE", draw::tolerance},
        {"HATCH", draw::hatch},
        {"SPLINE", draw::spline},
        {"HELIX", draw::spline},
        {"LEADER", draw::leader},
        {"MULTILEADER", draw::multileader},
        {"MLINE", draw::mline},
        {"SHAPE", draw::shape},
        {"OLE2FRAME", draw::oleFrame},
        {"SECTIONOBJECT", draw::sectionLine},
        {"LIGHT", draw::light},
        {"IMAGE", draw::image},
        {"WIPEOUT", draw::wipeout},
        {"PDFUNDERLAY", draw::underlay},
        {"DWFUNDERLAY", draw::underlay},
        {"DGNUNDERLAY", draw::underlay},
    };
    const auto at = kDrawers.find(className);
    return at == kDrawers.end() ? nullptr : at->second;
}

} // namespace gs
