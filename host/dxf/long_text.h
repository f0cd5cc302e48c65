#pragma once

#include <string_view>

namespace dxf {

class ObjectWriter;

/// Writes a text in lines of 250 characters: all but the last under @p firstCode.
void writeLongText(ObjectWriter& writer, int firstCode, int lastCode, std::u16string_view text);

} // namespace dxf
