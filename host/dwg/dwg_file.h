#pragma once

#include <map>
#include <optional>
#include <string>

#include <db/drawing_file.h>

#include "dwg/object_codec.h"
#include "dwg/raw_drawing.h"

namespace dwg {

class DataStorage;

/// A drawing file as the database sees it: the raw drawing with the object codec above it.
class DwgFile final : public db::DrawingFile
{
public:
    static base::Result<std::unique_ptr<DwgFile>> open(std::vector<std::uint8_t> file);
    ~DwgFile() override;

    db::FileFormat format() const override { return db::FileFormat::Dwg; }
    db::Version version() const override { return databaseVersion(m_raw.version()); }
    std::span<const std::uint64_t> handles() const override;
    base::Result<db::ObjectKind> kind(std::uint64_t handle) const override;
    void forEachKind(
        const std::function<void(std::uint64_t, const db::ObjectKind*)>& visit) const override;
    base::Status read(std::uint64_t handle, db::Record& out) const override;
    base::Status readCommon(std::uint64_t handle, db::Record& out) const override;
    bool isEditable(std::uint64_t handle) const override;
    base::Result<db::Record> header() const override;
    std::vector<db::ClassEntry> classes() const override;
    std::optional<db::SummaryInfo> summary() const override;
    db::Preview preview() const override;
    db::Preview thumbnail(std::uint64_t handle) const override;
    std::vector<std::uint8_t> modelerData(std::uint64_t handle) const override;
    int codePage() const override { return m_raw.codePage(); }
    std::vector<base::Status> check() const override;

    const RawDrawing& raw() const { return m_raw; }
    const ObjectContext& context() const { return m_context; }
    /// The object with its sizes and type; fails when it says another handle than the map.
    base::Result<ObjectRecord> object(std::uint64_t handle) const;
    /// Whether the part that all objects have in common, and the rest as bits, give the same bytes.
    bool isEditableRaw(std::uint64_t handle) const;

private:
    explicit DwgFile(RawDrawing raw);
    std::optional<db::SummaryInfo> summaryOfRecord() const;
    db::ObjectKind kindOfType(int type) const;
    const DataStorage& storage() const;

    RawDrawing m_raw;
    ObjectClasses m_classes;
    ObjectContext m_context;
    std::map<int, std::string> m_classNames;        // by type number
    std::vector<db::ObjectKind> m_kinds;            // by type number; what lies behind is rare
    mutable std::vector<std::uint64_t> m_handles;   // made when they are asked for
    mutable std::unique_ptr<DataStorage> m_storage; // made when it is asked for
};

/// The code page's text of the drawing's own 8-bit texts in plain letters, without a final NUL.
std::string plainText(const RawText& text);
/// 1 when the drawing is metric: kept beside the description of its template.
int measurementOf(Version version, Bytes templateSection);

} // namespace dwg
