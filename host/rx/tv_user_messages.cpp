#include <rx/tv_user_messages.h>

namespace {

TvUserMessages* g_messages = nullptr;

TvUserMessages::TaskAnswer refused(const TvUserMessages::TaskDialog& dialog)
{
    TvUserMessages::TaskAnswer answer;
    answer.marked = dialog.marked;
    answer.isChecked = dialog.isChecked;
    return answer;
}

} // namespace

TvUserMessages::TaskAnswer TvUserMessages::showTask(const TaskDialog& dialog)
{
    return refused(dialog);
}

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

TvUserMessages::TaskAnswer tvrxShowTaskDialog(const TvUserMessages::TaskDialog& dialog)
{
    return g_messages ? g_messages->showTask(dialog) : refused(dialog);
}
