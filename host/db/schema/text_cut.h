#pragma once

#include <string_view>

namespace db {

inline std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// What stands before the first @p mark of @p rest, which then begins behind it.
inline std::string_view cutAt(std::string_view& rest, char mark)
{
    const auto end = rest.find(mark);
    const std::string_view head = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    return head;
}

} // namespace db
