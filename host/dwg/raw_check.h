#pragma once

#include <vector>

#include "container.h"
#include "dwg/class_table.h"
#include "dwg/header_variables.h"
#include "dwg/object_map.h"
#include "dwg/object_record.h"

namespace dwg {

/// The whole record of the object at @p location; unpacks what it lies on.
base::Result<Bytes> recordBytes(Container& container, Version version,
                                const ObjectLocation& location);

/// What the three sections that opening reads have wrong.
void addSectionFindings(const HeaderVariables& header, const ClassTable& classes,
                        const ObjectMap& map, std::vector<Finding>& findings);

/// What the objects have wrong; reads each of them.
void addObjectFindings(Container& container, Version version,
                       const std::vector<ObjectLocation>& objects, std::vector<Finding>& findings);

} // namespace dwg
