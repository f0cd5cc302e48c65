#include "app/completion.h"

#include <algorithm>

#include <ed/system_variables.h>
#include <rx/tv_ed_command_stack.h>

namespace app {

namespace {

bool beginsWith(const TvString& name, const TvString& word)
{
    return name.length() >= word.length() && name.substr(0, word.length()).compareNoCase(word) == 0;
}

/// The longest beginning that all share without regard to case, spelled as in the first.
TvString commonBeginning(const std::vector<TvString>& names)
{
    TvString common = names.front();
    for (const TvString& name : names)
        while (!beginsWith(name, common))
            common = common.substr(0, common.length() - 1);
    return common;
}

std::vector<TvString> allNames(const TvEdCommandStack* commands, bool onlyGlobal)
{
    std::vector<TvString> names;
    if (commands)
        for (const TvEdCommand* command : commands->commands()) {
            names.push_back(onlyGlobal ? TvString(u"_") + command->globalName()
                                       : command->localName());
            if (!onlyGlobal)
                names.push_back(command->globalName());
        }
    if (!onlyGlobal)
        for (const ed::VariableInfo& variable : ed::systemVariables())
            names.emplace_back(variable.name);
    return names;
}

} // namespace

Completion complete(const TvString& word, const TvEdCommandStack* commands)
{
    if (word.isEmpty())
        return {{}, word};
    std::vector<TvString> names = allNames(commands, word.startsWith(u"_"));
    std::erase_if(names, [&](const TvString& name) { return !beginsWith(name, word); });
    std::ranges::stable_sort(names, [](const TvString& left, const TvString& right) {
        return left.compareNoCase(right) != 0 && left.collateNoCase(right) < 0;
    });
    const auto last = std::ranges::unique(names, [](const TvString& left, const TvString& right) {
        return left.compareNoCase(right) == 0;
    });
    names.erase(last.begin(), last.end());
    TvString common = names.empty() ? word : commonBeginning(names);
    return {std::move(names), std::move(common)};
}

} // namespace app
