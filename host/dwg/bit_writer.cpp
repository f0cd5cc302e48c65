#include "dwg/bit_writer.h"

#include <algorithm>

namespace dwg {

void BitWriter::write3B(unsigned value)
{
    switch (value) {
    case 0: return writeBits(0, 1);
    case 2: return writeBits(2, 2);
    case 6: return writeBits(6, 3);
    case 7: return writeBits(7, 3);
    default: return fail();
    }
}

void BitWriter::writeBS(std::uint16_t value)
{
    if (value == 0)
        return writeBB(2);
    if (value == 256)
        return writeBB(3);
    if (value < 256)
        return writeBits(1u << 8 | value, 10);
    writeBB(0);
    writeRS(value);
}

void BitWriter::writeBL(std::uint32_t value)
{
    if (value == 0)
        return writeBB(2);
    if (value < 256)
        return writeBits(1u << 8 | value, 10);
    writeBB(0);
    writeRL(value);
}

void BitWriter::writeBLL(std::uint64_t value)
{
    if (value >> 56)
        return fail();
    const auto bytes = static_cast<unsigned>((std::bit_width(value) + 7) / 8);
    writeBits(bytes, 3);
    for (unsigned i = 0; i < bytes; ++i)
        writeRC(static_cast<std::uint8_t>(value >> (8 * i)));
}

void BitWriter::writeBD(double value)
{
    // Compared as bits: -0.0 equals 0.0 but is another value in the file.
    const auto bits = std::bit_cast<std::uint64_t>(value);
    if (bits == std::bit_cast<std::uint64_t>(1.0))
        return writeBB(1);
    if (bits == 0)
        return writeBB(2);
    writeBB(0);
    writeRLL(bits);
}

void BitWriter::writeDD(double value, double standard)
{
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const std::uint64_t changed = bits ^ std::bit_cast<std::uint64_t>(standard);
    if (changed == 0)
        return writeBB(0);
    if (changed >> 48) {
        writeBB(3);
        return writeRLL(bits);
    }
    const bool middle = changed >> 32;
    writeBB(middle ? 2 : 1);
    if (middle)
        writeRS(static_cast<std::uint16_t>(bits >> 32));
    writeRL(static_cast<std::uint32_t>(bits));
}

void BitWriter::writeBT(double thickness)
{
    const bool none = std::bit_cast<std::uint64_t>(thickness) == 0;
    writeB(none);
    if (!none)
        writeBD(thickness);
}

void BitWriter::writeBE(const Triple& extrusion)
{
    const auto isZero = [](double v) { return std::bit_cast<std::uint64_t>(v) == 0; };
    const bool up = isZero(extrusion.x) && isZero(extrusion.y) && extrusion.z == 1.0;
    writeB(up);
    if (!up)
        write3BD(extrusion);
}

void BitWriter::writeMC(std::int64_t value)
{
    const bool negative = value < 0;
    std::uint64_t magnitude = negative ? ~static_cast<std::uint64_t>(value) + 1 : value;
    if (magnitude >> 62)
        return fail(); // no more than 62 bits fit beside the sign
    for (; magnitude > 0x3F; magnitude >>= 7)
        writeRC(static_cast<std::uint8_t>((magnitude & 0x7F) | 0x80));
    writeRC(static_cast<std::uint8_t>(magnitude | (negative ? 0x40 : 0)));
}

void BitWriter::writeUMC(std::uint64_t value)
{
    for (; value > 0x7F; value >>= 7)
        writeRC(static_cast<std::uint8_t>((value & 0x7F) | 0x80));
    writeRC(static_cast<std::uint8_t>(value));
}

void BitWriter::writeMS(std::uint64_t value)
{
    if (value >> 45)
        return fail();
    for (; value > 0x7FFF; value >>= 15)
        writeRS(static_cast<std::uint16_t>((value & 0x7FFF) | 0x8000));
    writeRS(static_cast<std::uint16_t>(value));
}

void BitWriter::writeOT(std::uint16_t type)
{
    if (type < 0x100)
        return writeBits(type, 10);
    if (type >= 0x1F0 && type <= 0x2EF)
        return writeBits(1u << 8 | (type - 0x1F0u), 10);
    writeBB(2);
    writeRS(type);
}

void BitWriter::writeH(std::uint8_t code, std::uint64_t value)
{
    const auto size = static_cast<std::uint8_t>((std::bit_width(value) + 7) / 8);
    writeHExact({code, size, value});
}

void BitWriter::writeHExact(const HandleReference& handle)
{
    if (handle.code > 0xF || handle.size > 8)
        return fail();
    writeRC(static_cast<std::uint8_t>(handle.code << 4 | handle.size));
    for (unsigned i = handle.size; i-- > 0;)
        writeRC(static_cast<std::uint8_t>(handle.value >> (8 * i)));
}

void BitWriter::writeT(std::string_view text)
{
    if (text.size() > 0xFFFF)
        return fail();
    writeBS(static_cast<std::uint16_t>(text.size()));
    for (const char unit : text)
        writeRC(static_cast<std::uint8_t>(unit));
}

void BitWriter::writeTU(std::u16string_view text)
{
    if (text.size() > 0xFFFF)
        return fail();
    writeBS(static_cast<std::uint16_t>(text.size()));
    for (const char16_t unit : text)
        writeRS(unit);
}

void BitWriter::writeBytes(std::span<const std::uint8_t> bytes)
{
    if (m_pendingBits == 0) {
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
        return;
    }
    m_bytes.reserve(m_bytes.size() + bytes.size() + 1);
    for (const std::uint8_t byte : bytes)
        writeRC(byte);
}

void BitWriter::appendBits(std::span<const std::uint8_t> bytes, std::size_t beginBit,
                           std::size_t endBit)
{
    BitReader reader(bytes, beginBit, endBit);
    if (reader.failed())
        return fail();
    while (!reader.atEnd()) {
        const auto count = static_cast<unsigned>(std::min<std::size_t>(reader.remaining(), 48));
        writeBits(reader.readBits(count), count);
    }
}

void BitWriter::append(const BitWriter& other)
{
    m_failed = m_failed || other.m_failed;
    writeBytes(other.m_bytes);
    writeBits(other.m_pending, other.m_pendingBits);
}

void BitWriter::patchRL(std::size_t bit, std::uint32_t value)
{
    if (bit + 32 > m_bytes.size() * 8)
        return fail(); // not yet written out; never needed within 7 bits of the end
    for (unsigned i = 0; i < 32; ++i) {
        const std::size_t at = bit + i;
        const bool set = value >> (8 * (i / 8) + 7 - i % 8) & 1;
        const auto mask = static_cast<std::uint8_t>(0x80 >> (at & 7));
        std::uint8_t& byte = m_bytes[at >> 3];
        byte = static_cast<std::uint8_t>(set ? byte | mask : byte & ~mask);
    }
}

} // namespace dwg
