#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace base {

struct FreeLargeMemory {
    std::size_t size = 0; ///< of a piece that may be kept for the next one
    void operator()(std::uint8_t* bytes) const;
};

/// Bytes that no one has cleared or copied, for contents that are made piece by piece.
using LargeMemory = std::unique_ptr<std::uint8_t, FreeLargeMemory>;

/// Memory of @p size bytes, which the system gives as it is touched: in few large pieces where
/// there is much of it, since each piece costs a fault. Of what is given back, the last few
/// pieces are kept for the next that are as large, as long as the system has memory to spare.
///
/// @param isZero  whether the bytes must be zero; else they are anything.
/// @return null when there is no such memory.
LargeMemory makeLargeMemory(std::size_t size, bool isZero);
/// What the deleter of a piece of @p size bytes has to know.
FreeLargeMemory deleterOf(std::size_t size);

/// For vectors of plain values that may be large and are written by whoever resizes them: elements
/// that get no value hold anything.
template <class T>
struct LargeAllocator {
    using value_type = T;

    LargeAllocator() = default;
    template <class Other>
    LargeAllocator(const LargeAllocator<Other>&)
    {
    }

    T* allocate(std::size_t count)
    {
        if (count > static_cast<std::size_t>(-1) / sizeof(T))
            throw std::bad_array_new_length();
        LargeMemory memory = makeLargeMemory(count * sizeof(T), false);
        if (!memory)
            throw std::bad_alloc();
        return reinterpret_cast<T*>(memory.release());
    }
    void deallocate(T* values, std::size_t count)
    {
        deleterOf(count * sizeof(T))(reinterpret_cast<std::uint8_t*>(values));
    }
    template <class Other>
    void construct(Other* at)
    {
        ::new (static_cast<void*>(at)) Other; // no value
    }
    template <class Other, class... Arguments>
    void construct(Other* at, Arguments&&... arguments)
    {
        ::new (static_cast<void*>(at)) Other(std::forward<Arguments>(arguments)...);
    }

    friend bool operator==(const LargeAllocator&, const LargeAllocator&) { return true; }
};

} // namespace base
