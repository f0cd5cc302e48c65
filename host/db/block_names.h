#pragma once

#include <string>

#include <db/tv_db_symbol_table.h>

namespace db {

/// Whether blocks of this name are told apart by a number behind it: those that no user named.
bool isNumberedBlockName(std::u16string_view name);
/// Whether @p full is @p stored with a number, or without.
bool isNumberedFrom(std::u16string_view full, std::u16string_view stored);
/// What a block's record keeps of its name.
std::u16string storedBlockName(std::u16string_view full);
/// Model space or a paper space.
bool isSpaceName(std::u16string_view stored);
bool isPaperSpaceName(std::u16string_view stored);

/// The name for a new block: @p wanted, with a number when it needs one.
TvString freeBlockName(const TvDbBlockTableRecord& block, const TvString& wanted);
/// A number for a new block "<prefix><number>" that no block of the table has.
TvString freeNumberedName(const TvDbSymbolTable& blocks, std::u16string_view prefix);

/// Layer "0", which every drawing has; null in a damaged one.
TvDbObjectId layerZero(const TvDbDatabase& database);

/// Whether entities of that class stand in a block for themselves: not what begins and ends blocks
/// and sequences, nor what belongs to another entity.
bool canStandInBlock(const ClassDef* of);

/// Tells the entity which block it stands in.
void placeInBlock(RecordEditor entity, TvDbObjectId block);

/// Notes in @p block that @p reference shows it.
void listReference(TvDbObjectId block, TvDbObjectId reference);

} // namespace db
