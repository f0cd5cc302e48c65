#include "known_classes.h"

#include <algorithm>
#include <iterator>

namespace dwg {

namespace {

constexpr std::string_view kCommon = "ObjectDBX Classes";
constexpr std::string_view kLeaders = "ACDB_MLEADER_CLASS";
constexpr std::string_view kLeaderStyles = "ACDB_MLEADERSTYLE_CLASS";
constexpr std::string_view kImages = "ISM";
constexpr std::string_view kWipeouts = "WipeOut";
constexpr std::string_view kScenes = "SCENEOE";
constexpr std::string_view kAssociations = "AcDbDimAssoc";

struct KnownClass {
    std::string_view dxfName, cppName, application;
    std::uint16_t proxyFlags;
    bool isEntity;
    std::uint16_t version, maintenance; // of the format that brought it
};

// clang-format off
constexpr KnownClass kClasses[] = {
    {"ACDBDICTIONARYWDFLT", "AcDbDictionaryWithDefault", kCommon, 0, false, 22, 42},
    {"ACDBPLACEHOLDER", "AcDbPlaceHolder", kCommon, 0, false, 22, 42},
    {"LAYOUT", "AcDbLayout", kCommon, 0, false, 22, 42},
    {"PLOTSETTINGS", "AcDbPlotSettings", kCommon, 0, false, 22, 42},
    {"DICTIONARYVAR", "AcDbDictionaryVar", kCommon, 0, false, 20, 0},
    {"TABLESTYLE", "AcDbTableStyle", kCommon, 0xFFF, false, 25, 20},
    {"CELLSTYLEMAP", "AcDbCellStyleMap", kCommon, 0x480, false, 27, 1},
    {"ACAD_TABLE", "AcDbTable", kCommon, 0x401, true, 25, 20},
    {"TABLECONTENT", "AcDbTableContent", kCommon, 0x480, false, 25, 21},
    {"TABLEGEOMETRY", "AcDbTableGeometry", kCommon, 0x480, false, 27, 1},
    {"SCALE", "AcDbScale", kCommon, 0x481, false, 27, 1},
    {"FIELD", "AcDbField", kCommon, 0x480, false, 25, 0},
    {"FIELDLIST", "AcDbFieldList", kCommon, 0x480, false, 25, 0},
    {"DATALINK", "AcDbDataLink", kCommon, 0x480, false, 25, 0},
    {"DATATABLE", "AcDbDataTable", kCommon, 0, false, 23, 14},
    {"MATERIAL", "AcDbMaterial", kCommon, 0x481, false, 23, 14},
    {"VISUALSTYLE", "AcDbVisualStyle", kCommon, 0xFFF, false, 26, 0},
    {"MLEADERSTYLE", "AcDbMLeaderStyle", kLeaderStyles, 0xFFF, false, 33, 29},
    {"MULTILEADER", "AcDbMLeader", kLeaders, 0x401, true, 33, 29},
    {"SORTENTSTABLE", "AcDbSortentsTable", kCommon, 0, false, 20, 0},
    {"SPATIAL_FILTER", "AcDbSpatialFilter", kCommon, 0, false, 20, 0},
    {"IDBUFFER", "AcDbIdBuffer", kCommon, 0, false, 20, 0},
    {"LAYER_INDEX", "AcDbLayerIndex", kCommon, 0, false, 20, 0},
    {"SPATIAL_INDEX", "AcDbSpatialIndex", kCommon, 0, false, 20, 0},
    {"IMAGE", "AcDbRasterImage", kImages, 0x87F, true, 20, 0},
    {"IMAGEDEF", "AcDbRasterImageDef", kImages, 0, false, 20, 0},
    {"IMAGEDEF_REACTOR", "AcDbRasterImageDefReactor", kImages, 1, false, 20, 0},
    {"RASTERVARIABLES", "AcDbRasterVariables", kImages, 0, false, 20, 0},
    {"WIPEOUT", "AcDbWipeout", kWipeouts, 0x87F, true, 33, 29},
    {"WIPEOUTVARIABLES", "AcDbWipeoutVariables", kWipeouts, 0, false, 25, 0},
    {"PDFDEFINITION", "AcDbPdfDefinition", kCommon, 0x481, false, 26, 0},
    {"PDFUNDERLAY", "AcDbPdfReference", kCommon, 0xFFF, true, 26, 0},
    {"DBCOLOR", "AcDbColor", kCommon, 0, false, 23, 14},
    {"DIMASSOC", "AcDbDimAssoc", kAssociations, 0, false, 23, 12},
    {"SUN", "AcDbSun", kScenes, 0x481, false, 33, 29},
    {"LIGHT", "AcDbLight", kScenes, 0x401, true, 33, 29},
    {"MESH", "AcDbSubDMesh", kCommon, 0, true, 29, 0},
    {"HELIX", "AcDbHelix", kCommon, 0xFFF, true, 26, 0},
    {"ARC_DIMENSION", "AcDbArcDimension", kCommon, 0x401, true, 25, 20},
    {"ACDB_TEXTOBJECTCONTEXTDATA_CLASS", "AcDbTextObjectContextData", kCommon, 0x481, false, 27, 0},
    {"ACDB_MTEXTOBJECTCONTEXTDATA_CLASS", "AcDbMTextObjectContextData", kCommon, 0x481, false, 27, 0},
    {"ACDB_BLKREFOBJECTCONTEXTDATA_CLASS", "AcDbBlkrefObjectContextData", kCommon, 0x481, false, 27, 0},
    {"ACDB_LEADEROBJECTCONTEXTDATA_CLASS", "AcDbLeaderObjectContextData", kCommon, 0x481, false, 27, 0},
    {"ACDB_ALDIMOBJECTCONTEXTDATA_CLASS", "AcDbAlignedDimensionObjectContextData", kCommon, 0x400, false, 27, 50},
    {"ACDB_BLOCKREPRESENTATION_DATA", "AcDbBlockRepresentationData", kCommon, 0x481, false, 25, 58},
    {"ACDB_DYNAMICBLOCKPURGEPREVENTER_VERSION", "AcDbDynamicBlockPurgePreventer", kCommon, 0x481, false, 25, 61},
    {"ACDBDETAILVIEWSTYLE", "AcDbDetailViewStyle", kCommon, 0x401, false, 33, 29},
    {"ACDBSECTIONVIEWSTYLE", "AcDbSectionViewStyle", kCommon, 0x401, false, 33, 29},
    {"ACAD_EVALUATION_GRAPH", "AcDbEvalGraph", kCommon, 0x481, false, 25, 55},
};
// clang-format on

} // namespace

std::optional<ClassRecord> knownClass(Version version, std::string_view dxfName)
{
    const auto* const found = std::find_if(std::begin(kClasses), std::end(kClasses),
                                           [&](const auto& c) { return c.dxfName == dxfName; });
    if (found == std::end(kClasses))
        return std::nullopt;
    ClassRecord record;
    record.proxyFlags = found->proxyFlags;
    record.application = asciiText(version, found->application);
    record.cppName = asciiText(version, found->cppName);
    record.dxfName = asciiText(version, found->dxfName);
    record.kind = found->isEntity ? ClassRecord::kEntity : ClassRecord::kObject;
    record.version = found->version;
    record.maintenance = found->maintenance;
    return record;
}

} // namespace dwg
