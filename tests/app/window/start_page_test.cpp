#include "window_scene.h"

#include <QListWidget>
#include <QPushButton>

#include <base/kv_file_system.h>
#include <ed/recent_files.h>
#include <ui/drawing_picture.h>
#include <window/start_page.h>

namespace {

class StartPageTest : public WindowTest
{
protected:
    QListWidget& list() { return main->startPage().list(); }
    bool isShown() { return main->startPage().isVisible(); }
    void closeAll()
    {
        while (tabs().count() > 0)
            type("CLOSE");
    }
    std::vector<std::string> names()
    {
        std::vector<std::string> all;
        for (int i = 0; i < list().count(); ++i)
            all.push_back(list().item(i)->text().toStdString());
        return all;
    }
};

TEST_F(StartPageTest, IsThereAsLongAsNothingIsOpen)
{
    EXPECT_TRUE(isShown());
    open("a.dwg");
    EXPECT_FALSE(isShown());
    EXPECT_TRUE(tabs().isVisible());
    closeAll();
    EXPECT_TRUE(isShown());
}

TEST_F(StartPageTest, ShowsRecentFilesTheLatestFirstAndOpensThem)
{
    type(("OPEN " + path("a.dwg")).c_str());
    type(("OPEN " + path("b.dwg")).c_str());
    closeAll();
    ASSERT_EQ(names(), (std::vector<std::string>{"b.dwg", "a.dwg"}));
    list().setFocus();
    list().setCurrentRow(1);
    QTest::keyClick(&list(), Qt::Key_Return);
    settle();
    ASSERT_EQ(tabs().count(), 1);
    EXPECT_EQ(tabText(*tabs().tabBar()), "a.dwg");
}

TEST_F(StartPageTest, DeleteTakesOutOfTheListAndTypingGoesToTheCommandLine)
{
    type(("OPEN " + path("a.dwg")).c_str());
    closeAll();
    list().setFocus();
    list().setCurrentRow(0);
    QTest::keyClicks(&list(), "op");
    EXPECT_EQ(line().text(), "op");
    line().clear();
    QTest::keyClick(&list(), Qt::Key_Delete);
    settle();
    EXPECT_TRUE(names().empty());
    EXPECT_TRUE(ed::recentFiles().empty());
    EXPECT_TRUE(KvFileSystem::pathFileExists(folder.file("a.dwg"))) << "the file stays";
}

TEST_F(StartPageTest, TheButtonsRunTheirCommands)
{
    for (QPushButton* button : main->startPage().findChildren<QPushButton*>())
        if (button->text() == QLatin1String("New drawing"))
            QTest::mouseClick(button, Qt::LeftButton);
    settle();
    EXPECT_EQ(tabs().count(), 1);
}

TEST_F(StartPageTest, DrawingsHaveTheirPicturesAlsoWhereTheyKeepNone)
{
    EXPECT_FALSE(ui::drawingPicture(folder.file("a.dwg")).isNull());
    EXPECT_TRUE(ui::drawingPicture(folder.file("none.dwg")).isNull());
    folder.write("bad.dwg", folder.read("a.dwg").substr(0, 900));
    ui::drawingPicture(folder.file("bad.dwg")); // whatever comes of it
    type(("OPEN " + path("a.dwg")).c_str());
    closeAll();
    for (int i = 0; i < 50 && !main->startPage().hasAllPictures(); ++i)
        QApplication::processEvents();
    EXPECT_TRUE(main->startPage().hasAllPictures());
    const QImage shown = list().item(0)->icon().pixmap(168, 120).toImage();
    EXPECT_EQ(shown.width(), 168) << "a card, not the icon of its kind";
}

TEST_F(StartPageTest, TheDesktopIsToldOfWhatWasOpened)
{
    type(("OPEN " + path("a.dwg")).c_str());
    const std::string told = folder.read("recently-used.xbel");
    EXPECT_NE(told.find("a.dwg"), std::string::npos) << told;
    EXPECT_NE(told.find("image/vnd.dwg"), std::string::npos) << told;
}

} // namespace
