#pragma once

#include <map>
#include <string>
#include <vector>

#include <cstdint>

namespace sm {

/// What a newer program wrote on or below one of our elements: kept, and written back where it
/// stood.
struct Extras {
    struct Attribute {
        std::string name;
        std::string value; ///< Decoded UTF-8.
    };
    struct Element {
        std::uint64_t before; ///< Handle or place of the child it stood before; 0: behind them all.
        std::string xml;      ///< On one line.
    };
    /// The same of a pointer at another object, which is no object itself.
    struct Pointer {
        std::vector<Attribute> attributes;
        std::vector<std::string> elements; ///< Each on one line.
    };
    std::vector<Attribute> attributes;
    std::vector<Element> elements;
    /// Of the pointers below this object, by the handle that they point at. They stay when a
    /// pointer is taken out, and are written when it is there: so they come back with it.
    std::map<std::uint64_t, Pointer> pointers;
};

} // namespace sm
