#pragma once

#include "ed/system_variables.h"

class TvDbDatabase;

namespace ed {

/// A variable that follows from something else.
struct DerivedVariable {
    const TvChar* name;
    VariableKind kind;
    /// nullopt when it has no value here. @param database  the working one; never null.
    std::optional<VariableValue> (*read)(TvDbDatabase& database);
    /// Null: read only. It tells the reactors itself.
    bool (*write)(TvDbDatabase& database, const VariableValue& value);
};

const DerivedVariable* derivedVariable(const TvString& name);
const std::vector<DerivedVariable>& derivedVariables();

} // namespace ed
