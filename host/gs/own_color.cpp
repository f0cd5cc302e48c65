#include "gs/own_color.h"

namespace gs {

OwnColor OwnColor::fromIndex(std::int64_t index)
{
    if (index == 0)
        return {Kind::ByBlock, 0};
    if (index == 256)
        return {Kind::ByLayer, 0};
    if (index < 0 || index > 256)
        return {};
    return {Kind::Index, static_cast<std::uint32_t>(index)};
}

OwnColor OwnColor::fromRecord(std::int64_t value)
{
    const auto bits = static_cast<std::uint32_t>(value);
    switch (bits >> 24) {
    case 0xC0: return {Kind::ByLayer, 0};
    case 0xC1: return {Kind::ByBlock, 0};
    case 0xC2: return fromRgb(bits);
    case 0xC3: return fromIndex(bits & 0xFFFF);
    default: return {};
    }
}

OwnColor OwnColor::fromRecord(const db::RecordView& color, db::Version version)
{
    const OwnColor wide = fromRecord(color.integer("value"));
    return version == db::Version::Ac1015 && wide.kind == Kind::ByLayer
               ? fromIndex(color.integer("index"))
               : wide;
}

} // namespace gs
