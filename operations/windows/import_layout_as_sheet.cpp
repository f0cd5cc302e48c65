#include "operations_windows/import_layout_as_sheet.h"

#include <core/watch_poller.h>
#include <operations/import_sheets.h>
#include <panel/handler_installer.h>
#include <panel/import_layouts.h>
#include <panel/recover_drawing.h>
#include <rx/resource_module.h>
#include <sm/change_scope.h>

#include "operations_windows/import_layout_as_sheet_dialog.h"

namespace {

TvString handleOf(const TvSmComponent* object)
{
    return object ? object->objectId().getHandle() : TvString();
}

template <class T>
T* objectAt(const TvSmDatabase& database, const TvString& handle)
{
    return handle.isEmpty() ? nullptr : tvrxCast<T>(database.findObject(handle));
}

/// The choices of the panel that end here, for as long as this library is loaded.
class PanelChoices
{
public:
    PanelChoices()
    {
        panel::setImportLayouts(&ImportLayoutAsSheetInto);
        panel::setReplaceLayout(
            [](TvSmDatabase&, TvSmSheet& sheet) { return operations::chooseOtherLayout(sheet); });
    }
    ~PanelChoices()
    {
        panel::setReplaceLayout({});
        panel::setImportLayouts({});
    }
    PanelChoices(const PanelChoices&) = delete;
    PanelChoices& operator=(const PanelChoices&) = delete;
};

const PanelChoices kChoices;
const panel::HandlerInstaller kInstaller([](panel::PanelCommands& commands) {
    commands.setHandler(panel::kImportLayout, [&commands](panel::SheetListPage& page) {
        panel::importLayouts(page, commands.GetInsertionPlace(), {}, {});
    });
});

} // namespace

void ImportLayoutAsSheetInto(panel::SheetListPage& page, const panel::InsertionPlace& place,
                             const TvString& drawing, const std::vector<TvString>& layouts)
{
    const auto* target = tvrxCast<TvSmSubset>(page.tree().GetComponent(place.parent));
    // Taking the lock may read the set anew, and let items go: what is needed is found again.
    const TvString parent = handleOf(target), neighbour = handleOf(place.before);
    const bool wasEmpty = target && !place.parent->hasChildren();
    sm::ChangeScope scope(core::answering(target ? target->database() : nullptr));
    auto* subset = scope ? objectAt<TvSmSubset>(*scope.database(), parent) : nullptr;
    if (!subset)
        return;
    const rx::ResourceContext ours(rx::sheetSetResourceName());
    CImportLayoutAsSheetDialog dialog(nullptr, subset);
    dialog.SetDrawing(drawing);
    dialog.SetLayouts(layouts);
    if (dialog.DoModal() != text::kIdOk)
        return;
    auto* before = objectAt<TvSmComponent>(*scope.database(), neighbour);
    if (!operations::placeImportedSheets(*subset, dialog.GetSheets(),
                                         before && before->getOwner() == subset ? before
                                                                                : nullptr) ||
        !scope.commit())
        return;
    if (wasEmpty)
        page.tree().setExpanded(page.tree().itemOf(parent), true);
    page.statusTimer().UpdateSheetStatusIfEnabled();
}

bool operations::chooseOtherLayout(TvSmSheet& sheet)
{
    const rx::ResourceContext ours(rx::sheetSetResourceName());
    return CImportLayoutAsSheetDialog(nullptr, &sheet).DoModal() == text::kIdOk;
}
