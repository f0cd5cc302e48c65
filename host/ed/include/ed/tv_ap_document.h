#pragma once

#include <memory>
#include <optional>

#include <base/file_identity.h>
#include <base/tv_string.h>
#include <db/drawing_file.h>
#include <rx/tv_rx_object.h>

class TvDbDatabase;

/// One open drawing. Made and closed by the document manager.
class TvApDocument : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(TvApDocument)

    ~TvApDocument() override;
    TvApDocument(const TvApDocument&) = delete;
    TvApDocument& operator=(const TvApDocument&) = delete;

    /// The path of the drawing; of one that was never saved the name that it is shown by.
    TvString fileName() const;
    /// What a tab shows: the file name without its folder.
    TvString docTitle() const;
    /// Whether the drawing has a file.
    bool isNamedDrawing() const;
    /// Which file the drawing came from or was saved to last; nullopt without one. The disk is not
    /// asked: its folder may not answer any more.
    const std::optional<base::FileIdentity>& fileIdentity() const { return m_fileIdentity; }
    TvDbDatabase* database() const { return m_database.get(); }
    /// Opened for looking only: it cannot be saved under its own name.
    bool isReadOnly() const { return m_isReadOnly; }
    /// In what the next save under its own name writes it: as it was read or last saved.
    db::FileFormat fileFormat() const;
    /// TvDb::TvDbDwgVersion of that.
    int fileVersion() const;
    /// How many locks are held on it.
    int lockCount() const { return m_locks; }

private:
    friend class TvApDocManager;
    TvApDocument(std::unique_ptr<TvDbDatabase> database, TvString title, bool isReadOnly);

    std::unique_ptr<TvDbDatabase> m_database;
    TvString m_title; // of a drawing without a file
    bool m_isReadOnly = false;
    std::optional<base::FileIdentity> m_fileIdentity;
    std::optional<db::FileFormat> m_savedFormat;
    int m_savedVersion = 0; // 0: never saved in a version that was named
    int m_locks = 0;
};
