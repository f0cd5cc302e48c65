// Who fetches the data of links: found by id, among those who came.

#include <db/tv_db_data_adapter.h>

namespace {

struct Adapter : TvDbDataAdapter {
    TvStatusCode updateData(TvDbDataLink*, TvRxObject*, int) override { return TvStatus::Ok; }
    bool canWriteSource() const override { return false; }
    int sourceFlags() const override { return 0; }
    int updateKinds() const override { return 0; }
    std::unique_ptr<TvRxObject> createContent() override { return nullptr; }
};

struct Provider : TvDbDataAdapterProvider {
    explicit Provider(TvString of) : id(std::move(of)) {}
    TvDbDataAdapter* getAdapter(const TvString& wanted) override
    {
        return wanted == id ? &adapter : nullptr;
    }
    TvString id;
    Adapter adapter;
};

TEST(DataAdapterManager, AsksItsProvidersInTheOrderOfTheirComing)
{
    TvDbDataAdapterManager manager;
    Provider first(u"a"), second(u"a"), other(u"b");
    for (Provider* provider : {&first, &second, &other, &first})
        manager.registerAdapterProvider(provider);
    manager.registerAdapterProvider(nullptr);
    EXPECT_EQ(manager.getAdapter(u"a"), &first.adapter);
    EXPECT_EQ(manager.getAdapter(u"b"), &other.adapter);
    EXPECT_EQ(manager.getAdapter(u"c"), nullptr);
    manager.unregisterAdapterProvider(&first);
    EXPECT_EQ(manager.getAdapter(u"a"), &second.adapter);
    const TvDbDataAdapterManager copy(manager);
    manager.unregisterAdapterProvider(&second);
    manager.unregisterAdapterProvider(nullptr);
    EXPECT_EQ(manager.getAdapter(u"a"), nullptr);
    EXPECT_EQ(TvDbDataAdapterManager(copy).getAdapter(u"a"), &second.adapter);
}

TEST(DataAdapterManager, IsTheProgramsUntilItIsTakenAway)
{
    TvDbDataAdapterManager* const usual = tvdbGetDataAdapterManager();
    EXPECT_NE(usual, nullptr);
    tvdbSetDataAdapterManager(nullptr);
    EXPECT_EQ(tvdbGetDataAdapterManager(), nullptr);
    tvdbSetDataAdapterManager(usual);
    EXPECT_EQ(tvdbGetDataAdapterManager(), usual);
}

} // namespace
