#include <core/new_sheet_set_wizard.h>

#include <core/not_available_yet.h>
#include <core/open_sheet_set.h>
#include <core/short_variable.h>
#include <rx/resource_module.h>
#include <sm/tv_sm_database.h>

namespace {

std::function<std::unique_ptr<core::NewSheetSetWizard>()>& maker()
{
    static std::function<std::unique_ptr<core::NewSheetSetWizard>()> make;
    return make;
}

bool opensWhatWasMade()
{
    return core::shortVariable(u"SSMAUTOOPEN").value_or(0) != 0;
}

/// The file of the set that the user made; empty when he gave up.
TvString fileOfMadeSet()
{
    const rx::ResourceContext ours(rx::sheetSetResourceName());
    const std::unique_ptr<core::NewSheetSetWizard> wizard = maker()();
    if (!wizard || wizard->DoModal() != core::NewSheetSetWizard::kFinished || !wizard->database())
        return {};
    return wizard->database()->getFileName();
}

} // namespace

void RunNewSheetSetWizard()
{
    if (!maker())
        return core::sayNotAvailableYet(u"NEWSHEETSET");
    const TvString path = fileOfMadeSet();
    if (!path.isEmpty() && opensWhatWasMade())
        OpenSheetSetFile(path);
}

void core::setNewSheetSetWizard(std::function<std::unique_ptr<NewSheetSetWizard>()> make)
{
    maker() = std::move(make);
}
