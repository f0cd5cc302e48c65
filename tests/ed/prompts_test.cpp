#include <numbers>

#include <ed/prompts.h>

#include "host_scene.h"

namespace {

using Names = std::vector<std::string>;

TEST(Keywords, AreTypedInFullOrByTheirCapitals)
{
    const TvString list = u"Copy BEgin Back eXit LType";
    EXPECT_EQ(ed::keywordFor(list, u"copy"), u"Copy");
    EXPECT_EQ(ed::keywordFor(list, u"c"), u"Copy");
    EXPECT_EQ(ed::keywordFor(list, u"CO"), u"Copy");
    EXPECT_EQ(ed::keywordFor(list, u"_cop"), u"Copy");
    EXPECT_EQ(ed::keywordFor(list, u"b"), u"Back") << "the other one needs two letters";
    EXPECT_EQ(ed::keywordFor(list, u"be"), u"BEgin");
    EXPECT_EQ(ed::keywordFor(list, u"x"), u"eXit");
    EXPECT_EQ(ed::keywordFor(list, u"lt"), u"LType");
    for (const TvChar* typed : {u"", u"_", u"copies", u"e", u"ex", u"l", u"q", u"2"})
        EXPECT_TRUE(ed::keywordFor(list, typed).isEmpty()) << TvString(typed).utf8();
}

TEST(Keywords, OfTheUsersLanguageStandForTheGlobalOnes)
{
    const TvString list = u"Kopieren Löschen ? _ Copy Delete ?";
    EXPECT_EQ(ed::keywordFor(list, u"k"), u"Copy");
    EXPECT_EQ(ed::keywordFor(list, u"lösch"), u"Delete");
    EXPECT_EQ(ed::keywordFor(list, u"_delete"), u"Delete");
    EXPECT_EQ(ed::keywordFor(list, u"?"), u"?");
    EXPECT_TRUE(ed::keywordFor(list, u"copy").isEmpty());
    EXPECT_TRUE(ed::keywordFor(list, u"_löschen").isEmpty());
}

class PromptsTest : public HostTest
{
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        open("a.dwg");
        ed::setLastPoint({10, 20, 0});
    }
    static std::optional<TvGePoint3d> point(const TvChar* text) { return ed::typedPoint(text); }
    static bool isAt(const TvChar* text, double x, double y, double z = 0)
    {
        const auto found = point(text);
        return found && found->isEqualTo({x, y, z});
    }
};

TEST_F(PromptsTest, PointsAreTypedByCoordinatesOrDistanceAndAngle)
{
    EXPECT_TRUE(isAt(u"3,4", 3, 4));
    EXPECT_TRUE(isAt(u"-3.5,+4,5e1", -3.5, 4, 50));
    EXPECT_TRUE(isAt(u"2<90", 0, 2));
    EXPECT_TRUE(isAt(u"@1,-2", 11, 18));
    EXPECT_TRUE(isAt(u"@1,2,3", 11, 22, 3));
    EXPECT_TRUE(isAt(u"@5<180", 5, 20));
    EXPECT_TRUE(isAt(u"@", 10, 20));
    for (const TvChar* wrong : {u"", u"3", u"3,", u",3", u"1,2,3,4", u"a,b", u"<90", u"2<",
                                u"@@1,1", u"1,2<3", u"1;2", u"nan,1", u"inf,1", u"1e999,0"})
        EXPECT_FALSE(point(wrong)) << TvString(wrong).utf8();
}

TEST_F(PromptsTest, CoordinatesAreTheUsersOwn)
{
    drawing().editHeader().setPoint("UCSORG", {100, 0, 0});
    drawing().editHeader().setPoint("UCSXDIR", {0, 1, 0});
    drawing().editHeader().setPoint("UCSYDIR", {-1, 0, 0});
    drawing().editHeader().setReal("ELEVATION", 7);
    EXPECT_TRUE(isAt(u"3,4", 96, 3, 7));
    EXPECT_TRUE(isAt(u"3,4,0", 96, 3, 0));
    EXPECT_TRUE(isAt(u"@3,4", 6, 23));
    EXPECT_TRUE(isAt(u"*3,4,1", 3, 4, 1));
    EXPECT_TRUE(isAt(u"@*3,4", 13, 24));
    drawing().editHeader().setPoint("UCSYDIR", {0, 1, 0}); // no system of axes
    EXPECT_TRUE(isAt(u"3,4,0", 3, 4));
}

TEST_F(PromptsTest, AnglesFollowTheDrawingsUnits)
{
    constexpr double kQuarter = std::numbers::pi / 2;
    EXPECT_DOUBLE_EQ(*ed::typedAngle(u"90"), kQuarter);
    ed::setVariable(u"ANGDIR", std::int16_t(1));
    EXPECT_DOUBLE_EQ(*ed::typedAngle(u"90"), -kQuarter);
    ed::setVariable(u"ANGDIR", std::int16_t(0));
    ed::setVariable(u"ANGBASE", kQuarter);
    EXPECT_DOUBLE_EQ(*ed::typedAngle(u"90"), 2 * kQuarter);
    ed::setVariable(u"ANGBASE", 0.0);
    ed::setVariable(u"AUNITS", std::int16_t(2));
    EXPECT_DOUBLE_EQ(*ed::typedAngle(u"100"), kQuarter);
    ed::setVariable(u"AUNITS", std::int16_t(3));
    EXPECT_DOUBLE_EQ(*ed::typedAngle(u"0.5"), 0.5);
    EXPECT_FALSE(ed::typedAngle(u"north"));
}

TEST_F(PromptsTest, AskUntilTheAnswerIsOneThatWasAskedFor)
{
    prompts.answers = {u"two", u"0", u"-1", u"2.5"};
    tvedInitGet(ed::kNoZero | ed::kNoNegative, nullptr);
    double real = 7;
    EXPECT_EQ(tvedGetReal(u"Real: ", real), 5100);
    EXPECT_EQ(real, 2.5);
    EXPECT_EQ(told(), (Names{"word: Real: ", "say 23162 two", "word: Real: ", "say 23162 0",
                             "word: Real: ", "say 23162 -1", "word: Real: "}));
    prompts.answers = {u"2.5", u"40000", u"-3"};
    int whole = 7;
    EXPECT_EQ(tvedGetInt(u"Int: ", whole), 5100);
    EXPECT_EQ(whole, -3) << "what the last prompt was told is forgotten";
    EXPECT_EQ(said(), (std::vector<int>{23163, 23163}));
}

TEST_F(PromptsTest, GiveKeywordsEnterAndCancelByTheirNumbers)
{
    TvString word = u"untouched";
    double real = 7;
    TvGePoint3d place(1, 1, 1);
    prompts.answers = {u"ALL", u"", u"", u"5,6", u"all"};
    tvedInitGet(0, u"All Last");
    EXPECT_EQ(tvedGetReal(u"", real), -5005);
    EXPECT_EQ(tvedGetInput(), u"All");
    EXPECT_EQ(tvedGetReal(u"", real), 5000);
    EXPECT_EQ(real, 7);
    tvedInitGet(ed::kNoEmpty, u"All Last");
    EXPECT_EQ(tvedGetPoint(nullptr, u"", place), 5100) << "Enter alone was none";
    EXPECT_EQ(place, TvGePoint3d(5, 6, 0));
    EXPECT_EQ(ed::lastPoint(), place);
    tvedInitGet(0, u"All Last");
    EXPECT_EQ(tvedGetKword(u"", word), 5100);
    EXPECT_EQ(word, u"All");
    word = u"untouched";
    EXPECT_EQ(tvedGetKword(u"", word), -5002) << "nobody answers any more";
    EXPECT_EQ(word, u"untouched");
    prompts.answers = {u"anything"};
    tvedInitGet(ed::kAnyInput, nullptr);
    EXPECT_EQ(tvedGetPoint(nullptr, u"", place), -5005);
    EXPECT_EQ(tvedGetInput(), u"anything");
}

TEST_F(PromptsTest, GiveUpOnWhoAnswersWronglyForEver)
{
    struct Stubborn : ScriptedPrompts {
        int askText(const TvString&, bool, TvString& out) override
        {
            ++asked;
            out = u"nonsense";
            return 5100;
        }
        int asked = 0;
    } stubborn;
    ed::setUserPrompts(&stubborn);
    int whole = 7;
    EXPECT_EQ(tvedGetInt(u"", whole), -5002);
    EXPECT_EQ(stubborn.ScriptedPrompts::seen.size(), 100u);
    ed::setUserPrompts(&prompts);
}

TEST_F(PromptsTest, PointsMayBePicked)
{
    struct Window : ScriptedPrompts {
        int askPoint(const PointQuestion& question, TvString&,
                     std::optional<TvGePoint3d>& picked) override
        {
            base = question.base;
            isCorner = question.isCorner;
            picked = TvGePoint3d(8, 9, 1);
            return 5100;
        }
        std::optional<TvGePoint3d> base;
        bool isCorner = false;
    } window;
    ed::setUserPrompts(&window);
    TvGePoint3d place;
    const TvGePoint3d base(1, 2, 3);
    EXPECT_EQ(tvedGetCorner(base, u"", place), 5100);
    EXPECT_EQ(place, TvGePoint3d(8, 9, 1));
    EXPECT_EQ(window.base, base);
    EXPECT_TRUE(window.isCorner);
    tvedPostCommand(u"4,5\n");
    EXPECT_EQ(tvedGetPoint(nullptr, u"", place), 5100);
    EXPECT_EQ(place, TvGePoint3d(4, 5, 0)) << "what was posted comes first";
    tvedPostCommand(u"\x1b");
    EXPECT_EQ(tvedGetPoint(nullptr, u"", place), -5002);
    ed::setUserPrompts(&prompts);
}

} // namespace
