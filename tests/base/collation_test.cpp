#include "arbitrary_text.h"

#include <numeric>

#include <base/natural_order.h>
#include <unicode/uloc.h>

namespace {

using namespace std::string_literals;

int signOf(int value)
{
    return (value > 0) - (value < 0);
}

std::vector<TvString> sorted(std::vector<TvString> texts)
{
    std::sort(texts.begin(), texts.end(), [](const TvString& left, const TvString& right) {
        return left.collateNoCase(right) < 0;
    });
    return texts;
}

TEST(CollateNoCase, OrdersAsAReaderExpects)
{
    const std::vector<TvString> expected = {u"",           u"A-1",    u"A-2",       u"A-10",
                                            u"\u00c4rger", u"cote",   u"cot\u00e9", u"c\u00f4te",
                                            u"Plan 9",     u"plan 10"};

    EXPECT_EQ(sorted({expected.rbegin(), expected.rend()}), expected);
}

TEST(CollateNoCase, IgnoresCaseButCountsAccents)
{
    EXPECT_EQ(sorted({u"b", u"A", u"B", u"a"}), (std::vector<TvString>{u"A", u"a", u"B", u"b"}));
    EXPECT_LT(TvString(u"e").collateNoCase(u"\u00e9"), 0);
    EXPECT_LT(TvString(u"e2").collateNoCase(u"\u00e910"), 0)
        << "a difference in base counts before accents";
    EXPECT_LT(TvString(u"\u00e92").collateNoCase(u"e10"), 0) << "a number counts before accents";
}

TEST(CollateNoCase, TakesDigitsByTheirValue)
{
    EXPECT_LT(TvString(u"Plan 9").collateNoCase(u"Plan 10"), 0);
    EXPECT_LT(TvString(u"Plan 0009").collateNoCase(u"Plan 10"), 0);
    EXPECT_LT(
        TvString(u"9" + std::u16string(200, u'0')).collateNoCase(u"10" + std::u16string(200, u'0')),
        0);
}

TEST(CollateNoCase, BreaksTiesByUnits)
{
    EXPECT_LT(TvString(u"PLAN").collateNoCase(u"plan"), 0);
    EXPECT_GT(TvString(u"plan").collateNoCase(u"PLAN"), 0);
    EXPECT_LT(TvString(u"Plan 01").collateNoCase(u"Plan 1"), 0);
    EXPECT_NE(TvString(u"e\u0301").collateNoCase(u"\u00e9"), 0) << "equal to read, yet two names";
    EXPECT_EQ(TvString(u"plan").collateNoCase(u"plan"), 0);
}

TEST(CollateNoCase, DoesNotAskTheLocale)
{
    UErrorCode error = U_ZERO_ERROR;
    const std::string before = uloc_getDefault();
    uloc_setDefault("sv_SE", &error); // where a-umlaut follows z

    EXPECT_LT(TvString(u"\u00e4").collateNoCase(u"z"), 0);

    uloc_setDefault(before.c_str(), &error);
}

RC_GTEST_PROP(CollateNoCase, IsATotalOrder, ())
{
    const TvString a = *arbitraryText();
    const TvString b = *arbitraryText();
    const TvString c = *arbitraryText();

    RC_ASSERT((a.collateNoCase(b) == 0) == (a == b));
    RC_ASSERT(signOf(a.collateNoCase(b)) == -signOf(b.collateNoCase(a)));
    if (a.collateNoCase(b) <= 0 && b.collateNoCase(c) <= 0)
        RC_ASSERT(a.collateNoCase(c) <= 0);
}

RC_GTEST_PROP(CollationKey, OrdersAsTheCollatorDoes, ())
{
    const TvString a = *rc::gen::oneOf(arbitraryText(), arbitraryUnits());
    const TvString b = *rc::gen::oneOf(arbitraryText(), arbitraryUnits());

    const int byKey = signOf(base::collationKey(a).compare(base::collationKey(b)));

    RC_ASSERT((byKey != 0 ? byKey : a.compare(b)) == signOf(a.collateNoCase(b)));
}

TEST(CollationKey, IsWholeForALongText)
{
    const std::u16string common(1'000'000, u'\u6f22');

    EXPECT_LT(base::collationKey(common + u"a"), base::collationKey(common + u"b"));
}

TEST(SortNaturally, OrdersAsTheCollatorDoes)
{
    std::vector<TvString> texts;
    for (int i = 0; i < 500; ++i) {
        const int scattered = i * 7919 % 500;
        texts.push_back(
            TvString().format(scattered % 2 ? u"Plan %d" : u"PLAN \u00e9%d", scattered / 2));
    }
    const std::vector<TvString> expected = sorted(texts);

    base::sortNaturally(texts);

    EXPECT_EQ(texts, expected);
}

struct Item {
    TvString name;
    std::unique_ptr<int> order; // items are moved, never copied
};

TEST(SortNaturally, KeepsTheOrderOfEqualTexts)
{
    std::vector<Item> items;
    for (int i = 0; i < 100; ++i)
        items.push_back({i % 2 ? u"b" : u"a", std::make_unique<int>(i)});

    base::sortNaturally(items, &Item::name);

    for (std::size_t i = 0; i + 1 < items.size(); ++i) {
        ASSERT_LE(items[i].name.compare(items[i + 1].name), 0);
        if (items[i].name == items[i + 1].name) {
            ASSERT_LT(*items[i].order, *items[i + 1].order);
        }
    }
}

TEST(SortNaturally, TakesTextsMadeOnTheWay)
{
    std::vector<int> numbers = {10, 9, 100};

    base::sortNaturally(numbers, [](int number) { return TvString().format(u"Plan %d", number); });

    EXPECT_EQ(numbers, (std::vector<int>{9, 10, 100}));
}

} // namespace
