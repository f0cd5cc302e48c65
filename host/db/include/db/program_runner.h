#pragma once

#include <db/program.h>
#include <db/schema.h>

namespace db {

/// Runs a program over a record, with the help of @p Io that reads, writes or just looks at values:
///
///     const std::uint64_t* words() const;                 // of the record, where they are now
///     bool ok() const;                                    // false ends the run
///     void field(const Op&, std::uint32_t slot);          // one value
///     void bytes(std::uint32_t slot, std::int64_t count);
///     void chain(std::uint32_t slot, std::int64_t count); // a PointChain
///     /// Makes or checks the array in slot; the first word of its elements.
///     std::uint32_t enter(std::uint32_t slot, const LoopInfo&, std::int64_t count);
///
/// Slots given to Io are positions in the record. Structs that contain themselves end at a depth of
/// kDeepest: then ok() is not asked, and run() gives false.
template <class Io>
class ProgramRunner
{
public:
    static constexpr unsigned kDeepest = 16;

    ProgramRunner(Io& io, const Program& program) : m_io(io), m_program(program) {}

    bool run() { return runBox(m_program, 0, 0); }

private:
    bool runBox(const Program& program, std::uint32_t base, unsigned depth)
    {
        if (depth > kDeepest)
            return false;
        const Frame frame{base, nullptr};
        return runOps(program, 0, static_cast<std::uint32_t>(program.ops.size()), frame, depth) &&
               m_io.ok();
    }

    bool runOps(const Program& program, std::uint32_t at, std::uint32_t end, const Frame& frame,
                unsigned depth)
    {
        const Op* const ops = program.ops.data();
        while (at < end) {
            const Op& op = ops[at];
            if (op.code < OpCode::FirstControl) {
                m_io.field(op, frame.base + op.slot);
                ++at;
                continue;
            }
            if (op.code >= OpCode::Jump) {
                at = jumps(program, op, frame) ? op.b : at + 1;
                continue;
            }
            if (!runGroup(program, at, frame, depth))
                return false;
            at = op.code == OpCode::Loop ? op.b : at + 1;
        }
        return true;
    }

    bool jumps(const Program& program, const Op& op, const Frame& frame) const
    {
        const std::uint64_t* const words = m_io.words();
        const std::uint64_t value = words[frame.base + op.slot];
        switch (op.code) {
        case OpCode::Jump: return true;
        case OpCode::JumpIfZero: return (value & op.a) == 0;
        case OpCode::JumpIfNonZero: return (value & op.a) != 0;
        case OpCode::JumpUnlessEqual: return value != op.a;
        default: return program.expressions[op.a].evaluate(words, frame) == 0;
        }
    }

    // Everything with a count.
    bool runGroup(const Program& program, std::uint32_t at, const Frame& frame, unsigned depth)
    {
        const Op& op = program.ops[at];
        const std::uint32_t slot = frame.base + op.slot;
        if (op.code == OpCode::Loop)
            return runLoop(program, at, frame, depth);
        if (op.code == OpCode::Box)
            return enterBox(op, slot, depth);
        const std::int64_t count = program.expressions[op.a].evaluate(m_io.words(), frame);
        if (op.code == OpCode::Bytes)
            m_io.bytes(slot, count);
        else
            m_io.chain(slot, count);
        return m_io.ok();
    }

    bool runLoop(const Program& program, std::uint32_t at, const Frame& frame, unsigned depth)
    {
        const Op& op = program.ops[at];
        const LoopInfo& loop = program.loops[op.a];
        const std::int64_t count = program.expressions[loop.count].evaluate(m_io.words(), frame);
        std::uint32_t base = m_io.enter(frame.base + op.slot, loop, count);
        if (!m_io.ok())
            return false;
        if (loop.single) {
            const Op& value = program.ops[at + 1];
            for (std::int64_t i = 0; i < count; ++i, base += loop.stride)
                m_io.field(value, base);
            return m_io.ok();
        }
        for (std::int64_t i = 0; i < count; ++i, base += loop.stride) {
            const Frame inner{base, &frame};
            if (!runOps(program, at + 1, op.b, inner, depth) || !m_io.ok())
                return false;
        }
        return true;
    }

    bool enterBox(const Op& op, std::uint32_t slot, unsigned depth)
    {
        LoopInfo loop;
        loop.element = m_program.boxed[op.a];
        loop.stride = loop.element->size();
        const std::uint32_t base = m_io.enter(slot, loop, 1);
        return m_io.ok() && runBox(*m_program.boxes[op.a], base, depth + 1);
    }

    Io& m_io;
    const Program& m_program; // outermost: it owns the boxes
};

} // namespace db
