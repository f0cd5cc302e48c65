// The machine's print service, as its programs answer.

#include <filesystem>

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

#include <ed/user_prompts.h>

#include "exports.h"
#include "fake_programs.h"
#include "plot_scene.h"
#include "printing.h"
#include "program.h"
#include "progress_dialog.h"
#include "publisher.h"

namespace {

namespace fs = std::filesystem;

class Printing : public Program
{
protected:
    ~Printing() override
    {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (auto* progress = dynamic_cast<plotcmds::ProgressDialog*>(window))
                delete progress;
    }
    void program(const char* name, const std::string& script) { m_programs.add(name, script); }
    TvString fileToPrint()
    {
        folder.write("page.pdf", "%PDF");
        return folder.file("page.pdf");
    }
    plot::JobRequest job()
    {
        plot::JobRequest job;
        job.pages.resize(1);
        job.pages[0].content = scene.bytes();
        job.pages[0].layoutName = u"Plan";
        return job;
    }
    static plotcmds::ProgressDialog* progress()
    {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (auto* found = dynamic_cast<plotcmds::ProgressDialog*>(window))
                return found;
        return nullptr;
    }
    static bool waitForEnd()
    {
        return QTest::qWaitFor([] { return progress() && progress()->isOver(); }, 20'000);
    }
    /// Chooses that printer in the dialog, so often.
    static void answer(const char* printer, const char* copies)
    {
        whenWaiting([=] {
            auto* dialog = runningDialog<CTvUiDialog>();
            ASSERT_TRUE(dialog);
            dialog->Item<QComboBox>(10)->setCurrentText(QString::fromLatin1(printer));
            dialog->Item<QLineEdit>(11)->setText(QString::fromLatin1(copies));
            dialog->Item<QPushButton>(text::kIdOk)->click();
        });
    }

    TempFolder folder;
    PlotScene scene;

private:
    FakePrograms m_programs;
};

TEST_F(Printing, TheServiceIsAskedForItsPrinters)
{
    program("lpstat", "echo Office; echo; echo 'Big one'");
    EXPECT_EQ(plotcmds::printersOfMachine(), (std::vector<TvString>{u"Office", u"Big one"}));
    program("lpstat", "echo Office; exit 1");
    EXPECT_TRUE(plotcmds::printersOfMachine().empty());
    qputenv("PATH", "/nowhere");
    EXPECT_TRUE(plotcmds::printersOfMachine().empty());
}

TEST_F(Printing, AFileIsHandedOverAndRemoved)
{
    program("lp", "echo \"$@\" > " + folder.file("said").utf8());
    const TvString path = fileToPrint();
    const TvString told = plotcmds::printFile(path, {u"Office", 3}, u"House");
    EXPECT_EQ(folder.read("said"), "-d Office -n 3 -t House -- " + path.utf8() + "\n");
    EXPECT_NE(told.find(u"Office"), TvString::npos);
    EXPECT_FALSE(fs::exists(folder.path() / "page.pdf"));
}

TEST_F(Printing, TheFolderForFilesThatArePrintedIsMade)
{
    const QByteArray former = qgetenv("XDG_CACHE_HOME");
    qputenv("XDG_CACHE_HOME", (folder.path() / "cache").c_str());
    const fs::path first = plotcmds::temporaryPdf().utf8();
    const fs::path second = plotcmds::temporaryPdf().utf8();
    if (former.isEmpty())
        qunsetenv("XDG_CACHE_HOME");
    else
        qputenv("XDG_CACHE_HOME", former);

    EXPECT_TRUE(first.string().starts_with((folder.path() / "cache").string()));
    EXPECT_TRUE(fs::is_directory(first.parent_path()));
    EXPECT_NE(first, second);
}

TEST_F(Printing, WhatTheServiceComplainsOfIsTold)
{
    program("lp", "echo 'lp: no such printer' >&2; exit 1");
    const TvString told = plotcmds::printFile(fileToPrint(), {u"Office", 1}, {});
    EXPECT_NE(told.find(u"no such printer"), TvString::npos);
    EXPECT_FALSE(fs::exists(folder.path() / "page.pdf"));
}

TEST_F(Printing, AJobGoesToThePrinterThatIsChosen)
{
    program("lpstat", "echo Office; echo Big");
    program("lp", "cp \"$6\" " + folder.file("printed").utf8() + "; echo $2 $4 > " +
                      folder.file("said").utf8());
    answer("Big", "2");
    plotcmds::publishJob(job(), plot::kToPrinter, {});
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(folder.read("said"), "Big 2\n");
    EXPECT_TRUE(folder.read("printed").starts_with("%PDF-"));
}

TEST_F(Printing, CopiesThatAreNoNumberKeepTheQuestionOpen)
{
    const std::vector<TvString> printers{u"Office"};
    whenWaiting([] {
        auto* dialog = runningDialog<CTvUiDialog>();
        ASSERT_TRUE(dialog);
        dialog->Item<QLineEdit>(11)->setText("0");
        dialog->Item<QPushButton>(text::kIdOk)->click();
        EXPECT_TRUE(dialog->isVisible());
        dialog->reject();
    });
    EXPECT_FALSE(plotcmds::askPrinter(printers));
}

/// With a print service of the machine: KV_PRINTER names one of its printers.
TEST_F(Printing, TheMachinesOwnServiceTakesAJob)
{
    const QByteArray printer = qgetenv("KV_PRINTER");
    if (printer.isEmpty())
        GTEST_SKIP();
    const auto all = plotcmds::printersOfMachine();
    ASSERT_NE(std::ranges::find(all, TvString(printer.toStdString())), all.end());
    answer(printer.constData(), "1");
    plotcmds::publishJob(job(), plot::kToPrinter, {});
    ASSERT_TRUE(waitForEnd());
    const TvString line = progress()->GetDlgItemText(plotcmds::ProgressDialog::kLine);
    EXPECT_EQ(line, TvString("The sheets were sent to " + printer.toStdString() + "."));
}

} // namespace
