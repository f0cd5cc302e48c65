#pragma once

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <db/drawing_file.h>

#include "record_difference.h"

/// The drawings of the folder of real ones, and the minimal ones of the sources; sorted.
std::vector<std::filesystem::path> allDrawings();

class Edit;

/// Objects that text cannot tell, what hangs on nothing, and what all these own.
std::set<std::uint64_t> untoldObjects(const db::DrawingFile& file);
/// Erases them, and takes them out of dictionaries; which they are.
std::set<std::uint64_t> takeUntoldAway(const db::DrawingFile& file, Edit& edit);

/// What @p after lacks of the objects of @p before, but for those in @p away and what is accepted
/// (accepted.h): one line an object or field.
std::vector<std::string> lostBetween(const db::DrawingFile& before, const db::DrawingFile& after,
                                     const std::set<std::uint64_t>& away);

/// Whether a difference of objects of a class is accepted.
bool isAccepted(std::string_view className, std::string_view difference);
