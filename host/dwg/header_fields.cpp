#include "header_fields.h"

#include <charconv>

namespace dwg {

namespace {

constexpr HeaderField kFields[] = {
#include "header_fields.inc"
};

// Numbers of the table, parted by commas; never through a locale.
double numberAt(std::string_view text, int index)
{
    for (; index > 0; --index)
        text.remove_prefix(std::min(text.size(), text.find(',') + 1));
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

HeaderColor standardColor(std::string_view text, Version version)
{
    HeaderColor color;
    std::from_chars(text.data(), text.data() + text.size(), color.rgb, 16);
    if (version == Version::Ac1015) {
        // Then the index alone is stored: 256 by layer, 0 by block.
        color.index = color.rgb == 0xC0000000u ? 256 : 0;
        color.rgb = 0;
    }
    return color;
}

} // namespace

std::span<const HeaderField> headerFields()
{
    return kFields;
}

HeaderValue standardValue(const HeaderField& field, Version version)
{
    const std::string_view text = field.standard;
    switch (field.kind) {
    case HeaderKind::Real: return numberAt(text, 0);
    case HeaderKind::Point:
    case HeaderKind::Pair: return Triple{numberAt(text, 0), numberAt(text, 1), numberAt(text, 2)};
    case HeaderKind::Text: return asciiText(version, text);
    case HeaderKind::Date: return DateStamp{};
    case HeaderKind::Color: return standardColor(text, version);
    case HeaderKind::Handle:
    case HeaderKind::StyleHandle: return HandleReference{5, 0, 0};
    case HeaderKind::HardOwner: return HandleReference{3, 0, 0};
    case HeaderKind::Seed: return HandleReference{0, 0, 0};
    case HeaderKind::Short: return std::int64_t(static_cast<std::int16_t>(numberAt(text, 0)));
    case HeaderKind::Long:
        return std::int64_t(
            static_cast<std::int32_t>(static_cast<std::int64_t>(numberAt(text, 0))));
    default: return static_cast<std::int64_t>(numberAt(text, 0));
    }
}

} // namespace dwg
