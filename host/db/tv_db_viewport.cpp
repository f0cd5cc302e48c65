#include <db/tv_db_viewport.h>

#include <algorithm>

#include "viewport_lists.h"

#include <db/tv_db_block_reference.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_xrecord.h>

TVRX_DEFINE_MEMBERS(TvDbViewport, TvDbEntity)

namespace {

// "status"
enum : std::int64_t {
    kPerspective = 1,
    kLocked = 0x4000,
    kClipped = 0x10000,
    kOff = 0x20000,
};

constexpr const TvChar* kLabelName = u"TARVIK_LABEL_BLOCK";
constexpr int kLabelCode = 330;

} // namespace

double TvDbViewport::customScale() const
{
    const double shown = viewHeight();
    return shown > 0 ? height() / shown : 0;
}

TvStatusCode TvDbViewport::setCustomScale(double scale)
{
    return scale > 0 ? setViewHeight(height() / scale) : TvStatus::InvalidInput;
}

bool TvDbViewport::isOn() const
{
    return (fields().integer("status") & kOff) == 0;
}

TvStatusCode TvDbViewport::setOn(bool on)
{
    const std::int64_t others = fields().integer("status") & ~kOff;
    return setInteger("status", on ? others : others | kOff);
}

bool TvDbViewport::isLocked() const
{
    return (fields().integer("status") & kLocked) != 0;
}

TvStatusCode TvDbViewport::setLocked(bool locked)
{
    const std::int64_t others = fields().integer("status") & ~kLocked;
    return setInteger("status", locked ? others | kLocked : others);
}

bool TvDbViewport::isPerspective() const
{
    return (fields().integer("status") & kPerspective) != 0;
}

int TvDbViewport::number() const
{
    const TvDbObjectPointer<TvDbBlockTableRecord> block(ownerId(), TvDb::kForNotify);
    const TvDbObjectPointer<TvDbLayout> layout(block ? block->getLayoutId() : TvDbObjectId(),
                                               TvDb::kForNotify);
    if (!layout)
        return 0;
    const std::vector<TvDbObjectId> all = layout->getViewportArray();
    const auto at = std::find(all.begin(), all.end(), objectId());
    return at == all.end() ? 0 : static_cast<int>(at - all.begin()) + 1;
}

std::vector<TvDbObjectId> TvDbViewport::frozenLayers() const
{
    std::vector<TvDbObjectId> layers;
    const db::ArrayView frozen = fields().array("frozen");
    for (std::uint32_t i = 0; i < frozen.size(); ++i)
        if (const TvDbObjectId id = idOf(frozen.handle(i)); id.isValid())
            layers.push_back(id);
    return layers;
}

bool TvDbViewport::isLayerFrozen(TvDbObjectId layer) const
{
    const std::vector<TvDbObjectId> frozen = frozenLayers();
    return layer && std::find(frozen.begin(), frozen.end(), layer) != frozen.end();
}

TvStatusCode TvDbViewport::freezeLayers(const std::vector<TvDbObjectId>& layers)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    for (const TvDbObjectId layer : layers)
        if (!layer.isValid() || layer.database() != database() ||
            !layer.objectClass()->isDerivedFrom(TvDbLayerTableRecord::desc()))
            return TvStatus::InvalidInput;
    db::RecordEditor fields = edit();
    if (!fields)
        return TvStatus::NotUnderstood;
    db::ArrayEditor frozen = fields.array("frozen");
    for (const TvDbObjectId layer : layers)
        if (!isLayerFrozen(layer))
            frozen.setHandle(frozen.add(), layer.handle().value());
    return TvStatus::Ok;
}

TvStatusCode TvDbViewport::thawLayers(const std::vector<TvDbObjectId>& layers)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    db::RecordEditor fields = edit();
    if (!fields)
        return TvStatus::NotUnderstood;
    db::ArrayEditor frozen = fields.array("frozen");
    for (std::uint32_t i = frozen.size(); i-- > 0;)
        if (std::find(layers.begin(), layers.end(), idOf(frozen.handle(i))) != layers.end())
            frozen.erase(i);
    return TvStatus::Ok;
}

TvDbObjectId TvDbViewport::nonRectClipEntityId() const
{
    if ((fields().integer("status") & kClipped) == 0)
        return {};
    const TvDbObjectId id = idField("clip_boundary");
    return id.isValid() ? id : TvDbObjectId();
}

TvDbObjectId TvDbViewport::getLabelBlock() const
{
    const TvDbObjectPointer<TvDbDictionary> dictionary(extensionDictionary(), TvDb::kForNotify);
    TvDbObjectId id;
    if (!dictionary || dictionary->getAt(TvString(kLabelName), id) != TvStatus::Ok)
        return {};
    const TvDbObjectPointer<TvDbXrecord> record(id, TvDb::kForNotify);
    resbuf* chain = nullptr;
    if (!record || record->rbChain(&chain) != TvStatus::Ok || !chain)
        return {};
    const TvResbufPtr items(chain);
    const TvDbObjectId label =
        items->restype == kLabelCode ? idOf(items->resval.rhandle) : TvDbObjectId();
    const bool isReference =
        label.isValid() && label.objectClass()->isDerivedFrom(TvDbBlockReference::desc());
    return isReference ? label : TvDbObjectId();
}

TvStatusCode TvDbViewport::setLabelBlock(TvDbObjectId reference)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    if (reference && (reference.database() != database() || !reference.isValid() ||
                      !reference.objectClass()->isDerivedFrom(TvDbBlockReference::desc())))
        return TvStatus::InvalidInput;
    if (reference.isNull() && !extensionDictionary())
        return TvStatus::Ok;
    if (const TvStatusCode status = createExtensionDictionary())
        return status;
    TvDbObjectPointer<TvDbDictionary> dictionary(extensionDictionary(), TvDb::kForWrite);
    if (!dictionary)
        return dictionary.openStatus();
    if (reference.isNull()) {
        dictionary->remove(TvString(kLabelName));
        return TvStatus::Ok;
    }
    auto record = std::make_unique<TvDbXrecord>();
    const TvResbufPtr items(tvutBuildList(kLabelCode, reference.handle()));
    record->setFromRbChain(*items.get());
    TvDbObjectId id;
    if (const TvStatusCode status = dictionary->setAt(TvString(kLabelName), record.get(), id))
        return status;
    record.release()->close();
    return TvStatus::Ok;
}

TvStatusCode TvDbViewport::getGeomExtents(TvDbExtents& out) const
{
    const TvGeVector3d half(width() / 2, height() / 2, 0);
    out = TvDbExtents(centerPoint() - half, centerPoint() + half);
    return out.isEmpty() ? TvStatus::NotApplicable : TvStatus::Ok;
}
