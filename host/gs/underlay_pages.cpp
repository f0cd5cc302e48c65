#include "underlay_pages.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <mutex>

#include <base/clock.h>
#include <base/confined_program.h>
#include <base/file_access.h>
#include <base/path_rules.h>

#include "named_files.h"
#include "page/page_answer.h"

namespace gs {

namespace {

constexpr std::int64_t kLargestFile = 64 << 20;
constexpr std::int64_t kFewestPixels = 10'000;        // a page of fewer says nothing
constexpr std::chrono::milliseconds kLongest{15'000}; // the reader's own limit comes later
constexpr std::u16string_view kReader = u"tarvik-page";

/// A file as it was when a page of it was read.
struct FileState {
    TvString path;
    std::uint64_t modified = 0;
    std::int64_t size = 0;
    friend auto operator<=>(const FileState&, const FileState&) = default;
};

/// The pages that lists of this process hold at the moment.
class HeldPages
{
public:
    using Key = std::tuple<FileState, TvString, PictureTone>;

    UnderlayPage find(const Key& key)
    {
        const std::lock_guard lock(m_mutex);
        const auto at = m_pages.find(key);
        if (at == m_pages.end())
            return {};
        return {at->second.picture.lock(), at->second.width, at->second.height};
    }
    void add(const Key& key, const UnderlayPage& page)
    {
        const std::lock_guard lock(m_mutex);
        std::erase_if(m_pages, [](const auto& one) { return one.second.picture.expired(); });
        m_pages[key] = {page.picture, page.width, page.height};
    }

private:
    struct Held {
        std::weak_ptr<const Picture> picture;
        double width = 0, height = 0;
    };
    std::mutex m_mutex;
    std::map<Key, Held> m_pages;
};

HeldPages& heldPages()
{
    static HeldPages all;
    return all;
}

/// Where the reader of pages lies: beside this library.
TvString readerPath()
{
    static const TvString folder = base::folderOfCode(reinterpret_cast<const void*>(&readerPath));
    return folder.isEmpty() ? folder : base::PathRules::native().join(folder, TvString(kReader));
}

/// What the reader wrote is believed in nothing.
UnderlayPage pageFrom(const std::vector<std::byte>& bytes, std::int64_t mostPixels,
                      const PictureTone& tone)
{
    PageAnswer answer;
    if (bytes.size() < sizeof answer)
        return {};
    std::memcpy(&answer, bytes.data(), sizeof answer);
    const std::uint64_t count = std::uint64_t(answer.width) * answer.height;
    const auto isLength = [](double inches) { return inches > 0 && std::isfinite(inches); };
    if (answer.width == 0 || answer.height == 0 || answer.width > kLargestSide ||
        answer.height > kLargestSide || count > static_cast<std::uint64_t>(mostPixels) ||
        bytes.size() != sizeof answer + count * sizeof(std::uint32_t) ||
        !isLength(answer.widthInch) || !isLength(answer.heightInch))
        return {};
    auto picture = std::make_shared<Picture>();
    picture->width = static_cast<int>(answer.width);
    picture->height = static_cast<int>(answer.height);
    picture->isTransparent = true;
    picture->pixels.resize(count);
    std::memcpy(picture->pixels.data(), bytes.data() + sizeof answer,
                count * sizeof(std::uint32_t));
    applyTone(*picture, tone);
    picture->onDark = std::make_shared<PictureOnDark>();
    return {std::move(picture), answer.widthInch, answer.heightInch};
}

} // namespace

const UnderlayPage& UnderlayPages::of(TvDbDatabase& database, const TvString& file,
                                      const TvString& page, const PictureTone& tone)
{
    const auto [at, isNew] = m_pages.try_emplace(Key(&database, file, page, tone));
    if (isNew) {
        at->second = read(database, file, page, tone);
        if (const auto& picture = at->second.picture; picture)
            m_pixels += std::ssize(picture->pixels);
    }
    return at->second;
}

UnderlayPage UnderlayPages::read(TvDbDatabase& database, const TvString& file, const TvString& page,
                                 const PictureTone& tone)
{
    for (const TvString& path : placesOf(database, file))
        if (UnderlayPage found = pageOfFile(path, page, tone); found.picture)
            return found;
    return {};
}

UnderlayPage UnderlayPages::pageOfFile(const TvString& path, const TvString& page,
                                       const PictureTone& tone)
{
    const std::int64_t most = std::min((kMostPixels - m_pixels) / 4, kMostPagePixels);
    base::FileAccess files(base::systemFileOps(), base::systemClock());
    const FileState state{path, files.getModificationTime(path), files.getFileSize(path)};
    if (state.size <= 0 || most < kFewestPixels || m_ended >= kMostEnded || readerPath().isEmpty())
        return {};
    const HeldPages::Key key(state, page, tone);
    if (UnderlayPage held = heldPages().find(key); held.picture)
        return held;
    const auto document = files.readFile(path, kLargestFile);
    if (!document)
        return {};
    base::ProgramLimits limits;
    limits.time = kLongest;
    limits.stop = m_stop;
    limits.output = sizeof(PageAnswer) + sizeof(std::uint32_t) * std::uint64_t(most);
    const auto answer =
        base::runConfined(readerPath(), {page.utf8(), std::to_string(most)}, *document, limits);
    m_ended += answer.status().failure() == base::Failure::Interrupted ? 1 : 0;
    if (!answer)
        return {};
    UnderlayPage result = pageFrom(*answer, most, tone);
    if (!result.picture)
        return {};
    heldPages().add(key, result);
    return result;
}

} // namespace gs
