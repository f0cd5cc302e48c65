#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <base/tv_string.h>
#include <core/apart_work.h>

class TvSmDatabase;

namespace publish {

/// Gives a menu the names of page setups without waiting for a folder that does not answer: the
/// drawing is looked for and read in another thread, and what came of it is remembered.
class PageSetupSource
{
public:
    /// @param waitMs  how long one question may take; core::ApartWork::kForEver: until it is
    /// answered.
    explicit PageSetupSource(int waitMs) : m_waitMs(waitMs) {}
    ~PageSetupSource();
    PageSetupSource(const PageSetupSource&) = delete;
    PageSetupSource& operator=(const PageSetupSource&) = delete;

    /// Those of the drawing that a set names for its page setups, see pageSetupNames(), as it is
    /// now where it is open. Empty without one, and when it cannot be read. While there is no
    /// answer: those that were last known of it.
    std::vector<TvString> names(const TvSmDatabase& database);

private:
    struct Known {
        std::vector<TvString> places; ///< where the drawing was looked for
        TvString path;                ///< where it is
        std::uint64_t time = 0;       ///< when it was changed
        std::int64_t size = -1;       ///< in bytes
        std::vector<TvString> names;
    };
    struct Shared;

    int m_waitMs;
    Known m_known;
    std::shared_ptr<Shared> m_asked; // the thread's, too
    std::optional<core::ApartWork> m_work;
};

} // namespace publish
