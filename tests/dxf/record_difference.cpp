#include "record_difference.h"

#include <cmath>
#include <cstdio>

#include <base/tv_string.h>
#include <db/program_runner.h>

#include "text_coding.h"

namespace {

/// Notes which slots the record's version stores; the others hold what nobody wrote.
class StoredSlots
{
public:
    explicit StoredSlots(const db::Record& record)
        : m_words(record.words().data()), m_stored(record.words().size(), false)
    {
        m_isWhole =
            db::ProgramRunner<StoredSlots>(*this, record.classDef()->program(record.version()))
                .run();
    }

    const std::uint64_t* words() const { return m_words; }
    bool ok() const { return true; }
    void field(const db::Op& op, std::uint32_t slot)
    {
        m_stored[slot] = true;
        const bool isReal = op.code == db::OpCode::RawDouble || op.code == db::OpCode::BitDouble ||
                            op.code == db::OpCode::DefaultDouble;
        for (std::uint32_t i = 1; isReal && i < op.arity; ++i)
            m_stored[slot + i] = true; // one by one, when components are fields of their own
    }
    void bytes(std::uint32_t slot, std::int64_t) { m_stored[slot] = true; }
    void chain(std::uint32_t slot, std::int64_t) { m_stored[slot] = true; }
    std::uint32_t enter(std::uint32_t slot, const db::LoopInfo&, std::int64_t)
    {
        m_stored[slot] = true;
        return db::arrayOf(m_words[slot]).offset;
    }

    bool isWhole() const { return m_isWhole; }
    bool isStored(std::uint32_t slot) const { return m_stored[slot]; }

private:
    const std::uint64_t* m_words;
    std::vector<bool> m_stored;
    bool m_isWhole = false;
};

class Comparison
{
public:
    Comparison(const db::Record& a, const std::set<std::uint64_t>& away) : m_stored(a), m_away(away)
    {
    }

    void compare(const db::RecordView& a, const db::RecordView& b, const std::string& path)
    {
        std::set<db::FieldId> counts; // of arrays, which are compared themselves
        for (const db::FieldDef& field : a.def()->fields)
            if (field.storage == db::Storage::Array)
                counts.insert(field.count);
        for (const db::FieldDef& field : a.def()->fields)
            if (!counts.contains(field.id))
                compareField(a, b, field, path + std::string(db::fieldName(field.id)));
    }
    std::vector<std::string> found;

private:
    const StoredSlots m_stored;
    const std::set<std::uint64_t>& m_away;

    void note(const std::string& path, const std::string& a, const std::string& b)
    {
        found.push_back(path + ": " + a + " / " + b);
    }
    static std::string shown(double value)
    {
        char text[40];
        std::snprintf(text, sizeof text, "%.17g", value);
        return text;
    }
    static std::string shown(const db::Point& p)
    {
        return shown(p.x) + "," + shown(p.y) + "," + shown(p.z);
    }
    static std::string shown(std::u16string_view text) { return base::utf8FromUtf16(text); }

    static bool same(double a, double b)
    {
        return std::fabs(a - b) <= 1e-11 * std::max({1.0, std::fabs(a), std::fabs(b)});
    }
    static bool same(const db::Point& a, const db::Point& b)
    {
        return same(a.x, b.x) && same(a.y, b.y) && same(a.z, b.z);
    }
    static std::u16string resolved(std::u16string_view text)
    {
        return dxf::TextCoding::resolved(text);
    }

    void compareField(const db::RecordView& a, const db::RecordView& b, const db::FieldDef& field,
                      const std::string& path)
    {
        if (field.storage != db::Storage::Struct && !m_stored.isStored(a.base() + field.slot))
            return;
        switch (field.storage) {
        case db::Storage::Struct:
            if (field.structure->name == "CMC" || field.structure->name == "TC")
                return compareColor(a.structure(field.id), b.structure(field.id), path);
            return compare(a.structure(field.id), b.structure(field.id), path + ".");
        case db::Storage::Array: return compareArray(a, b, field, path);
        default: break;
        }
        switch (field.storage) {
        case db::Storage::Integer:
            if (a.integer(field.id) != b.integer(field.id))
                note(path, std::to_string(a.integer(field.id)),
                     std::to_string(b.integer(field.id)));
            return;
        case db::Storage::Real:
            if (!same(a.point(field.id), b.point(field.id)))
                note(path, shown(a.point(field.id)), shown(b.point(field.id)));
            return;
        case db::Storage::Handle:
            if (a.handle(field.id) != b.handle(field.id))
                note(path, std::to_string(a.handle(field.id)), std::to_string(b.handle(field.id)));
            return;
        case db::Storage::Text:
            if (resolved(a.text(field.id)) != resolved(b.text(field.id)))
                note(path, shown(a.text(field.id)), shown(b.text(field.id)));
            return;
        default: {
            const auto left = a.bytes(field.id), right = b.bytes(field.id);
            if (!std::equal(left.begin(), left.end(), right.begin(), right.end()))
                note(path, std::to_string(left.size()), std::to_string(right.size()));
        }
        }
    }

    // By the parts that the version stores.
    void compareColor(const db::RecordView& a, const db::RecordView& b, const std::string& path)
    {
        for (const db::FieldDef& part : a.def()->fields) {
            if (!m_stored.isStored(a.base() + part.slot))
                continue;
            const std::string at = path + "." + std::string(db::fieldName(part.id));
            if (part.storage == db::Storage::Integer && a.integer(part.id) != b.integer(part.id))
                note(at, std::to_string(a.integer(part.id)), std::to_string(b.integer(part.id)));
            if (part.storage == db::Storage::Text && a.text(part.id) != b.text(part.id))
                note(at, shown(a.text(part.id)), shown(b.text(part.id)));
        }
    }

    // Empty entries, and those of objects that are away, do not count.
    void compareHandles(const db::ArrayView& a, const db::ArrayView& b, const std::string& path)
    {
        const auto listed = [&](const db::ArrayView& array) {
            std::vector<std::uint64_t> handles;
            for (std::uint32_t i = 0; i < array.size(); ++i)
                if (array.handle(i) != 0 && !m_away.contains(array.handle(i)))
                    handles.push_back(array.handle(i));
            return handles;
        };
        const auto left = listed(a), right = listed(b);
        if (left.size() != right.size())
            return note(path, std::to_string(left.size()), std::to_string(right.size()));
        for (std::size_t i = 0; i < left.size(); ++i)
            if (left[i] != right[i])
                note(path + "[" + std::to_string(i) + "]", std::to_string(left[i]),
                     std::to_string(right[i]));
    }

    void compareArray(const db::RecordView& a, const db::RecordView& b, const db::FieldDef& field,
                      const std::string& path)
    {
        const db::ArrayView left = a.array(field.id), right = b.array(field.id);
        const bool isStruct = field.element == db::Storage::Struct;
        if (field.element == db::Storage::Handle)
            return compareHandles(left, right, path);
        if (left.size() != right.size())
            return note(path, std::to_string(left.size()), std::to_string(right.size()));
        for (std::uint32_t i = 0; i < left.size(); ++i) {
            const std::string at = path + "[" + std::to_string(i) + "]";
            if (isStruct)
                compare(left[i], right[i], at + ".");
            else if (left.integer(i) != right.integer(i) || left.handle(i) != right.handle(i))
                note(at, std::to_string(left.integer(i) + static_cast<long>(left.handle(i))),
                     std::to_string(right.integer(i) + static_cast<long>(right.handle(i))));
            else if (!same(left.point(i), right.point(i)) && field.element == db::Storage::Real)
                note(at, shown(left.point(i)), shown(right.point(i)));
            else if (resolved(left.text(i)) != resolved(right.text(i)))
                note(at, shown(left.text(i)), shown(right.text(i)));
        }
    }
};

} // namespace

std::vector<std::string> differences(const db::Record& a, const db::Record& b,
                                     const std::set<std::uint64_t>& away)
{
    if (a.classDef() != b.classDef())
        return {"class"};
    Comparison comparison(a, away);
    comparison.compare(a.fields(), b.fields(), {});
    return std::move(comparison.found);
}
