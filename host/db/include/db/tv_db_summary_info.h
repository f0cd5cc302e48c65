#pragma once

#include <db/tv_db_database.h>

/// What people wrote about a drawing. A copy: changes reach the drawing with tvdbPutSummaryInfo.
class TvDbDatabaseSummaryInfo
{
public:
    explicit TvDbDatabaseSummaryInfo(TvDbDatabase* database) : m_database(database) {}

    TvStatusCode getTitle(TvString& out) const { return get(out, m_info.title); }
    TvStatusCode getSubject(TvString& out) const { return get(out, m_info.subject); }
    TvStatusCode getAuthor(TvString& out) const { return get(out, m_info.author); }
    TvStatusCode getKeywords(TvString& out) const { return get(out, m_info.keywords); }
    TvStatusCode getComments(TvString& out) const { return get(out, m_info.comments); }
    TvStatusCode getLastSavedBy(TvString& out) const { return get(out, m_info.lastSavedBy); }
    TvStatusCode getRevisionNumber(TvString& out) const { return get(out, m_info.revisionNumber); }
    TvStatusCode getHyperlinkBase(TvString& out) const { return get(out, m_info.hyperlinkBase); }
    int numCustomInfo() const { return static_cast<int>(m_info.custom.size()); }
    /// OutOfRange below 0 and from numCustomInfo() on.
    TvStatusCode getCustomSummaryInfo(int index, TvString& name, TvString& value) const;

    db::SummaryInfo& values() { return m_info; }
    const db::SummaryInfo& values() const { return m_info; }
    TvDbDatabase* database() const { return m_database; }

private:
    static TvStatusCode get(TvString& out, const std::u16string& text)
    {
        out = TvString(text);
        return TvStatus::Ok;
    }

    TvDbDatabase* m_database; // not owned; where it goes back to
    db::SummaryInfo m_info;
};

/// Reads the summary information of a drawing; a drawing without any gives empty texts.
/// @param out  the caller's to delete. NoDatabase for null.
TvStatusCode tvdbGetSummaryInfo(TvDbDatabase* database, TvDbDatabaseSummaryInfo*& out);
/// Puts it (back) into its drawing.
/// @return VersionNotWritable, with nothing changed, when the drawing's version has no room for it
///         (AC1015 keeps ten custom properties).
TvStatusCode tvdbPutSummaryInfo(const TvDbDatabaseSummaryInfo* info);

/// The picture of a drawing file, read without opening the drawing: a few reads of the file.
db::Preview tvdbGetPreviewBitmapFromDwg(const TvString& path);
