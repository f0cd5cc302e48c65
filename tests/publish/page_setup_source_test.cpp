// The names of page setups in a menu, also where the drawing's folder does not answer.

#include <chrono>
#include <filesystem>
#include <thread>

#include <sm/environment.h>

#include "dead_folder.h"
#include "page_setup_source.h"
#include "publish_scene.h"

namespace {

using Names = std::vector<TvString>;

class PageSetupSourceTest : public PublishTest
{
protected:
    void SetUp() override
    {
        PublishTest::SetUp();
        sm::environment().files = nullptr; // files are asked about in other threads as well
        std::filesystem::create_directory(folder.path() / "share");
        pageSetups("share/setups.dwt", {{u"A3", 5}, {u"A4", 5}});
    }
    /// Asks until the answer is the one that is wanted, or for ten seconds.
    bool becomes(publish::PageSetupSource& source, const Names& wanted)
    {
        using namespace std::chrono_literals;
        for (int i = 0; i < 1000 && source.names(*database) != wanted; ++i)
            std::this_thread::sleep_for(10ms);
        return source.names(*database) == wanted;
    }
};

} // namespace

TEST_F(PageSetupSourceTest, WhoDoesNotWaitGetsTheNamesWhenTheyHaveCome)
{
    publish::PageSetupSource source(0);
    EXPECT_TRUE(becomes(source, {u"A3", u"A4"}));
}

TEST_F(PageSetupSourceTest, AChangedDrawingIsReadAnew)
{
    publish::PageSetupSource source(core::ApartWork::kForEver);
    EXPECT_EQ(source.names(*database), (Names{u"A3", u"A4"}));
    pageSetups("share/setups.dwt", {{u"A very long name of a setup", 5}});
    EXPECT_EQ(source.names(*database), Names{u"A very long name of a setup"});
}

TEST_F(PageSetupSourceTest, InAFolderThatDoesNotAnswerTheLastNamesCount)
{
    publish::PageSetupSource source(0);
    ASSERT_TRUE(becomes(source, {u"A3", u"A4"}));
    DeadFolder share((folder.path() / "share").string());
    share.die();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(source.names(*database), (Names{u"A3", u"A4"}));
    EXPECT_TRUE(share.askedByWindow().empty()) << share.askedByWindow().front();
    EXPECT_LE(share.asked(), 1) << "who asks again waits for the first answer";
    // Of another drawing there, nothing is known.
    namePageSetups("share/other.dwt");
    EXPECT_EQ(source.names(*database), Names());
    EXPECT_TRUE(share.askedByWindow().empty()) << share.askedByWindow().front();
    share.comeBack();
    namePageSetups("share/setups.dwt");
    EXPECT_TRUE(becomes(source, {u"A3", u"A4"}));
}
