#include "cli/property_words.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace cli {

namespace {

using Value = TvSmCustomPropertyValue;

struct TypeRow {
    std::uint16_t type;
    const char* name;
};
constexpr TypeRow kTypes[] = {
    {TvVariant::kEmpty, "empty"}, {TvVariant::kString, "text"}, {TvVariant::kInt32, "int"},
    {TvVariant::kInt16, "short"}, {TvVariant::kReal, "real"},   {TvVariant::kBool, "bool"},
};

std::string_view typeName(const TvVariant& value)
{
    for (const TypeRow& row : kTypes)
        if (row.type == (value.type() & TvVariant::kTypeMask))
            return row.name;
    return "text";
}

/// Both may be set, and neither.
const char* scopeName(unsigned short flags)
{
    const bool isSets = flags & Value::kSheetSetProperty;
    const bool isSheets = flags & Value::kSheetProperty;
    if (isSets)
        return isSheets ? "both" : "sheetSet";
    return isSheets ? "sheet" : "none";
}

Json jsonOf(const TvVariant& value)
{
    TvString text;
    std::int32_t wide = 0;
    std::int16_t narrow = 0;
    double real = 0;
    bool flag = false;
    if (value.getString(text))
        return jsonText(text);
    if (value.getInt32(wide))
        return wide;
    if (value.getInt16(narrow))
        return narrow;
    if (value.getReal(real))
        return real;
    return value.getBool(flag) ? Json(flag) : Json();
}

} // namespace

TvString valueText(const Value& value)
{
    TvVariant variant;
    value.getValue(variant);
    TvString text;
    if (variant.getString(text))
        return text;
    const Json json = jsonOf(variant);
    return json.is_null() ? TvString() : TvString(json.dump().c_str());
}

Json jsonOf(const TvSmCustomPropertyBag& bag)
{
    Json list = Json::array();
    for (const sm::Property& property : sm::propertiesOf(&bag)) {
        TvVariant value;
        property.value->getValue(value);
        list.push_back({{"name", jsonText(property.name)},
                        {"value", jsonOf(value)},
                        {"type", typeName(value)},
                        {"scope", scopeName(property.value->getFlags())}});
    }
    return list;
}

void listProperties(const TvSmCustomPropertyBag& bag, Console& console)
{
    const std::vector<sm::Property> properties = sm::propertiesOf(&bag);
    constexpr int kWidest = 32; // one long name does not push all values away
    int width = 0;
    for (const sm::Property& property : properties)
        width = std::max(width, std::min(kWidest, property.name.length()));
    for (const sm::Property& property : properties) {
        TvString name = property.name;
        while (name.length() < width)
            name += u' ';
        console.line({{name, Tone::Strong}, {u"  "}, {valueText(*property.value)}});
    }
}

unsigned short flagsOf(PropertyScope scope)
{
    switch (scope) {
    case PropertyScope::Keep: break;
    case PropertyScope::SheetSet: return Value::kSheetSetProperty;
    case PropertyScope::Sheets: return Value::kSheetProperty;
    }
    return 0;
}

} // namespace cli
