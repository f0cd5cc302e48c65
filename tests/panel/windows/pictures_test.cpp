// Makes the pictures of the panel for the documentation (scripts/panel-pictures); without
// KV_PANEL_PICTURES, the folder for them, there is nothing to do.

#include <QMenu>
#include <QPainter>

#include <core/open_menu.h>
#include <panel_windows/create_sheet_selection_dlg.h>
#include <panel_windows/sheet_set_manage_dlg.h>
#include <ui/menu.h>

#include "page_scene.h"

namespace {

constexpr int kMarginPx = 16, kCaptionPx = 20, kMostWidthPx = 1300;

struct Named {
    QString name;
    QImage picture;
};

class PictureTest : public PageTest
{
protected:
    void SetUp() override
    {
        m_folder = qEnvironmentVariable("KV_PANEL_PICTURES");
        if (m_folder.isEmpty())
            GTEST_SKIP() << "KV_PANEL_PICTURES names no folder";
        PageTest::SetUp();
        drawingFor(plan, "plan.dwg");
        drawingFor(section, "section.dwg");
        std::filesystem::create_directory(folder.path() / "plans");
        change(database, [this](TvSmSheetSet& top) {
            auto* location = newFor<TvSmFileReference>(&top);
            location->setFileName(folder.file("plans"));
            top.setNewSheetLocation(location);
            roof->setExcludeFromPublish(true);
            TvSmSheetSelection* issue = top.getSheetSelections()->add(u"Issue 1", u"");
            issue->add(plan);
            top.getSheetSelections()->add(u"Check", u"");
        });
        items().ExpandAll(true);
        items().selectOnly(at(plan));
        dlg->page().UpdateStatusImages();
        while (!dlg->page().workOnStatus()) {
        }
        settle();
    }
    void TearDown() override
    {
        if (!m_folder.isEmpty())
            PageTest::TearDown();
    }
    static QImage pictureOf(const ed::Menu& menu)
    {
        QMenu window;
        ui::fillMenu(window, menu, [](int) {});
        window.ensurePolished();
        window.resize(window.sizeHint());
        return window.grab().toImage();
    }
    /// Several pictures in rows, with their names above them.
    static QImage together(const std::vector<Named>& pictures)
    {
        int x = kMarginPx, y = kMarginPx, rowHeight = 0, width = 0;
        std::vector<QPoint> places;
        for (const Named& each : pictures) {
            if (x > kMarginPx && x + each.picture.width() + kMarginPx > kMostWidthPx) {
                x = kMarginPx;
                y += rowHeight + kMarginPx;
                rowHeight = 0;
            }
            places.emplace_back(x, y);
            x += each.picture.width() + kMarginPx;
            width = std::max(width, x);
            rowHeight = std::max(rowHeight, each.picture.height() + kCaptionPx);
        }
        QImage sheet(width, y + rowHeight + kMarginPx, QImage::Format_RGB32);
        sheet.fill(ui::color(ui::ColorRole::Canvas));
        QPainter painter(&sheet);
        painter.setPen(ui::color(ui::ColorRole::DimText));
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            painter.drawText(places[i] + QPoint(0, kCaptionPx - 7), pictures[i].name);
            painter.drawImage(places[i] + QPoint(0, kCaptionPx), pictures[i].picture);
        }
        return sheet;
    }
    void save(const QImage& picture, const char* name) const
    {
        const QString theme =
            ui::theme() == ui::Theme::Dark ? QStringLiteral("dark") : QStringLiteral("light");
        EXPECT_TRUE(picture.save(m_folder + QLatin1Char('/') + QLatin1String(name) +
                                 QLatin1Char('-') + theme + QStringLiteral(".png")));
    }
    template <class Step>
    void inBothThemes(Step step)
    {
        for (const int theme : {0, 1}) {
            set(u"COLORTHEME", static_cast<std::int16_t>(theme));
            settle();
            step();
        }
    }

    QString m_folder;
};

TEST_F(PictureTest, Panel)
{
    inBothThemes([this] { save(holder->grab().toImage(), "panel"); });
}

TEST_F(PictureTest, Menus)
{
    documents().newDocument();
    inBothThemes([this] {
        std::vector<Named> all;
        const auto add = [&all](const char* name, const ed::Menu& menu) {
            all.push_back({QLatin1String(name), pictureOf(menu)});
        };
        add("set", dlg->menus().context(*items().root()));
        add("subset", dlg->menus().context(*at(ground)));
        add("sheet", dlg->menus().context(*at(plan)));
        items().SelectItem(at(section));
        add("several", dlg->menus().context(*at(plan)));
        items().selectOnly(items().root());
        add("publish: set", dlg->menus().publish());
        items().selectOnly(at(roof));
        add("publish: subset", dlg->menus().publish());
        items().selectOnly(at(plan));
        add("publish: sheet", dlg->menus().publish());
        add("format", dlg->menus().format());
        add("selections", dlg->menus().selections());
        const ed::Menu background = panel::backgroundMenu();
        add("background", background);
        for (const ed::MenuEntry& entry : background.entries)
            if (!entry.submenu.empty()) {
                ed::Menu tips;
                tips.entries = entry.submenu;
                add("tips", tips);
            }
        add("sets", core::OpenMenu().menu());
        save(together(all), "panel-menus");
    });
}

TEST_F(PictureTest, Dialogs)
{
    inBothThemes([this] {
        ASSERT_TRUE(database->lockDb(database));
        std::vector<Named> all;
        CSheetSetManageDlg manage(database,
                                  (dlg->menus().selections(), dlg->menus().selectionSets()));
        CCreateSheetSelectionDlg create(database, {handleOf(ground)});
        for (CTvUiDialog* each :
             {static_cast<CTvUiDialog*>(&manage), static_cast<CTvUiDialog*>(&create)}) {
            ASSERT_TRUE(each->Create());
            all.push_back({each->windowTitle(), each->grab().toImage()});
        }
        CTarvSheetSetToolTipCtrl tip;
        tip.SetHandle(handleOf(plan));
        ASSERT_TRUE(tip.Update({10, 10}));
        all.push_back({QStringLiteral("tip"), tip.grab().toImage()});
        save(together(all), "panel-dialogs");
        EXPECT_TRUE(database->unlockDb(database, false));
    });
}

} // namespace
