#pragma once

#include <memory>
#include <vector>

#include <db/drawing_file.h>

#include "object_reader.h"
#include "structure.h"

namespace dxf {

/// A drawing in text form.
class DxfFile final : public db::DrawingFile
{
public:
    static base::Result<std::unique_ptr<DxfFile>> open(std::vector<std::uint8_t> bytes);

    db::FileFormat format() const override { return db::FileFormat::Dxf; }
    db::Version version() const override { return m_structure->index().version; }
    std::span<const std::uint64_t> handles() const override { return m_structure->handles(); }
    base::Result<db::ObjectKind> kind(std::uint64_t handle) const override;
    base::Status read(std::uint64_t handle, db::Record& out) const override;
    base::Status readCommon(std::uint64_t handle, db::Record& out) const override;
    bool isEditable(std::uint64_t handle) const override;
    base::Result<db::Record> header() const override;
    std::vector<db::ClassEntry> classes() const override;
    std::optional<db::SummaryInfo> summary() const override;
    db::Preview preview() const override;
    db::Preview thumbnail(std::uint64_t) const override { return {}; }
    int codePage() const override { return m_structure->index().codePage; }
    std::vector<base::Status> check() const override;

    // ---- for the writer

    const Structure& structure() const { return *m_structure; }
    /// The object's groups as the file has them; empty when it has none that may be written so.
    std::string_view groups(std::uint64_t handle) const;
    /// The groups of an object that its form does not know.
    std::vector<UnknownGroups> unknownGroups(std::uint64_t handle) const;

private:
    DxfFile() = default;

    base::Status readEntry(std::uint32_t at, db::Record& out) const;
    base::Status readBlock(std::uint32_t at, db::Record& out) const;
    void readBlockBegin(const BlockEntry& block, db::Record& out) const;
    void addDefaultNames(db::Record& out) const;
    void addTold(const Entry& entry, db::Record& out) const;
    void addLinks(std::uint32_t at, db::Record& out) const;
    void addSequence(std::uint32_t at, db::Record& out) const;
    static base::Status missing(std::uint64_t handle);

    std::vector<std::uint8_t> m_bytes;
    std::unique_ptr<Structure> m_structure;         // of m_bytes
    mutable std::unique_ptr<ObjectReader> m_reader; // not for several threads, as this is not
};

/// What @p record refers to, as every part of its text tells: for objects that are not understood.
void addReferences(std::string_view text, db::Record& record);

} // namespace dxf
