#include <gtest/gtest.h>

#include <db/palette.h>
#include <plot/style_table.h>

#include "inflate.h"

namespace {

std::string tableOf(const std::string& text)
{
    std::string bytes = "PIAFILEVERSION_2.0,CTBVER1,compress\r\npmzlibcodec";
    bytes.resize(60, '\0');
    return bytes + plot::deflated(text, 6);
}

std::optional<plot::StyleTable> read(const std::string& bytes)
{
    return plot::StyleTable::fromBytes(std::as_bytes(std::span(bytes)));
}

TEST(StyleTable, GivesColoursAndWeightsByNumberOfColour)
{
    const auto table = read(tableOf("plot_style{\n 0{\n  name=\"Color_1\n  color=255\n"
                                    "  lineweight=2\n  screen=50\n }\n 1{\n  color=-1\n }\n}\n"
                                    "custom_lineweight_table{\n 0=0.0\n 1=0.35\n}\n"));
    ASSERT_TRUE(table);
    const std::uint32_t red = db::paletteColor(1), yellow = db::paletteColor(2);

    EXPECT_EQ(table->plotted(red), 0x8080FFU); // half of blue
    EXPECT_FLOAT_EQ(table->styleOf(red).weightMm.value_or(0), 0.35F);
    EXPECT_EQ(table->plotted(yellow), yellow);
    EXPECT_EQ(table->plotted(0x123456), 0x123456U); // no number of the palette
}

TEST(StyleTable, WhatIsNoTableIsRefused)
{
    EXPECT_FALSE(read(""));
    EXPECT_FALSE(read(std::string(200, 'x')));
    std::string cut = tableOf("plot_style{\n 0{\n");
    cut.resize(cut.size() - 4);
    EXPECT_FALSE(read(cut));
}

TEST(StyleTable, ATableThatUnpacksWithoutEndIsRefused)
{
    EXPECT_FALSE(read(tableOf(std::string(std::size_t(32) << 20, 'a'))));
}

TEST(StyleTable, BlackIsKnownByItsUsualName)
{
    const auto table = plot::StyleTable::find(u"MONOCHROME.ctb", u"/nowhere/plan.dwg");
    ASSERT_TRUE(table);
    EXPECT_EQ(table->plotted(0x123456), 0U);
    EXPECT_FALSE(plot::StyleTable::find(u"other.ctb", u"/nowhere/plan.dwg"));
}

} // namespace
