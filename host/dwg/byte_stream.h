#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "dwg/checksums.h"

namespace dwg {

inline std::uint16_t readU16(const std::uint8_t* p)
{
    return static_cast<std::uint16_t>(p[0] | p[1] << 8);
}
inline std::uint32_t readU32(const std::uint8_t* p)
{
    return p[0] | p[1] << 8 | p[2] << 16 | std::uint32_t(p[3]) << 24;
}
inline std::uint64_t readU64(const std::uint8_t* p)
{
    return readU32(p) | std::uint64_t(readU32(p + 4)) << 32;
}
inline void putU16(std::uint8_t* p, std::uint16_t value)
{
    p[0] = static_cast<std::uint8_t>(value);
    p[1] = static_cast<std::uint8_t>(value >> 8);
}
inline void putU32(std::uint8_t* p, std::uint32_t value)
{
    putU16(p, static_cast<std::uint16_t>(value));
    putU16(p + 2, static_cast<std::uint16_t>(value >> 16));
}
inline void putU64(std::uint8_t* p, std::uint64_t value)
{
    putU32(p, static_cast<std::uint32_t>(value));
    putU32(p + 4, static_cast<std::uint32_t>(value >> 32));
}
inline std::uint64_t alignUp(std::uint64_t value, std::uint64_t step)
{
    return (value + step - 1) / step * step;
}
/// Whether [offset, offset + size) lies in @p limit bytes; no sum that could wrap.
inline bool fits(std::uint64_t offset, std::uint64_t size, std::uint64_t limit)
{
    return offset <= limit && size <= limit - offset;
}

/// Reads little-endian bytes; what does not fit gives zero and sets failed() for good.
class ByteReader
{
public:
    explicit ByteReader(Bytes bytes, std::size_t position = 0) : m_bytes(bytes)
    {
        m_position = position < bytes.size() ? position : bytes.size();
        m_failed = position > bytes.size();
    }

    bool failed() const { return m_failed; }
    void fail() { m_failed = true; }
    std::size_t position() const { return m_position; }
    std::size_t remaining() const { return m_bytes.size() - m_position; }
    /// The next @p count bytes in place; empty when they are not there.
    Bytes take(std::size_t count)
    {
        if (m_failed || count > remaining()) {
            m_failed = true;
            return {};
        }
        m_position += count;
        return m_bytes.subspan(m_position - count, count);
    }
    std::uint8_t u8()
    {
        const Bytes at = take(1);
        return at.empty() ? 0 : at[0];
    }
    std::uint16_t u16()
    {
        const Bytes at = take(2);
        return at.empty() ? 0 : readU16(at.data());
    }
    std::uint32_t u32()
    {
        const Bytes at = take(4);
        return at.empty() ? 0 : readU32(at.data());
    }
    std::uint64_t u64()
    {
        const Bytes at = take(8);
        return at.empty() ? 0 : readU64(at.data());
    }

private:
    Bytes m_bytes;
    std::size_t m_position = 0;
    bool m_failed = false;
};

/// Grows a buffer by little-endian values.
class ByteWriter
{
public:
    std::vector<std::uint8_t> bytes;

    std::size_t size() const { return bytes.size(); }
    void u8(std::uint8_t value) { bytes.push_back(value); }
    void u16(std::uint16_t value) { putU16(grow(2), value); }
    void u32(std::uint32_t value) { putU32(grow(4), value); }
    void u64(std::uint64_t value) { putU64(grow(8), value); }
    void append(Bytes more) { bytes.insert(bytes.end(), more.begin(), more.end()); }
    void zeros(std::size_t count) { bytes.resize(bytes.size() + count); }

private:
    std::uint8_t* grow(std::size_t count)
    {
        bytes.resize(bytes.size() + count);
        return bytes.data() + bytes.size() - count;
    }
};

} // namespace dwg
