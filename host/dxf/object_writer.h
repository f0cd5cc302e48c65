#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include <base/status.h>
#include <db/record.h>

#include "form.h"
#include "group_writer.h"
#include "object_reader.h"

namespace dxf {

/// What records refer to, for those who write them.
struct RecordSource {
    /// The record with this handle, until the next call; null when there is none.
    std::function<const db::Record*(std::uint64_t)> record;
    /// The name of a block with its number, as files tell it.
    std::function<std::u16string(std::uint64_t)> blockName;
    /// The blocks that hold what stands in ENTITIES.
    std::uint64_t modelSpace = 0, paperSpace = 0;
    /// Names of the layouts of all paper spaces, by block.
    std::map<std::uint64_t, std::u16string> paperLayouts;
    /// Positions of viewports in their layouts, counted from 1.
    std::map<std::uint64_t, int> viewportNumbers;
    /// The linetypes of the table, without the two that are none.
    std::vector<std::uint64_t> linetypes;
    /// The first text style that stands for a file of shapes; 0 when there is none.
    std::uint64_t shapeStyle = 0;
    /// Of 8-bit texts that records keep as bytes.
    int codePage = 30;
};

/// Writes records as groups, by the forms of their classes.
///
/// Names and values that depend on other objects come from the source.
class ObjectWriter
{
public:
    ObjectWriter(GroupWriter& out, db::Version version, const RecordSource& source)
        : m_out(out), m_version(version), m_source(source)
    {
    }

    /// All groups of an object. @p unknown: groups of the same object in the file it came from,
    /// which are put where they stood. Fails with Usage when counts and arrays of the record do not
    /// agree, with Unsupported when it holds what a file cannot tell.
    base::Status write(const db::Record& record, const std::vector<UnknownGroups>& unknown = {});
    /// The extended data of a record that is told in another way: of a table's control. False when
    /// it is data that a file cannot tell.
    bool writeExtendedDataOf(const db::Record& record);

    // ---- for hooks

    const db::Record& record() const { return *m_record; }
    db::RecordView root() const { return m_record->fields(); }
    /// The struct that the hook's line stands in.
    db::RecordView frame() const
    {
        return {*m_record, *m_hookItem->holder, m_hookBase + m_hookItem->holderBase};
    }
    db::Version version() const { return m_version; }
    const RecordSource& source() const { return m_source; }
    std::u16string nameOf(Table table, std::uint64_t handle);
    /// Whether the record's version stores the field (of frame()).
    bool isStored(db::FieldKey key) const;
    std::uint64_t owner() const;
    void color(int code, const db::RecordView& color, Convert convert = Convert::Color);
    /// Says that the record holds what a file cannot tell.
    void refuse() { m_isRefused = true; }

    GroupWriter& out() { return m_out; }
    void text(int code, std::u16string_view value) { m_out.text(code, value); }
    void raw(int code, std::string_view value) { m_out.raw(code, value); }
    void integer(int code, std::int64_t value) { m_out.integer(code, value); }
    void real(int code, double value) { m_out.real(code, value); }
    void angle(int code, double radians);
    void point(int code, const db::Point& value, int components = 3, int stride = 10)
    {
        m_out.point(code, value, components, stride);
    }
    void handle(int code, std::uint64_t value) { m_out.handle(code, value); }
    void hex(int code, std::span<const std::uint8_t> bytes) { m_out.hex(code, bytes); }

private:
    bool findStored();
    void writeHead();
    void writeExtendedData();
    void writeSegment(const Segment& segment);
    void writeUnknown(int segment, const std::vector<UnknownGroups>& unknown);
    void writeScope(const Scope& scope, std::uint32_t base, std::uint32_t index);
    void writeItem(const Item& item, std::uint32_t base, std::uint32_t index);
    void writeField(const Item& item, std::uint32_t base, std::uint32_t index);
    void writeValue(const Item& item, int code, db::Storage storage, std::uint32_t slot,
                    std::uint32_t base);
    void writeReal(const Item& item, int code, std::uint32_t slot, std::uint32_t base);
    void writeArray(const Item& item, std::uint32_t base);
    void writeZip(const Item& item, std::uint32_t base);
    void writeList(const Item& item, std::uint32_t base);
    bool isSlotStored(std::uint32_t slot) const;
    bool isDefault(const Item& item, std::uint32_t slot) const;
    std::uint64_t word(std::uint32_t slot) const { return m_record->words().data()[slot]; }
    std::u16string_view textAt(std::uint32_t slot) const;

    GroupWriter& m_out;
    db::Version m_version;
    const RecordSource& m_source;
    const db::Record* m_record = nullptr; // not owned; the caller's, while it writes
    const Form* m_form = nullptr;
    std::vector<bool> m_stored; // by slot; empty: all that the form knows are
    const Item* m_hookItem = nullptr;
    std::uint32_t m_hookBase = 0;
    bool m_isRefused = false;
    std::map<std::pair<Table, std::uint64_t>, std::u16string> m_names;
};

/// What files call the objects of a class ("BLOCK_RECORD", "POLYLINE").
std::string_view fileName(const db::ClassDef& classDef);

} // namespace dxf
