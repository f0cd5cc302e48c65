#include <core/read_drawing_file.h>

TvStatusCode ReadDrawingFile(TvDbDatabase* database, const TvString& path)
{
    TvDbImpDatabase* behind = TvDbSystemInternals::getImpDatabase(database);
    if (!behind)
        return TvStatus::NoDatabase;
    const TvStatusCode status = behind->readDwgFile(path, TvDb::kShareNoWrite);
    return status == TvStatus::Ok ? status : behind->readDwgFile(path, TvDb::kShareAll);
}
