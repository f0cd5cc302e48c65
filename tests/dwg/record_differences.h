#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <set>
#include <string>

#include <db/record.h>

/// Names of the fields in which two records of one class differ, those of structs behind a point,
/// those of elements behind "[]": what a test says of two records, whatever their class.
class RecordDifferences
{
public:
    RecordDifferences(const db::Record& a, const db::Record& b)
    {
        if (a.classDef() != b.classDef() || a.handle() != b.handle())
            m_names.insert("class or handle");
        else
            compare(a.fields(), b.fields(), "");
    }

    const std::set<std::string>& names() const { return m_names; }

private:
    void compare(const db::RecordView& a, const db::RecordView& b, const std::string& before)
    {
        for (const db::FieldDef& field : a.def()->fields)
            compareField(a, b, field, before + std::string(db::fieldName(field.id)));
    }

    void compareField(const db::RecordView& a, const db::RecordView& b, const db::FieldDef& field,
                      const std::string& name)
    {
        const db::FieldId id = field.id;
        switch (field.storage) {
        case db::Storage::Integer:
            // A date has two.
            return note(a.integer(id) == b.integer(id) && a.date(id) == b.date(id), name);
        case db::Storage::Real: return note(isSame(a.point(id), b.point(id)), name);
        case db::Storage::Handle: return note(a.handle(id) == b.handle(id), name);
        case db::Storage::Text: return note(a.text(id) == b.text(id), name);
        case db::Storage::Bytes: return note(isSame(a.bytes(id), b.bytes(id)), name);
        case db::Storage::Bits:
            return note(a.bits(id).count == b.bits(id).count &&
                            isSame(a.bits(id).bytes(), b.bits(id).bytes()),
                        name);
        case db::Storage::Struct: return compare(a.structure(id), b.structure(id), name + ".");
        case db::Storage::Array: return compareArray(a.array(id), b.array(id), field, name);
        }
    }

    void compareArray(const db::ArrayView& a, const db::ArrayView& b, const db::FieldDef& field,
                      const std::string& name)
    {
        note(a.size() == b.size(), name + "[]");
        for (std::uint32_t i = 0; i < std::min(a.size(), b.size()); ++i)
            switch (field.element) {
            case db::Storage::Integer: note(a.integer(i) == b.integer(i), name + "[]"); break;
            case db::Storage::Real: note(isSame(a.point(i), b.point(i)), name + "[]"); break;
            case db::Storage::Handle: note(a.handle(i) == b.handle(i), name + "[]"); break;
            case db::Storage::Text: note(a.text(i) == b.text(i), name + "[]"); break;
            default: compare(a[i], b[i], name + "[].");
            }
    }

    static bool isSame(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b)
    {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }
    // Bit by bit: one that is no number is equal to itself here.
    static bool isSame(const db::Point& a, const db::Point& b)
    {
        const auto bits = [](const db::Point& p) {
            return std::array{std::bit_cast<std::uint64_t>(p.x), std::bit_cast<std::uint64_t>(p.y),
                              std::bit_cast<std::uint64_t>(p.z)};
        };
        return bits(a) == bits(b);
    }
    void note(bool isEqual, const std::string& name)
    {
        if (!isEqual)
            m_names.insert(name);
    }

    std::set<std::string> m_names;
};
