#pragma once

#include <db/group_items.h>
#include <db/record_editor.h>
#include <db/resbuf.h>

namespace db {

/// Appends items to a chain, and releases it unless somebody takes it.
class ChainBuilder
{
public:
    /// A new last item with this code.
    resbuf& add(int code)
    {
        *m_end = tvutNewRb(code);
        resbuf& item = **m_end;
        m_end = &item.rbnext;
        return item;
    }
    resbuf* take()
    {
        m_end = nullptr; // ends here
        return std::exchange(m_first, nullptr);
    }

    ChainBuilder() = default;
    ChainBuilder(const ChainBuilder&) = delete;
    ChainBuilder& operator=(const ChainBuilder&) = delete;
    ~ChainBuilder() { tvutRelRb(m_first); }

private:
    resbuf* m_first = nullptr; // owned
    resbuf** m_end = &m_first;
};

/// The longest texts that an item can hold, in units, in any coding of the version: where letters
/// are bytes of a code page, one that has none there takes seven ("\U+20AC").
bool fitsItemText(std::u16string_view text, Version version, std::size_t limit);

/// Puts the value of a record's item of that kind into @p out, whose code is set.
void itemToChain(const RecordView& item, ItemKind kind, resbuf& out);

/// Whether the value of @p in can be that of an item of this kind.
bool canBeItem(const resbuf& in, ItemKind kind, Version version);

/// Puts code and value of @p in into a record's new item. @pre canBeItem()
void itemFromChain(const resbuf& in, ItemKind kind, RecordEditor item);

} // namespace db
