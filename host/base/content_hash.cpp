#include "base/content_hash.h"

#include <new>

#include <xxhash.h>

namespace base {

namespace {

ContentHash fromLibrary(XXH128_hash_t hash)
{
    return {hash.low64, hash.high64};
}

} // namespace

ContentHash hashOf(std::span<const std::byte> bytes)
{
    return fromLibrary(XXH3_128bits(bytes.data(), bytes.size()));
}

/// The library's state wants an alignment that only its own allocator promises.
struct ContentHasher::State {
    State() : state(XXH3_createState())
    {
        if (!state)
            throw std::bad_alloc();
        XXH3_128bits_reset(state);
    }
    ~State() { XXH3_freeState(state); }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    XXH3_state_t* state; // owned
};

ContentHasher::ContentHasher() : m_state(std::make_unique<State>()) {}
ContentHasher::~ContentHasher() = default;

void ContentHasher::add(std::span<const std::byte> bytes)
{
    if (!bytes.empty())
        XXH3_128bits_update(m_state->state, bytes.data(), bytes.size());
}

ContentHash ContentHasher::result() const
{
    return fromLibrary(XXH3_128bits_digest(m_state->state));
}

} // namespace base
