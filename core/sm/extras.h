#pragma once

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
    std::vector<Attribute> attributes;
    std::vector<Element> elements;
};

} // namespace sm
