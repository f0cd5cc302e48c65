#include "gs/fonts.h"

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include <base/tv_string.h>

#include "font_family.h"
#include "font_finder.h"
#include "gs/flat.h"
#include "outline_font.h"
#include "stroke_font.h"

namespace gs {

namespace {

// A drawing can name fonts without end; those above this number all look like the last resort.
constexpr std::size_t kMostFonts = 500;
// The same for characters that the machine is asked about.
constexpr std::size_t kMostQuestions = 5000;
constexpr double kSlant = 0.21;  // of a family without italics: tangent of 12 degrees
constexpr double kWeight = 0.06; // of a family without bold letters

Glyph box()
{
    Glyph glyph;
    addRectangle(glyph.path, {0, 0, 0.6, 1});
    glyph.advance = 0.85;
    glyph.gap = 0.25;
    return glyph;
}

} // namespace

struct Fonts::Impl {
    using FileKey = std::tuple<std::string, int, LetterChange>; // path, index

    Font& outline(const FontFamily& family)
    {
        const auto key = std::tuple(family.name, family.isBold, family.isItalic);
        if (const auto found = byFamily.find(key); found != byFamily.end())
            return *found->second;
        if (byFamily.size() >= kMostFonts)
            return draughting;
        const FontFile file = finder.find(family.name, family.isBold, family.isItalic);
        LetterChange change;
        change.slant = family.isItalic && !file.isItalic ? kSlant : 0;
        change.weight = family.isBold && !file.isBold ? kWeight : 0;
        // Paragraphs break where they did with the font that was meant.
        change.meanWidth = file.isOther ? usualWidth(family.name) : 0;
        Font* font = open(file, change);
        if (!font)
            font = &draughting;
        byFamily.emplace(key, font);
        return *font;
    }

    /// Null when the file is none, or cannot be read.
    Font* open(const FontFile& file, const LetterChange& change)
    {
        if (file.path.empty())
            return nullptr;
        const FileKey key(file.path, file.index, change);
        auto found = byFile.find(key);
        if (found == byFile.end())
            found =
                byFile.emplace(key, OutlineFont::open(reader, file.path, file.index, change)).first;
        return found->second.get();
    }

    /// From the fonts that lent letters before, else from one that the machine finds.
    const Glyph* borrowed(char32_t character)
    {
        for (Font* font : lenders)
            if (const Glyph* glyph = font->glyph(character))
                return glyph;
        if (lacked.contains(character) || lacked.size() >= kMostQuestions)
            return nullptr;
        if (Font* font = open(finder.withCharacter(character), {}))
            if (const Glyph* glyph = font->glyph(character)) {
                lenders.push_back(font);
                return glyph;
            }
        lacked.insert(character);
        return nullptr;
    }

    StrokeFont draughting{draughtingLetters()};
    StrokeFont signs{toleranceSigns()};
    FontFinder finder;
    FontReader reader; // before the fonts that it reads
    std::map<FileKey, std::unique_ptr<OutlineFont>> byFile;
    std::map<std::tuple<std::string, bool, bool>, Font*> byFamily; // not owned; in byFile
    std::vector<Font*> lenders{&draughting};                       // not owned
    std::set<char32_t> lacked;
    Glyph nobodyHasIt = box();
};

Fonts::Fonts() : m_impl(std::make_unique<Impl>()) {}

Fonts::~Fonts() = default;

Font& Fonts::find(const FontName& name)
{
    switch (const FontFamily family = familyOf(name); family.kind) {
    case FontFamily::Kind::Outline: return m_impl->outline(family);
    case FontFamily::Kind::Signs: return m_impl->signs;
    default: return m_impl->draughting;
    }
}

const Glyph& Fonts::glyph(Font& font, char32_t character)
{
    if (const Glyph* glyph = font.glyph(character))
        return *glyph;
    const Glyph* glyph = m_impl->borrowed(character);
    return glyph ? *glyph : m_impl->nobodyHasIt;
}

} // namespace gs
