#pragma once

#include <cstdint>
#include <vector>

#include "sm/tv_sm_fwd.h"

namespace sm {

/// Objects by handle.
///
/// Handles count up from 1, so nearly all of them are places in one array; those of a file that
/// jumps far ahead are in an open-addressed table behind it. Nothing that a file holds can make a
/// search longer than a few steps.
class HandleIndex
{
public:
    TvSmPersist* find(std::uint64_t handle) const
    {
        if (handle < m_dense.size())
            return m_dense[static_cast<std::size_t>(handle)];
        return m_sparse.empty() ? nullptr : m_sparse[slotOf(handle)].object;
    }
    /// Makes room for handles that count up to @p last.
    void reserve(std::size_t last)
    {
        if (last >= m_dense.size())
            growDense(last + 1);
    }
    /// Puts @p object in the place of whatever had the handle. @pre handle != 0
    void set(std::uint64_t handle, TvSmPersist* object)
    {
        if (handle >= m_dense.size() && handle < 4 * (m_count + 1024))
            growDense(static_cast<std::size_t>(handle) + 1);
        if (handle < m_dense.size())
            m_dense[static_cast<std::size_t>(handle)] = object;
        else
            setSparse(handle, object);
        ++m_count;
    }
    /// Forgets the handle if it is @p object's.
    void forget(std::uint64_t handle, const TvSmPersist* object)
    {
        if (handle == 0 || find(handle) != object)
            return;
        if (handle < m_dense.size())
            m_dense[static_cast<std::size_t>(handle)] = nullptr;
        else
            m_sparse[slotOf(handle)].object =
                nullptr; // the handle stays, so that searches go on behind it
    }

private:
    struct Slot {
        std::uint64_t handle = 0;
        TvSmPersist* object = nullptr;
    };
    /// The slot of @p handle, or the free one where it would go.
    std::size_t slotOf(std::uint64_t handle) const
    {
        std::size_t at =
            static_cast<std::size_t>((handle * 0x9E3779B97F4A7C15u) >> 20) & (m_sparse.size() - 1);
        while (m_sparse[at].handle != 0 && m_sparse[at].handle != handle)
            at = (at + 1) & (m_sparse.size() - 1);
        return at;
    }
    void setSparse(std::uint64_t handle, TvSmPersist* object)
    {
        if ((m_sparseUsed + 1) * 2 > m_sparse.size())
            rehash(m_sparse.empty() ? 64 : m_sparse.size() * 2);
        Slot& slot = m_sparse[slotOf(handle)];
        m_sparseUsed += slot.handle == 0;
        slot = {handle, object};
    }
    void rehash(std::size_t size)
    {
        const std::vector<Slot> old = std::move(m_sparse);
        m_sparse.assign(size, Slot());
        m_sparseUsed = 0;
        for (const Slot& slot : old)
            if (slot.handle != 0 && slot.handle >= m_dense.size())
                setSparse(slot.handle, slot.object);
    }
    void growDense(std::size_t needed)
    {
        m_dense.resize(std::max(needed, m_dense.size() * 2), nullptr);
        for (const Slot& slot : m_sparse)
            if (slot.handle != 0 && slot.handle < m_dense.size())
                m_dense[static_cast<std::size_t>(slot.handle)] = slot.object;
        if (!m_sparse.empty())
            rehash(m_sparse.size());
    }

    std::vector<TvSmPersist*> m_dense;
    std::vector<Slot> m_sparse; // size is a power of two
    std::size_t m_sparseUsed = 0;
    std::size_t m_count = 0; // sets so far: the density that the array may count on
};

} // namespace sm
