#pragma once

#include <string_view>

namespace dxf {

struct Tag;
class ObjectReader;
class ObjectWriter;

/// What a form cannot say, written out: both ways of some groups that depend on each other.
struct Hook {
    std::string_view name;
    /// Takes a group; false when it makes no sense there (it is kept as unknown).
    bool (*read)(ObjectReader&, const Tag&) = nullptr;
    void (*write)(ObjectWriter&) = nullptr;
    /// Called once, after the last group of the object.
    void (*finish)(ObjectReader&) = nullptr;
    /// What follows is a list in which markers and braces have no meaning.
    bool takesAll = false;
    /// Takes its code once; the next group with it is that of another line.
    bool isSingle = false;
};

/// Null when there is none; only forms ask, when they are made.
const Hook* hookNamed(std::string_view name);

} // namespace dxf
