#include <core/tv_sm_db_reactor.h>

#include <db/tv_db_dictionary.h>
#include <db/tv_db_symbol_table.h>

namespace {

class ViewReactorTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_drawing.addReactor(&m_reactor);
        const TvDbObjectPointer<TvDbViewTable> views(
            m_drawing.symbolTableId(TvDb::SymbolTable::View), TvDb::kForWrite);
        auto* view = new TvDbViewTableRecord;
        ASSERT_EQ(view->setName(u"Front"), TvStatus::Ok);
        ASSERT_EQ(views->add(m_view, view), TvStatus::Ok);
        view->close();
        g_viewsDirty = false;
    }
    void TearDown() override { m_drawing.removeReactor(&m_reactor); }

    TvSmDbReactor m_reactor;
    TvDbDatabase m_drawing{true, true};
    TvDbObjectId m_view;
};

TEST_F(ViewReactorTest, AChangedViewMarksTheViewsOfADrawingThatIsNoSheet)
{
    const TvDbObjectPointer<TvDbViewTableRecord> view(m_view, TvDb::kForWrite);
    ASSERT_EQ(view->setHeight(12), TvStatus::Ok);
    EXPECT_TRUE(g_viewsDirty);
}

TEST_F(ViewReactorTest, ItsCloseMarksThemAgain)
{
    TvDbObjectPointer<TvDbViewTableRecord> view(m_view, TvDb::kForWrite);
    ASSERT_EQ(view->setHeight(12), TvStatus::Ok);
    g_viewsDirty = false;
    view.close();
    EXPECT_TRUE(g_viewsDirty);
}

TEST_F(ViewReactorTest, AnErasedViewMarksThem)
{
    const TvDbObjectPointer<TvDbViewTableRecord> view(m_view, TvDb::kForWrite);
    ASSERT_EQ(view->erase(true), TvStatus::Ok);
    EXPECT_TRUE(g_viewsDirty);
}

TEST_F(ViewReactorTest, ALookAtAViewDoesNot)
{
    {
        const TvDbObjectPointer<TvDbViewTableRecord> view(m_view);
        EXPECT_EQ(view->getName(), u"Front");
    }
    {
        const TvDbObjectPointer<TvDbViewTableRecord> untouched(m_view, TvDb::kForWrite);
    }
    EXPECT_FALSE(g_viewsDirty);
}

TEST_F(ViewReactorTest, AChangedObjectOfAnotherKindDoesNot)
{
    const TvDbObjectPointer<TvDbLayerTableRecord> layer(m_drawing.clayer(), TvDb::kForWrite);
    ASSERT_EQ(layer->setIsFrozen(true), TvStatus::Ok);
    EXPECT_FALSE(g_viewsDirty);
}

} // namespace
