#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct _FcConfig;

namespace gs {

/// A font file of the machine, and what it lacks of what was wanted.
struct FontFile {
    std::string path; ///< empty: there is none
    int index = 0;
    bool isBold = false;
    bool isItalic = false;
    bool isOther = false; ///< of another family than was asked for
};

/// Asks the machine which fonts it has.
class FontFinder
{
public:
    FontFinder();
    ~FontFinder();
    FontFinder(const FontFinder&) = delete;
    FontFinder& operator=(const FontFinder&) = delete;

    /// The family, or the nearest that there is.
    FontFile find(const std::string& family, bool isBold, bool isItalic) const;
    /// A font with that character, bold or italic if there is one; an empty path when none has it.
    FontFile withCharacter(char32_t character, bool isBold, bool isItalic) const;

private:
    _FcConfig* m_config; // owned; null on a machine without fonts
};

} // namespace gs
