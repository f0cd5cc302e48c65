#include <gtest/gtest.h>

#include "sheet_set_builder.h"

// What walks over all objects of a set, and what is asked of a set that may be none.

namespace {

class ObjectWalk : public SheetSetTest
{
protected:
    /// A set with something of every kind, and a property on each component.
    TvSmDatabase* createFull()
    {
        TvSmDatabase* db = create();
        EveryFeature::putInto(db);
        TvSmSheetSet* set = db->getSheetSet();
        std::vector<TvSmComponent*> components{set->getViewCategories(), set->getSheetSelections()};
        sm::forEachObject(db, [&](TvSmPersist& object) {
            if (auto* component = tvrxCast<TvSmComponent>(&object))
                components.push_back(component);
            if (auto* sheet = tvrxCast<TvSmSheet>(&object))
                components.push_back(sheet->getSheetViews());
        });
        addBlock(itemsOf(set->getViewCategories()->getEnumerator())[1]->getCalloutBlocks(), u"Own");
        for (TvSmComponent* component : components)
            EXPECT_TRUE(
                sm::setTextProperty(component->getCustomProperties(), u"Mine", u"value", 1));
        return db;
    }
};

/// The handles that a file gives to its objects, sorted.
std::vector<std::string> handlesIn(const std::string& text)
{
    constexpr std::string_view kOpening = " handle=\"";
    std::vector<std::string> handles;
    for (std::size_t at = 0; (at = text.find(kOpening, at)) != std::string::npos;) {
        at += kOpening.size();
        handles.push_back(text.substr(at, text.find('"', at) - at));
    }
    std::sort(handles.begin(), handles.end());
    return handles;
}

} // namespace

TEST_F(ObjectWalk, VisitsEachObjectOfTheFileOnce)
{
    TvSmDatabase* db = createFull();
    ASSERT_TRUE(db->save(0));
    std::vector<std::string> visited;
    sm::forEachObject(db,
                      [&](TvSmPersist& object) { visited.push_back(handleOf(&object).utf8()); });
    std::sort(visited.begin(), visited.end());
    EXPECT_EQ(visited, handlesIn(content()));
}

TEST_F(ObjectWalk, OfNoDatabaseVisitsNothing)
{
    sm::forEachObject(nullptr, [](TvSmPersist&) { FAIL(); });
}

TEST_F(ObjectWalk, QuestionsAboutNoDatabaseHaveQuietAnswers)
{
    EXPECT_EQ(sm::lockInfo(nullptr).state, base::LockState::Free);
    EXPECT_TRUE(sm::lastStatus(static_cast<const TvSmDatabase*>(nullptr)));
    EXPECT_TRUE(sm::lastStatus(static_cast<const TvSmSheetSetMgr*>(nullptr)));
    EXPECT_FALSE(sm::isReadOnlyVersion(nullptr));
    EXPECT_EQ(sm::committedHash(nullptr), std::nullopt);
}

TEST_F(ObjectWalk, TheCommittedHashIsThatOfTheFile)
{
    const auto hashOfFile = [this] {
        const std::string text = content();
        return base::hashOf(std::as_bytes(std::span(text)));
    };
    TvSmDatabase* db = create();
    EXPECT_EQ(sm::committedHash(db), std::nullopt);
    ASSERT_TRUE(db->save(0));
    EXPECT_EQ(sm::committedHash(db), hashOfFile());
    ASSERT_TRUE(db->lockDb(db) && db->getSheetSet()->setName(u"x"));
    EXPECT_EQ(sm::committedHash(db), hashOfFile());
    ASSERT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(sm::committedHash(db), hashOfFile());
}
