// In which order the loaded module takes back what tells nobody that it goes.

#include <bit>
#include <filesystem>

#include <core/drawing_info_cache.h>
#include <core/watch_table.h>
#include <db/tv_db_database.h>
#include <dwg/dwg_codec.h>

#include "noting_panel.h"

namespace {

constexpr const TvChar* kModule = u"KvSheetSet.trx";

/// An export of the loaded module, without a note of the question; null while it is not loaded.
template <class Function>
Function exported(const char* name)
{
    rx::FolderModuleLoader loader({base::pathFromNative(KV_BUILD_DIR "/modules")});
    const rx::ModuleLoader::Handle module = loader.loaded(kModule);
    return module ? std::bit_cast<Function>(loader.symbol(module, name)) : nullptr;
}

bool hasCuixManager()
{
    const auto get = exported<void* (*)()>("GetCuixManager");
    return get && get();
}

class LoadedModuleOrder : public HostScene
{
protected:
    void SetUp() override
    {
        HostScene::SetUp();
        dwg::install();
        noted.probes.push_back({"cuix manager", &hasCuixManager});
    }
    void TearDown() override
    {
        HostScene::TearDown();
        core::setSheetSetPanelMaker({});
        core::freeDrawingInfoCache();
    }
    bool load() { return linker.loadModule(kModule, 1, 0); }
    /// A drawing that was read, and cannot be read again: it is known as long as nobody forgets it.
    TvString knownDrawing()
    {
        namespace fs = std::filesystem;
        const fs::path path = folder.path() / "known.dwg";
        TvDbDatabase drawing(true, true);
        EXPECT_EQ(drawing.saveAs(folder.file("known.dwg")), TvStatus::Ok);
        EXPECT_TRUE(isKnown(folder.file("known.dwg")));
        const auto time = fs::last_write_time(path);
        folder.write("known.dwg", std::string(fs::file_size(path), 'x'));
        fs::last_write_time(path, time);
        return folder.file("known.dwg");
    }
    static bool isKnown(const TvString& path)
    {
        const DrawingInfo* info = nullptr;
        return core::drawingInfoCache().Get(path, info);
    }
};

TEST_F(LoadedModuleOrder, ThePaletteAndWhatIsKnownOfDrawingsGoBeforeTheCommandsAndTheCuixBehind)
{
    ASSERT_TRUE(load());
    core::setSheetSetPanelMaker([this] { return std::make_unique<NotingPanel>(noted.trace); });
    type(u"SHEETSET");
    const TvString drawing = knownDrawing();
    noted.probes.push_back({"knowledge of drawings", [&] { return isKnown(drawing); }, true});
    EXPECT_TRUE(isKnown(drawing)) << "without a look at the file";
    told();
    ASSERT_TRUE(linker.unloadModule(kModule, 0));
    EXPECT_EQ(told(),
              (Trace{"unregister adapter provider", "deleted", "(knowledge of drawings is gone)",
                     "remove SheetSet_CMDGROUP", "(cuix manager is gone)", "unregister events",
                     "remove service KVSHEETSETPANEL_SERVICE", "remove reactor",
                     "(internal interface is gone)", "free KvPlotCmds.dll", "free KvETransmit.trx",
                     "free KvSheetSetRes.dll", "free KvSheetSet.trx"}));
}

TEST_F(LoadedModuleOrder, TheCuixManagerIsThereBeforeTheOptionalModulesAndBehindTheService)
{
    ASSERT_TRUE(load());
    const Trace start = told();
    const auto at = [&](const char* what) {
        return std::ranges::find(start, what) - start.begin();
    };
    EXPECT_LT(at("put service KVSHEETSETPANEL_SERVICE"), at("(cuix manager is set)"));
    EXPECT_LT(at("(cuix manager is set)"), at("is it loaded: KvPlotCmds.dll"));
}

TEST_F(LoadedModuleOrder, AServiceThatSomebodyElseRegisteredIsNotRegisteredAgain)
{
    ASSERT_TRUE(tvrxRegisterService(u"KVSHEETSETPANEL_SERVICE"));
    told();
    ASSERT_TRUE(load());
    EXPECT_EQ(std::ranges::count(told(), "put service KVSHEETSETPANEL_SERVICE"), 0);
    ASSERT_TRUE(linker.unloadModule(kModule, 0));
    EXPECT_EQ(std::ranges::count(told(), "remove service KVSHEETSETPANEL_SERVICE"), 1);
}

TEST_F(LoadedModuleOrder, AServiceThatIsGoneAlreadyIsNotTakenBack)
{
    ASSERT_TRUE(load());
    tvrxUnregisterService(u"KVSHEETSETPANEL_SERVICE");
    told();
    ASSERT_TRUE(linker.unloadModule(kModule, 0));
    EXPECT_EQ(std::ranges::count(told(), "remove service KVSHEETSETPANEL_SERVICE"), 0);
}

TEST_F(LoadedModuleOrder, SetsThatStayOpenAreLeftByTheirHandlers)
{
    ASSERT_TRUE(load());
    TvSmDatabase* database = made("a.dst");
    const int cookie = g_watchTable.at(database).cookie;
    ASSERT_TRUE(linker.unloadModule(kModule, 0));
    EXPECT_FALSE(database->unregisterEventHandler(cookie)) << "done already";
    manager.closeDatabase(database);
}

} // namespace
