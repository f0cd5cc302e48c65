#include <algorithm>
#include <vector>

#include "cli/option_tree.h"

namespace cli {

namespace {

/// How many letters must be put in, taken out, replaced, or swapped with their neighbours.
std::size_t distance(const std::string& left, const std::string& right)
{
    std::vector<std::vector<std::size_t>> cost(left.size() + 1,
                                               std::vector<std::size_t>(right.size() + 1));
    for (std::size_t i = 0; i <= left.size(); ++i) {
        for (std::size_t j = 0; j <= right.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            const std::size_t differs = left[i - 1] != right[j - 1];
            cost[i][j] =
                std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, cost[i - 1][j - 1] + differs});
            const bool isSwap =
                i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
            if (isSwap)
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
        }
    }
    return cost[left.size()][right.size()];
}

} // namespace

std::string nearest(const std::string& word, std::span<const std::string> candidates)
{
    constexpr std::size_t kLongestTried = 40; // no verb or option is as long
    std::string best;
    if (word.size() > kLongestTried)
        return best;
    // Of a short word one letter may be wrong, of a longer one two or more.
    std::size_t bestDistance = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string& candidate : candidates) {
        const std::size_t here = distance(word, candidate);
        if (here < bestDistance) {
            bestDistance = here;
            best = candidate;
        }
    }
    return best;
}

void refuseUnknownVerb(std::span<const std::string> typed)
{
    const std::span<const std::string> group = typed.first(groupWords(typed));
    const std::vector<std::string> next = nextWords(group);
    // What follows a group is a word of it, or nothing that could be meant as one.
    const bool isCutOff = typed.size() == group.size() || typed[group.size()].starts_with('-');
    if (!group.empty() && isCutOff)
        refuseUsage(Word::VerbIncomplete, TvString(joined(group).c_str()),
                    TvString(joined(next, ", ").c_str()));
    const std::string before = group.empty() ? "" : joined(group) + " ";
    const std::string& word = typed[group.size()];
    const std::string near = nearest(word, next);
    if (near.empty())
        refuseUsage(Word::UnknownVerb, TvString((before + word).c_str()));
    refuseUsage(Word::UnknownVerbNear, TvString((before + word).c_str()),
                TvString((before + near).c_str()));
}

} // namespace cli
