#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <dwg/raw_drawing.h>

namespace dwg {

/// What a save changes. Everything that is not named here stays as it is, bit for bit.
struct RawChanges {
    /// Changed and new objects by handle, each as its whole record (frameRecord).
    std::map<std::uint64_t, std::vector<std::uint8_t>> objects;
    /// Objects that go. References to them are the caller's to remove.
    std::set<std::uint64_t> erased;
    /// New contents of sections by name; not of the header variables, the objects or their map,
    /// which the other members change. A preview counts its places from its own begin.
    std::map<std::string, std::vector<std::uint8_t>> sections;
    /// The header variables with what was set in them; those of the drawing when absent.
    std::optional<HeaderVariables> header;

    bool empty() const { return objects.empty() && erased.empty() && sections.empty() && !header; }
};

struct SaveOptions {
    /// Save although something is damaged, making checksums right that were wrong. Needs the user's
    /// consent.
    bool repair = false;
};

/// The bytes of a file of the same version with @p changes made. Writes no file.
///
/// The next free handle is raised above every handle in use, wherever it is stored. The result was
/// read back and compared with what it should hold before it is handed out.
///
/// Fails, with nothing made, when the drawing is damaged in a way that a save would hide or that
/// would lose something (DwgDamageNotSaved); when a record or section cannot be stored
/// (DwgRecordInvalid, DwgSectionNotWritten); when an object cannot be read and is neither replaced
/// nor erased (DwgObjectDamaged); or when the result reads back differently (DwgVerifyFailed).
base::Result<std::vector<std::uint8_t>> save(const RawDrawing& drawing, const RawChanges& changes,
                                             const SaveOptions& options = {});

/// Whether @p saved holds @p drawing with @p changes made: each object's bytes, each section, each
/// checksum. save() has asked this already.
base::Status verifySaved(const RawDrawing& drawing, const RawChanges& changes,
                         const std::vector<std::uint8_t>& saved);

} // namespace dwg
