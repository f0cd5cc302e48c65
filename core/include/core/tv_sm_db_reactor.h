#pragma once

#include <db/tv_db_database.h>

/// A named view was changed in some drawing since somebody last looked; whoever looks clears it.
extern bool g_viewsDirty;

/// Notices that named views of a drawing change. One for all drawings; it touches nothing.
class TvSmDbReactor : public TvDbDatabaseReactor
{
    TVRX_DECLARE_MEMBERS(TvSmDbReactor)

    void objectOpenedForModify(const TvDbDatabase*, const TvDbObject* object) override;
    void objectModified(const TvDbDatabase*, const TvDbObject* object) override;
    void objectErased(const TvDbDatabase*, const TvDbObject* object, bool erasing) override;
};
