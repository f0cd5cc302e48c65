#pragma once

#include <span>

#include "dwg/header_variables.h"

namespace dwg {

enum class HeaderKind : std::uint8_t {
    Bit,         ///< B
    Byte,        ///< RC
    Short,       ///< BS, signed
    Long,        ///< BL, signed
    Wide,        ///< BLL
    Real,        ///< BD
    Point,       ///< 3BD
    Pair,        ///< 2RD
    Text,        ///< T or TU
    Date,        ///< 2 BL
    Color,       ///< CMC
    Handle,      ///< hard pointer
    StyleHandle, ///< hard pointer, there only while CEPSNTYPE is 3
    HardOwner,
    Seed, ///< the next free handle; among the data in every version
    Tail, ///< unused words behind everything else
};

/// One header variable: in which versions it stands, and what it is in a new drawing.
struct HeaderField {
    std::string_view name;
    HeaderKind kind;
    Version since, until;
    std::string_view standard;
};

/// All of them, in the order of the file.
std::span<const HeaderField> headerFields();

/// The value that a new drawing of @p version has.
HeaderValue standardValue(const HeaderField& field, Version version);

} // namespace dwg
