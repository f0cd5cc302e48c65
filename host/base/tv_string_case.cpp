#include "base/tv_string.h"

#include <algorithm>
#include <utility>

#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

namespace {

constexpr int kEnd = -1;

char16_t foldAscii(char16_t unit)
{
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
}

/// The units of a text after simple case folding, one by one. Folding keeps the number of units.
class FoldedUnits
{
public:
    explicit FoldedUnits(std::u16string_view text) : m_text(text) {}

    /// The next unit, or kEnd.
    int next()
    {
        if (m_trail)
            return std::exchange(m_trail, 0);
        if (m_at == m_text.size())
            return kEnd;
        const char16_t unit = m_text[m_at];
        if (unit < 0x80) {
            ++m_at;
            return foldAscii(unit);
        }
        return nextBeyondAscii();
    }

private:
    int nextBeyondAscii()
    {
        UChar32 point = 0;
        U16_NEXT(m_text.data(), m_at, m_text.size(), point);
        point = u_foldCase(point, U_FOLD_CASE_DEFAULT);
        if (U_IS_BMP(point))
            return static_cast<int>(point);
        m_trail = U16_TRAIL(point);
        return U16_LEAD(point);
    }

    std::u16string_view m_text;
    std::size_t m_at = 0;
    int m_trail = 0; // second half of a code point already begun; 0: none
};

/// How many units at the beginning are ASCII in both texts and equal without regard to case.
std::size_t equalAsciiRun(std::u16string_view left, std::u16string_view right)
{
    const std::size_t size = std::min(left.size(), right.size());
    std::size_t at = 0;
    while (at < size && left[at] < 0x80 && right[at] < 0x80 &&
           foldAscii(left[at]) == foldAscii(right[at]))
        ++at;
    return at;
}

} // namespace

namespace base {

int compareNoCase(std::u16string_view left, std::u16string_view right)
{
    const std::size_t equal = equalAsciiRun(left, right);
    FoldedUnits leftUnits(left.substr(equal));
    FoldedUnits rightUnits(right.substr(equal));
    for (;;) {
        const int leftUnit = leftUnits.next();
        const int rightUnit = rightUnits.next();
        if (leftUnit != rightUnit)
            return leftUnit < rightUnit ? -1 : 1;
        if (leftUnit == kEnd)
            return 0;
    }
}

std::size_t hashNoCase(std::u16string_view text)
{
    std::uint64_t hash = 0xcbf29ce484222325u; // FNV-1a, a unit at a time
    FoldedUnits units(text);
    for (int unit = units.next(); unit != kEnd; unit = units.next())
        hash = (hash ^ static_cast<std::uint64_t>(unit)) * 0x100000001b3u;
    return static_cast<std::size_t>(hash ^ (hash >> 32)); // tables look at the low bits
}

} // namespace base

TvString TvString::toLower() const
{
    std::u16string folded;
    folded.reserve(m_text.size());
    FoldedUnits units(m_text);
    for (int unit = units.next(); unit != kEnd; unit = units.next())
        folded.push_back(static_cast<char16_t>(unit));
    return folded;
}

TvString TvString::toUpper() const
{
    const auto convert = [this](std::u16string& out, UErrorCode& error) {
        return u_strToUpper(out.data(), static_cast<std::int32_t>(out.size()), m_text.data(),
                            length(), "", &error);
    };
    std::u16string upper(m_text.size(), u'\0');
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t needed = convert(upper, error);
    upper.resize(static_cast<std::size_t>(needed));
    if (error == U_BUFFER_OVERFLOW_ERROR) { // some letters become two or three
        error = U_ZERO_ERROR;
        convert(upper, error);
    }
    return U_FAILURE(error) ? *this : TvString(std::move(upper));
}
