#include "base/tv_string.h"

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

} // namespace

int TvString::collateNoCase(const TvString& other) const
{
    const int order = collate(*this, other);
    return order != 0 ? order : compare(other);
}
