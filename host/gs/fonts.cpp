#include "gs/fonts.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <vector>

#include <base/tv_string.h>

#include "font_family.h"
#include "font_finder.h"
#include "gs/flat.h"
#include "outline_font.h"
#include "stroke_font.h"
#include "text_directions.h"

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

/// Characters of a text that one font writes.
struct FontRun {
    Font* font = nullptr; // not owned; null: nobody has them
    std::size_t first = 0, count = 0;
};

} // namespace

void Font::shape(const TextStretch& stretch, std::vector<ShapedLetter>& out)
{
    for (std::size_t i = 0; i < stretch.count; ++i) {
        const std::size_t at = stretch.first + (stretch.isRightToLeft ? stretch.count - 1 - i : i);
        const char32_t character = stretch.text[at];
        if (isUnseen(character))
            continue;
        const Glyph* letter = stretch.isRightToLeft ? glyph(mirrored(character)) : nullptr;
        if (!letter)
            letter = glyph(character);
        if (letter)
            out.push_back({letter, 0, 0, letter->advance, static_cast<std::uint32_t>(at)});
    }
}

struct Fonts::Impl {
    /// Letters that a font borrows are bold or italic as its own are.
    struct Look {
        bool isBold = false, isItalic = false;

        std::size_t number() const { return (isBold ? 2U : 0U) + (isItalic ? 1U : 0U); }
    };
    Look lookOf(const Font& font) const
    {
        const auto found = looks.find(&font);
        return found == looks.end() ? Look() : found->second;
    }
    static LetterChange changeOf(const FontFile& file, Look look)
    {
        LetterChange change;
        change.slant = look.isItalic && !file.isItalic ? kSlant : 0;
        change.weight = look.isBold && !file.isBold ? kWeight : 0;
        return change;
    }
    /// Null when no font of the machine has it.
    Font* withCharacter(char32_t character, Look look)
    {
        const FontFile file = finder.withCharacter(character, look.isBold, look.isItalic);
        return open(file, changeOf(file, look));
    }

    using FileKey = std::tuple<std::string, int, LetterChange>; // path, index

    Font& outline(const FontFamily& family)
    {
        const auto key = std::tuple(family.name, family.isBold, family.isItalic);
        if (const auto found = byFamily.find(key); found != byFamily.end())
            return *found->second;
        if (byFamily.size() >= kMostFonts)
            return draughting;
        const FontFile file = finder.find(family.name, family.isBold, family.isItalic);
        LetterChange change = changeOf(file, {family.isBold, family.isItalic});
        // Paragraphs break where they did with the font that was meant.
        change.meanWidth = file.isOther ? usualWidth(family.name) : 0;
        Font* font = open(file, change);
        if (!font)
            font = &draughting;
        else
            looks.emplace(font, Look{family.isBold, family.isItalic});
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

    static bool hasAll(Font& font, std::u32string_view group)
    {
        return std::all_of(group.begin(), group.end(), [&font](char32_t character) {
            return isUnseen(character) || font.glyph(character);
        });
    }

    /// A font that has a letter and all its marks; null: none has.
    Font* lenderOf(std::u32string_view group, Look look)
    {
        std::vector<Font*>& known = lenders[look.number()];
        for (Font* font : known)
            if (hasAll(*font, group))
                return font;
        for (const char32_t character : group) {
            if (isUnseen(character) || asked.size() >= kMostQuestions ||
                !asked.emplace(character, look.number()).second)
                continue;
            Font* const font = withCharacter(character, look);
            if (!font || std::find(known.begin(), known.end(), font) != known.end())
                continue;
            known.push_back(font);
            if (hasAll(*font, group))
                return font;
        }
        return nullptr;
    }

    /// Where one font after the other writes. A letter and its marks are of one font if there is
    /// one that has them all.
    std::vector<FontRun> runsOf(Font& wanted, const TextStretch& stretch)
    {
        std::vector<FontRun> runs;
        const auto add = [&runs](Font* font, std::size_t first, std::size_t count) {
            if (!runs.empty() && runs.back().font == font)
                runs.back().count += count;
            else
                runs.push_back({font, first, count});
        };
        const std::size_t end = stretch.first + stretch.count;
        for (std::size_t at = stretch.first; at < end;) {
            const std::size_t next = endOfGroup(stretch.text, at, end);
            const auto group = stretch.text.substr(at, next - at);
            Font* font = hasAll(wanted, group) ? &wanted : nullptr;
            if (!font && !runs.empty() && runs.back().font && hasAll(*runs.back().font, group))
                font = runs.back().font;
            if (!font)
                font = lenderOf(group, lookOf(wanted));
            if (font) {
                add(font, at, group.size());
            } else {
                for (std::size_t i = at; i < next; ++i)
                    add(fontFor(wanted, stretch.text[i]), i, 1);
            }
            at = next;
        }
        return runs;
    }

    /// Null: nobody has it.
    Font* fontFor(Font& wanted, char32_t character)
    {
        const std::u32string_view alone(&character, 1);
        return hasAll(wanted, alone) ? &wanted : lenderOf(alone, lookOf(wanted));
    }

    void addBoxes(const TextStretch& stretch, std::vector<ShapedLetter>& out) const
    {
        for (std::size_t i = 0; i < stretch.count; ++i) {
            const std::size_t at =
                stretch.first + (stretch.isRightToLeft ? stretch.count - 1 - i : i);
            out.push_back(
                {&nobodyHasIt, 0, 0, nobodyHasIt.advance, static_cast<std::uint32_t>(at)});
        }
    }

    /// From the fonts that lent letters before, else from one that the machine finds.
    const Glyph* borrowed(char32_t character, Look look)
    {
        std::vector<Font*>& known = lenders[look.number()];
        for (Font* font : known)
            if (const Glyph* glyph = font->glyph(character))
                return glyph;
        if (lacked.contains(character) || lacked.size() >= kMostQuestions)
            return nullptr;
        if (Font* font = withCharacter(character, look))
            if (const Glyph* glyph = font->glyph(character)) {
                known.push_back(font);
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
    std::map<const Font*, Look> looks;                             // of those in byFamily
    std::array<std::vector<Font*>, 4> lenders{
        // by the number of a look; not owned
        {{&draughting}, {&draughting}, {&draughting}, {&draughting}}};
    std::set<char32_t> lacked;
    std::set<std::pair<char32_t, std::size_t>> asked;
    Glyph nobodyHasIt = box();
};

void Fonts::shape(Font& font, const TextStretch& stretch, std::vector<ShapedLetter>& out)
{
    const auto runs = m_impl->runsOf(font, stretch);
    const auto add = [&](const FontRun& run) {
        const TextStretch part{stretch.text, run.first, run.count, stretch.isRightToLeft};
        if (run.font)
            run.font->shape(part, out);
        else
            m_impl->addBoxes(part, out);
    };
    if (stretch.isRightToLeft)
        std::for_each(runs.rbegin(), runs.rend(), add);
    else
        std::for_each(runs.begin(), runs.end(), add);
}

std::vector<ShapedLetter> Fonts::line(Font& font, std::u32string_view text)
{
    std::vector<ShapedLetter> letters;
    if (!isChangedByNeighbours(text)) {
        letters.reserve(text.size());
        for (std::size_t i = 0; i < text.size(); ++i) {
            const Glyph& letter = glyph(font, text[i]);
            letters.push_back({&letter, 0, 0, letter.advance, static_cast<std::uint32_t>(i)});
        }
        return letters;
    }
    const auto stretches = stretchesOf(text, levelsOf(text));
    for (const TextStretch& stretch : stretches)
        shape(font, stretch, letters);
    return letters;
}

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

Fonts& Fonts::ofThread()
{
    // Finding fonts takes longer than drawing a plan: they stay for the next list.
    thread_local Fonts known;
    return known;
}

const Glyph& Fonts::glyph(Font& font, char32_t character)
{
    if (const Glyph* glyph = font.glyph(character))
        return *glyph;
    const Glyph* glyph = m_impl->borrowed(character, m_impl->lookOf(font));
    return glyph ? *glyph : m_impl->nobodyHasIt;
}

} // namespace gs
