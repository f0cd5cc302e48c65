#include "operations_windows/new_sheet_command.h"

#include <core/watch_poller.h>
#include <ed/tv_ap_doc_manager.h>
#include <panel/handler_installer.h>
#include <rx/resource_module.h>
#include <sm/change_scope.h>

#include "operations_windows/create_new_sheet_dialog.h"

namespace {

TvString handleOf(const TvSmPersist* object)
{
    return object ? object->objectId().getHandle() : TvString();
}

template <class T>
T* objectAt(const TvSmDatabase& database, const TvString& handle)
{
    return handle.isEmpty() ? nullptr : tvrxCast<T>(database.findObject(handle));
}

void openDrawingOf(const TvSmDatabase& database, const TvString& sheet)
{
    const auto* made = objectAt<TvSmSheet>(database, sheet);
    if (made && made->getLayoutReference())
        OpenDocument(made->getLayoutReference()->getFileName());
}

const panel::HandlerInstaller kInstaller([](panel::PanelCommands& commands) {
    commands.setHandler(panel::kNewSheet, [&commands](panel::SheetListPage& page) {
        CreateNewSheetInto(page, commands.GetInsertionPlace());
    });
});

} // namespace

void CreateNewSheetInto(panel::SheetListPage& page, const panel::InsertionPlace& place)
{
    const auto* target = tvrxCast<TvSmSubset>(page.tree().GetComponent(place.parent));
    // Taking the lock may read the set anew, and let items go: what is needed is found again.
    const TvString parent = handleOf(target), neighbour = handleOf(place.before);
    const bool wasEmpty = target && !place.parent->hasChildren();
    sm::ChangeScope scope =
        sm::ChangeScope::withoutTest(core::answering(target ? target->database() : nullptr));
    auto* subset = scope ? objectAt<TvSmSubset>(*scope.database(), parent) : nullptr;
    if (!subset)
        return;
    TvSmDatabase& database = *scope.database();
    const rx::ResourceContext ours(rx::sheetSetResourceName());
    TvString made;
    {
        CCreateNewSheetDialog dialog(nullptr, subset);
        if (dialog.DoModal() != text::kIdOk)
            return;
        TvSmSheet* sheet = dialog.GetSheet();
        if (!sheet)
            return scope.leaveLocked(); // nobody can tell what has become of the set
        page.anchorAtCaret();
        auto* before = objectAt<TvSmComponent>(database, neighbour);
        if (!operations::placeNewSheet(*subset, *sheet,
                                       before && before->getOwner() == subset ? before : nullptr))
            return;
        made = handleOf(sheet);
    }
    if (!scope.commit()) // the tree follows what is written
        return;
    if (wasEmpty)
        page.tree().setExpanded(page.tree().itemOf(parent), true);
    if (operations::NewSheet::opensInEditor())
        openDrawingOf(database, made);
    page.statusTimer().UpdateSheetStatusIfEnabled();
}
