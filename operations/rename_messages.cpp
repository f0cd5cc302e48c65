#include "operations/rename_messages.h"

#include <base/kv_file_system.h>
#include <rx/tv_user_messages.h>

void operations::warn(const RenameMessage& message)
{
    TvUserMessages::Message shown;
    shown.text = message.text;
    shown.caption = message.caption;
    shown.icon = TvUserMessages::Icon::Warning;
    tvrxShowMessage(shown);
}

bool operations::isDrawingThere(const TvString& path)
{
    constexpr int kTries = 6, kDelayMs = 500;
    return !path.isEmpty() && KvFileSystem::isFileExisting(path, kTries, kDelayMs);
}
