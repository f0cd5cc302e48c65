#include "operations/sheet_duplicate.h"

#include <rx/tv_user_messages.h>
#include <sm/tv_sm_enumerator.h>
#include <sm/tv_sm_sheet.h>
#include <sm/tv_sm_subset.h>

const TvSmSheet* operations::duplicateOf(const TvString& number, const TvString& title,
                                         const TvSmSubset* subset, const TvSmSheet* excluded)
{
    if (!subset)
        return nullptr;
    for (const TvSmComponent* child : sm::each(subset->getSheetEnumerator())) {
        const auto* sheet = tvrxCast<TvSmSheet>(child);
        if (sheet && sheet != excluded && sheet->getNumber() == number &&
            sheet->getTitle() == title)
            return sheet;
    }
    return nullptr;
}

bool IsSheetDuplicate(const TvString& number, const TvString& title, const TvSmSubset* subset,
                      const TvSmSheet* excluded)
{
    constexpr int kText = 500, kCaption = 499;
    if (!operations::duplicateOf(number, title, subset, excluded))
        return false;
    TvUserMessages::Message message;
    message.text = kText;
    message.caption = kCaption;
    message.arguments = {title};
    message.icon = TvUserMessages::Icon::Warning;
    tvrxShowMessage(message);
    return true;
}
