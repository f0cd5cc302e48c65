#include "thumbnails.h"

#include "database_impl.h"

#include <db/tv_db_dictionary.h>
#include <db/tv_db_xrecord.h>

namespace db {

namespace {

constexpr int kBytesCode = 310;
constexpr std::uint8_t kPngStart[] = {0x89, 'P', 'N', 'G'};
constexpr std::uint8_t kWmfStart[] = {0xD7, 0xCD, 0xC6, 0x9A};
constexpr std::uint8_t kDibStart[] = {40, 0, 0, 0}; // the size of a bitmap's info header
constexpr std::size_t kDibHeaderSize = 40;

template <std::size_t N>
bool beginsWith(std::span<const std::uint8_t> bytes, const std::uint8_t (&start)[N])
{
    return bytes.size() >= N && std::equal(start, start + N, bytes.begin());
}

std::vector<std::uint8_t> bytesOfRecord(TvDbObjectId id)
{
    std::vector<std::uint8_t> bytes;
    const TvDbObjectPointer<TvDbXrecord> record(id, TvDb::kForNotify);
    if (!record)
        return bytes;
    const ArrayView items = record->fields().structure("content").array("items");
    for (std::uint32_t i = 0; i < items.size(); ++i)
        if (items[i].integer("code") == kBytesCode) {
            const std::span<const std::uint8_t> piece = items[i].bytes("bytes");
            bytes.insert(bytes.end(), piece.begin(), piece.end());
        }
    return bytes;
}

} // namespace

Preview previewFromBytes(std::span<const std::uint8_t> bytes)
{
    Preview preview;
    if (beginsWith(bytes, kDibStart) && bytes.size() > kDibHeaderSize)
        preview.kind = Preview::Kind::Bmp;
    else if (beginsWith(bytes, kPngStart))
        preview.kind = Preview::Kind::Png;
    else if (beginsWith(bytes, kWmfStart))
        preview.kind = Preview::Kind::Wmf;
    if (preview.kind != Preview::Kind::None)
        preview.bytes.assign(bytes.begin(), bytes.end());
    return preview;
}

Preview thumbnailOf(const TvDbObject& object, std::u16string_view nameEnd)
{
    if (!object.database())
        return {};
    const DatabaseImpl& database = object.database()->impl();
    if (database.file() && object.objectId().slot()->isStored) {
        Preview kept = database.file()->thumbnail(object.handle().value());
        if (kept.kind != Preview::Kind::None)
            return kept;
    }
    const TvDbObjectPointer<TvDbDictionary> dictionary(object.extensionDictionary(),
                                                       TvDb::kForNotify);
    if (dictionary)
        for (const auto& [name, id] : dictionary->entries())
            if (name.endsWithNoCase(nameEnd))
                return previewFromBytes(bytesOfRecord(id));
    return {};
}

} // namespace db
