#include "picture_sources.h"

#include <algorithm>
#include <array>

#include <base/clock.h>
#include <base/file_access.h>
#include <base/file_ops.h>

#include "jpeg_picture.h"
#include "named_files.h"

namespace gs {

namespace {

constexpr std::int64_t kLargestFile = 64 << 20;
constexpr std::array<std::uint8_t, 8> kPng{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::array<std::uint8_t, 3> kJpeg{0xFF, 0xD8, 0xFF};
constexpr std::size_t kBitmapFileHeader = 14; // before the info header, in files
constexpr int kMostTries = 64;                // places in bytes that look like a picture

std::shared_ptr<const Picture> pictureFrom(std::span<const std::uint8_t> bytes,
                                           db::Preview::Kind kind)
{
    db::Preview preview;
    preview.kind = kind;
    preview.bytes.assign(bytes.begin(), bytes.end());
    Picture picture = pictureFromPreview(preview);
    return picture.isEmpty() ? nullptr : std::make_shared<const Picture>(std::move(picture));
}

std::shared_ptr<const Picture> pictureOfBytes(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() > kPng.size() && std::equal(kPng.begin(), kPng.end(), bytes.begin()))
        return pictureFrom(bytes, db::Preview::Kind::Png);
    if (bytes.size() > kBitmapFileHeader && bytes[0] == 'B' && bytes[1] == 'M')
        return pictureFrom(bytes.subspan(kBitmapFileHeader), db::Preview::Kind::Bmp);
    if (bytes.size() > kJpeg.size() && std::equal(kJpeg.begin(), kJpeg.end(), bytes.begin()))
        if (Picture picture = pictureFromJpeg(bytes); !picture.isEmpty())
            return std::make_shared<const Picture>(std::move(picture));
    return nullptr;
}

bool looksLikeInfoHeader(std::span<const std::uint8_t> bytes)
{
    constexpr std::size_t kSize = 40, kPlanesAt = 12;
    return bytes.size() > kSize && bytes[0] == kSize && bytes[1] == 0 && bytes[2] == 0 &&
           bytes[3] == 0 && bytes[kPlanesAt] == 1 && bytes[kPlanesAt + 1] == 0;
}

} // namespace

std::shared_ptr<const Picture> pictureOfFile(TvDbDatabase& database, const TvString& name)
{
    base::FileAccess files(base::systemFileOps(), base::systemClock());
    for (const TvString& place : placesOf(database, name)) {
        const auto bytes = files.readFile(place, kLargestFile);
        if (!bytes)
            continue;
        const auto* const first = reinterpret_cast<const std::uint8_t*>(bytes->data());
        if (auto picture = pictureOfBytes({first, bytes->size()}); picture)
            return picture;
    }
    return nullptr;
}

std::shared_ptr<const Picture> pictureWithin(std::span<const std::uint8_t> bytes)
{
    int tries = 0;
    for (std::size_t at = 0; at + 1 < bytes.size() && tries < kMostTries; ++at) {
        const auto rest = bytes.subspan(at);
        if (looksLikeInfoHeader(rest)) {
            ++tries;
            if (auto picture = pictureFrom(rest, db::Preview::Kind::Bmp); picture)
                return picture;
        } else if ((rest[0] == kPng[0] && rest[1] == kPng[1]) ||
                   (rest.size() > 2 && rest[0] == kJpeg[0] && rest[1] == kJpeg[1] &&
                    rest[2] == kJpeg[2])) {
            ++tries;
            if (auto picture = pictureOfBytes(rest); picture)
                return picture;
        }
    }
    return nullptr;
}

} // namespace gs
