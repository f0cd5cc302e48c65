
#include <QFileDialog>
#include <QLineEdit>

#include <ui/file_dialog.h>

#include "program.h"

namespace {

class FileDialogTest : public Program
{
protected:
    FileDialogTest() { ui::useOwnFileDialogs(true); }
    ~FileDialogTest() override { ui::useOwnFileDialogs(false); }

    ed::UserPrompts::FileQuestion question(const TvString& start)
    {
        ed::UserPrompts::FileQuestion question;
        question.title = u"Open";
        question.start = start;
        question.extensions = {u"dst"};
        question.dialogName = u"OpenSheetSet";
        return question;
    }
    int answering(const ed::UserPrompts::FileQuestion& asked, std::vector<TvString>& out,
                  std::function<void(QFileDialog&)> step)
    {
        whenWaiting([step = std::move(step)] {
            auto* dialog = runningDialog<QFileDialog>();
            ASSERT_TRUE(dialog);
            step(*dialog);
        });
        return ui::askFiles(asked, out);
    }
};

void type(QFileDialog& dialog, const char* name)
{
    dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(QLatin1String(name));
    QMetaObject::invokeMethod(&dialog, "accept");
}

void giveUp(QFileDialog& dialog)
{
    dialog.reject();
}

} // namespace

TEST_F(FileDialogTest, GivesTheChosenFile)
{
    m_folder.write("plan.dst", "x");
    std::vector<TvString> out;
    EXPECT_EQ(
        answering(question(m_folder.file("")), out, [](QFileDialog& d) { type(d, "plan.dst"); }),
        5100);
    EXPECT_EQ(out, std::vector<TvString>{m_folder.file("plan.dst")});
}

TEST_F(FileDialogTest, GivesSeveralFilesWhereItMay)
{
    m_folder.write("a.dst", "x");
    m_folder.write("b.dst", "x");
    ed::UserPrompts::FileQuestion asked = question(m_folder.file(""));
    asked.mayBeSeveral = true;
    std::vector<TvString> out;
    EXPECT_EQ(answering(asked, out, [](QFileDialog& d) { type(d, "\"a.dst\" \"b.dst\""); }), 5100);
    EXPECT_EQ(out, (std::vector<TvString>{m_folder.file("a.dst"), m_folder.file("b.dst")}));
}

TEST_F(FileDialogTest, GivesAFolder)
{
    std::filesystem::create_directory(m_folder.path() / "sub");
    ed::UserPrompts::FileQuestion asked = question(m_folder.file(""));
    asked.isForFolder = true;
    std::vector<TvString> out;
    EXPECT_EQ(answering(asked, out, [](QFileDialog& d) { type(d, "sub"); }), 5100);
    EXPECT_EQ(out, std::vector<TvString>{m_folder.file("sub")});
}

TEST_F(FileDialogTest, GivingUpChangesNothing)
{
    std::vector<TvString> out{u"before"};
    EXPECT_EQ(answering(question(m_folder.file("")), out, giveUp), ed::kCancelled);
    EXPECT_EQ(out, std::vector<TvString>{u"before"});
    EXPECT_TRUE(ui::rememberedText(u"FileDialogs\\OpenSheetSet").isEmpty());
}

TEST_F(FileDialogTest, BeginsWhereItWasAnsweredLast)
{
    m_folder.write("plan.dst", "x");
    std::vector<TvString> out;
    answering(question(m_folder.file("")), out, [](QFileDialog& d) { type(d, "plan.dst"); });
    QString folder;
    const auto look = [&](QFileDialog& dialog) {
        folder = dialog.directory().absolutePath();
        dialog.reject();
    };
    answering(question({}), out, look);
    EXPECT_EQ(folder, QString::fromStdString(m_folder.path().string()));
    ed::UserPrompts::FileQuestion other = question({});
    other.dialogName = u"Another";
    answering(other, out, look);
    EXPECT_NE(folder, QString::fromStdString(m_folder.path().string()));
}

TEST_F(FileDialogTest, BeginsAtTheFileOfTheQuestion)
{
    m_folder.write("plan.dst", "x");
    std::vector<TvString> out;
    QString name;
    answering(question(m_folder.file("plan.dst")), out, [&](QFileDialog& dialog) {
        name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text();
        dialog.reject();
    });
    EXPECT_EQ(name, QStringLiteral("plan.dst"));
}

TEST_F(FileDialogTest, OffersItsExtensions)
{
    ed::UserPrompts::FileQuestion asked = question(m_folder.file(""));
    asked.extensions = {u"dwg", u"dxf"};
    std::vector<TvString> out;
    QStringList filters;
    const auto look = [&](QFileDialog& dialog) {
        filters = dialog.nameFilters();
        dialog.reject();
    };
    answering(asked, out, look);
    ASSERT_EQ(filters.size(), 3);
    EXPECT_TRUE(filters[0].contains(QLatin1String("(*.dwg *.dxf)")));
    EXPECT_TRUE(filters[2].contains(QLatin1String("(*.dxf)")));
    asked.extensions.clear();
    answering(asked, out, look);
    EXPECT_EQ(filters.size(), 1);
}

TEST_F(FileDialogTest, PassesOverFoldersThatAreGoneOrNobodyAgreedTo)
{
    for (const TvChar* start : {u"/no/such/folder/here", u"\\\\server\\share\\plans",
                                u"//server/share", u"smb://server/share"}) {
        std::vector<TvString> out;
        ui::rememberText(u"FileDialogs\\OpenSheetSet", start);
        EXPECT_EQ(answering(question(start), out, giveUp), ed::kCancelled);
    }
    EXPECT_FALSE(ui::folderAnswers({}, 100));
    EXPECT_FALSE(ui::folderAnswers(u"\\\\server\\share", 100));
    EXPECT_TRUE(ui::folderAnswers(m_folder.file(""), 5000));
    m_folder.write("file", "x");
    EXPECT_FALSE(ui::folderAnswers(m_folder.file("file"), 5000));
}
