#include "arbitrary_text.h"

#include <clocale>
#include <cmath>
#include <limits>
#include <locale>

namespace {

using namespace std::string_literals;

template <class... Args>
TvString formatted(const TvString& pattern, const Args&... args)
{
    return TvString().format(pattern, args...);
}

TEST(Format, WritesEachKindOfText)
{
    EXPECT_EQ(formatted(u"%ls", u"Plan"), u"Plan");
    EXPECT_EQ(formatted(u"%ls", TvString(u"Plan")), u"Plan");
    EXPECT_EQ(formatted(u"%s", "Gr\u00fc\u00dfe"), u"Gr\u00fc\u00dfe");
    EXPECT_EQ(formatted(u"%s", "Gr\u00fc\u00dfe"s), u"Gr\u00fc\u00dfe");
    EXPECT_EQ(formatted(u"%ls", L"Gr\u00fc\u00dfe \U0001F600"), u"Gr\u00fc\u00dfe \U0001F600");
    EXPECT_EQ(formatted(u"%s", u"wide"), u"wide");
    EXPECT_EQ(formatted(u"%hs|%ls", "narrow", "narrow"), u"narrow|narrow");
    EXPECT_EQ(formatted(u"%ls|%s", static_cast<const TvChar*>(nullptr),
                        static_cast<const char*>(nullptr)),
              u"|");
}

TEST(Format, PadsAndCutsTexts)
{
    EXPECT_EQ(formatted(u"%5ls|", u"ab"), u"   ab|");
    EXPECT_EQ(formatted(u"%-5ls|", u"ab"), u"ab   |");
    EXPECT_EQ(formatted(u"%2ls|", u"abc"), u"abc|");
    EXPECT_EQ(formatted(u"%.2ls|", u"abc"), u"ab|");
    EXPECT_EQ(formatted(u"%.0ls|%.ls|", u"abc", u"abc"), u"||");
    EXPECT_EQ(formatted(u"%5.1s|", "\u00fcber"), u"    \u00fc|");
}

TEST(Format, NeverPartsASurrogatePair)
{
    EXPECT_EQ(formatted(u"%.3ls", u"ab\U0001F600"), u"ab");
    EXPECT_EQ(formatted(u"%.4ls", u"ab\U0001F600"), u"ab\U0001F600");
    EXPECT_EQ(formatted(u"%.1s|", "\U0001F600"), u"|");
    EXPECT_EQ(unitsOf(formatted(u"%.1ls", u"\xd83d\xd83d"s)), unitsOf(u"\xd83d"s)) << "no pair";
}

TEST(Format, WritesWholeNumbers)
{
    EXPECT_EQ(formatted(u"%d %i %u", -1, 2, 3u), u"-1 2 3");
    EXPECT_EQ(formatted(u"%5d|%-5d|%05d|%+d|% d", 42, 42, -42, 42, 42),
              u"   42|42   |-0042|+42| 42");
    EXPECT_EQ(formatted(u"%.3d|%5.3d|%-05d|%05.3d", 7, 7, 7, 7), u"007|  007|7    |  007");
    EXPECT_EQ(formatted(u"%.0d|%.0d", 0, 1), u"|1");
    EXPECT_EQ(
        formatted(u"%lld %ld %hd %hhd", std::numeric_limits<std::int64_t>::min(), 1L, short(2), 3),
        u"-9223372036854775808 1 2 3");
    EXPECT_EQ(formatted(u"%llu", std::numeric_limits<std::uint64_t>::max()),
              u"18446744073709551615");
    EXPECT_EQ(formatted(u"%d", true), u"1");
}

TEST(Format, WritesHexadecimalInTheWidthOfTheArgument)
{
    EXPECT_EQ(formatted(u"%x %X %#x %#X", 255, 255, 255, 255), u"ff FF 0xff 0XFF");
    EXPECT_EQ(formatted(u"%08x|%#010x|%8x|%.4x", 0x2au, 0x2au, 0x2au, 0x2au),
              u"0000002a|0x0000002a|      2a|002a");
    EXPECT_EQ(formatted(u"%x %llx %hx", -1, std::int64_t(-1), std::int16_t(-2)),
              u"ffffffff ffffffffffffffff fffe");
    EXPECT_EQ(formatted(u"%#x|%#.0x|", 0, 0), u"0||");
}

TEST(Format, WritesCharacters)
{
    EXPECT_EQ(formatted(u"%c%c%c", 'a', u'\u00fc', 65), u"a\u00fcA");
    EXPECT_EQ(formatted(u"%c|%3c|%-3c|", U'\U0001F600', u'x', u'y'), u"\U0001F600|  x|y  |");
    EXPECT_EQ(formatted(u"%c%c%c", 0x110000, -1, U'\U0010FFFF'), u"\ufffd\ufffd\U0010FFFF");
    EXPECT_EQ(unitsOf(formatted(u"%c%c", char16_t(0xdc80), 0)), unitsOf(u"\xdc80\0"s));
    EXPECT_EQ(formatted(u"%d %x", u'A', u'A'), u"65 41")
        << "its number, where the pattern wants one";
}

TEST(Format, WritesReals)
{
    EXPECT_EQ(formatted(u"%.1f x %.1f", 210.0, 297.04), u"210.0 x 297.0");
    EXPECT_EQ(formatted(u"%f %e %g", 0.5, 12345.678, 1e-7), u"0.500000 1.234568e+04 1e-07");
    EXPECT_EQ(formatted(u"%010.2f|%-8.1f|%+.1f|%8.0f", -3.14159, 2.5, 2.5, 2.5),
              u"-000003.14|2.5     |+2.5|       2");
    EXPECT_EQ(formatted(u"%.1f", 7), u"7.0") << "a whole number in a pattern for reals";
    EXPECT_EQ(formatted(u"%.1f %.1f", -7, ~std::uint64_t(0)), u"-7.0 18446744073709551616.0");
    EXPECT_EQ(formatted(u"%.2f", 0.5f), u"0.50");
}

TEST(Format, WritesWhatIsNoNumber)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();

    EXPECT_EQ(formatted(u"%f %5g %-6f| %F", kInfinity, -kInfinity, kInfinity, kInfinity),
              u"inf  -inf inf   | INF");
    EXPECT_EQ(formatted(u"%06f", kInfinity), u"   inf") << "zeros would make it look like a number";
    EXPECT_EQ(formatted(u"%f", std::numeric_limits<double>::quiet_NaN()), u"nan");
}

TEST(Format, TakesArgumentsByPosition)
{
    EXPECT_EQ(formatted(u"%2$ls, %1$ls", u"a", u"b"), u"b, a");
    EXPECT_EQ(formatted(u"%2$05d|%1$-4ls|", u"a", 42), u"00042|a   |");
    EXPECT_EQ(formatted(u"%1$ls%1$ls", u"a"), u"aa");
}

TEST(Format, CountsConversionsWithoutPositionByThemselves)
{
    EXPECT_EQ(formatted(u"%ls: %3$ls in %2$ls", u"a", u"b", u"c"), u"a: c in b");
    EXPECT_EQ(formatted(u"%2$ls %ls %ls", u"a", u"b"), u"b a b");
}

TEST(Format, WritesNothingForAMissingArgument)
{
    EXPECT_EQ(formatted(u"[%ls] [%ls]", u"a"), u"[a] []");
    EXPECT_EQ(formatted(u"[%d] [%5d] [%c] [%f]"), u"[] [] [] []");
    EXPECT_EQ(formatted(u"[%0$ls] [%2$ls] [%99999999999999999999$ls]", u"a"), u"[] [] []");
}

TEST(Format, WritesAnArgumentOfAnotherKindAsItSuits)
{
    EXPECT_EQ(formatted(u"%ls %s %ls", 42, -1, u'x'), u"42 -1 x");
    EXPECT_EQ(formatted(u"%ls %d %x %c", 2.5, 2.5, 2.5, 2.5), u"2.5 2.5 2.5 2.5");
    EXPECT_EQ(formatted(u"%d %x %c %f", u"a", "b", L"c", u"d"), u"a b c d");
    EXPECT_EQ(formatted(u"%5d|%.1d|", u"abc", u"abc"), u"  abc|abc|")
        << "the precision is not for texts";
    EXPECT_EQ(formatted(u"%u %d", -1, ~0u), u"-1 4294967295") << "the value, not its bits";
}

TEST(Format, LeavesUnknownConversionsAsTheyStand)
{
    struct Case {
        const TvChar* pattern;
        const TvChar* expected;
    };
    for (const Case& at : {Case{u"100%", u"100%"},
                           {u"%", u"%"},
                           {u"%5", u"%5"},
                           {u"%-", u"%-"},
                           {u"%2$", u"%2$"},
                           {u"%n|%ls", u"%n|a"},
                           {u"%p %ls", u"%p a"},
                           {u"%y%ls", u"%ya"},
                           {u"%llld", u"%llld"},
                           {u"%zu", u"%zu"},
                           {u"%\u00fc", u"%\u00fc"},
                           {u"%.", u"%."},
                           {u"%l", u"%l"},
                           {u"%5%|%%ls", u"%|%ls"},
                           {u"%1$1$ls", u"%1$1$ls"},
                           {u"%S%ls", u"%Sa"}})
        EXPECT_EQ(formatted(at.pattern, u"a"), at.expected) << TvString(at.pattern).utf8();
    EXPECT_EQ(formatted(TvString(u"%\0ls", 4), u"a"), TvString(u"%\0ls", 4))
        << "a zero ends no conversion";
}

TEST(Format, TakesAStarAsNoWidth)
{
    EXPECT_EQ(formatted(u"%*d|%.*ls|%-*.*ls|", 1, u"abc", u"def"), u"1|abc|def|");
}

TEST(Format, CutsWidthAndPrecision)
{
    EXPECT_EQ(formatted(u"%99999999999999999999d", 1).length(), 1024);
    EXPECT_EQ(formatted(u"%.99999999999999999999d", 1).length(), 1024);
    EXPECT_EQ(formatted(u"%.2147483648f", 0.5).length(), 2 + 1024);
    EXPECT_EQ(formatted(u"%-4096ls", u"a").length(), 1024);
    EXPECT_EQ(formatted(u"%.9999f", std::numeric_limits<double>::max()).length(), 309 + 1 + 1024);
    EXPECT_EQ(formatted(u"%.9999f", -std::numeric_limits<double>::denorm_min()).length(), 3 + 1024);
    EXPECT_EQ(formatted(u"%#.9999g", 1.5).length(), 1 + 1024);
}

TEST(Format, MayTakeItselfAsPatternAndArgument)
{
    TvString text(u"a text that lies on the heap: %ls");

    text.format(text, text);

    EXPECT_EQ(text, u"a text that lies on the heap: a text that lies on the heap: %ls");
}

TEST(Format, ReplacesWhatWasThere)
{
    TvString text(u"before");

    EXPECT_EQ(&text.format(u"%d", 1), &text);
    EXPECT_EQ(text, u"1");
    EXPECT_EQ(text.format(u""), u"");
}

TEST(Format, TakesArgumentsGatheredAtRunTime)
{
    const std::vector<TvString> texts = {u"a", u"b"};
    const std::vector<base::FormatArgument> arguments(texts.begin(), texts.end());

    EXPECT_EQ(TvString().formatArguments(u"%2$ls%1$ls%ls", arguments), u"baa");
    EXPECT_EQ(TvString().formatArguments(u"[%ls]", {}), u"[]");
}

TEST(Format, CarriesHostileTextUnchanged)
{
    const std::u16string hostile = u"%n%s\x1b[2J\u202e\xd800"s + u"\0z"s;

    EXPECT_EQ(unitsOf(formatted(u"<%ls>", hostile)), unitsOf(u"<" + hostile + u">"));

    const std::u16string huge(1'000'000, u'%');
    EXPECT_EQ(formatted(u"%ls", huge).length(), 1'000'000);
    EXPECT_EQ(formatted(huge).length(), 500'000);
}

struct CommaPoint : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(Format, WritesNumbersInEachLocaleAlike)
{
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new CommaPoint));
    const std::string cBefore = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8"); // null, and no matter, where it is not installed

    EXPECT_EQ(formatted(u"%.2f %d %g", 1234567.5, 1234567, 0.5), u"1234567.50 1234567 0.5");

    std::locale::global(before);
    std::setlocale(LC_ALL, cBefore.c_str());
}

// The C library, in the C locale, is the measure of what a pattern means.
template <class T>
std::string printed(const std::string& pattern, T value)
{
    static const locale_t kC = ::newlocale(LC_ALL_MASK, "C", nullptr);
    const locale_t before = ::uselocale(kC);
    char buffer[4096];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int length = std::snprintf(buffer, sizeof buffer, pattern.c_str(), value);
#pragma GCC diagnostic pop
    ::uselocale(before);
    return {buffer, static_cast<std::size_t>(length)};
}

std::string arbitraryFlags(const std::vector<std::string>& flags)
{
    std::string result;
    for (const std::string& flag :
         *rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(flags)))
        result += flag;
    if (*rc::gen::arbitrary<bool>())
        result += std::to_string(*rc::gen::inRange(1, 40));
    if (*rc::gen::arbitrary<bool>())
        result += "." + std::to_string(*rc::gen::inRange(0, 30));
    return result;
}

RC_GTEST_PROP(Format, WritesWholeNumbersAsTheCLibraryDoes, ())
{
    const auto value =
        *rc::gen::oneOf(rc::gen::arbitrary<long long>(), rc::gen::inRange<long long>(-3, 3));
    const std::string pattern = "<%" + arbitraryFlags({"-", "0", "+", " "}) + "lld>";

    RC_ASSERT(formatted(pattern.c_str(), value).utf8() == printed(pattern, value));
}

RC_GTEST_PROP(Format, WritesHexadecimalAsTheCLibraryDoes, ())
{
    const auto value =
        *rc::gen::oneOf(rc::gen::arbitrary<unsigned>(), rc::gen::inRange<unsigned>(0, 3));
    const std::string pattern =
        "<%" + arbitraryFlags({"-", "0", "#"}) + *rc::gen::element<std::string>("x>", "X>", "u>");
    RC_PRE(pattern.find('#') == std::string::npos || pattern.find('u') == std::string::npos);

    RC_ASSERT(formatted(pattern.c_str(), value).utf8() == printed(pattern, value));
}

RC_GTEST_PROP(Format, WritesRealsAsTheCLibraryDoes, ())
{
    const auto bits = *rc::gen::arbitrary<std::uint64_t>();
    double any = 0;
    std::memcpy(&any, &bits, sizeof any);
    const auto small = static_cast<double>(*rc::gen::inRange(-100000, 100000)) / 64;
    const double value = *rc::gen::element(any, small, 0.0, -0.0, std::round(small));
    RC_PRE(!std::isnan(value)); // its sign is nobody's promise
    const std::string pattern = "<%" + arbitraryFlags({"-", "0", "+", " ", "#"}) +
                                *rc::gen::element<std::string>("f>", "e>", "g>", "F>", "E>", "G>");

    RC_ASSERT(formatted(pattern.c_str(), value).utf8() == printed(pattern, value));
}

RC_GTEST_PROP(Format, KeepsItsBoundsWhateverThePattern, ())
{
    const auto pieces =
        *rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(std::vector<std::string>{
            "%", "%%", "$", "1", "2", "3", "0", "9999", "-", "+", " ", "#", ".", "*",   "l",
            "h", "s",  "d", "i", "u", "x", "X", "c",    "f", "e", "g", "n", "p", "text"}));
    std::string pattern;
    for (const std::string& piece : pieces)
        pattern += piece;
    const std::u16string text = *arbitraryText();
    const auto number = *rc::gen::arbitrary<int>();
    const auto conversions =
        static_cast<std::size_t>(std::count(pattern.begin(), pattern.end(), '%'));

    const TvString result = formatted(pattern.c_str(), text, number, 1e300);

    RC_ASSERT(result.view().size() <= pattern.size() + conversions * (1024 + 311 + text.size()));
}

} // namespace
