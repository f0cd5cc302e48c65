#pragma once

// Names of the elements of a .dst file, shared by reader and writer. Names are forever: add, never
// rename or reuse.
namespace sm::dst {

inline constexpr char kFile[] = "sheetSetFile";
inline constexpr char kVersion[] = "version";
inline constexpr char kNextHandle[] = "nextHandle";
inline constexpr char kHandle[] = "handle";

inline constexpr char kSheetSet[] = "sheetSet";
inline constexpr char kSubset[] = "subset";
inline constexpr char kSheet[] = "sheet";
inline constexpr char kProperty[] = "property";
inline constexpr char kPropertyName[] = "name";
inline constexpr char kPropertyType[] = "type";
inline constexpr char kPropertyValue[] = "value";
inline constexpr char kNewSheetLocation[] = "newSheetLocation";
inline constexpr char kDefaultTemplate[] = "defaultTemplate";
inline constexpr char kPageSetups[] = "pageSetups";
inline constexpr char kLabelBlock[] = "labelBlock";
inline constexpr char kPublishOptions[] = "publishOptions";
inline constexpr char kOutputFolder[] = "outputFolder";
inline constexpr char kResources[] = "resources";
inline constexpr char kCallouts[] = "calloutBlocks";
inline constexpr char kUse[] = "use";
inline constexpr char kCategories[] = "categories";
inline constexpr char kCategory[] = "category";
inline constexpr char kSelections[] = "selections";
inline constexpr char kSelection[] = "selection";
inline constexpr char kMember[] = "member";
inline constexpr char kLayout[] = "layout";
inline constexpr char kViews[] = "views";
inline constexpr char kView[] = "view";
inline constexpr char kViewReference[] = "viewReference";
inline constexpr char kViewCategory[] = "category";

// References in a list, by class.
inline constexpr char kFileReference[] = "file";
inline constexpr char kObjectReference[] = "object";
inline constexpr char kLayoutReference[] = "layoutReference";
inline constexpr char kBlockReference[] = "block";

// Types of custom property values; text has none.
struct ValueType {
    unsigned short type;
    const char* name;
};
inline constexpr ValueType kValueTypes[] = {
    {0, "empty"}, {2, "int"}, {3, "short"}, {4, "real"}, {5, "bool"}};

/// The format that this program writes. A file of a higher major version is opened read only.
inline constexpr int kMajor = 1;
inline constexpr char kCurrentVersion[] = "1.0";

/// How deep elements may be nested: the deepest tree that the model takes, and what stands in a
/// sheet.
inline constexpr int kMaxDepth = 220;
/// Attributes of one element: far more than any has, few enough to compare each with each.
inline constexpr int kMaxAttributes = 100;

} // namespace sm::dst
