#include "dwg/record_streams.h"

namespace dwg {

namespace {

struct StringRange {
    std::size_t begin = 0, end = 0;
    bool valid = false;
};

// Found backwards from the flag bit: the size of the strings stands behind them.
StringRange findStrings(std::span<const std::uint8_t> bytes, std::size_t begin, std::size_t end)
{
    const std::size_t flag = end - 1;
    if (flag - begin < 16)
        return {};
    std::size_t sizeAt = flag - 16;
    std::size_t size = BitReader(bytes, sizeAt, flag).readRS();
    if (size & 0x8000) {
        if (sizeAt - begin < 16)
            return {};
        sizeAt -= 16;
        const std::size_t high = BitReader(bytes, sizeAt, flag).readRS();
        size = (size & 0x7FFF) | high << 15;
    }
    if (size > sizeAt - begin)
        return {};
    return {sizeAt - size, sizeAt, true};
}

} // namespace

RecordStreams splitRecord(Version version, std::span<const std::uint8_t> bytes, std::size_t begin,
                          std::size_t end)
{
    RecordStreams streams;
    streams.data = BitReader(bytes, begin, end);
    streams.handles = BitReader(bytes, end, bytes.size() * 8);
    if (!hasStringStream(version) || streams.failed())
        return streams;
    if (begin == end) {
        streams.data.fail(); // not even the flag
        return streams;
    }
    streams.hasStrings = BitReader(bytes, end - 1, end).readB();
    streams.data = BitReader(bytes, begin, end - 1);
    if (!streams.hasStrings)
        return streams;
    const StringRange range = findStrings(bytes, begin, end);
    if (!range.valid) {
        streams.data.fail();
        return streams;
    }
    streams.strings = BitReader(bytes, range.begin, range.end);
    streams.data = BitReader(bytes, begin, range.begin);
    return streams;
}

void appendStrings(BitWriter& data, const BitWriter& strings)
{
    const std::size_t size = strings.bitCount();
    if (size >= std::size_t(1) << 31)
        return data.fail();
    data.append(strings);
    if (size >= 0x8000)
        data.writeRS(static_cast<std::uint16_t>(size >> 15));
    if (size > 0)
        data.writeRS(static_cast<std::uint16_t>(size >= 0x8000 ? (size & 0x7FFF) | 0x8000 : size));
    data.writeB(size > 0);
}

} // namespace dwg
