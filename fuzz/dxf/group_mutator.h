#pragma once

#include <cstddef>
#include <cstdint>

/// Changes a text of groups (a line of code, a line of value) as a whole: groups go, come twice,
/// change places, code or value. At most @p most bytes; the new size.
std::size_t mutateGroups(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed);
