#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include <dwg/bit_reader.h>
#include <dwg/handle_reference.h>

namespace dwg {

/// Writes the bit codes of a drawing, most significant bit first, each in its one canonical
/// shortest form.
///
/// What a code cannot hold (a string over 65535 units, a BLL over 56 bits) sets failed() for good
/// and writes nothing: a caller writes a whole record and asks once, before using the bytes.
class BitWriter
{
public:
    bool failed() const { return m_failed; }
    void fail() { m_failed = true; }
    std::size_t bitCount() const { return m_bytes.size() * 8 + m_pendingBits; }

    /// The lowest @p count bits (0 to 56) of @p value.
    void writeBits(std::uint64_t value, unsigned count)
    {
        m_pending = m_pending << count | (value & ((std::uint64_t(1) << count) - 1));
        m_pendingBits += count;
        while (m_pendingBits >= 8) {
            m_pendingBits -= 8;
            m_bytes.push_back(static_cast<std::uint8_t>(m_pending >> m_pendingBits));
        }
    }

    void writeB(bool value) { writeBits(value, 1); }
    void writeBB(unsigned value) { writeBits(value, 2); }
    /// One of 0, 2, 6, 7.
    void write3B(unsigned value);
    void writeRC(std::uint8_t value) { writeBits(value, 8); }
    void writeRS(std::uint16_t value)
    {
        writeBits(static_cast<std::uint16_t>(value << 8 | value >> 8), 16);
    }
    void writeRL(std::uint32_t value)
    {
        writeBits(value << 24 | (value & 0xFF00) << 8 | (value >> 8 & 0xFF00) | value >> 24, 32);
    }
    void writeRLL(std::uint64_t value)
    {
        writeRL(static_cast<std::uint32_t>(value));
        writeRL(static_cast<std::uint32_t>(value >> 32));
    }
    void writeRD(double value) { writeRLL(std::bit_cast<std::uint64_t>(value)); }
    void writeBS(std::uint16_t value);
    void writeBL(std::uint32_t value);
    /// At most 56 bits.
    void writeBLL(std::uint64_t value);
    void writeBD(double value);
    void writeDD(double value, double standard);
    void write3BD(const Triple& value)
    {
        writeBD(value.x);
        writeBD(value.y);
        writeBD(value.z);
    }
    void write3RD(const Triple& value)
    {
        writeRD(value.x);
        writeRD(value.y);
        writeRD(value.z);
    }
    void writeBT(double thickness);
    void writeBE(const Triple& extrusion);
    void writeMC(std::int64_t value);
    void writeUMC(std::uint64_t value);
    /// Below 2^45.
    void writeMS(std::uint64_t value);
    void writeOT(std::uint16_t type);
    /// With the fewest bytes; the size in the reference is not looked at.
    void writeH(const HandleReference& handle) { writeH(handle.code, handle.value); }
    void writeH(std::uint8_t code, std::uint64_t value);
    /// The reference with exactly the number of bytes it had when it was read.
    void writeHExact(const HandleReference& handle);
    void writeT(std::string_view text);
    void writeTU(std::u16string_view text);
    void writeBytes(std::span<const std::uint8_t> bytes);
    /// The bits [begin, end) of @p bytes as they are.
    void appendBits(std::span<const std::uint8_t> bytes, std::size_t beginBit, std::size_t endBit);
    /// Everything that @p other holds.
    void append(const BitWriter& other);

    void padToByte()
    {
        if (m_pendingBits != 0)
            writeBits(0, 8 - m_pendingBits);
    }
    /// Overwrites 32 bits that were written before, for a size known only later.
    void patchRL(std::size_t bit, std::uint32_t value);
    /// The bytes so far, the last one padded with zero bits; this writer is empty afterwards.
    std::vector<std::uint8_t> take()
    {
        padToByte();
        m_pending = 0;
        return std::exchange(m_bytes, {});
    }

private:
    std::vector<std::uint8_t> m_bytes;
    std::uint64_t m_pending = 0; // its lowest m_pendingBits are not yet in m_bytes
    unsigned m_pendingBits = 0;  // 0 to 7 between calls
    bool m_failed = false;
};

} // namespace dwg
