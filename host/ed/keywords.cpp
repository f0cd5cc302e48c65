#include <algorithm>
#include <vector>

#include "ed/prompts.h"

namespace ed {

namespace {

bool isCapital(TvChar unit)
{
    return TvString(std::u16string_view(&unit, 1)).toLower() != std::u16string_view(&unit, 1);
}

struct Lists {
    std::vector<TvString> local, global;
};

Lists listsOf(std::u16string_view text)
{
    Lists lists;
    std::vector<TvString>* now = &lists.local;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(u' '), text.size());
        const std::u16string_view word = text.substr(0, end);
        if (word == u"_")
            now = &lists.global;
        else if (!word.empty())
            now->emplace_back(word);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    if (lists.global.empty())
        lists.global = lists.local;
    return lists;
}

bool stands(const TvString& typed, const TvString& word)
{
    std::u16string capitals;
    std::ranges::copy_if(word.view(), std::back_inserter(capitals), isCapital);
    if (typed.compareNoCase(word) == 0 || (!capitals.empty() && typed.compareNoCase(capitals) == 0))
        return true;
    const int needed = static_cast<int>(capitals.size());
    const bool isBeginning = word.left(typed.length()).compareNoCase(typed) == 0;
    return isBeginning && needed > 0 && typed.length() >= needed && word.startsWith(capitals);
}

} // namespace

TvString keywordFor(const TvString& list, const TvString& typed)
{
    const Lists lists = listsOf(list);
    const bool isGlobal = typed.startsWith(u"_");
    const TvString word = isGlobal ? typed.substr(1) : typed;
    const std::vector<TvString>& words = isGlobal ? lists.global : lists.local;
    if (word.isEmpty())
        return {};
    for (std::size_t i = 0; i < words.size() && i < lists.global.size(); ++i)
        if (stands(word, words[i]))
            return lists.global[i];
    return {};
}

} // namespace ed
