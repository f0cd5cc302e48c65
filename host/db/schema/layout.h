#pragma once

#include <map>
#include <memory>
#include <string_view>
#include <vector>

#include "db/schema.h"
#include "schema/condition.h"
#include "schema/table_ast.h"

namespace db {

/// The fields of a table, and of the elements of its loops.
struct Layout {
    StructDef def;
    std::map<const Node*, std::unique_ptr<StructDef>> loops;
};

/// Fills @p layout from the lines of a table.
void buildLayout(const Body& body, Layout& layout);

/// The struct called @p name, with its lines and its layout; each is read once. Null if there is
/// none.
struct NamedStruct {
    std::string_view name;
    Body body;
    Layout layout;
    bool isReady = false; ///< false while its layout is being built: then it contains itself
};
const NamedStruct* structNamed(std::string_view name);

/// What the types EED, XITEMS and SAT1 are made of (group_items.h tells the names).
const StructDef* extendedDataElement();
const StructDef* xrecordContent();
const StructDef* satBlockElement();

} // namespace db
