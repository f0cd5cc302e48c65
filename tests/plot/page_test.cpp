// Where a layout's plot settings put things on paper.

#include "plot_scene.h"

namespace {

plot::Page pageOf(PlotScene& scene, const plot::PageOptions& options = {})
{
    auto page = plot::makePage(scene.database(), scene.layout, options);
    EXPECT_TRUE(page);
    return page ? std::move(*page) : plot::Page();
}

void expectAt(const TvGePoint2d& point, double x, double y)
{
    EXPECT_NEAR(point.x, x, 1e-9);
    EXPECT_NEAR(point.y, y, 1e-9);
}

TEST(Page, ALayoutStandsWithItsOriginAtTheCornerOfThePrintableArea)
{
    PlotScene scene;
    const plot::Page page = pageOf(scene);

    EXPECT_EQ(page.widthMm, 420);
    EXPECT_EQ(page.heightMm, 297);
    expectAt(page.toPaper * TvGePoint2d{0, 0}, 10, 10);
    expectAt(page.toPaper * TvGePoint2d{100, 50}, 110, 60);
    EXPECT_EQ(page.shownMm, (gs::Box{0, 0, 420, 297}));
}

TEST(Page, TurnedPaperGivesAPageThatIsUpright)
{
    PlotScene scene;
    scene.set([](db::RecordEditor& fields) {
        fields.setReal("paper_width", 297);
        fields.setReal("paper_height", 420);
        fields.setReal("margin_left", 5);
        fields.setReal("margin_top", 20);
        fields.setInteger("rotation", 1);
    });
    const plot::Page page = pageOf(scene);

    EXPECT_EQ(page.widthMm, 420);
    EXPECT_EQ(page.heightMm, 297);
    expectAt(page.toPaper * TvGePoint2d{0, 0}, 20, 5); // the top came to the left
}

TEST(Page, InchesAndCustomScalesAreObeyed)
{
    PlotScene scene;
    scene.set([](db::RecordEditor& fields) {
        fields.setInteger("paper_units", 0);
        fields.setReal("scale_numerator", 1);
        fields.setReal("scale_denominator", 2);
    });

    EXPECT_NEAR(pageOf(scene).mmPerUnit, 12.7, 1e-9);
}

TEST(Page, AWindowThatFitsFillsThePrintableAreaInItsMiddle)
{
    PlotScene scene;
    scene.line(0, 0, 1000, 1000);
    scene.set([](db::RecordEditor& fields) {
        fields.setInteger("plot_type", TvDbPlotSettings::kWindow);
        fields.setPoint("window_ll", {100, 100, 0});
        fields.setPoint("window_ur", {300, 200, 0});
        fields.setInteger("plot_flags", 0x80 | 0x10 | 0x4);
        fields.setInteger("std_scale_type", 0);
    });
    const plot::Page page = pageOf(scene);

    EXPECT_NEAR(page.mmPerUnit, 2, 1e-9); // 400 mm for 200 units
    expectAt(page.toPaper * TvGePoint2d{200, 150}, 210, 148.5);
    EXPECT_LT(page.shownMm.height(), 203); // what is outside of the window is cut off
}

TEST(Page, ExtentsAreWhatIsDrawn)
{
    PlotScene scene;
    scene.line(50, 50, 90, 50);
    scene.line(50, 50, 50, 70);
    scene.set([](db::RecordEditor& fields) {
        fields.setInteger("plot_type", TvDbPlotSettings::kExtents);
        fields.setPoint("plot_origin", {7, 3, 0});
    });

    expectAt(pageOf(scene).toPaper * TvGePoint2d{50, 50}, 17, 13);
}

TEST(Page, APageSetupTakesThePlaceOfTheLayoutsOwn)
{
    PlotScene scene;
    plot::PageSetup setup;
    setup.paperWidthMm = 210;
    setup.paperHeightMm = 297;
    plot::PageOptions options;
    options.setup = &setup;

    EXPECT_EQ(pageOf(scene, options).widthMm, 210);
}

TEST(Page, ALayoutThatWasNeverSetUpComesOnA4)
{
    PlotScene scene;
    scene.set([](db::RecordEditor& fields) {
        fields.setReal("paper_width", 0);
        fields.setReal("paper_height", 0);
    });

    EXPECT_EQ(pageOf(scene).widthMm, 297);
}

TEST(Page, SenselessNumbersAreNotObeyed)
{
    PlotScene scene;
    scene.set([](db::RecordEditor& fields) {
        fields.setReal("margin_left", 1e300);
        fields.setReal("scale_denominator", 1e-300);
        fields.setPoint("plot_origin", {1e300, -1e300, 0});
    });
    const plot::Page page = pageOf(scene);

    EXPECT_EQ(page.mmPerUnit, 1);
    expectAt(page.toPaper * TvGePoint2d{0, 0}, 0, 10);
}

TEST(Page, LayoutsAreFoundByHandleThenByName)
{
    PlotScene scene;
    const std::uint64_t handle = scene.layout.handle().value();

    EXPECT_EQ(plot::findLayout(scene.database(), handle, u"Other"), scene.layout);
    EXPECT_EQ(plot::findLayout(scene.database(), 0xFFFFFF, u"PLAN"), scene.layout);
    EXPECT_TRUE(plot::findLayout(scene.database(), 0, u"Other").isNull());
    EXPECT_FALSE(plot::findLayout(scene.database(), 0, TvString()).isNull()); // the model
}

TEST(Page, ANamedViewOfTheModelIsPlottedFromItsOwnDirection)
{
    PlotScene scene;
    TvDbDatabase& database = scene.database();
    scene.add(new TvDbLine({3, 0, 0}, {3, 8, 6})); // from the right: 8 across, 6 up
    {
        TvDbObjectPointer<TvDbViewTable> views(database.symbolTableId(TvDb::SymbolTable::View),
                                               TvDb::kForWrite);
        auto* view = new TvDbViewTableRecord;
        view->setName(u"RIGHT");
        db::RecordEditor edit = view->edit();
        edit.setPoint("direction", {1, 0, 0});
        edit.setPoint("center", {4, 3, 0});
        edit.setReal("width", 20);
        edit.setReal("height", 10);
        TvDbObjectId id;
        ASSERT_EQ(views->add(id, view), TvStatus::Ok);
        view->close();
    }
    plot::PageSetup setup;
    setup.paperWidthMm = 420;
    setup.paperHeightMm = 297;
    setup.area = TvDbPlotSettings::kView;
    setup.viewName = u"RIGHT";
    setup.fits = setup.isCentered = true;
    plot::PageOptions options;
    options.setup = &setup;
    const auto page = plot::makePage(database, {}, options);
    ASSERT_TRUE(page);
    EXPECT_NEAR(page->list.extents().width(), 8, 1e-9);
    EXPECT_NEAR(page->list.extents().height(), 6, 1e-9);
    EXPECT_NEAR(page->mmPerUnit, 21, 1e-9); // the view's width on that of the paper
}

} // namespace
