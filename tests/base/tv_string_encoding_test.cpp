#include "arbitrary_text.h"

#include <unicode/ustring.h>

namespace {

using namespace std::string_literals;
using base::isWellFormedUtf8;
using base::utf16FromUtf8;
using base::utf8FromUtf16;

struct Malformed {
    const char* name;
    std::string bytes;
    std::u16string expected;
};

// One U+FFFD for each longest beginning of a code point, as decoders agree on it.
const Malformed kMalformed[] = {
    {"lone follower", "a\x80z", u"a\ufffdz"},
    {"overlong slash", "\xc0\xaf", u"\ufffd\ufffd"},
    {"overlong in three bytes", "\xe0\x80\xaf", u"\ufffd\ufffd\ufffd"},
    {"overlong in four bytes", "\xf0\x8f\xbf\xbf", u"\ufffd\ufffd\ufffd\ufffd"},
    {"surrogate", "\xed\xa0\x80", u"\ufffd\ufffd\ufffd"},
    {"above U+10FFFF", "\xf4\x90\x80\x80", u"\ufffd\ufffd\ufffd\ufffd"},
    {"lead byte of no form", "\xfe\xff\xf5", u"\ufffd\ufffd\ufffd"},
    {"cut short by the end", "a\xf0\x9f\x98", u"a\ufffd"},
    {"cut short by a letter", "\xe2\x82z", u"\ufffdz"},
    {"cut short by a lead byte", "\xe2\xe2\x82\xac", u"\ufffd\u20ac"},
    {"one byte at the end", "\xc3", u"\ufffd"},
};

TEST(Utf8, ReplacesIllFormedBytes)
{
    for (const Malformed& at : kMalformed) {
        EXPECT_EQ(unitsOf(utf16FromUtf8(at.bytes)), unitsOf(at.expected)) << at.name;
        EXPECT_FALSE(isWellFormedUtf8(at.bytes)) << at.name;
    }
}

TEST(Utf8, AcceptsTheEdgesOfEachForm)
{
    for (const char32_t point :
         {0x0, 0x7f, 0x80, 0x7ff, 0x800, 0xd7ff, 0xe000, 0xffff, 0x10000, 0x10ffff}) {
        std::u16string units(1, static_cast<char16_t>(point));
        if (point > 0xffff)
            units = {static_cast<char16_t>(0xd7c0 + (point >> 10)),
                     static_cast<char16_t>(0xdc00 + (point & 0x3ff))};
        const std::string bytes = utf8FromUtf16(units);
        EXPECT_TRUE(isWellFormedUtf8(bytes)) << std::hex << static_cast<unsigned>(point);
        EXPECT_EQ(unitsOf(utf16FromUtf8(bytes)), unitsOf(units));
    }
    EXPECT_TRUE(isWellFormedUtf8(""));
}

TEST(Utf8, WritesLoneSurrogatesAsReplacements)
{
    EXPECT_EQ(utf8FromUtf16(u"a\xd800z"s), "a\ufffdz");
    EXPECT_EQ(utf8FromUtf16(u"\xdc00\xd800"s), "\ufffd\ufffd");
    EXPECT_EQ(utf8FromUtf16(u"\xd800\xd800\xdc00"s), "\ufffd\U00010000");
}

TEST(WideText, KeepsSurrogatesAndReplacesWhatIsNoCodePoint)
{
    const std::wstring wide = {L'a', wchar_t(0x1f600), wchar_t(0xdc80), wchar_t(0x110000),
                               wchar_t(-1)};

    EXPECT_EQ(unitsOf(base::utf16FromWide(wide)), unitsOf(u"a\U0001F600\xdc80\ufffd\ufffd"s));
}

RC_GTEST_PROP(Utf8, RoundTripsEachWellFormedText, ())
{
    const auto points = *rc::gen::container<std::u32string>(
        rc::gen::suchThat(rc::gen::cast<char32_t>(rc::gen::inRange(0, 0x110000)),
                          [](char32_t point) { return point < 0xd800 || point > 0xdfff; }));
    const std::wstring wide(points.begin(), points.end());
    const std::u16string units = base::utf16FromWide(wide);

    const std::string bytes = utf8FromUtf16(units);

    RC_ASSERT(isWellFormedUtf8(bytes));
    RC_ASSERT(unitsOf(utf16FromUtf8(bytes)) == unitsOf(units));
}

std::u16string decodedByIcu(const std::string& bytes)
{
    std::u16string units(bytes.size(), u'\0');
    std::int32_t length = 0;
    std::int32_t replaced = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8WithSub(units.data(), static_cast<std::int32_t>(units.size()), &length,
                         bytes.data(), static_cast<std::int32_t>(bytes.size()), 0xfffd, &replaced,
                         &error);
    units.resize(static_cast<std::size_t>(length));
    return units;
}

RC_GTEST_PROP(Utf8, DecodesAnyBytesAsIcuDoes, ())
{
    // Bytes that nearly form something: lead bytes, followers and letters.
    const auto bytes = *rc::gen::container<std::string>(rc::gen::cast<char>(rc::gen::elementOf(
        std::vector<int>{'a', 0x80, 0x8f, 0x90, 0x9f, 0xa0, 0xbf, 0xc1, 0xc2, 0xe0, 0xe1, 0xed,
                         0xef, 0xf0, 0xf1, 0xf4, 0xf5, 0xff})));

    const std::u16string units = utf16FromUtf8(bytes);

    RC_ASSERT(unitsOf(units) == unitsOf(decodedByIcu(bytes)));
    RC_ASSERT(isWellFormedUtf8(bytes) == (utf8FromUtf16(units) == bytes));
}

RC_GTEST_PROP(Utf8, WritesWellFormedBytesForAnyUnits, ())
{
    const std::u16string units = *rc::gen::oneOf(arbitraryUnits(), arbitraryText());

    RC_ASSERT(isWellFormedUtf8(utf8FromUtf16(units)));
}

} // namespace
