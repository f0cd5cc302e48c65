#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include <app/options.h>
#include <base/path_rules.h>

namespace {

app::Options parse(std::vector<std::string> arguments)
{
    return app::parseOptions(arguments);
}

TEST(Options, FilesStandInTheirOrderAroundOptions)
{
    const app::Options options = parse({"a.dwg", "--headless", "b [1].dwg", "--script", "run.scr"});
    EXPECT_TRUE(options.error.isEmpty()) << options.error.utf8();
    EXPECT_TRUE(options.isHeadless);
    EXPECT_EQ(options.script, u"run.scr");
    EXPECT_EQ(options.files, (std::vector<TvString>{u"a.dwg", u"b [1].dwg"}));
}

TEST(Options, ValuesAreTakenLetterForLetter)
{
    EXPECT_EQ(parse({"--script=[x].scr"}).script, u"[x].scr");
    EXPECT_EQ(parse({"[a,b].dwg", "{}"}).files, (std::vector<TvString>{u"[a,b].dwg", u"{}"}));
    EXPECT_EQ(parse({"--script", "-"}).script, u"-");
}

TEST(Options, BehindTwoDashesEverythingIsAFile)
{
    const app::Options options = parse({"--headless", "--", "--version", "-x"});
    EXPECT_TRUE(options.error.isEmpty()) << options.error.utf8();
    EXPECT_FALSE(options.wantsVersion);
    EXPECT_EQ(options.files, (std::vector<TvString>{u"--version", u"-x"}));
}

TEST(Options, BytesOfFileNamesComeBack)
{
    const app::Options options = parse({"\xFF.dwg"});
    ASSERT_EQ(options.files.size(), 1u);
    EXPECT_EQ(base::nativePath(options.files[0]), "\xFF.dwg");
}

TEST(Options, WhatMakesNoSenseIsNamed)
{
    EXPECT_NE(parse({"--frob"}).error.utf8().find("--frob"), std::string::npos);
    EXPECT_NE(parse({"--script"}).error.utf8().find("--script"), std::string::npos);
}

TEST(Options, AnEmptyValueIsNone)
{
    EXPECT_NE(parse({"--headless", "--script", ""}).error.find(u"--script"), TvString::npos);
    EXPECT_NE(parse({"--headless", "--script="}).error.find(u"--script"), TvString::npos);
}

TEST(Options, AValueThatAFlagCannotHaveIsToldAsItWasTyped)
{
    const TvString error = parse({"--headless=yes"}).error;
    EXPECT_NE(error.find(u"yes"), TvString::npos);
    EXPECT_EQ(error.find(u'\x02'), TvString::npos);
}

TEST(Options, HelpNamesEachOption)
{
    const std::string help = app::helpText().utf8();
    for (const char* option :
         {"--headless", "--script FILE", "--new-instance", "--version", "--help"})
        EXPECT_NE(help.find(option), std::string::npos) << option;
    EXPECT_EQ(help.find("--hidden"), std::string::npos);
}

TEST(Options, TheManualNamesEachOption)
{
    std::ifstream in(std::string(KV_DOCS) + "/man/tarvik.1");
    const std::string manual{std::istreambuf_iterator<char>(in), {}};
    for (const char* option :
         {"\\-\\-headless", "\\-\\-script", "\\-\\-new\\-instance", "\\-\\-version", "\\-\\-help"})
        EXPECT_NE(manual.find(option), std::string::npos) << option;
}

TEST(AbsolutePath, IsSeenFromTheCurrentFolder)
{
    const TvString here = base::pathFromNative(std::filesystem::current_path().string());
    EXPECT_EQ(app::absolutePath(u"a/../b.dwg"), here + u"/b.dwg");
    EXPECT_EQ(app::absolutePath(u"/x/a.dwg"), u"/x/a.dwg");
    EXPECT_EQ(app::absolutePath(u"http://host/a.dwg"), u"http://host/a.dwg");
}

} // namespace
