// Loading modules: where from, in which order, and what each failure leaves.

#include <filesystem>

#include <base/path_rules.h>
#include <base/shared_module.h>
#include <rx/tv_rx_dynamic_linker.h>
#include <rx/tv_rx_dynamic_linker_output_guard.h>

#include "temp_folder.h"

namespace {

namespace fs = std::filesystem;
using base::Reason;
using Trace = std::vector<std::string>;

TvString builtModules()
{
    return base::pathFromNative(KV_BUILD_DIR "/test-modules");
}

/// Loads from the fixtures' folder and lends each module the trace before its first message.
class TracingLoader : public rx::FolderModuleLoader
{
public:
    explicit TracingLoader(Trace& trace) : rx::FolderModuleLoader({builtModules()}), m_trace(trace)
    {
    }
    base::Result<Handle> load(const TvString& name) override
    {
        base::Result<Handle> module = rx::FolderModuleLoader::load(name);
        if (module) {
            ++loads;
            if (void* lend = symbol(*module, "lendTrace"))
                reinterpret_cast<void (*)(Trace*)>(lend)(&m_trace);
        }
        return module;
    }
    void free(Handle module) override
    {
        if (module)
            ++frees;
        rx::FolderModuleLoader::free(module);
    }
    int loads = 0, frees = 0;

private:
    Trace& m_trace;
};

class Linker : public ::testing::Test
{
protected:
    Reason lastReason() const { return linker.lastFailure().reason(); }
    Trace trace;
    TracingLoader loader{trace};
    TvRxDynamicLinkerImp linker{loader, &noteReport};
    static void noteReport(const base::Status& status) { reported.push_back(status.reason()); }
    void SetUp() override { reported.clear(); }
    static inline std::vector<Reason> reported;
};

TEST_F(Linker, StartsAModuleOnceAndStopsItBeforeItIsFreed)
{
    EXPECT_TRUE(linker.loadModule(u"First.trx", 1, 1));
    EXPECT_TRUE(linker.isModuleLoaded(u"First.trx"));
    EXPECT_TRUE(linker.loadModule(u"First.trx", 1, 1)) << "it is there already";
    EXPECT_EQ(trace, (Trace{"First 1"}));
    EXPECT_TRUE(linker.unloadModule(u"First.trx", 0));
    EXPECT_EQ(trace, (Trace{"First 1", "First 2"}));
    EXPECT_FALSE(linker.isModuleLoaded(u"First.trx"));
    EXPECT_EQ(loader.loaded(u"First.trx"), nullptr);
    EXPECT_EQ(loader.loads, loader.frees);
    EXPECT_FALSE(linker.unloadModule(u"First.trx", 0));
    EXPECT_TRUE(reported.empty());
}

TEST_F(Linker, SendsMessagesInTheOrderOfTheStartAndClosesInTheReverse)
{
    linker.loadModule(u"Second.trx", 0, 0);
    linker.loadModule(u"First.trx", 0, 0);
    EXPECT_EQ(linker.loadedModules(), (std::vector<TvString>{u"Second.trx", u"First.trx"}));
    trace.clear();
    linker.sendMessage(TvRx::kLoadDwgMsg);
    linker.sendMessage(TvRx::kUnloadDwgMsg);
    linker.unloadAll();
    EXPECT_EQ(trace, (Trace{"Second 3", "First 3", "First 4", "Second 4", "First 2", "Second 2"}));
}

TEST_F(Linker, UnloadsWhatIsLeftWhenItGoes)
{
    {
        TvRxDynamicLinkerImp passing(loader);
        passing.loadModule(u"First.trx", 0, 0);
    }
    EXPECT_EQ(trace, (Trace{"First 1", "First 2"}));
    EXPECT_EQ(loader.loads, loader.frees);
}

TEST_F(Linker, AModuleThatRefusesToStartIsNotThere)
{
    EXPECT_FALSE(linker.loadModule(u"Refusing.trx", 1, 0));
    EXPECT_EQ(trace, (Trace{"Refusing 1"})) << "it is not told to stop what it did not start";
    EXPECT_EQ(lastReason(), Reason::ModuleNotStarted);
    EXPECT_EQ(reported, (std::vector<Reason>{Reason::ModuleNotStarted}));
    EXPECT_FALSE(linker.isModuleLoaded(u"Refusing.trx"));
    EXPECT_EQ(loader.loads, loader.frees);
}

TEST_F(Linker, AFailureIsToldOnlyWhenAskedFor)
{
    EXPECT_FALSE(linker.loadModule(u"Refusing.trx", 0, 1));
    EXPECT_TRUE(reported.empty());
}

TEST_F(Linker, AFailureIsNotToldWhileAGuardKeepsItQuiet)
{
    const TvRxDynamicLinkerOutputGuard quiet;
    EXPECT_FALSE(linker.loadModule(u"Refusing.trx", 1, 1));
    EXPECT_TRUE(reported.empty());
    EXPECT_EQ(lastReason(), Reason::ModuleNotStarted);
}

TEST_F(Linker, AModuleIsRegisteredOnceItSaysSo)
{
    linker.loadModule(u"First.trx", 0, 0);
    EXPECT_FALSE(linker.isModuleRegistered(u"First.trx"));
    linker.registerModule(nullptr);
    EXPECT_FALSE(linker.isModuleRegistered(u"First.trx"));
    linker.registerModule(loader.loaded(u"First.trx"));
    EXPECT_TRUE(linker.isModuleRegistered(u"First.trx"));
    EXPECT_FALSE(linker.isModuleRegistered(u"Second.trx"));
}

TEST_F(Linker, AModuleOfAnotherInterfaceIsNeverCalled)
{
    EXPECT_FALSE(linker.loadModule(u"OtherVersion.trx", 1, 0));
    EXPECT_EQ(lastReason(), Reason::ModuleOfOtherVersion);
    EXPECT_FALSE(linker.loadModule(u"WithoutVersion.trx", 1, 0));
    EXPECT_EQ(lastReason(), Reason::ModuleWithoutEntry);
    EXPECT_TRUE(trace.empty());
    EXPECT_EQ(loader.loads, loader.frees);
}

TEST_F(Linker, NamesAreTakenLetterForLetter)
{
    EXPECT_FALSE(linker.loadModule(u"First", 1, 0));
    EXPECT_EQ(lastReason(), Reason::ModuleNotFound);
    EXPECT_TRUE(linker.loadModule(u"First.trx", 0, 0));
    EXPECT_FALSE(linker.isModuleLoaded(u"FIRST.TRX"));
}

TEST_F(Linker, APathIsNoName)
{
    const TvString path = base::PathRules::native().join(builtModules(), u"First.trx");
    for (const TvString& name : {path, TvString(u"../test-modules/First.trx"), TvString(u"."),
                                 TvString(u".."), TvString(), TvString(u"a\\First.trx")}) {
        EXPECT_FALSE(linker.loadModule(name, 1, 0));
        EXPECT_EQ(lastReason(), Reason::ModuleNameWrong);
    }
    EXPECT_EQ(loader.loads, 0);
}

TEST_F(Linker, TheCurrentFolderIsNotSearched)
{
    const fs::path before = fs::current_path();
    fs::current_path(KV_BUILD_DIR "/test-modules");
    rx::FolderModuleLoader nowhere({u"", u"."});
    const auto module = nowhere.load(u"First.trx");
    fs::current_path(before);
    ASSERT_FALSE(module);
    EXPECT_EQ(module.status().reason(), Reason::ModuleNotFound);
}

TEST_F(Linker, AFileThatIsNoModuleIsRefusedWithTheSystemsReason)
{
    TempFolder folder;
    folder.write("Broken.trx", "this is no code");
    fs::permissions(folder.path() / "Broken.trx", fs::perms(0644));
    rx::FolderModuleLoader broken({folder.file("")});
    const auto module = broken.load(u"Broken.trx");
    ASSERT_FALSE(module);
    EXPECT_EQ(module.status().reason(), Reason::ModuleNotLoaded);
    EXPECT_FALSE(module.status().arguments().at(1).isEmpty());
}

class ModuleFile : public ::testing::Test
{
protected:
    void SetUp() override
    {
        fs::create_directory(folder.path() / "modules");
        folder.write("modules/A.trx", "x");
        allow("modules", 0755);
        allow("modules/A.trx", 0644);
    }
    void allow(const std::string& name, int mode) const
    {
        fs::permissions(folder.path() / name, fs::perms(mode));
    }
    Reason reason() const
    {
        return base::fileOnlyWritableByUs(folder.file("modules/A.trx")).status().reason();
    }
    TempFolder folder;
};

TEST_F(ModuleFile, IsSafeWhenOnlyItsOwnerMayWriteItAndItsFolder)
{
    const auto real = base::fileOnlyWritableByUs(folder.file("modules/A.trx"));
    ASSERT_TRUE(real);
    EXPECT_EQ(base::nativePath(*real), fs::canonical(folder.path() / "modules/A.trx").string());
}

TEST_F(ModuleFile, IsUnsafeWhenOthersMayWriteIt)
{
    allow("modules/A.trx", 0646);
    EXPECT_EQ(reason(), Reason::ModuleNotSafe);
}

TEST_F(ModuleFile, IsUnsafeWhenOthersMayWriteItsFolderEvenIfTheyCannotRenameThere)
{
    allow("modules", 0757);
    EXPECT_EQ(reason(), Reason::ModuleNotSafe);
    allow("modules", 01777);
    EXPECT_EQ(reason(), Reason::ModuleNotSafe);
}

TEST_F(ModuleFile, IsUnsafeBelowAFolderInWhichOthersMayRename)
{
    allow("", 0777);
    EXPECT_EQ(reason(), Reason::ModuleNotSafe);
    allow("", 01777);
    EXPECT_EQ(reason(), Reason::None);
}

TEST_F(ModuleFile, ThroughALinkIsJudgedByWhereItLeads)
{
    fs::create_directory(folder.path() / "open");
    allow("open", 0777);
    folder.write("open/B.trx", "x");
    fs::remove(folder.path() / "modules/A.trx");
    fs::create_symlink(folder.path() / "open/B.trx", folder.path() / "modules/A.trx");
    EXPECT_EQ(reason(), Reason::ModuleNotSafe);
}

TEST_F(ModuleFile, IsARegularFile)
{
    fs::remove(folder.path() / "modules/A.trx");
    EXPECT_EQ(reason(), Reason::FileMissing);
    fs::create_directory(folder.path() / "modules/A.trx");
    EXPECT_EQ(reason(), Reason::NotRegularFile);
}

} // namespace
