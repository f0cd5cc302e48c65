#include "gs/color.h"

namespace gs {

namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF, kBlack = 0, kDark = 0x1E2228, kDesk = 0x9AA0A6;

} // namespace

std::uint32_t rgbOf(Background background)
{
    return background == Background::Dark ? kDark : kWhite;
}

std::uint32_t rgbOf(Color color, Background background)
{
    switch (color.kind) {
    case Color::Kind::Foreground: return background == Background::Dark ? kWhite : kBlack;
    case Color::Kind::Background: return rgbOf(background);
    case Color::Kind::Given: break;
    }
    return std::uint32_t(color.red) << 16 | std::uint32_t(color.green) << 8 | color.blue;
}

std::uint32_t deskRgb()
{
    return kDesk;
}

} // namespace gs
