#include <gtest/gtest.h>

#include "sheet_set_builder.h"

namespace {

using Names = std::vector<TvString>;

/// A set with the sheets A, B and C and the subset D, open for changes.
class Tree : public SheetSetTest
{
protected:
    Tree()
    {
        a = addSheet(set, u"", u"A");
        b = addSheet(set, u"", u"B");
        c = addSheet(set, u"", u"C");
        d = addSubset(set, u"D");
    }

    TvSmDatabase* db = create();
    TvSmSheetSet* set = db->getSheetSet();
    TvSmSheet *a, *b, *c;
    TvSmSubset* d;
};

} // namespace

TEST(SmClasses, TellTheirExactClassAndTheClassesAboveIt)
{
    const TvSmDatabase db;
    EXPECT_EQ(db.isA(), TvSmDatabase::desc());
    EXPECT_TRUE(db.isKindOf(TvSmPersist::desc()));
    EXPECT_FALSE(db.isKindOf(TvSmComponent::desc()));
    const TvSmSheetSet* set = db.getSheetSet();
    EXPECT_EQ(set->isA(), TvSmSheetSet::desc());
    EXPECT_NE(set->isA(), TvSmSubset::desc());
    for (const TvRxClass* above :
         {TvSmSubset::desc(), TvSmComponent::desc(), TvSmPersist::desc(), TvRxObject::desc()})
        EXPECT_TRUE(set->isA()->isDerivedFrom(above));
    EXPECT_FALSE(set->isKindOf(TvSmSheet::desc()));
}

TEST(SmClasses, HaveTheParentsThatTheModelGivesThem)
{
    struct Row {
        const TvRxClass* type;
        const TvRxClass* parent;
    };
    const Row rows[] = {
        {TvSmPersist::desc(), TvRxObject::desc()},
        {TvSmDatabase::desc(), TvSmPersist::desc()},
        {TvSmComponent::desc(), TvSmPersist::desc()},
        {TvSmSubset::desc(), TvSmComponent::desc()},
        {TvSmSheetSet::desc(), TvSmSubset::desc()},
        {TvSmSheet::desc(), TvSmComponent::desc()},
        {TvSmSheetView::desc(), TvSmComponent::desc()},
        {TvSmViewCategory::desc(), TvSmComponent::desc()},
        {TvSmSheetViews::desc(), TvSmComponent::desc()},
        {TvSmViewCategories::desc(), TvSmComponent::desc()},
        {TvSmSheetSelections::desc(), TvSmComponent::desc()},
        {TvSmSheetSelection::desc(), TvSmComponent::desc()},
        {TvSmCustomPropertyBag::desc(), TvSmPersist::desc()},
        {TvSmCustomPropertyValue::desc(), TvSmPersist::desc()},
        {TvSmFileReference::desc(), TvSmPersist::desc()},
        {TvSmDbObjectReference::desc(), TvSmFileReference::desc()},
        {TvSmTvDbLayoutReference::desc(), TvSmDbObjectReference::desc()},
        {TvSmTvDbViewReference::desc(), TvSmDbObjectReference::desc()},
        {TvSmTvDbBlockRecordReference::desc(), TvSmDbObjectReference::desc()},
        {TvSmReferenceCollection::desc(), TvSmPersist::desc()},
        {TvSmPublishOptions::desc(), TvSmComponent::desc()},
        {TvSmEvents::desc(), TvRxObject::desc()},
    };
    for (const Row& row : rows)
        EXPECT_EQ(row.type->myParent(), row.parent) << TvString(row.type->name()).utf8();
}

TEST_F(Tree, ChildrenOfASubsetAreExactlySheetsOrSubsets)
{
    for (const TvSmComponent* child : sm::each(set->getSheetEnumerator()))
        EXPECT_EQ(child->isA(), child == d ? TvSmSubset::desc() : TvSmSheet::desc());
}

TEST_F(Tree, ConstAndChangeableGettersGiveTheSameObjects)
{
    const TvSmDatabase* readOnly = db;
    const TvSmSheetSet* readSet = set;
    EXPECT_EQ(readOnly->getSheetSet(), db->getSheetSet());
    EXPECT_EQ(readSet->getCustomProperties(), set->getCustomProperties());
    EXPECT_EQ(readSet->getSheetSelections(), set->getSheetSelections());
    EXPECT_EQ(readSet->getCalloutBlocks(), set->getCalloutBlocks());
    EXPECT_EQ(readSet->getViewCategories(), set->getViewCategories());
}

TEST_F(Tree, TheSetBelongsToTheDatabaseAndChildrenToTheirSubset)
{
    EXPECT_EQ(set->owner(), db);
    EXPECT_EQ(a->owner(), set);
    EXPECT_EQ(a->getOwner(), set);
    EXPECT_EQ(a->database(), db);
    EXPECT_EQ(db->owner(), nullptr);
}

TEST_F(Tree, TextGettersFillTheirArgumentAndReturnTheSame)
{
    ASSERT_TRUE(a->setName(u"n") && a->setDesc(u"d") && a->setNumber(u"1") && a->setTitle(u"t"));
    ASSERT_TRUE(a->setSheetText1(u"1") && a->setSheetText2(u"2") && a->setSheetText3(u"3") &&
                a->setSheetText4(u"4"));
    using Getter = TvString (TvSmSheet::*)(TvString&) const;
    const std::pair<Getter, TvString> rows[] = {
        {&TvSmSheet::getNumber, u"1"},     {&TvSmSheet::getTitle, u"t"},
        {&TvSmSheet::getSheetText1, u"1"}, {&TvSmSheet::getSheetText2, u"2"},
        {&TvSmSheet::getSheetText3, u"3"}, {&TvSmSheet::getSheetText4, u"4"},
    };
    for (const auto& [getter, expected] : rows) {
        TvString out = u"former";
        EXPECT_EQ((a->*getter)(out), expected);
        EXPECT_EQ(out, expected);
    }
    TvString out = u"former";
    EXPECT_EQ(a->getName(out), u"n");
    EXPECT_EQ(out, u"n");
    EXPECT_EQ(a->getDesc(out), u"d");
    EXPECT_EQ(out, u"d");
}

TEST_F(Tree, TheSheetSetHasFourTextsOfItsOwn)
{
    ASSERT_TRUE(set->setSheetSetText1(u"1") && set->setSheetSetText2(u"2") &&
                set->setSheetSetText3(u"3") && set->setSheetSetText4(u"4"));
    TvString out;
    EXPECT_EQ(set->getSheetSetText1(out) + set->getSheetSetText2(out) + set->getSheetSetText3(out) +
                  set->getSheetSetText4(out),
              u"1234");
}

TEST_F(Tree, FlagsAreFalseUntilSet)
{
    EXPECT_FALSE(a->getExcludeFromPublish() || d->getExcludeFromPublish() ||
                 d->getPromptForTemplate());
    EXPECT_TRUE(a->setExcludeFromPublish(true) && d->setExcludeFromPublish(true) &&
                d->setPromptForTemplate(true));
    EXPECT_TRUE(a->getExcludeFromPublish() && d->getExcludeFromPublish() &&
                d->getPromptForTemplate());
    EXPECT_TRUE(a->setExcludeFromPublish(false));
    EXPECT_FALSE(a->getExcludeFromPublish());
}

TEST_F(Tree, ASheetAnswersWithItsNameUntilATitleIsSet)
{
    TvSmSheet* sheet = set->createSheet(u"Layout1", u"described");
    EXPECT_EQ(sheet->getName(), u"Layout1");
    EXPECT_EQ(sheet->getDesc(), u"described");
    EXPECT_EQ(sheet->getTitle(), u"Layout1");
    ASSERT_TRUE(sheet->setTitle(u"Plan"));
    EXPECT_EQ(sheet->getTitle(), u"Plan");
    ASSERT_TRUE(sheet->setTitle(TvString()));
    EXPECT_EQ(sheet->getTitle(), u"");
}

TEST_F(Tree, WhatIsCreatedBelongsToTheSubsetButIsNotInItsOrder)
{
    TvSmSheet* sheet = d->createSheet(u"S", u"");
    TvSmSubset* subset = d->createSubset(u"T", u"");
    EXPECT_EQ(sheet->owner(), d);
    EXPECT_EQ(subset->owner(), d);
    EXPECT_TRUE(childrenOf(d).empty());
    EXPECT_EQ(db->findObject(handleOf(sheet)), nullptr);
}

TEST_F(Tree, AnEmptySubsetGivesAnEmptyWalk)
{
    const std::unique_ptr<TvSmEnumerator<TvSmComponent>> walk(d->getSheetEnumerator());
    ASSERT_NE(walk, nullptr);
    EXPECT_EQ(walk->next(), nullptr);
    EXPECT_EQ(walk->next(), nullptr);
    walk->reset();
    EXPECT_EQ(walk->next(), nullptr);
}

TEST_F(Tree, EveryEmptyCollectionGivesAnEmptyWalk)
{
    const auto expectEmpty = [](auto* owned) {
        const std::unique_ptr<std::remove_pointer_t<decltype(owned)>> walk(owned);
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(walk->next(), nullptr);
            EXPECT_EQ(walk->next(), nullptr);
            walk->reset();
        }
    };
    TvSmDatabase fresh;
    TvSmSheetSet* empty = fresh.getSheetSet();
    expectEmpty(empty->getSheetEnumerator());
    expectEmpty(empty->getResourceLocations()->getEnumerator());
    expectEmpty(empty->getCalloutBlocks()->getEnumerator());
    expectEmpty(empty->getViewCategories()->getEnumerator());
    expectEmpty(empty->getSheetSelections()->getEnumerator());
    expectEmpty(empty->getSheetSelections()->add(u"s", u"")->getEnumerator());
    expectEmpty(addSheet(empty, u"1", u"One")->getSheetViews()->getEnumerator());
    expectEmpty(addCategory(empty, u"C")->getSheetViewEnumerator());
    TvSmSheetSetMgr nothingOpen;
    expectEmpty(nothingOpen.getDatabaseEnumerator());
}

TEST_F(Tree, AWalkGivesTheChildrenInOrderAndStartsAnewAfterReset)
{
    const std::unique_ptr<TvSmEnumerator<TvSmComponent>> walk(set->getSheetEnumerator());
    EXPECT_EQ(walk->next(), a);
    EXPECT_EQ(walk->next(), b);
    walk->reset();
    for (const TvSmComponent* expected : std::initializer_list<TvSmComponent*>{a, b, c, d})
        EXPECT_EQ(walk->next(), expected);
    EXPECT_EQ(walk->next(), nullptr);
    EXPECT_EQ(walk->next(), nullptr);
}

TEST_F(Tree, InsertingIntoAnEmptySubsetWithoutNeighbourLeavesAnOnlyChild)
{
    TvSmSheet* before = d->createSheet(u"S", u"");
    EXPECT_TRUE(d->insertComponent(before, nullptr));
    EXPECT_EQ(childrenOf(d), Names{u"S"});
    TvSmSubset* other = addSubset(set, u"E");
    TvSmSheet* after = other->createSheet(u"T", u"");
    EXPECT_TRUE(other->insertComponentAfter(after, nullptr));
    EXPECT_EQ(childrenOf(other), Names{u"T"});
}

TEST_F(Tree, InsertComponentPutsBeforeTheNeighbourOrAtTheEnd)
{
    TvSmSheet* first = set->createSheet(u"0", u"");
    TvSmSheet* middle = set->createSheet(u"1", u"");
    TvSmSheet* last = set->createSheet(u"2", u"");
    EXPECT_TRUE(set->insertComponent(first, a));
    EXPECT_TRUE(set->insertComponent(middle, c));
    EXPECT_TRUE(set->insertComponent(last, nullptr));
    EXPECT_EQ(childrenOf(set), (Names{u"0", u"A", u"B", u"1", u"C", u"D", u"2"}));
}

TEST_F(Tree, InsertComponentAfterPutsBehindTheNeighbourOrAtTheEnd)
{
    TvSmSheet* second = set->createSheet(u"0", u"");
    TvSmSheet* behindLast = set->createSheet(u"1", u"");
    TvSmSheet* last = set->createSheet(u"2", u"");
    EXPECT_TRUE(set->insertComponentAfter(second, a));
    EXPECT_TRUE(set->insertComponentAfter(behindLast, d));
    EXPECT_TRUE(set->insertComponentAfter(last, nullptr));
    EXPECT_EQ(childrenOf(set), (Names{u"A", u"0", u"B", u"C", u"D", u"1", u"2"}));
}

TEST_F(Tree, InsertingWhatStandsElsewhereMovesIt)
{
    EXPECT_TRUE(d->insertComponent(a, nullptr));
    EXPECT_EQ(childrenOf(set), (Names{u"B", u"C", u"D"}));
    EXPECT_EQ(childrenOf(d), Names{u"A"});
    EXPECT_EQ(a->owner(), d);
}

TEST_F(Tree, InsertingWhatStandsHereChangesItsPlaceOnly)
{
    EXPECT_TRUE(set->insertComponent(c, a));
    EXPECT_EQ(childrenOf(set), (Names{u"C", u"A", u"B", u"D"}));
    EXPECT_TRUE(set->insertComponentAfter(c, a));
    EXPECT_EQ(childrenOf(set), (Names{u"A", u"C", u"B", u"D"}));
    EXPECT_TRUE(set->insertComponentAfter(c, a)); // is there already
    EXPECT_EQ(childrenOf(set), (Names{u"A", u"C", u"B", u"D"}));
    EXPECT_TRUE(set->insertComponent(a, nullptr));
    EXPECT_EQ(childrenOf(set), (Names{u"C", u"B", u"D", u"A"}));
}

TEST_F(Tree, AChildAsItsOwnNeighbourIsNotLost)
{
    EXPECT_TRUE(set->insertComponent(b, b));
    EXPECT_EQ(childrenOf(set), (Names{u"B", u"A", u"C", u"D"}));
    EXPECT_TRUE(set->insertComponentAfter(a, a));
    EXPECT_EQ(childrenOf(set), (Names{u"B", u"C", u"D", u"A"}));
    EXPECT_TRUE(set->insertComponent(b, b)); // is the first already
    EXPECT_EQ(childrenOf(set), (Names{u"B", u"C", u"D", u"A"}));
}

TEST_F(Tree, ANeighbourThatIsNoChildIsRefusedAndNothingMoves)
{
    TvSmSheet* inner = addSheet(d, u"", u"inner");
    TvSmSheet* never = set->createSheet(u"never", u"");
    EXPECT_FALSE(set->insertComponent(a, inner));
    EXPECT_FALSE(set->insertComponentAfter(a, inner));
    EXPECT_FALSE(set->insertComponent(a, never));
    EXPECT_FALSE(set->insertComponentAfter(never, inner));
    EXPECT_EQ(childrenOf(set), (Names{u"A", u"B", u"C", u"D"}));
}

TEST_F(Tree, NullAndUnfitChildrenAreRefused)
{
    TvSmSheet* sheet = addSheet(set, u"", u"with view");
    TvSmSheetView* view = addView(sheet, u"view");
    EXPECT_FALSE(set->insertComponent(nullptr, a));
    EXPECT_FALSE(set->insertComponentAfter(nullptr, a));
    EXPECT_FALSE(set->insertComponentAfter(nullptr, nullptr));
    EXPECT_FALSE(set->insertComponent(view, nullptr));
    EXPECT_FALSE(d->insertComponent(set, nullptr));
    EXPECT_FALSE(d->insertComponent(set->getPublishOptions(), nullptr));
    EXPECT_FALSE(set->removeSheet(nullptr));
    EXPECT_FALSE(set->removeSubset(nullptr));
    TvSmSheet unbound;
    EXPECT_FALSE(set->insertComponent(&unbound, nullptr));
}

TEST_F(Tree, ObjectsOfAnotherDatabaseAreRefused)
{
    TvSmDatabase other;
    TvSmSheet* foreign = addSheet(other.getSheetSet(), u"", u"foreign");
    TvSmSubset* foreignSubset = addSubset(other.getSheetSet(), u"foreign");
    EXPECT_FALSE(set->insertComponent(foreign, nullptr));
    EXPECT_FALSE(set->insertComponent(foreignSubset, nullptr));
    EXPECT_FALSE(set->insertComponent(a, foreign));
    EXPECT_FALSE(set->removeSheet(foreign));
    EXPECT_FALSE(a->setOwner(foreignSubset));
    EXPECT_EQ(childrenOf(set), (Names{u"A", u"B", u"C", u"D"}));
    EXPECT_EQ(childrenOf(other.getSheetSet()).size(), 2u);
}

TEST_F(Tree, ASubsetNeverGoesIntoOrBelowItself)
{
    TvSmSubset* inner = addSubset(d, u"inner");
    EXPECT_FALSE(d->insertComponent(d, nullptr));
    EXPECT_FALSE(inner->insertComponent(d, nullptr));
    EXPECT_FALSE(inner->insertComponentAfter(d, nullptr));
    EXPECT_EQ(childrenOf(d), Names{u"inner"});
    EXPECT_EQ(d->owner(), set);
}

TEST_F(Tree, OwnersOfSubsetsThatStandNowhereNeverFormARing)
{
    TvSmSubset* first = set->createSubset(u"first", u"");
    TvSmSubset* second = set->createSubset(u"second", u"");
    EXPECT_TRUE(first->setOwner(second));
    EXPECT_FALSE(second->setOwner(first));
    EXPECT_FALSE(first->setOwner(first));
    TvSmSubset* child = second->createSubset(u"child", u"");
    EXPECT_TRUE(second->insertComponent(child, nullptr));
    EXPECT_FALSE(second->setOwner(child));
    EXPECT_TRUE(set->insertComponent(second, nullptr));
}

TEST_F(Tree, SubsetsAreNestedToALimit)
{
    TvSmSubset* deepest = set;
    int levels = 1;
    for (;; ++levels) {
        TvSmSubset* next = deepest->createSubset(u"level", u"");
        if (!deepest->insertComponent(next, nullptr))
            break;
        deepest = next;
        ASSERT_LT(levels, 1000);
    }
    EXPECT_EQ(levels, TvSmSubset::kMaxDepth);
    TvSmSubset* pair = set->createSubset(u"pair", u"");
    ASSERT_TRUE(pair->insertComponent(pair->createSubset(u"low", u""), nullptr));
    TvSmSubset* above = tvrxCast<TvSmSubset>(deepest->owner());
    EXPECT_FALSE(above->insertComponent(pair, nullptr));
    EXPECT_TRUE(tvrxCast<TvSmSubset>(above->owner())->insertComponent(pair, nullptr));
}

TEST_F(Tree, TheDeepestTreeGoesThroughAFile)
{
    TvSmSubset* deepest = set;
    for (int level = 1; level < TvSmSubset::kMaxDepth; ++level)
        deepest = addSubset(deepest, u"level");
    TvSmSheetView* view = addView(addSheet(deepest, u"1", u"Deep"), u"view");
    auto* reference = newFor<TvSmTvDbViewReference>(view);
    ASSERT_TRUE(reference->setFileName(u"a.dwg") && view->setViewReference(reference));
    ASSERT_TRUE(sm::setTextProperty(view->getCustomProperties(), u"p", u"v", 2));
    ASSERT_TRUE(db->save(0));
    const std::string before = Outline::of(db);
    ASSERT_TRUE(manager.closeDatabase(db));
    ASSERT_TRUE(open()) << int(sm::lastStatus(&manager).reason());
    EXPECT_EQ(Outline::of(open()), before);
}

TEST_F(Tree, ARemovedChildStaysAValidObjectThatIsNotFound)
{
    const TvString handle = handleOf(a);
    ASSERT_EQ(db->findObject(handle), a);
    EXPECT_TRUE(set->removeSheet(a));
    EXPECT_EQ(db->findObject(handle), nullptr);
    EXPECT_EQ(a->getName(), u"A");
    EXPECT_EQ(handleOf(a), handle);
    EXPECT_EQ(a->database(), db);
    EXPECT_FALSE(set->removeSheet(a));
    EXPECT_TRUE(set->insertComponent(a, nullptr));
    EXPECT_EQ(db->findObject(handle), a);
}

TEST_F(Tree, AChildThatComesBackIsInItsSelectionsAndCategoriesAgain)
{
    TvSmViewCategory* category = addCategory(set, u"Plans");
    TvSmSheetView* view = addView(a, u"North", category);
    TvSmSheetSelection* selection = set->getSheetSelections()->add(u"s", u"");
    ASSERT_TRUE(selection->add(a) && set->removeSheet(a));
    EXPECT_TRUE(itemsOf(selection->getEnumerator()).empty());
    EXPECT_TRUE(itemsOf(category->getSheetViewEnumerator()).empty());
    ASSERT_TRUE(d->insertComponent(a, nullptr));
    EXPECT_EQ(itemsOf(selection->getEnumerator()), std::vector<TvSmComponent*>{a});
    EXPECT_EQ(itemsOf(category->getSheetViewEnumerator()), std::vector<TvSmSheetView*>{view});
    EXPECT_EQ(itemsOf(a->getSheetViews()->getEnumerator()), std::vector<TvSmSheetView*>{view});
}

TEST_F(Tree, RemovingASubsetTakesAllBelowItAlongAndBack)
{
    TvSmSubset* inner = addSubset(d, u"inner");
    TvSmSheet* sheet = addSheet(inner, u"1", u"S");
    const TvString handle = handleOf(sheet);
    EXPECT_TRUE(set->removeSubset(d));
    EXPECT_EQ(db->findObject(handle), nullptr);
    EXPECT_EQ(childrenOf(inner), Names{u"S"});
    EXPECT_TRUE(set->insertComponent(d, a));
    EXPECT_EQ(db->findObject(handle), sheet);
}

TEST_F(Tree, OnlyADirectChildIsRemoved)
{
    TvSmSubset* inner = addSubset(d, u"inner");
    TvSmSheet* sheet = addSheet(inner, u"1", u"S");
    EXPECT_FALSE(set->removeSheet(sheet));
    EXPECT_FALSE(d->removeSheet(sheet));
    EXPECT_FALSE(set->removeSubset(inner));
    EXPECT_FALSE(set->removeSubset(set));
    EXPECT_EQ(db->findObject(handleOf(sheet)), sheet);
}

TEST_F(Tree, AMoveIsRemovalInsertionAndSetOwner)
{
    const TvString handle = handleOf(b);
    EXPECT_TRUE(set->removeSheet(b));
    EXPECT_TRUE(d->insertComponentAfter(b, nullptr));
    EXPECT_TRUE(b->setOwner(d));
    EXPECT_EQ(b->owner(), d);
    EXPECT_EQ(handleOf(b), handle);
    EXPECT_EQ(childrenOf(d), Names{u"B"});
    EXPECT_EQ(childrenOf(set), (Names{u"A", u"C", u"D"}));
}

TEST_F(Tree, SetOwnerNeverTearsAChildOutOfASubset)
{
    EXPECT_FALSE(a->setOwner(d));
    EXPECT_FALSE(a->setOwner(nullptr));
    EXPECT_EQ(a->owner(), set);
    EXPECT_EQ(childrenOf(set), (Names{u"A", u"B", u"C", u"D"}));
    EXPECT_TRUE(childrenOf(d).empty());
}

TEST_F(Tree, AWalkSurvivesTheRemovalOfTheItemGivenLast)
{
    const std::unique_ptr<TvSmEnumerator<TvSmComponent>> walk(set->getSheetEnumerator());
    EXPECT_EQ(walk->next(), a);
    EXPECT_TRUE(set->removeSheet(a));
    walk->next(); // may end or go on; must not touch what is gone
    walk->reset();
    EXPECT_EQ(walk->next(), b);
}

TEST(SmHandles, AreTheLetterGAndHexadecimalDigits)
{
    EXPECT_EQ(TvSmObjectId(0x1A).getHandle(), u"g1A");
    EXPECT_EQ(TvSmObjectId().getHandle(), u"");
    EXPECT_TRUE(TvSmObjectId().isNull());
    EXPECT_EQ(sm::handleNumber(std::u16string_view(u"g1a")), 0x1Au);
    EXPECT_EQ(sm::handleNumber(std::u16string_view(u"G1A")), 0x1Au);
    for (const char* none : {"", "g", "1A", "x1A", "g1G", "g 1", "g-1", "g1A ", "gFFFFFFFFFFFFFFFF",
                             "g00000000000000001", "g0"})
        EXPECT_EQ(sm::handleNumber(std::string_view(none)), 0u) << none;
}

TEST_F(Tree, HandlesAreUniqueAndNeverGivenAgain)
{
    TvSmSheet* gone = addSheet(set, u"", u"gone");
    const TvString handle = handleOf(gone);
    ASSERT_TRUE(set->removeSheet(gone));
    ASSERT_TRUE(db->save(0));
    ASSERT_TRUE(manager.closeDatabase(db));
    db = open();
    ASSERT_TRUE(db->lockDb(db));
    std::vector<TvString> handles;
    sm::forEachObject(db, [&](TvSmPersist& each) { handles.push_back(handleOf(&each)); });
    handles.push_back(handleOf(addSheet(db->getSheetSet(), u"", u"new")));
    ASSERT_TRUE(db->unlockDb(db, false));
    EXPECT_EQ(std::count(handles.begin(), handles.end(), handle), 0);
    std::sort(handles.begin(), handles.end());
    EXPECT_EQ(std::adjacent_find(handles.begin(), handles.end()), handles.end());
    EXPECT_EQ(std::count(handles.begin(), handles.end(), TvString()), 0);
}

TEST_F(Tree, AnObjectHasAHandleFromInitNewOnAndNoneBefore)
{
    auto view = std::make_unique<TvSmSheetView>();
    EXPECT_EQ(handleOf(view.get()), u"");
    EXPECT_EQ(view->database(), nullptr);
    EXPECT_FALSE(view->initNew(nullptr, TvString()));
    ASSERT_TRUE(view->initNew(a->getSheetViews(), TvString()));
    const TvString handle = handleOf(view.get());
    EXPECT_TRUE(handle.startsWith(u"g"));
    EXPECT_EQ(view->owner(), a->getSheetViews());
    EXPECT_EQ(view->database(), db);
    EXPECT_FALSE(view->initNew(b->getSheetViews(), TvString()));
    EXPECT_EQ(handleOf(view.get()), handle);
    EXPECT_EQ(db->findObject(handle), nullptr);
}

TEST_F(Tree, FindObjectTakesHandlesOfWhatStandsInTheSetOnly)
{
    EXPECT_EQ(db->findObject(handleOf(set)), set);
    EXPECT_EQ(db->findObject(handleOf(set->getPublishOptions())), set->getPublishOptions());
    for (const char* none : {"", "g", "g0", "gFFFF", "nonsense", "5E"})
        EXPECT_EQ(db->findObject(none), nullptr) << none;
}

TEST(SmObjects, MadeButNeverAddedBelongToTheirMakerEvenPastTheDatabase)
{
    auto sheet = std::make_unique<TvSmSheet>();
    auto view = std::make_unique<TvSmSheetView>();
    {
        TvSmDatabase db;
        auto deleted = std::make_unique<TvSmSheetView>();
        ASSERT_TRUE(deleted->initNew(db.getSheetSet(), TvString()));
        ASSERT_TRUE(sheet->initNew(db.getSheetSet(), TvString()));
        ASSERT_TRUE(view->initNew(sheet->getSheetViews(), TvString()));
        auto* reference = newFor<TvSmTvDbViewReference>(view.get());
        ASSERT_TRUE(view->setViewReference(reference));
        ASSERT_TRUE(view->setTitle(u"kept"));
    }
    EXPECT_EQ(view->database(), nullptr);
    EXPECT_EQ(view->getViewReference(), nullptr);
    EXPECT_EQ(handleOf(view.get()), u"");
    TvSmDatabase next;
    EXPECT_TRUE(view->initNew(next.getSheetSet(), TvString()));
    EXPECT_TRUE(sheet->initNew(next.getSheetSet(), TvString()));
    EXPECT_TRUE(sheet->getSheetViews()->add(view.get()));
    EXPECT_TRUE(next.getSheetSet()->insertComponent(sheet.get(), nullptr));
    EXPECT_EQ(next.findObject(handleOf(view.get())), view.get());
    static_cast<void>(view.release());
    static_cast<void>(sheet.release());
}
