#include "text_tools.h"

namespace gs {

const TextTools::Style& TextTools::style(TvDbObjectId id)
{
    const auto [at, isNew] = styles.try_emplace(id);
    if (isNew) {
        at->second.style = textStyleOf(id);
        at->second.font = &fonts.find(at->second.style.font);
    }
    return at->second;
}

const TextTools::Style& TextTools::styleOf(const TvDbText& text)
{
    static const db::FieldId kStyle = db::fieldId("style");
    const std::uint64_t handle = text.fields().handle(kStyle);
    if (!last || handle != lastHandle) {
        last = &style(text.idOf(handle));
        lastHandle = handle;
    }
    return *last;
}

TextShape shapeOf(const TvDbText& text, Fonts& fonts)
{
    TextTools tools(fonts);
    return textShape(text, tools);
}

TextShape shapeOf(const TvDbText& text, std::u16string_view shown, Fonts& fonts)
{
    TextTools tools(fonts);
    return textShape(text, shown, tools);
}

TextShape shapeOf(const TvDbMText& text, Fonts& fonts)
{
    TextTools tools(fonts);
    return textShape(text, tools);
}

TextShape shapeOf(const TvDbMLeader& leader, Fonts& fonts)
{
    TextTools tools(fonts);
    return textShape(leader, tools);
}

TextShape shapeOf(const TvDbFcf& tolerance, Fonts& fonts)
{
    TextTools tools(fonts);
    return textShape(tolerance, tools);
}

} // namespace gs
