#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include <dwg/handle_reference.h>

namespace dwg {

/// A point or vector as a drawing stores it.
struct Triple {
    double x = 0, y = 0, z = 0;
    friend bool operator==(const Triple&, const Triple&) = default;
};

/// Reads the bit codes of a drawing, most significant bit first, from any bit to any bit of a
/// buffer.
///
/// Never reads past its end and never throws: the first code that does not fit, or that no writer
/// may write, sets failed() for good and puts the position at the end, so that every later read
/// gives zero at once. A caller may thus read a whole record and ask once.
class BitReader
{
public:
    BitReader() = default;
    /// All of @p bytes, which must outlive this.
    explicit BitReader(std::span<const std::uint8_t> bytes) : BitReader(bytes, 0, bytes.size() * 8)
    {
    }
    /// The bits [begin, end) of @p bytes; both are cut at the end of the bytes.
    BitReader(std::span<const std::uint8_t> bytes, std::size_t beginBit, std::size_t endBit)
        : m_bytes(bytes.data()), m_size(bytes.size())
    {
        const std::size_t all = bytes.size() * 8;
        m_end = endBit < all ? endBit : all;
        m_position = beginBit < m_end ? beginBit : m_end;
        m_failed = beginBit > endBit || endBit > all;
    }

    bool failed() const { return m_failed; }
    /// Marks what was read as wrong, for a caller that finds a value no record may hold.
    void fail()
    {
        m_failed = true;
        m_position = m_end;
    }
    /// Bits from the first bit of the buffer, not from where this reader began.
    std::size_t position() const { return m_position; }
    std::size_t end() const { return m_end; }
    std::size_t remaining() const { return m_end - m_position; }
    bool atEnd() const { return m_position == m_end; }
    /// Moves to a bit of the buffer; fails beyond the end. Does not clear failed().
    void seek(std::size_t bit)
    {
        if (bit > m_end || m_failed)
            return fail();
        m_position = bit;
    }
    void skip(std::size_t bits)
    {
        if (bits > remaining())
            return fail();
        m_position += bits;
    }

    /// The next @p count bits (0 to 56) as a number, first bit most significant.
    std::uint64_t readBits(unsigned count)
    {
        if (count > remaining()) {
            fail();
            return 0;
        }
        if (count == 0)
            return 0;
        const std::uint64_t value = window() >> (64 - count);
        m_position += count;
        return value;
    }

    bool readB() { return readBits(1) != 0; }
    unsigned readBB() { return static_cast<unsigned>(readBits(2)); }
    unsigned read3B();
    std::uint8_t readRC() { return static_cast<std::uint8_t>(readBits(8)); }
    std::uint16_t readRS()
    {
        const auto raw = static_cast<std::uint16_t>(readBits(16));
        return static_cast<std::uint16_t>(raw << 8 | raw >> 8);
    }
    std::uint32_t readRL()
    {
        const auto raw = static_cast<std::uint32_t>(readBits(32));
        return raw << 24 | (raw & 0xFF00) << 8 | (raw >> 8 & 0xFF00) | raw >> 24;
    }
    /// Takes all 64 bits or none.
    std::uint64_t readRLL()
    {
        if (remaining() < 64) {
            fail();
            return 0;
        }
        const std::uint64_t low = readRL();
        return low | std::uint64_t(readRL()) << 32;
    }
    /// May be infinite or no number at all.
    double readRD() { return std::bit_cast<double>(readRLL()); }

    /// The 16 bits; sign-extend where the field is signed.
    std::uint16_t readBS()
    {
        switch (readBB()) {
        case 0: return readRS();
        case 1: return readRC();
        case 2: return 0;
        default: return 256;
        }
    }
    /// The 32 bits; sign-extend where the field is signed.
    std::uint32_t readBL()
    {
        switch (readBB()) {
        case 0: return readRL();
        case 1: return readRC();
        case 2: return 0;
        default: fail(); return 0;
        }
    }
    std::uint64_t readBLL();
    double readBD()
    {
        switch (readBB()) {
        case 0: return readRD();
        case 1: return 1.0;
        case 2: return 0.0;
        default: fail(); return 0.0;
        }
    }
    double readDD(double standard);
    Triple read3BD()
    {
        const double x = readBD();
        const double y = readBD();
        return {x, y, readBD()};
    }
    Triple read3RD()
    {
        const double x = readRD();
        const double y = readRD();
        return {x, y, readRD()};
    }
    /// Thickness: one bit when it is 0.
    double readBT() { return readB() ? 0.0 : readBD(); }
    /// Extrusion: one bit when it is (0, 0, 1).
    Triple readBE() { return readB() ? Triple{0, 0, 1} : read3BD(); }

    /// Signed modular char; at most 9 bytes, 62 bits beside the sign.
    std::int64_t readMC();
    /// Unsigned modular char; at most 10 bytes.
    std::uint64_t readUMC();
    /// Modular short; at most 3 words.
    std::uint64_t readMS();
    /// Object type of 2010 and later.
    std::uint16_t readOT();
    HandleReference readH();

    /// String of 8-bit units in the drawing's code page, as stored (a final NUL stays).
    std::string readT();
    /// String of UTF-16 units, as stored (a final NUL stays).
    std::u16string readTU();
    /// @p out.size() bytes, at any bit position; all or none.
    void readBytes(std::span<std::uint8_t> out);

private:
    /// At least 57 bits from the position on, the first one on top; zeros behind the buffer.
    std::uint64_t window() const
    {
        const std::size_t at = m_position >> 3;
        if (m_size - at < 8)
            return tail(at) << (m_position & 7);
        return wordAt(m_bytes + at) << (m_position & 7);
    }
    static std::uint64_t wordAt(const std::uint8_t* p)
    {
        return std::uint64_t(p[0]) << 56 | std::uint64_t(p[1]) << 48 | std::uint64_t(p[2]) << 40 |
               std::uint64_t(p[3]) << 32 | std::uint64_t(p[4]) << 24 | std::uint64_t(p[5]) << 16 |
               std::uint64_t(p[6]) << 8 | std::uint64_t(p[7]);
    }
    std::uint64_t tail(std::size_t at) const;

    const std::uint8_t* m_bytes = nullptr; // not owned
    std::size_t m_size = 0;
    std::size_t m_position = 0; // never above m_end
    std::size_t m_end = 0;
    bool m_failed = false;
};

} // namespace dwg
