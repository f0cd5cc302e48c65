#include "name_refusals.h"

#include <core/name_characters.h>
#include <rx/tv_user_messages.h>
#include <sm/limits.h>

namespace panel {

namespace {

constexpr int kEmptyName = 332, kTakenName = 333, kBadCharacters = 345, kTooLong = 580;
constexpr int kNameTitle = 335, kCharactersTitle = 336, kTakenTitle = 499;

bool refuse(bool isBad, int text, int caption)
{
    if (isBad)
        warn(text, caption);
    return isBad;
}

} // namespace

void warn(int text, int caption, std::vector<TvString> arguments)
{
    TvUserMessages::Message message;
    message.text = text;
    message.caption = caption;
    message.arguments = std::move(arguments);
    message.icon = TvUserMessages::Icon::Warning;
    tvrxShowMessage(message);
}

bool refusesEmptyName(const TvString& name)
{
    return refuse(name.trimmed().isEmpty(), kEmptyName, kNameTitle);
}

bool refusesCharacters(const TvString& name)
{
    return refuse(HasUnsupportedSheetChar(name), kBadCharacters, kCharactersTitle);
}

bool refusesLength(const TvString& name)
{
    return refuse(name.length() > sm::kMaxNameLength, kTooLong, kNameTitle);
}

void tellNameIsTaken(const TvString& name)
{
    warn(kTakenName, kTakenTitle, {name});
}

} // namespace panel
