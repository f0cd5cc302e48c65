#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include <base/large_memory.h>
#include <base/status.h>
#include <db/drawing_file.h>
#include <gs/player.h>

namespace gs {

class PictureOnDark;

/// Pixels, row by row from the top; each 32 bits: alpha (255, unless it is transparent), red,
/// green, blue from the highest byte on.
struct Picture {
    using Pixels = std::vector<std::uint32_t, base::LargeAllocator<std::uint32_t>>;

    int width = 0, height = 0;
    Pixels pixels; ///< whoever resizes it writes them
    /// The bytes of the JPEG that the pixels are from, for who can show it itself; else empty.
    std::vector<std::uint8_t> jpeg = {};
    bool isGrayJpeg = false; ///< its bytes tell one channel, else three
    /// Shows what is below it: alpha counts, and the colours are multiplied by it.
    bool isTransparent = false;
    /// What is shown on a dark background, where a filling says so; null: nothing else.
    std::shared_ptr<PictureOnDark> onDark = {};

    bool isEmpty() const { return pixels.empty(); }
    std::uint32_t at(int x, int y) const
    {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

/// A picture with light and dark exchanged, in the same hues: black lines on nothing are white
/// ones. Made when it is first asked for, in whichever thread.
class PictureOnDark
{
public:
    /// @param picture  the same at each call.
    const Picture& of(const Picture& picture);

private:
    std::once_flag m_made;
    Picture m_picture;
};

/// Sides of a picture are at most this many pixels; what is asked for beyond gives none.
inline constexpr int kLargestSide = 16384;

/// A picture of what @p view shows.
Picture pictureOf(const DisplayList& list, const View& view, const PlayOptions& options = {});
/// All of a layout (its sheet, or what is drawn when that is larger) or of the model layout.
/// @param layout  null: model space.
/// @return empty when there is no such layout.
Picture layoutPicture(TvDbDatabase& database, TvDbObjectId layout, int width, int height,
                      const PlayOptions& options = {});

/// The bytes of a PNG file.
std::vector<std::uint8_t> pngBytes(const Picture& picture);
/// The bytes of a device-independent bitmap, from its info header on, 24 bits a pixel.
std::vector<std::uint8_t> bitmapBytes(const Picture& picture);
/// Fails as files do; nothing is left behind then.
base::Status writePng(const Picture& picture, const TvString& path);

/// The picture that a drawing keeps of itself or of a layout: black on white, no larger than that,
/// in the proportions of what it shows.
/// @return None when there is nothing to show.
db::Preview thumbnail(TvDbObjectId layout, int longestSide = 256,
                      db::Preview::Kind kind = db::Preview::Kind::Png);
/// The same of what the drawing shows when it is opened: its model, or the layout used last.
db::Preview thumbnail(TvDbDatabase& database, int longestSide = 256,
                      db::Preview::Kind kind = db::Preview::Kind::Png);
/// The pixels of a kept picture; empty for what is no picture, and for metafiles.
Picture pictureFromPreview(const db::Preview& preview);

} // namespace gs
