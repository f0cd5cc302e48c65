// How the host's linker is asked for the data link module.

#include <core/optional_module.h>

#include "host_scene.h"

namespace {

class AskedLinker : public TvRxDynamicLinkerImp
{
public:
    using TvRxDynamicLinkerImp::TvRxDynamicLinkerImp;
    bool loadModule(const TvString& name, int printErrors, int asCommand) override
    {
        asked.push_back(name.utf8() + " " + std::to_string(printErrors) + " " +
                        std::to_string(asCommand));
        return TvRxDynamicLinkerImp::loadModule(name, printErrors, asCommand);
    }
    Trace asked;
};

class DataLink : public HostScene
{
protected:
    void SetUp() override
    {
        HostScene::SetUp();
        tvrxSysRegistry()->atPut(kTvRxDynamicLinker, &asking);
    }
    void TearDown() override
    {
        asking.unloadAll();
        HostScene::TearDown();
    }
    AskedLinker asking{loader};
};

TEST_F(DataLink, ItIsStartedAsACommandThatPrintsItsErrorsAndOnlyOnce)
{
    EXPECT_NE(core::dataLinkModule(), nullptr);
    EXPECT_NE(core::dataLinkModule(), nullptr);
    EXPECT_EQ(asking.asked, Trace{"KvDatalink.trx 1 1"});
}

TEST_F(DataLink, OneThatIsMissingIsLookedForAtEachNeed)
{
    loader.missing = {"KvDatalink.trx"};
    EXPECT_EQ(core::dataLinkModule(), nullptr);
    EXPECT_EQ(core::dataLinkModule(), nullptr);
    EXPECT_EQ(asking.asked.size(), 2u);
    loader.missing.clear();
    EXPECT_NE(core::dataLinkModule(), nullptr) << "it may come later";
}

} // namespace
