#include "columns.h"

#include <algorithm>

namespace cli {

namespace {

TvString spaces(int count)
{
    return TvString(std::u16string(static_cast<std::size_t>(count), u' '));
}

} // namespace

void Columns::print(Console& console, const TvString& indent) const
{
    constexpr int kGap = 2;
    std::vector<int> widths;
    for (const std::vector<Piece>& line : m_lines) {
        widths.resize(std::max(widths.size(), line.size()));
        for (std::size_t at = 0; at < line.size(); ++at)
            widths[at] = std::max(widths[at], line[at].text.length());
    }
    for (std::vector<Piece> line : m_lines) {
        while (!line.empty() && line.back().text.isEmpty())
            line.pop_back();
        for (std::size_t at = 0; at < line.size(); ++at) {
            const TvString space = spaces(widths[at] - line[at].text.length());
            const bool isLast = at + 1 == line.size();
            if (static_cast<int>(at) == m_numbers)
                line[at].text = space + line[at].text;
            else if (!isLast)
                line[at].text += space;
            if (!isLast)
                line[at].text += spaces(kGap);
        }
        line.insert(line.begin(), {indent});
        console.line(line);
    }
}

} // namespace cli
