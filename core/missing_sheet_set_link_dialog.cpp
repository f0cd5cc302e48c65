#include <core/missing_sheet_set_link_dialog.h>

#include <base/path_rules.h>
#include <rx/tv_user_messages.h>

int CMissingSheetSetLinkDialog::DoModal() const
{
    constexpr int kQuestion = 350;
    constexpr int kDrop = 1, kKeep = 2;
    TvUserMessages::Message message;
    message.text = kQuestion;
    message.arguments = {base::PathRules::native().fileNameOf(m_drawingPath), m_sheetSetPath};
    message.buttons = TvUserMessages::Buttons::YesNo;
    message.icon = TvUserMessages::Icon::Question;
    message.standard = TvUserMessages::Answer::No;
    return tvrxShowMessage(message) == TvUserMessages::Answer::Yes ? kDrop : kKeep;
}
