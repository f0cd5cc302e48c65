#include <core/tip_style.h>

#include <optional>

#include <core/settings.h>

namespace core {

namespace {

constexpr TvChar kKey[] = u"UserInterfaceSettings\\SheetSetDialog\\TooolTipStyle"; // sic

TipStyle g_style;

struct StyleRow {
    TipStyle::Mode mode;
    std::optional<TipStyle::Size> size; // none: stays
};

// clang-format off
constexpr StyleRow kStyles[kTipStyles] = {
    {TipStyle::Name, {}},
    {TipStyle::NameAndDetails, {}},
    {TipStyle::NameAndPreview, TipStyle::Small},
    {TipStyle::NameAndPreview, TipStyle::Medium},
    {TipStyle::NameAndPreview, TipStyle::Large},
    {TipStyle::Everything, TipStyle::Small},
    {TipStyle::Everything, TipStyle::Medium},
    {TipStyle::Everything, TipStyle::Large},
};

constexpr PreviewRoom kRooms[] = {
    {64, 48, u"\n1234567890\n\n\n", 11},
    {128, 96, u"\n12345678901234567890\n\n\n\n\n\n", 21},
    {256, 192, u"\n1234567890123456789012345678901234567890\n\n\n\n\n\n\n\n\n\n\n\n", 41},
};
// clang-format on

} // namespace

const PreviewRoom& previewRoom(TipStyle::Size size)
{
    return kRooms[size];
}

bool applyTipStyle(int number, TipStyle& style)
{
    if (number < 0 || number >= kTipStyles)
        return false;
    const StyleRow& row = kStyles[number];
    style.mode = row.mode;
    style.size = row.size.value_or(style.size);
    return true;
}

TipStyle tipStyle()
{
    return g_style;
}

bool chooseTipStyle(int number)
{
    return applyTipStyle(number, g_style) && (WriteConfigInt(kKey, number), true);
}

void readTipStyle()
{
    int number = 0;
    if (ReadConfigInt(kKey, number))
        applyTipStyle(number, g_style);
}

void resetTipStyle()
{
    g_style = {};
}

} // namespace core
