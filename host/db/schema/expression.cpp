#include "db/program.h"

#include <array>
#include <bit>

#include "schema/condition.h"

namespace db {

namespace {

// NaN counts as negative: it is not >= 0.
std::int64_t signOf(std::uint64_t word)
{
    const auto value = std::bit_cast<double>(word);
    return value > 0 ? 1 : value == 0 ? 0 : -1;
}

std::int64_t overElements(const Expression::Step& step, const std::uint64_t* words,
                          std::uint64_t array)
{
    const Run run = arrayOf(array);
    std::uint64_t sum = 0;
    std::uint64_t bits = 0;
    for (std::uint32_t i = 0; i < run.count; ++i) {
        const std::uint64_t value = words[run.offset + i * step.stride + step.member];
        sum += value;
        bits |= value;
    }
    if (step.code == Expression::Code::Sum)
        return static_cast<std::int64_t>(sum);
    return (bits & static_cast<std::uint64_t>(step.value)) != 0;
}

std::int64_t loaded(const Expression::Step& step, const std::uint64_t* words, const Frame* frame)
{
    for (std::uint8_t i = 0; i < step.depth; ++i)
        frame = frame->outer;
    const std::uint64_t word = words[frame->base + step.slot];
    switch (step.code) {
    case Expression::Code::Sign: return signOf(word);
    case Expression::Code::Target: return static_cast<std::int64_t>(word & kTargetMask);
    case Expression::Code::Any:
    case Expression::Code::Sum: return overElements(step, words, word);
    default: return static_cast<std::int64_t>(word);
    }
}

bool loads(Expression::Code code)
{
    return code <= Expression::Code::Sum;
}
bool hasOnePart(Expression::Code code)
{
    return code == Expression::Code::Not || code == Expression::Code::PopCount;
}

} // namespace

std::int64_t Expression::evaluateSteps(const std::uint64_t* words, const Frame& frame) const
{
    std::array<std::int64_t, kStackSize> stack; // the compiler of tables keeps within it
    std::size_t top = 0;                        // how many there are
    for (const Step& step : m_steps) {
        if (loads(step.code)) {
            stack[top++] = step.code == Code::Constant ? step.value : loaded(step, words, &frame);
        } else if (step.code == Code::Select) {
            top -= 2;
            stack[top - 1] = stack[top - 1] ? stack[top] : stack[top + 1];
        } else if (hasOnePart(step.code)) {
            stack[top - 1] = applyOperator(step.code, stack[top - 1], 0);
        } else {
            --top;
            stack[top - 1] = applyOperator(step.code, stack[top - 1], stack[top]);
        }
    }
    return stack[0];
}

} // namespace db
