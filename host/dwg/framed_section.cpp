#include "framed_section.h"

#include "byte_stream.h"

namespace dwg {

namespace {

constexpr std::size_t kSizeAt = 16; // behind the sentinel

} // namespace

std::optional<FramedSection> readFrame(Version version, Bytes section, const Sentinel& begin)
{
    if (!standsAt(begin, section, 0) || section.size() < 24)
        return std::nullopt;
    FramedSection frame;
    // Which 2010 files have the zero word is told nowhere reliably; a size in bits is never zero.
    frame.hasHighSize = hasHandleStreamSize(version) && readU32(section.data() + 20) == 0;
    const std::size_t recordAt = frame.hasHighSize ? 24 : 20;
    const std::size_t size = readU32(section.data() + kSizeAt);
    if (!fits(recordAt, std::uint64_t(size) + 2, section.size()))
        return std::nullopt;
    frame.record = section.subspan(recordAt, size);
    frame.endBit = size * 8;
    if (hasStringStream(version)) {
        if (size < 4)
            return std::nullopt;
        frame.beginBit = 32;
        frame.endBit = readU32(frame.record.data());
        if (frame.endBit < 33 || frame.endBit > size * 8)
            return std::nullopt;
    }
    const std::size_t crcAt = recordAt + size;
    frame.checksumRight =
        crc16(section.subspan(kSizeAt, crcAt - kSizeAt)) == readU16(section.data() + crcAt);
    frame.endSentinelRight = standsAt(endOf(begin), section, crcAt + 2);
    if (frame.endSentinelRight)
        frame.trailing = section.subspan(crcAt + 2 + begin.size());
    return frame;
}

std::vector<std::uint8_t> writeFrame(const Sentinel& begin, Bytes record, bool hasHighSize,
                                     Bytes trailing)
{
    ByteWriter out;
    out.append(begin);
    out.u32(static_cast<std::uint32_t>(record.size()));
    if (hasHighSize)
        out.u32(0);
    out.append(record);
    out.u16(crc16(Bytes(out.bytes).subspan(kSizeAt)));
    out.append(endOf(begin));
    out.append(trailing);
    return std::move(out.bytes);
}

} // namespace dwg
