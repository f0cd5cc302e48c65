#pragma once

#include <span>
#include <string_view>

#include <db/version.h>

#include "names.h"

namespace dxf {

/// One variable of the header: how a file tells it, and where a record has it.
struct HeaderRow {
    enum class Kind { Integer, Real, Angle, Point, Date, Text, Handle, Color, Name };

    std::string_view name; ///< without its dollar
    int code;
    Kind kind;
    Table table = Table::None;   ///< of a name
    std::string_view other = {}; ///< the record's own name for it
    db::Version since = db::Version::Ac1015;

    std::string_view field() const { return other.empty() ? name : other; }
};

std::span<const HeaderRow> headerRows();

} // namespace dxf
