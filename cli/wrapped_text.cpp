#include "wrapped_text.h"

#include <algorithm>

namespace cli {

std::string wrappedText(const std::string& text, std::size_t indent)
{
    constexpr std::size_t kColumns = 74;
    std::string out;
    std::size_t column = 0;
    for (std::size_t from = 0; from < text.size();) {
        const std::size_t end = std::min(text.find(' ', from), text.size());
        const std::size_t length = end - from;
        if (column > 0 && column + 1 + length > kColumns) {
            out += "\n";
            column = 0;
        }
        out += column == 0 ? std::string(indent, ' ') : " ";
        out.append(text, from, length);
        column = (column == 0 ? indent : column + 1) + length;
        from = end + 1;
    }
    return out + "\n";
}

} // namespace cli
