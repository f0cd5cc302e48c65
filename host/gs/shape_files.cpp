#include "shape_files.h"

#include <limits>

#include <base/clock.h>
#include <base/file_access.h>
#include <base/file_ops.h>
#include <base/path_rules.h>
#include <base/user_folders.h>
#include <db/tv_db_symbol_table.h>

#include "named_files.h"
#include "shape_file.h"

namespace gs {

namespace {

constexpr std::int64_t kLargestFile = 1 << 20;

TvString withEnding(const TvString& name)
{
    const TvString file = base::PathRules::native().fileNameOf(name);
    return file.view().find(u'.') == std::u16string_view::npos ? name + u".shx" : name;
}

std::optional<ShapeFile> openNamed(TvDbDatabase& database, const TvString& name)
{
    const base::PathRules& rules = base::PathRules::native();
    std::vector<TvString> places = placesOf(database, name);
    if (const TvString own = base::dataFolder(); !own.isEmpty() && !name.isEmpty())
        places.push_back(rules.join(rules.join(own, u"Fonts"), rules.fileNameOf(name)));
    base::FileAccess files(base::systemFileOps(), base::systemClock());
    for (const TvString& place : places)
        if (const auto bytes = files.readFile(place, kLargestFile))
            if (auto file = ShapeFile::fromBytes(*bytes))
                return file;
    return std::nullopt;
}

} // namespace

struct ShapeFiles::Source {
    TvString name;
    std::optional<ShapeFile> file;
};

ShapeFiles::ShapeFiles(TvDbDatabase& database) : m_database(database) {}

ShapeFiles::~ShapeFiles() = default;

const Path* ShapeFiles::find(TvDbObjectId style, std::int64_t number)
{
    if (number <= 0 || number > std::numeric_limits<std::uint16_t>::max())
        return nullptr;
    std::unique_ptr<Source>& source = m_sources[style];
    if (!source) {
        source = std::make_unique<Source>();
        if (const TvDbObjectPointer<TvDbTextStyleTableRecord> record(style, TvDb::kForNotify);
            record && !record->fields().text("font").empty()) {
            source->name = withEnding(TvString(record->fields().text("font")));
            source->file = openNamed(m_database, source->name);
        }
    }
    return source->file ? source->file->shape(static_cast<std::uint16_t>(number))
                        : usualShape(source->name, number);
}

} // namespace gs
