#pragma once

#include <base/tv_string.h>

/// The run-time class of an object: a name and a parent. One instance for each class, alive as long
/// as the program; compared by address.
class TvRxClass
{
public:
    constexpr TvRxClass(const TvChar* name, const TvRxClass* parent)
        : m_name(name), m_parent(parent)
    {
    }
    TvRxClass(const TvRxClass&) = delete;
    TvRxClass& operator=(const TvRxClass&) = delete;

    const TvChar* name() const { return m_name; }
    /// Null for the root class.
    const TvRxClass* myParent() const { return m_parent; }
    /// True for the class itself and for each class above it; false for null.
    bool isDerivedFrom(const TvRxClass* other) const
    {
        for (const TvRxClass* at = this; at; at = at->m_parent)
            if (at == other)
                return other != nullptr;
        return false;
    }

private:
    const TvChar* m_name;      // literal
    const TvRxClass* m_parent; // not owned; static
};
