// What every module is: its messages, and what its base does at start and end.

#include <rx/tv_rx_app.h>
#include <rx/tv_rx_dictionary.h>
#include <rx/tv_rx_dynamic_linker.h>
#include <rx/tv_rx_dynamic_linker_output_guard.h>

namespace {

std::vector<std::string> g_trace;

class Module : public TvRxTrxApp
{
public:
    explicit Module(bool registersClasses = true) { m_registersClasses = registersClasses; }

    int onMessage0(void*) override { return 100; }
    int onLoadDocument(void*) override { return 103; }
    int onUnloadDocument(void*) override { return 104; }
    int onInvokeFunction(void*) override { return 105; }
    int onMessage6(void*) override { return 106; }
    int onMessage15(void* appId) override { return *static_cast<int*>(appId); }

protected:
    std::unique_ptr<TvRxDynPropManager> makeDynPropManager() override
    {
        struct Noting : TvRxDynPropManager {
            Noting() { g_trace.push_back("properties made"); }
            ~Noting() override { g_trace.push_back("properties deleted"); }
        };
        return std::make_unique<Noting>();
    }
    std::span<const CommandEntry> commandTable() const override
    {
        static constexpr CommandEntry kCommands[] = {{u"G", u"ONE", u"EINS", 0, [] {}},
                                                     {u"G", u"TWO", u"ZWEI", 0, [] {}}};
        return kCommands;
    }
    std::span<ClassEntry> classTable() override { return m_classes; }

private:
    std::vector<ClassEntry> m_classes = {
        {TvRxObject::desc(), true, [] { g_trace.push_back("class removed"); }},
        {TvRxObject::desc(), false, [] { g_trace.push_back("never registered"); }}};
};

class RxApp : public testing::Test
{
protected:
    struct Linker : TvRxDynamicLinker {
        bool loadModule(const TvString&, int, int) override { return false; }
        bool unloadModule(const TvString&, int) override { return false; }
        bool isModuleLoaded(const TvString&) const override { return false; }
        std::vector<TvString> loadedModules() const override { return {}; }
        void registerModule(void*) override
        {
            g_trace.push_back("registered " + std::to_string(tvrxClassHierarchyVersion() - before));
        }
        unsigned before = tvrxClassHierarchyVersion();
    };
    struct Stack : TvEdCommandStackImp {
        bool removeCmd(const TvString& group, const TvString& name) override
        {
            g_trace.push_back("removed " + name.utf8());
            return TvEdCommandStackImp::removeCmd(group, name);
        }
    };
    void SetUp() override
    {
        g_trace.clear();
        tvrxSysRegistry()->atPut(kTvRxDynamicLinker, &linker);
        tvrxSysRegistry()->atPut(kTvRegisteredCommands, &stack);
    }
    void TearDown() override
    {
        tvrxSysRegistry()->remove(kTvRxDynamicLinker);
        tvrxSysRegistry()->remove(kTvRegisteredCommands);
    }
    Linker linker;
    Stack stack;
    Module module;
};

TEST_F(RxApp, HandsEachMessageToItsOperation)
{
    int answer = 115;
    EXPECT_EQ(module.entryPoint(0, nullptr), 100);
    EXPECT_EQ(module.entryPoint(3, nullptr), 103);
    EXPECT_EQ(module.entryPoint(4, nullptr), 104);
    EXPECT_EQ(module.entryPoint(5, nullptr), 105);
    EXPECT_EQ(module.entryPoint(6, nullptr), 106);
    for (int message = 7; message < 15; ++message)
        EXPECT_EQ(module.entryPoint(message, nullptr), 0) << message;
    EXPECT_EQ(module.entryPoint(15, &answer), 115);
    for (const int none : {16, 17, 1000, -1})
        EXPECT_EQ(module.entryPoint(none, nullptr), 0) << none;
}

TEST_F(RxApp, TellsTheLinkerFirstAndThenMakesItsProperties)
{
    EXPECT_EQ(module.entryPoint(1, nullptr), 0);
    EXPECT_EQ(g_trace, (std::vector<std::string>{"registered 0", "properties made"}));
    EXPECT_EQ(tvrxClassHierarchyVersion(), linker.before + 1) << "and the tree of classes";
    EXPECT_NE(stack.lookupGlobalCmd(u"TWO"), nullptr);
    module.entryPoint(2, nullptr);
}

TEST_F(RxApp, TakesClassesPropertiesAndCommandsBackInThatOrder)
{
    module.entryPoint(1, nullptr);
    g_trace.clear();
    EXPECT_EQ(module.entryPoint(2, nullptr), 0);
    EXPECT_EQ(g_trace, (std::vector<std::string>{"class removed", "properties deleted",
                                                 "removed ONE", "removed TWO"}));
    EXPECT_EQ(module.dynPropManager(), nullptr);
    EXPECT_TRUE(stack.commands().empty());
}

TEST_F(RxApp, WithoutClassesOfItsOwnTellsNobody)
{
    Module quiet(false);
    quiet.entryPoint(1, nullptr);
    EXPECT_EQ(g_trace, std::vector<std::string>{"properties made"});
    EXPECT_EQ(tvrxClassHierarchyVersion(), linker.before);
    quiet.entryPoint(2, nullptr);
}

TEST_F(RxApp, StartsInAHostWithoutLinkerAndCommands)
{
    tvrxSysRegistry()->remove(kTvRxDynamicLinker);
    tvrxSysRegistry()->remove(kTvRegisteredCommands);
    EXPECT_EQ(module.entryPoint(1, nullptr), 0);
    EXPECT_EQ(module.entryPoint(2, nullptr), 0);
}

TEST(LinkerOutputGuard, KeepsTheLinkerQuietWhileAnyLives)
{
    using Guard = TvRxDynamicLinkerOutputGuard;
    EXPECT_FALSE(Guard::isQuiet());
    {
        Guard one;
        {
            Guard copy(one);
            copy = one;
        }
        EXPECT_TRUE(Guard::isQuiet());
    }
    EXPECT_FALSE(Guard::isQuiet());
}

} // namespace
