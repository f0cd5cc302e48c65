#include "paged_format.h"

#include <algorithm>
#include <cstring>

#include "byte_stream.h"

namespace dwg::paged {

namespace {

constexpr char kName[] = "AcFssFcAJMB"; // with its NUL
constexpr std::uint32_t kPageMask = 0x4164536B;

void unmask(std::uint8_t* bytes)
{
    for (std::size_t i = 0; i < kHeadSize; ++i)
        bytes[i] ^= magicByte(i);
}

std::array<std::uint8_t, kDataHead> plainPageHead(const PageHead& head)
{
    std::array<std::uint8_t, kDataHead> bytes;
    putU32(&bytes[0x00], head.type);
    putU32(&bytes[0x04], head.sectionId);
    putU32(&bytes[0x08], head.packedSize);
    putU32(&bytes[0x0C], head.diskSize);
    putU64(&bytes[0x10], head.offset);
    putU32(&bytes[0x18], head.headSum);
    putU32(&bytes[0x1C], head.dataSum);
    return bytes;
}

} // namespace

std::uint32_t Head::u32(std::size_t at) const
{
    return readU32(&plain[at]);
}
std::uint64_t Head::u64(std::size_t at) const
{
    return readU64(&plain[at]);
}
void Head::put32(std::size_t at, std::uint32_t value)
{
    putU32(&plain[at], value);
}
void Head::put64(std::size_t at, std::uint64_t value)
{
    putU64(&plain[at], value);
}

std::uint32_t Head::checksum() const
{
    Head copy = *this;
    copy.put32(kChecksum, 0);
    return crc32(copy.plain);
}

std::optional<Head> readHead(Bytes file, std::size_t at)
{
    if (!fits(at, kHeadSize, file.size()))
        return std::nullopt;
    Head head;
    std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(at), kHeadSize, head.plain.begin());
    unmask(head.plain.data());
    if (std::memcmp(head.plain.data(), kName, sizeof kName) != 0)
        return std::nullopt;
    return head;
}

Head newHead()
{
    Head head;
    std::memcpy(head.plain.data(), kName, sizeof kName);
    head.put32(0x10, kHeadSize);
    head.put32(0x14, 4);
    head.put32(0x24, 1);
    head.put32(0x44, 0x20);
    head.put32(0x48, 0x80);
    head.put32(0x4C, 0x40);
    return head;
}

std::array<std::uint8_t, kHeadSize> maskedHead(Head head)
{
    head.put32(Head::kChecksum, head.checksum());
    unmask(head.plain.data());
    return head.plain;
}

PageHead readPageHead(const std::uint8_t* bytes, std::uint64_t address)
{
    const std::uint32_t mask = kPageMask ^ static_cast<std::uint32_t>(address);
    const auto word = [&](std::size_t at) { return readU32(bytes + at) ^ mask; };
    PageHead head;
    head.type = word(0x00);
    head.sectionId = word(0x04);
    head.packedSize = word(0x08);
    head.diskSize = word(0x0C);
    head.offset = word(0x10) | std::uint64_t(word(0x14)) << 32;
    head.headSum = word(0x18);
    head.dataSum = word(0x1C);
    return head;
}

std::uint32_t headSumOf(PageHead head)
{
    head.headSum = 0;
    return pageSum(head.dataSum, plainPageHead(head));
}

std::array<std::uint8_t, kDataHead> writePageHead(PageHead head, std::uint64_t address)
{
    head.headSum = headSumOf(head);
    auto bytes = plainPageHead(head);
    const std::uint32_t mask = kPageMask ^ static_cast<std::uint32_t>(address);
    for (std::size_t at = 0; at < bytes.size(); at += 4)
        putU32(&bytes[at], readU32(&bytes[at]) ^ mask);
    return bytes;
}

} // namespace dwg::paged
