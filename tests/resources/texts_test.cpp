#include <resources/texts.h>

#include <base/reasons.h>
#include <base/tv_string.h>

namespace {

struct NamedReason {
    const char* name;
    int number;
};

constexpr NamedReason kReasons[] = {
#define KV_ROW(name, number) {#name, number},
    KV_REASONS(KV_ROW)
#undef KV_ROW
};

std::vector<int> allNumbers()
{
    std::vector<int> numbers;
    for (int index = 0; index < text::count(); ++index)
        numbers.push_back(text::numberAt(index));
    return numbers;
}

bool isInAStatedRange(int number)
{
    const auto within = [number](int first, int last) { return first <= number && number <= last; };
    return within(300, 8999) || within(21000, 21999) || within(22000, 22999) ||
           within(23000, 24999);
}

constexpr int kMostArguments = 9;

/// Text @p number with "<1>" to "<9>" put in.
TvString filledIn(int number)
{
    std::vector<TvString> marks;
    for (int argument = 1; argument <= kMostArguments; ++argument)
        marks.push_back(TvString().format(u"<%d>", argument));
    const std::vector<base::FormatArgument> arguments(marks.begin(), marks.end());
    return TvString().formatArguments(text::find(number), arguments);
}

/// The highest argument that text @p number uses.
int argumentsOf(int number)
{
    const TvString filled = filledIn(number);
    int highest = 0;
    for (int argument = 1; argument <= kMostArguments; ++argument) {
        if (filled.find(TvString().format(u"<%d>", argument)) != TvString::npos)
            highest = argument;
    }
    return highest;
}

} // namespace

TEST(Texts, EveryReasonHasOne)
{
    for (const NamedReason& reason : kReasons)
        EXPECT_NE(text::find(reason.number), nullptr) << reason.name << ' ' << reason.number;
}

TEST(Texts, EveryTextOfAReasonHasItsReason)
{
    for (const int number : allNumbers()) {
        if (number < 21000 || number > 21999)
            continue;
        EXPECT_TRUE(std::any_of(std::begin(kReasons), std::end(kReasons),
                                [&](const NamedReason& reason) { return reason.number == number; }))
            << number;
    }
}

TEST(Texts, NumbersAscendAndAreUnique)
{
    const std::vector<int> numbers = allNumbers();

    ASSERT_FALSE(numbers.empty());
    const auto fall = std::adjacent_find(numbers.begin(), numbers.end(), std::greater_equal<>());
    EXPECT_EQ(fall, numbers.end()) << "behind " << *fall;
}

TEST(Texts, EachNumberIsFoundAndLiesInAStatedRange)
{
    for (const int number : allNumbers()) {
        EXPECT_NE(text::find(number), nullptr) << number;
        EXPECT_TRUE(isInAStatedRange(number)) << number;
    }
}

TEST(Texts, NoneIsBlank)
{
    for (const int number : allNumbers())
        EXPECT_FALSE(TvString(text::find(number)).trimmed().isEmpty()) << number;
}

TEST(Texts, EachTakesItsArgumentsWithoutAGap)
{
    for (const int number : allNumbers()) {
        const TvString filled = filledIn(number);
        for (int argument = 1; argument <= argumentsOf(number); ++argument)
            EXPECT_NE(filled.find(TvString().format(u"<%d>", argument)), TvString::npos)
                << "text " << number << " leaves argument " << argument << " out";
    }
}

TEST(Texts, EachHasOnlyConversionsThatTheFormatterKnows)
{
    for (const int number : allNumbers()) {
        const TvString withoutPercentSigns = TvString(text::find(number)).replaced(u"%%", u"");
        const TvString filled =
            TvString().format(withoutPercentSigns, u"", u"", u"", u"", u"", u"", u"", u"", u"");
        EXPECT_EQ(filled.find(u'%'), TvString::npos)
            << "text " << number << " gives " << filled.utf8();
    }
}

TEST(Texts, ReasonsTakeTextsOnlyAndAreSentences)
{
    for (const NamedReason& reason : kReasons) {
        const char16_t* words = text::find(reason.number);
        if (!words)
            continue;
        std::u16string left(words);
        for (std::size_t at = left.find(u'%'); at != left.npos; at = left.find(u'%', at + 1))
            EXPECT_TRUE(left.compare(at, 3, u"%ls") == 0 || left.compare(at + 2, 3, u"$ls") == 0)
                << reason.name;
        EXPECT_EQ(left.back(), u'.') << reason.name;
    }
}

TEST(Texts, AnUnknownNumberHasNone)
{
    EXPECT_EQ(text::find(0), nullptr);
    EXPECT_EQ(text::find(-1), nullptr);
    EXPECT_EQ(text::find(20999), nullptr);
    EXPECT_EQ(text::find(1'000'000), nullptr);
}

TEST(Texts, AnUnknownLanguageIsRefusedAndChangesNothing)
{
    const char16_t* before = text::find(21001);

    EXPECT_FALSE(text::setLanguage("xx"));
    EXPECT_FALSE(text::setLanguage(""));

    EXPECT_EQ(text::find(21001), before);
}

TEST(Texts, EnglishIsThere)
{
    EXPECT_TRUE(text::setLanguage("en"));
    EXPECT_EQ(TvString(text::find(21001)), u"The file %ls is not there.");
}
