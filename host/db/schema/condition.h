#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "db/program.h"

namespace db {

/// A condition or count of a table as a tree: names not yet looked up.
struct Condition {
    enum class Kind { Constant, Name, Any, Sum, Version, Operator };

    Kind kind = Kind::Constant;
    std::int64_t value = 0;  ///< of a constant; the mask of any()
    std::string_view name;   ///< of a field, or of an array
    std::string_view member; ///< of an array's elements
    Expression::Code op = Expression::Code::Constant;
    std::vector<Condition> parts;

    bool isConstant() const { return kind == Kind::Constant; }
    bool is(Expression::Code code) const { return kind == Kind::Operator && op == code; }
};

/// Reads @p text: or, and, not, comparisons, &, +, -, *, `a if c else b`, popcount(),
/// any(list.field & n), sum(list.field), hexadecimal and decimal numbers, names with dots, V for
/// the version.
Condition parseCondition(std::string_view text);

/// The same with V put in and everything constant worked out.
Condition foldCondition(const Condition& condition, int version);

/// What @p code makes of two numbers (of one: the first). Shared by folding and by evaluation.
std::int64_t applyOperator(Expression::Code code, std::int64_t left, std::int64_t right);

} // namespace db
