#pragma once

#include <functional>
#include <optional>

#include <base/tv_string.h>

/// Asks whether a drawing is to forget a sheet set that cannot be opened.
class CMissingSheetSetLinkDialog
{
public:
    /// @param drawingPath   shown without its folder where there is no window for the question.
    /// @param sheetSetPath  the .dst, as the drawing names it.
    CMissingSheetSetLinkDialog(const TvString& drawingPath, const TvString& sheetSetPath)
        : m_drawingPath(drawingPath), m_sheetSetPath(sheetSetPath)
    {
    }

    /// 1: the link is to be dropped (RemoveSheetData is the caller's); any other answer, and nobody
    /// to ask: it stays.
    int DoModal() const;

private:
    TvString m_drawingPath;
    TvString m_sheetSetPath;
};

namespace core {

/// Shows the question in a window of its own, and gives its answer; nothing in a process without
/// windows: it is a message then.
using MissingLinkWindow =
    std::function<std::optional<int>(const TvString& drawingPath, const TvString& sheetSetPath)>;
/// Supplied by the room that has the windows; an empty function takes it away.
void setMissingLinkWindow(MissingLinkWindow window);

} // namespace core
