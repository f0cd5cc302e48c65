#include "font_family.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

#include <base/tv_string.h>

namespace gs {

namespace {

constexpr std::size_t kLongestName = 255;

struct KnownFile {
    std::string_view stem;
    std::string_view family;
};

// Files whose name is not that of their family. In front of a mark for bold or italic.
constexpr KnownFile kKnown[] = {
    {"times", "Times New Roman"},
    {"cour", "Courier New"},
    {"ariblk", "Arial Black"},
    {"arialn", "Arial Narrow"},
    {"trebuc", "Trebuchet MS"},
    {"comic", "Comic Sans MS"},
    {"l_10646", "Lucida Sans Unicode"},
    {"lucon", "Lucida Console"},
    {"segoeui", "Segoe UI"},
    {"micross", "Microsoft Sans Serif"},
    {"framd", "Franklin Gothic Medium"},
    {"pala", "Palatino Linotype"},
    {"gara", "Garamond"},
    {"bookos", "Bookman Old Style"},
    {"gothic", "Century Gothic"},
    {"liberationsans", "Liberation Sans"},
    {"dejavusans", "DejaVu Sans"},
};

struct Mark {
    std::string_view ending;
    bool isBold, isItalic;
};

constexpr Mark kMarks[] = {
    {"bi", true, true}, {"z", true, true},  {"bd", true, false},
    {"b", true, false}, {"i", false, true}, {"", false, false},
};

struct KnownWidth {
    std::string_view family; // in small letters
    double width;
};

constexpr KnownWidth kWidths[] = {
    {"arial", 0.683},   {"helvetica", 0.681}, {"times new roman", 0.693}, {"courier new", 1.05},
    {"calibri", 0.708}, {"tahoma", 0.69},     {"verdana", 0.79},          {"arial narrow", 0.56},
};

std::string lowered(std::string text)
{
    for (char& c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

bool takeEnding(std::string& name, std::string_view ending)
{
    if (name.size() <= ending.size() || lowered(name).substr(name.size() - ending.size()) != ending)
        return false;
    name.resize(name.size() - ending.size());
    return true;
}

/// The family of a font file, by the name that the file usually has.
FontFamily familyOfFile(const std::string& stem)
{
    const std::string low = lowered(stem);
    for (const KnownFile& known : kKnown)
        for (const Mark& mark : kMarks)
            if (low.size() == known.stem.size() + mark.ending.size() &&
                low.starts_with(known.stem) && low.ends_with(mark.ending))
                return {FontFamily::Kind::Outline, std::string(known.family), mark.isBold,
                        mark.isItalic};
    // Families of one word name their files like themselves, with the mark behind it.
    for (const std::string_view word :
         {"arial", "calibri", "verdana", "tahoma", "georgia", "consola", "cambria"})
        for (const Mark& mark : kMarks)
            if (low.size() == word.size() + mark.ending.size() && low.starts_with(word) &&
                low.ends_with(mark.ending))
                return {FontFamily::Kind::Outline,
                        word == "consola" ? "Consolas" : std::string(word), mark.isBold,
                        mark.isItalic};
    return {FontFamily::Kind::Outline, stem, false, false};
}

} // namespace

FontFamily familyOf(const FontName& name)
{
    std::string text = base::utf8FromUtf16(std::u16string_view(name.name).substr(0, kLongestName));
    std::erase(text, '\0');
    FontFamily family;
    if (name.isFamily) {
        family = {FontFamily::Kind::Outline, text, false, false};
    } else {
        if (const auto slash = text.find_last_of("/\\"); slash != std::string::npos)
            text.erase(0, slash + 1);
        if (takeEnding(text, ".ttf") || takeEnding(text, ".ttc") || takeEnding(text, ".otf"))
            family = familyOfFile(text);
        else
            takeEnding(text, ".shx");
    }
    const std::string low = lowered(text);
    if (low == "gdt")
        return {FontFamily::Kind::Signs, {}, false, false};
    family.isBold = family.isBold || name.isBold;
    family.isItalic = family.isItalic || name.isItalic;
    return family;
}

double usualWidth(std::string_view family)
{
    const std::string low = lowered(std::string(family));
    for (const KnownWidth& known : kWidths)
        if (low == known.family)
            return known.width;
    return 0;
}

} // namespace gs
