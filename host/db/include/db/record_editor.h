#pragma once

#include <db/record.h>

namespace db {

class RecordEditor;

/// The elements of an array, to change. Arrays that share a count ("keys" and "values" of a
/// dictionary) are resized together, and the count with them.
class ArrayEditor : public ArrayView
{
public:
    ArrayEditor() = default;
    ArrayEditor(Record& record, const StructDef& def, std::uint32_t base, const FieldDef& field);

    /// As it is now, also when another editor has changed it.
    std::uint32_t size();
    /// Element @p index of an array of structs; empty when there is none.
    RecordEditor operator[](std::uint32_t index);
    bool setInteger(std::uint32_t index, std::int64_t value);
    bool setReal(std::uint32_t index, double value);
    bool setPoint(std::uint32_t index, const Point& value);
    bool setText(std::uint32_t index, std::u16string_view value);
    bool setHandle(std::uint32_t index, std::uint64_t target);

    /// New elements hold defaults. False when the array is of fixed length or would get too long.
    bool resize(std::uint32_t count);
    bool insert(std::uint32_t index);
    bool erase(std::uint32_t index);
    /// Appends; the index of the new element. @pre the array is not of fixed length.
    std::uint32_t add()
    {
        const std::uint32_t index = size();
        insert(index);
        return index;
    }

private:
    struct Change {
        std::uint32_t at;       // first element concerned
        std::uint32_t removed;  // from there on
        std::uint32_t inserted; // there
    };
    bool apply(const Change& change);
    void applyTo(const FieldDef& field, const Change& change);
    void makeRoom(const FieldDef& field, std::uint32_t count);
    void fill(const FieldDef& field, std::uint32_t from, std::uint32_t count);
    std::uint64_t& slot(const FieldDef& field);
    std::uint64_t* element(std::uint32_t index, Storage storage);
    void refresh();

    Record* m_edited = nullptr; // not owned; the caller's
    const StructDef* m_def = nullptr;
    std::uint32_t m_base = 0;
};

/// Fields of a record, of a struct in it or of an array's element, to change by name.
///
/// A field that is stored only under a condition brings the condition about: setting an entity's
/// "ltype" sets "ltype_flags" to 3, setting a text's "rotation" clears its bit of "dataflags".
/// (Setting the default leaves the condition as it is.) The setters give false, and change nothing,
/// when there is no such field, when it is of another kind, or when the value does not fit.
class RecordEditor : public RecordView
{
public:
    RecordEditor() = default;
    explicit RecordEditor(Record& record) : RecordView(record.fields()), m_edited(&record) {}
    RecordEditor(Record& record, const StructDef& def, std::uint32_t base)
        : RecordView(record, def, base), m_edited(&record)
    {
    }

    bool setInteger(FieldKey key, std::int64_t value);
    bool setFlag(FieldKey key, bool value) { return setInteger(key, value ? 1 : 0); }
    bool setReal(FieldKey key, double value);
    bool setPoint(FieldKey key, const Point& value);
    bool setDate(FieldKey key, std::int64_t day, std::int64_t milliseconds);
    bool setText(FieldKey key, std::u16string_view value);
    /// A reference of the kind that the table says.
    bool setHandle(FieldKey key, std::uint64_t target);
    bool setBytes(FieldKey key, std::span<const std::uint8_t> value);
    RecordEditor structure(FieldKey key);
    ArrayEditor array(FieldKey key);

private:
    std::uint64_t* slot(const FieldDef& field);
    void openGuards(const FieldDef& field);
    bool isDefault(const FieldDef& field) const;

    Record* m_edited = nullptr; // not owned; the caller's
};

/// Where @p value lies among the words of @p record, once it has been put there.
Run appendText(Record& record, std::u16string_view value);
Run appendBytes(Record& record, std::span<const std::uint8_t> value);
/// Fills the arrays of fixed length of the struct at @p base.
void fillFixedArrays(Record& record, const StructDef& def, std::uint32_t base);

/// Rewrites the words of @p record without what edits have left behind. Views of elements end.
void compact(Record& record);

} // namespace db
