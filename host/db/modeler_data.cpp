#include <db/modeler_data.h>

#include "database_impl.h"

namespace db {

namespace {

constexpr std::size_t kLongestText = 64U << 20;

/// Its bytes are kept mirrored, but for blanks and ends of lines.
std::vector<std::uint8_t> textOf(const RecordView& solid)
{
    constexpr std::uint8_t kLastPlain = 32, kMirror = 159;
    std::vector<std::uint8_t> text;
    const ArrayView blocks = solid.array("sat");
    for (std::uint32_t i = 0; i < blocks.size() && text.size() < kLongestText; ++i)
        for (const std::uint8_t byte : blocks[i].bytes("data"))
            text.push_back(byte > kLastPlain ? static_cast<std::uint8_t>(kMirror - byte) : byte);
    return text;
}

} // namespace

std::vector<std::uint8_t> modelerData(const TvDbEntity& entity)
{
    const RecordView fields = entity.fields();
    if (fields.flag("has_binary")) {
        const DrawingFile* const file =
            entity.database() ? entity.database()->impl().file() : nullptr;
        const bool isStored = file && entity.objectId().slot()->isStored;
        return isStored ? file->modelerData(entity.handle().value()) : std::vector<std::uint8_t>();
    }
    if (const auto binary = fields.bytes("sab"); !binary.empty())
        return {binary.begin(), binary.end()};
    return textOf(fields);
}

} // namespace db
