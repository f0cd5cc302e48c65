#pragma once

#include <optional>

#include <db/drawing_file.h>

#include "object_writer.h"
#include "structure.h"

namespace dxf {

/// The variables of a file as a record of HEADER_VARIABLES; what it does not tell is as in a new
/// drawing, or follows from its objects.
base::Result<db::Record> readHeader(const Structure& structure);
/// nullopt when the file has no texts about itself.
std::optional<db::SummaryInfo> readSummary(const Structure& structure);

/// What the section is made of.
struct HeaderContent {
    const db::Record* header = nullptr;
    const db::SummaryInfo* summary = nullptr; ///< null: none
    std::string_view before; ///< the section of the file it came from; may be empty
};

/// Writes the section: the variables that we know from the record, others as they were.
void writeHeader(ObjectWriter& writer, const HeaderContent& content);
/// Copies the section as it stands but for the next free handle.
void copyHeader(GroupWriter& out, std::string_view before, std::uint64_t handleSeed);

std::string_view versionName(db::Version version);

} // namespace dxf
