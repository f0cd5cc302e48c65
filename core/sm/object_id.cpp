#include "sm/tv_sm_object_id.h"

namespace sm {

namespace {

template <class View>
std::uint64_t parseHandle(const View& text)
{
    if (text.size() < 2 || text.size() > 17 || (text[0] | 0x20) != 'g')
        return 0;
    std::uint64_t number = 0;
    for (std::size_t at = 1; at < text.size(); ++at) {
        const unsigned unit = static_cast<unsigned>(text[at]);
        const unsigned letter = unit | 0x20;
        if (unit >= '0' && unit <= '9')
            number = number << 4 | (unit - '0');
        else if (letter >= 'a' && letter <= 'f')
            number = number << 4 | (letter - 'a' + 10);
        else
            return 0;
    }
    return number < kHandleLimit ? number : 0;
}

} // namespace

std::uint64_t handleNumber(std::u16string_view handleText)
{
    return parseHandle(handleText);
}

std::uint64_t handleNumber(std::string_view handleText)
{
    return parseHandle(handleText);
}

} // namespace sm

TvString TvSmObjectId::getHandle() const
{
    if (m_number == 0)
        return {};
    return TvString(u"g") + base::hexText(m_number);
}
