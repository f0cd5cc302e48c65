#pragma once

#include <string>

#include <dwg/version.h>

namespace dwg {

/// A string as a drawing stores it: up to 2004 bytes in the drawing's code page, from 2007 on
/// UTF-16. The other member is empty. A final NUL, which some programs write, stays part of it.
struct RawText {
    std::string narrow;
    std::u16string wide;

    bool empty() const { return narrow.empty() && wide.empty(); }
    friend bool operator==(const RawText&, const RawText&) = default;
};

/// A text of plain ASCII letters in the form that @p version stores.
inline RawText asciiText(Version version, std::string_view text)
{
    if (hasStringStream(version))
        return {{}, std::u16string(text.begin(), text.end())};
    return {std::string(text), {}};
}

} // namespace dwg
