#pragma once

#include <memory>
#include <span>
#include <vector>

#include <hb.h>

#include <ft2build.h>
#include FT_FREETYPE_H

#include "gs/fonts.h"

namespace gs {

/// Characters of one script.
struct ScriptRun {
    std::size_t first = 0, end = 0;
    hb_script_t script = HB_SCRIPT_COMMON;
};

/// Signs that all scripts share are of that before them; at the beginning, of that behind.
std::vector<ScriptRun> scriptsOf(const TextStretch& stretch);

/// Sets letters by the rules of a font file.
class LetterShaper
{
public:
    /// @param face  not owned; outlives this.
    explicit LetterShaper(FT_Face face);

    /// Of what run() set, from left to right. In units of the face; cluster is the first character
    /// that a letter stands for.
    struct Result {
        std::span<const hb_glyph_info_t> letters;
        std::span<const hb_glyph_position_t> places;
    };
    /// Good until the next call.
    Result run(const TextStretch& stretch, const ScriptRun& run);

private:
    struct End {
        void operator()(hb_face_t* face) const { hb_face_destroy(face); }
        void operator()(hb_font_t* font) const { hb_font_destroy(font); }
        void operator()(hb_buffer_t* buffer) const { hb_buffer_destroy(buffer); }
    };
    std::unique_ptr<hb_face_t, End> m_face;
    std::unique_ptr<hb_font_t, End> m_font;
    std::unique_ptr<hb_buffer_t, End> m_buffer;
};

} // namespace gs
