#include <rx/tv_rx_dictionary.h>

namespace {

class Part : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(Part)
};
TVRX_DEFINE_MEMBERS(Part, TvRxObject)

TEST(TvRxDictionary, HoldsNothingWhenMade)
{
    TvRxDictionary dictionary;

    EXPECT_EQ(dictionary.numEntries(), 0);
    EXPECT_EQ(dictionary.at(u"DynamicLinker"), nullptr);
    EXPECT_EQ(dictionary.at(u""), nullptr);
    EXPECT_FALSE(dictionary.has(u"DynamicLinker"));
    EXPECT_EQ(dictionary.remove(u"DynamicLinker"), nullptr);
    EXPECT_TRUE(dictionary.keys().empty());
}

TEST(TvRxDictionary, FindsWhatWasPutIn)
{
    TvRxDictionary dictionary;
    Part linker, editor;

    EXPECT_EQ(dictionary.atPut(u"DynamicLinker", &linker), nullptr);
    EXPECT_EQ(dictionary.atPut(u"TvEditor", &editor), nullptr);

    EXPECT_EQ(dictionary.at(u"DynamicLinker"), &linker);
    EXPECT_EQ(dictionary.at(u"TvEditor"), &editor);
    EXPECT_TRUE(dictionary.has(u"TvEditor"));
    EXPECT_EQ(dictionary.numEntries(), 2);
}

TEST(TvRxDictionary, ComparesNamesLetterForLetter)
{
    TvRxDictionary dictionary;
    Part linker;

    dictionary.atPut(u"DynamicLinker", &linker);

    EXPECT_EQ(dictionary.at(u"dynamiclinker"), nullptr);
    EXPECT_EQ(dictionary.at(u"DynamicLinker "), nullptr);
    EXPECT_EQ(dictionary.remove(u"DYNAMICLINKER"), nullptr);
    EXPECT_EQ(dictionary.numEntries(), 1);
}

TEST(TvRxDictionary, GivesTheObjectThatAnotherReplaces)
{
    TvRxDictionary dictionary;
    Part first, second, other;
    dictionary.atPut(u"a", &first);
    dictionary.atPut(u"b", &other);

    EXPECT_EQ(dictionary.atPut(u"a", &second), &first);

    EXPECT_EQ(dictionary.at(u"a"), &second);
    EXPECT_EQ(dictionary.numEntries(), 2);
    EXPECT_EQ(dictionary.keys(), (std::vector<TvString>{u"a", u"b"})) << "it stays in its place";
}

TEST(TvRxDictionary, PutsNoNullIn)
{
    TvRxDictionary dictionary;
    Part part;
    dictionary.atPut(u"a", &part);

    EXPECT_EQ(dictionary.atPut(u"a", nullptr), nullptr);
    EXPECT_EQ(dictionary.atPut(u"b", nullptr), nullptr);

    EXPECT_EQ(dictionary.at(u"a"), &part);
    EXPECT_FALSE(dictionary.has(u"b"));
}

TEST(TvRxDictionary, KeepsTheOrderInWhichThingsCame)
{
    TvRxDictionary dictionary;
    Part part;
    for (const TvChar* key : {u"c", u"a", u"b"})
        dictionary.atPut(key, &part);

    EXPECT_EQ(dictionary.keys(), (std::vector<TvString>{u"c", u"a", u"b"}));
    EXPECT_EQ(dictionary.remove(u"a"), &part);
    EXPECT_EQ(dictionary.keys(), (std::vector<TvString>{u"c", u"b"}));
    EXPECT_EQ(dictionary.remove(u"a"), nullptr);
    dictionary.atPut(u"a", &part);
    EXPECT_EQ(dictionary.keys(), (std::vector<TvString>{u"c", u"b", u"a"}));
}

/// Counts how often it was destroyed.
class Counted : public TvRxObject
{
public:
    explicit Counted(int& count) : m_count(&count) {}
    ~Counted() override { ++*m_count; }

private:
    int* m_count; // not owned
};

TEST(TvRxDictionary, OwnsNothing)
{
    int destroyed = 0;
    Counted part(destroyed);
    {
        TvRxDictionary dictionary;
        dictionary.atPut(u"a", &part);
        dictionary.atPut(u"b", &part);
        dictionary.remove(u"a");
    }
    EXPECT_EQ(destroyed, 0);
}

TEST(SystemRegistry, IsOneForAll)
{
    TvRxDictionary* registry = tvrxSysRegistry();
    ASSERT_NE(registry, nullptr);
    EXPECT_TRUE(registry->isKindOf(TvRxDictionary::desc()));
    Part part;

    registry->atPut(u"TvRxDictionaryTest", &part);

    EXPECT_EQ(tvrxSysRegistry()->at(u"TvRxDictionaryTest"), &part);
    EXPECT_EQ(tvrxSysRegistry()->remove(u"TvRxDictionaryTest"), &part);
}

} // namespace
