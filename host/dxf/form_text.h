#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace dxf {

/// One line of a form, with what is indented below it. Texts lie in the forms, which live as long
/// as the program.
struct FormLine {
    enum class Kind {
        Marker,   ///< 100 or 101: the groups below it are a part of their own
        Constant, ///< always the same value; read and forgotten
        Ignored,  ///< read and forgotten, never written
        Count,    ///< the number of elements of an array
        Field,
        Bits,    ///< one integer for several flags
        List,    ///< the elements of an array of structs
        In,      ///< a struct in place
        Zip,     ///< arrays whose elements stand in turn
        Hook,    ///< written out in code
        Derived, ///< the rest of the fields, as the field table has them
    };
    struct Bit {
        std::string_view field;
        int value;
    };

    Kind kind = Kind::Field;
    int code = 0;
    std::string_view target = {};    ///< field, marker, constant or hook
    std::string_view convert = {};   ///< behind the colon
    std::string_view elevation = {}; ///< behind the plus: the field that holds z
    std::string_view closing = {};   ///< of a list or struct in braces: the text that ends it
    int closingCode = 0;
    bool isOptional = false; ///< left out while it holds the table's default
    bool isAlias = false;    ///< read, never written
    bool isArray = false;
    int addsIndex = 0; ///< 1: the code grows with the element's position
    std::vector<Bit> bits = {};
    std::vector<int> codes = {}; ///< of a hook; empty: all that nothing else takes
    std::vector<FormLine> inner = {};
};

/// The form of the class @p name, as the library holds it; null when it has none.
const std::vector<FormLine>* formLines(std::string_view name);

/// The texts of all forms (made at build time).
std::span<const std::string_view> formTexts();

} // namespace dxf
