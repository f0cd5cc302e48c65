#include "known_classes.h"

#include <algorithm>

namespace dxf {

namespace {

struct KnownClass {
    const char* dxfName;
    const char* cppName;
    const char* application;
    std::uint32_t flags;
    bool isEntity;
};

constexpr const char* kObjects = "ObjectDBX Classes";
constexpr const char* kScene = "SCENEOE";
constexpr const char* kImages = "ISM";

// clang-format off
constexpr KnownClass kClasses[] = {
    {"ACDBDICTIONARYWDFLT", "AcDbDictionaryWithDefault", kObjects, 0, false},
    {"ACDBPLACEHOLDER", "AcDbPlaceHolder", kObjects, 0, false},
    {"LAYOUT", "AcDbLayout", kObjects, 0, false},
    {"PLOTSETTINGS", "AcDbPlotSettings", kObjects, 0, false},
    {"DICTIONARYVAR", "AcDbDictionaryVar", kObjects, 0, false},
    {"TABLESTYLE", "AcDbTableStyle", kObjects, 4095, false},
    {"CELLSTYLEMAP", "AcDbCellStyleMap", kObjects, 1152, false},
    {"ACAD_TABLE", "AcDbTable", kObjects, 1025, true},
    {"TABLECONTENT", "AcDbTableContent", kObjects, 1152, false},
    {"TABLEGEOMETRY", "AcDbTableGeometry", kObjects, 1152, false},
    {"SCALE", "AcDbScale", kObjects, 1153, false},
    {"FIELD", "AcDbField", kObjects, 1152, false},
    {"FIELDLIST", "AcDbFieldList", kObjects, 1152, false},
    {"DATALINK", "AcDbDataLink", kObjects, 1152, false},
    {"MATERIAL", "AcDbMaterial", kObjects, 1153, false},
    {"VISUALSTYLE", "AcDbVisualStyle", kObjects, 4095, false},
    {"MLEADERSTYLE", "AcDbMLeaderStyle", "ACDB_MLEADERSTYLE_CLASS", 4095, false},
    {"MULTILEADER", "AcDbMLeader", "ACDB_MLEADER_CLASS", 1025, true},
    {"SORTENTSTABLE", "AcDbSortentsTable", kObjects, 0, false},
    {"SPATIAL_FILTER", "AcDbSpatialFilter", kObjects, 0, false},
    {"IDBUFFER", "AcDbIdBuffer", kObjects, 0, false},
    {"LAYER_INDEX", "AcDbLayerIndex", kObjects, 0, false},
    {"IMAGE", "AcDbRasterImage", kImages, 2175, true},
    {"IMAGEDEF", "AcDbRasterImageDef", kImages, 0, false},
    {"IMAGEDEF_REACTOR", "AcDbRasterImageDefReactor", kImages, 1, false},
    {"RASTERVARIABLES", "AcDbRasterVariables", kImages, 0, false},
    {"WIPEOUT", "AcDbWipeout", "WipeOut", 2175, true},
    {"WIPEOUTVARIABLES", "AcDbWipeoutVariables", "WipeOut", 0, false},
    {"PDFDEFINITION", "AcDbPdfDefinition", kObjects, 1153, false},
    {"PDFUNDERLAY", "AcDbPdfReference", kObjects, 4095, true},
    {"DWFDEFINITION", "AcDbDwfDefinition", kObjects, 1153, false},
    {"DWFUNDERLAY", "AcDbDwfReference", kObjects, 1153, true},
    {"DGNDEFINITION", "AcDbDgnDefinition", kObjects, 1153, false},
    {"DGNUNDERLAY", "AcDbDgnReference", kObjects, 1153, true},
    {"DBCOLOR", "AcDbColor", kObjects, 0, false},
    {"DIMASSOC", "AcDbDimAssoc", "AcDbDimAssoc", 0, false},
    {"SUN", "AcDbSun", kScene, 1153, false},
    {"LIGHT", "AcDbLight", kScene, 1025, true},
    {"MESH", "AcDbSubDMesh", kObjects, 0, true},
    {"HELIX", "AcDbHelix", kObjects, 4095, true},
    {"ARC_DIMENSION", "AcDbArcDimension", kObjects, 1025, true},
    {"LARGE_RADIAL_DIMENSION", "AcDbRadialDimensionLarge", kObjects, 1025, true},
    {"ACDBDETAILVIEWSTYLE", "AcDbDetailViewStyle", kObjects, 1025, false},
    {"ACDBSECTIONVIEWSTYLE", "AcDbSectionViewStyle", kObjects, 1025, false},
};
// clang-format on

} // namespace

void addKnownClasses(std::vector<db::ClassEntry>& entries,
                     const std::map<std::string, std::uint32_t>& counts)
{
    for (const KnownClass& known : kClasses) {
        const bool isListed =
            std::any_of(entries.begin(), entries.end(), [&](const db::ClassEntry& entry) {
                return entry.dxfName == known.dxfName;
            });
        if (isListed || !counts.contains(known.dxfName))
            continue;
        db::ClassEntry entry;
        entry.dxfName = known.dxfName;
        entry.cppName = known.cppName;
        entry.application = known.application;
        entry.proxyFlags = known.flags;
        entry.isEntity = known.isEntity;
        entries.push_back(std::move(entry));
    }
}

} // namespace dxf
