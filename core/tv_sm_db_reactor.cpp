#include <core/tv_sm_db_reactor.h>

#include <db/tv_db_symbol_table.h>

TVRX_DEFINE_MEMBERS(TvSmDbReactor, TvDbDatabaseReactor)

bool g_viewsDirty = false;

namespace {

void notice(const TvDbObject* object)
{
    if (tvrxCast<TvDbViewTableRecord>(object))
        g_viewsDirty = true;
}

} // namespace

void TvSmDbReactor::objectOpenedForModify(const TvDbDatabase*, const TvDbObject* object)
{
    notice(object);
}

void TvSmDbReactor::objectModified(const TvDbDatabase*, const TvDbObject* object)
{
    notice(object);
}

void TvSmDbReactor::objectErased(const TvDbDatabase*, const TvDbObject* object, bool)
{
    notice(object);
}
