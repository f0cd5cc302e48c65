#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include <base/format_argument.h>

/// One unit of the system's text: UTF-16, on every platform. Where an interface speaks of wide
/// text, it means this unit, not the compiler's wchar_t (which has 32 bits on Linux).
using TvChar = char16_t;

/// Text as a value: UTF-16, never null, cheap to move, at most 2^31 - 1 units; what would make it
/// longer throws a KvErrorStatus (out of memory).
///
/// Ill-formed UTF-16 (lone surrogates) is kept as it is: a file name or an old drawing may hold it,
/// and nothing that was read may change on its way back. Positions and lengths count UTF-16 units.
///
/// Three comparisons, for three purposes:
///  - compare: identity, unit by unit, as keys and stored names are compared;
///  - compareNoCase: equality without regard to case (Unicode simple case folding, no locale);
///  - collateNoCase: the order that a reader expects ("Plan 9" before "Plan 10"), for sorting only.
class TvString
{
public:
    /// "Not found" of the searching functions.
    static constexpr int npos = -1;

    TvString() = default;
    /// @param text zero-terminated; null gives an empty text.
    TvString(const TvChar* text);
    TvString(const TvChar* text, std::size_t length);
    TvString(std::u16string_view text);
    TvString(std::u16string text);
    /// From zero-terminated UTF-8; null gives an empty text; bytes that are no UTF-8 become U+FFFD.
    TvString(const char* utf8);
    explicit TvString(std::string_view utf8);
    /// From the compiler's wide text (UTF-32 on Linux, UTF-16 on Windows); null gives an empty
    /// text.
    TvString(const wchar_t* text);

    /// Zero-terminated units; valid until this text changes or goes.
    const TvChar* kwszPtr() const { return m_text.c_str(); }
    std::u16string_view view() const { return m_text; }
    operator std::u16string_view() const { return m_text; }
    /// UTF-8; a lone surrogate becomes U+FFFD.
    std::string utf8() const;

    bool isEmpty() const { return m_text.empty(); }
    /// Number of UTF-16 units.
    int length() const { return static_cast<int>(m_text.size()); }
    /// The unit at @p index; 0 when there is none.
    TvChar at(int index) const;

    TvString& setEmpty();
    TvString& append(std::u16string_view text);
    TvString& operator+=(std::u16string_view text) { return append(text); }
    TvString& operator+=(TvChar unit);

    /// Replaces this text by @p pattern with its arguments put in, printf-style.
    ///
    /// Conversions: %ls (text), %s (text; a char* is UTF-8), %d %i %u %x %X %c %f %e %g %%; with
    /// the flags
    /// `-`, `0`, `+`, blank, `#`, a width, a precision and the length marks h, l, ll, which change
    /// nothing. `%2$ls` takes the second argument, as a translation may need; conversions without a
    /// position take the arguments in order, and one with a position neither uses one up nor moves
    /// on. Numbers are written with a point and without grouping, whatever the locale. Width and
    /// precision of texts count units; a precision never parts a surrogate pair.
    ///
    /// No pattern can crash or read what was not passed: an argument of the wrong kind is written
    /// in the way that suits it (a text as text, a real like %g, a whole number in decimal; the
    /// sign of a number is kept under %u), a missing one as nothing, an unknown conversion (%n, %p,
    /// a percent sign at the end) as it stands; width and precision are cut at 1024, and a `*` in
    /// their place stands for none and takes no argument. Arguments and pattern may be this text
    /// itself.
    template <class... Args>
    TvString& format(const TvString& pattern, const Args&... args)
    {
        const base::FormatArgument packed[] = {base::FormatArgument(args)...,
                                               base::FormatArgument()};
        return formatArguments(pattern, {packed, sizeof...(Args)});
    }
    /// The same with arguments gathered at run time.
    TvString& formatArguments(const TvString& pattern, std::span<const base::FormatArgument> args);

    /// Below, at or above zero, unit by unit.
    int compare(std::u16string_view other) const;
    /// The same after Unicode simple case folding of both sides. Zero means equal without regard to
    /// case.
    int compareNoCase(std::u16string_view other) const;
    /// Order for people: ICU's root collation, digits by their value, case ignored; texts that
    /// collate equal are put in order by compare(), so that a sort is the same everywhere.
    int collateNoCase(const TvString& other) const;

    /// Position of the first @p text at or after @p from; npos when there is none.
    int find(std::u16string_view text, int from = 0) const;
    int find(TvChar unit, int from = 0) const;
    /// Position of the last @p unit or @p text; npos when there is none.
    int findRev(TvChar unit) const;
    int findRev(std::u16string_view text) const;
    /// Position of the last unit that is one of @p units; npos when there is none.
    int findLastOneOf(std::u16string_view units) const;

    /// The units from @p start to the end, or @p count of them (below 0: to the end). What is out
    /// of range is cut, never an error: substr(-1, 3) gives the first two.
    TvString substr(int start, int count = -1) const;
    TvString left(int count) const { return substr(0, count < 0 ? 0 : count); }
    TvString right(int count) const;
    TvString toLower() const; ///< Simple case folding, for keys; no locale.
    TvString toUpper() const; ///< Unicode upper case, root locale.
    TvString trimmed() const; ///< Without white space at both ends.
    TvString replaced(std::u16string_view from, std::u16string_view to) const;
    bool startsWith(std::u16string_view text) const;
    bool endsWith(std::u16string_view text) const;
    bool endsWithNoCase(std::u16string_view text) const;

    friend bool operator==(const TvString&, const TvString&) = default;
    friend std::strong_ordering operator<=>(const TvString&, const TvString&) = default;
    /// With views, strings and literals, without making a text of them first.
    template <class T>
    requires(std::convertible_to<const T&, std::u16string_view> && !std::same_as<T, TvString> &&
             !std::is_pointer_v<T>) friend bool
    operator==(const TvString& left, const T& right)
    {
        return left.view() == std::u16string_view(right);
    }

private:
    std::u16string m_text;
};

TvString operator+(const TvString& left, std::u16string_view right);

namespace base {

/// The order of compareNoCase for views that are no TvString; equal without regard to case gives 0.
int compareNoCase(std::u16string_view left, std::u16string_view right);
inline bool equalNoCase(std::u16string_view left, std::u16string_view right)
{
    return left.size() == right.size() ? compareNoCase(left, right) == 0 : false;
}

/// A hash that is equal for texts that are equal without regard to case. Not for storing.
std::size_t hashNoCase(std::u16string_view text);

/// UTF-8 to UTF-16; ill-formed bytes become U+FFFD.
std::u16string utf16FromUtf8(std::string_view text);
/// UTF-16 to UTF-8; lone surrogates become U+FFFD.
std::string utf8FromUtf16(std::u16string_view text);
/// From the compiler's wide text; a value that is no code point becomes U+FFFD, a surrogate stays a
/// unit.
std::u16string utf16FromWide(std::wstring_view text);
/// Whether @p text is well-formed UTF-8 (no overlong forms, no surrogates, at most U+10FFFF).
bool isWellFormedUtf8(std::string_view text);

/// Text from outside made safe for a terminal, a log line or a label: control characters (C0 but
/// for none, DEL, C1), line and paragraph separators and direction overrides become visible \xNN or
/// \u{NNNN} marks. Nothing else changes.
TvString escapedForDisplay(const TvString& text);

} // namespace base

template <>
struct std::hash<TvString> {
    std::size_t operator()(const TvString& text) const noexcept
    {
        return std::hash<std::u16string_view>()(text.view());
    }
};
