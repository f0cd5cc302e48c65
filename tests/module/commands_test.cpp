// Commands and exports that work on the current set.

#include <core/optional_module.h>
#include <core/sheet_data.h>
#include <db/tv_db_database.h>
#include <db/tv_db_host_application_services.h>
#include <ed/system_variables.h>
#include <module/exports.h>
#include <module/publish_values.h>
#include <rx/resource_module.h>

#include "panel_scene.h"

namespace {

std::vector<std::pair<std::size_t, int>> g_archived; // sheets, status of the lock meanwhile

void noteArchive(std::size_t sheets, TvSmDatabase* database)
{
    g_archived.emplace_back(sheets, database->getLockStatus());
    database->getSheetSet()->setName(u"Archived");
}

class Commands : public PanelScene
{
protected:
    void SetUp() override
    {
        PanelScene::SetUp();
        g_archived.clear();
        using Tell = void (*)(void (*)(std::size_t, TvSmDatabase*));
        if (const auto tell = core::transmitModule().entry<Tell>("tellOfArchive"))
            tell(&noteArchive);
    }
    TvSmDatabase* activated()
    {
        TvSmDatabase* database = made("a.dst");
        EXPECT_TRUE(database->lockDb(database));
        TvSmSubset* plans = addSubset(database->getSheetSet(), u"Plans");
        for (TvSmSubset* where : {static_cast<TvSmSubset*>(database->getSheetSet()), plans, plans})
            addSheet(where, u"1", u"Sheet");
        EXPECT_TRUE(database->unlockDb(database, true));
        ActivateSheetSet(database);
        return database;
    }
    static TvString nameOf(const TvSmDatabase* set)
    {
        TvString text;
        return set->getSheetSet()->getName(text);
    }
};

TEST_F(Commands, ArchiveWithoutASetIsToldAndEnds)
{
    type(u"ARCHIVE");
    EXPECT_EQ(shown, Trace{"514"});
    EXPECT_TRUE(g_archived.empty());
}

TEST_F(Commands, ArchiveHandsAllSheetsOverUnderTheLockAndKeepsWhatWasDone)
{
    const TvSmDatabase* database = activated();
    type(u"ARCHIVE");
    EXPECT_EQ(g_archived, (std::vector<std::pair<std::size_t, int>>{{3, 1}}));
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_EQ(nameOf(database), u"Archived");
    EXPECT_TRUE(shown.empty());
}

TEST_F(Commands, ArchiveOfALockedSetIsSilent)
{
    TvSmDatabase* database = activated();
    ASSERT_TRUE(database->lockDb(database));
    type(u"ARCHIVE");
    EXPECT_TRUE(g_archived.empty());
    EXPECT_EQ(database->getLockStatus(), 1) << "another's lock is left alone";
    database->unlockDb(database, false);
    EXPECT_TRUE(shown.empty());
    EXPECT_TRUE(said.empty());
}

TEST_F(Commands, ArchiveWithoutTheTransmitModuleIsSilent)
{
    const TvSmDatabase* database = activated();
    core::transmitModule().free();
    type(u"ARCHIVE");
    EXPECT_TRUE(g_archived.empty());
    EXPECT_EQ(nameOf(database), TvString());
    EXPECT_TRUE(shown.empty());
    EXPECT_TRUE(said.empty());
}

TEST_F(Commands, LabelsNeverChangeTheSet)
{
    struct Events : TvSmEvents {
        void onEvent(int code, TvSmPersist*) override { codes.push_back(code); }
        std::vector<int> codes;
    } events;
    TvSmDatabase* database = activated();
    const int cookie = database->registerEventHandler(&events);
    type(u"VIEWLABEL");
    database->unregisterEventHandler(cookie);
    EXPECT_EQ(events.codes, std::vector<int>{SmEventLockEnded}) << "rolled back";
    EXPECT_EQ(database->getLockStatus(), 0);
    ASSERT_TRUE(database->lockDb(database));
    type(u"CALLOUT");
    EXPECT_EQ(database->getLockStatus(), 1) << "a lock that was refused is not ended";
    database->unlockDb(database, false);
    EXPECT_EQ(said, (Trace{"8900 VIEWLABEL", "8900 CALLOUT"}));
}

TEST_F(Commands, TheSetOfTheCurrentLayoutIsTold)
{
    struct Layout : sm::CurrentLayoutProvider {
        bool currentLayout(TvDbDatabase*&, TvString& drawing, TvDbHandle& layout) override
        {
            drawing = path;
            layout = TvDbHandle(0x22);
            return !path.isEmpty();
        }
        TvString path;
    } layout;
    sm::environment().layout = &layout;
    TvSmDatabase* database = made("b.dst");
    folder.write("plan.dwg", "x");
    ASSERT_TRUE(database->lockDb(database));
    setLayout(addSheet(database->getSheetSet(), u"1", u"Plan"), folder.file("plan.dwg"), u"22",
              u"Layout1");
    ASSERT_TRUE(database->unlockDb(database, true));
    TvString file = u"before";
    tarvGetSheetSetInternal()->GetCurrentLayoutSheetSetFile(file);
    EXPECT_EQ(file, TvString()) << "no layout";
    layout.path = folder.file("plan.dwg");
    tarvGetSheetSetInternal()->GetCurrentLayoutSheetSetFile(file);
    EXPECT_EQ(file, folder.file("b.dst"));
    layout.path = folder.file("other.dwg");
    tarvGetSheetSetInternal()->GetCurrentLayoutSheetSetFile(file);
    EXPECT_EQ(file, TvString());
    sm::environment().layout = nullptr;
    manager.closeDatabase(database);
}

TEST_F(Commands, TheInternalInterfaceOpensAsTheCommandsDo)
{
    TarvSheetSetInternal* internal = tarvGetSheetSetInternal();
    internal->OpenSheetSetFile(nullptr);
    internal->OpenSheetSetByDialog();
    internal->RunNewSheetSetWizard();
    EXPECT_EQ(shown, Trace{"dialog"});
    EXPECT_EQ(said, Trace{"8900 NEWSHEETSET"});
}

TEST_F(Commands, ViewCategoriesOfTheSetOfTheDrawingAreAdded)
{
    TvSmDatabase* database = activated();
    ASSERT_TRUE(database->lockDb(database));
    for (const TvChar* name : {u"Elevations", u"Details"}) {
        auto* category = new TvSmViewCategory;
        auto* categories = database->getSheetSet()->getViewCategories();
        ASSERT_TRUE(category->initNew(categories, u""));
        ASSERT_TRUE(categories->add(category, 0));
        category->setName(name);
    }
    ASSERT_TRUE(database->unlockDb(database, true));
    TvDbDatabase drawing(true, true);
    tvdbHostApplicationServices()->setWorkingDatabase(&drawing);
    std::vector<TvString> names;
    KvCmd_GetViewCategoryFromCurSheetSet(&names);
    EXPECT_TRUE(names.empty()) << "the drawing names no set";
    ASSERT_TRUE(WriteSheetData(&drawing, {u"22", u"L", u"a.dwg", folder.file("a.dst")}));
    KvCmd_GetViewCategoryFromCurSheetSet(&names);
    tvdbHostApplicationServices()->setWorkingDatabase(nullptr);
    EXPECT_NE(std::ranges::find(names, TvString(u"Elevations")), names.end());
    EXPECT_NE(std::ranges::find(names, TvString(u"Details")), names.end());
}

TEST_F(Commands, PublishOptionsDrawTheInspectorAsInDialogsForAsLong)
{
    struct Heard : TvEditorReactor {
        void sysVarChanged(const TvChar* name) override
        {
            values.push_back(TvString(name).utf8() + " " +
                             ed::valueText(*ed::variable(name)).utf8() + " " +
                             rx::currentResourceName().utf8());
        }
        Trace values;
    } heard;
    editor.addReactor(&heard);
    KvCmd_DWFPublishOption(nullptr, nullptr, nullptr);
    editor.removeReactor(&heard);
    EXPECT_EQ(heard.values, (Trace{"_KV_INSPECTORCONTROLSTYLES 2 KvSheetSetRes.dll",
                                   "_KV_INSPECTORCONTROLSTYLES 0 KvSheetSetRes.dll"}));
    EXPECT_EQ(rx::currentResourceName(), TvString());
}

TEST(PublishValues, AreCopiedMemberByMember)
{
    KvPublishDocumentAndLayoutSwitcher switcher;
    switcher.first = 1;
    switcher.third = u"Layout1";
    switcher.fifth = true;
    switcher.seventh = {7, 8};
    KvPublishDocumentAndLayoutSwitcher copy;
    copy = switcher;
    EXPECT_EQ(copy.third, u"Layout1");
    EXPECT_TRUE(copy.fifth);
    EXPECT_EQ(copy.seventh.size(), 2u);
    KvPublishOpenDocumentManager documents;
    documents.documents = {{1, 2}};
    EXPECT_EQ(KvPublishOpenDocumentManager(documents).documents.at(1), 2u);
}

// Optional modules

struct BareModules : HostScene {
    BareModules() : HostScene("bare") {}
};

TEST_F(BareModules, ThatLackAnExportAreSilent)
{
    KvSheetSetApp app;
    app.entryPoint(1, nullptr);
    EXPECT_TRUE(core::transmitModule().isThere());
    EXPECT_EQ(core::transmitModule().entry<void (*)()>("KvCmd_Archive"), nullptr);
    TvSmDatabase* database = made("a.dst");
    ActivateSheetSet(database);
    type(u"ARCHIVE");
    EXPECT_TRUE(shown.empty());
    EXPECT_TRUE(said.empty());
    CloseCurrentSheetSet();
    app.entryPoint(2, nullptr);
}

TEST_F(BareModules, ADataLinkModuleThatTheLinkerCannotStartIsLoadedAllTheSame)
{
    const rx::ModuleLoader::Handle links = core::dataLinkModule();
    EXPECT_NE(links, nullptr);
    EXPECT_EQ(told(),
              (Trace{"load KvDatalink.trx", "free KvDatalink.trx", "is it loaded: KvDatalink.trx",
                     "load KvDatalink.trx", "is it loaded: KvDatalink.trx"}));
    loader.free(links);
}

struct Modules : HostScene {
};

TEST_F(Modules, TheDataLinkModuleIsStartedByTheLinkerOnce)
{
    const rx::ModuleLoader::Handle links = core::dataLinkModule();
    ASSERT_NE(links, nullptr);
    EXPECT_TRUE(linker.isModuleLoaded(u"KvDatalink.trx"));
    EXPECT_EQ(told(), (Trace{"load KvDatalink.trx", "is it loaded: KvDatalink.trx"}));
    EXPECT_EQ(core::dataLinkModule(), links);
    EXPECT_EQ(told(), Trace{"is it loaded: KvDatalink.trx"});
}

TEST_F(Modules, WithoutTheDataLinkModuleOrTheHostsLinkerThereIsNone)
{
    loader.missing = {"KvDatalink.trx"};
    EXPECT_EQ(core::dataLinkModule(), nullptr);
    loader.missing.clear();
    TvRxDictionary notALinker;
    tvrxSysRegistry()->atPut(kTvRxDynamicLinker, &notALinker);
    EXPECT_EQ(core::dataLinkModule(), nullptr);
    tvrxSysRegistry()->remove(kTvRxDynamicLinker);
    EXPECT_EQ(core::dataLinkModule(), nullptr);
}

} // namespace
