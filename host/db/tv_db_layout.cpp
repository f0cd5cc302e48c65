#include <db/tv_db_layout.h>

#include <algorithm>

#include "quiet_edit.h"
#include "thumbnails.h"
#include "viewport_lists.h"

#include <db/symbol_names.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_symbol_table.h>

TVRX_DEFINE_MEMBERS(TvDbLayout, TvDbPlotSettings)

namespace {

constexpr std::u16string_view kModelName = u"Model";
constexpr double kMmPerInch = 25.4;
constexpr double kUnsetExtent = 1e19; // extents that nobody measured lie beyond

/// The paper layouts that are not erased, by tab order.
std::vector<TvDbObjectId> paperLayouts(TvDbDatabase& database)
{
    std::vector<TvDbObjectId> layouts = db::layoutsInTabOrder(database);
    std::erase_if(layouts, [](TvDbObjectId id) {
        const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify);
        return !layout || layout->isModelLayout();
    });
    return layouts;
}

/// Moves the tabs from @p from on by @p step.
void moveTabs(TvDbDatabase& database, TvDbObjectId but, int from, int step)
{
    for (const TvDbObjectId id : db::layoutsInTabOrder(database)) {
        const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify);
        if (!layout || id == but || layout->isModelLayout() || layout->getTabOrder() < from)
            continue;
        if (db::QuietEdit edit(id); edit)
            edit->setInteger("tab_order", layout->getTabOrder() + step);
    }
}

/// Another layout's block becomes the paper space that is shown.
TvStatusCode showAnother(TvDbDatabase& database, TvDbObjectId leaving)
{
    for (const TvDbObjectId id : paperLayouts(database)) {
        const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify);
        if (id == leaving || !layout)
            continue;
        TvDbObjectPointer<TvDbBlockTable> blocks(database.symbolTableId(TvDb::SymbolTable::Block),
                                                 TvDb::kForWrite);
        return blocks ? blocks->setPaperSpaceId(layout->getBlockTableRecordId())
                      : blocks.openStatus();
    }
    return TvStatus::StillInUse;
}

TvStatusCode eraseBlock(TvDbObjectId id, bool erasing)
{
    TvDbObjectPointer<TvDbBlockTableRecord> block(id, TvDb::kForWrite, true);
    // Not as a block of its own: that stays while its layout is there.
    return block ? block->TvDbObject::erase(erasing) : block.openStatus();
}

} // namespace

TvString TvDbLayout::getLayoutName() const
{
    return TvString(fields().text("name"));
}

TvStatusCode TvDbLayout::getLayoutName(TvString& out) const
{
    out = getLayoutName();
    return TvStatus::Ok;
}

TvStatusCode TvDbLayout::setLayoutName(const TvString& name)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    if (db::isModelLayoutName(name) || isModelLayout())
        return TvStatus::NameReserved;
    if (!db::isLayoutName(name))
        return TvStatus::InvalidName;
    const TvString before = getLayoutName();
    if (name == before)
        return TvStatus::Ok;
    if (database()) {
        TvDbObjectPointer<TvDbDictionary> layouts(database()->layoutDictionaryId(),
                                                  TvDb::kForWrite);
        if (!layouts)
            return layouts.openStatus();
        // The dictionary's key counts, where a damaged drawing has two names.
        TvString key;
        if (layouts->nameAt(objectId(), key) == TvStatus::Ok)
            if (const TvStatusCode status = layouts->setName(key, name))
                return status;
    }
    return edit().setText("name", name.view()) ? TvStatus::Ok : TvStatus::NotUnderstood;
}

TvDbObjectId TvDbLayout::getBlockTableRecordId() const
{
    return idField("block_record");
}

TvStatusCode TvDbLayout::setBlockTableRecordId(TvDbObjectId block)
{
    return setIdField("block_record", block);
}

bool TvDbLayout::isModelLayout() const
{
    return base::compareNoCase(fields().text("name"), kModelName) == 0;
}

int TvDbLayout::getTabOrder() const
{
    return static_cast<int>(fields().integer("tab_order"));
}

TvStatusCode TvDbLayout::setTabOrder(int order)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    if (order < 0 || order > INT16_MAX)
        return TvStatus::OutOfRange;
    return edit().setInteger("tab_order", order) ? TvStatus::Ok : TvStatus::NotUnderstood;
}

std::vector<TvDbObjectId> TvDbLayout::getViewportArray() const
{
    std::vector<TvDbObjectId> viewports = db::viewportsOf(getBlockTableRecordId());
    const db::ArrayView listed = fields().array("viewports");
    const auto overall =
        listed.isEmpty() ? viewports.end()
                         : std::find(viewports.begin(), viewports.end(), idOf(listed.handle(0)));
    if (overall != viewports.end())
        std::rotate(viewports.begin(), overall, overall + 1);
    return viewports;
}

TvStatusCode TvDbLayout::getLimits(db::Point& low, db::Point& high) const
{
    low = fields().point("limmin");
    high = fields().point("limmax");
    return TvStatus::Ok;
}

TvStatusCode TvDbLayout::getExtents(db::Point& low, db::Point& high) const
{
    low = fields().point("extmin");
    high = fields().point("extmax");
    return low.x < kUnsetExtent && low.x <= high.x && low.y <= high.y ? TvStatus::Ok
                                                                      : TvStatus::NotApplicable;
}

TvStatusCode TvDbLayout::getPaperArea(db::Point& low, db::Point& high) const
{
    double width = 0, height = 0;
    if (getPlotPaperSize(width, height) != TvStatus::Ok) {
        getLimits(low, high);
        return low.x < high.x && low.y < high.y ? TvStatus::Ok : TvStatus::NotApplicable;
    }
    double left, bottom, right, top;
    getPlotPaperMargins(left, bottom, right, top);
    // What is to the left of the drawing, and below it, on paper that lies turned.
    double beside = left, below = bottom;
    switch (plotRotation()) {
    case k0degrees: break;
    case k90degrees: beside = top, below = left; break;
    case k180degrees: beside = right, below = top; break;
    case k270degrees: beside = bottom, below = right; break;
    }
    if (plotRotation() == k90degrees || plotRotation() == k270degrees)
        std::swap(width, height);
    double numerator = 1, denominator = 1;
    const double scale = getCustomPrintScale(numerator, denominator);
    const double unitsPerMm = (plotPaperUnits() == kInches ? 1 / kMmPerInch : 1) / scale;
    double x = 0, y = 0;
    getPlotOrigin(x, y);
    low = {-(beside + x) * unitsPerMm, -(below + y) * unitsPerMm, 0};
    high = {low.x + width * unitsPerMm, low.y + height * unitsPerMm, 0};
    return TvStatus::Ok;
}

db::Preview TvDbLayout::getThumbnail() const
{
    return db::thumbnailOf(*this, u"_XREC_LAYOUTTHUMBNAIL");
}

TvStatusCode TvDbLayout::erase(bool erasing)
{
    if (!database())
        return TvStatus::NotInDatabase;
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    if (isErased() == erasing)
        return TvDbPlotSettings::erase(erasing);
    const TvDbObjectId block = getBlockTableRecordId();
    if (!erasing) {
        if (const TvStatusCode status = TvDbPlotSettings::erase(false))
            return status;
        moveTabs(*database(), objectId(), getTabOrder(), 1);
        return block ? eraseBlock(block, false) : TvStatus::Ok;
    }
    if (isModelLayout() || paperLayouts(*database()).size() < 2)
        return TvStatus::StillInUse;
    if (block.isValid() && block == database()->paperSpaceId())
        if (const TvStatusCode status = showAnother(*database(), objectId()))
            return status;
    if (block.isValid())
        if (const TvStatusCode status = eraseBlock(block, true))
            return status;
    moveTabs(*database(), objectId(), getTabOrder() + 1, -1);
    return TvDbPlotSettings::erase(true);
}

namespace db {

bool isModelLayoutName(const TvString& name)
{
    return name.compareNoCase(kModelName) == 0;
}

bool isLayoutName(const TvString& name)
{
    return isSymbolName(name) && !isModelLayoutName(name);
}

std::vector<TvDbObjectId> layoutsInTabOrder(TvDbDatabase& database)
{
    std::vector<std::pair<int, TvDbObjectId>> layouts;
    if (const TvDbObjectPointer<TvDbDictionary> all(database.layoutDictionaryId(),
                                                    TvDb::kForNotify);
        all)
        for (const auto& [name, id] : all->entries())
            if (const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify); layout)
                layouts.emplace_back(layout->isModelLayout() ? -1 : layout->getTabOrder(), id);
    std::stable_sort(layouts.begin(), layouts.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<TvDbObjectId> ids;
    for (const auto& [order, id] : layouts)
        ids.push_back(id);
    return ids;
}

} // namespace db
