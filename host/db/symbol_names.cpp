#include <db/symbol_names.h>

#include <algorithm>

namespace db {

namespace {

constexpr std::u16string_view kForbidden = u"<>/\\\":;?*|,=`";
constexpr int kLongestName = 255;

constexpr struct {
    TvChar first, last;
} kUnseen[] = {
    {0, 0x1F},        // control characters
    {0x7F, 0x9F},     // and the second lot of them
    {0x61C, 0x61C},   // a mark of direction
    {0x200B, 0x200F}, // of no width; marks of direction
    {0x2028, 0x202E}, // ends of lines; turns of direction
    {0x2060, 0x206F}, // joiners; turns of direction
    {0xFEFF, 0xFEFF}, // of no width
    {0xFFF9, 0xFFFB}, // of annotations
    {0xFFFE, 0xFFFF}, // no characters
};

bool isUnseen(TvChar unit)
{
    return std::any_of(std::begin(kUnseen), std::end(kUnseen), [&](const auto& range) {
        return unit >= range.first && unit <= range.last;
    });
}

bool isFirstHalf(TvChar unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isSecondHalf(TvChar unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

bool hasBrokenPair(std::u16string_view text)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isSecondHalf(text[i]))
            return true;
        if (isFirstHalf(text[i]) && (++i == text.size() || !isSecondHalf(text[i])))
            return true;
    }
    return false;
}

} // namespace

bool isSymbolName(const TvString& name)
{
    if (name.isEmpty() || name.length() > kLongestName || name.trimmed() != name)
        return false;
    return std::none_of(name.view().begin(), name.view().end(),
                        [](TvChar unit) {
                            return isUnseen(unit) ||
                                   kForbidden.find(unit) != std::u16string_view::npos;
                        }) &&
           !hasBrokenPair(name.view());
}

} // namespace db
