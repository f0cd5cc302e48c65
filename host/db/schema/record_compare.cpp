#include <algorithm>
#include <bit>

#include "db/record.h"

namespace db {

namespace {

bool sameStruct(const RecordView& a, const RecordView& b);

bool sameElement(const ArrayView& a, const ArrayView& b, std::uint32_t index, const FieldDef& field)
{
    const auto bitsOf = [](const Point& p) {
        return std::array{std::bit_cast<std::uint64_t>(p.x), std::bit_cast<std::uint64_t>(p.y),
                          std::bit_cast<std::uint64_t>(p.z)};
    };
    switch (field.element) {
    case Storage::Integer: return a.integer(index) == b.integer(index);
    case Storage::Real: return bitsOf(a.point(index)) == bitsOf(b.point(index));
    case Storage::Handle: return a.handle(index) == b.handle(index);
    case Storage::Text: return a.text(index) == b.text(index);
    default: return sameStruct(a[index], b[index]);
    }
}

bool sameArray(const ArrayView& a, const ArrayView& b, const FieldDef& field)
{
    if (a.size() != b.size())
        return false;
    for (std::uint32_t i = 0; i < a.size(); ++i)
        if (!sameElement(a, b, i, field))
            return false;
    return true;
}

// The last byte may hold bits beyond the count.
bool sameBits(const BitRun& a, const BitRun& b)
{
    if (a.count != b.count)
        return false;
    const std::uint32_t full = a.count / 8;
    if (!std::equal(a.bytes().begin(), a.bytes().begin() + full, b.bytes().begin()))
        return false;
    const unsigned rest = a.count % 8;
    return rest == 0 || (a.bytes()[full] ^ b.bytes()[full]) >> (8 - rest) == 0;
}

class FieldComparison : public RecordView
{
public:
    explicit FieldComparison(const RecordView& view) : RecordView(view) {}

    bool sameWords(const FieldComparison& other, const FieldDef& field) const
    {
        for (std::uint32_t i = 0; i < field.width; ++i)
            if (word(field, i) != other.word(field, i))
                return false;
        return true;
    }
};

bool sameField(const RecordView& a, const RecordView& b, const FieldDef& field)
{
    switch (field.storage) {
    case Storage::Integer:
    case Storage::Real: return FieldComparison(a).sameWords(FieldComparison(b), field);
    case Storage::Handle: return a.handle(field.id) == b.handle(field.id);
    case Storage::Text: return a.text(field.id) == b.text(field.id);
    case Storage::Bits: return sameBits(a.bits(field.id), b.bits(field.id));
    case Storage::Bytes: {
        const auto left = a.bytes(field.id);
        const auto right = b.bytes(field.id);
        return std::equal(left.begin(), left.end(), right.begin(), right.end());
    }
    case Storage::Struct: return sameStruct(a.structure(field.id), b.structure(field.id));
    case Storage::Array: return sameArray(a.array(field.id), b.array(field.id), field);
    }
    return false;
}

bool sameStruct(const RecordView& a, const RecordView& b)
{
    const auto& fields = a.def()->fields;
    return std::all_of(fields.begin(), fields.end(),
                       [&](const FieldDef& field) { return sameField(a, b, field); });
}

} // namespace

bool operator==(const Record& a, const Record& b)
{
    if (a.m_class != b.m_class || a.m_handle != b.m_handle)
        return false;
    return !a.m_class || sameStruct(a.fields(), b.fields());
}

} // namespace db
