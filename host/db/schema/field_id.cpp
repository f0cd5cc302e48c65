#include "db/field_id.h"

#include <deque>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <unordered_map>

namespace db {

namespace {

struct Names {
    std::shared_mutex mutex;
    std::deque<std::string> texts{{}}; // by number; a deque, because views point into it
    std::unordered_map<std::string_view, FieldId> numbers;
};

Names& names()
{
    static Names* const all = new Names; // never destroyed: ids outlive other statics
    return *all;
}

} // namespace

FieldId fieldId(std::string_view name)
{
    if (name.empty())
        return FieldId::None;
    Names& all = names();
    {
        const std::shared_lock reading(all.mutex);
        if (const auto known = all.numbers.find(name); known != all.numbers.end())
            return known->second;
    }
    const std::unique_lock writing(all.mutex);
    if (const auto known = all.numbers.find(name); known != all.numbers.end())
        return known->second;
    const auto id = static_cast<FieldId>(all.texts.size());
    all.numbers.emplace(all.texts.emplace_back(name), id);
    return id;
}

std::string_view fieldName(FieldId id)
{
    Names& all = names();
    const std::shared_lock reading(all.mutex);
    const auto index = static_cast<std::size_t>(id);
    return index < all.texts.size() ? std::string_view(all.texts[index]) : std::string_view();
}

} // namespace db
