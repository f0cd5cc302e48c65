#include "db/field_id.h"

#include <array>
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

/// Names that this thread asked for before, by where they stand in memory: mostly literals, which
/// are asked for from the same place again and again.
struct Known {
    const char* place = nullptr;
    std::string_view text; // in names(): what stands at the place may change
    FieldId id = FieldId::None;
};

Known& knownAt(const char* place)
{
    thread_local std::array<Known, 256> all;
    return all[reinterpret_cast<std::uintptr_t>(place) % all.size()];
}

FieldId numberOf(std::string_view name, Known& known);

} // namespace

FieldId fieldId(std::string_view name)
{
    if (name.empty())
        return FieldId::None;
    Known& known = knownAt(name.data());
    if (known.place == name.data() && known.text == name)
        return known.id;
    known.place = nullptr;
    const FieldId id = numberOf(name, known);
    known.id = id;
    known.place = name.data();
    return id;
}

namespace {

/// Gives it out at its first use.
FieldId numberOf(std::string_view name, Known& known)
{
    Names& all = names();
    {
        const std::shared_lock reading(all.mutex);
        if (const auto at = all.numbers.find(name); at != all.numbers.end()) {
            known.text = at->first;
            return at->second;
        }
    }
    const std::unique_lock writing(all.mutex);
    if (const auto at = all.numbers.find(name); at != all.numbers.end()) {
        known.text = at->first;
        return at->second;
    }
    const auto id = static_cast<FieldId>(all.texts.size());
    known.text = all.texts.emplace_back(name);
    all.numbers.emplace(known.text, id);
    return id;
}

} // namespace

std::string_view fieldName(FieldId id)
{
    Names& all = names();
    const std::shared_lock reading(all.mutex);
    const auto index = static_cast<std::size_t>(id);
    return index < all.texts.size() ? std::string_view(all.texts[index]) : std::string_view();
}

} // namespace db
