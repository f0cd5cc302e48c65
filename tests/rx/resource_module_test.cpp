// Texts that lie in a module, and whose resources are current.

#include <base/path_rules.h>
#include <rx/resource_module.h>
#include <rx/tv_product.h>

namespace {

class ResourceModule : public testing::Test
{
protected:
    void SetUp() override { rx::setModuleLoader(&m_loader); }
    void TearDown() override
    {
        if (module)
            m_loader.free(module);
        rx::setModuleLoader(nullptr);
    }
    rx::ModuleLoader::Handle module = nullptr;

private:
    rx::FolderModuleLoader m_loader{{base::pathFromNative(KV_BUILD_DIR "/test-modules")}};
};

TEST_F(ResourceModule, GivesItsTextsCutToTheBuffer)
{
    module = LoadResourceDll(u"FixtureRes.dll");
    ASSERT_NE(module, nullptr);
    TvChar buffer[8] = u"before";
    EXPECT_EQ(LoadStringW(module, 7, buffer, 8), 5);
    EXPECT_EQ(TvString(buffer), u"seven");
    EXPECT_EQ(LoadStringW(module, 7, buffer, 3), 2);
    EXPECT_EQ(TvString(buffer), u"se");
    EXPECT_EQ(LoadStringW(module, 7, buffer, 1), 0);
    EXPECT_EQ(TvString(buffer), u"");
}

TEST_F(ResourceModule, ATextThatIsMissingIsEmpty)
{
    module = LoadResourceDll(u"FixtureRes.dll");
    TvChar buffer[8] = u"before";
    EXPECT_EQ(LoadStringW(module, 8, buffer, 8), 0);
    EXPECT_EQ(TvString(buffer), u"");
    EXPECT_EQ(LoadStringW(module, 7, nullptr, 8), 0);
    EXPECT_EQ(LoadStringW(module, 7, buffer, 0), 0);
}

TEST_F(ResourceModule, WithoutAModuleOrItsExportThereAreNoTexts)
{
    EXPECT_EQ(LoadResourceDll(u"NoSuch.dll"), nullptr);
    EXPECT_EQ(rx::resourceText(nullptr, 7), nullptr);
    module = LoadResourceDll(u"First.trx");
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(rx::resourceText(module, 7), nullptr);
}

TEST_F(ResourceModule, WithoutALoaderThereIsNone)
{
    rx::setModuleLoader(nullptr);
    EXPECT_EQ(LoadResourceDll(u"FixtureRes.dll"), nullptr);
}

TEST(CurrentResources, AreSwitchedAndComeBackInTheReverseOrder)
{
    EXPECT_EQ(rx::currentResourceName(), TvString());
    {
        const rx::ResourceContext outer(u"A.dll");
        {
            const rx::ResourceContext same(u"A.dll");
            EXPECT_FALSE(SetCurrentResourceName(u"A.dll")) << "they are current already";
            const rx::ResourceContext inner(u"B.dll");
            EXPECT_EQ(rx::currentResourceName(), u"B.dll");
        }
        EXPECT_EQ(rx::currentResourceName(), u"A.dll");
    }
    EXPECT_EQ(rx::currentResourceName(), TvString());
    RestorePreviousResource();
    EXPECT_EQ(rx::currentResourceName(), TvString());
}

TEST(CurrentResources, ComeBackWhenADialogThrows)
{
    try {
        const rx::ResourceContext ours(u"A.dll");
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(rx::currentResourceName(), TvString());
}

TEST(CurrentResources, OfTheSheetSetModuleAreNamedByTheProduct)
{
    EXPECT_EQ(rx::sheetSetResourceName(), u"KvSheetSetRes.dll");
    rx::setProduct({}, u"Dp");
    EXPECT_EQ(rx::sheetSetResourceName(), u"DpSheetSetRes.dll");
    rx::setProduct({}, {});
}

} // namespace
