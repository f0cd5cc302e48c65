#pragma once

#include <map>
#include <memory>
#include <set>

#include <db/record_editor.h>
#include <dwg/dwg_codec.h>

#include "drawings.h"

inline const dwg::DwgCodec& codec()
{
    static const dwg::DwgCodec codec;
    return codec;
}

inline std::unique_ptr<db::DrawingFile> opened(const std::vector<std::uint8_t>& bytes)
{
    auto file = codec().open(bytes);
    EXPECT_TRUE(file) << static_cast<int>(file.status().reason());
    return file ? std::move(*file) : nullptr;
}

inline db::Record recordOf(const db::DrawingFile& file, std::uint64_t handle)
{
    db::Record record;
    EXPECT_TRUE(file.read(handle, record)) << std::hex << handle;
    return record;
}

/// Every object that can be decoded, by its handle.
inline std::map<std::uint64_t, db::Record> allRecords(const db::DrawingFile& file)
{
    std::map<std::uint64_t, db::Record> records;
    db::Record record;
    for (const std::uint64_t handle : file.handles())
        if (file.read(handle, record))
            records.emplace(handle, record);
    return records;
}

/// A drawing and what is to be different when it is written.
class DrawingChanges
{
public:
    explicit DrawingChanges(const db::DrawingFile& origin) : m_origin(&origin)
    {
        auto header = origin.header();
        EXPECT_TRUE(header);
        if (header)
            m_header = *header;
        for (const std::uint64_t handle : origin.handles())
            m_handles.insert(handle);
    }
    /// A drawing of nothing but these.
    DrawingChanges(db::Record header, std::vector<db::Record> records) : m_header(std::move(header))
    {
        for (db::Record& record : records)
            put(std::move(record));
    }

    db::RecordEditor header()
    {
        m_headerChanged = true;
        return db::RecordEditor(m_header);
    }
    std::uint64_t nextHandle() const { return m_header.handle("HANDSEED"); }
    db::RecordEditor edit(std::uint64_t handle)
    {
        if (!m_changed.count(handle))
            put(recordOf(*m_origin, handle));
        return db::RecordEditor(m_changed.at(handle));
    }
    void put(db::Record record)
    {
        m_handles.insert(record.handle());
        m_changed[record.handle()] = std::move(record);
    }
    void erase(std::uint64_t handle)
    {
        m_handles.erase(handle);
        m_changed.erase(handle);
        m_erased.insert(handle);
    }
    db::SummaryInfo& summary() { return m_summary.emplace(); }
    db::Preview& preview() { return m_preview.emplace(); }

    base::Result<std::vector<std::uint8_t>> write(db::Version version) const
    {
        std::map<std::uint64_t, const db::Record*> changed;
        for (const auto& [handle, record] : m_changed)
            changed[handle] = &record;
        const std::vector<std::uint64_t> handles(m_handles.begin(), m_handles.end());
        db::Contents contents;
        contents.origin = m_origin;
        contents.changed = &changed;
        contents.erased = &m_erased;
        contents.header = &m_header;
        contents.headerChanged = m_headerChanged;
        contents.summary = m_summary ? &*m_summary : nullptr;
        contents.preview = m_preview ? &*m_preview : nullptr;
        contents.handles = handles;
        return codec().write(contents, version);
    }
    base::Result<std::vector<std::uint8_t>> write() const { return write(m_origin->version()); }
    /// Written and opened again; null, and a failure told, when it cannot be.
    std::unique_ptr<db::DrawingFile> written(db::Version version) const
    {
        const auto bytes = write(version);
        EXPECT_TRUE(bytes) << static_cast<int>(bytes.status().reason());
        return bytes ? opened(*bytes) : nullptr;
    }
    std::unique_ptr<db::DrawingFile> written() const { return written(m_origin->version()); }

private:
    const db::DrawingFile* m_origin = nullptr; // not owned
    db::Record m_header;
    std::set<std::uint64_t> m_handles, m_erased;
    std::map<std::uint64_t, db::Record> m_changed;
    bool m_headerChanged = false;
    std::optional<db::SummaryInfo> m_summary;
    std::optional<db::Preview> m_preview;
};

inline std::string versionName(db::Version version)
{
    return "ac" + std::to_string(static_cast<int>(version));
}

/// One of the two minimal drawings in that version.
inline std::unique_ptr<db::DrawingFile> minimal(const std::string& what, db::Version version)
{
    return opened(minimalDrawing(what + "-" + versionName(version) + ".dwg"));
}

/// A new object of that class, as the database makes one.
inline db::Record newRecord(const char* className, std::uint64_t handle, db::Version version)
{
    db::Record record(*db::classNamed(className));
    record.setHandle(handle);
    record.setVersion(version);
    return record;
}
