// Faces that a machine does not have are made of those that it has.

#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include <gs/flat.h>
#include <gs/fonts.h>

#include "temp_folder.h"

namespace {

constexpr char kUpright[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

/// A machine whose only font is upright, and whose rules call it slanted or bold where somebody
/// asks for that, and leave it to him to make it so.
class BareMachine : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(kUpright))
            GTEST_SKIP() << "the font is not there";
        std::filesystem::create_directory(folder.path() / "fonts");
        std::filesystem::copy_file(kUpright, folder.path() / "fonts/DejaVuSans.ttf");
        const std::string at = folder.path().string();
        folder.write("fonts.conf",
                     "<?xml version=\"1.0\"?><fontconfig><dir>" + at + "/fonts</dir><cachedir>" +
                         at + "/cache</cachedir>" +
                         "<match target=\"font\"><test name=\"slant\"><const>roman</const></test>"
                         "<test target=\"pattern\" name=\"slant\" compare=\"not_eq\">"
                         "<const>roman</const></test><edit name=\"slant\" mode=\"assign\">"
                         "<const>oblique</const></edit></match>"
                         "<match target=\"font\"><test name=\"weight\" compare=\"less_eq\">"
                         "<const>medium</const></test><test target=\"pattern\" name=\"weight\" "
                         "compare=\"more_eq\"><const>bold</const></test>"
                         "<edit name=\"weight\" mode=\"assign\"><const>bold</const></edit></match>"
                         "</fontconfig>");
        if (const char* const value = std::getenv("FONTCONFIG_FILE"))
            before = value;
        ::setenv("FONTCONFIG_FILE", (at + "/fonts.conf").c_str(), 1);
        fonts = std::make_unique<gs::Fonts>();
        if (before.empty())
            ::unsetenv("FONTCONFIG_FILE");
        else
            ::setenv("FONTCONFIG_FILE", before.c_str(), 1);
    }
    const gs::Glyph& letter(bool isBold, bool isItalic)
    {
        return fonts->glyph(fonts->find({u"DejaVu Sans", true, isBold, isItalic}), U'H');
    }

    TempFolder folder;
    std::string before;
    std::unique_ptr<gs::Fonts> fonts;
};

TEST_F(BareMachine, SlantsWhatItHasNoSlantedFaceOf)
{
    const gs::Glyph& upright = letter(false, false);
    const gs::Glyph& italic = letter(false, true);
    const gs::Box box = gs::boxOf(upright.path), leaning = gs::boxOf(italic.path);
    EXPECT_NEAR(leaning.highX - box.highX, 0.21, 0.01); // 12 degrees
    EXPECT_NEAR(leaning.lowX, box.lowX, 1e-9);
    EXPECT_NEAR(italic.advance, upright.advance, 1e-9);
    EXPECT_NE(italic.face->key, upright.face->key); // a page of a PDF has both
}

TEST_F(BareMachine, ThickensWhatItHasNoBoldFaceOf)
{
    const gs::Glyph& plain = letter(false, false);
    const gs::Glyph& bold = letter(true, false);
    EXPECT_GT(gs::boxOf(bold.path).width(), gs::boxOf(plain.path).width() + 0.03);
    EXPECT_GT(bold.advance, plain.advance);
    EXPECT_GT(gs::boxOf(letter(true, true).path).width(), gs::boxOf(bold.path).width() + 0.1);
}

TEST_F(BareMachine, SlantsMarksAndJoinedLettersAsWell)
{
    const auto line = [this](bool isItalic, std::u32string_view text) {
        return fonts->line(fonts->find({u"DejaVu Sans", true, false, isItalic}), text);
    };
    const auto upright = line(false, U"q\u0301"), italic = line(true, U"q\u0301");
    ASSERT_EQ(italic.size(), 2U);
    EXPECT_NEAR(italic[1].x - upright[1].x, 0.21 * upright[1].y, 0.01);
    const auto joined = line(false, U"\u0644\u0627"), leaning = line(true, U"\u0644\u0627");
    EXPECT_GT(gs::boxOf(leaning.at(0).glyph->path).width(),
              gs::boxOf(joined.at(0).glyph->path).width() + 0.05);
}

// On the machine that runs the tests: of what a serif face lacks, it borrows.
TEST(BorrowedLetters, LeanWithThoseThatBorrowThem)
{
    gs::Fonts machine;
    if (machine.find({u"DejaVu Serif", true, false, false}).glyph(U'\u05D5'))
        GTEST_SKIP() << "the font is not there, and what stands in for it lacks nothing";
    const auto width = [&](bool isItalic) {
        gs::Font& serif = machine.find({u"DejaVu Serif", true, false, isItalic});
        const auto line = machine.line(serif, U"\u05D5");
        const gs::Box shaped = gs::boxOf(line.at(0).glyph->path);
        const gs::Box alone = gs::boxOf(machine.glyph(serif, U'\u05D5').path);
        EXPECT_NEAR(shaped.width(), alone.width(), 1e-9);
        return shaped.width();
    };
    EXPECT_GT(width(true), width(false) + 0.05);
}

} // namespace
