#pragma once

#include "drawing_changes.h"

#include <dwg/raw_save.h>

/// Little-endian bytes, one value behind the other.
class LittleBytes
{
public:
    std::vector<std::uint8_t> bytes;

    std::size_t size() const { return bytes.size(); }
    void u16(std::uint16_t value) { put(value, 2); }
    void u32(std::uint32_t value) { put(value, 4); }
    void u64(std::uint64_t value) { put(value, 8); }
    void zeros(std::size_t count) { bytes.resize(bytes.size() + count); }
    void append(std::span<const std::uint8_t> more)
    {
        bytes.insert(bytes.end(), more.begin(), more.end());
    }
    void putU32(std::size_t at, std::uint32_t value)
    {
        for (std::size_t i = 0; i < 4; ++i)
            bytes[at + i] = static_cast<std::uint8_t>(value >> 8 * i);
    }

private:
    void put(std::uint64_t value, int size)
    {
        for (int i = 0; i < size; ++i)
            bytes.push_back(static_cast<std::uint8_t>(value >> 8 * i));
    }
};

inline constexpr std::uint32_t kPagesMark = 0xBB106BB1;

/// A section of stored data, segment by segment.
class StorageMaker
{
public:
    StorageMaker() { m_bytes.zeros(0x80); }

    std::uint32_t addSegment(std::string name, const std::vector<std::uint8_t>& content)
    {
        m_bytes.zeros((0x40 - m_bytes.size() % 0x40) % 0x40);
        const auto size = static_cast<std::uint32_t>(0x30 + content.size());
        m_segments.emplace_back(m_bytes.size(), size);
        m_bytes.u16(0xD5AC);
        name.resize(6);
        m_bytes.append(std::vector<std::uint8_t>(name.begin(), name.end()));
        m_bytes.u32(static_cast<std::uint32_t>(m_segments.size() - 1));
        m_bytes.u32(0);
        m_bytes.u32(size);
        for (int i = 0; i < 7; ++i)
            m_bytes.u32(i == 4 ? 5 : 0); // the data begin at 5 * 16
        m_bytes.append(content);
        return static_cast<std::uint32_t>(m_segments.size() - 1);
    }
    /// One record for the object, and its bytes behind it.
    void addRecord(std::uint64_t handle, const std::vector<std::uint8_t>& data)
    {
        LittleBytes content;
        content.u32(0x14);
        content.u32(1);
        content.u64(handle);
        content.u32(0);
        content.zeros(0x50 - 0x30 - content.size());
        content.append(data);
        m_records.push_back(addSegment("_data_", content.bytes));
    }
    void addBytes(std::uint64_t handle, const std::vector<std::uint8_t>& data)
    {
        LittleBytes sized;
        sized.u32(static_cast<std::uint32_t>(data.size()));
        sized.append(data);
        addRecord(handle, sized.bytes);
    }
    void addPages(std::uint64_t handle, const std::vector<std::uint8_t>& data, std::size_t pageSize)
    {
        const std::size_t count = (data.size() + pageSize - 1) / pageSize;
        LittleBytes list;
        list.u32(kPagesMark);
        list.u64(data.size());
        list.u32(static_cast<std::uint32_t>(count));
        for (int i = 0; i < 5; ++i)
            list.u32(0);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t from = i * pageSize, size = std::min(pageSize, data.size() - from);
            LittleBytes page;
            page.u64(data.size());
            page.u64(from);
            page.u32(static_cast<std::uint32_t>(i));
            page.u32(static_cast<std::uint32_t>(count));
            page.u64(size);
            page.append(std::span(data).subspan(from, size));
            list.u32(addSegment("blob01", page.bytes));
            list.u32(static_cast<std::uint32_t>(size));
        }
        addRecord(handle, list.bytes);
    }
    std::vector<std::uint8_t> take()
    {
        LittleBytes places;
        places.u32(static_cast<std::uint32_t>(m_records.size()));
        places.u32(0);
        for (const std::uint32_t record : m_records) {
            places.u32(record);
            places.u32(0);
            places.u32(0);
        }
        const std::uint32_t index = addSegment("datidx", places.bytes);
        LittleBytes segments;
        for (const auto& [offset, size] : m_segments) {
            segments.u64(offset);
            segments.u32(size);
        }
        const auto count = static_cast<std::uint32_t>(m_segments.size());
        addSegment("segidx", segments.bytes);
        m_bytes.putU32(0, 0x6472616A);
        m_bytes.putU32(4, 0x80);
        m_bytes.putU32(0x18, static_cast<std::uint32_t>(m_segments.back().first));
        m_bytes.putU32(0x20, count);
        m_bytes.putU32(0x28, index);
        m_bytes.putU32(0x34, static_cast<std::uint32_t>(m_bytes.size()));
        return m_bytes.bytes;
    }

private:
    LittleBytes m_bytes;
    std::vector<std::pair<std::uint64_t, std::uint32_t>> m_segments;
    std::vector<std::uint32_t> m_records; // segments
};

/// A drawing of two lines and a solid whose body stands in the section of stored data.
struct DrawingWithBody {
    std::vector<std::uint8_t> bytes; ///< empty, and a failure told, when it cannot be made
    std::uint64_t line = 0, solid = 0;

    DrawingWithBody(db::Version version, const std::vector<std::uint8_t>& body)
    {
        const auto lines = minimal("line", version);
        for (const auto& [handle, record] : allRecords(*lines))
            if (record.classDef()->name() == "LINE")
                line = handle;
        DrawingChanges adding(*lines);
        solid = adding.nextHandle();
        db::Record added = newRecord("3DSOLID", solid, version);
        db::RecordEditor(added).setInteger("entmode", 2);
        db::RecordEditor(added).setHandle("layer", recordOf(*lines, line).handle("layer"));
        adding.put(added);
        for (const auto& [handle, record] : allRecords(*lines)) {
            if (record.classDef()->name() != "BLOCK_HEADER" || record.array("owned").size() == 0)
                continue;
            db::ArrayEditor owned = adding.edit(handle).array("owned");
            owned.setHandle(owned.add(), solid);
        }
        const auto file = adding.written();
        // Of a new object nothing is stored yet, so it is not marked as if it were.
        DrawingChanges marking(*file);
        marking.edit(solid).setFlag("has_binary", true);
        const auto marked = marking.write();
        EXPECT_TRUE(marked);
        StorageMaker maker;
        maker.addBytes(solid, body);
        const auto raw = dwg::RawDrawing::open(*marked);
        EXPECT_TRUE(raw);
        dwg::RawChanges changes;
        changes.sections["AcDb:AcDsPrototype_1b"] = maker.take();
        const auto saved = dwg::save(*raw, changes);
        EXPECT_TRUE(saved) << static_cast<int>(saved.status().reason());
        if (saved)
            bytes = *saved;
    }
};
