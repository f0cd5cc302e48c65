#include "schema/field_types.h"

#include <algorithm>
#include <iterator>

namespace db {

namespace {

using enum Storage;

// clang-format off
constexpr FieldType kTypes[] = {
    // name        on the wire                arity           in a record
    {"B",          OpCode::Bit,               1,              Integer},
    {"BB",         OpCode::Bit2,              1,              Integer},
    {"RC",         OpCode::RawChar,           1,              Integer},
    {"RS",         OpCode::RawShort,          1,              Integer},
    {"RL",         OpCode::RawLong,           1,              Integer},
    {"BS",         OpCode::BitShort,          1,              Integer},
    {"BL",         OpCode::BitLong,           1,              Integer},
    {"DT",         OpCode::BitLong,           2,              Integer}, // days, milliseconds
    {"BLL",        OpCode::BitLongLong,       1,              Integer},
    {"RCZ",        OpCode::ZeroRun,           1,              Integer},
    {"RD",         OpCode::RawDouble,         1,              Real},
    {"RDa",        OpCode::RawDouble,         1,              Real, true},
    {"2RD",        OpCode::RawDouble,         2,              Real},
    {"3RD",        OpCode::RawDouble,         3,              Real},
    {"BD",         OpCode::BitDouble,         1,              Real},
    {"BDa",        OpCode::BitDouble,         1,              Real, true},
    {"2BD",        OpCode::BitDouble,         2,              Real},
    {"3BD",        OpCode::BitDouble,         3,              Real},
    {"DD",         OpCode::DefaultDouble,     1,              Real},
    {"2DD",        OpCode::DefaultDouble,     2,              Real},
    {"3DD",        OpCode::DefaultDouble,     3,              Real},
    {"BT",         OpCode::Thickness,         1,              Real},
    {"BE",         OpCode::Extrusion,         3,              Real},
    {"SCALE",      OpCode::Scale,             3,              Real},
    {"2RDD",       OpCode::PointChain,        2,              Real},
    {"T",          OpCode::Text,              1,              Text},
    {"H",          OpCode::Handle,            kAnyHandleCode, Handle},
    {"H0",         OpCode::Handle,            0,              Handle},
    {"H2",         OpCode::Handle,            2,              Handle},
    {"H3",         OpCode::Handle,            3,              Handle},
    {"H4",         OpCode::Handle,            4,              Handle},
    {"H5",         OpCode::Handle,            5,              Handle},
    {"SEED",       OpCode::DataHandle,        1,              Handle}, // refers to nothing yet
    {"DH0",        OpCode::DataHandle,        0,              Handle},
    {"HREST",      OpCode::RestOfHandles,     kAnyHandleCode, Array},
    {"EED",        OpCode::ExtendedData,      1,              Array},
    {"XITEMS",     OpCode::XrecordItems,      1,              Struct},
    {"SAT1",       OpCode::SatBlocks,         1,              Array},
    {"SAB",        OpCode::SabBytes,          1,              Bytes},
    {"RESTBITS",   OpCode::RestOfData,        1,              Bits},
    {"RESTSTR",    OpCode::RestOfStrings,     1,              Bits},
    {"RESTHND",    OpCode::RestOfHandleBits,  1,              Bits},
};
// clang-format on

} // namespace

const FieldType* fieldType(std::string_view name)
{
    const auto found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                    [name](const FieldType& type) { return type.name == name; });
    return found == std::end(kTypes) ? nullptr : found;
}

std::int64_t normalised(OpCode code, std::int64_t value)
{
    switch (code) {
    case OpCode::Bit: return value & 1;
    case OpCode::Bit2: return value & 3;
    case OpCode::RawChar: return value & 0xFF;
    case OpCode::RawShort:
    case OpCode::BitShort: return static_cast<std::int16_t>(value);
    case OpCode::RawLong:
    case OpCode::BitLong: return static_cast<std::int32_t>(value);
    default: return value;
    }
}

} // namespace db
