#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "dwg/checksums.h"

namespace dwg::coded {

// The shell of 2007: pages in Reed-Solomon blocks behind a header page of 0x400 bytes, which stands
// twice.

inline constexpr std::size_t kHeaderPageAt = 0x80;
inline constexpr std::size_t kHeaderPageSize = 0x400;
inline constexpr std::size_t kFirstPage = 0x480;
inline constexpr std::size_t kPageStep = 0x20;
inline constexpr std::size_t kRecordSize = 0x110;

/// The unpacked header record, 34 numbers, told by their places in bytes.
struct Record {
    std::array<std::uint8_t, kRecordSize> bytes{};

    std::uint64_t at(std::size_t place) const;
    void put(std::size_t place, std::uint64_t value);
    std::uint64_t checksum() const; ///< as it should be at kChecksum

    static constexpr std::size_t kFileSize = 0x08, kMapPackedCrc = 0x10, kMapRepeat = 0x18,
                                 kMapCopyAt = 0x28, kMapCopyId = 0x30, kMapAt = 0x38, kMapId = 0x40,
                                 kSecondHeaderAt = 0x48, kMapPackedSize = 0x50, kMapSize = 0x58,
                                 kPageCount = 0x60, kHighestId = 0x68, kMapCrc = 0x80,
                                 kSectionCount = 0xA0, kSectionsCrc = 0xA8,
                                 kSectionsPackedSize = 0xB0, kSectionsCopyId = 0xB8,
                                 kSectionsId = 0xC0, kSectionsSize = 0xC8,
                                 kSectionsPackedCrc = 0xD0, kSectionsRepeat = 0xD8,
                                 kChecksum = 0x108;
};

/// The record in the header page at @p at of @p file; nullopt when no copy in that page can be
/// unpacked.
/// @param isRight  false when a checksum was wrong.
std::optional<Record> readRecord(Bytes file, std::size_t at, bool& isRight);
/// A record with the constant fields filled in.
Record newRecord();
/// A header page without a record, with the check data that belongs to a key of zero.
std::vector<std::uint8_t> newHeaderPage();
/// Five numbers behind the blocks of a header page: two checks over two random numbers, those, and
/// one without use.
struct CheckData {
    std::uint64_t normal = 0, mirrored = 0, first = 0, second = 0, unused = 0;
    friend bool operator==(const CheckData&, const CheckData&) = default;
};
CheckData checkDataFor(std::uint64_t first, std::uint64_t second);
CheckData readCheckData(Bytes headerPage);
/// The header page @p old with another record in it; its key and check data stay.
std::vector<std::uint8_t> writeRecord(Bytes old, Record record);

/// Reads a map: packed bytes, repeated, in system blocks. Empty when its sizes are impossible or it
/// is damaged.
std::vector<std::uint8_t> readMap(Bytes file, std::uint64_t address, std::uint64_t packedSize,
                                  std::uint64_t size, std::uint64_t repeat, std::uint64_t largest);
/// A map's page as it is written, and what the record tells about it.
struct MapPage {
    std::vector<std::uint8_t> bytes;
    std::uint64_t packedSize = 0, repeat = 0, packedCrc = 0, crc = 0;
};
/// @p pageSize  as mapPageSize() of the map's size gives it.
MapPage writeMap(Bytes map, std::uint64_t pageSize);
/// Bytes of a page that holds any map of @p size bytes.
std::uint64_t mapPageSize(std::uint64_t size);

/// One data page as it is written.
struct DataPage {
    std::vector<std::uint8_t> bytes; ///< on disk
    std::uint64_t packedSize = 0, sum = 0, crc = 0;
};
/// A page of interleaved blocks, packed when that makes it smaller.
DataPage writePackedPage(Bytes plain);
/// A page in the clear with parity behind it, in a slot of @p slot bytes.
DataPage writePlainPage(Bytes plain, std::uint64_t slot);
/// Bytes that the blocks of a page of @p packedSize packed bytes take.
std::uint64_t blockBytes(std::uint64_t packedSize);

} // namespace dwg::coded
