#pragma once

#include <span>
#include <string_view>

namespace db {

/// The texts of all field tables, as they stand in schema/tables; they live as long as the program.
std::span<const std::string_view> tableTexts();

} // namespace db
