#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <span>

namespace db {

/// The words of a record: one block of memory, grown by appending, copied in one go.
///
/// Everything inside refers to everything else by position, so the block may move.
class WordBuffer
{
public:
    WordBuffer() = default;
    WordBuffer(const WordBuffer& other) { assign(other.words()); }
    WordBuffer(WordBuffer&& other) noexcept { swap(other); }
    WordBuffer& operator=(const WordBuffer& other)
    {
        if (this != &other)
            assign(other.words());
        return *this;
    }
    WordBuffer& operator=(WordBuffer&& other) noexcept
    {
        swap(other);
        return *this;
    }

    std::uint64_t* data() { return m_words.get(); }
    const std::uint64_t* data() const { return m_words.get(); }
    std::uint32_t size() const { return m_size; }
    std::span<const std::uint64_t> words() const { return {m_words.get(), m_size}; }

    /// Exactly @p words, in the memory that is there if it is enough. With room for @p more.
    void assign(std::span<const std::uint64_t> words, std::uint32_t more = 0)
    {
        m_size = 0;
        reserve(static_cast<std::uint32_t>(words.size()) + more);
        if (!words.empty())
            std::memcpy(m_words.get(), words.data(), words.size_bytes());
        m_size = static_cast<std::uint32_t>(words.size());
    }

    /// @p count more words, holding anything; the position of the first.
    std::uint32_t append(std::uint32_t count)
    {
        if (count > m_capacity - m_size)
            grow(count);
        const std::uint32_t at = m_size;
        m_size += count;
        return at;
    }

    void swap(WordBuffer& other) noexcept
    {
        m_words.swap(other.m_words);
        std::swap(m_size, other.m_size);
        std::swap(m_capacity, other.m_capacity);
    }

private:
    void reserve(std::uint32_t capacity)
    {
        if (capacity <= m_capacity)
            return;
        std::unique_ptr<std::uint64_t[]> words(new std::uint64_t[capacity]);
        if (m_size)
            std::memcpy(words.get(), m_words.get(), m_size * sizeof(std::uint64_t));
        m_words = std::move(words);
        m_capacity = capacity;
    }
    void grow(std::uint32_t count);

    std::unique_ptr<std::uint64_t[]> m_words;
    std::uint32_t m_size = 0;
    std::uint32_t m_capacity = 0;
};

} // namespace db
