#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace dwg {

/// What is wrong with a drawing that could be read nevertheless. Numbers are shown to people and
/// are forever.
enum class FindingKind : std::uint8_t {
    FileHeaderChecksum = 1,
    FileHeaderEnd = 2,      ///< its end sentinel or second copy is missing
    SectionOutsideFile = 3, ///< the section cannot be read
    SectionChecksum = 4,
    SectionUnreadable = 5, ///< its content contradicts itself
    PageChecksum = 6,      ///< number: the page
    PageUnreadable = 7,    ///< number: the page
    MapOrder = 8,          ///< handles out of order or twice
    SecondHeaderWrong = 9, ///< missing or damaged; a save makes it new
    PreviewWrong = 10,
    ObjectUnreadable = 11, ///< number: the handle
    ObjectChecksum = 12,   ///< number: the handle
    ObjectHandle = 13,     ///< number: the handle; the object says another one
    ObjectsOverlap = 14,   ///< number: the handle of the second
    SeedTooLow = 15,       ///< the next free handle is in use; a save raises it
    UnknownPart = 16,      ///< a part that only this check does not understand
};

/// One thing that is wrong, and where.
struct Finding {
    FindingKind kind = FindingKind::UnknownPart;
    std::string section;      ///< name of the section, or empty
    std::uint64_t number = 0; ///< page or handle, where the kind says so

    /// Whether a save would hide it or could lose something by it.
    bool forbidsSave() const;
    friend bool operator==(const Finding&, const Finding&) = default;
};

} // namespace dwg
