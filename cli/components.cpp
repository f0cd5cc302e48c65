#include "cli/components.h"

#include <nlohmann/json.hpp>

#include <sm/tv_sm_sheet_view.h>
#include <sm/tv_sm_view_category.h>

namespace cli {

namespace {

struct KindRow {
    Kind kind;
    const char* name;
    Word word;
};

constexpr KindRow kKinds[] = {
    {Kind::SheetSet, "sheetSet", Word::KindSheetSet},
    {Kind::Subset, "subset", Word::KindSubset},
    {Kind::Sheet, "sheet", Word::KindSheet},
    {Kind::View, "view", Word::KindView},
    {Kind::Category, "category", Word::KindCategory},
    {Kind::Selection, "selection", Word::KindSelection},
    {Kind::Other, "other", Word::KindOther},
};

const KindRow& rowOf(Kind kind)
{
    for (const KindRow& row : kKinds)
        if (row.kind == kind)
            return row;
    return kKinds[0];
}

TvSmPersist& objectAt(const TvSmDatabase& db, const TvString& handle)
{
    TvSmPersist* object = db.findObject(handle);
    if (!object)
        refuse(ExitCode::NoInput, Word::NoSuchHandle, handle);
    return *object;
}

[[noreturn]] void refuseKind(Word word, const TvSmPersist& object)
{
    refuseUsage(word, handleOf(object), kindWords(kindOf(object)));
}

/// The neighbour that a place names; it must stand in @p parent.
TvSmComponent& neighbourAt(const TvSmSubset& parent, const TvSmComponent& child,
                           const TvString& handle)
{
    TvSmComponent& neighbour = childAt(*parent.database(), handle);
    if (&neighbour == &child)
        refuseUsage(Word::NeighbourIsItself, handle);
    if (neighbour.owner() != &parent)
        refuseUsage(Word::NeighbourElsewhere, handle, handleOf(parent));
    return neighbour;
}

bool isBelowOrSame(const TvSmPersist* object, const TvSmPersist* top)
{
    for (; object; object = object->owner())
        if (object == top)
            return true;
    return false;
}

} // namespace

Kind kindOf(const TvSmPersist& object)
{
    if (tvrxCast<TvSmSheetSet>(&object))
        return Kind::SheetSet;
    if (tvrxCast<TvSmSubset>(&object))
        return Kind::Subset;
    if (tvrxCast<TvSmSheet>(&object))
        return Kind::Sheet;
    if (tvrxCast<TvSmSheetView>(&object))
        return Kind::View;
    if (tvrxCast<TvSmViewCategory>(&object))
        return Kind::Category;
    return tvrxCast<TvSmSheetSelection>(&object) ? Kind::Selection : Kind::Other;
}

std::string_view kindName(Kind kind)
{
    return rowOf(kind).name;
}

TvString kindWords(Kind kind)
{
    return words(rowOf(kind).word);
}

TvString handleOf(const TvSmPersist& object)
{
    return object.objectId().getHandle();
}

TvString labelOf(const TvSmComponent& component)
{
    const auto* sheet = tvrxCast<TvSmSheet>(&component);
    if (!sheet)
        return component.getName();
    const TvString number = sheet->getNumber();
    const TvString title = sheet->getTitle();
    if (number.isEmpty() || title.isEmpty())
        return number + title;
    return number + u" - " + title;
}

Json jsonOf(const TvSmComponent& component)
{
    return {{"kind", kindName(kindOf(component))},
            {"handle", jsonText(handleOf(component))},
            {"label", jsonText(labelOf(component))}};
}

void requireHandle(const TvString& handle)
{
    if (sm::handleNumber(handle.view()) == 0)
        refuseUsage(Word::NotAHandle, handle);
}

void requireHandleIfGiven(const TvString& handle)
{
    if (!handle.isEmpty())
        requireHandle(handle);
}

void requireFits(const TvString& field, const TvString& text, int limit)
{
    if (text.length() > limit)
        refuseUsage(Word::TextTooLong, field, text.length(), limit);
}

TvSmComponent& componentAt(const TvSmDatabase& db, const TvString& handle)
{
    TvSmPersist& object = objectAt(db, handle);
    auto* component = tvrxCast<TvSmComponent>(&object);
    if (!component)
        refuseKind(Word::NotAComponent, object);
    return *component;
}

TvSmSubset& subsetAt(const TvSmDatabase& db, const TvString& handle)
{
    TvSmPersist& object = objectAt(db, handle);
    auto* subset = tvrxCast<TvSmSubset>(&object);
    if (!subset)
        refuseKind(Word::NotASubset, object);
    return *subset;
}

TvSmComponent& childAt(const TvSmDatabase& db, const TvString& handle)
{
    TvSmPersist& object = objectAt(db, handle);
    const Kind kind = kindOf(object);
    if (kind != Kind::Sheet && kind != Kind::Subset)
        refuseKind(Word::NotAChild, object);
    return static_cast<TvSmComponent&>(object);
}

TvSmSubset& parentOf(const TvSmComponent& child)
{
    return *tvrxCast<TvSmSubset>(child.owner());
}

void requirePlace(const Place& place)
{
    requireHandleIfGiven(place.before);
    requireHandleIfGiven(place.after);
    if (!place.before.isEmpty() && !place.after.isEmpty())
        refuseUsage(Word::OptionsExclude, TvString(u"--before"), TvString(u"--after"));
}

void putAt(TvSmSubset& parent, TvSmComponent& child, const Place& place)
{
    if (isBelowOrSame(&parent, &child))
        refuseUsage(Word::MoveIntoItself, handleOf(child), handleOf(parent));
    bool done = false;
    if (!place.after.isEmpty())
        done = parent.insertComponentAfter(&child, &neighbourAt(parent, child, place.after));
    else if (!place.before.isEmpty())
        done = parent.insertComponent(&child, &neighbourAt(parent, child, place.before));
    else
        done = parent.insertComponent(&child, nullptr);
    // All else that it refuses was looked at before: what is left is the depth of the tree.
    if (!done)
        refuseUsage(Word::TreeTooDeep, handleOf(child), int(TvSmSubset::kMaxDepth));
    child.setOwner(&parent);
}

bool splitAssignment(const TvString& assignment, TvString& name, TvString& value)
{
    const int equals = assignment.find(u'=');
    if (equals < 1)
        return false;
    name = assignment.left(equals);
    value = assignment.substr(equals + 1);
    return true;
}

Counts countBelow(const TvSmSubset& subset)
{
    Counts counts;
    for (TvSmComponent* child : sm::each(subset.getSheetEnumerator())) {
        const auto* below = tvrxCast<TvSmSubset>(child);
        if (!below) {
            ++counts.sheets;
            continue;
        }
        const Counts inner = countBelow(*below);
        counts.subsets += 1 + inner.subsets;
        counts.sheets += inner.sheets;
    }
    return counts;
}

} // namespace cli
