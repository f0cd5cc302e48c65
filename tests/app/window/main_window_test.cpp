#include "window_scene.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

#include <app/words.h>
#include <ed/layouts.h>
#include <ed/system_variables.h>

namespace {

using window::DocumentPage;

TEST_F(WindowTest, EachDrawingHasATabAndTheActiveOneIsShown)
{
    open("a.dwg");
    open("b.dwg");
    EXPECT_EQ(tabs().count(), 2);
    EXPECT_EQ(tabText(*tabs().tabBar()), "b.dwg");
    tabs().setCurrentIndex(0);
    settle();
    EXPECT_EQ(program.documents().mdiActiveDocument()->docTitle(), u"a.dwg");
    open("b.dwg"); // it is open: no second tab
    EXPECT_EQ(tabs().count(), 2);
    EXPECT_EQ(tabText(*tabs().tabBar()), "b.dwg");
}

TEST_F(WindowTest, LayoutTabsFollowTheDrawingAndTheDrawingFollowsThem)
{
    DocumentPage& page = open("a.dwg");
    ASSERT_EQ(page.layoutTabs().count(), 2);
    EXPECT_EQ(tabText(page.layoutTabs()), "Model");

    type("CTAB Layout1");
    EXPECT_EQ(tabText(page.layoutTabs()), "Layout1");

    QTest::mouseClick(&page.layoutTabs(), Qt::LeftButton, {},
                      page.layoutTabs().tabRect(0).center());
    settle();
    EXPECT_EQ(ed::currentLayoutName(*page.document().database()), u"Model");

    main->perform(app::WindowAction::NextLayout);
    settle();
    EXPECT_EQ(ed::currentLayoutName(*page.document().database()), u"Layout1");

    main->perform(app::WindowAction::PreviousLayout);
    settle();
    EXPECT_EQ(ed::currentLayoutName(*page.document().database()), u"Model");
}

TEST_F(WindowTest, LayoutTabsOfTheFirstDrawingAreSeenAtOnce)
{
    window::DocumentPage& page = open("a.dwg");
    EXPECT_GE(page.layoutTabs().height(), page.layoutTabs().sizeHint().height());
    EXPECT_EQ(page.layoutTabs().geometry().bottom(), page.rect().bottom());
    EXPECT_LE(page.canvas().geometry().bottom(), page.layoutTabs().geometry().top());
}

TEST_F(WindowTest, EachLayoutKeepsItsViewWhileTheDrawingIsOpen)
{
    DocumentPage& page = open("a.dwg");
    page.canvas().zoomBy(3);
    const app::ViewTransform model = page.canvas().view();
    type("CTAB Layout1");
    EXPECT_NE(page.canvas().view(), model);
    type("CTAB Model");
    EXPECT_EQ(page.canvas().view(), model);
}

TEST_F(WindowTest, AChangedDrawingIsMarked)
{
    open("a.dwg");
    EXPECT_FALSE(main->isWindowModified());
    type("CTAB Layout1");
    EXPECT_TRUE(main->isWindowModified());
    EXPECT_EQ(tabText(*tabs().tabBar()), "a.dwg *");
}

TEST_F(WindowTest, ADroppedFileIsOpened)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path("a.dwg"))),
                  QUrl(QStringLiteral("http://127.0.0.1/c.dwg"))});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(main.get(), &enter);
    ASSERT_TRUE(enter.isAccepted());
    QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(main.get(), &event);
    settle();
    EXPECT_EQ(program.documents().documentCount(), 1);
    EXPECT_NE(program.documents().documentOf(folder.file("a.dwg")), nullptr);
}

TEST_F(WindowTest, AHostileDrawingIsToldAndTheProgramGoesOn)
{
    folder.write("bad.dwg", folder.read("a.dwg").substr(0, 700) + std::string(3000, '\xFF'));
    folder.write("none.dwg", "no drawing");
    main->openFiles({folder.file("bad.dwg"), folder.file("none.dwg"), folder.file("missing.dwg")});
    settle();
    EXPECT_EQ(program.documents().documentCount(), 0);
    for (const char* name : {"bad.dwg", "none.dwg", "missing.dwg"})
        EXPECT_NE(said().find(name), std::string::npos) << said();
    open("a.dwg");
    EXPECT_EQ(tabs().count(), 1);
}

TEST_F(WindowTest, ADrawingInUseIsOfferedForLookingOnly)
{
    const LockHolder other(folder.file("a.dwg"));
    ASSERT_TRUE(other.isHolding());
    messages.answer = TvUserMessages::Answer::No;
    main->openFiles({folder.file("a.dwg")});
    EXPECT_EQ(messages.asked, (std::vector<int>{static_cast<int>(app::Word::AskReadOnly)}));
    EXPECT_EQ(program.documents().documentCount(), 0);

    messages.answer = TvUserMessages::Answer::Yes;
    DocumentPage& page = open("a.dwg");
    EXPECT_TRUE(page.document().isReadOnly());
    EXPECT_EQ(tabText(*tabs().tabBar()), "a.dwg (read only)");
    EXPECT_NE(said().find("is being edited by"), std::string::npos) << said();
}

TEST_F(WindowTest, ADocumentThatClosesTakesItsTabAlong)
{
    open("a.dwg");
    TvApDocument* document = program.documents().mdiActiveDocument();
    open("b.dwg");
    ASSERT_EQ(program.documents().closeDocument(document), TvStatus::Ok);
    EXPECT_EQ(tabs().count(), 1);
    settle();
    EXPECT_EQ(tabText(*tabs().tabBar()), "b.dwg");
}

TEST_F(WindowTest, ADrawingThatNobodyToldOfIsShownAfterTheNextCommand)
{
    program.documents().newDocument();
    type("TILEMODE 1");
    EXPECT_EQ(tabs().count(), 1);
}

TEST_F(WindowTest, ClosingTheWindowAsksAboutUnsavedChanges)
{
    open("a.dwg");
    type("CTAB Layout1");
    main->close();
    settle();
    EXPECT_EQ(messages.tasks, 1);
    EXPECT_TRUE(main->isVisible());
    EXPECT_EQ(program.documents().documentCount(), 1);

    program.documents().closeDocument(program.documents().mdiActiveDocument());
    main->close();
    settle();
    EXPECT_FALSE(main->isVisible());
}

TEST_F(WindowTest, LayoutsAreMadeAndTakenBackByCommands)
{
    DocumentPage& page = open("a.dwg");
    type("LAYOUT New Plan");
    EXPECT_EQ(page.layoutTabs().count(), 3);
    type("U");
    EXPECT_EQ(page.layoutTabs().count(), 2);
}

TEST_F(WindowTest, ZoomingByCommandShows)
{
    DocumentPage& page = open("a.dwg");
    page.canvas().zoomBy(1e-3);
    const double far = page.canvas().view().scale();
    type("ZOOM Extents");
    EXPECT_GT(page.canvas().view().scale(), far * 100);
}

TEST_F(WindowTest, ALayoutThatWasNeverShownHasTheShapeOfTheWindowAlready)
{
    DocumentPage& page = open("a.dwg");
    main->resize(1500, 500);
    settle();
    TvDbDatabase& database = *program.documents().mdiActiveDocument()->database();
    ASSERT_EQ(ed::setCurrentLayout(database, u"Layout1"), TvStatus::Ok); // as within a script
    const std::optional<ed::View> view = ed::drawingView().view(ed::currentLayout(database));
    ASSERT_TRUE(view);
    const QSize size = page.canvas().size();
    EXPECT_DOUBLE_EQ(view->aspect, static_cast<double>(size.width()) / size.height());
}

TEST_F(WindowTest, SheetSetsWithoutTheirModuleAreTold)
{
    folder.write("set.dst", "<x/>");
    main->openFiles({folder.file("set.dst")});
    EXPECT_NE(said().find("set.dst"), std::string::npos) << said();
}

TEST_F(WindowTest, RecoveredDrawingsHaveTheirChangesAndAreAskedAbout)
{
    app::LostSession lost{folder.file("lost"), {{folder.file("gone.dwg"), true, {}}}};
    lost.drawings[0].copy = folder.file("a.dwg");
    lost.drawings.push_back({folder.file("b.dwg"), true, {}});
    main->recover(lost);
    settle();
    ASSERT_EQ(program.documents().documentCount(), 2);
    const TvApDocument* copy = program.documents().documentOf(folder.file("a.dwg"));
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(copy->isReadOnly());
    EXPECT_TRUE(copy->database()->isModified());
    EXPECT_NE(said().find("gone.dwg: recovered"), std::string::npos) << said();
}

TEST_F(WindowTest, TheThemeChangesWhatModelSpaceIsShownOn)
{
    DocumentPage& page = open("a.dwg");
    const auto corner = [&] {
        settle();
        return page.canvas().raster().picture().pixelColor(1, 1).lightness();
    };
    const int first = corner();
    main->perform(app::WindowAction::Theme);
    const int second = corner();
    EXPECT_GT(std::abs(first - second), 100);
}

TEST_F(WindowTest, WhatNobodyPannedIsFittedToTheWindowAsItGrows)
{
    DocumentPage& page = open("a.dwg");
    main->resize(1300, 700);
    settle();
    const gs::Box& all = page.canvas().list()->extents();
    const app::ScreenPoint low = page.canvas().view().toScreen({all.lowX, all.lowY});
    const app::ScreenPoint high = page.canvas().view().toScreen({all.highX, all.highY});
    EXPECT_GE(low.x, -1);
    EXPECT_LE(low.y, page.canvas().height() + 1);
    EXPECT_LE(high.x, page.canvas().width() + 1);
    page.canvas().zoomBy(2);
    const double scale = page.canvas().view().scale();
    main->resize(900, 600);
    settle();
    EXPECT_NEAR(page.canvas().view().scale(), scale, scale * 1e-9);
}

} // namespace
