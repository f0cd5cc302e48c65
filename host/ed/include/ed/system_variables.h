#pragma once

#include <optional>
#include <variant>
#include <vector>

#include <base/tv_string.h>
#include <db/record.h>
#include <db/resbuf.h>

/// Reads a system variable: 5003 short, 5001 real, 5005 text or 5009 point, by its kind.
///
/// Variables of a drawing are those of the working database; without one they cannot be read.
/// @param name  without regard to case.
/// @param out   not null; a text in it is replaced, and released with it (tvutRelRb).
/// @return 5100; another number, and @p out alone, when there is no such variable here.
int tvedGetVar(const TvChar* name, resbuf* out);
/// Sets a system variable. Reactors are told of a value that differs from the former one.
/// @return 5100; another number, and nothing changed, when there is no such variable here, it is
///         read only, or the value is of another kind or out of range.
int tvedSetVar(const TvChar* name, const resbuf* value);

namespace ed {

enum class VariableKind { Short, Real, Text, Point };

/// Where a variable lives.
enum class VariableHome {
    User,    ///< in the user's settings
    Drawing, ///< in the drawing's header; comes back with undo
    Session, ///< nowhere: gone with the program
    Derived, ///< it follows from something else
};

using VariableValue = std::variant<std::int16_t, double, TvString, db::Point>;

struct VariableInfo {
    const TvChar* name; ///< upper case
    VariableKind kind;
    VariableHome home;
    bool isReadOnly;
    double low, high; ///< of numbers; equal: any value
};

/// All variables, by name.
std::vector<VariableInfo> systemVariables();
/// nullopt when there is no variable of that name.
std::optional<VariableInfo> systemVariable(const TvString& name);
/// nullopt when it cannot be read here.
std::optional<VariableValue> variable(const TvString& name);
/// False when it cannot be set so.
bool setVariable(const TvString& name, const VariableValue& value);
/// A value from what a user types: numbers with a point, points with commas; nullopt when it is of
/// another kind.
std::optional<VariableValue> parsedValue(VariableKind kind, const TvString& text);
/// As a user would type it.
TvString valueText(const VariableValue& value);

} // namespace ed
