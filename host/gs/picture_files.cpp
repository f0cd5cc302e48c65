#include <cstring>

#include <cairo.h>

#include <base/atomic_replace.h>
#include <base/file_ops.h>
#include <gs/picture.h>

namespace gs {

namespace {

constexpr std::size_t kDibHeader = 40;
constexpr std::size_t kLargestPreview = std::size_t(kLargestSide) * kLargestSide;

struct Release {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using Surface = std::unique_ptr<cairo_surface_t, Release>;

cairo_status_t append(void* bytes, const unsigned char* data, unsigned int length)
{
    auto& all = *static_cast<std::vector<std::uint8_t>*>(bytes);
    all.insert(all.end(), data, data + length);
    return CAIRO_STATUS_SUCCESS;
}

cairo_status_t take(void* rest, unsigned char* data, unsigned int length)
{
    auto& bytes = *static_cast<std::span<const std::uint8_t>*>(rest);
    if (bytes.size() < length)
        return CAIRO_STATUS_READ_ERROR;
    std::copy_n(bytes.begin(), length, data);
    bytes = bytes.subspan(length);
    return CAIRO_STATUS_SUCCESS;
}

Picture fromPng(std::span<const std::uint8_t> bytes)
{
    // The size stands at the same place in all of them; what claims to be huge is not unpacked.
    constexpr std::size_t kSizeAt = 16;
    const auto big = [&](std::size_t at) {
        return std::uint32_t(bytes[at]) << 24 | std::uint32_t(bytes[at + 1]) << 16 |
               std::uint32_t(bytes[at + 2]) << 8 | bytes[at + 3];
    };
    if (bytes.size() < kSizeAt + 8 || big(kSizeAt) > kLargestSide ||
        big(kSizeAt + 4) > kLargestSide)
        return {};
    const Surface read(cairo_image_surface_create_from_png_stream(take, &bytes));
    if (cairo_surface_status(read.get()) != CAIRO_STATUS_SUCCESS)
        return {};
    Picture picture;
    picture.width = cairo_image_surface_get_width(read.get());
    picture.height = cairo_image_surface_get_height(read.get());
    picture.pixels.resize(static_cast<std::size_t>(picture.width) *
                          static_cast<std::size_t>(picture.height));
    const auto side = static_cast<int>(sizeof(std::uint32_t));
    const Surface copy(cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(picture.pixels.data()), CAIRO_FORMAT_ARGB32, picture.width,
        picture.height, picture.width * side));
    const std::unique_ptr<cairo_t, decltype(&cairo_destroy)> context(cairo_create(copy.get()),
                                                                     cairo_destroy);
    cairo_set_source_rgb(context.get(), 1, 1, 1); // what is transparent is seen on white
    cairo_paint(context.get());
    cairo_set_source_surface(context.get(), read.get(), 0, 0);
    cairo_paint(context.get());
    cairo_surface_flush(copy.get());
    return picture;
}

/// A bitmap from its info header on: 8 bits with a palette, or 24 or 32 bits, not packed.
class Bitmap
{
public:
    explicit Bitmap(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    Picture picture() const
    {
        constexpr std::uint32_t kNotPacked = 0;
        if (m_bytes.size() < kDibHeader || little(16) != kNotPacked)
            return {};
        const auto width = static_cast<std::int32_t>(little(4));
        const auto tall = static_cast<std::int32_t>(little(8)); // negative: from the top
        if (width <= 0 || tall == 0 || width > kLargestSide || tall > kLargestSide ||
            tall < -kLargestSide)
            return {};
        const std::size_t bits = little(12) >> 16;
        if (bits != 8 && bits != 24 && bits != 32)
            return {};
        const std::size_t colors = bits == 8 ? (little(32) ? little(32) : 256) : 0;
        const std::size_t stride = (static_cast<std::size_t>(width) * bits + 31) / 32 * 4;
        const auto height = static_cast<std::size_t>(std::abs(tall));
        const std::size_t first = little(0) + colors * 4;
        if (colors > 256 || first > m_bytes.size() || stride * height > m_bytes.size() - first)
            return {};
        Picture picture;
        picture.width = width;
        picture.height = static_cast<int>(height);
        for (std::size_t row = 0; row < height; ++row) {
            const std::size_t at = first + stride * (tall > 0 ? height - 1 - row : row);
            for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x)
                picture.pixels.push_back(0xFF000000 | pixel(at + x * bits / 8, bits, colors));
        }
        return picture;
    }

private:
    std::uint32_t little(std::size_t at) const
    {
        return std::uint32_t(m_bytes[at]) | std::uint32_t(m_bytes[at + 1]) << 8 |
               std::uint32_t(m_bytes[at + 2]) << 16 | std::uint32_t(m_bytes[at + 3]) << 24;
    }
    std::uint32_t pixel(std::size_t at, std::size_t bits, std::size_t colors) const
    {
        if (bits == 8)
            return m_bytes[at] < colors
                       ? little(little(0) + std::size_t(m_bytes[at]) * 4) & 0xFFFFFF
                       : 0;
        return std::uint32_t(m_bytes[at]) | std::uint32_t(m_bytes[at + 1]) << 8 |
               std::uint32_t(m_bytes[at + 2]) << 16;
    }

    std::span<const std::uint8_t> m_bytes;
};

} // namespace

std::vector<std::uint8_t> pngBytes(const Picture& picture)
{
    std::vector<std::uint8_t> bytes;
    if (picture.isEmpty())
        return bytes;
    // cairo only reads the pixels.
    Picture::Pixels pixels = picture.pixels;
    const Surface surface(cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(pixels.data()),
        picture.isTransparent ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24, picture.width,
        picture.height, picture.width * static_cast<int>(sizeof(std::uint32_t))));
    if (cairo_surface_write_to_png_stream(surface.get(), append, &bytes) != CAIRO_STATUS_SUCCESS)
        bytes.clear();
    return bytes;
}

base::Status writePng(const Picture& picture, const TvString& path)
{
    const std::vector<std::uint8_t> bytes = pngBytes(picture);
    if (bytes.empty())
        return {base::Failure::Usage, base::Reason::SystemError, {path}};
    base::ReplaceRequest request;
    request.bytes = std::as_bytes(std::span(bytes));
    return base::replaceFile(base::systemFileOps(), path, request);
}

std::vector<std::uint8_t> bitmapBytes(const Picture& picture)
{
    std::vector<std::uint8_t> bytes;
    if (picture.isEmpty())
        return bytes;
    const auto put = [&bytes](std::uint32_t value, int count) {
        for (int i = 0; i < count; ++i)
            bytes.push_back(static_cast<std::uint8_t>(value >> 8 * i & 0xFF));
    };
    const auto width = static_cast<std::uint32_t>(picture.width);
    const std::uint32_t stride = (width * 3 + 3) / 4 * 4;
    const std::uint32_t size = stride * static_cast<std::uint32_t>(picture.height);
    put(kDibHeader, 4);
    put(width, 4);
    put(static_cast<std::uint32_t>(picture.height), 4);
    put(1, 2);  // planes
    put(24, 2); // bits of a pixel
    put(0, 4);  // not packed
    put(size, 4);
    for (int i = 0; i < 4; ++i)
        put(0, 4); // resolution and palette: none
    for (int y = picture.height; y-- > 0;) {
        for (int x = 0; x < picture.width; ++x)
            put(picture.at(x, y), 3);
        put(0, static_cast<int>(stride - width * 3));
    }
    return bytes;
}

Picture pictureFromPreview(const db::Preview& preview)
{
    if (preview.bytes.size() > kLargestPreview)
        return {};
    switch (preview.kind) {
    case db::Preview::Kind::Png: return fromPng(preview.bytes);
    case db::Preview::Kind::Bmp: return Bitmap(preview.bytes).picture();
    default: return {};
    }
}

} // namespace gs
