// Parts of a drawing on turned, small and senseless papers.

#include <db/tv_db_dictionary.h>
#include <db/tv_db_symbol_table.h>
#include <plot/reasons.h>

#include "plot_scene.h"

namespace {

using Settings = TvDbPlotSettings;

class PagePlaces : public testing::Test
{
protected:
    plot::Page page()
    {
        auto made = plot::makePage(scene.database(), scene.layout);
        EXPECT_TRUE(made);
        return made ? std::move(*made) : plot::Page();
    }
    template <class Change>
    void set(Change change)
    {
        scene.set(change);
    }
    void area(Settings::PlotType type)
    {
        set([=](db::RecordEditor& fields) { fields.setInteger("plot_type", type); });
    }
    /// As large as the paper holds, in its middle.
    void fit()
    {
        set([](db::RecordEditor& fields) {
            fields.setInteger("plot_flags", 0x80 | 0x10 | 0x4);
            fields.setInteger("std_scale_type", 0);
        });
    }
    static void expectAt(const TvGePoint2d& point, double x, double y)
    {
        EXPECT_NEAR(point.x, x, 1e-9);
        EXPECT_NEAR(point.y, y, 1e-9);
    }

    PlotScene scene;
};

TEST_F(PagePlaces, MarginsTurnWithThePaper)
{
    const auto corner = [this](int rotation) {
        set([=](db::RecordEditor& fields) {
            fields.setReal("margin_left", 1);
            fields.setReal("margin_bottom", 2);
            fields.setReal("margin_right", 3);
            fields.setReal("margin_top", 4);
            fields.setInteger("rotation", rotation);
        });
        return page().toPaper * TvGePoint2d{0, 0};
    };
    expectAt(corner(0), 1, 2);
    expectAt(corner(1), 4, 1);
    expectAt(corner(2), 3, 4);
    expectAt(corner(3), 2, 3);
}

TEST_F(PagePlaces, MarginsThatLeaveNothingAreNone)
{
    set([](db::RecordEditor& fields) {
        fields.setReal("margin_left", 210); // half of the paper
        fields.setReal("margin_bottom", -5);
    });
    expectAt(page().toPaper * TvGePoint2d{0, 0}, 0, 0);
}

TEST_F(PagePlaces, APaperWithoutOneOfItsSidesIsNone)
{
    for (const char* side : {"paper_width", "paper_height"})
        for (const double wrong : {0.0, -1.0, 1e6}) {
            PlotScene fresh;
            fresh.set([=](db::RecordEditor& fields) { fields.setReal(side, wrong); });
            const auto made = plot::makePage(fresh.database(), fresh.layout);
            ASSERT_TRUE(made);
            EXPECT_EQ(made->widthMm, 297) << side << wrong;
            EXPECT_EQ(made->heightMm, 210);
        }
}

TEST_F(PagePlaces, WithoutAPaperAllIsShownInTheMiddleOfASheet)
{
    scene.line(1000, 1000, 2385, 1000);
    set([](db::RecordEditor& fields) { fields.setReal("paper_width", 0); });
    const plot::Page made = page();

    EXPECT_NEAR(made.mmPerUnit, 0.2, 1e-9); // 277 mm for 1385 units
    expectAt(made.toPaper * TvGePoint2d{1692.5, 1000}, 148.5, 105);
}

TEST_F(PagePlaces, LimitsAreThoseOfTheLayout)
{
    area(Settings::kLimits);
    set([](db::RecordEditor& fields) {
        fields.setPoint("limmin", {100, 50, 0});
        fields.setPoint("limmax", {300, 150, 0});
    });
    fit();
    const plot::Page made = page();

    EXPECT_NEAR(made.mmPerUnit, 2, 1e-9);
    expectAt(made.toPaper * TvGePoint2d{200, 100}, 210, 148.5);
}

TEST_F(PagePlaces, LimitsOfTheModelAreThoseOfTheDrawing)
{
    db::RecordEditor header = scene.database().editHeader();
    header.setPoint("LIMMIN", {0, 0, 0});
    header.setPoint("LIMMAX", {200, 100, 0});
    plot::PageSetup setup;
    setup.paperWidthMm = 420;
    setup.paperHeightMm = 297;
    setup.area = Settings::kLimits;
    setup.fits = true;
    plot::PageOptions options;
    options.setup = &setup;
    const auto made = plot::makePage(scene.database(), {}, options);

    ASSERT_TRUE(made);
    EXPECT_NEAR(made->mmPerUnit, 2.1, 1e-9);
}

TEST_F(PagePlaces, AHighAreaFitsByItsHeight)
{
    area(Settings::kWindow);
    set([](db::RecordEditor& fields) {
        fields.setPoint("window_ll", {0, 0, 0});
        fields.setPoint("window_ur", {10, 277, 0});
    });
    fit();

    EXPECT_NEAR(page().mmPerUnit, 1, 1e-9);
}

TEST_F(PagePlaces, AWindowWithoutSizeGivesWayToAllThatIsDrawn)
{
    scene.line(0, 0, 40, 0);
    area(Settings::kWindow);
    set([](db::RecordEditor& fields) {
        fields.setPoint("window_ll", {5, 5, 0});
        fields.setPoint("window_ur", {5, 5, 0});
    });
    fit();

    EXPECT_NEAR(page().mmPerUnit, 10, 1e-9);
}

TEST_F(PagePlaces, OfAnEmptyDrawingAPageIsMadeAllTheSame)
{
    area(Settings::kExtents);
    fit();

    EXPECT_TRUE(std::isfinite(page().mmPerUnit));
    EXPECT_GT(page().mmPerUnit, 0);
}

TEST_F(PagePlaces, ANamedViewOfThePaperIsPlottedAloneWhileItIsThere)
{
    scene.line(0, 0, 400, 0);
    {
        TvDbObjectPointer<TvDbViewTable> views(
            scene.database().symbolTableId(TvDb::SymbolTable::View), TvDb::kForWrite);
        auto* view = new TvDbViewTableRecord;
        view->setName(u"CORNER");
        db::RecordEditor edit = view->edit();
        edit.setPoint("center", {50, 40, 0});
        edit.setReal("width", 40);
        edit.setReal("height", 20);
        TvDbObjectId id;
        ASSERT_EQ(views->add(id, view), TvStatus::Ok);
        view->close();
    }
    plot::PageSetup setup;
    setup.paperWidthMm = 420;
    setup.paperHeightMm = 297;
    setup.area = Settings::kView;
    setup.fits = setup.isCentered = true;
    plot::PageOptions options;
    options.setup = &setup;
    const auto shown = [&](const TvChar* view) {
        setup.viewName = view;
        auto made = plot::makePage(scene.database(), scene.layout, options);
        EXPECT_TRUE(made);
        return made ? std::move(*made) : plot::Page();
    };
    EXPECT_NEAR(shown(u"CORNER").mmPerUnit, 10.5, 1e-9); // 420 mm for 40 units
    expectAt(shown(u"CORNER").toPaper * TvGePoint2d{50, 40}, 210, 148.5);
    EXPECT_NEAR(shown(u"GONE").mmPerUnit, 1.05, 1e-9) << "all that is drawn";
}

TEST_F(PagePlaces, TheScaleOfFittingCountsOnlyAsAStandardOne)
{
    area(Settings::kWindow);
    set([](db::RecordEditor& fields) {
        fields.setPoint("window_ll", {0, 0, 0});
        fields.setPoint("window_ur", {200, 100, 0});
        fields.setInteger("std_scale_type", 0);
        fields.setInteger("plot_flags", 0x80);
    });
    EXPECT_NEAR(page().mmPerUnit, 1, 1e-9);
    fit();
    EXPECT_NEAR(page().mmPerUnit, 2, 1e-9);
}

TEST_F(PagePlaces, ALayoutOfAnotherDrawingOrNoneMakesNoPage)
{
    PlotScene other;
    EXPECT_EQ(plot::makePage(scene.database(), other.layout).status().reason(),
              plot::kLayoutMissing);
    EXPECT_TRUE(plot::findLayout(scene.database(), scene.paper().handle().value(), u"No").isNull())
        << "a handle of something else";
    EXPECT_TRUE(plot::findLayout(scene.database(), 0xFFFFFF, TvString()).isNull());
}

} // namespace
