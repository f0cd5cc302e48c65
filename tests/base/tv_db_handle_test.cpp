#include <base/tv_db_handle.h>
#include <rapidcheck/gtest.h>

namespace {

TEST(TvDbHandle, TravelsAsUpperCaseHexadecimal)
{
    EXPECT_EQ(TvDbHandle(std::uint64_t(0x2af)).text(), u"2AF");
    EXPECT_EQ(TvDbHandle(~std::uint64_t(0)).text(), u"FFFFFFFFFFFFFFFF");
    EXPECT_EQ(TvDbHandle().text(), u"0");
    TvString buffer(u"before");
    TvDbHandle(u"1a").getIntoAsciiBuffer(buffer);
    EXPECT_EQ(buffer, u"1A");
}

TEST(TvDbHandle, TakesDigitsInEitherCase)
{
    EXPECT_EQ(TvDbHandle(u"2aF").value(), 0x2afu);
    EXPECT_EQ(TvDbHandle(u"0000000000000001").value(), 1u);
    EXPECT_EQ(TvDbHandle(u"ffffffffFFFFFFFF").value(), ~std::uint64_t(0));
    EXPECT_TRUE(TvDbHandle(u"0").isNull());
}

TEST(TvDbHandle, IsNullForAnythingElse)
{
    for (const char16_t* text : {u"", u" 1", u"1 ", u"0x1", u"-1", u"+1", u"g", u"G", u"/", u":",
                                 u"@", u"`", u"1g", u"00000000000000001", u"\uff11", u"\u0661"})
        EXPECT_TRUE(TvDbHandle(text).isNull()) << TvString(text).utf8();
}

TEST(ParseHex, LeavesTheTargetAloneWhenItRefuses)
{
    std::uint64_t value = 7;

    EXPECT_FALSE(base::parseHex(u"12x", value));
    EXPECT_EQ(value, 7u);
    EXPECT_TRUE(base::parseHex(u"12", value));
    EXPECT_EQ(value, 0x12u);
}

TEST(TvDbHandle, OrdersByNumber)
{
    EXPECT_LT(TvDbHandle(u"9"), TvDbHandle(u"10"));
    EXPECT_EQ(TvDbHandle(u"0a"), TvDbHandle(u"A"));
}

RC_GTEST_PROP(TvDbHandle, ReadsBackWhatItWrites, (std::uint64_t value))
{
    RC_ASSERT(TvDbHandle(TvDbHandle(value).text()).value() == value);
}

} // namespace
