#pragma once

#include <sm/tv_sm_custom_property_bag.h>

#include <cli/console.h>
#include <cli/requests.h>

namespace cli {

TvString valueText(const TvSmCustomPropertyValue& value);
/// { "name", "value", "type", "scope" } of each property: the value as its own JSON type.
Json jsonOf(const TvSmCustomPropertyBag& bag);
/// One line for each property: name and value, in two columns.
void listProperties(const TvSmCustomPropertyBag& bag, Console& console);

unsigned short flagsOf(PropertyScope scope);

} // namespace cli
