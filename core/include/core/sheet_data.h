#pragma once

#include <base/tv_string.h>
#include <db/tv_db_object_id.h>

class TvDbDatabase;
class TvDbDictionary;
class TvSmDatabase;
class TvSmTvDbLayoutReference;

namespace base {
class Clock;
}

/// The side of a sheet set that lies in its drawings: the dictionary "AcSheetSetData" among the
/// named objects of a drawing, which names the sheet set, and the layout that is a sheet of it. Of
/// several sheets in one drawing it knows the one written last.
///
/// It is no part of the user's editing: what reactions write of it stays out of the drawing's
/// history (UndoRecordingPause).

/// What a drawing is told of its sheet set.
struct SheetDataRecord {
    TvString handle;       ///< of the layout, in hexadecimal text
    TvString layoutName;   ///< its name
    TvString drawingName;  ///< the drawing's path, as the caller has it
    TvString sheetSetFile; ///< the path of the .dst
};

/// Writes the record, or patches the one that is there.
///
/// A record that says the same already, but for the case of letters, is left alone; one that is
/// changed in any entry gets a new time and the next number of its changes. A record that lacks an
/// entry is not repaired: entries are patched up to the missing one, and the answer is false.
/// @param database  null answers false.
bool WriteSheetData(TvDbDatabase* database, const SheetDataRecord& record);
/// Takes the record out, whatever it holds, and keeps that out of the drawing's history.
void RemoveSheetData(TvDbDatabase* database);

/// The first item of group code 1 of the xrecord under @p key; false, and @p out alone, when there
/// is no such entry, it is no xrecord or has no such item. Null dictionaries answer false.
bool ReadXrecordText(const TvDbDictionary* dictionary, const TvString& key, TvString& out);
/// The same for group code 90.
bool ReadXrecordInt(const TvDbDictionary* dictionary, const TvString& key, int& out);
/// Puts a new xrecord of one item under @p key, in the place of any other.
/// @return false when the dictionary is null or not open for writing, or does not take it.
bool WriteXrecordText(TvDbDictionary* dictionary, const TvString& key, const TvString& text);
bool WriteXrecordInt(TvDbDictionary* dictionary, const TvString& key, int value);

/// The sheet set that the working drawing names, if it is open; nothing is opened for it.
TvSmDatabase* GetDatabaseOfActiveDrawing();

/// The layout that a sheet refers to, in its drawing: by its name, else by its handle.
/// @return false for null, and when neither leads to a layout.
bool FindLayoutOfReference(const TvSmTvDbLayoutReference* reference, TvDbDatabase* database,
                           TvDbObjectId& out);

/// While it lives, changes of the drawing stay out of its history, if they were in it before.
class UndoRecordingPause
{
public:
    explicit UndoRecordingPause(TvDbDatabase* database);
    ~UndoRecordingPause();
    UndoRecordingPause(const UndoRecordingPause&) = delete;
    UndoRecordingPause& operator=(const UndoRecordingPause&) = delete;

private:
    TvDbDatabase* m_database; // not owned; null when there is nothing to put back
};

namespace core {

/// The dictionary and its entries, letter for letter.
namespace sheet_data {
inline constexpr TvChar kDictionary[] = u"AcSheetSetData";
inline constexpr TvChar kLayoutHandle[] = u"LayoutHandle";
inline constexpr TvChar kLayoutName[] = u"LayoutName";
inline constexpr TvChar kSheetDwgName[] = u"SheetDwgName";
inline constexpr TvChar kShSetFileName[] = u"ShSetFileName";
inline constexpr TvChar kShSetVersion[] = u"ShSetVersion";
inline constexpr TvChar kUpdateCount[] = u"UpdateCount";
inline constexpr TvChar kUpdateTime[] = u"UpdateTime";
} // namespace sheet_data

/// All that a drawing's record holds; entries that are missing are empty or 0.
struct SheetData {
    bool isThere = false;
    SheetDataRecord texts;
    int version = 0;
    int updateCount = 0;
    TvString updateTime;
};
SheetData readSheetData(TvDbDatabase& database);

/// The clock of the times in the record; null: the machine's. Not owned.
void setSheetDataClock(base::Clock* clock);

} // namespace core
