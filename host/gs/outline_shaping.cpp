// How an outline font sets letters that look at their neighbours.

#include <algorithm>

#include "letter_shaper.h"
#include "outline_font.h"
#include "text_codes.h"
#include "text_directions.h"

namespace gs {

namespace {

// Drawings without end could ask for forms without end; what is beyond is drawn, but is not found
// by who searches.
constexpr std::size_t kMostForms = 20'000;
constexpr std::size_t kLongestGroup = 64; // characters that a form is said to stand for

} // namespace

OutlineFont::~OutlineFont()
{
    m_shaper.reset(); // reads from the face
    FT_Done_Face(m_face);
}

const Glyph* OutlineFont::form(std::uint16_t index, std::u16string text)
{
    auto key = std::pair(index, std::move(text));
    auto found = m_forms.find(key);
    if (found == m_forms.end() && m_forms.size() >= kMostForms) {
        key.second.clear();
        found = m_forms.find(key);
    }
    if (found != m_forms.end())
        return &found->second;
    std::optional<Glyph> made = index == 0 ? std::nullopt : numbered(index);
    if (!made)
        return nullptr;
    made->form = index;
    made->text = key.second;
    return &m_forms.emplace(key, std::move(*made)).first->second;
}

void OutlineFont::shape(const TextStretch& stretch, std::vector<ShapedLetter>& out)
{
    if (!FT_IS_SFNT(m_face))
        return Font::shape(stretch, out);
    if (!m_shaper)
        m_shaper = std::make_unique<LetterShaper>(m_face);
    std::vector<ScriptRun> runs = scriptsOf(stretch);
    if (stretch.isRightToLeft)
        std::reverse(runs.begin(), runs.end());
    for (const ScriptRun& run : runs)
        addShaped(stretch, run, out);
}

void OutlineFont::addShaped(const TextStretch& stretch, const ScriptRun& run,
                            std::vector<ShapedLetter>& out)
{
    const LetterShaper::Result made = m_shaper->run(stretch, run);
    const std::size_t count = made.letters.size();
    const double unit = m_scale * m_widthFactor;
    for (std::size_t i = 0; i < count;) {
        const std::size_t from = made.letters[i].cluster;
        std::size_t next = i + 1;
        while (next < count && made.letters[next].cluster == from)
            ++next;
        // Groups to the right are of characters behind it, or of those before.
        const std::size_t to = stretch.isRightToLeft
                                   ? (i == 0 ? run.end : made.letters[i - 1].cluster)
                                   : (next == count ? run.end : made.letters[next].cluster);
        const auto group = stretch.text.substr(from, to > from ? to - from : 1);
        for (std::size_t l = i; l < next; ++l) {
            const hb_glyph_position_t& place = made.places[l];
            ShapedLetter letter;
            letter.glyph = letterOf(made.letters[l].codepoint, group, l == i, next == i + 1);
            if (!letter.glyph)
                continue;
            letter.y = place.y_offset * m_scale;
            letter.x = place.x_offset * unit + letter.y * m_change.slant;
            letter.advance = place.x_advance * unit +
                             (place.x_advance > 0 ? m_change.weight * m_widthFactor : 0);
            letter.character = static_cast<std::uint32_t>(from);
            letter.endsGroup = l + 1 == next;
            letter.isJoined = isJoining(group.front());
            out.push_back(letter);
        }
        i = next;
    }
}

/// @param isFirst, isAlone  of the letters that @p group has become.
const Glyph* OutlineFont::letterOf(FT_UInt index, std::u32string_view group, bool isFirst,
                                   bool isAlone)
{
    std::u32string seen(group.substr(0, kLongestGroup));
    std::erase_if(seen, isUnseen);
    if (isAlone && seen.size() == 1 && FT_Get_Char_Index(m_face, seen.front()) == index)
        return glyph(seen.front());
    if (index == 0)
        return glyph(U'\uFFFD');
    return form(static_cast<std::uint16_t>(index), isFirst ? utf16Of(seen) : std::u16string());
}

} // namespace gs
