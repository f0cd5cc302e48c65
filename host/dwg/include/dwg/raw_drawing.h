#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include <base/status.h>
#include <dwg/class_table.h>
#include <dwg/finding.h>
#include <dwg/header_variables.h>
#include <dwg/object_map.h>
#include <dwg/object_record.h>
#include <dwg/version.h>

namespace dwg {

class Container;

/// A drawing file as it is: sections by name, objects by handle, each as its bytes. Nothing of an
/// object is understood but its type and its own handle.
///
/// Opening reads the file header, the header variables, the classes and the map of objects.
/// Everything else is unpacked when it is asked for, of the objects only the pages on which the
/// asked ones lie; so asking for a few objects of a large drawing costs little. What was unpacked
/// stays until the drawing goes, and spans into it stay valid as long.
///
/// Not for several threads at once: asking unpacks.
class RawDrawing
{
public:
    /// Takes the bytes of a whole file, which must be a copy that nobody else writes.
    ///
    /// Fails when it is no drawing of a known version (Unsupported), protected by a password
    /// (Unsupported), too large (TooLarge), or when its shell, map, classes or variables cannot be
    /// read (Damaged). What is wrong without being in the way is told by findings().
    static base::Result<RawDrawing> open(std::vector<std::uint8_t> file);

    /// The same of bytes that somebody else keeps, longer than this.
    static base::Result<RawDrawing> openBorrowed(Bytes file);

    /// A drawing of no objects that is in no file: what a new file is saved from. Its sections have
    /// no content, so a save must bring those that a drawing needs.
    /// @param codePage  number of the code page of 8-bit strings.
    static RawDrawing makeBlank(Version version, std::uint16_t codePage);

    RawDrawing(RawDrawing&&) noexcept;
    RawDrawing& operator=(RawDrawing&&) noexcept;
    ~RawDrawing();

    Version version() const { return m_version; }
    /// Number of the code page of 8-bit strings (30 is Windows-1252), from the file header.
    std::uint16_t codePage() const;
    Bytes fileBytes() const { return m_bytes; }

    /// The objects in ascending order of their handles.
    const std::vector<ObjectLocation>& objects() const { return m_map.objects; }
    /// The object's place; null when there is none of this handle.
    const ObjectLocation* find(std::uint64_t handle) const;
    /// The object's whole record, from its size to its checksum, in place.
    ///
    /// Fails with NotFound when there is no such object, Damaged when it does not lie in the file
    /// or its page cannot be unpacked. Neither the checksum nor the object's own handle is looked
    /// at.
    base::Result<Bytes> objectBytes(std::uint64_t handle) const;
    /// The same, with its sizes, type and own handle. The own handle may differ from @p handle in a
    /// damaged file.
    base::Result<ObjectRecord> object(std::uint64_t handle) const;
    base::Result<ObjectRecord> object(const ObjectLocation& location) const;
    /// What the object's record says at its begin; its size is 0 when object() could not give it.
    ObjectFront front(const ObjectLocation& location) const;

    const HeaderVariables& header() const { return m_header; }
    const ClassTable& classes() const { return m_classes; }

    /// Names of the sections in the order of the file; in AC1015 under the names of the later
    /// formats. The objects are a section too, but in AC1015.
    std::vector<std::string> sectionNames() const;
    bool hasSection(std::string_view name) const;
    /// The bytes of a section. NotFound when there is none of this name.
    base::Result<Bytes> section(std::string_view name) const;

    /// What was found to be wrong so far.
    std::vector<Finding> findings() const;
    /// Reads everything and tells all that is wrong: each page, checksum, section and object.
    std::vector<Finding> check() const;

    /// For the writers of this room.
    Container& container() const { return *m_container; }

private:
    RawDrawing();
    base::Status readSections();

    Version m_version = Version::Ac1015;
    std::unique_ptr<std::vector<std::uint8_t>> m_file; // null: somebody else's
    Bytes m_bytes;                                     // of the file
    std::unique_ptr<Container> m_container;
    HeaderVariables m_header;
    ClassTable m_classes;
    ObjectMap m_map;
    mutable std::size_t m_lastFound = 0; // in the map
    std::vector<Finding> m_findings;
};

} // namespace dwg
