// The module as the host loads it: what it registers and takes back, in which order, and what it
// exports.

#include <bit>

#include <core/session.h>
#include <core/sheet_set_panel.h>
#include <core/watch_table.h>
#include <ed/tarv_palette_prop_manager.h>
#include <resources/resource_dialogs.h>
#include <rx/resource_module.h>

#include "host_scene.h"

namespace {

constexpr const TvChar* kModule = u"KvSheetSet.trx";

class LoadedModule : public HostScene
{
protected:
    using HostScene::HostScene;
    bool load() { return linker.loadModule(kModule, 1, 0); }
    template <class Function>
    Function exported(const char* name)
    {
        noted.trace.clear();
        const rx::ModuleLoader::Handle module =
            rx::FolderModuleLoader({base::pathFromNative(KV_BUILD_DIR "/modules")}).loaded(kModule);
        return std::bit_cast<Function>(loader.symbol(module, name));
    }
    int send(int message)
    {
        return exported<TvRx::EntryPoint>(TvRx::kEntryPointName)(message, nullptr);
    }
};

const Trace kCommandsAdded = {
    "add SheetSet_CMDGROUP SHEETSET SHEETSET",
    "add SheetSet_CMDGROUP SHEETSETHIDE SHEETSETHIDE",
    "add SheetSet_CMDGROUP OPENSHEETSET OPENSHEETSET",
    "add SheetSet_CMDGROUP -OPENSHEETSET -OPENSHEETSET",
    "add SheetSet_CMDGROUP NEWSHEETSET NEWSHEETSET",
    "add SheetSet_CMDGROUP ARCHIVE ARCHIVE",
    "add SheetSet_CMDGROUP PLACEVIEW PLACEVIEW",
    "add SheetSet_CMDGROUP VIEWLABEL VIEWLABEL",
    "add SheetSet_CMDGROUP CALLOUT CALLOUT",
    "add SheetSet_CMDGROUP SMINSERTTOC SMINSERTTOC",
};

TEST_F(LoadedModule, RegistersInItsOrder)
{
    ASSERT_TRUE(load());
    Trace expected = {"load KvSheetSet.trx", "load KvSheetSetRes.dll", "register module"};
    expected.insert(expected.end(), kCommandsAdded.begin(), kCommandsAdded.end());
    for (const char* what :
         {"add reactor", "register events", "put service KVSHEETSETPANEL_SERVICE",
          "(internal interface is set)", "is it loaded: KvPlotCmds.dll", "load KvPlotCmds.dll",
          "is it loaded: KvETransmit.trx", "load KvETransmit.trx", "register adapter provider"})
        expected.emplace_back(what);
    EXPECT_EQ(told(), expected);
    EXPECT_TRUE(linker.isModuleRegistered(kModule));
    EXPECT_TRUE(said.empty());
    EXPECT_TRUE(shown.empty());
}

TEST_F(LoadedModule, TakesBackInItsOrder)
{
    ASSERT_TRUE(load());
    told();
    ASSERT_TRUE(linker.unloadModule(kModule, 0));
    EXPECT_EQ(told(),
              (Trace{"unregister adapter provider", "remove SheetSet_CMDGROUP", "unregister events",
                     "remove service KVSHEETSETPANEL_SERVICE", "remove reactor",
                     "(internal interface is gone)", "free KvPlotCmds.dll", "free KvETransmit.trx",
                     "free KvSheetSetRes.dll", "free KvSheetSet.trx"}));
    EXPECT_TRUE(stack.commands().empty());
    EXPECT_EQ(editor.reactors, 0);
    EXPECT_FALSE(tvrxServiceIsRegistered(u"KVSHEETSETPANEL_SERVICE"));
    for (const TvChar* name :
         {kModule, u"KvSheetSetRes.dll", u"KvPlotCmds.dll", u"KvETransmit.trx"})
        EXPECT_EQ(loader.loaded(name), nullptr) << TvString(name).utf8();
}

TEST_F(LoadedModule, LoadedTwiceIsStartedOnceAndCanComeBackLater)
{
    ASSERT_TRUE(load());
    told();
    EXPECT_TRUE(load());
    EXPECT_EQ(send(1), 0) << "a second start";
    EXPECT_TRUE(told().empty());
    EXPECT_EQ(stack.commands().size(), 10u);
    ASSERT_TRUE(linker.unloadModule(kModule, 0));
    ASSERT_TRUE(load());
    EXPECT_EQ(stack.commands().size(), 10u);
}

TEST_F(LoadedModule, UnloadedWithoutAStartFreesItsTextsOnly)
{
    const auto module = loader.load(kModule);
    ASSERT_TRUE(module);
    const auto entry =
        std::bit_cast<TvRx::EntryPoint>(loader.symbol(*module, TvRx::kEntryPointName));
    EXPECT_EQ(entry(2, nullptr), 0);
    EXPECT_EQ(entry(2, nullptr), 0);
    loader.free(*module);
    EXPECT_EQ(told(), (Trace{"load KvSheetSet.trx", "load KvSheetSetRes.dll",
                             "free KvSheetSetRes.dll", "free KvSheetSet.trx"}));
}

TEST_F(LoadedModule, FreedWithoutAnyMessageLeavesNothing)
{
    const auto module = loader.load(kModule);
    ASSERT_TRUE(module);
    loader.free(*module);
    EXPECT_EQ(told(), (Trace{"load KvSheetSet.trx", "load KvSheetSetRes.dll", "free KvSheetSet.trx",
                             "free KvSheetSetRes.dll"}));
    EXPECT_EQ(loader.loaded(u"KvSheetSetRes.dll"), nullptr);
}

TEST_F(LoadedModule, MessagesThatItHasNoUseForAnswerWell)
{
    ASSERT_TRUE(load());
    told();
    for (int message : {0, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 1000, -1})
        EXPECT_EQ(send(message), 0) << message;
    EXPECT_TRUE(told().empty());
    EXPECT_EQ(exported<TvRx::ApiVersion>(TvRx::kApiVersionName)(), TvRx::kApiVersion);
}

TEST_F(LoadedModule, WithoutItsResourcesCommandsHaveTheirGlobalNames)
{
    loader.missing = {"KvSheetSetRes.dll"};
    ASSERT_TRUE(load());
    EXPECT_EQ(stack.commands().size(), 10u);
    for (const TvEdCommand* command : stack.commands())
        EXPECT_EQ(command->localName(), command->globalName());
    EXPECT_TRUE(linker.unloadModule(kModule, 0));
}

TEST_F(LoadedModule, ItsResourcesHaveItsDialogsAndNoOthers)
{
    ASSERT_TRUE(load());
    const auto dialogOf = std::bit_cast<text::ResourceDialog>(
        loader.symbol(loader.loaded(u"KvSheetSetRes.dll"), text::kResourceDialogName));
    ASSERT_TRUE(dialogOf);
    constexpr int kFirstOfTheHost = 10001;
    for (const text::DialogTemplate& dialog : text::allDialogs()) {
        const text::DialogTemplate* const ours = dialogOf(dialog.number);
        ASSERT_EQ(ours != nullptr, dialog.number < kFirstOfTheHost) << dialog.number;
        if (ours) {
            EXPECT_EQ(ours->controls.size(), dialog.controls.size());
            EXPECT_EQ(ours->title, dialog.title);
        }
    }
    ASSERT_TRUE(dialogOf(700)); // the sheet list
}

TEST_F(LoadedModule, MissingOptionalModulesAreSilent)
{
    loader.missing = {"KvPlotCmds.dll", "KvETransmit.trx"};
    ASSERT_TRUE(load());
    const Trace start = told();
    EXPECT_EQ(start.back(), "register adapter provider");
    ASSERT_TRUE(linker.unloadModule(kModule, 0));
    for (const std::string& what : told())
        EXPECT_TRUE(!what.starts_with("free") || what.starts_with("free KvSheetSet")) << what;
    EXPECT_TRUE(said.empty());
    EXPECT_TRUE(shown.empty());
}

TEST_F(LoadedModule, OptionalModulesThatTheHostHasLoadedStayItsOwn)
{
    const auto hosts = loader.load(u"KvPlotCmds.dll");
    ASSERT_TRUE(hosts);
    ASSERT_TRUE(load());
    told();
    linker.unloadModule(kModule, 0);
    const Trace end = told();
    EXPECT_EQ(std::ranges::count(end, "free KvPlotCmds.dll"), 0);
    EXPECT_EQ(std::ranges::count(end, "free KvETransmit.trx"), 1);
    EXPECT_NE(loader.loaded(u"KvPlotCmds.dll"), nullptr);
    loader.free(*hosts);
}

TEST_F(LoadedModule, WorksInAHostThatHasNoneOfItsParts)
{
    TvRxDictionary& registry = *tvrxSysRegistry();
    for (const TvChar* key : {kTvRxDynamicLinker, kTvRegisteredCommands, kTvEditor})
        registry.remove(key);
    tvdbSetDataAdapterManager(nullptr);
    ASSERT_TRUE(load());
    EXPECT_TRUE(linker.unloadModule(kModule, 0));
    EXPECT_TRUE(stack.commands().empty());
}

TEST_F(LoadedModule, ANewProductHasItsOwnResourcesAndModules)
{
    rx::setProduct(u"Draft Pro", u"Dp");
    ASSERT_TRUE(load());
    const Trace start = told();
    EXPECT_EQ(std::ranges::count(start, "load DpSheetSetRes.dll"), 1);
    EXPECT_EQ(std::ranges::count(start, "load DpPlotCmds.dll"), 1);
    EXPECT_EQ(std::ranges::count(start, "load DpETransmit.trx"), 1);
    linker.unloadModule(kModule, 0);
}

TEST_F(LoadedModule, SetsAreWatchedFromTheStartToTheEndEvenThoseOpenBefore)
{
    TvSmDatabase* before = made("before.dst");
    ASSERT_TRUE(load());
    TvSmDatabase* after = made("after.dst");
    EXPECT_EQ(g_watchTable.size(), 2u);
    manager.closeDatabase(after);
    EXPECT_EQ(g_watchTable.size(), 1u);
    linker.unloadModule(kModule, 0);
    EXPECT_TRUE(g_watchTable.empty()) << "nobody would hear that it closes";
    manager.closeDatabase(before);
}

// Exports

TEST_F(LoadedModule, ExportsWhatItSaysAndNothingElse)
{
    const std::string command = "nm -D --defined-only -C " KV_BUILD_DIR "/modules/KvSheetSet.trx";
    FILE* pipe = ::popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::set<std::string> functions, classes;
    char row[1024];
    while (std::fgets(row, sizeof row, pipe)) {
        std::string name(row);
        name = name.substr(name.find(' ') + 3);
        name.pop_back();
        for (const char* what : {"vtable for ", "typeinfo for ", "typeinfo name for "})
            if (name.starts_with(what))
                name = name.substr(std::string(what).size()) + "::";
        const std::size_t scope = name.find("::");
        (scope == std::string::npos ? functions : classes).insert(name.substr(0, scope));
    }
    ASSERT_EQ(::pclose(pipe), 0);
    EXPECT_EQ(functions,
              (std::set<std::string>{"CloseSheetSet", "GetCuixManager", "ImportLayoutAsSheet",
                                     "IsInSheetSet", "KvCmd_DWFPublishOption",
                                     "KvCmd_GetViewCategoryFromCurSheetSet", "ShowEditTocDialog",
                                     "tvrxEntryPoint", "tvrxGetApiVersion"}));
    EXPECT_EQ(classes,
              (std::set<std::string>{"CAdvancedFileDialog", "KvPublishDocumentAndLayoutSwitcher",
                                     "KvPublishOpenDocumentManager", "TarvWsESWNodInfo",
                                     "TvDbDataAdapterManager", "TvRxDynamicLinkerOutputGuard"}));
}

TEST_F(LoadedModule, ExportsCanBeCalledWithNothingOpen)
{
    ASSERT_TRUE(load());
    EXPECT_FALSE(exported<bool (*)()>("IsInSheetSet")());
    exported<void (*)()>("CloseSheetSet")();
    std::vector<TvString> names{u"kept"};
    const TvString drawing = u"a.dwg";
    exported<void (*)(const TvString*, const std::vector<TvString>*)>("ImportLayoutAsSheet")(
        &drawing, &names);
    exported<void (*)(void*, const void*)>("ShowEditTocDialog")(nullptr, nullptr);
    exported<void (*)(void*, void*, void*)>("KvCmd_DWFPublishOption")(nullptr, nullptr, nullptr);
    const auto categories =
        exported<void (*)(std::vector<TvString>*)>("KvCmd_GetViewCategoryFromCurSheetSet");
    categories(&names);
    categories(nullptr);
    EXPECT_EQ(names, std::vector<TvString>{u"kept"});
    EXPECT_EQ(rx::currentResourceName(), TvString());
    EXPECT_TRUE(said.empty());
    EXPECT_TRUE(shown.empty());
}

TEST_F(LoadedModule, ExportsTellOfSetsAndGiveThePalettesManager)
{
    ASSERT_TRUE(load());
    TvSmDatabase* database = made("a.dst");
    EXPECT_TRUE(exported<bool (*)()>("IsInSheetSet")()) << "open, if not in the panel";
    ActivateSheetSet(database);
    exported<void (*)()>("CloseSheetSet")();
    EXPECT_EQ(GetCurrentDatabase(), nullptr);
    EXPECT_FALSE(exported<bool (*)()>("IsInSheetSet")());
    ITarvPalettePropManager* palettes =
        exported<ITarvPalettePropManager* (*)()>("GetCuixManager")();
    ASSERT_NE(palettes, nullptr);
    EXPECT_EQ(palettes->getPalette(), nullptr);
}

// Commands

TEST_F(LoadedModule, CommandsOpenASetByDialogAndByPrompt)
{
    ASSERT_TRUE(load());
    for (const char* name : {"a.dst", "b.dst"})
        manager.closeDatabase(made(name));
    answers = {folder.file("a.dst")};
    type(u"OPENSHEETSET");
    ASSERT_NE(GetCurrentDatabase(), nullptr);
    EXPECT_EQ(GetCurrentDatabase()->getFileName(), folder.file("a.dst"));
    answers = {folder.file("b")};
    type(u"-OPENSHEETSET");
    EXPECT_EQ(GetCurrentDatabase()->getFileName(), folder.file("b.dst"));
    EXPECT_EQ(shown, (Trace{"dialog", "prompt"}));
    EXPECT_TRUE(said.empty()) << "opening is silent about the panel that is not there";
    while (GetCurrentDatabase())
        CloseCurrentSheetSet();
}

TEST_F(LoadedModule, CommandsThatAreNotBuiltYetSaySo)
{
    ASSERT_TRUE(load());
    type(u"VIEWLABEL");
    type(u"CALLOUT");
    EXPECT_TRUE(said.empty()) << "there is no set to take blocks from";
    ActivateSheetSet(made("a.dst"));
    const Trace names = {"SHEETSET",  "SHEETSETHIDE", "NEWSHEETSET", "PLACEVIEW",
                         "VIEWLABEL", "CALLOUT",      "SMINSERTTOC"};
    Trace expected;
    for (const std::string& name : names) {
        type(TvString(name));
        // Built with windows, there is a panel to be hidden; it cannot be made without a screen.
        if (name != "SHEETSETHIDE" || !core::sheetSetPanelMaker())
            expected.push_back("8900 " + name);
    }
    EXPECT_EQ(said, expected);
    CloseCurrentSheetSet();
}

} // namespace
