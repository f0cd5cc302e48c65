#include "cli/refusal.h"

#include <resources/texts.h>

namespace cli {

namespace {

using base::Failure;

struct Advice {
    Failure failure;
    Word word;
};

constexpr Advice kAdvice[] = {
    {Failure::NotFound, Word::AdviceNotFound},
    {Failure::Denied, Word::AdviceDenied},
    {Failure::ReadOnly, Word::AdviceReadOnly},
    {Failure::DiskFull, Word::AdviceDiskFull},
    {Failure::Exists, Word::AdviceExists},
    {Failure::Locked, Word::AdviceLocked},
    {Failure::Conflict, Word::AdviceConflict},
    {Failure::Damaged, Word::AdviceDamaged},
    {Failure::Unsupported, Word::AdviceUnsupported},
    {Failure::Unreachable, Word::AdviceUnreachable},
    {Failure::TooLarge, Word::AdviceDamaged},
};

struct AdviceByReason {
    base::Reason reason;
    Word word;
};

/// Where the kind of a failure says too little to help.
constexpr AdviceByReason kAdviceByReason[] = {
    {base::Reason::NotRegularFile, Word::AdviceNotRegular},
    {base::Reason::HardLinked, Word::AdviceHardLinked},
    {base::Reason::DwgNotDrawing, Word::AdviceNotDrawing},
    {base::Reason::DwgEncrypted, Word::AdvicePassword},
    {base::Reason::DxfVersion, Word::AdviceNotDrawing},
};

TvString adviceFor(const base::Status& status)
{
    for (const AdviceByReason& row : kAdviceByReason)
        if (row.reason == status.reason())
            return words(row.word);
    for (const Advice& row : kAdvice)
        if (row.failure == status.failure())
            return words(row.word);
    return {};
}

TvString sentenceOf(const base::Status& status)
{
    const char16_t* pattern = text::find(static_cast<int>(status.reason()));
    if (!pattern)
        return words(Word::UnknownReason);
    std::vector<base::FormatArgument> arguments;
    for (const TvString& argument : status.arguments())
        arguments.emplace_back(argument);
    return TvString().formatArguments(pattern, arguments);
}

} // namespace

TvString Message::code() const
{
    return TvString().format(u"E%05d", number);
}

Message messageOf(const base::Status& status)
{
    return {static_cast<int>(status.reason()), sentenceOf(status), adviceFor(status)};
}

void refuse(const base::Status& status, Doing doing)
{
    throw Refusal(exitCodeOf(status.failure(), doing), messageOf(status));
}

} // namespace cli
