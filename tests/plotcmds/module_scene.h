#pragma once

#include <filesystem>

#include <rx/tv_user_messages.h>
#include <sm/tv_sm_publish_options.h>

#include "exports.h"
#include "plot_scene.h"
#include "program.h"
#include "progress_dialog.h"
#include "sheet_set_builder.h"

/// A set with two sheets of one drawing, and a folder that its options name.
class ModuleTest : public Program, protected SheetSetScene
{
protected:
    ModuleTest()
    {
        plan.line(0, 0, 300, 200);
        plan.text(u"Kitchen", 50, 50);
        EXPECT_EQ(plan.database().saveAs(folder.file("plan.dwg")), TvStatus::Ok);
        database = create();
        set = database->getSheetSet();
        set->setName(u"House");
        TvSmSubset* subset = addSubset(set, u"Architect");
        sheets = {addSheet(subset, u"1", u"Ground"), addSheet(subset, u"2", u"Upper")};
        for (TvSmSheet* sheet : sheets)
            setLayout(sheet, folder.file("plan.dwg"), u"0", u"Plan");
        std::filesystem::create_directory(folder.path() / "out");
        auto* output = newFor<TvSmFileReference>(set->getPublishOptions());
        output->setFileName(folder.file("out"));
        set->getPublishOptions()->setDefaultOutputdir(output);
        set->getPublishOptions()->setDefaultFileName(u"all.dwf");
    }
    ~ModuleTest() override
    {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (auto* progress = dynamic_cast<plotcmds::ProgressDialog*>(window))
                delete progress;
    }

    static plotcmds::ProgressDialog* progress()
    {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (auto* found = dynamic_cast<plotcmds::ProgressDialog*>(window))
                return found;
        return nullptr;
    }
    void publish(int kind)
    {
        PublishRequest request;
        request.kind = kind;
        KvCmd_PublishSheetSet(&sheets, set, &request);
    }
    static bool waitForEnd()
    {
        return QTest::qWaitFor([] { return progress() && progress()->isOver(); }, 20'000);
    }
    bool isThere(const char* name) { return std::filesystem::exists(folder.path() / "out" / name); }

    PlotScene plan;
    TvSmDatabase* database;
    TvSmSheetSet* set;
    std::vector<TvSmSheet*> sheets;
};
