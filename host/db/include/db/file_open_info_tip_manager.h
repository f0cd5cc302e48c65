#pragma once

#include <base/status.h>
#include <base/tv_string.h>

class TvDbDatabase;

/// Which drawings are open for writing, and by whom.
///
/// Whoever opens a drawing to edit it makes a hidden file beside it that says who he is
/// (db::beginUse), and removes it when he is done. It counts only while its maker lives: a file
/// that a crash left behind says nothing. A network host that the user did not turn to is not
/// asked.
class CFileOpenInfoTipManager
{
public:
    /// Whether somebody, here or elsewhere, has the drawing open for writing.
    static bool IsInfoFileExists(const TvString& path);
    /// The user who has, and his machine; control characters are taken out.
    /// @return false, with both alone, when nobody has or he did not say.
    static bool GetInfoFromHideFile(const TvString& path, TvString& user, TvString& second);
};

namespace db {

/// Tells everybody that @p database is being edited and will be saved as @p path; until endUse() or
/// the database's end no other database, in this process or another, can save over that file.
///
/// A database uses one file at a time: a second call leaves the first.
/// @param purpose  told to others.
/// @return Locked when somebody else uses it; why it cannot be written, where it cannot.
base::Status beginUse(const TvDbDatabase& database, const TvString& path,
                      const TvString& purpose = u"edit");
/// Nothing for a database that uses none.
void endUse(const TvDbDatabase& database);

} // namespace db
