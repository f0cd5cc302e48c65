#pragma once

#include <map>
#include <string_view>
#include <vector>

#include "db/schema.h"

namespace db {

/// Where each class and struct stands in the texts of the tables. Found once, read later.
struct TableLibrary {
    struct Entry {
        std::string_view text; ///< the lines below the heading
        const ClassDef* classDef = nullptr;
    };
    std::map<std::string_view, Entry> structs;
    std::map<std::string_view, Entry> classes;
    std::vector<const ClassDef*> all;
};

const TableLibrary& tableLibrary();

} // namespace db
