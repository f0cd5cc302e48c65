#include <gtest/gtest.h>

#include <db/passing_entities.h>
#include <db/tv_db_curves.h>
#include <db/tv_db_database.h>
#include <db/tv_db_symbol_table.h>
#include <dwg/dwg_codec.h>

namespace {

/// A drawing of three lines from a file: nothing of it is open.
class PassingEntities : public testing::Test
{
protected:
    PassingEntities()
    {
        dwg::install();
        TvDbDatabase made(true, true);
        TvDbObjectPointer<TvDbBlockTableRecord> model(made.modelSpaceId(), TvDb::kForWrite);
        for (int i = 0; i < 3; ++i) {
            auto* line = new TvDbLine({double(i), 0, 0}, {double(i), 5, 0});
            TvDbObjectId id;
            EXPECT_EQ(model->appendTvDbEntity(id, line), TvStatus::Ok);
            line->close();
        }
        model.close();
        const auto bytes = made.toBytes(db::FileFormat::Dwg);
        EXPECT_TRUE(bytes);
        EXPECT_EQ(m_database.readDwgBytes(*bytes), TvStatus::Ok);
        const TvDbObjectPointer<TvDbBlockTableRecord> read(m_database.modelSpaceId());
        m_lines = read->entityIds();
        EXPECT_EQ(m_lines.size(), 3U);
    }

    static double startOf(const db::PassingEntities::Look& look)
    {
        return look ? static_cast<const TvDbLine&>(*look).startPoint().x : -1;
    }

    TvDbDatabase m_database{false, true};
    std::vector<TvDbObjectId> m_lines;
    db::PassingEntities m_entities;
};

TEST_F(PassingEntities, AreWhatTheFileHolds)
{
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        const auto look = m_entities.at(m_lines[i]);
        EXPECT_EQ(startOf(look), double(i));
        EXPECT_EQ(look->objectId(), m_lines[i]);
        EXPECT_EQ(look->isA(), TvDbLine::desc());
    }
}

TEST_F(PassingEntities, SeveralOfOneClassDoNotDisturbEachOther)
{
    const auto first = m_entities.at(m_lines[0]), second = m_entities.at(m_lines[1]);
    EXPECT_EQ(startOf(first), 0);
    EXPECT_EQ(startOf(second), 1);
}

TEST_F(PassingEntities, UseOneObjectAfterTheOther)
{
    const TvDbEntity* const first = m_entities.at(m_lines[0]).get();
    EXPECT_EQ(m_entities.at(m_lines[1]).get(), first);
}

TEST_F(PassingEntities, OfOneThatWasChangedIsTheChangedOne)
{
    {
        const TvDbObjectPointer<TvDbLine> line(m_lines[1], TvDb::kForWrite);
        line->setStartPoint({42, 0, 0});
    }
    EXPECT_EQ(startOf(m_entities.at(m_lines[1])), 42);
    EXPECT_EQ(startOf(m_entities.at(m_lines[2])), 2);
}

TEST_F(PassingEntities, AreNotThereWhenErasedOrNoEntityAtAll)
{
    {
        const TvDbObjectPointer<TvDbLine> line(m_lines[1], TvDb::kForWrite);
        line->erase();
    }
    EXPECT_FALSE(m_entities.at(m_lines[1]));
    EXPECT_FALSE(m_entities.at({}));
    EXPECT_FALSE(m_entities.at(m_database.modelSpaceId()));
}

} // namespace
