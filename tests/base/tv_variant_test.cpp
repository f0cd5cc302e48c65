#include <base/tv_variant.h>

namespace {

TEST(TvVariant, IsEmptyWhenMade)
{
    const TvVariant value;
    TvString text(u"untouched");

    EXPECT_EQ(value.type(), TvVariant::kEmpty);
    EXPECT_FALSE(value.isString());
    EXPECT_FALSE(value.getString(text));
    EXPECT_EQ(text, u"untouched");
}

TEST(TvVariant, HoldsTextOfEachEncoding)
{
    for (const TvVariant& value :
         {TvVariant(TvString(u"a")), TvVariant(u"a"), TvVariant("a"), TvVariant(L"a")}) {
        TvString text;
        EXPECT_EQ(value.type(), 1);
        EXPECT_TRUE(value.isString());
        EXPECT_TRUE(value.getString(text));
        EXPECT_EQ(text, u"a");
    }
}

TEST(TvVariant, GivesANumberOnlyAsItsOwnType)
{
    std::int32_t int32 = 0;
    std::int16_t int16 = 0;
    double real = 0;
    bool flag = false;

    EXPECT_TRUE(TvVariant(std::int32_t(-5)).getInt32(int32));
    EXPECT_TRUE(TvVariant(std::int16_t(-6)).getInt16(int16));
    EXPECT_TRUE(TvVariant(2.5).getReal(real));
    EXPECT_TRUE(TvVariant(true).getBool(flag));
    EXPECT_EQ(int32, -5);
    EXPECT_EQ(int16, -6);
    EXPECT_EQ(real, 2.5);
    EXPECT_TRUE(flag);
}

TEST(TvVariant, LeavesTheTargetAloneWhenTheTypeIsAnother)
{
    const TvVariant value(std::int32_t(5));
    TvString text(u"untouched");
    std::int16_t int16 = 7;
    double real = 7;
    bool flag = true;

    EXPECT_FALSE(value.getString(text) || value.getInt16(int16) || value.getReal(real) ||
                 value.getBool(flag));
    EXPECT_EQ(text, u"untouched");
    EXPECT_EQ(int16, 7);
    EXPECT_EQ(real, 7);
    EXPECT_TRUE(flag);
}

TEST(TvVariant, KeepsItsTypeNumbers)
{
    EXPECT_EQ(TvVariant().type(), 0);
    EXPECT_EQ(TvVariant(u"").type(), 1);
    EXPECT_EQ(TvVariant(std::int32_t(0)).type(), 2);
    EXPECT_EQ(TvVariant(std::int16_t(0)).type(), 3);
    EXPECT_EQ(TvVariant(0.0).type(), 4);
    EXPECT_EQ(TvVariant(false).type(), 5);
}

TEST(TvVariant, IsTextWhateverTheMarksOfItsHolder)
{
    TvVariant value(u"a");

    value.setMarks(0xffff);

    EXPECT_EQ(value.type(), 0xffc1);
    EXPECT_TRUE(value.isString());
    TvString text;
    EXPECT_TRUE(value.getString(text));
    value.setMarks(0);
    EXPECT_EQ(value.type(), 1);
}

TEST(TvVariant, ComparesTypeAndValue)
{
    EXPECT_EQ(TvVariant(u"a"), TvVariant("a"));
    EXPECT_NE(TvVariant(u"a"), TvVariant(u"A"));
    EXPECT_NE(TvVariant(std::int32_t(1)), TvVariant(std::int16_t(1)));
    EXPECT_NE(TvVariant(), TvVariant(u""));
}

} // namespace
