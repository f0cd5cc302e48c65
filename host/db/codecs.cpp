#include <array>
#include <atomic>

#include <db/drawing_file.h>

namespace db {

namespace {

std::array<std::atomic<const Codec*>, 2> g_codecs; // static: they live as long as the program

} // namespace

void DrawingFile::forEachKind(
    const std::function<void(std::uint64_t, const ObjectKind*)>& visit) const
{
    for (const std::uint64_t handle : handles()) {
        const base::Result<ObjectKind> found = kind(handle);
        visit(handle, found ? &*found : nullptr);
    }
}

void installCodec(const Codec& codec)
{
    g_codecs[static_cast<std::size_t>(codec.format())] = &codec;
}

const Codec* codecOf(FileFormat format)
{
    return g_codecs[static_cast<std::size_t>(format)];
}

const Codec* codecFor(std::span<const std::uint8_t> head)
{
    for (const Codec* codec : g_codecs)
        if (codec && codec->recognises(head))
            return codec;
    return nullptr;
}

} // namespace db
