#include "db/drawing_inventory.h"

#include "database_extras.h"

namespace db {

namespace {

/// Of an object that is in memory only.
ObjectKind kindOf(const ObjectSlot& slot)
{
    const ClassDef* classDef = slot.object->record().classDef();
    return {classDef, classDef->name(), classDef->typeNumber(), classDef->isEntity()};
}

class Counter
{
public:
    explicit Counter(DatabaseImpl& database) : m_database(database) {}

    /// The file tells the kinds of its objects in one walk.
    void countAll()
    {
        if (m_database.file())
            m_database.file()->forEachKind([this](std::uint64_t handle, const ObjectKind* kind) {
                const ObjectSlot* slot = m_database.find(handle);
                if (slot && slot->isStored && !slot->isErased)
                    count(*slot, kind ? *kind : ObjectKind());
            });
        m_database.forEach([this](const ObjectSlot& slot) {
            if (!slot.isStored)
                count(slot, kindOf(slot));
        });
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
    void count(const ObjectSlot& slot, const ObjectKind& kind)
    {
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
    counter.countAll();
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

std::size_t picturesLeftOut(const TvDbDatabase& database, FileFormat format, int version)
{
    const DatabaseImpl& impl = database.impl();
    const auto wanted = versionOfCode(database, version);
    const bool keepsAll = format == FileFormat::Dwg && wanted && *wanted >= Version::Ac1027;
    if (!impl.file() || keepsAll)
        return 0;
    std::size_t count = 0;
    impl.forEach([&](const ObjectSlot& slot) {
        count += slot.isStored && impl.file()->thumbnail(slot.handle).kind != Preview::Kind::None;
    });
    return count;
}

FileFormat fileFormatOf(const TvDbDatabase& database)
{
    const DrawingFile* file = database.impl().file();
    return file ? file->format() : FileFormat::Dwg;
}

} // namespace db
