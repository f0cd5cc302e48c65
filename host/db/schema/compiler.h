#pragma once

#include "db/schema.h"
#include "schema/layout.h"

namespace db {

/// Makes the program of a table for one version.
void compileProgram(const Body& body, const Layout& layout, Version version, Program& program);

} // namespace db
