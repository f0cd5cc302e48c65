#pragma once

#include <db/drawing_file.h>

namespace dwg {

/// Drawings as files of the format DWG, AC1015 to AC1032.
///
/// Opening reads the shell of the file and its map; objects are unpacked and decoded when they are
/// asked for. Writing in the version of the origin changes only what differs, bit for bit; into
/// another version everything is decoded, converted and encoded anew.
class DwgCodec final : public db::Codec
{
public:
    db::FileFormat format() const override { return db::FileFormat::Dwg; }
    bool recognises(std::span<const std::uint8_t> head) const override;
    base::Result<std::unique_ptr<db::DrawingFile>>
    open(std::vector<std::uint8_t> file) const override;
    base::Result<std::vector<std::uint8_t>> write(const db::Contents& contents,
                                                  db::Version version) const override;
    db::Preview quickPreview(const ReadAt& read) const override;
};

/// Makes the codec known to all databases. Called once, by whoever wires the program.
void install();

} // namespace dwg
