#include "base/tv_string.h"

#include <algorithm>
#include <iterator>

#include <unicode/uchar.h>

#include "base/kv_error_status.h"

namespace {

constexpr std::size_t kMaxUnits = 0x7fffffff;

void requireRoomFor(std::size_t units)
{
    if (units > kMaxUnits)
        throwErrorStatus(kvErrOutOfMemory);
}

std::u16string_view viewOf(const TvChar* text, std::size_t length)
{
    requireRoomFor(length);
    return text ? std::u16string_view(text, length) : std::u16string_view();
}

int positionOf(std::size_t found)
{
    return found == std::u16string_view::npos ? TvString::npos : static_cast<int>(found);
}

int signOf(int difference)
{
    return (difference > 0) - (difference < 0);
}

bool isBlank(TvChar unit)
{
    return u_isUWhiteSpace(unit) != 0; // every white space of Unicode has one unit
}

} // namespace

namespace base {

FormatArgument::FormatArgument(const TvString& text) : FormatArgument(text.view()) {}

} // namespace base

TvString::TvString(const TvChar* text)
    : TvString(text ? std::u16string_view(text) : std::u16string_view())
{
}

TvString::TvString(const TvChar* text, std::size_t length) : m_text(viewOf(text, length)) {}

TvString::TvString(std::u16string_view text) : m_text(viewOf(text.data(), text.size())) {}

TvString::TvString(std::u16string text) : m_text(std::move(text))
{
    requireRoomFor(m_text.size());
}

TvString::TvString(const char* utf8) : TvString(utf8 ? std::string_view(utf8) : std::string_view())
{
}

TvString::TvString(std::string_view utf8) : TvString(base::utf16FromUtf8(utf8)) {}

TvString::TvString(const wchar_t* text)
    : TvString(base::utf16FromWide(text ? std::wstring_view(text) : std::wstring_view()))
{
}

std::string TvString::utf8() const
{
    return base::utf8FromUtf16(m_text);
}

TvChar TvString::at(int index) const
{
    return index >= 0 && index < length() ? m_text[static_cast<std::size_t>(index)] : u'\0';
}

TvString& TvString::setEmpty()
{
    m_text.clear();
    return *this;
}

TvString& TvString::append(std::u16string_view text)
{
    requireRoomFor(m_text.size() + text.size());
    m_text.append(text);
    return *this;
}

TvString& TvString::operator+=(TvChar unit)
{
    requireRoomFor(m_text.size() + 1);
    m_text.push_back(unit);
    return *this;
}

int TvString::compare(std::u16string_view other) const
{
    return signOf(view().compare(other));
}

int TvString::compareNoCase(std::u16string_view other) const
{
    return base::compareNoCase(m_text, other);
}

int TvString::find(std::u16string_view text, int from) const
{
    return positionOf(m_text.find(text, static_cast<std::size_t>(std::max(from, 0))));
}

int TvString::find(TvChar unit, int from) const
{
    return positionOf(m_text.find(unit, static_cast<std::size_t>(std::max(from, 0))));
}

int TvString::findRev(TvChar unit) const
{
    return positionOf(m_text.rfind(unit));
}

int TvString::findRev(std::u16string_view text) const
{
    return positionOf(m_text.rfind(text));
}

int TvString::findLastOneOf(std::u16string_view units) const
{
    return positionOf(m_text.find_last_of(units));
}

TvString TvString::substr(int start, int count) const
{
    const std::int64_t size = length();
    const std::int64_t end =
        count < 0 ? size : std::min<std::int64_t>(std::int64_t(start) + count, size);
    const std::int64_t begin = std::max(start, 0);
    if (begin >= end)
        return {};
    return view().substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
}

TvString TvString::right(int count) const
{
    return count <= 0 ? TvString() : substr(std::max(length() - count, 0));
}

TvString TvString::trimmed() const
{
    const auto begin = std::find_if_not(m_text.begin(), m_text.end(), isBlank);
    const auto end =
        std::find_if_not(m_text.rbegin(), std::make_reverse_iterator(begin), isBlank).base();
    return std::u16string(begin, end);
}

TvString TvString::replaced(std::u16string_view from, std::u16string_view to) const
{
    if (from.empty())
        return *this;
    TvString result;
    std::size_t done = 0;
    for (std::size_t at = m_text.find(from); at != std::u16string::npos;
         at = m_text.find(from, done)) {
        result.append(view().substr(done, at - done)).append(to);
        done = at + from.size();
    }
    return result.append(view().substr(done));
}

bool TvString::startsWith(std::u16string_view text) const
{
    return view().starts_with(text);
}

bool TvString::endsWith(std::u16string_view text) const
{
    return view().ends_with(text);
}

bool TvString::endsWithNoCase(std::u16string_view text) const
{
    return text.size() <= m_text.size() &&
           base::equalNoCase(view().substr(m_text.size() - text.size()), text);
}

TvString operator+(const TvString& left, std::u16string_view right)
{
    TvString result = left;
    return result.append(right);
}
