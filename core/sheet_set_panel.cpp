#include <core/sheet_set_panel.h>

namespace {

core::SheetSetPanelMaker& maker()
{
    static core::SheetSetPanelMaker make;
    return make;
}

} // namespace

void core::setSheetSetPanelMaker(SheetSetPanelMaker make)
{
    maker() = std::move(make);
}

const core::SheetSetPanelMaker& core::sheetSetPanelMaker()
{
    return maker();
}
