#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include <db/schema.h>

#include "names.h"

namespace dxf {

struct Hook;
struct Scope;

/// A colour under code 62 has its true colour under 420 and its name under 430; one under 63 under
/// 421 and 431, and so on.
inline constexpr int kTrueColor = 358, kColorName = 368;

/// How a value is told in a file, where it is not just itself.
enum class Convert : std::uint8_t {
    None,
    Name,       ///< a reference, as the name of a record in a symbol table
    Color,      ///< index, and true colour and name under codes of their own
    PlainColor, ///< the index alone
    WideColor,  ///< the 32 bits of a colour as one number
    Lineweight, ///< a code here, hundredths of a millimetre there
};

/// One group (or some that belong together) of an object's form.
struct Item {
    enum class Kind : std::uint8_t {
        Constant,
        Ignored,
        Count,
        Field,
        Array, ///< of plain values
        Bits,
        List,
        In, ///< a struct in braces
        Zip,
        Hook,
    };
    struct Bit {
        std::uint32_t slot;
        std::int64_t value;
    };

    Kind kind = Kind::Field;
    std::int16_t code = 0;
    Convert convert = Convert::None;
    db::OpCode op = db::OpCode::BitLong; ///< what an integer is cut to
    std::uint8_t components = 1;         ///< groups of a point
    std::uint8_t stride = 10;            ///< from the code of x to that of y
    bool isOptional = false;
    bool isAlias = false;
    bool addsIndex = false;
    std::uint8_t counter = 0; ///< of an array of fixed length: which of the scope's
    const db::FieldDef* field = nullptr;
    const db::StructDef* holder = nullptr; ///< the struct that the field is of
    std::uint32_t holderBase = 0;          ///< where that lies in the scope's frame
    std::uint32_t slot = 0;                ///< of the field, in the scope's frame
    std::int32_t elevation = -1;           ///< slot of a point's z
    std::int16_t closingCode = 0;          ///< of a list or struct in braces
    Table table = Table::None;             ///< of a name
    std::string_view text;                 ///< constant, or opening text
    std::string_view closing;
    const Hook* hook = nullptr;
    std::vector<Bit> bits;
    std::unique_ptr<Scope> scope; ///< of a list, struct or zip
};

/// How many arrays of fixed length a scope may have.
inline constexpr std::size_t kMaxCounters = 16;

/// Groups that may stand in any order, and whose codes mean the same until the next marker or
/// element: what a code leads to.
struct Scope {
    /// A way from a code to a part of an item.
    struct Target {
        std::uint16_t item;
        std::uint8_t component; ///< 0 x, 1 y, 2 z
        std::uint16_t next;     ///< another item with this code, + 1; 0 none
    };

    const db::StructDef* def = nullptr; ///< of the frame that slots count from
    std::vector<Item> items;
    std::vector<Target> targets;
    std::array<std::uint16_t, 512> first{}; ///< by code: a target, + 1
    std::uint16_t wildcard = 0;             ///< a hook that takes whatever is left, + 1
    int firstCode = -1;                     ///< of an element: what it begins with

    const Target* targetOf(int code) const
    {
        const bool known = code >= 0 && code < 512 && first[static_cast<std::size_t>(code)];
        return known ? &targets[first[static_cast<std::size_t>(code)] - 1u] : nullptr;
    }
    const Target* nextOf(const Target& target) const
    {
        return target.next ? &targets[target.next - 1u] : nullptr;
    }
};

/// The part of an object between two markers.
struct Segment {
    std::string_view marker; ///< empty: before the first marker
    int markerCode = 100;
    Scope scope = {};
};

/// How the objects of a class look in a file of one version: made from the form's text, or from the
/// field table alone where there is none. Thread-safe; lives as long as the program.
struct Form {
    std::vector<Segment> segments;
    bool fillsArrays = false;   ///< whether a new record has arrays of fixed length
    bool hasConditions = false; ///< whether fields may be left out of a record
};

/// Whether the objects of the class are told by a form in a file of this version; else they stay
/// groups.
bool hasForm(const db::ClassDef& classDef, db::Version version);
/// Null for classes that are not told by a form. Controls have one for what the heads of tables
/// share with objects.
const Form* formOf(const db::ClassDef& classDef, db::Version version);

} // namespace dxf
