#include <core/sheet_data.h>

#include <base/clock.h>
#include <db/tv_db_date.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_host_application_services.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_xrecord.h>
#include <sm/kv_db_util.h>

using namespace core::sheet_data;

namespace {

constexpr int kRecordVersion = 2;

base::Clock* g_clock = nullptr; // not owned

TvString timeOfNow()
{
    base::Clock& clock = g_clock ? *g_clock : base::systemClock();
    const TvDbDate::Calendar now =
        TvDbDate::fromUnixMilliseconds(clock.utcNs() / 1'000'000).calendar();
    return TvString().format(u"%04d/%02d/%02d %02d:%02d:%02d.%03d", now.year, now.month, now.day,
                             now.hour, now.minute, now.second, now.millisecond);
}

struct TextEntry {
    const TvChar* key;
    TvString SheetDataRecord::*value;
};

// In the order in which they are written, and compared.
constexpr TextEntry kTexts[] = {
    {kLayoutHandle, &SheetDataRecord::handle},
    {kLayoutName, &SheetDataRecord::layoutName},
    {kSheetDwgName, &SheetDataRecord::drawingName},
    {kShSetFileName, &SheetDataRecord::sheetSetFile},
};

/// The entries of a drawing's record, being patched: opened for writing at the first difference.
class Patch
{
public:
    explicit Patch(TvDbDictionary& dictionary) : m_dictionary(dictionary) {}

    bool isChanged() const { return m_isUpgraded; }

    bool text(const TvString& key, const TvString& wanted)
    {
        TvString stored;
        if (!ReadXrecordText(&m_dictionary, key, stored))
            return false;
        if (stored.compareNoCase(wanted) == 0)
            return true;
        return upgrade() && WriteXrecordText(&m_dictionary, key, wanted);
    }

    bool number(const TvString& key, int wanted)
    {
        int stored = 0;
        if (!ReadXrecordInt(&m_dictionary, key, stored))
            return false;
        return stored == wanted || (upgrade() && WriteXrecordInt(&m_dictionary, key, wanted));
    }

    /// Counts the change and dates it.
    bool countChange()
    {
        int count = 0;
        const bool counted = ReadXrecordInt(&m_dictionary, kUpdateCount, count) &&
                             WriteXrecordInt(&m_dictionary, kUpdateCount, count + 1);
        return WriteXrecordText(&m_dictionary, kUpdateTime, timeOfNow()) && counted;
    }

private:
    bool upgrade()
    {
        if (!m_isUpgraded)
            m_isUpgraded = m_dictionary.upgradeOpen() == TvStatus::Ok;
        return m_isUpgraded;
    }

    TvDbDictionary& m_dictionary;
    bool m_isUpgraded = false;
};

bool patchRecord(TvDbDictionary& dictionary, const SheetDataRecord& record)
{
    Patch patch(dictionary);
    for (const TextEntry& entry : kTexts)
        if (!patch.text(entry.key, record.*entry.value))
            return false;
    if (!patch.number(kShSetVersion, kRecordVersion))
        return false;
    return !patch.isChanged() || patch.countChange();
}

bool fillRecord(TvDbDictionary& dictionary, const SheetDataRecord& record)
{
    for (const TextEntry& entry : kTexts)
        if (!WriteXrecordText(&dictionary, entry.key, record.*entry.value))
            return false;
    return WriteXrecordInt(&dictionary, kShSetVersion, kRecordVersion) &&
           WriteXrecordInt(&dictionary, kUpdateCount, 1) &&
           WriteXrecordText(&dictionary, kUpdateTime, timeOfNow());
}

bool createRecord(TvDbDictionary& namedObjects, const SheetDataRecord& record)
{
    auto made = std::make_unique<TvDbDictionary>();
    TvDbObjectId id;
    if (namedObjects.upgradeOpen() != TvStatus::Ok ||
        namedObjects.setAt(kDictionary, made.get(), id) != TvStatus::Ok)
        return false;
    TvDbDictionary* dictionary = made.release(); // the drawing's now
    const bool filled = fillRecord(*dictionary, record);
    dictionary->close();
    return filled;
}

} // namespace

bool WriteSheetData(TvDbDatabase* database, const SheetDataRecord& record)
{
    if (!database)
        return false;
    const TvDbObjectPointer<TvDbDictionary> named(database->namedObjectsDictionaryId());
    if (!named)
        return false;
    TvDbObjectId id;
    named->getAt(kDictionary, id);
    const TvDbObjectPointer<TvDbDictionary> dictionary(id);
    return dictionary ? patchRecord(*dictionary, record) : createRecord(*named, record);
}

void RemoveSheetData(TvDbDatabase* database)
{
    if (!database)
        return;
    const UndoRecordingPause pause(database);
    const TvDbObjectPointer<TvDbDictionary> named(database->namedObjectsDictionaryId(),
                                                  TvDb::kForWrite);
    if (named)
        named->remove(TvString(kDictionary));
}

bool KvDbUtil::GetShSetFileName(TvDbDatabase* database, TvString& out)
{
    if (!database)
        return false;
    const TvDbObjectPointer<TvDbDictionary> named(database->namedObjectsDictionaryId());
    TvDbObjectId id;
    if (!named || named->getAt(kDictionary, id) != TvStatus::Ok)
        return false;
    const TvDbObjectPointer<TvDbDictionary> dictionary(id);
    TvString text;
    if (!ReadXrecordText(dictionary.object(), kShSetFileName, text) || text.isEmpty())
        return false;
    out = text;
    return true;
}

TvSmDatabase* GetDatabaseOfActiveDrawing()
{
    TvString path;
    if (!KvDbUtil::GetShSetFileName(tvdbHostApplicationServices()->workingDatabase(), path))
        return nullptr;
    TvSmSheetSetMgr* manager = KvDbUtil::tarvGetSheetSetMgr();
    return manager ? manager->findOpenDatabase(path) : nullptr;
}

bool FindLayoutOfReference(const TvSmTvDbLayoutReference* reference, TvDbDatabase* database,
                           TvDbObjectId& out)
{
    if (!reference || !database)
        return false;
    const TvDbObjectPointer<TvDbDictionary> layouts(database->layoutDictionaryId());
    if (!layouts)
        return false;
    if (layouts->getAt(reference->getName(), out) == TvStatus::Ok)
        return true;
    TvDbObjectId id;
    if (database->getTvDbObjectId(id, false, TvDbHandle(reference->getHandle().view())) !=
        TvStatus::Ok)
        return false;
    const TvDbObjectPointer<TvDbLayout> layout(id);
    if (!layout)
        return false;
    out = id;
    return true;
}

UndoRecordingPause::UndoRecordingPause(TvDbDatabase* database)
    : m_database(database && database->undoRecording() ? database : nullptr)
{
    if (m_database)
        m_database->disableUndoRecording(true);
}

UndoRecordingPause::~UndoRecordingPause()
{
    if (m_database)
        m_database->disableUndoRecording(false);
}

namespace core {

SheetData readSheetData(TvDbDatabase& database)
{
    SheetData data;
    const TvDbObjectPointer<TvDbDictionary> named(database.namedObjectsDictionaryId());
    TvDbObjectId id;
    if (!named || named->getAt(kDictionary, id) != TvStatus::Ok)
        return data;
    const TvDbObjectPointer<TvDbDictionary> dictionary(id);
    if (!dictionary)
        return data;
    data.isThere = true;
    for (const TextEntry& entry : kTexts)
        ReadXrecordText(dictionary.object(), entry.key, data.texts.*entry.value);
    ReadXrecordInt(dictionary.object(), kShSetVersion, data.version);
    ReadXrecordInt(dictionary.object(), kUpdateCount, data.updateCount);
    ReadXrecordText(dictionary.object(), kUpdateTime, data.updateTime);
    return data;
}

void setSheetDataClock(base::Clock* clock)
{
    g_clock = clock;
}

} // namespace core
