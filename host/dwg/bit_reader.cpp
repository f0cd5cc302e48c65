#include "dwg/bit_reader.h"

#include <array>
#include <bit>

namespace dwg {

std::uint64_t BitReader::tail(std::size_t at) const
{
    // Handles end a record: from its last eight bytes, without a loop, where it has as many.
    if (m_size >= 8 && at < m_size)
        return wordAt(m_bytes + m_size - 8) << 8 * (8 - (m_size - at));
    std::uint64_t word = 0;
    unsigned shift = 56;
    for (; at < m_size && shift < 64; ++at, shift -= 8)
        word |= std::uint64_t(m_bytes[at]) << shift;
    return word;
}

unsigned BitReader::read3B()
{
    if (!readB())
        return 0;
    if (!readB())
        return 2;
    return readB() ? 7 : 6;
}

std::uint64_t BitReader::readBLL()
{
    const auto bytes = static_cast<unsigned>(readBits(3));
    if (bytes * 8 > remaining()) {
        fail();
        return 0;
    }
    std::uint64_t value = 0;
    for (unsigned i = 0; i < bytes; ++i)
        value |= std::uint64_t(readRC()) << (8 * i);
    return value;
}

double BitReader::readDD(double standard)
{
    const unsigned form = readBB();
    if (form == 0)
        return standard;
    if (form == 3)
        return readRD();
    auto bits = std::bit_cast<std::uint64_t>(standard);
    if (form == 2) {
        const std::uint64_t middle = readRS();
        bits = (bits & 0xFFFF0000FFFFFFFFu) | middle << 32;
    }
    bits = (bits & 0xFFFFFFFF00000000u) | readRL();
    return m_failed ? 0.0 : std::bit_cast<double>(bits);
}

std::int64_t BitReader::readMC()
{
    std::uint64_t magnitude = 0;
    for (unsigned shift = 0; shift < 63; shift += 7) {
        const std::uint8_t byte = readRC();
        if (byte & 0x80) {
            magnitude |= std::uint64_t(byte & 0x7F) << shift;
            continue;
        }
        magnitude |= std::uint64_t(byte & 0x3F) << shift;
        const auto value = static_cast<std::int64_t>(magnitude & 0x7FFFFFFFFFFFFFFFu);
        return byte & 0x40 ? -value : value;
    }
    fail();
    return 0;
}

std::uint64_t BitReader::readUMC()
{
    std::uint64_t value = 0;
    for (unsigned shift = 0; shift < 70; shift += 7) {
        const std::uint8_t byte = readRC();
        if (shift == 63 && (byte & 0x7E) != 0)
            break; // more than 64 bits
        value |= std::uint64_t(byte & 0x7F) << shift;
        if (!(byte & 0x80))
            return value;
    }
    fail();
    return 0;
}

std::uint64_t BitReader::readMS()
{
    std::uint64_t value = 0;
    for (unsigned shift = 0; shift < 45; shift += 15) {
        const std::uint16_t word = readRS();
        value |= std::uint64_t(word & 0x7FFF) << shift;
        if (!(word & 0x8000))
            return value;
    }
    fail();
    return 0;
}

std::uint16_t BitReader::readOT()
{
    switch (readBB()) {
    case 0: return readRC();
    case 1: return static_cast<std::uint16_t>(readRC() + 0x1F0);
    default: return readRS();
    }
}

HandleReference BitReader::readH()
{
    HandleReference handle;
    const std::uint8_t head = readRC();
    handle.code = head >> 4;
    handle.size = head & 0xF;
    if (handle.size > 8 || handle.size * 8u > remaining()) {
        fail();
        return {};
    }
    for (unsigned i = 0; i < handle.size; ++i)
        handle.value = handle.value << 8 | readRC();
    return handle;
}

void BitReader::readBytes(std::span<std::uint8_t> out)
{
    if (out.size() > remaining() / 8)
        return fail();
    for (std::uint8_t& byte : out)
        byte = readRC();
}

std::string BitReader::readT()
{
    const std::size_t length = readBS();
    if (length > remaining() / 8) {
        fail();
        return {};
    }
    std::string text(length, '\0');
    for (char& unit : text)
        unit = static_cast<char>(readRC());
    return text;
}

std::u16string BitReader::readTU()
{
    const std::size_t length = readBS();
    if (length > remaining() / 16) {
        fail();
        return {};
    }
    std::u16string text(length, u'\0');
    for (char16_t& unit : text)
        unit = readRS();
    return text;
}

} // namespace dwg
