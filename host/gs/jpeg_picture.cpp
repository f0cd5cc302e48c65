#include "jpeg_picture.h"

#include <csetjmp>
#include <cstdio> // before the library's header, which needs it
#include <memory>

#include <jerror.h>
#include <jpeglib.h>

namespace gs {

namespace {

// A small file may hold scan upon scan of a huge picture: each goes over all pixels.
constexpr int kMostScans = 50;
constexpr std::int64_t kMostPixels = 64'000'000;

/// Reads one file. The library leaves by jumping where it fails: what must be freed is a member
/// here, and no function between has anything to destroy.
class JpegReader
{
public:
    JpegReader()
    {
        m_info.err = jpeg_std_error(&m_errors.common);
        m_errors.common.error_exit = leave;
        m_errors.common.emit_message = warn;
        m_errors.common.output_message = [](j_common_ptr) {};
        m_progress.progress_monitor = watch;
    }
    ~JpegReader() { jpeg_destroy_decompress(&m_info); }
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    bool read(std::span<const std::uint8_t> bytes)
    {
        if (setjmp(m_errors.way))
            return false;
        jpeg_create_decompress(&m_info);
        m_info.progress = &m_progress;
        jpeg_mem_src(&m_info, bytes.data(), static_cast<unsigned long>(bytes.size()));
        jpeg_read_header(&m_info, TRUE);
        if (m_info.image_width > kLargestSide || m_info.image_height > kLargestSide ||
            std::int64_t(m_info.image_width) * m_info.image_height > kMostPixels)
            return false;
        m_isInks = m_info.num_components == 4;
        m_info.out_color_space = m_isInks ? JCS_CMYK : JCS_EXT_BGRX;
        jpeg_start_decompress(&m_info);
        prepare();
        while (m_info.output_scanline < m_info.output_height) {
            JSAMPROW row = m_row.data();
            jpeg_read_scanlines(&m_info, &row, 1);
            take();
        }
        return true;
    }

    Picture picture;
    bool isGray() const { return m_info.jpeg_color_space == JCS_GRAYSCALE; }
    /// Whether all that shows pictures reads this one alike.
    bool isForViewers() const
    {
        return !m_info.arith_code && (isGray() || m_info.jpeg_color_space == JCS_YCbCr);
    }

private:
    struct Errors {
        jpeg_error_mgr common; // first: the library hands it back
        std::jmp_buf way;
    };

    static void leave(j_common_ptr info)
    {
        std::longjmp(reinterpret_cast<Errors*>(info->err)->way, 1);
    }
    static void warn(j_common_ptr info, int level)
    {
        // Bytes are missing or damaged; those between two parts do no harm.
        if (level < 0 && info->err->msg_code != JWRN_EXTRANEOUS_DATA)
            leave(info);
    }
    static void watch(j_common_ptr info)
    {
        if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > kMostScans)
            leave(info);
    }

    void prepare()
    {
        picture.width = static_cast<int>(m_info.output_width);
        picture.height = static_cast<int>(m_info.output_height);
        m_row.resize(std::size_t(m_info.output_width) * 4);
        picture.pixels.reserve(std::size_t(m_info.output_width) * m_info.output_height);
    }

    void take()
    {
        for (std::size_t i = 0; i + 3 < m_row.size(); i += 4) {
            const std::uint8_t* const p = m_row.data() + i;
            if (m_isInks)
                picture.pixels.push_back(
                    opaque(light(p[0], p[3]), light(p[1], p[3]), light(p[2], p[3])));
            else
                picture.pixels.push_back(opaque(p[2], p[1], p[0]));
        }
    }
    int light(int ink, int black) const
    {
        // Programs that name themselves in the file count the paper that is left, not the ink.
        return m_info.saw_Adobe_marker ? ink * black / 255 : (255 - ink) * (255 - black) / 255;
    }
    static std::uint32_t opaque(int red, int green, int blue)
    {
        return 0xFF000000 | static_cast<std::uint32_t>(red << 16 | green << 8 | blue);
    }

    jpeg_decompress_struct m_info{};
    Errors m_errors{};
    jpeg_progress_mgr m_progress{};
    std::vector<std::uint8_t> m_row;
    bool m_isInks = false;
};

} // namespace

Picture pictureFromJpeg(std::span<const std::uint8_t> bytes)
{
    JpegReader reader;
    if (!reader.read(bytes))
        return {};
    if (reader.isForViewers())
        reader.picture.jpeg.assign(bytes.begin(), bytes.end());
    reader.picture.isGrayJpeg = reader.isGray();
    return std::move(reader.picture);
}

} // namespace gs
