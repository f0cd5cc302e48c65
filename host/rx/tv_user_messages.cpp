#include <rx/tv_user_messages.h>

namespace {

TvUserMessages* g_messages = nullptr;

} // namespace

TvUserMessages* tvrxUserMessages()
{
    return g_messages;
}

void tvrxSetUserMessages(TvUserMessages* messages)
{
    g_messages = messages;
}

TvUserMessages::Answer tvrxShowMessage(const TvUserMessages::Message& message)
{
    if (g_messages)
        return g_messages->show(message);
    switch (message.buttons) {
    case TvUserMessages::Buttons::OkCancel: return TvUserMessages::Answer::Cancel;
    case TvUserMessages::Buttons::YesNo: return TvUserMessages::Answer::No;
    default: return TvUserMessages::Answer::Ok;
    }
}
