#include "coded_format.h"

#include <algorithm>
#include <array>
#include <bit>

#include "byte_stream.h"
#include "lz2007.h"
#include "reed_solomon.h"

namespace dwg::coded {

namespace {

constexpr std::size_t kHeaderBlocks = 3;
constexpr std::size_t kHeaderData = kHeaderBlocks * 239;
constexpr std::size_t kUnitHead = 0x20; // before the packed record
constexpr std::uint64_t kMostRepeats = 1024;
constexpr std::size_t kCheckDataAt = 0x3D8; // in the header page

// One copy of the record in the data of a header page.
std::optional<Record> readUnit(Bytes data, std::size_t at, std::size_t size, bool& isRight)
{
    const Bytes packed = data.subspan(at + kUnitHead, size);
    Record record;
    if (!unpack2007(packed, record.bytes))
        return std::nullopt;
    isRight = crc64Normal(packed) == readU64(data.data() + at + 0x10) &&
              record.at(Record::kChecksum) == record.checksum();
    return record;
}

} // namespace

std::uint64_t Record::at(std::size_t place) const
{
    return readU64(&bytes[place]);
}
void Record::put(std::size_t place, std::uint64_t value)
{
    putU64(&bytes[place], value);
}

std::uint64_t Record::checksum() const
{
    Record copy = *this;
    copy.put(kChecksum, 0);
    return crc64Normal(copy.bytes);
}

std::optional<Record> readRecord(Bytes file, std::size_t at, bool& isRight)
{
    isRight = false;
    if (!fits(at, kHeaderPageSize, file.size()))
        return std::nullopt;
    const auto data =
        decodeInterleaved(BlockCode::System, file.subspan(at), kHeaderBlocks, kHeaderData);
    const std::size_t size = readU32(&data[0x18]);
    if (size == 0 || size > kHeaderData - kUnitHead)
        return std::nullopt;
    const std::size_t step = alignUp(kUnitHead + size, 8);
    std::optional<Record> best;
    for (std::size_t unit = 0; unit + kUnitHead + size <= kHeaderData && !isRight; unit += step) {
        bool unitRight = false;
        const auto record = readUnit(data, unit, size, unitRight);
        if (record && (!best || unitRight))
            best = record;
        isRight = unitRight;
    }
    return best;
}

Record newRecord()
{
    Record record;
    record.put(0x00, 0x70);
    record.put(0x70, 0x20);
    record.put(0x78, 0x40);
    record.put(0x88, 0xF800);
    record.put(0x90, 4);
    record.put(0x98, 1);
    record.put(0xE8, 0x60100);
    return record;
}

CheckData checkDataFor(std::uint64_t first, std::uint64_t second)
{
    const auto turned = [](std::uint64_t value, std::uint64_t by) {
        return std::rotl(value, static_cast<int>(by & 31));
    };
    const auto sum = [](const std::array<std::uint64_t, 8>& numbers, auto crc, std::uint64_t seed) {
        std::array<std::uint8_t, 64> bytes;
        for (std::size_t i = 0; i < numbers.size(); ++i)
            putU64(&bytes[i * 8], numbers[i]);
        return crc(bytes, seed);
    };
    const auto normalSum = [](Bytes bytes, std::uint64_t seed) { return crc64Normal(bytes, seed); };
    const auto mirroredSum = [](Bytes bytes, std::uint64_t seed) {
        return crc64Mirrored(bytes, seed);
    };
    std::array<std::uint64_t, 8> a{turned(first, second)};
    a[1] = turned(a[0], a[0]);
    a[2] = turned(second, a[1]);
    a[3] = turned(a[2], a[2]);
    a[4] = turned(first, a[3]);
    a[5] = turned(a[4], a[4]);
    a[6] = turned(a[5], a[5]);
    a[7] = turned(a[6], a[6]);
    CheckData data;
    data.first = first;
    data.second = second;
    data.normal = sum(a, normalSum, ~second);
    std::array<std::uint64_t, 8> b{turned(first, second)};
    b[1] = turned(data.normal, b[0]);
    b[2] = turned(second, b[1]);
    b[3] = turned(data.normal, b[2]);
    b[4] = turned(first, b[3]);
    b[5] = turned(data.normal, b[4]);
    b[6] = turned(second, b[5]);
    b[7] = turned(b[6], b[6]);
    data.mirrored = sum(b, mirroredSum, ~first);
    return data;
}

CheckData readCheckData(Bytes headerPage)
{
    const std::uint8_t* at = headerPage.data() + kCheckDataAt;
    return {readU64(at), readU64(at + 8), readU64(at + 16), readU64(at + 24), readU64(at + 32)};
}

std::vector<std::uint8_t> newHeaderPage()
{
    std::vector<std::uint8_t> data(kHeaderData); // its key, at 8, is zero
    putU64(&data[0], crc64Normal(Bytes(data).subspan(8, 16), crc64MirroredSeed(16)));
    std::vector<std::uint8_t> page = encodeInterleaved(BlockCode::System, data);
    page.resize(kHeaderPageSize);
    const CheckData check = checkDataFor(0, 0);
    putU64(&page[kCheckDataAt], check.normal);
    putU64(&page[kCheckDataAt + 8], check.mirrored);
    return page;
}

std::vector<std::uint8_t> writeRecord(Bytes old, Record record)
{
    record.put(Record::kChecksum, record.checksum());
    const auto packed = pack2007(record.bytes);
    const auto before = decodeInterleaved(BlockCode::System, old, kHeaderBlocks, kHeaderData);
    std::vector<std::uint8_t> data(kHeaderData);
    const std::size_t step = alignUp(kUnitHead + packed.size(), 8);
    for (std::size_t unit = 0; unit + step <= kHeaderData; unit += step) {
        std::copy_n(before.begin(), 0x10, data.begin() + static_cast<std::ptrdiff_t>(unit));
        putU64(&data[unit + 0x10], crc64Normal(packed));
        putU32(&data[unit + 0x18], static_cast<std::uint32_t>(packed.size()));
        std::copy(packed.begin(), packed.end(),
                  data.begin() + static_cast<std::ptrdiff_t>(unit + kUnitHead));
    }
    std::vector<std::uint8_t> page(old.begin(), old.begin() + kHeaderPageSize);
    const auto coded = encodeInterleaved(BlockCode::System, data);
    std::copy(coded.begin(), coded.end(), page.begin());
    return page;
}

std::vector<std::uint8_t> readMap(Bytes file, std::uint64_t address, std::uint64_t packedSize,
                                  std::uint64_t size, std::uint64_t repeat, std::uint64_t largest)
{
    const bool isPossible = size != 0 && size <= largest && packedSize != 0 &&
                            packedSize <= size + 8 && packedSize <= file.size() && repeat != 0 &&
                            repeat <= kMostRepeats && address <= file.size();
    if (!isPossible)
        return {};
    const std::uint64_t blocks = blocksFor(BlockCode::System, alignUp(packedSize, 8) * repeat);
    if (blocks * kBlockSize > file.size() - address)
        return {};
    auto packed = decodeInterleaved(BlockCode::System, file.subspan(address), blocks, packedSize);
    std::vector<std::uint8_t> map(size);
    if (packedSize >= size) {
        packed.resize(size);
        return packed;
    }
    return unpack2007(packed, map) ? map : std::vector<std::uint8_t>();
}

std::uint64_t mapPageSize(std::uint64_t size)
{
    const std::uint64_t blocks = blocksFor(BlockCode::System, alignUp(size, 8) * 5);
    return std::max<std::uint64_t>(kHeaderPageSize, alignUp(blocks * kBlockSize, kPageStep));
}

MapPage writeMap(Bytes map, std::uint64_t pageSize)
{
    MapPage page;
    auto packed = pack2007(map);
    if (packed.empty())
        packed.assign(map.begin(), map.end());
    page.packedSize = packed.size();
    page.packedCrc = crc64Mirrored(packed);
    page.crc = crc64Mirrored(map);
    const std::uint64_t unit = alignUp(packed.size(), 8);
    page.repeat =
        std::min(pageSize / kBlockSize * dataBytes(BlockCode::System) / unit, kMostRepeats);
    std::vector<std::uint8_t> data(unit * page.repeat);
    for (std::uint64_t at = 0; at < data.size(); at += unit)
        std::copy(packed.begin(), packed.end(), data.begin() + static_cast<std::ptrdiff_t>(at));
    page.bytes = encodeInterleaved(BlockCode::System, data);
    page.bytes.resize(pageSize);
    return page;
}

std::uint64_t blockBytes(std::uint64_t packedSize)
{
    return blocksFor(BlockCode::Data, alignUp(packedSize, 8)) * kBlockSize;
}

DataPage writePackedPage(Bytes plain)
{
    DataPage page;
    auto packed = pack2007(plain);
    if (packed.empty())
        packed.assign(plain.begin(), plain.end());
    page.packedSize = packed.size();
    page.sum = pageSum2007(plain);
    page.crc = crc64Mirrored(packed);
    packed.resize(alignUp(packed.size(), 8));
    page.bytes = encodeInterleaved(BlockCode::Data, packed);
    page.bytes.resize(std::max<std::uint64_t>(0x100, alignUp(page.bytes.size(), kPageStep)));
    return page;
}

DataPage writePlainPage(Bytes plain, std::uint64_t slot)
{
    DataPage page;
    page.packedSize = plain.size();
    page.sum = pageSum2007(plain);
    page.crc = crc64Mirrored(plain);
    page.bytes.assign(plain.begin(), plain.end());
    page.bytes.resize(alignUp(plain.size(), 8));
    const std::vector<std::uint8_t> data = page.bytes;
    const std::size_t blockData = dataBytes(BlockCode::Data);
    for (std::size_t at = 0; at < data.size(); at += blockData) {
        const auto parity = parityOf(
            BlockCode::Data, Bytes(data).subspan(at, std::min(blockData, data.size() - at)));
        page.bytes.insert(page.bytes.end(), parity.begin(), parity.end());
    }
    page.bytes.resize(alignUp(slot + 4 * blocksFor(BlockCode::Data, slot), kPageStep));
    return page;
}

} // namespace dwg::coded
