#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace base {

/// 128-bit hash (XXH3) of a file's content: what identifies a version of it, since times and sizes
/// do not.
struct ContentHash {
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    friend bool operator==(const ContentHash&, const ContentHash&) = default;
};

ContentHash hashOf(std::span<const std::byte> bytes);

/// The same hash for content that comes in pieces: any division into pieces gives what hashOf()
/// gives.
class ContentHasher
{
public:
    ContentHasher();
    ~ContentHasher();
    ContentHasher(const ContentHasher&) = delete;
    ContentHasher& operator=(const ContentHasher&) = delete;

    void add(std::span<const std::byte> bytes);
    /// Of all that was added so far.
    ContentHash result() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace base
