#include <rx/tv_product.h>

namespace {

struct Product : testing::Test {
    ~Product() override { rx::setProduct({}, {}); }
};

TEST_F(Product, HasItsUsualNameAndModulesAreCalledAsUsual)
{
    EXPECT_EQ(GetOemProductName(), u"TARVIK");
    TvString prefix = u"before";
    EXPECT_FALSE(GetTarvProductPreName(prefix));
    EXPECT_EQ(prefix, u"before");
    EXPECT_EQ(rx::moduleFileName(u"PlotCmds.dll", u"KvPlotCmds.dll"), u"KvPlotCmds.dll");
}

TEST_F(Product, OfAnotherNameHasItsOwnTitleAndModules)
{
    rx::setProduct(u"Draft Pro", u"Dp");
    EXPECT_EQ(GetOemProductName(), u"Draft Pro");
    TvString prefix;
    EXPECT_TRUE(GetTarvProductPreName(prefix));
    EXPECT_EQ(prefix, u"Dp");
    EXPECT_EQ(rx::moduleFileName(u"PlotCmds.dll", u"KvPlotCmds.dll"), u"DpPlotCmds.dll");
}

} // namespace
