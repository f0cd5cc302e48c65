#pragma once

#include <bit>
#include <cstdint>
#include <memory>
#include <vector>

namespace db {

struct FieldDef;
struct StructDef;

/// One step of a program: a value on the wire, or a turn in the way through the table.
///
/// Values come first; every code from FirstControl on is handled by ProgramRunner itself.
enum class OpCode : std::uint8_t {
    Bit,              ///< B
    Bit2,             ///< BB
    RawChar,          ///< RC, unsigned
    RawShort,         ///< RS, signed
    RawLong,          ///< RL, signed
    BitShort,         ///< BS, signed
    BitLong,          ///< BL, signed
    BitLongLong,      ///< BLL, unsigned
    RawDouble,        ///< RD, arity times
    BitDouble,        ///< BD, arity times
    DefaultDouble,    ///< DD, arity times; a: slot of the default
    Thickness,        ///< BT
    Extrusion,        ///< BE
    Scale,            ///< three factors behind two bits that tell which are stored
    Text,             ///< T
    Handle,           ///< H; arity: the code to write for a new reference
    DataHandle,       ///< a handle that stands among the data
    ZeroRun,          ///< RCZ: a count as so many bytes, then a zero byte
    ExtendedData,     ///< all EED groups
    XrecordItems,     ///< XITEMS: a size in bytes, then group items
    RestOfData,       ///< RESTBITS
    RestOfStrings,    ///< RESTSTR
    RestOfHandleBits, ///< RESTHND
    RestOfHandles,    ///< HREST
    SatBlocks,        ///< SAT1
    SabBytes,         ///< SAB
    FirstControl,
    Bytes = FirstControl, ///< a: expression of the count
    PointChain,      ///< first point raw, each next one with its predecessor as default; a: count
    Loop,            ///< a: index into loops; the body follows, up to op b
    Box,             ///< a: index into boxes: a struct that contains itself
    Jump,            ///< to b
    JumpIfZero,      ///< to b, unless slot & a
    JumpIfNonZero,   ///< to b, if slot & a
    JumpUnlessEqual, ///< to b, unless slot == a
    JumpUnless,      ///< to b, unless expression a
};

inline constexpr std::uint8_t kAnyHandleCode = 0xFF;

struct Op {
    OpCode code;
    std::uint8_t arity;
    std::uint32_t slot; ///< in the frame
    std::uint32_t a;
    std::uint32_t b;
};

/// Where the current struct's slots begin, and the frame that the names of outer scopes refer to.
struct Frame {
    std::uint32_t base;
    const Frame* outer;
};

/// An array's place: a slot holds where it lies in the record's words, and how many there are.
struct Run {
    std::uint32_t offset = 0; ///< in words
    std::uint32_t count = 0;  ///< elements, bytes, bits, or UTF-16 units with the marks of TextRun
};

inline Run runOf(std::uint64_t word)
{
    return {static_cast<std::uint32_t>(word), static_cast<std::uint32_t>(word >> 32)};
}
inline std::uint64_t wordOf(Run run)
{
    return run.offset | static_cast<std::uint64_t>(run.count) << 32;
}

/// Mark in the count of an array that an edit has moved: the word before its elements tells for how
/// many there is room.
inline constexpr std::uint32_t kHasRoom = 1u << 31;
inline constexpr std::uint32_t kLargestCount = 1u << 30;

/// The array in a slot, without the mark.
inline Run arrayOf(std::uint64_t word)
{
    Run run = runOf(word);
    run.count &= ~kHasRoom;
    return run;
}

/// A handle reference in one word: the code as stored on top, the absolute target below. A code of
/// 0 stands for the one that the table gives.
inline constexpr std::uint64_t kTargetMask = (std::uint64_t(1) << 60) - 1;

/// A condition or count, as steps on a small stack.
class Expression
{
public:
    enum class Code : std::uint8_t {
        Constant, // value
        Integer,  // slot in the frame that is depth further out
        Sign,     // of the real there
        Target,   // of the handle there
        Any,      // elements of the array there with member & value; 0 or 1
        Sum,      // of a member over the array there
        And,
        Or,
        Not,
        BitAnd,
        Add,
        Subtract,
        Multiply,
        Equal,
        NotEqual,
        Less,
        LessEqual,
        Greater,
        GreaterEqual,
        PopCount,
        Select, // three on the stack: condition, then, else
    };
    struct Step {
        Code code;
        std::uint8_t depth = 0;
        std::uint32_t slot = 0;
        std::uint32_t stride = 0; // of the array's elements
        std::uint32_t member = 0; // slot in an element
        std::int64_t value = 0;
    };

    static constexpr std::size_t kStackSize = 16;

    std::int64_t evaluate(const std::uint64_t* words, const Frame& frame) const
    {
        if (m_steps.size() == 1 && m_steps[0].code == Code::Integer && m_steps[0].depth == 0)
            return static_cast<std::int64_t>(words[frame.base + m_steps[0].slot]);
        return evaluateSteps(words, frame);
    }
    void append(const Step& step) { m_steps.push_back(step); }

private:
    std::int64_t evaluateSteps(const std::uint64_t* words, const Frame& frame) const;

    std::vector<Step> m_steps;
};

/// How often a body is done, and where its elements lie.
struct LoopInfo {
    const StructDef* element = nullptr; ///< null for an array of plain values
    std::uint32_t stride = 1;           ///< words an element takes
    std::uint32_t count = 0;            ///< expression
    bool single = false;                ///< the body is one value
};

/// What an op stands for outside of this format: the field, and its group code in DXF.
struct OpInfo {
    const FieldDef* field = nullptr;
    std::int16_t dxf = -1; ///< -1: not in DXF
};

/// A class's table for one version, ready to be run: no names, no version conditions left.
struct Program {
    std::vector<Op> ops;
    std::vector<OpInfo> info; ///< one each op
    std::vector<LoopInfo> loops;
    std::vector<Expression> expressions;
    std::vector<std::unique_ptr<Program>> boxes; ///< of the outermost program only
    std::vector<const StructDef*> boxed;         ///< the struct of each box
};

} // namespace db
