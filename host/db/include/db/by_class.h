#pragma once

#include <array>
#include <cstdint>
#include <unordered_map>

#include <db/schema.h>

namespace db {

/// What somebody knows of each class of objects, found quickly while many objects of a few classes
/// take turns.
///
/// What is found stays where it is. @note not for several threads at once.
template <class T>
class ByClass
{
public:
    /// What is known of @p of; @p make makes it from the class at the first question.
    template <class Make>
    T& of(const ClassDef& of, const Make& make)
    {
        Last& last = m_last[placeOf(of)];
        if (last.of != &of)
            last = {&of, &found(of, make)};
        return *last.known;
    }

private:
    struct Last {
        const ClassDef* of = nullptr;
        T* known = nullptr; // in m_all
    };

    static std::size_t placeOf(const ClassDef& of)
    {
        return static_cast<std::size_t>(
            reinterpret_cast<std::uintptr_t>(&of) / alignof(ClassDef) * 0x9E3779B97F4A7C15u >> 58);
    }

    template <class Make>
    T& found(const ClassDef& of, const Make& make)
    {
        auto at = m_all.find(&of);
        if (at == m_all.end())
            at = m_all.emplace(&of, make(of)).first;
        return at->second;
    }

    std::unordered_map<const ClassDef*, T> m_all;
    std::array<Last, 64> m_last; // of those asked for last, by their addresses
};

} // namespace db
