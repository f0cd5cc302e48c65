#pragma once

#include <memory>

/// Walks a collection in its order. Owned by the caller who asked for it, and deleted by him.
///
/// Reading does not disturb a walk. Nothing adds to or removes from a collection during one: who
/// removes items gathers them first. Should it happen all the same, the walk may end early or skip;
/// it never touches what is gone.
template <class Item>
class TvSmEnumerator
{
public:
    virtual ~TvSmEnumerator() = default;
    /// The next item; null at the end, and from then on.
    virtual Item* next() = 0;
    /// Back before the first item.
    virtual void reset() = 0;
};

namespace sm {

/// The items of an enumerator in a range-for. Deletes the enumerator; a null one is an empty range.
///
///     for (TvSmComponent* child : sm::each(subset->getSheetEnumerator()))
template <class Item>
class EachItem
{
public:
    explicit EachItem(TvSmEnumerator<Item>* owned) : m_items(owned) {}

    class Iterator
    {
    public:
        explicit Iterator(TvSmEnumerator<Item>* items)
            : m_items(items), m_item(items ? items->next() : nullptr)
        {
        }
        Item* operator*() const { return m_item; }
        Iterator& operator++()
        {
            m_item = m_items->next();
            return *this;
        }
        bool operator!=(const Iterator& other) const { return m_item != other.m_item; }

    private:
        TvSmEnumerator<Item>* m_items; // not owned; the range owns it
        Item* m_item;
    };
    Iterator begin()
    {
        if (m_items)
            m_items->reset();
        return Iterator(m_items.get());
    }
    Iterator end() { return Iterator(nullptr); }

private:
    std::unique_ptr<TvSmEnumerator<Item>> m_items;
};

template <class Item>
EachItem<Item> each(TvSmEnumerator<Item>* owned)
{
    return EachItem<Item>(owned);
}

} // namespace sm
