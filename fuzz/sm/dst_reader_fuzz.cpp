#include <cstdlib>

#include <sm/environment.h>
#include <sm/tv_sm_sheet_set_mgr.h>

#include "memory_file_ops.h"

// A .dst file from outside: opened, walked, saved, and what was saved opened again; all of that by
// what everybody calls. Input: the file; behind a NUL, which no file holds, what takes its place
// while it is open.

namespace {

constexpr char kPath[] = "/m/PLAN.dst";

void check(bool holds)
{
    if (!holds)
        std::abort();
}

/// Every object answers for itself, and is found by its handle.
void walk(TvSmDatabase* db)
{
    std::size_t objects = 0;
    sm::forEachObject(db, [&](TvSmPersist& object) {
        ++objects;
        check(db->findObject(object.objectId().getHandle()) == &object);
        if (const auto* component = tvrxCast<TvSmComponent>(&object)) {
            component->getName();
            sm::propertiesOf(component->getCustomProperties());
        }
        if (const auto* value = tvrxCast<TvSmCustomPropertyValue>(&object)) {
            TvVariant out;
            value->getValue(out);
        }
        if (const auto* category = tvrxCast<TvSmViewCategory>(&object))
            for (const TvSmSheetView* view : sm::each(category->getSheetViewEnumerator()))
                check(view != nullptr);
        if (const auto* selection = tvrxCast<TvSmSheetSelection>(&object))
            for (const TvSmComponent* member : sm::each(selection->getEnumerator()))
                check(member != nullptr);
    });
    check(objects >= 2);
}

/// What we save, we read; and read it is saved the same.
void saveAndReadAgain(MemoryFileOps& ops, TvSmDatabase* db)
{
    if (sm::isReadOnlyVersion(db))
        return;
    check(db->save(0));
    const auto once = ops.content(kPath);
    TvSmSheetSetMgr second;
    TvSmDatabase* again = second.openDatabase(TvString(kPath), true, 0);
    check(again != nullptr);
    walk(again);
    check(again->save(0));
    check(ops.content(kPath) == once);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static MemoryFileOps ops;
    static base::ManualClock clock;
    sm::environment().files = &ops;
    sm::environment().clock = &clock;
    ops.clear();
    const auto input = std::as_bytes(std::span(data, size));
    const void* nul = size ? std::memchr(data, 0, size) : nullptr;
    const std::size_t split =
        nul ? static_cast<std::size_t>(static_cast<const std::uint8_t*>(nul) - data) : size;
    ops.put(kPath, input.first(split));

    TvSmSheetSetMgr manager;
    TvSmDatabase* db = manager.openDatabase(TvString(kPath), true, 0);
    if (!db)
        return 0;
    walk(db);
    if (split < size) {
        ops.put(kPath, input.subspan(split + 1));
        if (!db->load(TvString()))
            return 0;
        walk(db);
    }
    saveAndReadAgain(ops, db);
    return 0;
}
