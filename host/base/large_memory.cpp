#include "base/large_memory.h"

#include <cstdlib>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace base {

namespace {

#if defined(__linux__)

constexpr std::size_t kHugePage = 2u << 20;

std::uint8_t* takeMemory(std::size_t size)
{
    if (size < 2 * kHugePage)
        return static_cast<std::uint8_t*>(std::malloc(size));
    const std::size_t whole = (size + kHugePage - 1) / kHugePage * kHugePage;
    void* const bytes = whole >= size ? std::aligned_alloc(kHugePage, whole) : nullptr;
    if (bytes)
        (void)::madvise(bytes, whole, MADV_HUGEPAGE); // a wish: small pages do as well
    return static_cast<std::uint8_t*>(bytes);
}

#else

std::uint8_t* takeMemory(std::size_t size)
{
    return static_cast<std::uint8_t*>(std::malloc(size));
}

#endif

} // namespace

void FreeLargeMemory::operator()(std::uint8_t* bytes) const
{
    std::free(bytes);
}

LargeMemory makeLargeMemory(std::size_t size, bool isZero)
{
    return LargeMemory(isZero ? static_cast<std::uint8_t*>(std::calloc(size, 1))
                              : takeMemory(size));
}

} // namespace base
