#include "picture_sources.h"

#include <algorithm>
#include <array>

#include <base/clock.h>
#include <base/file_access.h>
#include <base/file_ops.h>
#include <base/path_rules.h>

namespace gs {

namespace {

constexpr std::int64_t kLargestFile = 64 << 20;
constexpr std::array<std::uint8_t, 8> kPng{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
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
    return nullptr;
}

/// The names under which the file may be found, in the order in which they are tried.
std::vector<TvString> placesOf(TvDbDatabase& database, const TvString& name)
{
    const base::PathRules& rules = base::PathRules::native();
    std::vector<TvString> places;
    if (name.isEmpty() || rules.isNetwork(name) || base::PathRules::isUrl(name))
        return places;
    const TvString folder = rules.folderOf(database.getFilename());
    if (rules.isAbsolute(name))
        places.push_back(name);
    if (!folder.isEmpty() && !rules.isNetwork(folder)) {
        if (!rules.isAbsolute(name))
            places.push_back(rules.normalise(rules.join(folder, name)));
        places.push_back(rules.join(folder, rules.fileNameOf(name)));
    }
    return places;
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
        } else if (rest[0] == kPng[0] && rest[1] == kPng[1]) {
            ++tries;
            if (auto picture = pictureOfBytes(rest); picture)
                return picture;
        }
    }
    return nullptr;
}

} // namespace gs
