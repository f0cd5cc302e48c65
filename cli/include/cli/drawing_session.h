#pragma once

#include <db/drawing_file.h>
#include <db/tv_db_database.h>

#include <cli/console.h>
#include <cli/requests.h>

namespace cli {

/// A drawing in memory. Its file may be used by others meanwhile.
class OpenedDrawing
{
public:
    /// Reads the drawing, or refuses.
    OpenedDrawing(const TvString& file, Console& console);

    TvDbDatabase& database() { return m_database; }
    const TvString& path() const { return m_path; } ///< absolute
    /// Saves what was changed, in the format and version that the drawing came in, or refuses.
    /// Where nothing was changed the file is not touched. In a dry run only tries, in memory,
    /// whether it could be saved.
    /// @return whether something was changed.
    bool commit(const ChangeOptions& options);

private:
    Console& m_console; // not owned; outlives us
    const TvString m_path;
    TvDbDatabase m_database{false, true};
};

/// In which form a drawing is to be written.
struct DrawingForm {
    db::FileFormat format = db::FileFormat::Dwg;
    int version = 0;        ///< TvDb::TvDbDwgVersion; 0: the drawing's own
    bool mustBeNew = false; ///< never over a file that is there
};

/// The form that --as asks for, and the extension of the new file's path; refuses (Usage) what
/// there is not, and what would stand under a wrong name.
/// @param path  ends in ".dwg" or ".dxf".
DrawingForm formFor(const std::string& as, const TvString& path);
/// Writes the drawing, waiting as the options say while somebody else uses the file; or refuses. In
/// a dry run only tries, in memory.
void writeDrawing(TvDbDatabase& database, const TvString& path, DrawingForm form,
                  const ChangeOptions& options, Console& console);

/// "AC1032", and the year that people know it by.
TvString versionName(int version);
int versionYear(int version);
/// "AC1032 (2018), DWG".
TvString formWords(DrawingForm form);
db::FileFormat formatOf(const TvDbDatabase& database);

/// Refuses with the sentence of a status about this drawing. What was refused in writing is never
/// wrong usage.
[[noreturn]] void refuseDrawing(const base::Status& status, const TvString& path, Doing doing);
/// The sentence of a status about a drawing, without the drawing.
Message messageOfDrawing(const base::Status& status);

} // namespace cli
