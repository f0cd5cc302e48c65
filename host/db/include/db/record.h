#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include <db/schema.h>
#include <db/word_buffer.h>

namespace db {

class Record;
class RecordView;

/// A point or vector; a field of two numbers has z = 0.
struct Point {
    double x = 0, y = 0, z = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

/// How a reference binds. Stored numbers of the drawing format.
enum class ReferenceKind : std::uint8_t {
    SoftOwner = 2,
    HardOwner = 3,
    SoftPointer = 4,
    HardPointer = 5,
};

/// Bits that are kept as they were read.
struct BitRun {
    std::span<const std::uint64_t>
        words;               ///< first bit in the highest bit of the first byte in memory
    std::uint32_t count = 0; ///< of bits

    std::span<const std::uint8_t> bytes() const
    {
        return {reinterpret_cast<const std::uint8_t*>(words.data()), (count + 7) / 8};
    }
};

/// The elements of an array, to look at. Out of range gives zero, empty or an empty view.
class ArrayView
{
public:
    ArrayView() = default;
    ArrayView(const Record& record, const FieldDef& field, Run run)
        : m_record(&record), m_field(&field), m_run(run)
    {
    }

    std::uint32_t size() const { return m_run.count; }
    bool isEmpty() const { return m_run.count == 0; }
    /// Element @p index of an array of structs.
    RecordView operator[](std::uint32_t index) const;
    std::int64_t integer(std::uint32_t index) const;
    double real(std::uint32_t index) const;
    Point point(std::uint32_t index) const;
    std::u16string_view text(std::uint32_t index) const;
    std::uint64_t handle(std::uint32_t index) const;

protected:
    std::uint64_t word(std::uint32_t index, std::uint32_t part = 0) const;

    const Record* m_record = nullptr; // not owned; the caller's
    const FieldDef* m_field = nullptr;
    Run m_run;
};

/// Fields of a record, of a struct in it or of an array's element, to look at by name.
///
/// A view is two pointers and a position: pass it by value. It stays right while the record lives,
/// also when the record is edited, except that a view of an array's element ends when that array is
/// resized; a text or byte span ends at the next edit. A field is asked for in the way that its
/// table says (integer, real, text ...); asked otherwise, or for a field that the class does not
/// have, the answer is zero or empty - has() tells. A condition that left a field out gives the
/// table's default.
class RecordView
{
public:
    RecordView() = default;
    RecordView(const Record& record, const StructDef& def, std::uint32_t base)
        : m_record(&record), m_def(&def), m_base(base)
    {
    }

    explicit operator bool() const { return m_record != nullptr; }
    const StructDef* def() const { return m_def; }
    bool has(FieldKey key) const { return m_def && m_def->find(key.id()); }

    std::int64_t integer(FieldKey key) const;
    bool flag(FieldKey key) const { return integer(key) != 0; }
    double real(FieldKey key) const;
    Point point(FieldKey key) const;
    /// The day and the milliseconds of a date.
    std::array<std::int64_t, 2> date(FieldKey key) const;
    std::u16string_view text(FieldKey key) const;
    /// The object referred to; 0 is none.
    std::uint64_t handle(FieldKey key) const;
    std::span<const std::uint8_t> bytes(FieldKey key) const;
    BitRun bits(FieldKey key) const;
    RecordView structure(FieldKey key) const;
    ArrayView array(FieldKey key) const;

    /// Where the fields lie among the record's words; for codecs.
    std::uint32_t base() const { return m_base; }

protected:
    const FieldDef* find(FieldKey key, Storage storage) const;
    std::uint64_t word(const FieldDef& field, std::uint32_t part = 0) const;

    const Record* m_record = nullptr; // not owned; the caller's
    const StructDef* m_def = nullptr;
    std::uint32_t m_base = 0;
};

/// The decoded values of one object: a class, the object's handle, and its fields as one block of
/// words.
///
/// A record holds the fields of all versions; a version writes those that its table has. Fields
/// that were not read or set hold the table's default. A copy is one block copy. Change it through
/// a RecordEditor (record_editor.h).
class Record
{
public:
    Record() = default;
    /// A new object's record: every field at its default, arrays of fixed length filled.
    explicit Record(const ClassDef& of);

    /// Null for an empty record only.
    const ClassDef* classDef() const { return m_class; }
    /// As this version stores it; what was kept undecoded (extended data, xrecord items) has its
    /// form.
    Version version() const { return m_version; }
    void setVersion(Version version) { m_version = version; }
    std::uint64_t handle() const { return m_handle; }
    void setHandle(std::uint64_t handle) { m_handle = handle; }
    /// The number that stands for the class in its drawing.
    int typeNumber() const { return m_typeNumber; }
    void setTypeNumber(int number) { m_typeNumber = number; }
    /// The bits behind the last handle, up to the full byte: how many, and what they were.
    struct Padding {
        std::uint8_t count = 0;
        std::uint8_t bits = 0;
    };
    Padding padding() const { return m_padding; }
    void setPadding(Padding padding) { m_padding = padding; }

    /// All fields. Empty for an empty record.
    RecordView fields() const
    {
        return m_class ? RecordView(*this, m_class->layout(), 0) : RecordView();
    }

    // The same for the fields of the class itself.
    bool has(FieldKey key) const { return fields().has(key); }
    std::int64_t integer(FieldKey key) const { return fields().integer(key); }
    bool flag(FieldKey key) const { return fields().flag(key); }
    double real(FieldKey key) const { return fields().real(key); }
    Point point(FieldKey key) const { return fields().point(key); }
    std::array<std::int64_t, 2> date(FieldKey key) const { return fields().date(key); }
    std::u16string_view text(FieldKey key) const { return fields().text(key); }
    std::uint64_t handle(FieldKey key) const { return fields().handle(key); }
    std::span<const std::uint8_t> bytes(FieldKey key) const { return fields().bytes(key); }
    BitRun bits(FieldKey key) const { return fields().bits(key); }
    RecordView structure(FieldKey key) const { return fields().structure(key); }
    ArrayView array(FieldKey key) const { return fields().array(key); }

    /// The words, for codecs and editors, which know what they do to them.
    WordBuffer& words() { return m_words; }
    const WordBuffer& words() const { return m_words; }
    /// Makes this an empty record of @p of, keeping the memory: every field at its default, fixed
    /// arrays not filled. @p more: words that will probably be appended.
    void reset(const ClassDef& of, std::uint32_t more);

    /// Equal class, handle and fields. Texts count by their units and references by their target;
    /// how they were stored does not count.
    friend bool operator==(const Record& a, const Record& b);

private:
    const ClassDef* m_class = nullptr; // classes live as long as the program
    std::uint64_t m_handle = 0;
    int m_typeNumber = 0;
    Version m_version = Version::Ac1032;
    Padding m_padding;
    WordBuffer m_words;
};

/// A text's slot: 29 bits of length and three marks on top of the count.
struct TextRun {
    static constexpr std::uint32_t kEndsInNul = 1u << 31; ///< as stored, a NUL followed
    static constexpr std::uint32_t kAsStored = 1u << 30;  ///< read, not set: the NUL mark counts
    /// Behind the units stand the bytes that were read (a word with their number, then they),
    /// because the code page does not lead back to them.
    static constexpr std::uint32_t kKeepsBytes = 1u << 29;
    static constexpr std::uint32_t kLengthMask = kKeepsBytes - 1;

    static std::uint32_t length(Run run) { return run.count & kLengthMask; }
    static std::uint32_t unitWords(Run run) { return (length(run) + 3) / 4; }
};

} // namespace db
