#include <unordered_set>

#include <base/kv_error_status.h>
#include <base/tv_string.h>

namespace {

using namespace std::string_view_literals;

TEST(TvString, TakesNullAsEmpty)
{
    EXPECT_TRUE(TvString(static_cast<const TvChar*>(nullptr)).isEmpty());
    EXPECT_TRUE(TvString(static_cast<const TvChar*>(nullptr), 5).isEmpty());
    EXPECT_TRUE(TvString(static_cast<const char*>(nullptr)).isEmpty());
    EXPECT_TRUE(TvString(static_cast<const wchar_t*>(nullptr)).isEmpty());
    EXPECT_EQ(TvString().kwszPtr()[0], u'\0');
}

TEST(TvString, HoldsTheSameTextFromEachEncoding)
{
    const TvString units(u"Gr\u00fc\u00dfe \U0001F600");

    EXPECT_EQ(TvString("Gr\u00fc\u00dfe \U0001F600"), units);
    EXPECT_EQ(TvString(L"Gr\u00fc\u00dfe \U0001F600"), units);
    EXPECT_EQ(TvString("Gr\u00fc\u00dfe \U0001F600"sv), units);
    EXPECT_EQ(units.length(), 8) << "a pair counts as two units";
    EXPECT_EQ(units.utf8(), "Gr\u00fc\u00dfe \U0001F600");
}

TEST(TvString, KeepsEmbeddedZerosAndLoneSurrogates)
{
    const std::u16string hostile{u'a', u'\0', char16_t(0xdc80), char16_t(0xd800)};

    const TvString text(hostile);

    EXPECT_EQ(text.length(), 4);
    EXPECT_EQ(text.view(), hostile);
    EXPECT_EQ((TvString(u"x") + text).substr(1), hostile);
}

TEST(TvString, RefusesMoreThanItCanCount)
{
    const auto refused = [](const auto& make) {
        try {
            make();
        } catch (const KvErrorStatus& status) {
            return status.code();
        }
        return 0;
    };
    constexpr std::size_t kTooMany = std::size_t(1) << 31;

    EXPECT_EQ(refused([&] { TvString(u"x", kTooMany); }), kvErrOutOfMemory);
    EXPECT_EQ(refused([&] { TvString(u"x").append({u"x", kTooMany - 1}); }), kvErrOutOfMemory);
}

TEST(TvString, GivesZeroWhereThereIsNoUnit)
{
    const TvString text(u"ab");

    EXPECT_EQ(text.at(0), u'a');
    EXPECT_EQ(text.at(1), u'b');
    EXPECT_EQ(text.at(2), u'\0');
    EXPECT_EQ(text.at(-1), u'\0');
}

TEST(TvString, AppendsItself)
{
    TvString text(u"a text that lies on the heap ");

    text += text;
    text += u'!';

    EXPECT_EQ(text, u"a text that lies on the heap a text that lies on the heap !");
    EXPECT_TRUE(text.setEmpty().isEmpty());
}

TEST(TvString, EqualsViewsStringsAndLiterals)
{
    const TvString text(u"Plan");

    EXPECT_TRUE(text == u"Plan"sv && u"Plan"sv == text);
    EXPECT_TRUE(text == std::u16string(u"Plan") && text == u"Plan" && text == "Plan");
    EXPECT_TRUE(text != u"plan"sv && text != u"Plan 2");
    EXPECT_FALSE(text == static_cast<const TvChar*>(nullptr));
}

TEST(TvString, ComparesUnitByUnit)
{
    EXPECT_EQ(TvString(u"a").compare(u"b"), -1);
    EXPECT_EQ(TvString(u"b").compare(u"a"), 1);
    EXPECT_EQ(TvString(u"ab").compare(u"ab"), 0);
    EXPECT_EQ(TvString(u"a").compare(u"ab"), -1);
    EXPECT_EQ(TvString(u"Z").compare(u"a"), -1);
    EXPECT_EQ(TvString(u"\U0001F600").compare(u"\uFF5E"), -1) << "by unit, not by code point";
    EXPECT_TRUE(TvString(u"a") < TvString(u"b"));
}

TEST(TvString, FindsFromThePositionGiven)
{
    const TvString text(u"abcabc");

    EXPECT_EQ(text.find(u"bc"), 1);
    EXPECT_EQ(text.find(u"bc", 2), 4);
    EXPECT_EQ(text.find(u'c', 3), 5);
    EXPECT_EQ(text.find(u"bc", -7), 1);
    EXPECT_EQ(text.find(u"bc", 5), TvString::npos);
    EXPECT_EQ(text.find(u'a', 99), TvString::npos);
    EXPECT_EQ(text.find(u'x'), TvString::npos);
}

TEST(TvString, FindsFromTheEnd)
{
    const TvString path(u"C:\\plans/a.b.dwg");

    EXPECT_EQ(path.findRev(u'.'), 12);
    EXPECT_EQ(path.findRev(u"b.d"), 11);
    EXPECT_EQ(path.findLastOneOf(u"/\\"), 8);
    EXPECT_EQ(path.findRev(u'x'), TvString::npos);
    EXPECT_EQ(path.findRev(u"xyz"), TvString::npos);
    EXPECT_EQ(path.findLastOneOf(u"?*"), TvString::npos);
}

TEST(TvString, CutsWhatIsOutOfRange)
{
    struct Case {
        int start, count;
        const TvChar* expected;
    };
    constexpr int kMax = std::numeric_limits<int>::max();
    constexpr int kMin = std::numeric_limits<int>::min();
    const TvString text(u"plan");

    for (const Case& at : {Case{0, -1, u"plan"},
                           {1, -1, u"lan"},
                           {1, 2, u"la"},
                           {1, 99, u"lan"},
                           {1, kMax, u"lan"},
                           {-1, 3, u"pl"},
                           {-9, 2, u""},
                           {kMin, kMax, u""},
                           {4, 1, u""},
                           {99, 1, u""},
                           {kMax, kMax, u""},
                           {2, 0, u""},
                           {0, kMin, u"plan"}})
        EXPECT_EQ(text.substr(at.start, at.count), at.expected) << at.start << ", " << at.count;
}

TEST(TvString, TakesUnitsFromBothEnds)
{
    const TvString text(u"plan");

    EXPECT_EQ(text.left(2), u"pl");
    EXPECT_EQ(text.left(99), u"plan");
    EXPECT_EQ(text.left(-1), u"");
    EXPECT_EQ(text.right(2), u"an");
    EXPECT_EQ(text.right(99), u"plan");
    EXPECT_EQ(text.right(0), u"");
    EXPECT_EQ(text.right(-1), u"");
}

TEST(TvString, TrimsEachWhiteSpaceOfUnicode)
{
    EXPECT_EQ(TvString(u" \t\r\n\u00a0\u2003\u3000a b\u2028 ").trimmed(), u"a b");
    EXPECT_EQ(TvString(u" \t ").trimmed(), u"");
    EXPECT_EQ(TvString(u"\u200b").trimmed(), u"\u200b") << "no white space by Unicode";
}

TEST(TvString, ReplacesEachOccurrenceOnce)
{
    EXPECT_EQ(TvString(u"a.b.c").replaced(u".", u" - "), u"a - b - c");
    EXPECT_EQ(TvString(u"aaaa").replaced(u"aa", u"a"), u"aa");
    EXPECT_EQ(TvString(u"abc").replaced(u"", u"x"), u"abc");
    EXPECT_EQ(TvString(u"abc").replaced(u"b", u""), u"ac");
    EXPECT_EQ(TvString(u"abc").replaced(u"x", u"y"), u"abc");
}

TEST(TvString, KnowsItsEnds)
{
    const TvString name(u"Plan.DWG");

    EXPECT_TRUE(name.startsWith(u"Plan") && name.endsWith(u".DWG") && name.endsWithNoCase(u".dwg"));
    EXPECT_FALSE(name.startsWith(u"plan") || name.endsWith(u".dwg"));
    EXPECT_FALSE(name.endsWithNoCase(u"the plan.dwg"));
    EXPECT_TRUE(name.endsWithNoCase(u""));
}

TEST(TvString, HashesByContent)
{
    const std::unordered_set<TvString> names = {u"a", u"b", u"a"};

    EXPECT_EQ(names.size(), 2u);
    EXPECT_TRUE(names.contains(u"b"));
    EXPECT_FALSE(names.contains(u"B"));
}

TEST(EscapedForDisplay, ShowsWhatATerminalWouldObey)
{
    using base::escapedForDisplay;

    EXPECT_EQ(escapedForDisplay(u"\x1b]0;x\x07"), u"\\x1B]0;x\\x07");
    EXPECT_EQ(escapedForDisplay(u"a\nb\tc\x7f"), u"a\\x0Ab\\x09c\\x7F");
    EXPECT_EQ(escapedForDisplay(TvString(u"\u009b2J\u0000", 4)), u"\\x9B2J\\x00");
    EXPECT_EQ(escapedForDisplay(u"gwd.\u202eexe"), u"gwd.\\u{202E}exe");
    EXPECT_EQ(escapedForDisplay(u"\u2028\u2029\u2066\u2069"),
              u"\\u{2028}\\u{2029}\\u{2066}\\u{2069}");
}

TEST(EscapedForDisplay, LeavesAllElseAlone)
{
    const std::u16string text =
        u"Gr\u00fc\u00dfe \\x1B \u05d0\u200f\U0001F600 " + std::u16string(1, 0xdc80);

    EXPECT_EQ(base::escapedForDisplay(text), text);
}

} // namespace
