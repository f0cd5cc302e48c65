#include "program_scene.h"

#include <db/file_open_info_tip_manager.h>
#include <db/tv_db_symbol_table.h>
#include <rx/tv_rx_dictionary.h>

namespace {

class ProgramTest : public testing::Test, protected ProgramFolder
{
protected:
    NotingPrompts prompts;
    app::Program::Setup setup(bool withModule) { return {folders(withModule), &prompts, &prompts}; }
};

TEST_F(ProgramTest, StandsInTheRegistryWhileItRuns)
{
    {
        app::Program program(setup(false));
        EXPECT_EQ(tvedEditor(), &program.editor());
        EXPECT_EQ(tvDocManagerPtr(), &program.documents());
        EXPECT_EQ(tvrxSysRegistry()->at(u"DynamicLinker"), &program.linker());
        EXPECT_EQ(tvrxSysRegistry()->at(kTvRegisteredCommands), &program.commands());
        EXPECT_NE(tarvConfig(), nullptr);
        EXPECT_NE(rx::moduleLoader(), nullptr);
    }
    EXPECT_EQ(tvedEditor(), nullptr);
    EXPECT_EQ(tvDocManagerPtr(), nullptr);
    EXPECT_EQ(tvrxSysRegistry()->at(u"DynamicLinker"), nullptr);
    EXPECT_EQ(tvrxSysRegistry()->at(kTvRegisteredCommands), nullptr);
    EXPECT_EQ(tarvConfig(), nullptr);
    EXPECT_EQ(rx::moduleLoader(), nullptr);
    EXPECT_EQ(ed::userPrompts(), nullptr);
}

TEST_F(ProgramTest, AMissingModuleIsALineAndNoEnd)
{
    app::Program program(setup(false));

    EXPECT_FALSE(program.loadModules());
    EXPECT_NE(prompts.err.find("KvSheetSet.trx"), std::string::npos) << prompts.err;
    TvApDocument* document = nullptr;
    EXPECT_EQ(program.open(folder.file("a.dwg"), false, document), TvStatus::Ok);
}

TEST_F(ProgramTest, ModulesSeeDrawingsCloseBeforeTheyGo)
{
    const VariableScope trace("KV_TRACE", path("trace").c_str());
    {
        app::Program program(setup(true));
        ASSERT_TRUE(program.loadModules()) << prompts.err;
        TvApDocument* document = nullptr;
        ASSERT_EQ(program.open(folder.file("a.dwg"), false, document), TvStatus::Ok);
        program.documents().lockDocument(document); // as a command would that was cut short
    }
    EXPECT_EQ(folder.read("trace"), "1 3 4 2 ");
}

TEST_F(ProgramTest, SaysOnceWhichExternalReferencesAreNotShown)
{
    app::Program program(setup(false));
    {
        TvDbDatabase host(false, true);
        ASSERT_EQ(host.readDwgFile(folder.file("a.dwg")), TvStatus::Ok);
        TvDbObjectPointer<TvDbBlockTable> blocks(host.symbolTableId(TvDb::SymbolTable::Block),
                                                 TvDb::kForWrite);
        for (const TvChar* path : {u"b.dwg", u"gone.dwg"}) {
            auto* block = new TvDbBlockTableRecord;
            block->setName(TvString(path).left(4));
            ASSERT_EQ(blocks->add(block), TvStatus::Ok);
            block->edit().setFlag("is_xref", true);
            block->edit().setText("xref_path", path);
            block->close();
        }
        blocks.close();
        ASSERT_EQ(host.saveAs(folder.file("host.dwg")), TvStatus::Ok);
    }
    TvApDocument* document = nullptr;
    ASSERT_EQ(program.open(folder.file("host.dwg"), false, document), TvStatus::Ok);
    const std::string told = prompts.err;
    EXPECT_NE(told.find("gone is not shown: there is no drawing gone.dwg"), std::string::npos)
        << told;
    EXPECT_EQ(told.find("b.dw"), std::string::npos) << told;
    program.open(folder.file("host.dwg"), false, document);
    EXPECT_EQ(prompts.err, told) << "it was open already";
    EXPECT_EQ(program.attached().loads(), 1U);
}

TEST_F(ProgramTest, StopsOnce)
{
    const VariableScope trace("KV_TRACE", path("trace").c_str());
    app::Program program(setup(true));
    ASSERT_TRUE(program.loadModules());
    program.stop();
    program.stop();
    EXPECT_EQ(folder.read("trace"), "1 2 ");
    EXPECT_EQ(tvedEditor(), nullptr);
}

TEST_F(ProgramTest, OpensADrawingInUseReadOnlyAndSaysWhoHasIt)
{
    app::Program program(setup(false));
    const LockHolder other(folder.file("a.dwg"));
    ASSERT_TRUE(other.isHolding());
    TvApDocument* document = nullptr;

    EXPECT_EQ(program.open(folder.file("a.dwg"), false, document), TvStatus::FileInUse);
    EXPECT_EQ(document, nullptr);
    EXPECT_NE(prompts.err.find("is being edited by"), std::string::npos) << prompts.err;

    EXPECT_EQ(program.open(folder.file("a.dwg"), true, document), TvStatus::Ok);
    ASSERT_NE(document, nullptr);
    EXPECT_TRUE(document->isReadOnly());
    EXPECT_NE(prompts.err.find("read only"), std::string::npos) << prompts.err;
}

TEST_F(ProgramTest, SaysWhyADrawingCannotBeOpened)
{
    app::Program program(setup(false));
    folder.write("no.dwg", "no drawing at all");
    TvApDocument* document = nullptr;

    EXPECT_EQ(program.open(folder.file("no.dwg"), true, document), TvStatus::FileNotReadable);
    EXPECT_EQ(prompts.failures(), 1);
    EXPECT_NE(prompts.err.find("no.dwg"), std::string::npos) << prompts.err;
    EXPECT_EQ(program.documents().documentCount(), 0);
}

TEST(ModuleFolders, LieBesideTheProgramOrBelowLib)
{
    EXPECT_EQ(app::moduleFoldersFor(u"/opt/tarvik/bin"),
              (std::vector<TvString>{u"/opt/tarvik/modules", u"/opt/tarvik/lib/tarvik/modules"}));
    EXPECT_TRUE(app::moduleFoldersFor({}).empty());
}

} // namespace
