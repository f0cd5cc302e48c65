#include "font_finder.h"

#include <memory>

#include <fontconfig/fontconfig.h>

namespace gs {

namespace {

struct PatternEnd {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using Pattern = std::unique_ptr<FcPattern, PatternEnd>;

struct LettersEnd {
    void operator()(FcCharSet* letters) const { FcCharSetDestroy(letters); }
};
using Letters = std::unique_ptr<FcCharSet, LettersEnd>;

// Where no other font is near.
constexpr char kLastFamily[] = "DejaVu Sans";

void addFamily(const Pattern& pattern, const char* family)
{
    FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
}

void addLook(const Pattern& pattern, bool isBold, bool isItalic)
{
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, isBold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern.get(), FC_SLANT, isItalic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
}

Pattern match(FcConfig* config, const Pattern& wanted)
{
    FcConfigSubstitute(config, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    return Pattern(FcFontMatch(config, wanted.get(), &result));
}

bool isFace(FcPattern* face, const FontFile& file)
{
    FcChar8* path = nullptr;
    int index = 0;
    return FcPatternGetString(face, FC_FILE, 0, &path) == FcResultMatch &&
           file.path == reinterpret_cast<const char*>(path) &&
           FcPatternGetInteger(face, FC_INDEX, 0, &index) == FcResultMatch && index == file.index;
}

/// The machine's own record of a face: what a search answers also has what the machine's rules
/// would do to it, such as to call an upright face slanted because they would have it sheared.
FcPattern* recordOf(FcConfig* config, const FontFile& file)
{
    for (const FcSetName name : {FcSetSystem, FcSetApplication})
        if (const FcFontSet* const set = FcConfigGetFonts(config, name))
            for (int i = 0; i < set->nfont; ++i)
                if (isFace(set->fonts[i], file))
                    return set->fonts[i];
    return nullptr;
}

FontFile fileOf(FcConfig* config, const Pattern& found)
{
    FontFile file;
    FcChar8* path = nullptr;
    if (!found || FcPatternGetString(found.get(), FC_FILE, 0, &path) != FcResultMatch)
        return file;
    file.path = reinterpret_cast<const char*>(path);
    FcPatternGetInteger(found.get(), FC_INDEX, 0, &file.index);
    FcPattern* record = recordOf(config, file);
    if (!record)
        record = found.get();
    int weight = FC_WEIGHT_REGULAR, slant = FC_SLANT_ROMAN;
    FcPatternGetInteger(record, FC_WEIGHT, 0, &weight);
    FcPatternGetInteger(record, FC_SLANT, 0, &slant);
    file.isBold = weight >= FC_WEIGHT_DEMIBOLD;
    file.isItalic = slant != FC_SLANT_ROMAN;
    return file;
}

bool hasFamily(const Pattern& found, const std::string& family)
{
    FcChar8* name = nullptr;
    for (int i = 0; FcPatternGetString(found.get(), FC_FAMILY, i, &name) == FcResultMatch; ++i)
        if (FcStrCmpIgnoreCase(name, reinterpret_cast<const FcChar8*>(family.c_str())) == 0)
            return true;
    return false;
}

} // namespace

// A configuration of our own, which ends with us: the one of the process lives to its end, where
// nobody may end it for those who still use it.
FontFinder::FontFinder() : m_config(FcInitLoadConfigAndFonts()) {}

FontFinder::~FontFinder()
{
    if (m_config)
        FcConfigDestroy(m_config);
}

FontFile FontFinder::find(const std::string& family, bool isBold, bool isItalic) const
{
    const Pattern wanted(m_config ? FcPatternCreate() : nullptr);
    if (!wanted)
        return {};
    if (!family.empty())
        addFamily(wanted, family.c_str());
    addFamily(wanted, kLastFamily);
    addLook(wanted, isBold, isItalic);
    FcPatternAddBool(wanted.get(), FC_SCALABLE, FcTrue);
    const Pattern found = match(m_config, wanted);
    FontFile file = fileOf(m_config, found);
    file.isOther = !found || !hasFamily(found, family);
    return file;
}

FontFile FontFinder::withCharacter(char32_t character, bool isBold, bool isItalic) const
{
    const Pattern wanted(m_config ? FcPatternCreate() : nullptr);
    const Letters letters(FcCharSetCreate());
    if (!wanted || !letters)
        return {};
    FcCharSetAddChar(letters.get(), character);
    addFamily(wanted, kLastFamily);
    addLook(wanted, isBold, isItalic);
    FcPatternAddCharSet(wanted.get(), FC_CHARSET, letters.get());
    FcPatternAddBool(wanted.get(), FC_SCALABLE, FcTrue);
    const Pattern found = match(m_config, wanted);
    FcCharSet* has = nullptr; // the pattern's
    if (!found || FcPatternGetCharSet(found.get(), FC_CHARSET, 0, &has) != FcResultMatch ||
        !FcCharSetHasChar(has, character))
        return {};
    return fileOf(m_config, found);
}

} // namespace gs
