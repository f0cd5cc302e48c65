#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

#include <base/large_memory.h>

namespace gs {

/// A row of plain values that grows at its end.
///
/// Unlike a vector it grows where it lies when the system can do that; large ones lie in large
/// pages, and room that is never used costs nothing.
template <class T>
class GrowingBuffer
{
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

public:
    GrowingBuffer() = default;
    ~GrowingBuffer()
    {
        if (!m_large)
            std::free(m_data);
    }
    GrowingBuffer(const GrowingBuffer& other) { append(other.m_data, other.m_size); }
    GrowingBuffer(GrowingBuffer&& other) noexcept { swap(other); }
    GrowingBuffer& operator=(GrowingBuffer other) noexcept
    {
        swap(other);
        return *this;
    }
    void swap(GrowingBuffer& other) noexcept
    {
        std::swap(m_data, other.m_data);
        m_large.swap(other.m_large);
        std::swap(m_size, other.m_size);
        std::swap(m_capacity, other.m_capacity);
    }

    std::size_t size() const { return m_size; }
    std::size_t capacity() const { return m_capacity; }
    T& operator[](std::size_t index) { return m_data[index]; }
    const T& operator[](std::size_t index) const { return m_data[index]; }
    T& back() { return m_data[m_size - 1]; }
    T* begin() { return m_data; }
    T* end() { return m_data + m_size; }
    const T* begin() const { return m_data; }
    const T* end() const { return m_data + m_size; }
    std::span<const T> span() const { return {m_data, m_size}; }

    /// Room for @p count more, whose content is the caller's to write at once.
    /// @throws std::bad_alloc  and is what it was.
    T* grow(std::size_t count)
    {
        if (m_size + count > m_capacity)
            reserve(m_size + count);
        T* const room = m_data + m_size;
        m_size += count;
        return room;
    }
    void push_back(const T& value)
    {
        const T copy = value; // it may lie in here
        *grow(1) = copy;
    }
    void append(const T* values, std::size_t count)
    {
        T* const room = grow(count);
        for (std::size_t i = 0; i < count; ++i)
            room[i] = values[i];
    }
    /// Room for so many in all, as far as the memory is there.
    void expect(std::size_t count)
    {
        if (count > m_capacity)
            moveTo(count);
    }
    /// Gives up what is behind.
    void shrinkTo(std::size_t size) { m_size = size < m_size ? size : m_size; }

private:
    void reserve(std::size_t wanted)
    {
        constexpr std::size_t kLeast = 64;
        std::size_t capacity = m_capacity + m_capacity / 2;
        capacity = capacity < kLeast ? kLeast : capacity;
        capacity = capacity < wanted ? wanted : capacity;
        if (!moveTo(capacity))
            throw std::bad_alloc();
    }
    /// False when there is no memory; nothing has changed then.
    bool moveTo(std::size_t capacity)
    {
        constexpr std::size_t kLarge = 4U << 20; // bytes
        if (capacity * sizeof(T) < kLarge) {
            void* const data = std::realloc(static_cast<void*>(m_data), capacity * sizeof(T));
            if (!data)
                return false;
            m_data = static_cast<T*>(data);
        } else {
            base::LargeMemory large = base::makeLargeMemory(capacity * sizeof(T), false);
            if (!large)
                return false;
            if (m_size > 0)
                std::memcpy(large.get(), m_data, m_size * sizeof(T));
            if (!m_large)
                std::free(m_data);
            m_data = reinterpret_cast<T*>(large.get());
            m_large = std::move(large);
        }
        m_capacity = capacity;
        return true;
    }

    T* m_data = nullptr;       // owned, unless m_large holds it
    base::LargeMemory m_large; // null while it is small
    std::size_t m_size = 0, m_capacity = 0;
};

} // namespace gs
