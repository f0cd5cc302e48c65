#include <array>
#include <atomic>

#include <db/drawing_file.h>

namespace db {

namespace {

std::array<std::atomic<const Codec*>, 2> g_codecs; // static: they live as long as the program

} // namespace

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
