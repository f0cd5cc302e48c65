#include "app/command_history.h"

namespace app {

void CommandHistory::add(const TvString& line)
{
    if (!line.trimmed().isEmpty() && (m_lines.empty() || m_lines.back() != line)) {
        if (m_lines.size() == kMost)
            m_lines.erase(m_lines.begin());
        m_lines.push_back(line);
    }
    m_at = m_lines.size();
    m_draft.setEmpty();
}

TvString CommandHistory::older(const TvString& typed)
{
    if (m_at == 0)
        return typed;
    if (m_at == m_lines.size())
        m_draft = typed;
    return m_lines[--m_at];
}

TvString CommandHistory::newer(const TvString& typed)
{
    if (m_at == m_lines.size())
        return typed;
    ++m_at;
    return m_at == m_lines.size() ? m_draft : m_lines[m_at];
}

} // namespace app
