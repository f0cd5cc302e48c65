#pragma once

#include <optional>

#include <db/drawing_file.h>

namespace db {

/// Drawings of AC1015 keep their summary information in an XRECORD that is filed as "DWGPROPS" in
/// the named objects dictionary; later ones in a section of the file. The times of the record are
/// taken as they stand: it does not tell their zone.

/// The key of the record.
inline constexpr std::u16string_view kSummaryKey = u"DWGPROPS";
/// How many custom properties the record has room for.
inline constexpr std::size_t kMostCustomProperties = 10;

/// What the record tells; nullopt when @p record is no such record.
std::optional<SummaryInfo> summaryFromRecord(const Record& record);
/// A new record for the named objects dictionary, without content.
Record newSummaryRecord(std::uint64_t dictionary, std::uint64_t handle, Version version);
/// Fills an XRECORD. @return false, with nothing changed, when it cannot hold @p summary: too many
/// custom properties, a name with an equals sign, or a text that is too long.
bool putSummary(Record& record, const SummaryInfo& summary);

/// The object that a dictionary has under @p key, in any case; 0 when there is none.
std::uint64_t entryOf(const Record& dictionary, std::u16string_view key);
/// Files @p object in @p dictionary, where the key's letters put it.
void addEntry(Record& dictionary, std::u16string_view key, std::uint64_t object);
/// Takes the object out of the dictionary.
void removeEntry(Record& dictionary, std::uint64_t object);

} // namespace db
