#include <algorithm>
#include <set>

#include <nlohmann/json.hpp>

#include <base/path_rules.h>
#include <operations/import_sheets.h>

#include "cli/components.h"
#include "cli/imported_layouts.h"
#include "cli/session.h"
#include "cli/verbs.h"

namespace cli {

namespace {

using operations::LayoutRow;
using operations::LoadedLayouts;

void requireSense(const SheetImportRequest& request)
{
    requireHandleIfGiven(request.in);
    if (request.all && !request.layouts.empty())
        refuseUsage(Word::OptionsExclude, TvString(u"--all"), TvString(u"--layout"));
}

/// Absolute paths, each drawing once.
std::vector<TvString> drawingsOf(const SheetImportRequest& request)
{
    std::vector<TvString> paths;
    std::set<TvString> seen;
    for (const TvString& drawing : request.drawings)
        if (const TvString path = fullPath(drawing); seen.insert(path).second)
            paths.push_back(path);
    return paths;
}

/// Which rows are wanted, and whether one was asked for that cannot be had.
class Choice
{
public:
    Choice(const SheetImportRequest& request, const LoadedLayouts& loaded, Console& console)
    {
        std::set<TvString> missing;
        for (const TvString& name : request.layouts)
            missing.insert(name.toLower());
        const std::set<TvString> wanted = missing;
        for (const LayoutRow& row : loaded.rows) {
            const TvString key = row.layout.toLower();
            if (!wanted.empty() && !wanted.contains(key))
                continue;
            missing.erase(key);
            if (row.isImportable())
                m_rows.push_back(&row);
            else
                warnOfUse(row, console);
            m_hasFailed = m_hasFailed || (!wanted.empty() && !row.isImportable());
        }
        for (const TvString& name : request.layouts)
            if (missing.erase(name.toLower()) != 0) {
                console.warn(messageOf(Word::ImportNoSuchLayout, name));
                m_hasFailed = true;
            }
    }

    const std::vector<const LayoutRow*>& rows() const { return m_rows; }
    bool hasFailed() const { return m_hasFailed; }

private:
    std::vector<const LayoutRow*> m_rows;
    bool m_hasFailed = false;
};

std::vector<TvSmSheet*> make(ChangedSet& set, TvSmSubset& parent, const Choice& choice,
                             bool withPrefix)
{
    std::vector<TvSmSheet*> sheets;
    for (const LayoutRow* row : choice.rows())
        if (TvSmSheet* sheet = operations::makeImportedSheet(parent, *row, withPrefix))
            sheets.push_back(sheet);
    if (sheets.size() != choice.rows().size() ||
        !operations::placeImportedSheets(parent, sheets, nullptr))
        refuse(sm::lastStatus(&set.database()), Doing::Writing);
    return sheets;
}

void report(const std::vector<TvSmSheet*>& sheets, const LoadedLayouts& loaded,
            const TvSmSubset& parent, const SheetImportRequest& request, Console& console)
{
    Json list = Json::array();
    for (const TvSmSheet* sheet : sheets) {
        console.line({{handleOf(*sheet), Tone::Faint}, {u"  "}, {labelOf(*sheet), Tone::Strong}});
        list.push_back(jsonOfImported(*sheet));
    }
    console.document()["file"] = jsonText(fullPath(request.file));
    console.document()["parent"] = jsonOf(parent);
    console.document()["sheets"] = std::move(list);
    console.document()["inUse"] = jsonOfUsed(loaded.rows);
    console.document()["dryRun"] = request.change.dryRun;
}

ExitCode importSheets(const SheetImportRequest& request, Console& console)
{
    requireSense(request);
    ChangedSet set(request.file, request.change, console);
    TvSmSubset& parent = request.in.isEmpty() ? set.set() : subsetAt(set.database(), request.in);
    const LoadedLayouts loaded = layoutsFor(set.database(), drawingsOf(request), console);
    if (loaded.rows.empty())
        refuseIfUnreadable(loaded);
    const bool isOneUnreadable = warnOfUnreadable(loaded, console);
    for (const TvString& drawing : loaded.withoutLayouts)
        console.warn(messageOf(Word::ImportNoLayouts, drawing));
    const Choice choice(request, loaded, console);
    if (choice.rows().empty())
        refuse(ExitCode::NoInput, Word::ImportNothing);
    const std::vector<TvSmSheet*> sheets = make(set, parent, choice, !request.noPrefix);
    set.commit();
    report(sheets, loaded, parent, request, console);
    return isOneUnreadable || choice.hasFailed() ? ExitCode::PartlyFailed : ExitCode::Ok;
}

} // namespace

Outcome run(const SheetImportRequest& request, Console& console)
{
    return attempt(console, [&] { return importSheets(request, console); });
}

} // namespace cli
