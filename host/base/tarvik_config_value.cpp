#include "base/kv_error_status.h"
#include "base/tarvik_config.h"

#include <algorithm>
#include <new>

namespace {

constexpr std::size_t kHeaderBytes = 4;
constexpr std::size_t kUnitBytes = 2;
constexpr std::int64_t kMaxPayload = 0x7fffffff;

/// The lowest @p count bytes of @p value, little endian, whatever the machine.
void putBytes(std::vector<std::byte>& out, std::size_t at, std::uint32_t value, std::size_t count)
{
    for (std::size_t i = 0; i < std::min(count, out.size() - at); ++i)
        out[at + i] = static_cast<std::byte>(value >> (8 * i));
}

std::uint32_t takeBytes(const std::vector<std::byte>& in, std::size_t at, std::size_t count)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < count; ++i)
        value |= std::to_integer<std::uint32_t>(in[at + i]) << (8 * i);
    return value;
}

} // namespace

namespace base {

std::vector<std::byte> allocateConfigPayload(std::int64_t length)
{
    if (length < 1)
        throwErrorStatus(kvErrInvalidLength);
    if (length > kMaxPayload)
        throwErrorStatus(kvErrOutOfMemory);
    std::vector<std::byte> payload;
    try {
        payload.resize(static_cast<std::size_t>(length));
    } catch (const std::bad_alloc&) {
        throwErrorStatus(kvErrOutOfMemory);
    }
    putBytes(payload, 0, static_cast<std::uint32_t>(length), kHeaderBytes);
    return payload;
}

} // namespace base

TarvikConfigValue TarvikConfigValue::ofInt(int value)
{
    TarvikConfigValue result;
    result.m_type = kInt;
    result.m_payload = base::allocateConfigPayload(kHeaderBytes + 4);
    putBytes(result.m_payload, kHeaderBytes, static_cast<std::uint32_t>(value), 4);
    return result;
}

TarvikConfigValue TarvikConfigValue::ofText(const TvString& text)
{
    TarvikConfigValue result;
    const std::int64_t units = std::int64_t(text.length()) + 1; // with the terminator
    result.m_type = kText;
    result.m_payload = base::allocateConfigPayload(kHeaderBytes + units * std::int64_t(kUnitBytes));
    std::size_t at = kHeaderBytes;
    for (const TvChar unit : text.view()) {
        putBytes(result.m_payload, at, unit, kUnitBytes);
        at += kUnitBytes;
    }
    return result;
}

int TarvikConfigValue::intValue() const
{
    return m_type == kInt ? static_cast<int>(takeBytes(m_payload, kHeaderBytes, 4)) : 0;
}

TvString TarvikConfigValue::textValue() const
{
    if (m_type != kText)
        return {};
    std::u16string text;
    text.reserve(m_payload.size() / kUnitBytes);
    for (std::size_t at = kHeaderBytes; at + 2 * kUnitBytes <= m_payload.size(); at += kUnitBytes)
        text.push_back(static_cast<char16_t>(takeBytes(m_payload, at, kUnitBytes)));
    return text;
}
