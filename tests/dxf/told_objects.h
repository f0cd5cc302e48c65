#pragma once

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <db/drawing_file.h>

/// The drawings of the folder of real ones, and the minimal ones of the sources; sorted.
std::vector<std::filesystem::path> allDrawings();

/// Objects that text cannot tell, and entities that no block has.
std::set<std::uint64_t> untoldObjects(const db::DrawingFile& file);

/// What @p after lacks of the objects of @p before, but for those in @p away and what is accepted
/// (accepted.h): one line an object or field.
std::vector<std::string> lostBetween(const db::DrawingFile& before, const db::DrawingFile& after,
                                     const std::set<std::uint64_t>& away);
