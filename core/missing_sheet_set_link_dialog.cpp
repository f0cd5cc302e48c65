#include <core/missing_sheet_set_link_dialog.h>

#include <base/path_rules.h>
#include <rx/tv_user_messages.h>

namespace {

core::MissingLinkWindow g_window;

int askByMessage(const TvString& drawingPath, const TvString& sheetSetPath)
{
    constexpr int kQuestion = 350;
    constexpr int kDrop = 1, kKeep = 2;
    TvUserMessages::Message message;
    message.text = kQuestion;
    message.arguments = {base::PathRules::native().fileNameOf(drawingPath), sheetSetPath};
    message.buttons = TvUserMessages::Buttons::YesNo;
    message.icon = TvUserMessages::Icon::Question;
    message.standard = TvUserMessages::Answer::No;
    return tvrxShowMessage(message) == TvUserMessages::Answer::Yes ? kDrop : kKeep;
}

} // namespace

int CMissingSheetSetLinkDialog::DoModal() const
{
    if (const auto answer = g_window ? g_window(m_drawingPath, m_sheetSetPath) : std::nullopt)
        return *answer;
    return askByMessage(m_drawingPath, m_sheetSetPath);
}

void core::setMissingLinkWindow(MissingLinkWindow window)
{
    g_window = std::move(window);
}
