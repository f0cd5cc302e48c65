#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include <db/record.h>

/// The fields that the version of @p a stores and whose values differ, as "field: value / value".
/// Texts count by what their escapes mean, reals but for the last digits; lists of handles without
/// empty entries and those in @p away.
std::vector<std::string> differences(const db::Record& a, const db::Record& b,
                                     const std::set<std::uint64_t>& away = {});
