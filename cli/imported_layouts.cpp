#include "cli/imported_layouts.h"

#include <nlohmann/json.hpp>

#include <sm/tv_sm_sheet.h>
#include <sm/tv_sm_sheet_set_mgr.h>

#include "cli/components.h"
#include "cli/drawing_session.h"

namespace cli {

operations::LoadedLayouts layoutsFor(const TvSmDatabase& set, const std::vector<TvString>& drawings,
                                     Console& console)
{
    TvSmSheetSetMgr manager; // for sets that drawings name
    return operations::loadLayouts(drawings, {&manager, &set}, operations::LayoutOrder::Tabs,
                                   [&console] { console.stopIfInterrupted(); });
}

bool warnOfUnreadable(const operations::LoadedLayouts& loaded, Console& console)
{
    for (const auto& each : loaded.unreadable) {
        Message message = messageOfDrawing(each.status);
        message.text = words(Word::ImportUnreadable, each.drawing, message.text);
        console.warn(message);
    }
    return !loaded.unreadable.empty();
}

void refuseIfUnreadable(const operations::LoadedLayouts& loaded)
{
    if (!loaded.unreadable.empty())
        refuseDrawing(loaded.unreadable.front().status, loaded.unreadable.front().drawing,
                      Doing::Reading);
}

void warnOfUse(const operations::LayoutRow& row, Console& console)
{
    console.warn(messageOf(Word::ImportInUse, row.layout, row.drawing));
}

Json jsonOfImported(const TvSmSheet& sheet)
{
    const TvSmTvDbLayoutReference& reference = *sheet.getLayoutReference();
    return {{"handle", jsonText(handleOf(sheet))},
            {"name", jsonText(sheet.getName())},
            {"drawing", jsonText(reference.getFileName())},
            {"layout", jsonText(reference.getName())},
            {"layoutHandle", jsonText(reference.getHandle())}};
}

Json jsonOfUsed(const std::vector<operations::LayoutRow>& rows)
{
    Json used = Json::array();
    for (const operations::LayoutRow& row : rows)
        if (!row.isImportable())
            used.push_back({{"drawing", jsonText(row.drawing)},
                            {"layout", jsonText(row.layout)},
                            {"layoutHandle", jsonText(row.handle.text())}});
    return used;
}

} // namespace cli
