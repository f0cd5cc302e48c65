#include "random_changes.h"

namespace {

using Changes = std::vector<RandomChange>;

struct FilledScene : SheetSetScene {
    FilledScene()
    {
        EveryFeature::putInto(db);
        RC_ASSERT(db->save(0));
    }
    TvSmDatabase* db = create();
};

} // namespace

RC_GTEST_PROP(RollbackLaws, AnyChangesRolledBackLeaveAddressesStructureAndBytes,
              (const Changes& changes))
{
    FilledScene scene;
    const std::string outline = Outline::of(scene.db, true);
    const std::string bytes = scene.content();
    RC_ASSERT(scene.db->lockDb(scene.db));
    RandomChanges(scene.db).make(changes);
    RC_ASSERT(scene.db->unlockDb(scene.db, false));
    RC_ASSERT(Outline::of(scene.db, true) == outline);
    RC_ASSERT(scene.content() == bytes);
    RC_ASSERT(scene.db->save(0));
    RC_ASSERT(scene.content() == bytes);
}

RC_GTEST_PROP(RollbackLaws, AnyChangesCommittedAreReadBackAsTheyAre, (const Changes& changes))
{
    FilledScene scene;
    RC_ASSERT(scene.db->lockDb(scene.db));
    RandomChanges(scene.db).make(changes);
    RC_ASSERT(scene.db->unlockDb(scene.db, true));
    TvSmSheetSetMgr second;
    TvSmDatabase* read = second.openDatabase(scene.path(), true, 0);
    RC_ASSERT(read != nullptr);
    RC_ASSERT(Outline::of(read) == Outline::of(scene.db));
    const std::string bytes = scene.content();
    RC_ASSERT(read->save(0));
    RC_ASSERT(scene.content() == bytes);
}

RC_GTEST_PROP(RollbackLaws, SavingBetweenChangesWritesTheCommittedStateAndDisturbsNothing,
              (const Changes& first, const Changes& second, bool isCommitted))
{
    FilledScene scene;
    const std::string outline = Outline::of(scene.db, true);
    const std::string bytes = scene.content();
    RC_ASSERT(scene.db->lockDb(scene.db));
    RandomChanges changes(scene.db);
    changes.make(first);
    const std::string changed = Outline::of(scene.db, true);
    RC_ASSERT(scene.db->save(0));
    RC_ASSERT(scene.content() == bytes);
    RC_ASSERT(Outline::of(scene.db, true) == changed);
    changes.make(second);
    RC_ASSERT(scene.db->unlockDb(scene.db, isCommitted));
    if (!isCommitted) {
        RC_ASSERT(Outline::of(scene.db, true) == outline);
    }
    TvSmDatabase read;
    RC_ASSERT(read.load(scene.path()));
    RC_ASSERT(Outline::of(&read) == Outline::of(scene.db));
}

RC_GTEST_PROP(RollbackLaws, ChangesInTurnWithSomebodyElseNeverDisagree, ())
{
    const auto turns =
        *rc::gen::scale(0.12, rc::gen::arbitrary<std::vector<std::pair<Changes, int>>>());
    FilledScene scene;
    TvSmSheetSetMgr second;
    TvSmDatabase* both[] = {scene.db, second.openDatabase(scene.path(), true, 0)};
    RC_ASSERT(both[1] != nullptr);
    RandomChanges changes[] = {RandomChanges(both[0]), RandomChanges(both[1])};
    for (const auto& [series, how] : turns) {
        TvSmDatabase* db = both[how & 1];
        RC_ASSERT(db->lockDb(db));
        changes[how & 1].make(series);
        const bool isCommitted = how & 2;
        RC_ASSERT(db->unlockDb(db, isCommitted));
        TvSmDatabase* other = both[1 - (how & 1)];
        RC_ASSERT(other->load(TvString()));
        RC_ASSERT(Outline::of(other) == Outline::of(db));
        TvSmDatabase read;
        RC_ASSERT(read.load(scene.path()));
        RC_ASSERT(Outline::of(&read) == Outline::of(db));
    }
}
