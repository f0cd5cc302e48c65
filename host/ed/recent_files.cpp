#include "ed/recent_files.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include <base/path_rules.h>
#include <base/tarvik_config.h>

#include "ed/program_control.h"

namespace ed {

namespace {

constexpr int kScope = 1;
constexpr TvChar kKey[] = u"RecentFiles\\List"; // one a line: written at once, or not at all
constexpr TvChar kLineEnd = u'\n';

TvString fromEnvironment(const char* name)
{
    const char* value = std::getenv(name);
    const TvString path = value ? TvString(std::string_view(value)) : TvString();
    return base::PathRules::native().isAbsolute(path) ? path : TvString();
}

/// Empty when nobody says where.
TvString stateFolder()
{
    const base::PathRules& rules = base::PathRules::native();
    if (const TvString state = fromEnvironment("XDG_STATE_HOME"); !state.isEmpty())
        return rules.join(state, u"tarvik");
    const TvString home = fromEnvironment("HOME");
    return home.isEmpty() ? home : rules.join(home, u".local/state/tarvik");
}

/// The list's file has the form of a configuration, so that several processes may write it.
struct Store {
    TvString chosen; ///< empty: the usual one
    TvString folder;
    std::unique_ptr<TarvikConfig> config;

    TarvikConfig* open()
    {
        const TvString wanted = chosen.isEmpty() ? stateFolder() : chosen;
        if (!config || wanted != folder) {
            folder = wanted;
            config = wanted.isEmpty() ? nullptr : std::make_unique<TarvikConfig>(wanted);
        }
        return config.get();
    }
};

Store& store()
{
    static Store only;
    return only;
}

void write(TarvikConfig& config, const std::vector<TvString>& list)
{
    TvString lines;
    for (const TvString& path : list)
        (lines += path.view()) += kLineEnd;
    config.setValue(kScope, kKey, TarvikConfigValue::ofText(lines));
    if (ProgramControl* program = programControl())
        program->recentFilesChanged();
}

bool canBeKept(const TvString& path)
{
    return base::PathRules::native().isAbsolute(path) && path.find(kLineEnd) == TvString::npos;
}

void change(const TvString& path, bool add)
{
    TarvikConfig* config = store().open();
    if (!config || !canBeKept(path))
        return;
    const std::vector<TvString> before = recentFiles();
    std::vector<TvString> list;
    if (add)
        list.push_back(path);
    std::ranges::copy_if(before, std::back_inserter(list),
                         [&](const TvString& other) { return other.compareNoCase(path) != 0; });
    if (list.size() > kMostRecentFiles)
        list.resize(kMostRecentFiles);
    if (list != before)
        write(*config, list);
}

} // namespace

std::vector<TvString> recentFiles()
{
    std::vector<TvString> list;
    TarvikConfig* config = store().open();
    TarvikConfigValue value;
    if (!config || !config->getValue(kScope, kKey, value))
        return list;
    const TvString lines = value.textValue();
    std::u16string_view rest = lines;
    while (!rest.empty() && list.size() < kMostRecentFiles) {
        const std::size_t end = std::min(rest.find(kLineEnd), rest.size());
        if (end > 0)
            list.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return list;
}

void addRecentFile(const TvString& path)
{
    change(path, true);
}

void removeRecentFile(const TvString& path)
{
    change(path, false);
}

void clearRecentFiles()
{
    if (TarvikConfig* config = store().open(); config && !recentFiles().empty())
        write(*config, {});
}

void setRecentFilesFolder(const TvString& folder)
{
    store().chosen = folder;
}

} // namespace ed

void AddDstFileToRecentFileList(const TvString& path)
{
    ed::addRecentFile(path);
}
