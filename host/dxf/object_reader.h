#pragma once

#include <bitset>
#include <string>
#include <vector>

#include <base/status.h>
#include <db/record_editor.h>

#include "file_context.h"
#include "form.h"
#include "tags.h"

namespace dxf {

/// Groups of an object that its form does not know: where they belong, and their text.
struct UnknownGroups {
    int segment = -1; ///< of the form, behind whose groups they stand; -1: before the first marker
    std::string_view text;
};

/// Reads the groups of one object into a record, by the form of its class.
///
/// Groups may stand in any order between two markers. What the form does not know is told in
/// unknown(); a number that is none, or one that does not fit, fails. One reader reads one object
/// after the other, in the same memory.
class ObjectReader
{
public:
    explicit ObjectReader(const FileContext& context) : m_context(context) {}

    /// @p text: the object's groups, its name (code 0) included. Fails with Unsupported when its
    /// class has no form or a text is too long for records, with Damaged when a number is none.
    base::Status read(const db::ClassDef& classDef, std::string_view text, const ObjectPlace& place,
                      db::Record& record);
    /// More groups of the same object, which stand elsewhere in the file: read after read().
    base::Status readMore(std::string_view text);
    const std::vector<UnknownGroups>& unknown() const { return m_unknown; }

    // ---- for hooks

    db::Record& record() { return *m_record; }
    db::RecordEditor root() { return db::RecordEditor(*m_record); }
    /// The struct that the hook's line stands in: the object, or the element being read.
    db::RecordEditor frame();
    const FileContext& context() const { return m_context; }
    db::Version version() const { return m_context.version(); }
    const Form& form() const { return *m_form; }
    /// The decoded text of a group; until the next one is decoded.
    const std::u16string& text(const Tag& tag);
    std::uint64_t named(Table table, std::string_view asWritten) const
    {
        return m_context.recordNamed(table, asWritten);
    }
    /// Numbers of a group; a failure is noted, and 0 given.
    double real(const Tag& tag);
    std::int64_t integer(const Tag& tag);
    std::uint64_t handle(const Tag& tag);
    bool appendHex(const Tag& tag, std::vector<std::uint8_t>& bytes);
    void fail() { m_failed = true; }
    /// Sets a text of any length; one that records cannot hold makes the object one that is not
    /// understood.
    void setText(db::RecordEditor fields, db::FieldKey key, std::u16string_view value);
    void refuse() { m_tooLong = true; }

    /// What hooks keep between groups of one object.
    struct Scratch {
        std::string raw; ///< of a text in pieces, as written
        std::vector<std::u16string> texts;
        std::vector<Tag> tags; ///< of a list, read when it is complete
        std::vector<std::uint8_t> graphics;
        std::vector<double> reals[4];
        std::vector<db::Point> points[3];
        std::int64_t numbers[8] = {};
        bool flags[8] = {};
    };
    Scratch& scratch() { return m_scratch; }

private:
    /// A scope that is being read: a segment, an element or a struct.
    struct Level {
        const Scope* scope = nullptr;
        std::uint32_t base = 0;
        int closingCode = 0;     ///< 0: not in braces
        std::uint32_t index = 0; ///< of the element
        const Item* last = nullptr;
        std::bitset<256> used = {};
        std::array<std::uint32_t, kMaxCounters> counts = {}; ///< read elements of fixed arrays
    };

    bool readPreamble(const Tag& tag);
    bool readBracedGroup(const Tag& tag);
    bool readExtendedData(const Tag& tag);
    bool takesAll() const;
    void enterSegment(const Tag& tag);
    void readGroup(const Tag& tag);
    bool assign(const Tag& tag);
    bool assignAt(std::size_t level, const Tag& tag);
    const Scope::Target* choose(Level& level, const Tag& tag) const;
    bool isFree(const Level& level, const Item& item, std::uint16_t at) const;
    bool guardsHold(const Level& level, const Item& item) const;
    bool take(std::size_t level, const Scope::Target& target, const Tag& tag);
    bool takeField(Level& level, const Item& item, std::uint8_t component, const Tag& tag);
    bool takeColor(Level& level, const Item& item, std::uint8_t component, const Tag& tag);
    bool takeArray(Level& level, const Item& item, std::uint8_t component, const Tag& tag);
    bool setElement(const Item& item, std::uint32_t word, std::uint8_t component, const Tag& tag);
    bool takeZip(Level& level, const Item& item, const Tag& tag);
    bool beginElement(std::size_t level, const Item& item, const Tag& tag);
    bool callHook(const Level& level, const Item& item, const Tag& tag);
    bool setReal(std::uint32_t slot, const Tag& tag);
    bool setInteger(const Item& item, std::uint32_t slot, const Tag& tag);
    bool setHandle(const Item& item, std::uint32_t slot, const Tag& tag);
    bool setText(std::uint32_t slot, const Tag& tag);
    bool takeBytes(const Level& level, const Item& item, const Tag& tag);
    void flushBytes();
    void openGuards(const Level& level, const Item& item);
    void note(const Tag& tag);
    std::uint64_t* words() { return m_record->words().data(); }
    void begin(const db::ClassDef& classDef, const ObjectPlace& place);
    void readTags(std::string_view text);
    base::Status finish();

    const FileContext& m_context;
    db::Record* m_record = nullptr; // not owned; the caller's, while it reads
    const Form* m_form = nullptr;
    std::vector<Level> m_segments; // the outermost level of each
    std::vector<Level> m_stack;    // what is open above it
    std::vector<UnknownGroups> m_unknown;
    std::u16string m_text;
    Scratch m_scratch;
    int m_current = -1;         // segment; -1: no marker yet
    int m_last = -1;            // segment that groups of an unknown one stand behind
    bool m_inUnknown = false;   // segment
    bool m_isBehindAll = false; // in extended data, which ends a list that takes all
    bool m_failed = false;
    bool m_tooLong = false;
    int m_group = 0; // in braces (102), by its name; 0: in none
    const char* m_tagBegin = nullptr;
    const char* m_tagEnd = nullptr;
    const Item* m_hookItem = nullptr;
    std::uint32_t m_hookBase = 0;
    std::uint32_t m_bytesSlot = 0; // of the field that m_bytes go to
    const Item* m_bytesItem = nullptr;
    std::uint32_t m_bytesBase = 0;
    std::vector<std::uint8_t> m_bytes;
    bool m_sawHandle = false;
    bool m_sawOwner = false;
    bool m_knowsApplication = false; // of the extended data being read
};

} // namespace dxf
