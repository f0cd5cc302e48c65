#include "operations/import_folder.h"

#include <filesystem>

#include <base/kv_file_system.h>
#include <base/natural_order.h>
#include <base/path_rules.h>
#include <sm/tv_sm_sheet.h>
#include <sm/tv_sm_subset.h>

#include "operations/import_sheets.h"

namespace operations {

namespace {

constexpr TvChar kExtension[] = u".dwg";
constexpr TvChar kHidden = u'.';

bool isLink(const TvString& path)
{
    std::error_code failure;
    return std::filesystem::is_symlink(base::nativePath(path), failure);
}

/// A subset that is made when the first sheet comes.
class Place
{
public:
    explicit Place(TvSmSubset& made) : m_made(&made) {}
    Place(Place& above, const TvString& name) : m_above(&above), m_name(name) {}

    TvSmSubset& subset(int& count)
    {
        if (!m_made)
            m_made = &makeIn(m_above->subset(count), count);
        return *m_made;
    }

private:
    TvSmSubset& makeIn(TvSmSubset& above, int& count) const
    {
        TvSmSubset* made = above.createSubset(m_name, {});
        if (!made || !above.insertComponent(made, nullptr))
            return above;
        ++count;
        return *made;
    }

    Place* m_above = nullptr; // not owned; outlives us
    TvString m_name;
    TvSmSubset* m_made = nullptr; // the database's
};

class FolderWalk
{
public:
    FolderWalk(std::span<const LayoutRow> rows, const FolderImport& how) : m_rows(rows), m_how(how)
    {
    }

    void walk(const DrawingFolder& folder, Place& place)
    {
        for (const TvString& drawing : folder.drawings)
            for (; !m_rows.empty() && m_rows.front().drawing == drawing; m_rows = m_rows.subspan(1))
                if (m_rows.front().isImportable())
                    add(m_rows.front(), place.subset(m_done.subsets));
        for (const DrawingFolder& below : folder.folders) {
            if (!m_how.withSubsets) {
                walk(below, place);
                continue;
            }
            Place inside(place, below.name);
            walk(below, inside);
        }
    }
    FolderSheets take() { return std::move(m_done); }

private:
    void add(const LayoutRow& row, TvSmSubset& subset)
    {
        TvSmSheet* sheet = makeImportedSheet(subset, row, m_how.withPrefix);
        if (!sheet || !subset.insertComponent(sheet, nullptr))
            return;
        m_done.sheets.push_back(sheet);
        sheet->setNumber(TvString().format(u"%d", static_cast<int>(m_done.sheets.size())));
    }

    std::span<const LayoutRow> m_rows; // those that are left
    const FolderImport& m_how;
    FolderSheets m_done;
};

void appendTo(std::vector<TvString>& paths, const DrawingFolder& folder)
{
    paths.insert(paths.end(), folder.drawings.begin(), folder.drawings.end());
    for (const DrawingFolder& below : folder.folders)
        appendTo(paths, below);
}

} // namespace

DrawingFolder findDrawings(const TvString& folder)
{
    const base::PathRules& rules = base::PathRules::native();
    DrawingFolder found{rules.fileNameOf(folder), {}, {}};
    std::vector<KvFileSystem::Entry> entries = KvFileSystem::listFolder(folder);
    base::sortNaturally(entries, &KvFileSystem::Entry::name);
    for (const KvFileSystem::Entry& entry : entries) {
        const TvString path = rules.join(folder, entry.name);
        if (entry.name.at(0) == kHidden)
            continue;
        if (!entry.isDirectory) {
            if (entry.name.endsWithNoCase(kExtension))
                found.drawings.push_back(path);
        } else if (!isLink(path)) { // a link may lead back here
            found.folders.push_back(findDrawings(path));
        }
    }
    return found;
}

std::vector<TvString> drawingsOf(const DrawingFolder& folder)
{
    std::vector<TvString> paths;
    appendTo(paths, folder);
    return paths;
}

FolderSheets makeSheetsOfFolder(TvSmSubset& target, const DrawingFolder& folder,
                                std::span<const LayoutRow> rows, const FolderImport& how)
{
    FolderWalk walk(rows, how);
    Place top(target);
    walk.walk(folder, top);
    return walk.take();
}

} // namespace operations
