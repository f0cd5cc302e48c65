#include "inflate.h"

#include <new>

#include <zlib.h>

namespace plot {

std::optional<std::string> inflated(std::span<const std::byte> packed, std::size_t limit)
{
    constexpr std::size_t kStep = 64 * 1024;
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK)
        return std::nullopt;
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<std::byte*>(packed.data()));
    stream.avail_in = static_cast<uInt>(std::min<std::size_t>(packed.size(), UINT32_MAX));
    std::string out;
    int state = Z_OK;
    while (state == Z_OK && out.size() <= limit) {
        const std::size_t before = out.size();
        out.resize(before + kStep);
        stream.next_out = reinterpret_cast<Bytef*>(out.data() + before);
        stream.avail_out = static_cast<uInt>(kStep);
        state = inflate(&stream, Z_NO_FLUSH);
        out.resize(out.size() - stream.avail_out);
    }
    inflateEnd(&stream);
    if (state != Z_STREAM_END || out.size() > limit)
        return std::nullopt;
    return out;
}

std::string deflated(std::string_view bytes, int level)
{
    std::string out(compressBound(bytes.size()), '\0');
    uLongf size = out.size();
    if (compress2(reinterpret_cast<Bytef*>(out.data()), &size,
                  reinterpret_cast<const Bytef*>(bytes.data()), bytes.size(), level) != Z_OK)
        throw std::bad_alloc();
    out.resize(size);
    return out;
}

} // namespace plot
