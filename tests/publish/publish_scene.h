#pragma once

#include <base/path_rules.h>
#include <core/apart_work.h>
#include <core/optional_module.h>
#include <panel/panel_commands.h>
#include <publish/publish_commands.h>
#include <rx/module_loader.h>

#include "document_scene.h"
#include "house_sheets.h"
#include "plot_calls.h"

/// The modules of one folder of the build, until a test takes them away.
class TestModules : public rx::FolderModuleLoader
{
public:
    explicit TestModules(const char* folder)
        : FolderModuleLoader(
              {base::pathFromNative(std::string(KV_BUILD_DIR) + "/publish-modules/" + folder)})
    {
        rx::setModuleLoader(this);
        core::plotCommandsModule().load();
    }
    ~TestModules() override
    {
        core::plotCommandsModule().free();
        rx::setModuleLoader(nullptr);
    }
};

/// A set in a page, and a plot module that notes what it is asked for.
class PublishTest : public DocumentTest, protected HouseSheets
{
protected:
    void SetUp() override
    {
        DocumentTest::SetUp();
        use("all");
        database = made("house.dst");
        change(database, [this](TvSmSheetSet& top) { makeSheets(top); });
        publish::addHandlers(commands, core::ApartWork::kForEver);
        host.list = &page;
        ActivateSheetSet(database);
    }
    void TearDown() override
    {
        publish::setAskForPageSetups({});
        DocumentTest::TearDown();
        host.list = nullptr;
        m_modules.reset();
    }
    /// The modules in that state from now on: "all", "bare".
    void use(const char* state)
    {
        m_modules.reset();
        m_modules = std::make_unique<TestModules>(state);
        if (const auto tell = core::plotCommandsModule().entry<void (*)(PlotCalls*)>("tellCalls"))
            tell(&calls);
    }
    void select(const std::vector<const TvSmPersist*>& objects)
    {
        page.tree().ClearSelection();
        for (const TvSmPersist* object : objects)
            page.tree().SelectItem(page.tree().itemOf(handleOf(object)));
        page.tree().setCaret(page.tree().itemOf(handleOf(objects.back())));
    }
    template <class Object>
    void exclude(Object* object)
    {
        change(database, [&](TvSmSheetSet&) { object->setExcludeFromPublish(true); });
    }
    /// Runs a command, and gives the sheets that it published.
    std::vector<std::string> published(int id)
    {
        calls.published.clear();
        EXPECT_TRUE(commands.run(id));
        return calls.published.size() == 1 ? calls.published.front().titles
                                           : std::vector<std::string>{"published not once"};
    }
    /// A drawing with page setups, as the set's.
    struct Setup {
        const TvChar* name;
        int plotType;
        const TvChar* key = nullptr; ///< in the dictionary; null: the name
    };
    void pageSetups(const char* name, const std::vector<Setup>& setups)
    {
        DrawingMaker maker;
        {
            const TvDbObjectPointer<TvDbDictionary> all(maker.drawing().plotSettingsDictionaryId(),
                                                        TvDb::kForWrite);
            for (const Setup& row : setups) {
                auto* setup = new TvDbPlotSettings;
                setup->edit().setText("page_setup_name", row.name);
                setup->edit().setInteger("plot_type", row.plotType);
                TvDbObjectId id;
                EXPECT_EQ(all->setAt(row.key ? row.key : row.name, setup, id), TvStatus::Ok);
                setup->close();
            }
        }
        maker.saveAs(folder.file(name));
        namePageSetups(name);
    }
    void namePageSetups(const char* name)
    {
        change(database, [&](TvSmSheetSet& set) {
            auto* reference = newFor<TvSmFileReference>(&set);
            EXPECT_TRUE(reference->setFileName(folder.file(name)) &&
                        set.setAltPageSetups(reference));
        });
    }

    PlotCalls calls;
    TvSmDatabase* database = nullptr;

private:
    class Program : public panel::PanelProgram
    {
    public:
        void exploreFile(const TvString&) override {}
        void hidePanel() override {}
    };
    std::unique_ptr<TestModules> m_modules;
    panel::PageWindow m_window;
    Program m_program;
    base::ManualClock m_clock;

protected:
    panel::SheetListPage page{m_window, m_clock};
    panel::PanelMenus menus{page};
    panel::PanelCommands commands{page, menus, m_program};
};
