#pragma once

#include <optional>

#include <db/group_items.h>

#include "dwg/bytes.h"
#include "dwg/version.h"

namespace dwg {

/// How a list of items is coded: extended data and xrecords differ in codes, byte order of handles
/// and sizes of texts.
struct ItemForm {
    bool isExtended = false;
    bool isWide = false; ///< texts are UTF-16
};

/// One item as it stands in the bytes.
struct GroupItem {
    int code = 0;
    db::ItemKind kind = db::ItemKind::Byte;
    int codePage = 0; ///< of a text of 8-bit units
    Bytes value;      ///< the number, or what follows the size of a text or of binary data
};

/// Takes an item from the front of @p bytes; nullopt when there is none that follows the rules.
std::optional<GroupItem> takeItem(Bytes& bytes, ItemForm form);

} // namespace dwg
