#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <base/status.h>

#include "dwg/checksums.h"
#include "dwg/finding.h"
#include "dwg/version.h"

namespace dwg {

namespace section {
inline constexpr std::string_view kHeader = "AcDb:Header";
inline constexpr std::string_view kAuxHeader = "AcDb:AuxHeader";
inline constexpr std::string_view kClasses = "AcDb:Classes";
inline constexpr std::string_view kHandles = "AcDb:Handles";
inline constexpr std::string_view kTemplate = "AcDb:Template";
inline constexpr std::string_view kObjFreeSpace = "AcDb:ObjFreeSpace";
inline constexpr std::string_view kObjects = "AcDb:AcDbObjects";
inline constexpr std::string_view kSummaryInfo = "AcDb:SummaryInfo";
inline constexpr std::string_view kPreview = "AcDb:Preview";
inline constexpr std::string_view kAppInfo = "AcDb:AppInfo";
inline constexpr std::string_view kAppInfoHistory = "AcDb:AppInfoHistory";
inline constexpr std::string_view kSecurity = "AcDb:Security";
inline constexpr std::string_view kSignature = "AcDb:Signature";
inline constexpr std::string_view kRevHistory = "AcDb:RevHistory";
inline constexpr std::string_view kFileDepList = "AcDb:FileDepList";
inline constexpr std::string_view kVbaProject = "AcDb:VBAProject";
inline constexpr std::string_view kDataStorage = "AcDb:AcDsPrototype_1b";
} // namespace section

/// What stands before the first object, and belongs to none.
inline constexpr std::array<std::uint8_t, 4> kObjectsMark{0xCA, 0x0D, 0, 0};

/// Limits that hold for every container, so that a small file cannot ask for a large memory.
inline constexpr std::uint64_t kLargestFile = std::uint64_t(2) << 30;
constexpr std::uint64_t mostUnpackedBytes(std::uint64_t fileSize)
{
    return 16 * fileSize + (16u << 20);
}

/// The shell of a drawing file: its sections by name, unpacked when they are asked for.
///
/// The objects are not among the sections: they lie in an area of their own, of which only the part
/// that is asked for is unpacked.
class Container
{
public:
    struct Section {
        std::string name;
        std::uint64_t size = 0;
    };

    virtual ~Container() = default;

    const std::vector<Section>& sections() const { return m_sections; }
    /// The position of a section in sections(); its size when there is none of this name.
    std::size_t indexOf(std::string_view name) const;
    const std::vector<Finding>& findings() const { return m_findings; }

    /// All bytes of a section; stay as long as the container.
    virtual base::Result<Bytes> section(std::size_t index) = 0;
    /// How far offsets of objects may reach.
    virtual std::uint64_t objectAreaSize() const = 0;
    /// The lowest offset an object can have.
    virtual std::uint64_t objectAreaBegin() const = 0;
    /// The bytes [offset, offset + size) of the area, which must lie in it; stay as long as the
    /// container.
    virtual base::Result<Bytes> objectArea(std::uint64_t offset, std::uint64_t size) = 0;
    /// Up to @p most bytes of the area from @p offset on, as far as they are in memory already;
    /// empty when none is. Costs nothing.
    Bytes atHand(std::uint64_t offset, std::uint64_t most) const
    {
        if (offset < m_atHandBegin || offset >= m_atHandEnd)
            return {};
        return {m_area + offset, std::min(most, m_atHandEnd - offset)};
    }
    /// Code page number of the file header.
    virtual std::uint16_t codePage() const = 0;
    /// Whether @p other, a container of the same kind that was made from this one and goes before
    /// it, holds a section in the very bytes that this one has it in, so that both unpack to the
    /// same. False says nothing.
    virtual bool sameSection(std::string_view, const Container&) const { return false; }
    /// The same of the objects: how far the area is, from @p offset on, in the very bytes that
    /// @p other has it in. Beyond everything when nothing behind differs; @p offset says nothing.
    virtual std::uint64_t sameObjectsUntil(std::uint64_t offset, const Container&) const
    {
        return offset;
    }
    /// Adds findings about every page and checksum of the shell itself.
    virtual void checkAll() = 0;

protected:
    std::vector<Section> m_sections;
    std::vector<Finding> m_findings;
    // A piece of the objects' area that is in memory, in one row.
    const std::uint8_t* m_area = nullptr; // where offset 0 would lie
    std::uint64_t m_atHandBegin = 0, m_atHandEnd = 0;
};

base::Status sectionDamaged(std::string_view name);

} // namespace dwg
