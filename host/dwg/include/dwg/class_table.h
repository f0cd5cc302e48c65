#pragma once

#include <vector>

#include <base/status.h>
#include <dwg/raw_text.h>
#include <dwg/record_streams.h>

namespace dwg {

/// A class that a drawing names. Objects refer to it by its number, so none is ever renumbered.
struct ClassRecord {
    static constexpr std::uint16_t kEntity = 0x1F2;
    static constexpr std::uint16_t kObject = 0x1F3;

    std::uint16_t number = 0; ///< 500 and up
    std::uint16_t proxyFlags = 0;
    RawText application, cppName, dxfName;
    bool wasProxy = false;
    std::uint16_t kind = kObject; ///< kEntity or kObject
    std::uint32_t instances = 0;  ///< from 2004 on, like the rest; may be inaccurate
    std::uint32_t version = 0;
    std::uint32_t maintenance = 0;
    std::uint32_t unknown1 = 0, unknown2 = 0;

    /// The DXF name in plain letters, without a final NUL; other units become '?'.
    std::string dxfNameText() const;
    bool isEntity() const { return kind == kEntity; }
    friend bool operator==(const ClassRecord&, const ClassRecord&) = default;
};

/// The classes of a drawing, in the order of the file.
class ClassTable
{
public:
    /// Reads the section AcDb:Classes up to its end. Of two classes with one number the first
    /// counts.
    static base::Result<ClassTable> read(Version version, Bytes section);
    /// None yet.
    static ClassTable makeEmpty(Version version);

    const std::vector<ClassRecord>& records() const { return m_records; }
    /// The class of objects of type @p number; null when there is none.
    const ClassRecord* find(std::uint16_t number) const;
    const ClassRecord* findNamed(std::string_view dxfName) const;
    /// Appends @p record under the next free number, and tells it; 0 when there is none left.
    std::uint16_t add(ClassRecord record);
    /// Counts @p change more (or fewer) objects of the class; from 2004 on, else it does nothing.
    void count(std::uint16_t number, int change);
    bool checksumRight() const { return m_checksumRight; }

    /// The section, written new; equal to what was read when nothing was added and its writer chose
    /// the shortest codes. Empty if a text cannot be stored.
    std::vector<std::uint8_t> section() const;

private:
    Version m_version = Version::Ac1015;
    std::vector<ClassRecord> m_records;
    std::uint16_t m_highest = 499;
    std::vector<std::uint8_t> m_trailing; // behind the end sentinel
    bool m_hasHighSize = false;
    bool m_checksumRight = true;
};

} // namespace dwg
