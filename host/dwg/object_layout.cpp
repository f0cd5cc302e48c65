// What holds of a layout:
//
// 1. No two objects share a byte, and none lies below the first four bytes of the section.
// 2. In place: the bytes of an unchanged object are not written.
// 3. Room is reused only where no object lies, by the sizes that the objects themselves tell.

#include "object_layout.h"

#include <algorithm>
#include <limits>
#include <map>

#include "aux_header.h"

namespace dwg {

namespace {

constexpr std::uint32_t kSavesBetweenLooks = 8;

struct Room {
    std::uint64_t begin = 0, end = 0;
    std::uint64_t size() const { return end - begin; }
};

void sortByHandle(std::vector<ObjectLocation>& map)
{
    const auto byHandle = [](const auto& a, const auto& b) { return a.handle < b.handle; };
    if (!std::is_sorted(map.begin(), map.end(), byHandle)) // mostly it is
        std::sort(map.begin(), map.end(), byHandle);
}

class InPlace
{
public:
    explicit InPlace(const SavePlan& plan) : m_plan(plan), m_container(plan.source.container()) {}

    ObjectLayout run()
    {
        sortSlots();
        for (std::size_t i = 0; i < m_slots.size(); ++i)
            takeSlot(i);
        for (const auto& [handle, record] : m_plan.changes.objects)
            if (!m_plan.source.find(handle))
                m_homeless.push_back({handle, &record});
        for (const auto& [handle, record] : m_homeless)
            placeInRoom(handle, *record);
        cutTail();
        sortByHandle(m_layout.map);
        return std::move(m_layout);
    }

private:
    // A slot reaches from one object to the next: what of it the object does not need is unused.
    void sortSlots()
    {
        m_slots = m_plan.source.objects();
        const auto byOffset = [](const auto& a, const auto& b) { return a.offset < b.offset; };
        if (!std::is_sorted(m_slots.begin(), m_slots.end(), byOffset)) // mostly they are
            std::sort(m_slots.begin(), m_slots.end(), byOffset);
        m_layout.size = m_container.objectAreaSize();
        m_layout.map.reserve(m_slots.size() + m_plan.changes.objects.size());
    }

    std::uint64_t slotEnd(std::size_t i) const
    {
        return i + 1 < m_slots.size() ? std::min(m_slots[i + 1].offset, m_layout.size)
                                      : m_layout.size;
    }

    std::uint64_t recordEnd(std::size_t i) const
    {
        const auto bytes = recordBytes(m_container, m_plan.source.version(), m_slots[i]);
        return bytes ? m_slots[i].offset + bytes->size() : m_slots[i].offset;
    }

    // The room that object @p i leaves; empty where others reach into it, as in a damaged file.
    Room roomOf(std::size_t i) const
    {
        const Room room{m_slots[i].offset, slotEnd(i)};
        const bool isOurs = room.begin >= m_container.objectAreaBegin() && room.begin < room.end &&
                            recordEnd(i) <= room.end && (i == 0 || recordEnd(i - 1) <= room.begin);
        return isOurs ? room : Room{};
    }

    void takeSlot(std::size_t i)
    {
        const std::uint64_t handle = m_slots[i].handle;
        const auto changed = m_plan.changes.objects.find(handle);
        const bool isErased = m_plan.changes.erased.count(handle) != 0;
        if (!isErased && changed == m_plan.changes.objects.end()) {
            m_layout.map.push_back(m_slots[i]);
            return;
        }
        Room room = roomOf(i);
        if (room.size() != 0)
            m_layout.writes.push_back({room.begin, recordEnd(i) - room.begin, nullptr});
        if (!isErased) {
            const auto& record = changed->second;
            if (record.size() <= room.size()) {
                write(handle, room.begin, record);
                room.begin += record.size();
            } else {
                m_homeless.push_back({handle, &record});
            }
        }
        if (room.size() != 0)
            m_rooms.emplace(room.size(), room);
    }

    void write(std::uint64_t handle, std::uint64_t offset, const std::vector<std::uint8_t>& record)
    {
        m_layout.map.push_back({handle, offset});
        m_layout.writes.push_back({offset, record.size(), record.data()});
    }

    void placeInRoom(std::uint64_t handle, const std::vector<std::uint8_t>& record)
    {
        const auto found = m_rooms.lower_bound(record.size()); // the tightest one
        if (found != m_rooms.end()) {
            Room room = found->second;
            m_rooms.erase(found);
            write(handle, room.begin, record);
            room.begin += record.size();
            m_rooms.emplace(room.size(), room);
            return;
        }
        write(handle, m_layout.size, record);
        m_layout.size += record.size();
    }

    // Room at the very end is no part of the section any more.
    void cutTail()
    {
        std::vector<Room> rooms;
        for (const auto& [size, room] : m_rooms)
            rooms.push_back(room);
        std::sort(rooms.begin(), rooms.end(),
                  [](const Room& a, const Room& b) { return a.end > b.end; });
        for (const Room& room : rooms)
            if (room.size() != 0 && room.end == m_layout.size)
                m_layout.size = room.begin;
        for (ObjectLayout::Write& write : m_layout.writes)
            if (!write.bytes)
                write.size = write.offset < m_layout.size
                                 ? std::min(write.size, m_layout.size - write.offset)
                                 : 0;
    }

    const SavePlan& m_plan;
    Container& m_container;
    std::vector<ObjectLocation> m_slots;        // ascending offsets
    std::multimap<std::uint64_t, Room> m_rooms; // by their sizes
    std::vector<std::pair<std::uint64_t, const std::vector<std::uint8_t>*>> m_homeless;
    ObjectLayout m_layout;
};

} // namespace

base::Result<ObjectLayout> layoutInPlace(const SavePlan& plan)
{
    return InPlace(plan).run();
}

base::Result<ObjectLayout> layoutCompact(const SavePlan& plan)
{
    Container& container = plan.source.container();
    ObjectLayout layout;
    layout.size = container.objectAreaBegin();
    for (const PlannedObject& object : objectsInFileOrder(plan)) {
        Bytes bytes;
        if (object.record) {
            bytes = *object.record;
        } else {
            const auto old =
                recordBytes(container, plan.source.version(), {object.handle, object.oldOffset});
            if (!old)
                return old.status();
            bytes = *old;
        }
        layout.map.push_back({object.handle, layout.size});
        layout.writes.push_back({layout.size, bytes.size(), bytes.data()});
        layout.size += bytes.size();
    }
    sortByHandle(layout.map);
    return layout;
}

bool shouldCompact(const SavePlan& plan)
{
    const auto aux = plan.source.section(section::kAuxHeader);
    const auto saves = aux ? saveCountOf(*aux, plan.source.header()) : std::nullopt;
    if (saves && *saves % kSavesBetweenLooks != 0)
        return false;
    Container& container = plan.source.container();
    std::uint64_t used = container.objectAreaBegin();
    for (const ObjectLocation& location : plan.source.objects()) {
        std::uint64_t size = plan.source.front(location).size;
        if (size == 0) {
            const auto bytes = recordBytes(container, plan.source.version(), location);
            if (!bytes)
                return false; // what cannot be read cannot be moved
            size = bytes->size();
        }
        used += size;
    }
    const std::uint64_t size = container.objectAreaSize();
    return size > used && size - used > used / 8;
}

} // namespace dwg
