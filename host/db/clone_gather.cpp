// What is to be copied: from what was asked for along owned and indispensable objects.

#include "clone.h"

#include <base/tv_db_handle.h>

#include "block_names.h"
#include "viewport_lists.h"

#include <db/entity_chain.h>
#include <db/references.h>
#include <db/tv_db_symbol_table.h>

namespace db {

namespace {

constexpr int kLayerCode = 1003;
constexpr int kDeepestOwner = 1000; // owners above each other, as damaged drawings may claim

bool isControl(const Record& record)
{
    return record.classDef()->kind() == ClassKind::Control;
}

/// Blocks that show but the entity that refers to them, so that each copy needs its own.
bool isPictureOf(const Record& record)
{
    const std::u16string_view name = record.text("name");
    return record.classDef()->name() == "BLOCK_HEADER" &&
           (name.starts_with(u"*D") || name.starts_with(u"*T"));
}

} // namespace

Clone::Clone(TvDbDatabase& from, TvDbDatabase& to, std::uint64_t space, std::uint64_t firstHandle)
    : m_from(from), m_to(to), m_space(space), m_firstHandle(firstHandle), m_nextHandle(firstHandle),
      m_isSame(&from == &to)
{
}

void Clone::refuse(TvStatusCode code, const ObjectSlot& slot)
{
    if (m_status != TvStatus::Ok)
        return; // the first one is told
    m_status = code;
    m_failure = {base::Failure::Unsupported,
                 base::Reason::DwgObjectsNotEditable,
                 {base::hexText(slot.handle)}};
}

Record* Clone::load(ObjectSlot& slot)
{
    if (m_from.impl().load(slot) != TvStatus::Ok) {
        refuse(TvStatus::NotUnderstood, slot);
        return nullptr;
    }
    return &ObjectAccess::record(*slot.object);
}

bool Clone::isCopyable(ObjectSlot& slot, const Record& record)
{
    if (slot.object->isRaw())
        return false;
    // What an object keeps outside of its record does not come along. Of layouts, views and blocks
    // that is only their picture.
    const std::string_view name = record.classDef()->name();
    if (record.flag("has_binary") && name != "LAYOUT" && name != "VIEW" && name != "BLOCK_HEADER")
        return false;
    // Where a chain of entities breaks, nobody knows what was behind the break.
    return record.version() != Version::Ac1015 || ownedListOf(record.fields()) == FieldId::None ||
           m_from.impl().isEditable(slot);
}

ObjectSlot* Clone::ownerOf(ObjectSlot& slot)
{
    if (!load(slot))
        return nullptr;
    ObjectSlot* owner = slot.object->ownerId().slot();
    return isReal(owner) && load(*owner) ? owner : nullptr;
}

bool Clone::isLoose(const ObjectSlot& slot) const
{
    // Entities of layouts, and those of the block whose content was asked for.
    const ObjectSlot* owner = slot.object->ownerId().slot();
    if (!canStandInBlock(slot.object->record().classDef()) || !owner || !owner->object)
        return false;
    const auto known = m_map.find(owner->handle);
    const auto* block = tvrxCast<TvDbBlockTableRecord>(owner->object.get());
    return block && (block->isLayout() || (known != m_map.end() && known->second == m_space));
}

bool Clone::isInNamedTree(const ObjectSlot& slot)
{
    const ObjectSlot* root = m_from.namedObjectsDictionaryId().slot();
    ObjectSlot* owner = slot.object->ownerId().slot();
    for (int depth = 0; isReal(owner) && depth < kDeepestOwner; ++depth) {
        if (owner == root)
            return true;
        const Record* record = load(*owner);
        if (!record || !record->has("keys"))
            return false;
        owner = owner->object->ownerId().slot();
    }
    return false;
}

Clone::Item& Clone::addItem(ObjectSlot& source, std::uint64_t owner)
{
    m_items.push_back({&source, m_nextHandle++, owner, false, false, false, {}});
    m_map[source.handle] = m_items.back().target;
    return m_items.back();
}

void Clone::add(TvDbObjectId entity)
{
    ObjectSlot& slot = *entity.slot();
    if (m_map.count(slot.handle) || !load(slot))
        return;
    Item& item = addItem(slot, m_space);
    item.isPrimary = true;
    m_standing.push_back(item.target);
}

void Clone::addExtensionOf(TvDbObjectId block)
{
    if (!block.isValid() || !load(*block.slot()))
        return;
    const TvDbObjectId dictionary = block.slot()->object->extensionDictionary();
    if (dictionary && !m_map.count(dictionary.handle().value()))
        addItem(*dictionary.slot(), m_space);
}

TvStatusCode Clone::gather()
{
    for (std::size_t i = 0; i < m_items.size() && m_status == TvStatus::Ok; ++i)
        visit(m_items[i]);
    return m_status;
}

void Clone::visit(Item& item)
{
    const Record* record = load(*item.source);
    if (!record)
        return;
    if (!isCopyable(*item.source, *record))
        return refuse(TvStatus::NotUnderstood, *item.source);
    if (!m_hasSheet && isViewport(TvDbObjectId(item.source)))
        return refuse(TvStatus::NotApplicable, *item.source); // it shows a sheet, and there is none
    const std::uint64_t layout =
        record->classDef()->name() == "BLOCK_HEADER" ? record->handle("layout") : 0;
    forEachReference(*record, [&](const Reference& reference) {
        const bool isOwned = reference.kind == ReferenceKind::SoftOwner ||
                             reference.kind == ReferenceKind::HardOwner;
        if (isOwned && !item.isShell)
            own(item, reference.target);
        else if (reference.kind == ReferenceKind::HardPointer && reference.target != layout)
            follow(reference.target);
    });
    // In AC1015 the list is none of what is written, but what is owned.
    const ArrayView list = record->array(ownedListOf(record->fields()));
    for (std::uint32_t at = 0; at < list.size(); ++at)
        own(item, list.handle(at));
    followLayers(*record);
}

/// Extended data names layers, and a name must lead somewhere.
void Clone::followLayers(const Record& record)
{
    const ArrayView groups = record.array("eed");
    for (std::uint32_t i = 0; i < groups.size(); ++i) {
        const ArrayView items = groups[i].array("items");
        for (std::uint32_t at = 0; at < items.size(); ++at)
            if (items[at].integer("code") == kLayerCode)
                follow(items[at].handle("handle"));
    }
}

void Clone::own(const Item& parent, std::uint64_t handle)
{
    ObjectSlot* slot = m_from.impl().find(handle);
    if (!isReal(slot) || m_map.count(handle) || !load(*slot))
        return;
    // A reference alone makes no owner: damaged drawings claim each other's objects.
    const ObjectSlot* owner = ownerOf(*slot);
    if (!owner || owner == parent.source)
        addItem(*slot, parent.target);
}

void Clone::follow(std::uint64_t handle)
{
    ObjectSlot* top = m_from.impl().find(handle);
    for (int depth = 0; isReal(top) && depth < kDeepestOwner; ++depth) {
        // What is owned by something that is copied is found there.
        if (m_map.count(top->handle) || m_status != TvStatus::Ok)
            return;
        const Record* record = load(*top);
        if (!record)
            return;
        if (m_isSame && !isPictureOf(*record))
            return;
        ObjectSlot* owner = ownerOf(*top);
        if (isControl(*record) || top == m_from.namedObjectsDictionaryId().slot())
            return;
        if (record->classDef()->kind() == ClassKind::Table)
            return placeRecord(*top);
        if (isInNamedTree(*top))
            return placeEntry(*top);
        if (isLoose(*top)) {
            m_standing.push_back(addItem(*top, m_space).target);
            return;
        }
        if (!owner) {
            addItem(*top, 0);
            return;
        }
        top = owner;
    }
}

TvStatusCode Clone::prepare()
{
    const TvStatusCode status = gather();
    return status != TvStatus::Ok ? status : build();
}

} // namespace db
