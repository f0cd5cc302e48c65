#pragma once

#include <base/tv_string.h>

/// Asks whether a drawing is to forget a sheet set that cannot be opened.
class CMissingSheetSetLinkDialog
{
public:
    /// @param drawingPath   shown without its folder.
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
