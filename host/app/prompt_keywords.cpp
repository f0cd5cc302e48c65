#include "app/prompt_keywords.h"

namespace app {

std::vector<TvString> promptKeywords(const TvString& prompt)
{
    constexpr std::size_t kMost = 30;
    std::vector<TvString> keywords;
    const std::u16string_view text = prompt;
    const std::size_t open = text.rfind(u'[');
    const std::size_t close = text.find(u']', open == text.npos ? 0 : open);
    if (open == text.npos || close == text.npos)
        return keywords;
    std::u16string_view rest = text.substr(open + 1, close - open - 1);
    while (!rest.empty() && keywords.size() < kMost) {
        const std::size_t slash = rest.find(u'/');
        if (const TvString one = TvString(rest.substr(0, slash)).trimmed(); !one.isEmpty())
            keywords.push_back(one);
        rest = slash == rest.npos ? std::u16string_view() : rest.substr(slash + 1);
    }
    return keywords;
}

} // namespace app
