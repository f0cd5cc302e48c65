#pragma once

#include <functional>

#include <db/drawing_file.h>

namespace db {

/// Drawings of AC1015 keep what a block holds, the attributes of an insert and the vertices of a
/// polyline as chains: the owner tells the first and the last, each entity its neighbours. Later
/// versions keep a list in the owner. In memory the list is the truth in every version: "owned" of
/// BLOCK_HEADER, "attribs" of INSERT and MINSERT, "vertices" of the polylines. It is filled from
/// the chain when an owner is read, and the chain is made right from it before the owner is
/// written.

/// The field of @p owner that lists its entities; None when its class has none, or when this object
/// has none (an external reference, an insert without attributes).
FieldId ownedListOf(const RecordView& owner);

/// Fills the list of an owner that was read from @p file, which is of AC1015; does nothing to any
/// other record, nor in other files.
///
/// Bounded: the entities must be the owner's own and each stands once, so that all owners of a
/// damaged file together cost no more than its entities.
/// @return Damaged when the chain does not come to its last entity; the list then holds what was
///         found up to there.
base::Status fillOwnedFromChain(const DrawingFile& file, Record& owner);

/// How relink() gets at the entities.
struct EntityAccess {
    /// The entity's record as it is now; null when there is no such entity. Good until the next
    /// call.
    std::function<const Record*(std::uint64_t)> look;
    /// The same, to be changed; null when that is not possible. Good until the next call.
    std::function<Record*(std::uint64_t)> change;
};

/// Makes the chain of @p owner what its list says: its first and last, and the neighbours of its
/// entities. Changes (and asks to change) only what is not so already; does nothing to records that
/// own nothing. Handles of the list without an entity are passed over.
///
/// Fields of AC1015 only: of use in a drawing of that version, or on the way into it.
/// @return Usage, with nothing changed, when an entity stands twice in the list; Unsupported when
///         an entity must but cannot be changed: the chain is then not right.
base::Status relink(Record& owner, const EntityAccess& entities);

} // namespace db
