#include <gtest/gtest.h>

#include <app/handover.h>
#include <base/path_rules.h>

namespace {

using app::HandoverReader;
using State = HandoverReader::State;

TEST(Handover, ComesOverInPieces)
{
    const app::Handover sent{"token", {u"/a b/c.dwg", base::pathFromNative("/\xFF.dwg")}};
    HandoverReader reader;
    State state = State::Reading;
    for (const char byte : app::handoverBytes(sent)) {
        EXPECT_EQ(state, State::Reading);
        state = reader.feed(std::string_view(&byte, 1));
    }
    EXPECT_EQ(state, State::Done);
    EXPECT_EQ(reader.handover().activation, "token");
    EXPECT_EQ(reader.handover().files, sent.files);
}

TEST(Handover, NoFilesIsOneToo)
{
    HandoverReader reader;
    EXPECT_EQ(reader.feed(app::handoverBytes({})), State::Done);
    EXPECT_TRUE(reader.handover().files.empty());
}

TEST(Handover, WhatIsLongerThanAllowedIsRefusedAtItsFirstBytes)
{
    HandoverReader reader;
    EXPECT_EQ(reader.feed(std::string_view("\xFF\xFF\xFF\x7F", 4)), State::Refused);
}

TEST(Handover, WhatMakesNoSenseIsRefused)
{
    std::string good = app::handoverBytes({"", {u"/a.dwg"}});
    {
        HandoverReader reader; // more than was announced
        EXPECT_EQ(reader.feed(good + "x"), State::Refused);
    }
    {
        HandoverReader reader; // another protocol
        std::string other = good;
        other[5] = 'X';
        EXPECT_EQ(reader.feed(other), State::Refused);
    }
    {
        HandoverReader reader; // the last text has no end
        std::string cut = good;
        cut.back() = 'x';
        EXPECT_EQ(reader.feed(cut), State::Refused);
    }
    HandoverReader reader; // nothing in it
    EXPECT_EQ(reader.feed(std::string(4, '\0')), State::Refused);
}

TEST(Handover, ManyFilesAreCutNotRefused)
{
    app::Handover many;
    many.files.assign(HandoverReader::kMostFiles + 10, u"/a.dwg");
    HandoverReader reader;
    EXPECT_EQ(reader.feed(app::handoverBytes(many)), State::Done);
    EXPECT_EQ(reader.handover().files.size(), HandoverReader::kMostFiles);
}

} // namespace
