#pragma once

#include <db/drawing_file.h>

namespace dxf {

/// Drawings as text: groups of a code and a value, AC1015 to AC1032.
///
/// Reading takes the binary form too, and files that leave out what follows from the rest (handles,
/// tables, layouts): it is made. Objects of classes that are not known are kept as their groups,
/// and so are groups that are not known of an object that is. Writing gives text, in the version's
/// coding. Objects that are only known as bits of another format cannot be written.
class DxfCodec final : public db::Codec
{
public:
    db::FileFormat format() const override { return db::FileFormat::Dxf; }
    bool recognises(std::span<const std::uint8_t> head) const override;
    base::Result<std::unique_ptr<db::DrawingFile>>
    open(std::vector<std::uint8_t> file) const override;
    base::Result<std::vector<std::uint8_t>> write(const db::Contents& contents,
                                                  db::Version version) const override;
};

/// Makes the codec known to all databases. Called once at start.
void install();

} // namespace dxf
