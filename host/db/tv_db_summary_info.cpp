#include <db/tv_db_summary_info.h>

#include "database_impl.h"

TvStatusCode TvDbDatabaseSummaryInfo::getCustomSummaryInfo(int index, TvString& name,
                                                           TvString& value) const
{
    if (index < 0 || index >= numCustomInfo())
        return TvStatus::OutOfRange;
    const db::SummaryInfo::Custom& custom = m_info.custom[static_cast<std::size_t>(index)];
    name = TvString(custom.name);
    value = TvString(custom.value);
    return TvStatus::Ok;
}

TvStatusCode tvdbGetSummaryInfo(TvDbDatabase* database, TvDbDatabaseSummaryInfo*& out)
{
    out = nullptr;
    if (!database)
        return TvStatus::NoDatabase;
    out = new TvDbDatabaseSummaryInfo(database);
    out->values() = database->impl().summary();
    return TvStatus::Ok;
}

TvStatusCode tvdbPutSummaryInfo(const TvDbDatabaseSummaryInfo* info)
{
    if (!info || !info->database())
        return TvStatus::NoDatabase;
    if (!(info->values() == info->database()->impl().summary()))
        info->database()->impl().setSummary(info->values());
    return TvStatus::Ok;
}
