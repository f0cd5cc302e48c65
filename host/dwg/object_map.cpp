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

// A modular char of at most ten bytes; false when it does not end in time.
inline bool readModular(const std::uint8_t*& at, const std::uint8_t* end, std::uint64_t& value)
{
    value = 0;
    for (unsigned shift = 0; at != end && shift < 70; shift += 7) {
        const std::uint8_t byte = *at++;
        if (shift == 63 && byte > 1)
            return false;
        value |= std::uint64_t(byte & 0x7F) << shift;
        if (byte < 0x80)
            return true;
    }
    return false;
}

// The same with its sign in the last byte; at most nine bytes.
inline bool readSigned(const std::uint8_t*& at, const std::uint8_t* end, std::int64_t& value)
{
    std::uint64_t magnitude = 0;
    for (unsigned shift = 0; at != end && shift < 63; shift += 7) {
        const std::uint8_t byte = *at++;
        if (byte & 0x80) {
            magnitude |= std::uint64_t(byte & 0x7F) << shift;
            continue;
        }
        magnitude |= std::uint64_t(byte & 0x3F) << shift;
        value = static_cast<std::int64_t>(magnitude);
        if (byte & 0x40)
            value = -value;
        return true;
    }
    return false;
}

// The entries of one page, whose two sums start at 0.
bool readPage(Bytes entries, ObjectMap& map)
{
    const std::uint8_t* at = entries.data();
    const std::uint8_t* const end = at + entries.size();
    std::uint64_t handle = 0, last = map.objects.empty() ? 0 : map.objects.back().handle;
    std::int64_t offset = 0;
    bool inOrder = map.inOrder;
    while (at != end) {
        std::uint64_t step = 0;
        std::int64_t move = 0;
        if (!readModular(at, end, step) || !readSigned(at, end, move) || step == 0 || step >> 63 ||
            move > INT64_MAX / 2 - offset)
            return false;
        handle += step;
        offset += move;
        if (handle >> 63 || offset < 0)
            return false;
        inOrder = inOrder && (map.objects.empty() || last < handle);
        last = handle;
        map.objects.push_back({handle, static_cast<std::uint64_t>(offset)});
    }
    map.inOrder = inOrder;
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
