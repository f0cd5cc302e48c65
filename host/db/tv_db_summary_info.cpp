#include <db/tv_db_summary_info.h>

#include "database_impl.h"

#include <db/summary_record.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_xrecord.h>

namespace {

/// The object that holds the information in drawings of AC1015; null when there is none.
TvDbObjectId summaryRecordOf(const TvDbDatabase& database)
{
    const TvDbObjectPointer<TvDbDictionary> named(database.namedObjectsDictionaryId(),
                                                  TvDb::kForNotify);
    TvDbObjectId id;
    if (named)
        named->getAt(TvString(db::kSummaryKey), id);
    return id;
}

bool keepsRecord(const TvDbDatabase& database)
{
    return database.impl().version() == db::Version::Ac1015;
}

db::SummaryInfo summaryOf(const TvDbDatabase& database)
{
    if (!keepsRecord(database))
        return database.impl().summary();
    const TvDbObjectPointer<TvDbObject> record(summaryRecordOf(database), TvDb::kForNotify);
    std::optional<db::SummaryInfo> kept =
        record ? db::summaryFromRecord(record->record()) : std::nullopt;
    return kept ? std::move(*kept) : db::SummaryInfo();
}

TvStatusCode putIntoRecord(TvDbDatabase& database, const db::SummaryInfo& summary)
{
    // Tried on a record of its own first, so that nothing is half done.
    auto made = std::make_unique<TvDbXrecord>();
    if (!db::putSummary(db::ObjectAccess::record(*made), summary))
        return TvStatus::VersionNotWritable;
    if (const TvDbObjectId id = summaryRecordOf(database); id) {
        const TvDbObjectPointer<TvDbXrecord> record(id, TvDb::kForWrite);
        if (!record)
            return record.openStatus();
        if (!record->edit())
            return TvStatus::NotUnderstood;
        db::putSummary(db::ObjectAccess::record(*record), summary);
        return TvStatus::Ok;
    }
    const TvDbObjectPointer<TvDbDictionary> named(database.namedObjectsDictionaryId(),
                                                  TvDb::kForWrite);
    if (!named)
        return named.openStatus();
    TvDbObjectId id;
    if (const TvStatusCode status = named->setAt(TvString(db::kSummaryKey), made.get(), id))
        return status;
    made.release()->close();
    return TvStatus::Ok;
}

} // namespace

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
    out->values() = summaryOf(*database);
    return TvStatus::Ok;
}

TvStatusCode tvdbPutSummaryInfo(const TvDbDatabaseSummaryInfo* info)
{
    if (!info || !info->database())
        return TvStatus::NoDatabase;
    TvDbDatabase& database = *info->database();
    if (info->values() == summaryOf(database))
        return TvStatus::Ok;
    if (keepsRecord(database))
        return putIntoRecord(database, info->values());
    database.impl().setSummary(info->values());
    return TvStatus::Ok;
}
