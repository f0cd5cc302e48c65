#include <gtest/gtest.h>

#include "sheet_set_builder.h"

namespace {

using Names = std::vector<TvString>;

/// A saved set: sheet One with a view in the category Plans, subset Ground with sheet Two.
class Reload : public SheetSetTest
{
protected:
    Reload()
    {
        db = create();
        set = db->getSheetSet();
        category = addCategory(set, u"Plans");
        one = addSheet(set, u"1", u"One");
        view = addView(one, u"North", category);
        layout = setLayout(one, u"a.dwg", u"1F", u"L");
        ground = addSubset(set, u"Ground");
        two = addSheet(ground, u"2", u"Two");
        EXPECT_TRUE(sm::setTextProperty(one->getCustomProperties(), u"p", u"v", 2));
        value = one->getCustomProperties()->getProperty(u"p");
        selection = set->getSheetSelections()->add(u"Print", u"");
        EXPECT_TRUE(selection->add(one) && selection->add(two));
        EXPECT_TRUE(db->save(0));
        before = content();
    }
    /// The same file in the hands of somebody else.
    TvSmDatabase* other() { return m_second.openDatabase(path(), true, 0); }
    void outside(const std::function<void(TvSmSheetSet* set)>& change)
    {
        TvSmDatabase* theirs = other();
        ASSERT_TRUE(theirs && theirs->lockDb(theirs));
        change(theirs->getSheetSet());
        ASSERT_TRUE(theirs->unlockDb(theirs, true));
    }
    template <class T>
    T* same(TvSmDatabase* theirs, const T* ours) const
    {
        return tvrxCast<T>(theirs->findObject(handleOf(ours)));
    }

    TvSmDatabase* db;
    TvSmSheetSet* set;
    TvSmViewCategory* category;
    TvSmSheet *one, *two;
    TvSmSheetView* view;
    TvSmTvDbLayoutReference* layout;
    TvSmSubset* ground;
    TvSmCustomPropertyValue* value;
    TvSmSheetSelection* selection;
    std::string before;

private:
    TvSmSheetSetMgr m_second;
};

} // namespace

TEST_F(Reload, KeepsTheAddressOfWhatStillExists)
{
    const std::string outline = Outline::of(db, true);
    outside([&](TvSmSheetSet* theirs) {
        same(theirs->database(), one)->setTitle(u"Renamed");
        theirs->setName(u"School");
    });
    EXPECT_EQ(one->getTitle(), u"One");
    ASSERT_TRUE(db->load(path()));
    EXPECT_EQ(one->getTitle(), u"Renamed");
    EXPECT_EQ(db->getSheetSet(), set);
    EXPECT_EQ(set->getName(), u"School");
    EXPECT_EQ(db->findObject(handleOf(one)), one);
    EXPECT_EQ(one->getSheetViews()->owner(), one);
    ASSERT_TRUE(db->lockDb(db) && one->setTitle(u"One") && set->setName(u"") &&
                db->unlockDb(db, true));
    EXPECT_EQ(Outline::of(db, true), outline);
}

TEST_F(Reload, TakingTheLockReadsAfreshBeforeAnythingIsChanged)
{
    outside([&](TvSmSheetSet* theirs) {
        addSheet(theirs, u"3", u"Theirs");
        same(theirs->database(), two)->setTitle(u"Renamed");
    });
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_EQ(childrenOf(set), (Names{u"One", u"Ground", u"Theirs"}));
    EXPECT_EQ(two->getTitle(), u"Renamed");
    ASSERT_TRUE(one->setTitle(u"Ours"));
    ASSERT_TRUE(db->unlockDb(db, true));
    for (const char* text : {"Ours", "Renamed", "Theirs"})
        EXPECT_NE(content().find(text), std::string::npos) << text;
}

TEST_F(Reload, ContentThatMemoryHoldsAlreadyChangesNothing)
{
    const std::string outline = Outline::of(db, true);
    const TvString name = one->getName();
    folder.write("a.dwg", "");
    ASSERT_EQ(layout->resolveFileName(), folder.file("a.dwg"));
    replaceOutside(before); // another file, the same bytes
    EXPECT_TRUE(db->load(path()));
    EXPECT_EQ(layout->getResolvedPath(), folder.file("a.dwg"));
    EXPECT_EQ(Outline::of(db, true), outline);
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_EQ(Outline::of(db, true), outline);
    const auto time = std::filesystem::last_write_time(folder.path() / kName);
    ASSERT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(std::filesystem::last_write_time(folder.path() / kName), time);
}

TEST_F(Reload, ParksWhatWentSoThatPointersStayHarmless)
{
    outside([&](TvSmSheetSet* theirs) {
        TvSmDatabase* their = theirs->database();
        theirs->removeSheet(same(their, one));
        theirs->removeSubset(same(their, ground));
        theirs->getViewCategories()->remove(same(their, category));
        theirs->getSheetSelections()->remove(same(their, selection));
    });
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_TRUE(childrenOf(set).empty());
    for (TvSmPersist* gone : std::initializer_list<TvSmPersist*>{one, view, layout, value, ground,
                                                                 two, category, selection})
        EXPECT_EQ(db->findObject(handleOf(gone)), nullptr);
    // Getters answer.
    EXPECT_EQ(one->getTitle(), u"One");
    EXPECT_EQ(two->getTitle(), u"Two");
    EXPECT_EQ(view->getTitle(), u"North");
    EXPECT_EQ(view->getCategory(), nullptr);
    EXPECT_EQ(layout->getFileName(), u"a.dwg");
    EXPECT_EQ(layout->resolveFileName(), u"");
    EXPECT_EQ(ground->getName(), u"Ground");
    childrenOf(ground);
    itemsOf(one->getSheetViews()->getEnumerator());
    itemsOf(category->getSheetViewEnumerator());
    itemsOf(selection->getEnumerator());
    sm::propertiesOf(one->getCustomProperties());
    // Setters refuse.
    EXPECT_FALSE(one->setTitle(u"x") || one->setName(u"x") || one->setExcludeFromPublish(true));
    EXPECT_FALSE(one->setLayoutReference(nullptr) || one->getSheetViews()->remove(view));
    EXPECT_FALSE(layout->setFileName(u"x") || layout->setHandle(u"x") || layout->setName(u"x"));
    EXPECT_FALSE(value->setValue(TvVariant("x")) || value->setFlags(1));
    EXPECT_FALSE(sm::setTextProperty(one->getCustomProperties(), u"q", u"x", 0));
    EXPECT_FALSE(view->setTitle(u"x") || view->setCategory(nullptr));
    EXPECT_FALSE(ground->createSheet(u"x", u"") || ground->createSubset(u"x", u""));
    EXPECT_FALSE(ground->removeSheet(two) || ground->insertComponent(one, nullptr));
    EXPECT_FALSE(set->insertComponent(one, nullptr) || one->setOwner(set));
    EXPECT_FALSE(category->setName(u"x") || set->getViewCategories()->add(category, 0));
    EXPECT_FALSE(selection->add(set));
    EXPECT_EQ(one->getTitle(), u"One");
    ASSERT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(content().find("One"), std::string::npos);
}

TEST_F(Reload, BringsBackByHandleWhatReturns)
{
    const std::string outline = Outline::of(db, true);
    outside([&](TvSmSheetSet* theirs) {
        theirs->removeSheet(same(theirs->database(), one));
        theirs->removeSubset(same(theirs->database(), ground));
    });
    ASSERT_TRUE(db->load(path()));
    EXPECT_EQ(Outline::of(db, true).find("title=[One]"), std::string::npos);
    replaceOutside(before);
    ASSERT_TRUE(db->load(path()));
    EXPECT_EQ(Outline::of(db, true), outline);
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_TRUE(one->setTitle(u"x") && two->setTitle(u"y"));
    EXPECT_TRUE(db->unlockDb(db, false));
}

TEST_F(Reload, AParkedSubsetHasNoChildrenOfOthers)
{
    // Somebody moved the sheet out of the subset and removed the subset.
    outside([&](TvSmSheetSet* theirs) {
        TvSmDatabase* their = theirs->database();
        theirs->insertComponent(same(their, two), nullptr);
        addSheet(theirs, u"3", u"Three");
        theirs->removeSubset(same(their, ground));
    });
    ASSERT_TRUE(db->load(path()));
    EXPECT_EQ(two->owner(), set);
    EXPECT_EQ(childrenOf(set), (Names{u"One", u"Two", u"Three"}));
    EXPECT_TRUE(childrenOf(ground).empty());
}

TEST_F(Reload, WhatWeTookOutOurselvesComesBackByHandleToo)
{
    const std::string outline = Outline::of(db, true);
    ASSERT_TRUE(db->lockDb(db) && set->removeSubset(ground) && set->removeSheet(one) &&
                db->unlockDb(db, true));
    replaceOutside(before);
    ASSERT_TRUE(db->load(path()));
    EXPECT_EQ(Outline::of(db, true), outline);
}

TEST_F(Reload, ASubtreeThatWasTakenOutStaysWholeThroughAReload)
{
    ASSERT_TRUE(db->lockDb(db) && set->removeSubset(ground) && db->unlockDb(db, true));
    outside([&](TvSmSheetSet* theirs) { theirs->setDesc(u"changed"); });
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_EQ(set->getDesc(), u"changed");
    EXPECT_EQ(childrenOf(ground), Names{u"Two"});
    EXPECT_EQ(two->getTitle(), u"Two");
    EXPECT_EQ(two->owner(), ground);
    ASSERT_TRUE(set->insertComponent(ground, nullptr));
    EXPECT_EQ(db->findObject(handleOf(two)), two);
    EXPECT_TRUE(two->setTitle(u"Back"));
    ASSERT_TRUE(db->unlockDb(db, true));
    TvSmDatabase read;
    ASSERT_TRUE(read.load(path()));
    EXPECT_EQ(Outline::of(&read), Outline::of(db));
}

TEST_F(Reload, AChildOfASubtreeTakenOutMayComeBackElsewhere)
{
    ASSERT_TRUE(db->lockDb(db) && set->removeSubset(ground) && db->unlockDb(db, true));
    std::string text = before;
    const std::string open = "<subset handle=\"" + handleOf(ground).utf8();
    text.erase(text.find(open), text.find('\n', text.find(open)) - text.find(open));
    text.erase(text.find("</subset>"), 9);
    replaceOutside(text);
    ASSERT_TRUE(db->load(path())) << text;
    EXPECT_EQ(childrenOf(set), (Names{u"One", u"Two"}));
    EXPECT_TRUE(childrenOf(ground).empty() || db->findObject(handleOf(two)) != two);
    ASSERT_TRUE(db->lockDb(db) && set->insertComponent(ground, nullptr) && db->unlockDb(db, true));
    TvSmDatabase read;
    EXPECT_TRUE(read.load(path())) << content();
}

TEST_F(Reload, WhatItsMakerHoldsSurvivesAHandleThatSomebodyElseGave)
{
    auto* held = newFor<TvSmSheetView>(one->getSheetViews());
    auto* reference = newFor<TvSmTvDbViewReference>(held);
    ASSERT_TRUE(held->setTitle(u"Held") && reference->setFileName(u"held.dwg") &&
                held->setViewReference(reference));
    const TvString handle = handleOf(held);
    outside([&](TvSmSheetSet* theirs) {
        for (int i = 0; i < 4; ++i)
            EXPECT_TRUE(sm::setTextProperty(theirs->getCustomProperties(),
                                            TvString().format(u"p%d", i), u"v", 1));
        EXPECT_TRUE(theirs->database()->findObject(handle)); // the collision
    });
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_NE(handleOf(held), handle);
    EXPECT_EQ(held->getTitle(), u"Held");
    ASSERT_EQ(held->getViewReference(), reference);
    EXPECT_TRUE(held->setTitle(u"Still held"));
    EXPECT_TRUE(reference->setFileName(u"still.dwg"));
    ASSERT_TRUE(one->getSheetViews()->add(held));
    EXPECT_EQ(db->findObject(handleOf(held)), held);
    EXPECT_EQ(db->findObject(handleOf(reference)), reference);
    ASSERT_TRUE(db->unlockDb(db, true));
    TvSmDatabase read;
    ASSERT_TRUE(read.load(path())) << content();
    EXPECT_EQ(Outline::of(&read), Outline::of(db));
}

TEST_F(Reload, ASheetThatWasRolledBackIsNotTakenForSomebodyElses)
{
    ASSERT_TRUE(db->lockDb(db));
    TvSmSheet* ours = addSheet(set, u"3", u"Ours");
    const TvString handle = handleOf(ours);
    ASSERT_TRUE(db->unlockDb(db, false));
    outside([&](TvSmSheetSet* theirs) {
        EXPECT_EQ(handleOf(addSheet(theirs, u"3", u"Theirs")), handle);
    });
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_EQ(ours->getName(), u""); // undone as all else
    ASSERT_TRUE(db->findObject(handle));
    EXPECT_NE(db->findObject(handle), ours);
    ASSERT_TRUE(ours->setName(u"Ours") && set->insertComponent(ours, nullptr));
    EXPECT_EQ(childrenOf(set), (Names{u"One", u"Ground", u"Theirs", u"Ours"}));
    ASSERT_TRUE(db->unlockDb(db, true));
    TvSmDatabase read;
    ASSERT_TRUE(read.load(path()));
    EXPECT_EQ(childrenOf(read.getSheetSet()).size(), 4u);
}

TEST_F(Reload, AHandleThatStandsForAnotherKindNowGivesANewObject)
{
    editOutside("<subset handle=\"" + handleOf(ground).utf8() + "\" name=\"Ground\">",
                "<sheet handle=\"" + handleOf(ground).utf8() +
                    "\" name=\"Ground\"/><subset "
                    "handle=\"gFF\">");
    ASSERT_TRUE(db->load(path())) << content();
    auto* now = tvrxCast<TvSmSheet>(db->findObject(
        u"g" + [&] { return handleOf(itemsOf(set->getSheetEnumerator()).at(1)).substr(1); }()));
    ASSERT_TRUE(now);
    EXPECT_NE(static_cast<TvSmComponent*>(now), static_cast<TvSmComponent*>(ground));
    EXPECT_EQ(now->getName(), u"Ground");
    EXPECT_NE(handleOf(ground), handleOf(now));
    EXPECT_EQ(tvrxCast<TvSmSubset>(two->owner())->objectId().getHandle(), u"gFF");
}

TEST_F(Reload, ADamagedFileLeavesMemoryAsItWas)
{
    const std::string outline = Outline::of(db, true);
    const std::string handle = handleOf(one).utf8();
    for (const std::string& damaged :
         {std::string(), std::string("no xml"), before.substr(0, before.size() / 2),
          std::string("<other/>"),
          std::string(before).replace(before.find(handle), handle.size(), "zz"),
          std::string(before).replace(before.find("handle=\"" + handleOf(two).utf8()) + 8,
                                      handleOf(two).utf8().size(), handle)}) {
        replaceOutside(damaged);
        EXPECT_FALSE(db->load(path())) << damaged;
        EXPECT_EQ(sm::lastStatus(db).failure(), base::Failure::Damaged) << damaged;
        EXPECT_EQ(Outline::of(db, true), outline);
        EXPECT_FALSE(db->lockDb(db)) << damaged;
        EXPECT_EQ(db->getLockStatus(), 0);
        EXPECT_EQ(Outline::of(db, true), outline);
        EXPECT_EQ(content(), damaged);
    }
    replaceOutside(before);
    EXPECT_TRUE(db->lockDb(db));
}

TEST_F(Reload, AMissingFileIsRefusedAndLeavesMemoryAsItWas)
{
    const std::string outline = Outline::of(db, true);
    EXPECT_FALSE(db->load(folder.file("none.dst")));
    EXPECT_EQ(sm::lastStatus(db).failure(), base::Failure::NotFound);
    EXPECT_EQ(Outline::of(db, true), outline);
    TvSmDatabase scratch;
    EXPECT_FALSE(scratch.load(TvString()));
}

TEST_F(Reload, AnEmptyPathMeansTheOwnFile)
{
    outside([&](TvSmSheetSet* theirs) { theirs->setName(u"School"); });
    EXPECT_TRUE(db->load(TvString()));
    EXPECT_EQ(set->getName(), u"School");
}

TEST_F(Reload, WaitsWhileTheLockIsHeld)
{
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(one->setTitle(u"Ours"));
    editOutside("Two", "TWO");
    EXPECT_FALSE(db->load(path()));
    EXPECT_EQ(one->getTitle(), u"Ours");
    EXPECT_EQ(two->getTitle(), u"Two");
    ASSERT_TRUE(db->unlockDb(db, false));
    EXPECT_TRUE(db->load(path()));
    EXPECT_EQ(two->getTitle(), u"TWO");
}

TEST_F(Reload, AnotherFileIsReadInPlaceAndWrittenByTheNextCommit)
{
    folder.write("OTHER.dst", before);
    outside([&](TvSmSheetSet* theirs) { theirs->setName(u"School"); });
    ASSERT_TRUE(db->load(path()));
    ASSERT_TRUE(db->load(folder.file("OTHER.dst")));
    EXPECT_EQ(set->getName(), u"");
    EXPECT_EQ(db->getFileName(), path());
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_EQ(set->getName(), u"");
    ASSERT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(content().find("School"), std::string::npos);
}

TEST_F(Reload, AnotherFileThatWasReadSurvivesATouchOfTheOwn)
{
    folder.write("OTHER.dst", before);
    outside([&](TvSmSheetSet* theirs) { theirs->setName(u"School"); });
    ASSERT_TRUE(db->load(path()) && db->load(folder.file("OTHER.dst")));
    replaceOutside(content());
    ASSERT_TRUE(db->lockDb(db) && db->unlockDb(db, true));
    EXPECT_EQ(set->getName(), u"");
    EXPECT_EQ(content().find("School"), std::string::npos);
}

TEST_F(Reload, TheOwnFileComesBackAfterAnotherWasRead)
{
    folder.write("OTHER.dst", before);
    outside([&](TvSmSheetSet* theirs) { theirs->setName(u"School"); });
    ASSERT_TRUE(db->load(path()) && db->load(folder.file("OTHER.dst")));
    ASSERT_TRUE(db->load(path()));
    EXPECT_EQ(set->getName(), u"School");
    // It is as it stands there: nothing is to be written.
    ops.reset();
    ASSERT_TRUE(db->lockDb(db) && db->unlockDb(db, true));
    for (const auto& call : ops.trace())
        EXPECT_NE(call.kind, base::FaultyFileOps::Kind::Rename) << call.path;
}

TEST_F(Reload, WhatItsMakerHoldsIsNeverTheFilesEvenOfTheSameKind)
{
    const std::unique_ptr<TvSmSheet> held(newFor<TvSmSheet>(set));
    const TvString handle = handleOf(held.get());
    ASSERT_TRUE(db->lockDb(db));
    addSheet(set, u"3", u"Three"); // the next handle is behind that of the held one now
    ASSERT_TRUE(held->setTitle(u"Held") && db->unlockDb(db, true));
    editOutside("    <sheet ", "    <sheet handle=\"" + handle.utf8() +
                                   "\" name=\"Theirs\"/>\n"
                                   "    <sheet ");
    ASSERT_TRUE(db->load(path()));
    auto* theirs = tvrxCast<TvSmSheet>(db->findObject(handle));
    ASSERT_TRUE(theirs);
    EXPECT_NE(theirs, held.get());
    EXPECT_EQ(theirs->getTitle(), u"Theirs");
    EXPECT_EQ(held->getTitle(), u"Held");
    EXPECT_NE(handleOf(held.get()), handle);
}

TEST_F(Reload, AHandleThatTheSetOrItsOptionsTookIsNotThatOfWhatComesBack)
{
    const TvString handles[] = {handleOf(one), handleOf(two)};
    ASSERT_TRUE(db->lockDb(db) && set->removeSheet(one) && ground->removeSheet(two) &&
                db->unlockDb(db, true));
    editOutside("<sheetSet handle=\"g1\"", "<sheetSet handle=\"" + handles[0].utf8() + "\"");
    editOutside("<publishOptions handle=\"g2\"",
                "<publishOptions handle=\"" + handles[1].utf8() + "\"");
    ASSERT_TRUE(db->load(path()));
    EXPECT_EQ(db->findObject(handles[0]), set);
    EXPECT_EQ(db->findObject(handles[1]), set->getPublishOptions());
    ASSERT_TRUE(db->lockDb(db) && set->insertComponent(one, nullptr) &&
                set->insertComponent(two, nullptr) && db->unlockDb(db, true));
    EXPECT_EQ(db->findObject(handles[0]), set);
    EXPECT_EQ(db->findObject(handleOf(one)), one);
    EXPECT_EQ(db->findObject(handleOf(two)), two);
    TvSmDatabase read;
    ASSERT_TRUE(read.load(path())) << content();
    EXPECT_EQ(Outline::of(&read), Outline::of(db));
}

TEST_F(Reload, TextsOfWhatWentOrWasTakenOutOutliveTheFileThatTheyCameFrom)
{
    // Large enough that its memory goes back to the system with it.
    const std::string padding = "<!-- " + std::string(4'000'000, 'x') + " -->\n";
    replaceOutside(content() + padding);
    ASSERT_TRUE(db->load(path()));
    ASSERT_TRUE(db->lockDb(db) && set->removeSheet(one) && db->unlockDb(db, true));
    outside([&](TvSmSheetSet* theirs) { theirs->removeSubset(same(theirs->database(), ground)); });
    replaceOutside(content().substr(0, content().find("<!-- xxx")));
    ASSERT_TRUE(db->load(path()));
    EXPECT_EQ(one->getTitle(), u"One"); // taken out by us
    EXPECT_EQ(layout->getFileName(), u"a.dwg");
    EXPECT_EQ(view->getTitle(), u"North");
    EXPECT_EQ(ground->getName(), u"Ground"); // gone
    EXPECT_EQ(two->getTitle(), u"Two");
}

TEST_F(Reload, AScratchDatabaseThatReadANewerFormatTakesNoChange)
{
    editOutside("version=\"1.0\" nextHandle", "version=\"2.0\" nextHandle");
    TvSmDatabase scratch;
    ASSERT_TRUE(scratch.load(path()));
    EXPECT_FALSE(scratch.getSheetSet()->setName(u"x"));
    EXPECT_EQ(scratch.getSheetSet()->getName(), u"");
    EXPECT_FALSE(scratch.setFileName(folder.file("NEW.dst")) && scratch.save(0));
}

TEST_F(Reload, ADatabaseThatIsBuiltOrAScratchReadsItsFileWheneverItIsAsked)
{
    TvSmDatabase scratch;
    ASSERT_TRUE(scratch.setFileName(path()) && scratch.load(path()));
    EXPECT_EQ(Outline::of(&scratch), Outline::of(db));
    ASSERT_TRUE(scratch.getSheetSet()->setName(u"changed"));
    ASSERT_TRUE(scratch.load(path()));
    EXPECT_EQ(scratch.getSheetSet()->getName(), u"");
    TvSmSheetSetMgr second;
    TvSmDatabase* building = second.createDatabase(path(), TvString(), true);
    ASSERT_TRUE(building->load(path()));
    EXPECT_EQ(Outline::of(building), Outline::of(db));
}

TEST_F(Reload, IsBusyOnlyWhileItRuns)
{
    outside([&](TvSmSheetSet* theirs) { theirs->setName(u"School"); });
    bool wasBusy = false;
    ops.before = [&](int, const base::FaultyFileOps::Call&) { wasBusy |= db->isBusy(); };
    ASSERT_TRUE(db->load(path()));
    ops.before = nullptr;
    EXPECT_TRUE(wasBusy);
    EXPECT_FALSE(db->isBusy());
}

TEST_F(Reload, GoesOnForManyRoundsWithTheSameAddresses)
{
    const std::string outline = Outline::of(db, true);
    for (int round = 0; round < 20; ++round) {
        outside([&](TvSmSheetSet* theirs) {
            TvSmSheet* sheet = addSheet(theirs, u"n", TvString().format(u"round %d", round));
            theirs->insertComponent(sheet, same(theirs->database(), one));
        });
        ASSERT_TRUE(db->load(path()));
        EXPECT_EQ(childrenOf(set).size(), 3u);
        outside([&](TvSmSheetSet* theirs) {
            theirs->removeSheet(tvrxCast<TvSmSheet>(itemsOf(theirs->getSheetEnumerator()).front()));
        });
        ASSERT_TRUE(db->load(path()));
        EXPECT_EQ(Outline::of(db, true), outline);
    }
}
