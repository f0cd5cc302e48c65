#include "dwg/dwg_codec.h"

#include "byte_stream.h"
#include "drawing_writer.h"
#include "preview_block.h"
#include "sentinels.h"

namespace dwg {

bool DwgCodec::recognises(std::span<const std::uint8_t> head) const
{
    return versionOf(head).has_value();
}

base::Result<std::unique_ptr<db::DrawingFile>> DwgCodec::open(std::vector<std::uint8_t> file) const
{
    auto opened = DwgFile::open(std::move(file));
    if (!opened)
        return opened.status();
    return std::unique_ptr<db::DrawingFile>(std::move(*opened));
}

base::Result<std::vector<std::uint8_t>> DwgCodec::write(const db::Contents& contents,
                                                        db::Version version) const
{
    const auto* const origin = dynamic_cast<const DwgFile*>(contents.origin);
    if (origin && origin->version() == version)
        return writeInPlace(contents, *origin);
    return writeAnew(contents, static_cast<Version>(version));
}

// The head of every version tells where the picture lies, and it is never packed.
db::Preview DwgCodec::quickPreview(const ReadAt& read) const
{
    constexpr std::size_t kFieldAt = 0x0D, kFieldEnd = 0x11, kBlockHead = 20, kSentinel = 16;
    constexpr std::size_t kLargest = 16u << 20;
    const auto head = read(0, kFieldEnd);
    if (head.size() < kFieldEnd || !versionOf(head))
        return {};
    const std::uint32_t address = readU32(&head[kFieldAt]);
    const auto begin = address != 0 ? read(address, kBlockHead) : std::vector<std::uint8_t>();
    if (begin.size() < kBlockHead || !standsAt(kPreviewBegin, begin, 0))
        return {};
    const std::size_t size = kBlockHead + std::size_t(readU32(&begin[kSentinel])) + kSentinel;
    return size <= kLargest ? pictureOf(read(address, size), address) : db::Preview();
}

void install()
{
    static const DwgCodec codec;
    db::installCodec(codec);
}

} // namespace dwg
