#include <core/short_variable.h>

#include <db/resbuf.h>
#include <db/tv_status.h>
#include <ed/system_variables.h>

std::optional<std::int16_t> core::shortVariable(const TvChar* name)
{
    constexpr int kShort = 5003;
    const TvResbufPtr value(tvutNewRb(kShort));
    if (tvedGetVar(name, value.get()) != TvStatus::Normal || value->restype != kShort)
        return std::nullopt;
    return value->resval.rint;
}
