#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "dwg/checksums.h"

namespace dwg::paged {

// The shell of the 2004 family: pages at multiples of 0x20 behind a header of 0x100 bytes.

inline constexpr std::size_t kFirstPage = 0x100;
inline constexpr std::size_t kPageStep = 0x20;
inline constexpr std::size_t kHeadAt = 0x80; // of the masked head
inline constexpr std::size_t kHeadSize = 0x6C;
inline constexpr std::uint32_t kPageMapType = 0x41630E3B;
inline constexpr std::uint32_t kSectionMapType = 0x4163003B;
inline constexpr std::uint32_t kDataPageType = 0x4163043B;
inline constexpr std::size_t kSystemHead = 0x14;    // bytes before the data of a system page
inline constexpr std::size_t kDataHead = 0x20;      // bytes before the data of a data page
inline constexpr std::uint64_t kUsualPage = 0x7400; // unpacked

/// The masked block at 0x80, whose fields are told by their places in it.
struct Head {
    std::array<std::uint8_t, kHeadSize> plain{};

    std::uint32_t u32(std::size_t at) const;
    std::uint64_t u64(std::size_t at) const;
    void put32(std::size_t at, std::uint32_t value);
    void put64(std::size_t at, std::uint64_t value);
    std::uint32_t checksum() const; ///< as it should be at 0x68

    static constexpr std::size_t kLastPageId = 0x28, kEnd = 0x2C, kSecondCopy = 0x34,
                                 kEntryCount = 0x40, kPageMapId = 0x50, kPageMapAddress = 0x54,
                                 kSectionMapId = 0x5C, kHighestId = 0x60, kChecksum = 0x68;
};

/// Takes the mask off the block at @p at of the file; nullopt when there is no such block.
std::optional<Head> readHead(Bytes file, std::size_t at);
/// A block with the constant fields filled in.
Head newHead();
/// The block with its checksum, masked.
std::array<std::uint8_t, kHeadSize> maskedHead(Head head);

/// The 32 bytes before a data page, unmasked.
struct PageHead {
    std::uint32_t type = 0, sectionId = 0, packedSize = 0, diskSize = 0;
    std::uint64_t offset = 0;
    std::uint32_t headSum = 0, dataSum = 0;
};
PageHead readPageHead(const std::uint8_t* bytes, std::uint64_t address);
/// The bytes for the place @p address, with the checksum over the head.
std::array<std::uint8_t, kDataHead> writePageHead(PageHead head, std::uint64_t address);
/// What headSum should be.
std::uint32_t headSumOf(PageHead head);

} // namespace dwg::paged
