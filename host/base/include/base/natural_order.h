#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <base/tv_string.h>

namespace base {

/// A text's place in the order of TvString::collateNoCase, as bytes: the order of two keys is the
/// order of their texts, but for texts that collate equal, whose keys are equal.
///
/// Not for storing: another version of ICU gives other bytes.
std::string collationKey(std::u16string_view text);

/// Puts items in the order of TvString::collateNoCase of their texts; items with the same text stay
/// in their order.
///
/// The collator is asked once an item, not once a comparison: that is what makes long lists quick.
/// @param textOf  gives the TvString of an item.
template <class T, class Projection = std::identity>
void sortNaturally(std::vector<T>& items, Projection textOf = {})
{
    struct Place {
        std::string key;
        std::size_t index;
    };
    std::vector<Place> places;
    places.reserve(items.size());
    for (std::size_t i = 0; i < items.size(); ++i)
        places.push_back({collationKey(std::invoke(textOf, std::as_const(items[i]))), i});
    std::stable_sort(places.begin(), places.end(), [&](const Place& left, const Place& right) {
        if (left.key != right.key)
            return left.key < right.key;
        const TvString& leftText = std::invoke(textOf, std::as_const(items[left.index]));
        return leftText.compare(std::invoke(textOf, std::as_const(items[right.index]))) < 0;
    });
    std::vector<T> sorted;
    sorted.reserve(items.size());
    for (const Place& place : places)
        sorted.push_back(std::move(items[place.index]));
    items = std::move(sorted);
}

} // namespace base
