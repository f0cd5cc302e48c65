#include "db/group_items.h"

namespace db {

namespace {

struct CodeRange {
    int first, last;
    ItemKind kind;
};

// clang-format off
constexpr CodeRange kXrecordCodes[] = {
    {0, 9, ItemKind::Text},         {10, 37, ItemKind::Point},      {38, 59, ItemKind::Real},
    {60, 79, ItemKind::Short},      {90, 99, ItemKind::Long},       {100, 104, ItemKind::Text},
    {105, 105, ItemKind::Handle},   {110, 139, ItemKind::Point},    {140, 149, ItemKind::Real},
    {160, 169, ItemKind::Wide},     {170, 179, ItemKind::Short},    {210, 239, ItemKind::Point},
    {270, 279, ItemKind::Short},    {280, 299, ItemKind::Byte},     {300, 309, ItemKind::Text},
    {310, 319, ItemKind::Binary},   {320, 369, ItemKind::Handle},   {370, 389, ItemKind::Short},
    {390, 399, ItemKind::Handle},   {400, 409, ItemKind::Short},    {410, 419, ItemKind::Text},
    {420, 429, ItemKind::Long},     {430, 439, ItemKind::Text},     {440, 459, ItemKind::Long},
    {460, 469, ItemKind::Real},     {470, 479, ItemKind::Text},     {480, 481, ItemKind::Handle},
    {999, 1003, ItemKind::Text},    {1004, 1004, ItemKind::Binary}, {1005, 1005, ItemKind::Handle},
    {1010, 1039, ItemKind::Point},  {1040, 1059, ItemKind::Real},   {1060, 1070, ItemKind::Short},
    {1071, 1071, ItemKind::Long},
};

constexpr CodeRange kExtendedCodes[] = {
    {1000, 1000, ItemKind::Text},   {1002, 1002, ItemKind::Brace},  {1003, 1003, ItemKind::Handle},
    {1004, 1004, ItemKind::Binary}, {1005, 1005, ItemKind::Handle}, {1010, 1015, ItemKind::Point},
    {1040, 1042, ItemKind::Real},   {1070, 1070, ItemKind::Short},  {1071, 1071, ItemKind::Long},
};
// clang-format on

template <std::size_t N>
std::optional<ItemKind> kindIn(const CodeRange (&ranges)[N], int code)
{
    for (const CodeRange& range : ranges)
        if (range.first <= code && code <= range.last)
            return range.kind;
    return std::nullopt;
}

} // namespace

std::optional<ItemKind> xrecordItemKind(int code)
{
    return kindIn(kXrecordCodes, code);
}

std::optional<ItemKind> extendedItemKind(int code)
{
    return kindIn(kExtendedCodes, code);
}

std::optional<ReferenceKind> itemReferenceKind(int code)
{
    if (code >= 330 && code < 340)
        return ReferenceKind::SoftPointer;
    if ((code >= 340 && code < 350) || (code >= 390 && code < 400) || code == 480 || code == 481)
        return ReferenceKind::HardPointer;
    if (code >= 350 && code < 360)
        return ReferenceKind::SoftOwner;
    if (code >= 360 && code < 370)
        return ReferenceKind::HardOwner;
    if (code == 1003 || code == 1005)
        return ReferenceKind::SoftPointer;
    return std::nullopt; // 105 and 320 to 329 are plain numbers
}

} // namespace db
