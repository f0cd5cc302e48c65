#include "arbitrary_text.h"

namespace {

using namespace std::string_literals;

int signOf(int value)
{
    return (value > 0) - (value < 0);
}

std::u16string textOfPoint(std::uint32_t point)
{
    return base::utf16FromWide(std::wstring(1, static_cast<wchar_t>(point)));
}

TEST(CompareNoCase, FoldsEveryScriptWithoutALocale)
{
    struct Case {
        std::u16string left, right;
    };
    for (const Case& at : {Case{u"PLAN", u"plan"},
                           {u"\u00c4\u00d6\u00dc", u"\u00e4\u00f6\u00fc"},
                           {u"\u03a3\u03a3", u"\u03c3\u03c2"},
                           {u"\u0416", u"\u0436"},
                           {u"\u212a", u"k"},
                           {u"\u1e9e", u"\u00df"},
                           {u"\U00010400", u"\U00010428"},
                           {u"", u""}}) {
        EXPECT_EQ(base::compareNoCase(at.left, at.right), 0) << TvString(at.left).utf8();
        EXPECT_EQ(base::hashNoCase(at.left), base::hashNoCase(at.right))
            << TvString(at.left).utf8();
        EXPECT_TRUE(base::equalNoCase(at.left, at.right));
    }
}

TEST(CompareNoCase, KeepsApartWhatOnlyFullFoldingOrALocaleWouldJoin)
{
    EXPECT_NE(base::compareNoCase(u"\u00df", u"ss"), 0);
    EXPECT_NE(base::compareNoCase(u"I", u"\u0131"), 0);
    EXPECT_NE(base::compareNoCase(u"\u0130", u"i"), 0);
    EXPECT_NE(base::compareNoCase(u"e", u"\u00e9"), 0);
    EXPECT_FALSE(base::equalNoCase(u"a", u"ab"));
}

TEST(CompareNoCase, OrdersByTheFoldedUnits)
{
    EXPECT_EQ(TvString(u"a").compareNoCase(u"B"), -1);
    EXPECT_EQ(TvString(u"B").compareNoCase(u"a"), 1);
    EXPECT_EQ(TvString(u"Z").compareNoCase(u"_"), 1)
        << "folds to lower case, so letters come after";
    EXPECT_EQ(TvString(u"plan").compareNoCase(u"PLAN 2"), -1);
    EXPECT_EQ(TvString(u"\u00c9").compareNoCase(u"z"), 1);
}

TEST(CompareNoCase, TellsLoneSurrogatesFromPairs)
{
    EXPECT_EQ(base::compareNoCase(u"\xd801"s, u"\xd801\xdc28"s), -1);
    EXPECT_EQ(base::compareNoCase(u"\xd801\xdc28"s, u"\xd801\xdc00"s), 0);
    EXPECT_NE(base::compareNoCase(u"\xd801"s, u"\xd802"s), 0);
}

TEST(CompareNoCase, TakesAMillionUnits)
{
    const std::u16string lower(1'000'000, u'\u00e9');
    std::u16string upper(1'000'000, u'\u00c9');

    EXPECT_EQ(base::compareNoCase(lower, upper), 0);
    upper.back() = u'\u00c8';
    EXPECT_EQ(base::compareNoCase(lower, upper), 1);
}

TEST(CaseFolding, KeepsTheNumberOfUnitsOfEachLetter)
{
    constexpr std::uint32_t kEndOfLettersWithCase = 0x20000; // the planes above have none
    for (std::uint32_t point = 0; point < kEndOfLettersWithCase; ++point) {
        const std::u16string text = textOfPoint(point);
        const TvString folded = TvString(text).toLower();
        ASSERT_EQ(folded.view().size(), text.size()) << std::hex << point;
        ASSERT_EQ(folded.toLower(), folded) << std::hex << point;
        ASSERT_TRUE(base::equalNoCase(folded, text)) << std::hex << point;
        ASSERT_EQ(base::hashNoCase(folded), base::hashNoCase(text)) << std::hex << point;
    }
}

TEST(ToLower, GivesTheKeyOfEachSpelling)
{
    EXPECT_EQ(TvString(u"Plan \u00c4\u03a3 \U00010400").toLower(), u"plan \u00e4\u03c3 \U00010428");
    EXPECT_EQ(TvString(u"I").toLower(), u"i");
}

TEST(ToUpper, GivesLongerTextWhereLettersNeedIt)
{
    EXPECT_EQ(TvString(u"Stra\u00dfe \ufb01").toUpper(), u"STRASSE FI");
    EXPECT_EQ(TvString(u"plan i").toUpper(), u"PLAN I");
    EXPECT_EQ(TvString(u"").toUpper(), u"");
    EXPECT_EQ(TvString(u"\ufb03\ufb03\ufb03").toUpper(), u"FFIFFIFFI") << "three times as long";
}

RC_GTEST_PROP(CompareNoCase, OrdersAsTheFoldedTexts, ())
{
    const std::u16string left = *arbitraryText();
    const std::u16string right = *arbitraryText();

    const int expected = TvString(left).toLower().compare(TvString(right).toLower());

    RC_ASSERT(base::compareNoCase(left, right) == expected);
    RC_ASSERT(base::compareNoCase(right, left) == -expected);
    RC_ASSERT(base::equalNoCase(left, right) == (expected == 0));
}

RC_GTEST_PROP(CompareNoCase, IsAnOrder, ())
{
    const std::u16string a = *arbitraryText();
    const std::u16string b = *arbitraryText();
    const std::u16string c = *arbitraryText();

    RC_ASSERT(base::compareNoCase(a, a) == 0);
    if (base::compareNoCase(a, b) <= 0 && base::compareNoCase(b, c) <= 0)
        RC_ASSERT(base::compareNoCase(a, c) <= 0);
    if (base::compareNoCase(a, b) == 0)
        RC_ASSERT(signOf(base::compareNoCase(a, c)) == signOf(base::compareNoCase(b, c)));
}

RC_GTEST_PROP(CompareNoCase, EqualTextsHaveEqualHashes, ())
{
    const std::u16string text = *rc::gen::oneOf(arbitraryText(), arbitraryUnits());
    const TvString folded = TvString(text).toLower();

    RC_ASSERT(base::equalNoCase(text, folded));
    RC_ASSERT(base::hashNoCase(text) == base::hashNoCase(folded));
}

} // namespace
