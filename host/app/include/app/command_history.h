#pragma once

#include <vector>

#include <base/tv_string.h>

namespace app {

/// The lines that were typed, for going back to them with the arrow keys.
///
/// What stands in the line when the way back begins is kept as the end of the way forward. A line
/// that equals the one before it is not noted again.
class CommandHistory
{
public:
    static constexpr std::size_t kMost = 500;

    /// Notes a line that was entered, and ends the way back. Blank lines are not noted.
    void add(const TvString& line);
    /// The line before; @p typed itself at the beginning. @param typed  what stands in the line
    /// now.
    TvString older(const TvString& typed);
    /// The line after; what was typed first at the end.
    TvString newer(const TvString& typed);
    /// The oldest first.
    const std::vector<TvString>& lines() const { return m_lines; }

private:
    std::vector<TvString> m_lines;
    std::size_t m_at = 0; ///< of the line that is shown; the count of lines: what is being typed
    TvString m_draft;
};

} // namespace app
