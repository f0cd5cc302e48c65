#include "db/drawing_inventory.h"

#include "database_impl.h"

namespace db {

namespace {

/// Of an object that is in memory only, or was opened: by its record.
ObjectKind kindOf(const DatabaseImpl& database, const ObjectSlot& slot)
{
    if (slot.isStored) {
        const base::Result<ObjectKind> kind = database.file()->kind(slot.handle);
        return kind ? *kind : ObjectKind();
    }
    const ClassDef* classDef = slot.object->record().classDef();
    return {classDef, classDef->name(), classDef->typeNumber(), classDef->isEntity()};
}

class Counter
{
public:
    explicit Counter(DatabaseImpl& database) : m_database(database) {}

    void count(const ObjectSlot& slot)
    {
        const ObjectKind kind = kindOf(m_database, slot);
        DrawingInventory::Class& counted = m_classes[std::string(kind.className)];
        counted.isEntity = kind.isEntity;
        ++counted.objects;
        ++m_counts.objects;
        m_counts.highestHandle = std::max(m_counts.highestHandle, slot.handle);
        if (isUnderstood(slot))
            return;
        ++counted.raw;
        ++m_counts.raw;
    }

    DrawingInventory take()
    {
        for (auto& [name, counted] : m_classes) {
            counted.name = name;
            m_counts.classes.push_back(std::move(counted));
        }
        return std::move(m_counts);
    }

private:
    bool isUnderstood(const ObjectSlot& slot)
    {
        if (slot.object && !slot.object->isRaw())
            return true;
        if (!slot.isStored)
            return false;
        const base::Status status = m_database.file()->read(slot.handle, m_scratch);
        m_counts.damaged += !status && status.failure() != base::Failure::Unsupported;
        return static_cast<bool>(status);
    }

    DatabaseImpl& m_database;
    DrawingInventory m_counts;
    std::map<std::string, DrawingInventory::Class> m_classes;
    Record m_scratch;
};

} // namespace

DrawingInventory inventoryOf(TvDbDatabase& database)
{
    DatabaseImpl& impl = database.impl();
    Counter counter(impl);
    impl.forEach([&](ObjectSlot& slot) { counter.count(slot); });
    DrawingInventory counts = counter.take();
    counts.version = impl.version();
    counts.seed = impl.header().handle("HANDSEED");
    counts.format = fileFormatOf(database);
    if (impl.file())
        counts.named = impl.file()->classes();
    if (impl.newPreview())
        counts.preview = impl.newPreview()->kind;
    else if (impl.file())
        counts.preview = impl.file()->preview().kind;
    return counts;
}

FileFormat fileFormatOf(const TvDbDatabase& database)
{
    const DrawingFile* file = database.impl().file();
    return file ? file->format() : FileFormat::Dwg;
}

} // namespace db
