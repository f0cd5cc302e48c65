#pragma once

#include <array>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>

#include "gs/fonts.h"

namespace gs {

/// A letter as its table tells it; the language of @p strokes is explained in stroke_letters.inc.
struct StrokeLetter {
    char32_t character;
    double width; ///< of what is drawn, in grid units
    std::string_view strokes;
};

/// A font of lines: what draughtsmen letter with, or the signs of tolerances. Letters are made
/// from their strokes when they are first asked for; accented ones are put together.
class StrokeFont : public Font
{
public:
    explicit StrokeFont(std::span<const StrokeLetter> letters);

    const Glyph* glyph(char32_t character) override;
    /// Letters do not change, and stand where their direction puts them; but a letter with an
    /// accent is the accented letter, and other accents stand over or under theirs.
    void shape(const TextStretch& stretch, std::vector<ShapedLetter>& out) override;

private:
    void addGroup(std::u32string_view text, std::size_t first, std::size_t end,
                  std::vector<ShapedLetter>& out);
    std::optional<Glyph> make(char32_t character) const;
    std::optional<Glyph> drawn(char32_t character) const;
    std::optional<Glyph> composed(char32_t character) const;
    void drawStrokes(Path& path, std::string_view strokes) const;

    std::unordered_map<char32_t, const StrokeLetter*> m_letters;
    std::unordered_map<char32_t, std::optional<Glyph>> m_made;
    std::array<const Glyph*, 128> m_usual{}; // of m_made, those that were asked for
};

/// The font that stands in for all stroke fonts.
std::span<const StrokeLetter> draughtingLetters();
/// The signs of geometric tolerances, by the letters that stand for them in drawings.
std::span<const StrokeLetter> toleranceSigns();

} // namespace gs
