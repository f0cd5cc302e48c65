#include <core/tip_style.h>

#include <base/tarvik_config.h>
#include <core/settings.h>

#include "temp_folder.h"

namespace {

using core::TipStyle;

constexpr TvChar kKey[] = u"UserInterfaceSettings\\SheetSetDialog\\TooolTipStyle";

class TipStyleTest : public testing::Test
{
protected:
    void SetUp() override
    {
        core::resetTipStyle();
        tarvSetConfig(&m_config);
    }
    void TearDown() override
    {
        core::resetTipStyle();
        tarvSetConfig(nullptr);
    }

private:
    TempFolder m_folder;
    TarvikConfig m_config{m_folder.file("config")};
};

TEST_F(TipStyleTest, BeginsWithEverythingAndALargePreview)
{
    core::readTipStyle();
    EXPECT_EQ(core::tipStyle(), (TipStyle{TipStyle::Everything, TipStyle::Large}));
}

TEST_F(TipStyleTest, EachNumberStandsForItsModeAndSize)
{
    constexpr TipStyle kWanted[] = {
        {TipStyle::Name, TipStyle::Large},           {TipStyle::NameAndDetails, TipStyle::Large},
        {TipStyle::NameAndPreview, TipStyle::Small}, {TipStyle::NameAndPreview, TipStyle::Medium},
        {TipStyle::NameAndPreview, TipStyle::Large}, {TipStyle::Everything, TipStyle::Small},
        {TipStyle::Everything, TipStyle::Medium},    {TipStyle::Everything, TipStyle::Large}};
    for (int number = 0; number < 8; ++number) {
        EXPECT_TRUE(core::chooseTipStyle(number));
        EXPECT_EQ(core::tipStyle(), kWanted[number]) << number;
        int stored = -1;
        EXPECT_TRUE(ReadConfigInt(kKey, stored));
        EXPECT_EQ(stored, number);
    }
}

TEST_F(TipStyleTest, WithoutAPreviewKeepsTheSizeForTheNextTime)
{
    core::chooseTipStyle(2);
    core::chooseTipStyle(1);
    EXPECT_EQ(core::tipStyle(), (TipStyle{TipStyle::NameAndDetails, TipStyle::Small}));
}

TEST_F(TipStyleTest, AStoredNumberThatIsNoneLeavesWhatIsInForce)
{
    for (const int number : {8, -1, 1000}) {
        WriteConfigInt(kKey, number);
        core::readTipStyle();
        EXPECT_EQ(core::tipStyle(), (TipStyle{TipStyle::Everything, TipStyle::Large})) << number;
        EXPECT_FALSE(core::chooseTipStyle(number));
    }
    int stored = 0;
    ReadConfigInt(kKey, stored);
    EXPECT_EQ(stored, 1000) << "what is none is not stored either";
}

TEST_F(TipStyleTest, TheStoredOneComesBack)
{
    core::chooseTipStyle(3);
    core::resetTipStyle();
    core::readTipStyle();
    EXPECT_EQ(core::tipStyle(), (TipStyle{TipStyle::NameAndPreview, TipStyle::Medium}));
}

TEST_F(TipStyleTest, RoomForAPreviewHasARowOfDigitsAndLineFeeds)
{
    constexpr int kDigits[] = {10, 20, 40}, kFeeds[] = {3, 6, 12};
    for (const auto size : {TipStyle::Small, TipStyle::Medium, TipStyle::Large}) {
        const core::PreviewRoom& room = core::previewRoom(size);
        const TvString padding(room.padding);
        EXPECT_EQ(room.digits, kDigits[size] + 1);
        EXPECT_EQ(padding.length(), 1 + kDigits[size] + kFeeds[size]);
        EXPECT_EQ(padding.at(0), u'\n');
        EXPECT_EQ(padding.at(room.digits), u'\n');
        EXPECT_EQ(room.width, 64 << size);
        EXPECT_EQ(room.height, 48 << size);
    }
}

} // namespace
