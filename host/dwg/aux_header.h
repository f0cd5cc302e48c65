#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "dwg/header_variables.h"

namespace dwg {

/// Number of saves that an auxiliary header counts; nullopt when it is of a shape in which
/// updateAuxHeader() does not count.
/// @param variables  of the same file.
std::optional<std::uint32_t> saveCountOf(Bytes auxHeader, const HeaderVariables& variables);

/// Carries what changed between two states of the header variables (next free handle, time of the
/// update) into the auxiliary header, and counts one more save. Where they stand is found by their
/// old values; a header of another shape stays as it is.
void updateAuxHeader(std::vector<std::uint8_t>& auxHeader, const HeaderVariables& before,
                     const HeaderVariables& after);

} // namespace dwg
