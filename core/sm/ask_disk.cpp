#include "sm/ask_disk.h"

#include <base/file_identity.h>
#include <base/path_rules.h>

namespace sm {

namespace {

DiskAsker g_asker = nullptr;

std::optional<base::FileIdentity> identityOf(const TvString& path, const About& about)
{
    const std::shared_ptr<void> asked = about(path);
    return base::identityOf(path);
}

} // namespace

void setDiskAsker(DiskAsker asker)
{
    g_asker = asker;
}

std::vector<bool> askDisk(std::vector<DiskQuestion> questions, Wanted wanted)
{
    if (g_asker)
        return g_asker(std::move(questions), wanted);
    std::vector<bool> answers(questions.size());
    for (std::size_t i = 0; i < questions.size(); ++i) {
        answers[i] = questions[i].ask([](const TvString&) { return nullptr; });
        if (answers[i] && wanted == Wanted::FirstYes)
            break;
    }
    return answers;
}

bool isSameFile(const TvString& left, const TvString& right, const About& about)
{
    if (left == right)
        return true;
    const std::optional<base::FileIdentity> mine = identityOf(left, about);
    const std::optional<base::FileIdentity> other = mine ? identityOf(right, about) : std::nullopt;
    return mine && other ? mine == other : base::PathRules::native().isSame(left, right);
}

} // namespace sm
