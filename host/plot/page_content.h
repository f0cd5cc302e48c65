#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include <gs/path.h>
#include <plot/job.h>

#include "page_walk.h"

namespace plot {

/// A letter that a page of a PDF shows.
struct UsedLetter {
    gs::Path outline;
    double advance = 0;
    std::u16string text; ///< of a form: what it stands for
};

/// A font as one page uses it: the code of a letter is its character's place in the plane, that of
/// a form its number in the face.
struct UsedFont {
    static constexpr std::uint32_t kForms = 0x100; // in place of a plane

    gs::FontFace face;
    std::uint32_t plane = 0; ///< of Unicode
    std::map<std::uint16_t, UsedLetter> letters;
};

/// Colours that pass into each other, in a square of their own.
struct UsedShading {
    bool isRound = false;
    std::vector<std::pair<double, std::uint32_t>>
        stops; ///< from 0 to 1, ascending; red, green, blue
};

/// A picture: 3 bytes a pixel, row by row from the top, or a JPEG as it is.
struct UsedImage {
    int width = 0, height = 0;
    std::string packed;
    bool isJpeg = false;
    bool isGray = false;      ///< of a JPEG: one channel
    std::string opacity = {}; ///< packed, a byte a pixel; empty: all of it hides what is below
};

/// A link in its place.
struct PlacedLink {
    gs::Box areaMm;
    std::size_t page = 0; ///< among the job's
};

/// A finished page of a PDF, without anything of the drawing. Its operators name layers as /L0,
/// /L1..., fonts as /F0..., the font of hidden texts /FH, shadings as /S0..., pictures as /I0...,
/// and opacities as /A0 to /A255.
struct PageContent {
    double widthMm = 0, heightMm = 0;
    std::string stream; ///< packed operators
    std::vector<TvString> layers;
    std::vector<UsedFont> fonts;
    std::set<char16_t> hidden; ///< characters of hidden texts
    std::set<std::uint8_t> alphas;
    std::vector<UsedShading> shadings;
    std::vector<UsedImage> images;
    std::vector<PlacedLink> links;
};

/// Makes the content of a page. nullopt when @p stop was set meanwhile.
std::optional<PageContent> pdfContentOf(const Page& page, const PageOrder& order,
                                        const Stamp& stamp, const PdfOptions& options,
                                        const std::atomic<bool>* stop);

} // namespace plot
