#pragma once

#include <string>
#include <vector>

#include <rapidcheck/gtest.h>

#include <base/tv_string.h>

/// Text as it comes from outside: words, numbers, case twins, accents, surrogate pairs and lone
/// halves of them, controls. Its pieces repeat often enough that two texts are often equal in part.
inline rc::Gen<std::u16string> arbitraryText()
{
    using namespace std::string_literals;
    static const std::vector<std::u16string> kPieces = {
        u"Plan",    u"plan",    u"PLAN",       u"A",          u"a",          u"B",      u"b",
        u"9",       u"10",      u"010",        u"0",          u" ",          u"-",      u".",
        u"\u00e9",  u"\u00c9",  u"e\u0301",    u"\u00df",     u"ss",         u"\u1e9e", u"\u0130",
        u"i",       u"I",       u"\u0131",     u"\u03a3",     u"\u03c3",     u"\u03c2", u"\u212a",
        u"k",       u"K",       u"\U00010400", u"\U00010428", u"\U0001F600", u"\u6f22", u"\xd801"s,
        u"\xdc00"s, u"\xdc80"s, u"\x202e"s,    u"\x1b"s,      u"\0"s,        u"%",
    };
    return rc::gen::map(
        rc::gen::container<std::vector<std::u16string>>(rc::gen::elementOf(kPieces)),
        [](const std::vector<std::u16string>& pieces) {
            std::u16string text;
            for (const std::u16string& piece : pieces)
                text += piece;
            return text;
        });
}

/// Any units at all.
inline rc::Gen<std::u16string> arbitraryUnits()
{
    return rc::gen::map<std::vector<std::uint16_t>>([](const std::vector<std::uint16_t>& units) {
        return std::u16string(units.begin(), units.end());
    });
}

/// The units as numbers: what a failing property shows.
inline std::vector<unsigned> unitsOf(std::u16string_view text)
{
    return {text.begin(), text.end()};
}
