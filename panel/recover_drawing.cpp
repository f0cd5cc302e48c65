#include "panel/recover_drawing.h"

#include <core/not_available_yet.h>
#include <core/sheet_tip.h>
#include <core/watch_poller.h>
#include <resources/texts.h>
#include <rx/tv_user_messages.h>
#include <sm/change_scope.h>
#include <sm/kv_db_util.h>

namespace panel {

namespace {

constexpr int kRemoveSheet = 1001, kReplaceSheet = 1002; // answers
constexpr int kRemoveText = 620, kReplaceText = 621, kImportText = 451;
constexpr int kQuestion = 347, kQuestionTitle = 346;

ReplaceLayout g_replaceLayout;

int ask(const TvSmTvDbLayoutReference& reference, const TvSmSheet& sheet, const TvSmSheetSet& set,
        int titleId, int textId)
{
    const TvString label = core::sheetLabel(sheet);
    TvUserMessages::TaskDialog dialog;
    dialog.title = {{titleId, {}}};
    dialog.instruction = {textId, {reference.getFileName()}};
    dialog.commands = {{kRemoveSheet, {kRemoveText, {label, set.getName()}}},
                       {kReplaceSheet, {kReplaceText, {label}}}};
    dialog.standard = kRemoveSheet;
    return tvrxShowTaskDialog(dialog).button;
}

void removeSheet(TvSmDatabase& database, TvSmSheet& sheet)
{
    sm::ChangeScope scope(core::answering(&database));
    if (!scope || !confirmRemoval(core::sheetLabel(sheet), database))
        return;
    auto* owner = tvrxCast<TvSmSubset>(sheet.getOwner());
    if (owner && owner->removeSheet(&sheet))
        scope.commit();
}

void replaceLayout(TvSmDatabase& database, TvSmSheet& sheet)
{
    if (!g_replaceLayout)
        return core::sayNotAvailableYet(text::find(kImportText));
    sm::ChangeScope scope(core::answering(&database));
    if (scope && g_replaceLayout(database, sheet))
        scope.commit();
}

} // namespace

bool isStillOpen(const TvSmDatabase* database)
{
    if (const TvSmSheetSetMgr* manager = KvDbUtil::tarvGetSheetSetMgr())
        for (const TvSmDatabase* each : sm::each(manager->getDatabaseEnumerator()))
            if (each == database)
                return true;
    return false;
}

void setReplaceLayout(ReplaceLayout replace)
{
    g_replaceLayout = std::move(replace);
}

bool confirmRemoval(const TvString& what, const TvSmDatabase& database)
{
    TvUserMessages::Message message;
    message.text = kQuestion;
    message.caption = kQuestionTitle;
    message.arguments = {what, database.getSheetSet()->getName()};
    message.buttons = TvUserMessages::Buttons::OkCancel;
    message.icon = TvUserMessages::Icon::Question;
    return tvrxShowMessage(message) == TvUserMessages::Answer::Ok;
}

void RecoverMissingDrawing(const TvSmTvDbLayoutReference* reference, int titleId, int textId)
{
    auto* sheet = reference ? tvrxCast<TvSmSheet>(reference->getOwner()) : nullptr;
    TvSmDatabase* database = sheet ? sheet->database() : nullptr;
    if (!database)
        return;
    const TvString handle = sheet->objectId().getHandle();
    const int answer = ask(*reference, *sheet, *database->getSheetSet(), titleId, textId);
    // The question may have stood for long: set and sheet are looked for again.
    if (!isStillOpen(database))
        return;
    sheet = tvrxCast<TvSmSheet>(database->findObject(handle));
    if (!sheet || core::lockStatusAtHand(database) != 0)
        return;
    if (answer == kRemoveSheet)
        removeSheet(*database, *sheet);
    else if (answer == kReplaceSheet)
        replaceLayout(*database, *sheet);
}

} // namespace panel
