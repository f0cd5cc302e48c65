#include <map>

#include <db/tv_db_object.h>
#include <db/tv_db_symbol_table.h>

#include "item_chain.h"

namespace {

constexpr int kApplicationCode = 1001, kTextCode = 1000, kLayerCode = 1003;
constexpr std::size_t kLongestText = 0xFF;   // of one item
constexpr std::size_t kLongestList = 0x7FFF; // bytes of one application's data

/// The name of a table's record; empty when there is none.
TvString nameOf(TvDbObjectId id)
{
    const TvDbObjectPointer<TvDbSymbolTableRecord> record(id, TvDb::kForNotify, true);
    return record ? record->getName() : TvString();
}

TvDbObjectId recordNamed(TvDbDatabase& database, TvDb::SymbolTable table, const TvString& name)
{
    const TvDbObjectPointer<TvDbSymbolTable> records(database.symbolTableId(table),
                                                     TvDb::kForNotify);
    TvDbObjectId id;
    if (records)
        records->getIdAt(name, id);
    return id;
}

/// The application's record, made when it is missing; null when it cannot be made.
TvDbObjectId registeredApplication(TvDbDatabase& database, const TvString& name)
{
    if (const TvDbObjectId known = recordNamed(database, TvDb::SymbolTable::RegApp, name))
        return known;
    TvDbObjectPointer<TvDbRegAppTable> table(database.symbolTableId(TvDb::SymbolTable::RegApp),
                                             TvDb::kForWrite);
    auto record = std::make_unique<TvDbRegAppTableRecord>();
    TvDbObjectId id;
    if (!table || record->setName(name) != TvStatus::Ok ||
        table->add(id, record.get()) != TvStatus::Ok)
        return {};
    record.release()->close();
    return id;
}

bool appendList(db::ChainBuilder& chain, const db::RecordView& group, const TvDbObject& object)
{
    if (!group.bytes("data").empty())
        return false; // does not follow the rules: kept as it is
    tvutSetText(chain.add(kApplicationCode), nameOf(object.idOf(group.handle("app"))));
    const db::ArrayView items = group.array("items");
    for (std::uint32_t i = 0; i < items.size(); ++i) {
        const db::RecordView item = items[i];
        const auto code = static_cast<int>(item.integer("code"));
        const std::optional<db::ItemKind> kind = db::extendedItemKind(code);
        if (!kind)
            continue;
        resbuf& out = chain.add(code);
        if (code == kLayerCode)
            tvutSetText(out, nameOf(object.idOf(item.handle("handle"))));
        else
            db::itemToChain(item, *kind, out);
    }
    return true;
}

/// What setXData() is to do for one application.
struct List {
    TvString application;
    std::vector<const resbuf*> items;
};

std::size_t sizeOf(const resbuf& item, db::ItemKind kind)
{
    switch (kind) {
    case db::ItemKind::Text: return 4 + 2 * std::u16string_view(item.resval.rstring).size();
    case db::ItemKind::Point: return 25;
    case db::ItemKind::Binary: return 2 + static_cast<std::size_t>(item.resval.rbinary.clen);
    default: return 9;
    }
}

TvStatusCode addItem(List& list, std::size_t& size, const resbuf& item, const TvDbObject& object)
{
    const std::optional<db::ItemKind> kind = db::extendedItemKind(item.restype);
    if (!kind)
        return TvStatus::InvalidInput;
    // A layer is told by its name here.
    const bool isText = item.restype == kTextCode || item.restype == kLayerCode;
    if (isText ? !item.resval.rstring ||
                     !db::fitsItemText(item.resval.rstring, object.record().version(), kLongestText)
               : !db::canBeItem(item, *kind, object.record().version()))
        return TvStatus::InvalidInput;
    if (item.restype == kLayerCode &&
        !recordNamed(*object.database(), TvDb::SymbolTable::Layer, TvString(item.resval.rstring)))
        return TvStatus::KeyNotFound;
    size += sizeOf(item, *kind);
    list.items.push_back(&item);
    return size > kLongestList ? TvStatus::InvalidInput : TvStatus::Ok;
}

TvStatusCode parseLists(const resbuf* items, const TvDbObject& object, std::vector<List>& lists)
{
    std::size_t size = 0;
    for (; items; items = items->rbnext) {
        if (items->restype == kApplicationCode) {
            const TvString name(items->resval.rstring);
            if (name.isEmpty())
                return TvStatus::InvalidName;
            for (const List& list : lists)
                if (list.application.compareNoCase(name) == 0)
                    return TvStatus::InvalidInput; // which of the two would count?
            lists.push_back({name, {}});
            size = 0;
        } else if (lists.empty()) {
            return TvStatus::InvalidInput;
        } else if (const TvStatusCode status = addItem(lists.back(), size, *items, object)) {
            return status;
        }
    }
    return TvStatus::Ok;
}

void fillGroup(db::RecordEditor group, const List& list, std::uint64_t application,
               TvDbDatabase& database)
{
    group.setHandle("app", application);
    db::ArrayEditor items = group.array("items");
    items.resize(static_cast<std::uint32_t>(list.items.size()));
    for (std::uint32_t i = 0; i < items.size(); ++i) {
        const resbuf& in = *list.items[i];
        db::RecordEditor item = items[i];
        if (in.restype == kLayerCode) {
            const TvDbObjectId layer =
                recordNamed(database, TvDb::SymbolTable::Layer, TvString(in.resval.rstring));
            item.setInteger("code", kLayerCode);
            item.setHandle("handle", layer.handle().value());
        } else {
            db::itemFromChain(in, *db::extendedItemKind(in.restype), item);
        }
    }
}

} // namespace

resbuf* TvDbObject::xData(const TvString& application) const
{
    db::ChainBuilder chain;
    const db::ArrayView groups = fields().array("eed");
    for (std::uint32_t i = 0; i < groups.size(); ++i) {
        const db::RecordView group = groups[i];
        if (application.isEmpty() ||
            nameOf(idOf(group.handle("app"))).compareNoCase(application) == 0)
            appendList(chain, group, *this);
    }
    return chain.take();
}

TvStatusCode TvDbObject::setXData(const resbuf* items)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    if (!database())
        return TvStatus::NotInDatabase; // applications and layers are the database's
    if (isRaw())
        return TvStatus::NotUnderstood;
    std::vector<List> lists;
    if (const TvStatusCode status = parseLists(items, *this, lists))
        return status;
    std::vector<std::uint64_t> applications;
    for (const List& list : lists) {
        const TvDbObjectId id = registeredApplication(*database(), list.application);
        if (!id)
            return TvStatus::InvalidName;
        applications.push_back(id.handle().value());
    }
    for (std::size_t i = 0; i < lists.size(); ++i) {
        db::ArrayEditor groups = edit().array("eed");
        std::uint32_t at = 0;
        while (at < groups.size() && groups[at].handle("app") != applications[i])
            ++at;
        if (at < groups.size())
            groups.erase(at);
        if (!lists[i].items.empty() && groups.insert(at))
            fillGroup(groups[at], lists[i], applications[i], *database());
    }
    return TvStatus::Ok;
}
