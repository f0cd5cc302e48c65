#include <rapidcheck/gtest.h>

#include <base/path_rules.h>

namespace {

using namespace std::string_literals;

struct NativeCase {
    std::string native;
    std::u16string text;
};

const NativeCase kBothWays[] = {
    {"", u""},
    {"plan.dwg", u"plan.dwg"},
    {"\xC3\xA9", u"\u00E9"},                            // composed
    {"e\xCC\x81", u"e\u0301"},                          // decomposed: another name
    {"\xF0\x9F\x98\x80", u"\U0001F600"},                // beyond 16 bits
    {"\xEF\xBF\xBD", u"\uFFFD"},                        // is itself, and stands for nothing else
    {"\xF4\x8F\xBF\xBF", u"\U0010FFFF"},                // the last code
    {"a\\b", u"a\\b"},                                  // a backslash is a unit like any other
    {"\xFF", u"\xDCFF"s},                               // never in UTF-8
    {"\x80", u"\xDC80"s},                               // continues nothing
    {"\xC0\xAF", u"\xDCC0\xDCAF"s},                     // an overlong slash is no slash
    {"\xED\xA0\x80", u"\xDCED\xDCA0\xDC80"s},           // a surrogate is no character
    {"\xF4\x90\x80\x80", u"\xDCF4\xDC90\xDC80\xDC80"s}, // beyond the last code
    {"\xE6\xBC", u"\xDCE6\xDCBC"s},                     // cut off
    {"\xE6\xBC/", u"\xDCE6\xDCBC/"s},                   // cut off by a separator, which stays one
    {"\xC3\xC3\xA9", u"\xDCC3\u00E9"s},                 // goes on after what is wrong
};

TEST(NativePath, NamesEveryFileOnDisk)
{
    for (const NativeCase& row : kBothWays) {
        const std::string shown = testing::PrintToString(row.native);
        EXPECT_TRUE(base::pathFromNative(row.native) == TvString(row.text)) << shown;
        EXPECT_EQ(base::nativePath(TvString(row.text)), row.native) << shown;
    }
}

TEST(NativePath, KeepsLoneSurrogatesApartFromEveryOtherName)
{
    const TvString lone(u"\xD800"s), other(u"\xDC7F"s), replacement(u"\uFFFD");

    EXPECT_NE(base::nativePath(lone), base::nativePath(other));
    EXPECT_NE(base::nativePath(lone), base::nativePath(replacement));
}

TEST(NativePath, KeepsANulWhereItStands)
{
    EXPECT_EQ(base::nativePath(TvString(u"a.dwg\0.txt"s)), "a.dwg\0.txt"s);
}

RC_GTEST_PROP(NativePathLaw, AnyBytesComeBack, (const std::string& bytes))
{
    RC_ASSERT(base::nativePath(base::pathFromNative(bytes)) == bytes);
}

RC_GTEST_PROP(NativePathLaw, BytesThatAreNearlyUtf8ComeBack, ())
{
    const auto pieces = *rc::gen::container<std::vector<std::string>>(
        rc::gen::element<std::string>("a", "/", "\xC3\xA9", "\xF0\x9F\x98\x80", "\xED\xA0\xBD",
                                      "\xED\xB8\x80", "\xF0\x9F", "\x98", "\xC3", "\xE6\xBC\xA2"));
    std::string bytes;
    for (const std::string& piece : pieces)
        bytes += piece;

    RC_ASSERT(base::nativePath(base::pathFromNative(bytes)) == bytes);
}

} // namespace
