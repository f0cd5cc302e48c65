#pragma once

#include <atomic>
#include <map>
#include <tuple>

#include <db/tv_db_database.h>
#include <gs/picture.h>

#include "picture_tone.h"

namespace gs {

/// A page of a document; without a picture it is not shown.
struct UnderlayPage {
    std::shared_ptr<const Picture> picture; ///< its paper is transparent
    double width = 0, height = 0;           ///< inches
};

/// The pages of documents that one list shows. Each is read once, in a process of its own
/// (tarvik-page), whatever the document does to who reads it.
///
/// Pages that some list still holds are shared with it, as long as their file is the same.
class UnderlayPages
{
public:
    /// @param stop  as in ListLimits.
    explicit UnderlayPages(const std::atomic<bool>* stop) : m_stop(stop) {}

    /// @param file  as @p database names it; looked for as all files are that it names.
    /// @param page  its number, from 1 on, or its label.
    const UnderlayPage& of(TvDbDatabase& database, const TvString& file, const TvString& page,
                           const PictureTone& tone);

private:
    using Key = std::tuple<TvDbDatabase*, TvString, TvString, PictureTone>;

    UnderlayPage read(TvDbDatabase& database, const TvString& file, const TvString& page,
                      const PictureTone& tone);
    UnderlayPage pageOfFile(const TvString& path, const TvString& page, const PictureTone& tone);

    // All pages of a list together; late ones are less fine rather than missing.
    static constexpr std::int64_t kMostPixels = 64'000'000;
    // Documents that take too long: whoever waits for the list should not wait for more of them.
    static constexpr int kMostEnded = 2;

    const std::atomic<bool>* const m_stop; // not owned; may be null
    std::map<Key, UnderlayPage> m_pages;   // also those that are not shown
    std::int64_t m_pixels = 0;             // of the pages
    int m_ended = 0;                       // readers that took too long
};

} // namespace gs
