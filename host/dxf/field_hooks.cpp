// Fields: texts in pieces, and values whose groups depend on their kind.

#include "hook_lists.h"
#include "long_text.h"
#include "object_writer.h"

namespace dxf {

std::span<const Hook> fieldHooks()
{
    return {};
}

} // namespace dxf
