#pragma once

#include <compare>

#include <gs/picture.h>

namespace gs {

/// How a picture or page is changed where a drawing shows it.
struct PictureTone {
    double contrast = 1;   ///< distance from middle grey, 0 to 1 (of pictures, to 2)
    double brightness = 0; ///< added, -1 to 1
    bool isGray = false;

    bool isPlain() const { return contrast == 1 && brightness == 0 && !isGray; }
    friend auto operator<=>(const PictureTone&, const PictureTone&) = default;
};

/// Changes the pixels of @p picture; bytes of a file that it brings are no longer right then.
void applyTone(Picture& picture, const PictureTone& tone);
/// Light and dark exchanged, in the same hues.
Picture turned(const Picture& picture);

} // namespace gs
