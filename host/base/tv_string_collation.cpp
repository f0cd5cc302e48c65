#include "base/natural_order.h"

#include <memory>

#include <unicode/coll.h>

namespace {

std::unique_ptr<const icu::Collator> makeCollator()
{
    UErrorCode error = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(
        icu::Collator::createInstance(icu::Locale::getRoot(), error));
    if (U_SUCCESS(error) && collator) {
        collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, error);
        collator->setAttribute(UCOL_STRENGTH, UCOL_SECONDARY, error);
    }
    return U_SUCCESS(error) ? std::move(collator) : nullptr;
}

/// Null when ICU has no data on this machine.
const icu::Collator* collatorForPeople()
{
    static const std::unique_ptr<const icu::Collator> collator = makeCollator();
    return collator.get();
}

int collate(const TvString& left, const TvString& right)
{
    const icu::Collator* collator = collatorForPeople();
    if (!collator)
        return left.compareNoCase(right);
    UErrorCode error = U_ZERO_ERROR;
    return collator->compare(left.kwszPtr(), left.length(), right.kwszPtr(), right.length(), error);
}

std::string sortKey(const icu::Collator& collator, std::u16string_view text)
{
    const auto ask = [&](std::string& out) {
        return static_cast<std::size_t>(collator.getSortKey(
            text.data(), static_cast<std::int32_t>(text.size()),
            reinterpret_cast<std::uint8_t*>(out.data()), static_cast<std::int32_t>(out.size())));
    };
    std::string key(3 * text.size() + 16, '\0'); // enough for nearly all, so that one call does
    const std::size_t needed = ask(key);
    const bool wasEnough = needed <= key.size();
    key.resize(needed);
    if (!wasEnough)
        ask(key);
    return key;
}

/// The units after folding, each with its high byte first, so that bytes compare as units do.
std::string foldedKey(const TvString& folded)
{
    std::string key;
    key.reserve(2 * folded.view().size());
    for (const TvChar unit : folded.view()) {
        key.push_back(static_cast<char>(unit >> 8));
        key.push_back(static_cast<char>(unit & 0xff));
    }
    return key;
}

} // namespace

namespace base {

std::string collationKey(std::u16string_view text)
{
    const icu::Collator* collator = collatorForPeople();
    return collator ? sortKey(*collator, text) : foldedKey(TvString(text).toLower());
}

} // namespace base

int TvString::collateNoCase(const TvString& other) const
{
    const int order = collate(*this, other);
    return order != 0 ? order : compare(other);
}
