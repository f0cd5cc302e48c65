#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <variant>

#include <base/tv_string.h>
#include <db/record.h>
#include <db/tv_db_object_id.h>

/// One item of a chain: a group code and a value, whose kind follows from the code.
///
/// Chains are made with tvutBuildList or tvutNewRb and released whole with tvutRelRb; text and
/// bytes belong to their item.
struct resbuf {
    resbuf* rbnext = nullptr; ///< owned by the chain
    std::int16_t restype = 0; ///< the group code
    union Value {
        double rreal;
        double rpoint[3];
        std::int16_t rint;
        std::int32_t rlong;
        std::int64_t mnInt64;
        std::uint64_t rhandle; ///< of codes 105, 320 to 369, 390 to 399, 480, 481 and 1005
        TvChar* rstring;       ///< zero-terminated; never null for text codes; owned by the item
        struct {
            std::int32_t clen;
            std::uint8_t* buf; ///< owned by the item
        } rbinary;
        TvDbObjectId rlname; ///< only in lists for commands, code 5006
        Value() : rpoint{0, 0, 0} {}
    } resval;
};

/// What the value of an item is.
enum class TvResbufKind { None, Real, Point, Short, Long, Wide, Text, Handle, Binary, ObjectId };

/// The kind of value that items of this group code have: those of drawings (0 to 1071), and those
/// of commands' lists (5001 real, 5002 and 5009 point, 5003 short, 5005 text, 5006 object,
/// 5010 long).
TvResbufKind tvutResbufKind(int code);

/// An item of this code with value 0 or empty, in no chain.
resbuf* tvutNewRb(int code);
/// Releases the chain from @p chain on; null is nothing.
void tvutRelRb(resbuf* chain);
/// Replaces the text of an item.
void tvutSetText(resbuf& item, std::u16string_view text);
/// Replaces the bytes of an item.
void tvutSetBytes(resbuf& item, std::span<const std::uint8_t> bytes);
/// A copy of the whole chain.
resbuf* tvutCopyRb(const resbuf* chain);

namespace db {

/// A value on its way into an item; converted to the kind that the code wants.
using ItemValue = std::variant<std::int64_t, double, Point, std::u16string, TvDbObjectId>;

resbuf* buildList(std::span<const std::pair<int, ItemValue>> items);

inline ItemValue itemValue(double value)
{
    return value;
}
inline ItemValue itemValue(const Point& value)
{
    return value;
}
inline ItemValue itemValue(std::u16string_view value)
{
    return std::u16string(value);
}
inline ItemValue itemValue(const TvChar* value)
{
    return std::u16string(value ? value : u"");
}
inline ItemValue itemValue(const TvString& value)
{
    return std::u16string(value.view());
}
inline ItemValue itemValue(TvDbObjectId value)
{
    return value;
}
inline ItemValue itemValue(TvDbHandle value)
{
    return static_cast<std::int64_t>(value.value());
}
template <std::integral T>
ItemValue itemValue(T value)
{
    return static_cast<std::int64_t>(value);
}

inline void gather(std::vector<std::pair<int, ItemValue>>&) {}
inline void gather(std::vector<std::pair<int, ItemValue>>&, int) {}
template <class T, class... Rest>
void gather(std::vector<std::pair<int, ItemValue>>& out, int code, const T& value,
            const Rest&... rest)
{
    out.emplace_back(code, itemValue(value));
    gather(out, rest...);
}

} // namespace db

/// A chain of the items that follow: code, value, code, value, ... and a final 0, which may be left
/// out. A value that does not suit its code becomes 0 or empty. The caller's to release.
template <class... Args>
resbuf* tvutBuildList(const Args&... args)
{
    std::vector<std::pair<int, db::ItemValue>> items;
    items.reserve(sizeof...(args) / 2);
    db::gather(items, args...);
    return db::buildList(items);
}

/// A chain that releases itself.
class TvResbufPtr
{
public:
    explicit TvResbufPtr(resbuf* chain = nullptr) : m_chain(chain) {}
    TvResbufPtr(TvResbufPtr&& other) noexcept : m_chain(std::exchange(other.m_chain, nullptr)) {}
    TvResbufPtr& operator=(TvResbufPtr&& other) noexcept
    {
        std::swap(m_chain, other.m_chain);
        return *this;
    }
    ~TvResbufPtr() { tvutRelRb(m_chain); }
    resbuf* get() const { return m_chain; }
    resbuf* operator->() const { return m_chain; }
    explicit operator bool() const { return m_chain != nullptr; }

private:
    resbuf* m_chain; // owned
};
