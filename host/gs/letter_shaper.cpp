#include "letter_shaper.h"

#include <array>

#include <hb-ft.h>

namespace gs {

namespace {

hb_feature_t without(const char (&tag)[5])
{
    return {HB_TAG(tag[0], tag[1], tag[2], tag[3]), 0, HB_FEATURE_GLOBAL_START,
            HB_FEATURE_GLOBAL_END};
}

/// Scripts whose letters otherwise stand one by one: beside an accent they do so as well, or the
/// same word would be as wide as its letters in one line and narrower in the next.
bool isSetPlainly(hb_script_t script)
{
    return script == HB_SCRIPT_LATIN || script == HB_SCRIPT_GREEK || script == HB_SCRIPT_CYRILLIC ||
           script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED ||
           script == HB_SCRIPT_UNKNOWN;
}

bool hasNoScript(hb_script_t script)
{
    return script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED ||
           script == HB_SCRIPT_UNKNOWN;
}

} // namespace

std::vector<ScriptRun> scriptsOf(const TextStretch& stretch)
{
    hb_unicode_funcs_t* const unicode = hb_unicode_funcs_get_default();
    std::vector<ScriptRun> runs;
    for (std::size_t i = stretch.first; i < stretch.first + stretch.count; ++i) {
        const hb_script_t script = hb_unicode_script(unicode, stretch.text[i]);
        if (runs.empty())
            runs.push_back({i, i + 1, script});
        else if (hasNoScript(script) || script == runs.back().script)
            runs.back().end = i + 1;
        else if (hasNoScript(runs.back().script))
            runs.back() = {runs.back().first, i + 1, script};
        else
            runs.push_back({i, i + 1, script});
    }
    return runs;
}

LetterShaper::LetterShaper(FT_Face face)
    : m_face(hb_ft_face_create(face, nullptr)), m_font(hb_font_create(m_face.get())),
      m_buffer(hb_buffer_create())
{
    // A weight or width within one file.
    if (const FT_Long instance = face->face_index >> 16; instance > 0)
        hb_font_set_var_named_instance(m_font.get(), static_cast<unsigned>(instance - 1));
}

LetterShaper::Result LetterShaper::run(const TextStretch& stretch, const ScriptRun& run)
{
    hb_buffer_t* const to = m_buffer.get();
    hb_buffer_clear_contents(to);
    hb_buffer_add_utf32(to, reinterpret_cast<const std::uint32_t*>(stretch.text.data()),
                        static_cast<int>(stretch.text.size()), static_cast<unsigned>(run.first),
                        static_cast<int>(run.end - run.first));
    hb_buffer_set_direction(to, stretch.isRightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb_buffer_set_script(to, run.script);
    hb_buffer_set_language(to, HB_LANGUAGE_INVALID); // not that of the machine
    hb_buffer_set_flags(to, HB_BUFFER_FLAG_REMOVE_DEFAULT_IGNORABLES);
    const std::array plain = {without("kern"), without("liga"), without("clig"), without("calt")};
    const bool isPlain = isSetPlainly(run.script);
    hb_shape(m_font.get(), to, isPlain ? plain.data() : nullptr,
             isPlain ? static_cast<unsigned>(plain.size()) : 0);
    unsigned count = 0;
    const hb_glyph_info_t* const letters = hb_buffer_get_glyph_infos(to, &count);
    return {{letters, count}, {hb_buffer_get_glyph_positions(to, nullptr), count}};
}

} // namespace gs
