#include "dwg/object_record.h"

#include <base/tv_db_handle.h>

#include "byte_stream.h"
#include "object_front.h"

namespace dwg {

namespace {

constexpr std::uint64_t kLargestObject = 256u << 20; // bytes

struct FrameSizes {
    std::size_t dataAt = 0, dataSize = 0;
    std::uint64_t handleBits = 0; // from 2010 on
    bool valid = false;
};

FrameSizes readSizes(Version version, Bytes bytes)
{
    FrameSizes sizes;
    bool isRead = true;
    const bool isNewForm = hasHandleStreamSize(version);
    // As nearly all are: two bytes of size, then at most as many.
    const bool isShort = bytes.size() >= 4 && !(bytes[1] & 0x80) &&
                         !(isNewForm && (bytes[2] & 0x80) && (bytes[3] & 0x80));
    if (isShort) {
        sizes.dataSize = readU16(bytes.data());
        sizes.dataAt = 2;
        if (isNewForm) {
            const bool isLong = (bytes[2] & 0x80) != 0;
            sizes.handleBits = (bytes[2] & 0x7Fu) | (isLong ? unsigned(bytes[3]) << 7 : 0u);
            sizes.dataAt += isLong ? 2 : 1;
        }
    } else {
        BitReader reader(bytes.first(std::min<std::size_t>(bytes.size(), 16)));
        sizes.dataSize = reader.readMS();
        if (hasHandleStreamSize(version))
            sizes.handleBits = reader.readUMC();
        sizes.dataAt = reader.position() / 8;
        isRead = !reader.failed();
    }
    sizes.valid = isRead && sizes.dataSize > 0 && sizes.dataSize <= kLargestObject &&
                  sizes.handleBits <= sizes.dataSize * 8;
    return sizes;
}

bool readHead(Version version, ObjectRecord& record)
{
    BitReader reader(record.data);
    record.type = hasHandleStreamSize(version) ? reader.readOT() : reader.readBS();
    if (!hasHandleStreamSize(version)) {
        record.bitSizeAt = reader.position();
        record.endBit = reader.readRL();
    }
    record.handle = reader.readH().value;
    record.bodyBit = reader.position();
    return !reader.failed() && record.endBit >= record.bodyBit &&
           record.endBit <= record.data.size() * 8;
}

} // namespace

std::uint64_t recordSize(Version version, Bytes bytes)
{
    const FrameSizes sizes = readSizes(version, bytes);
    return sizes.valid ? sizes.dataAt + sizes.dataSize + 2 : 0;
}

ObjectFront readFront(Version version, Bytes head)
{
    if (const ObjectFront front = readFrontQuickly(version, head); front.size != 0)
        return front;
    const FrameSizes sizes = readSizes(version, head);
    if (!sizes.valid)
        return {};
    const std::size_t end = sizes.dataAt + sizes.dataSize;
    BitReader reader(head.first(std::min(head.size(), end)), sizes.dataAt * 8,
                     std::min(head.size(), end) * 8);
    ObjectFront front;
    if (hasHandleStreamSize(version)) {
        front.type = reader.readOT();
    } else {
        front.type = reader.readBS();
        reader.skip(32); // its size in bits
    }
    front.handle = reader.readH().value;
    front.size = reader.failed() ? 0 : end + 2;
    return front;
}

base::Result<ObjectRecord> parseRecord(Version version, Bytes frame)
{
    const FrameSizes sizes = readSizes(version, frame);
    const bool whole = sizes.valid && fits(sizes.dataAt, sizes.dataSize + 2, frame.size());
    ObjectRecord record;
    if (whole) {
        const std::size_t end = sizes.dataAt + sizes.dataSize;
        record.frame = frame.first(end + 2);
        record.data = frame.subspan(sizes.dataAt, sizes.dataSize);
        record.endBit = sizes.dataSize * 8 - sizes.handleBits;
    }
    if (!whole || !readHead(version, record))
        return base::Status(base::Failure::Damaged, base::Reason::DwgObjectDamaged,
                            {base::hexText(record.handle)});
    return record;
}

bool ObjectRecord::checksumRight() const
{
    const std::size_t end = frame.size() - 2;
    return crc16(frame.first(end)) == readU16(frame.data() + end);
}

std::vector<std::uint8_t> frameRecord(Version version, Bytes data, std::size_t endBit)
{
    if (data.empty() || data.size() > kLargestObject || endBit > data.size() * 8)
        return {};
    BitWriter writer;
    writer.writeMS(data.size());
    if (hasHandleStreamSize(version))
        writer.writeUMC(data.size() * 8 - endBit);
    writer.writeBytes(data);
    auto bytes = writer.take();
    const std::uint16_t crc = crc16(bytes);
    bytes.push_back(static_cast<std::uint8_t>(crc));
    bytes.push_back(static_cast<std::uint8_t>(crc >> 8));
    return bytes;
}

} // namespace dwg
