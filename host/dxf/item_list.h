#pragma once

#include <db/group_items.h>

#include "object_reader.h"
#include "object_writer.h"

namespace dxf {

/// Reads a group into a list of extended data or of an xrecord: a new item, or y and z of the last
/// one. False when it cannot stand there.
bool readItem(ObjectReader& reader, db::ArrayEditor items, const Tag& tag, bool isExtended);

/// Writes such a list. False when it holds what groups cannot tell.
bool writeItems(ObjectWriter& writer, const db::RecordView& content, bool isExtended);

} // namespace dxf
