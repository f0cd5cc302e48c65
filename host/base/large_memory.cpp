#include "base/large_memory.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <utility>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace base {

namespace {

constexpr std::size_t kHugePage = 2u << 20;
constexpr std::size_t kSmallestHuge = 2 * kHugePage;
#if defined(KV_SANITIZED)
constexpr std::size_t kMostKept = 0; // so that whoever looks at it after it went is found out
#else
constexpr std::size_t kMostKept = 64u << 20;
#endif

// The pieces that were given back last, for the next that need as much: most of what a piece costs
// is its first touch. Each begins with its own size.
std::array<std::atomic<std::uint8_t*>, 4> g_kept;
std::atomic<unsigned> g_oldest; // among them, about

void wishHugePages([[maybe_unused]] std::uint8_t* bytes, [[maybe_unused]] std::size_t size)
{
#if defined(__linux__)
    (void)::madvise(bytes, size, MADV_HUGEPAGE); // a wish: small pages do as well
#endif
}

void letSystemTake([[maybe_unused]] std::uint8_t* bytes, [[maybe_unused]] std::size_t size)
{
#if defined(__linux__) && defined(MADV_FREE)
    (void)::madvise(bytes, size, MADV_FREE); // when it runs short
#endif
}

std::size_t sizeOf(const std::uint8_t* piece)
{
    std::size_t size = 0;
    std::memcpy(&size, piece, sizeof size);
    return size;
}

std::uint8_t* takeKept(std::size_t size)
{
    for (auto& place : g_kept) {
        std::uint8_t* const piece = place.exchange(nullptr);
        if (piece && sizeOf(piece) == size)
            return piece;
        std::uint8_t* nothing = nullptr;
        if (piece && !place.compare_exchange_strong(nothing, piece))
            std::free(piece); // somebody else put one there meanwhile
    }
    return nullptr;
}

/// @return what has to go for it; null when there was room.
std::uint8_t* keep(std::uint8_t* piece)
{
    for (auto& place : g_kept) {
        std::uint8_t* nothing = nullptr;
        if (place.compare_exchange_strong(nothing, piece))
            return nullptr;
    }
    return g_kept[g_oldest++ % g_kept.size()].exchange(piece);
}

std::uint8_t* takeHuge(std::size_t size)
{
    if (std::uint8_t* const kept = takeKept(size))
        return kept;
    void* const bytes = std::aligned_alloc(kHugePage, size);
    if (bytes)
        wishHugePages(static_cast<std::uint8_t*>(bytes), size);
    return static_cast<std::uint8_t*>(bytes);
}

std::size_t wholePages(std::size_t size)
{
    const std::size_t whole = (size + kHugePage - 1) / kHugePage * kHugePage;
    return size >= kSmallestHuge && whole >= size ? whole : 0;
}

} // namespace

void FreeLargeMemory::operator()(std::uint8_t* bytes) const
{
    if (bytes && size != 0 && size <= kMostKept) {
        letSystemTake(bytes, size);
        std::memcpy(bytes, &size, sizeof size);
        bytes = keep(bytes);
    }
    std::free(bytes);
}

FreeLargeMemory deleterOf(std::size_t size)
{
    return {wholePages(size)};
}

LargeMemory makeLargeMemory(std::size_t size, bool isZero)
{
    if (isZero)
        return LargeMemory(static_cast<std::uint8_t*>(std::calloc(size, 1)));
    if (const std::size_t whole = wholePages(size); whole != 0)
        return LargeMemory(takeHuge(whole), FreeLargeMemory{whole});
    return LargeMemory(static_cast<std::uint8_t*>(std::malloc(size)));
}

} // namespace base
