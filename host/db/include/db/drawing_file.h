#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <base/status.h>
#include <db/record.h>

namespace db {

/// What people wrote about a drawing: the properties that are kept with the file.
struct SummaryInfo {
    struct Custom {
        std::u16string name, value;
        friend bool operator==(const Custom&, const Custom&) = default;
    };
    /// A julian day (beginning at midnight UTC) and milliseconds; of the editing time, a span.
    struct Time {
        std::uint32_t day = 0, milliseconds = 0;
        friend bool operator==(const Time&, const Time&) = default;
    };
    std::u16string title, subject, author, keywords, comments, lastSavedBy, revisionNumber,
        hyperlinkBase;
    Time editing, created, modified;
    std::vector<Custom> custom; ///< in the order of the file; names may repeat in odd files
    friend bool operator==(const SummaryInfo&, const SummaryInfo&) = default;
};

/// A picture that travels with a drawing.
struct Preview {
    enum class Kind : std::uint8_t { None, Bmp, Wmf, Png };
    Kind kind = Kind::None;
    /// Bmp: a device-independent bitmap from its info header on; else the whole file.
    std::vector<std::uint8_t> bytes;
    friend bool operator==(const Preview&, const Preview&) = default;
};

/// What kind of object a file holds under a handle, without decoding it.
struct ObjectKind {
    const ClassDef* classDef = nullptr; ///< null: no table for it, it stays raw
    std::string_view className;         ///< in DXF; lives as long as the file object
    int typeNumber = 0;                 ///< as the file numbers it
    bool isEntity = false;
};

/// A class of objects that a drawing names.
struct ClassEntry {
    std::string dxfName, cppName, application;
    std::uint32_t proxyFlags = 0;
    bool wasProxy = false;
    bool isEntity = false;
    std::uint32_t instances = 0;
    int number = 0; ///< what its objects call it in this file; 0 where files have no numbers
};

enum class FileFormat : std::uint8_t { Dwg, Dxf };

/// A drawing as a file holds it: its objects by handle, each decoded when it is asked for.
///
/// Holds the file's bytes itself; the file on disk is no longer needed. Not for several threads at
/// once. Everything it hands out by reference lives as long as it.
class DrawingFile
{
public:
    virtual ~DrawingFile() = default;

    virtual FileFormat format() const = 0;
    virtual Version version() const = 0;
    /// Handles of all objects, ascending, each once.
    virtual std::span<const std::uint64_t> handles() const = 0;
    /// Fails with NotFound when there is none, Damaged when it cannot be looked at.
    virtual base::Result<ObjectKind> kind(std::uint64_t handle) const = 0;
    /// Calls @p visit for each object, by ascending handle; the kind is null where kind() fails.
    /// Quicker than asking for one after the other.
    virtual void
    forEachKind(const std::function<void(std::uint64_t, const ObjectKind*)>& visit) const;
    /// Decodes the object, every bit of it accounted for. Fails with Unsupported when its class or
    /// its data are not known, Damaged when they contradict themselves; then readCommon() may help.
    virtual base::Status read(std::uint64_t handle, Record& out) const = 0;
    /// Of an object that read() refuses: the part that all objects have in common, and its
    /// references; a record of RAW_OBJECT or RAW_ENTITY.
    virtual base::Status readCommon(std::uint64_t handle, Record& out) const = 0;
    /// Whether an edited record may take the object's place: decoded and encoded again it gives the
    /// same bytes.
    virtual bool isEditable(std::uint64_t handle) const = 0;
    /// The header variables, as a record of HEADER_VARIABLES.
    virtual base::Result<Record> header() const = 0;
    virtual std::vector<ClassEntry> classes() const = 0;
    /// The summary information; nullopt when there is none. Wherever the file keeps it: in AC1015
    /// DWG in a record of the named objects dictionary, which writing keeps up to date too.
    virtual std::optional<SummaryInfo> summary() const = 0;
    virtual Preview preview() const = 0;
    /// The picture that the file keeps for the object (a layout, a view) outside its record.
    virtual Preview thumbnail(std::uint64_t handle) const = 0;
    /// The body that the file keeps for the object (a solid, a region, a surface) outside its
    /// record, as its modeler wrote it; empty when there is none.
    virtual std::vector<std::uint8_t> modelerData(std::uint64_t /*handle*/) const { return {}; }
    /// The number of the code page of 8-bit texts, as in the headers of DWG files.
    virtual int codePage() const = 0;
    /// Reads everything, and tells what is wrong with the file as a file (checksums, sizes, pages):
    /// texts for people, each with the number of its kind.
    virtual std::vector<base::Status> check() const = 0;
};

/// What a drawing is to hold when it is written.
struct Contents {
    const DrawingFile* origin = nullptr; ///< where unchanged objects come from; null: nowhere
    /// Changed and new objects. A new object of a class that the file does not name has the type
    /// number 0; the codec gives it one.
    const std::map<std::uint64_t, const Record*>* changed = nullptr;
    const std::set<std::uint64_t>* erased = nullptr;
    /// The header variables; HANDSEED is above every handle.
    const Record* header = nullptr;
    bool headerChanged = false;
    const SummaryInfo* summary = nullptr; ///< null: as in origin
    const Preview* preview = nullptr;     ///< null: as in origin
    /// The record of any object that is not erased, decoded from origin when it must be; for
    /// writing into another version. The pointer is good until the next call.
    std::function<base::Result<const Record*>(std::uint64_t)> record;
    /// Handles of all objects that are not erased, ascending.
    std::span<const std::uint64_t> handles;
};

/// Reads and writes one format of drawing files. Stateless; lives as long as the program.
class Codec
{
public:
    virtual ~Codec() = default;

    virtual FileFormat format() const = 0;
    /// Whether @p head (the first bytes of a file, at most 4096) is of this format.
    virtual bool recognises(std::span<const std::uint8_t> head) const = 0;
    virtual base::Result<std::unique_ptr<DrawingFile>>
    open(std::vector<std::uint8_t> file) const = 0;
    /// The bytes of a file in @p version. Read back and compared before they are handed out.
    ///
    /// In the version and format of the origin: every object that is not named as changed stays bit
    /// for bit, and so do sections that nobody understands. Otherwise every object is converted;
    /// fails with Unsupported, its reason listing the classes that stand in the way, when one of
    /// them cannot be.
    virtual base::Result<std::vector<std::uint8_t>> write(const Contents& contents,
                                                          Version version) const = 0;

    /// Gives @p count bytes of a file from @p offset on, fewer at its end.
    using ReadAt =
        std::function<std::vector<std::uint8_t>(std::uint64_t offset, std::size_t count)>;
    /// The picture of a file that this format recognises, by a few reads of it; none when it has
    /// none, or it would take more.
    virtual Preview quickPreview(const ReadAt&) const { return {}; }
};

/// Makes @p codec known to all databases; one of each format, the last one counts. Called once at
/// start by whoever wires the program (`dwg::install()`, `dxf::install()`).
void installCodec(const Codec& codec);
/// Null when none is installed.
const Codec* codecOf(FileFormat format);
/// The installed codec that recognises @p head; null when none does.
const Codec* codecFor(std::span<const std::uint8_t> head);

} // namespace db
