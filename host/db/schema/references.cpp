#include "db/references.h"

#include "db/group_items.h"
#include "db/program_runner.h"

namespace db {

namespace {

ReferenceKind kindOf(std::uint8_t tableCode, std::uint64_t word)
{
    const auto stored = static_cast<std::uint8_t>(word >> 60);
    const std::uint8_t code = tableCode != kAnyHandleCode && tableCode != 0 ? tableCode : stored;
    switch (code) {
    case 2: return ReferenceKind::SoftOwner;
    case 3: return ReferenceKind::HardOwner;
    case 5: return ReferenceKind::HardPointer;
    default: return ReferenceKind::SoftPointer;
    }
}

/// Walks over a record as it would be written, and shows its references.
template <class Words, class Visit>
class ReferenceWalk
{
public:
    ReferenceWalk(Words* words, Visit visit) : m_words(words), m_visit(std::move(visit)) {}

    const std::uint64_t* words() const { return m_words; }
    bool ok() const { return m_ok; }
    void bytes(std::uint32_t, std::int64_t) {}
    void chain(std::uint32_t, std::int64_t) {}

    void field(const Op& op, std::uint32_t slot)
    {
        switch (op.code) {
        case OpCode::Handle: return show(slot, op.arity);
        case OpCode::DataHandle: return op.arity == 0 ? show(slot, 4) : void();
        case OpCode::RestOfHandles: return showAll(slot);
        case OpCode::ExtendedData: return showExtendedData(slot);
        case OpCode::XrecordItems: return showItems(slot);
        default: return;
        }
    }

    std::uint32_t enter(std::uint32_t slot, const LoopInfo&, std::int64_t count)
    {
        const Run run = arrayOf(words()[slot]);
        m_ok = run.count == count;
        return run.offset;
    }

private:
    void showAll(std::uint32_t slot)
    {
        const Run run = arrayOf(words()[slot]);
        for (std::uint32_t i = 0; i < run.count; ++i)
            show(run.offset + i, kAnyHandleCode);
    }

    void showExtendedData(std::uint32_t slot)
    {
        const Run groups = arrayOf(words()[slot]);
        for (std::uint32_t i = 0; i < groups.count; ++i) {
            const std::uint32_t group = groups.offset + i * ContentSlots::kExtendedSize;
            show(group + ContentSlots::kApplication, 5);
            showItems(group);
        }
    }

    void showItems(std::uint32_t content)
    {
        const Run items = arrayOf(words()[content + ContentSlots::kItems]);
        for (std::uint32_t i = 0; i < items.count; ++i) {
            const std::uint32_t item = items.offset + i * ItemSlots::kSize;
            const auto code = static_cast<int>(words()[item + ItemSlots::kCode]);
            if (const auto kind = itemReferenceKind(code))
                show(item + ItemSlots::kHandle, static_cast<std::uint8_t>(*kind));
        }
    }

    void show(std::uint32_t slot, std::uint8_t code)
    {
        Words& word = m_words[slot];
        if ((word & kTargetMask) != 0)
            m_visit(Reference{kindOf(code, word), word & kTargetMask}, word);
    }

    Words* m_words;
    Visit m_visit;
    bool m_ok = true;
};

template <class Words, class Visit>
bool walk(const Record& record, Words* words, Visit visit)
{
    if (!record.classDef())
        return true;
    ReferenceWalk<Words, Visit> io(words, std::move(visit));
    const Program& program = record.classDef()->program(record.version());
    return ProgramRunner<ReferenceWalk<Words, Visit>>(io, program).run();
}

} // namespace

bool forEachReference(const Record& record, const std::function<void(const Reference&)>& visit)
{
    return walk(record, record.words().data(),
                [&](const Reference& found, std::uint64_t) { visit(found); });
}

bool retargetReferences(Record& record,
                        const std::function<std::uint64_t(const Reference&)>& target)
{
    return walk(record, record.words().data(), [&](const Reference& found, std::uint64_t& word) {
        const std::uint64_t wanted = target(found) & kTargetMask;
        // Relative forms end here: they would depend on this object's own handle.
        if (wanted != found.target)
            word = static_cast<std::uint64_t>(found.kind) << 60 | wanted;
    });
}

} // namespace db
