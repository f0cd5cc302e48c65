#pragma once

#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "object_reader.h"
#include "object_writer.h"

namespace dxf {

/// A struct of a record, by its position: stays right while arrays grow.
struct Part {
    const db::StructDef* def = nullptr;
    std::uint32_t base = 0;
};

/// Groups in one order that is told once, for both ways: what is described is written, or expected
/// and read.
///
/// For structs within structs whose codes mean another thing at every place. Reading ends at the
/// first group that is not the expected one: then the object is one that is not understood, and
/// stays groups.
class GroupSequence
{
public:
    explicit GroupSequence(ObjectWriter& writer) : m_writer(&writer) {}
    GroupSequence(ObjectReader& reader, std::span<const Tag> tags) : m_reader(&reader), m_rest(tags)
    {
    }

    bool isReading() const { return m_reader != nullptr; }
    /// False when a group was not the expected one.
    bool ok() const { return m_isOk; }
    /// Whether all groups were read.
    bool isAtEnd() const { return m_rest.empty(); }
    /// Whether the next group that is read has this code.
    bool isNext(int code) const { return !m_rest.empty() && m_rest.front().code == code; }
    db::Version version() const { return m_reader ? m_reader->version() : m_writer->version(); }

    Part root() const;
    Part inner(Part part, db::FieldKey name) const;
    Part element(Part part, db::FieldKey array, std::uint32_t index) const;
    std::int64_t number(Part part, db::FieldKey name) const { return view(part).integer(name); }
    db::RecordView view(Part part) const { return {record(), *part.def, part.base}; }

    /// A group that is always the same.
    void mark(int code, std::string_view text);
    /// Fields under the codes that the field table gives them.
    void fields(Part part, std::initializer_list<const char*> names);
    void field(Part part, db::FieldKey name, int code);
    /// The number of elements of an array, which is resized to it. @p groups: at least so many are
    /// read for each element, or the number is wrong.
    std::uint32_t count(Part part, const char* array, int code, std::uint32_t groups);
    /// The same without a group that tells it.
    void resize(Part part, const char* array, std::int64_t count, std::uint32_t groups);
    /// The elements of an array of plain values or colours, as many as there are.
    void elements(Part part, const char* array, int code);
    /// Text in lines of 250 characters: all but the last under @p firstCode.
    void longText(Part part, db::FieldKey name, int firstCode, int lastCode);
    /// The same for text that is kept as bytes (UTF-16 and a NUL).
    void textInBytes(Part part, db::FieldKey name, int firstCode, int lastCode);
    void bytes(Part part, db::FieldKey name, int countCode, int code);
    /// Whether there is what follows: told by the flag when writing, by the next group when
    /// reading.
    bool when(Part part, db::FieldKey flag, int code);

    /// The same as mark(), where files of others may lack it.
    void optionalMark(int code, std::string_view text);
    /// A reference to a text style as its name, any other field under its code in the table.
    void nameOrField(Part part, const char* name);
    /// A number that is told only when it is not the expected one.
    void fieldUnless(Part part, db::FieldKey name, int code, std::int64_t expected);
    /// A reference that is told when there is one.
    void handleIfAny(Part part, db::FieldKey name, int code);
    /// A reference that other groups have told already, and that may be left out.
    void repeat(Part part, db::FieldKey name, int code);

    void refuse();

private:
    const db::Record& record() const { return m_reader ? m_reader->record() : m_writer->record(); }
    db::RecordEditor editor(Part part) { return {m_reader->record(), *part.def, part.base}; }
    /// The next group, when it has this code; else null, and nothing more is read.
    const Tag* take(int code);
    void write(Part part, const db::FieldDef& field, int code);
    void read(Part part, const db::FieldDef& field, const Tag& tag, int code);
    void writeColor(const db::RecordView& color, int code);
    void readColor(db::RecordEditor color, const Tag& index);
    bool takeLongText(std::u16string& text, int firstCode, int lastCode);

    ObjectReader* m_reader = nullptr; // not owned; one of the two
    ObjectWriter* m_writer = nullptr;
    std::span<const Tag> m_rest;
    bool m_isOk = true;
};

/// What an integer under this code is cut to; none when it does not fit.
std::optional<std::int64_t> fittedInteger(int code, std::int64_t value);

} // namespace dxf
