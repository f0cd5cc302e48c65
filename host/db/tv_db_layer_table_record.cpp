#include <db/tv_db_symbol_table.h>

TVRX_DEFINE_MEMBERS(TvDbLayerTableRecord, TvDbSymbolTableRecord)

namespace {

// "flags"
enum : std::int64_t { kFrozen = 1, kOff = 2, kLocked = 8, kPlots = 16 };

// The kind of a colour, in the high byte of "value".
constexpr std::int64_t kIndexed = 0xC3;

constexpr int kLastColor = 255;

TvStatusCode setFlag(TvDbLayerTableRecord& layer, std::int64_t flag, bool on)
{
    if (!layer.isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    const std::int64_t others = layer.fields().integer("flags") & ~flag;
    return layer.edit().setInteger("flags", on ? others | flag : others) ? TvStatus::Ok
                                                                         : TvStatus::NotUnderstood;
}

} // namespace

bool TvDbLayerTableRecord::isFrozen() const
{
    return (fields().integer("flags") & kFrozen) != 0;
}

bool TvDbLayerTableRecord::isOff() const
{
    return (fields().integer("flags") & kOff) != 0;
}

bool TvDbLayerTableRecord::isLocked() const
{
    return (fields().integer("flags") & kLocked) != 0;
}

bool TvDbLayerTableRecord::isPlottable() const
{
    return (fields().integer("flags") & kPlots) != 0;
}

TvStatusCode TvDbLayerTableRecord::setIsFrozen(bool on)
{
    return setFlag(*this, kFrozen, on);
}

TvStatusCode TvDbLayerTableRecord::setIsOff(bool on)
{
    return setFlag(*this, kOff, on);
}

TvStatusCode TvDbLayerTableRecord::setIsLocked(bool on)
{
    return setFlag(*this, kLocked, on);
}

TvStatusCode TvDbLayerTableRecord::setIsPlottable(bool on)
{
    return setFlag(*this, kPlots, on);
}

TvDbObjectId TvDbLayerTableRecord::linetypeObjectId() const
{
    return idField("ltype");
}

int TvDbLayerTableRecord::colorIndex() const
{
    const db::RecordView color = fields().structure("color");
    if (record().version() == db::Version::Ac1015)
        return static_cast<int>(color.integer("index"));
    const std::int64_t value = color.integer("value") & 0xFFFFFFFF;
    return value >> 24 == kIndexed ? static_cast<int>(value & 0xFF) : 0;
}

TvStatusCode TvDbLayerTableRecord::setColorIndex(int index)
{
    if (index < 1 || index > kLastColor)
        return TvStatus::OutOfRange;
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    db::RecordEditor color = edit().structure("color");
    if (!color)
        return TvStatus::NotUnderstood;
    if (record().version() == db::Version::Ac1015) {
        color.setInteger("index", index);
    } else {
        color.setInteger("flags", 0); // no name of a colour book any more
        color.setInteger("value", kIndexed << 24 | index);
    }
    return TvStatus::Ok;
}
