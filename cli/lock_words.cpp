#include "cli/lock_words.h"

#include <ctime>

#include "cli/words.h"

namespace cli {

namespace {

using base::LockState;

struct Row {
    LockState state;
    const char* name;
    Word word;
};

constexpr Row kRows[] = {
    {LockState::Free, "free", Word::LockFree},
    {LockState::HeldByMe, "heldByMe", Word::LockHeldByMe},
    {LockState::HeldSameHost, "heldSameHost", Word::LockHeldSameHost},
    {LockState::HeldOtherHost, "heldOtherHost", Word::LockHeldOtherHost},
    {LockState::Abandoned, "abandoned", Word::LockAbandoned},
    {LockState::Lost, "lost", Word::LockLost},
    {LockState::Denied, "denied", Word::LockDenied},
    {LockState::Unsupported, "unsupported", Word::LockUnsupported},
    {LockState::Unreachable, "unreachable", Word::LockUnreachable},
};

const Row& rowOf(LockState state)
{
    for (const Row& row : kRows)
        if (row.state == state)
            return row;
    return kRows[0];
}

} // namespace

std::string_view lockStateName(LockState state)
{
    return rowOf(state).name;
}

TvString lockStateWords(LockState state)
{
    return words(rowOf(state).word);
}

TvString lockSentence(const base::LockInfo& info)
{
    if (!info.owner)
        return lockStateWords(info.state);
    return words(Word::LockStateAndOwner, lockStateWords(info.state), info.owner->user,
                 info.owner->host);
}

TvString utcText(std::int64_t unixNs)
{
    constexpr std::int64_t kNsPerSecond = 1'000'000'000;
    const std::time_t seconds = unixNs / kNsPerSecond;
    std::tm parts{};
    if (unixNs <= 0 || !::gmtime_r(&seconds, &parts))
        return {};
    return TvString().format(u"%04d-%02d-%02dT%02d:%02d:%02dZ", parts.tm_year + 1900,
                             parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min,
                             parts.tm_sec);
}

} // namespace cli
