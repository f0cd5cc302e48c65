#pragma once

#include <memory>
#include <unordered_map>

#include <base/tv_string.h>
#include <db/tv_db_database.h>
#include <gs/path.h>

namespace gs {

class ShapeFile;

/// The shapes that a drawing uses, from the files that its text styles name. Each file is looked
/// for once: where the drawing names it, beside the drawing, and in the folder "Fonts" among the
/// user's data.
class ShapeFiles
{
public:
    /// @param database  not owned; outlives this.
    explicit ShapeFiles(TvDbDatabase& database);
    ~ShapeFiles();

    /// The strokes of a shape, in its own units. Where the file is not to be had, the shapes of
    /// usual linetypes are drawn by strokes of our own.
    /// @return null for what is not known; lives as long as this.
    const Path* find(TvDbObjectId style, std::int64_t number);

private:
    TvDbDatabase& m_database;
    struct Source;
    std::unordered_map<TvDbObjectId, std::unique_ptr<Source>> m_sources; // by style
};

/// The shape of that number in the file @p name of the shapes of usual linetypes; null for others.
const Path* usualShape(const TvString& name, std::int64_t number);

} // namespace gs
