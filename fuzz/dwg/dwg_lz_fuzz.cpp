// The first byte chooses the codec and the rest is either packed bytes or bytes to pack and unpack
// again.

#include <algorithm>
#include <cstdlib>

#include <lz2004.h>
#include <lz2007.h>

namespace {

void roundTrip2004(dwg::Bytes plain)
{
    if (plain.size() < 4)
        return;
    std::vector<std::uint8_t> again(plain.size());
    if (!dwg::unpack2004(dwg::pack2004(plain), again) ||
        !std::equal(plain.begin(), plain.end(), again.begin()))
        std::abort();
}

void roundTrip2007(dwg::Bytes plain)
{
    const auto packed = dwg::pack2007(plain);
    std::vector<std::uint8_t> again(plain.size());
    if (!packed.empty() &&
        (!dwg::unpack2007(packed, again) || !std::equal(plain.begin(), plain.end(), again.begin())))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 3)
        return 0;
    const dwg::Bytes bytes(data + 3, size - 3);
    std::vector<std::uint8_t> out(data[1] | data[2] << 8);
    switch (data[0] & 3) {
    case 0: dwg::unpack2004(bytes, out); break;
    case 1: dwg::unpack2007(bytes, out); break;
    case 2: roundTrip2004(bytes); break;
    default: roundTrip2007(bytes);
    }
    return 0;
}
