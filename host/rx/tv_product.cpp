#include "rx/tv_product.h"

namespace {

constexpr TvChar kUsualName[] = u"TARVIK";

struct Product {
    TvString name, prefix;
};

Product& product()
{
    static Product ours;
    return ours;
}

} // namespace

TvString GetOemProductName()
{
    return product().name.isEmpty() ? TvString(kUsualName) : product().name;
}

bool GetTarvProductPreName(TvString& out)
{
    if (product().prefix.isEmpty())
        return false;
    out = product().prefix;
    return true;
}

void rx::setProduct(const TvString& name, const TvString& prefix)
{
    product() = {name, prefix};
}

TvString rx::moduleFileName(const TvString& suffix, const TvString& usual)
{
    TvString prefix;
    return GetTarvProductPreName(prefix) ? prefix + suffix : usual;
}
