#include <algorithm>

#include "db/record_editor.h"

namespace db {

namespace {

/// Copies what a struct refers to behind the words of a new buffer, and points there.
class Mover
{
public:
    Mover(const WordBuffer& from, WordBuffer& to) : m_from(from), m_to(to) {}

    void moveStruct(const StructDef& def, std::uint32_t base)
    {
        for (const FieldDef& field : def.fields) {
            const std::uint32_t slot = base + field.slot;
            switch (field.storage) {
            case Storage::Integer:
            case Storage::Real:
            case Storage::Handle: break;
            case Storage::Struct: moveStruct(*field.structure, slot); break;
            case Storage::Array: moveArray(field, slot); break;
            default: moveBlock(field.storage, slot); break;
            }
        }
    }

private:
    void moveArray(const FieldDef& field, std::uint32_t slot)
    {
        const Run run = arrayOf(m_to.data()[slot]);
        const std::uint32_t stride = field.stride();
        const std::uint32_t at = copied(run.offset, run.count * stride);
        m_to.data()[slot] = wordOf({at, run.count});
        for (std::uint32_t i = 0; i < run.count; ++i) {
            if (field.element == Storage::Struct)
                moveStruct(*field.structure, at + i * stride);
            else if (field.element == Storage::Text)
                moveBlock(Storage::Text, at + i * stride);
        }
    }

    void moveBlock(Storage storage, std::uint32_t slot)
    {
        Run run = runOf(m_to.data()[slot]);
        run.offset = copied(run.offset, wordsOf(storage, run));
        m_to.data()[slot] = wordOf(run);
    }

    std::uint32_t wordsOf(Storage storage, Run run) const
    {
        switch (storage) {
        case Storage::Text: return wordsOfText(run);
        case Storage::Bytes: return (run.count + 7) / 8;
        default: return (run.count + 63) / 64;
        }
    }

    std::uint32_t wordsOfText(Run run) const
    {
        const std::uint32_t units = TextRun::unitWords(run);
        if (!(run.count & TextRun::kKeepsBytes))
            return units;
        const std::uint64_t bytes = m_from.data()[run.offset + units];
        return units + 1 + static_cast<std::uint32_t>((bytes + 7) / 8);
    }

    std::uint32_t copied(std::uint32_t offset, std::uint32_t count)
    {
        if (count == 0)
            return 0;
        const std::uint32_t at = m_to.append(count);
        std::copy_n(m_from.data() + offset, count, m_to.data() + at);
        return at;
    }

    const WordBuffer& m_from;
    WordBuffer& m_to;
};

} // namespace

void compact(Record& record)
{
    if (!record.classDef())
        return;
    const StructDef& layout = record.classDef()->layout();
    WordBuffer moved;
    moved.assign(record.words().words().first(layout.size()));
    Mover(record.words(), moved).moveStruct(layout, 0);
    record.words().swap(moved);
}

} // namespace db
