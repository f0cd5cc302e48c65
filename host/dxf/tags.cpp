#include "tags.h"

#include <charconv>
#include <cmath>

namespace dxf {

namespace {

struct CodeRange {
    int first, last;
    ValueKind kind;
};

// What stands in no range is text.
constexpr CodeRange kRanges[] = {
    {5, 5, ValueKind::Handle},        {10, 59, ValueKind::Real},
    {60, 99, ValueKind::Integer},     {105, 105, ValueKind::Handle},
    {110, 149, ValueKind::Real},      {160, 179, ValueKind::Integer},
    {210, 239, ValueKind::Real},      {270, 299, ValueKind::Integer},
    {310, 319, ValueKind::Bytes},     {320, 369, ValueKind::Handle},
    {370, 389, ValueKind::Integer},   {390, 399, ValueKind::Handle},
    {400, 409, ValueKind::Integer},   {420, 429, ValueKind::Integer},
    {440, 459, ValueKind::Integer},   {460, 469, ValueKind::Real},
    {480, 481, ValueKind::Handle},    {1004, 1004, ValueKind::Bytes},
    {1005, 1005, ValueKind::Handle},  {1010, 1059, ValueKind::Real},
    {1060, 1071, ValueKind::Integer},
};

template <class Number, class... Form>
std::optional<Number> numberIn(std::string_view text, Form... form)
{
    text = trimmed(text);
    if (text.starts_with('+'))
        text.remove_prefix(1);
    Number value{};
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, value, form...);
    if (read.ec != std::errc() || read.ptr != end)
        return std::nullopt;
    return value;
}

} // namespace

ValueKind valueKind(int code)
{
    for (const CodeRange& range : kRanges)
        if (range.first <= code && code <= range.last)
            return range.kind;
    return ValueKind::Text;
}

std::string_view trimmed(std::string_view text)
{
    const auto isSpace = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

std::optional<std::int64_t> integerIn(std::string_view text)
{
    return numberIn<std::int64_t>(text);
}

std::optional<double> realIn(std::string_view text)
{
    const auto value = numberIn<double>(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<std::uint64_t> handleIn(std::string_view text)
{
    const auto value = numberIn<std::uint64_t>(text, 16);
    return value && *value >> 60 == 0 ? value : std::nullopt;
}

} // namespace dxf
