#include "dwg/object_map.h"

#include <algorithm>

#include "dwg/bit_writer.h"

namespace dwg {

namespace {

constexpr std::size_t kLargestPageRead = 2040;
constexpr std::size_t kLargestPageWritten = 2032;
constexpr std::size_t kLargestEntry = 20; // two modular chars of at most 10 bytes

std::uint16_t readBigU16(Bytes bytes, std::size_t at)
{
    return static_cast<std::uint16_t>(bytes[at] << 8 | bytes[at + 1]);
}

base::Status damaged()
{
    return {base::Failure::Damaged, base::Reason::DwgObjectMapDamaged};
}

// Each entry ends two modular chars, and each of those ends in one byte without the high bit: so
// the room for all entries is known before the first is read.
std::size_t countEntries(Bytes section)
{
    return static_cast<std::size_t>(
               std::count_if(section.begin(), section.end(), [](auto b) { return b < 0x80; })) /
           2;
}

// The entries of one page, whose two sums start at 0.
bool readPage(Bytes entries, ObjectMap& map)
{
    BitReader reader(entries);
    std::uint64_t handle = 0;
    std::int64_t offset = 0;
    while (!reader.atEnd()) {
        const std::uint64_t step = reader.readUMC();
        const std::int64_t move = reader.readMC();
        if (reader.failed() || step == 0 || step >> 63 || move > INT64_MAX / 2 - offset)
            return false;
        handle += step;
        offset += move;
        if (handle >> 63 || offset < 0)
            return false;
        map.inOrder = map.inOrder && (map.objects.empty() || map.objects.back().handle < handle);
        map.objects.push_back({handle, static_cast<std::uint64_t>(offset)});
    }
    return true;
}

void putInOrder(ObjectMap& map)
{
    if (map.inOrder)
        return;
    const auto byHandle = [](const auto& a, const auto& b) { return a.handle < b.handle; };
    std::stable_sort(map.objects.begin(), map.objects.end(), byHandle);
    std::vector<ObjectLocation> once;
    for (const ObjectLocation& object : map.objects) {
        if (!once.empty() && once.back().handle == object.handle)
            once.pop_back();
        once.push_back(object);
    }
    map.objects = std::move(once);
}

void closePage(std::vector<std::uint8_t>& out, std::size_t begin)
{
    const std::size_t size = out.size() - begin;
    out[begin] = static_cast<std::uint8_t>(size >> 8);
    out[begin + 1] = static_cast<std::uint8_t>(size);
    const std::uint16_t crc = crc16(Bytes(out).subspan(begin));
    out.push_back(static_cast<std::uint8_t>(crc >> 8));
    out.push_back(static_cast<std::uint8_t>(crc));
}

void appendModular(std::vector<std::uint8_t>& out, std::uint64_t value, std::uint64_t last,
                   std::uint8_t sign)
{
    for (; value > last; value >>= 7)
        out.push_back(static_cast<std::uint8_t>((value & 0x7F) | 0x80));
    out.push_back(static_cast<std::uint8_t>(value | sign));
}

} // namespace

base::Result<ObjectMap> readObjectMap(Bytes section, std::size_t mostObjects)
{
    ObjectMap map;
    map.objects.reserve(std::min(countEntries(section), mostObjects));
    for (std::size_t at = 0;;) {
        if (section.size() - at < 4)
            return damaged();
        const std::size_t size = readBigU16(section, at);
        if (size < 2 || size > kLargestPageRead || size + 2 > section.size() - at)
            return damaged();
        const Bytes page = section.subspan(at, size);
        map.checksumsRight &= crc16(page) == readBigU16(section, at + size);
        if (size == 2)
            break;
        if (!readPage(page.subspan(2), map) || map.objects.size() > mostObjects)
            return damaged();
        at += size + 2;
    }
    putInOrder(map);
    return map;
}

std::vector<std::uint8_t> writeObjectMap(std::span<const ObjectLocation> objects)
{
    std::vector<std::uint8_t> out;
    out.reserve(objects.size() * 4 + 16);
    std::size_t begin = 0;
    out.resize(2);
    ObjectLocation last;
    for (const ObjectLocation& object : objects) {
        if (out.size() - begin + kLargestEntry > kLargestPageWritten) {
            closePage(out, begin);
            begin = out.size();
            out.resize(out.size() + 2);
            last = {};
        }
        appendModular(out, object.handle - last.handle, 0x7F, 0);
        const bool back = object.offset < last.offset;
        appendModular(out, back ? last.offset - object.offset : object.offset - last.offset, 0x3F,
                      back ? 0x40 : 0);
        last = object;
    }
    if (!objects.empty()) {
        closePage(out, begin);
        begin = out.size();
        out.resize(out.size() + 2);
    }
    closePage(out, begin);
    return out;
}

} // namespace dwg
