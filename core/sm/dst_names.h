#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "sm/tv_sm_object_id.h"

// Names of the elements of a .dst file, shared by reader and writer. Names are forever: add, never
// rename or reuse.
namespace sm::dst {

inline constexpr std::string_view kFile = "sheetSetFile";
inline constexpr std::string_view kVersion = "version";
inline constexpr std::string_view kNextHandle = "nextHandle";
inline constexpr std::string_view kHandle = "handle";

inline constexpr std::string_view kSheetSet = "sheetSet";
inline constexpr std::string_view kSubset = "subset";
inline constexpr std::string_view kSheet = "sheet";
inline constexpr std::string_view kProperty = "property";
inline constexpr std::string_view kPropertyType = "type";
inline constexpr std::string_view kPropertyValue = "value";
inline constexpr std::string_view kNewSheetLocation = "newSheetLocation";
inline constexpr std::string_view kDefaultTemplate = "defaultTemplate";
inline constexpr std::string_view kPageSetups = "pageSetups";
inline constexpr std::string_view kLabelBlock = "labelBlock";
inline constexpr std::string_view kPublishOptions = "publishOptions";
inline constexpr std::string_view kOutputFolder = "outputFolder";
inline constexpr std::string_view kResources = "resources";
inline constexpr std::string_view kCallouts = "calloutBlocks";
inline constexpr std::string_view kUse = "use";
inline constexpr std::string_view kCategories = "categories";
inline constexpr std::string_view kCategory = "category";
inline constexpr std::string_view kSelections = "selections";
inline constexpr std::string_view kSelection = "selection";
inline constexpr std::string_view kMember = "member";
inline constexpr std::string_view kLayout = "layout";
inline constexpr std::string_view kViews = "views";
inline constexpr std::string_view kView = "view";
inline constexpr std::string_view kViewReference = "viewReference";

// References in a list, by class.
inline constexpr std::string_view kFileReference = "file";
inline constexpr std::string_view kObjectReference = "object";
inline constexpr std::string_view kLayoutReference = "layoutReference";
inline constexpr std::string_view kBlockReference = "block";

// Types of custom property values; text has none.
struct ValueType {
    unsigned short type;
    std::string_view name;
};
inline constexpr ValueType kValueTypes[] = {
    {0, "empty"}, {2, "int"}, {3, "short"}, {4, "real"}, {5, "bool"}};

/// The format that this program writes. A file of a higher major version is opened read only.
inline constexpr int kMajor = 1;
inline constexpr std::string_view kCurrentVersion = "1.0";

/// Where an unknown element stood, when what came behind it has no handle: a container, or a
/// pointer at another object. These numbers are no handles, and are in no file.
inline std::uint64_t placeOfContainer(std::string_view element)
{
    constexpr std::string_view kContainers[] = {kResources, kCallouts, kCategories, kSelections,
                                                kViews};
    const auto at = std::find(std::begin(kContainers), std::end(kContainers), element);
    return kHandleLimit + static_cast<std::uint64_t>(at - std::begin(kContainers));
}
inline std::uint64_t placeOfUse(std::uint64_t handle)
{
    return 2 * kHandleLimit + handle;
}

/// How deep elements may be nested: the deepest tree that the model takes, and what stands in a
/// sheet.
inline constexpr int kMaxDepth = 220;

} // namespace sm::dst
