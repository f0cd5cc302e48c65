#include <db/resbuf.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include <db/group_items.h>

namespace {

// Codes of the lists that commands and prompts exchange.
constexpr int kListReal = 5001, kListPoint = 5002, kListShort = 5003, kListText = 5005,
              kListName = 5006, kListPoint3 = 5009, kListLong = 5010;

TvResbufKind kindOfItem(db::ItemKind kind)
{
    switch (kind) {
    case db::ItemKind::Text: return TvResbufKind::Text;
    case db::ItemKind::Point: return TvResbufKind::Point;
    case db::ItemKind::Real: return TvResbufKind::Real;
    case db::ItemKind::Short:
    case db::ItemKind::Byte: return TvResbufKind::Short;
    case db::ItemKind::Long: return TvResbufKind::Long;
    case db::ItemKind::Wide: return TvResbufKind::Wide;
    case db::ItemKind::Handle: return TvResbufKind::Handle;
    case db::ItemKind::Binary: return TvResbufKind::Binary;
    case db::ItemKind::Brace: return TvResbufKind::Text; // written as "{" and "}"
    }
    return TvResbufKind::None;
}

TvChar* newText(std::u16string_view text)
{
    // Zero-terminated: what stands behind a zero would be lost anyway.
    text = text.substr(0, text.find(u'\0'));
    auto* made = new TvChar[text.size() + 1];
    std::copy(text.begin(), text.end(), made);
    made[text.size()] = 0;
    return made;
}

std::uint8_t* newBytes(const std::uint8_t* from, std::int32_t count)
{
    auto* made = new std::uint8_t[static_cast<std::size_t>(std::max(count, 1))];
    std::copy_n(from, count, made);
    return made;
}

void releaseValue(resbuf& item)
{
    switch (tvutResbufKind(item.restype)) {
    case TvResbufKind::Text: delete[] item.resval.rstring; break;
    case TvResbufKind::Binary: delete[] item.resval.rbinary.buf; break;
    default: break;
    }
}

template <class Small>
Small narrowed(std::int64_t value)
{
    const bool fits =
        value >= std::numeric_limits<Small>::min() && value <= std::numeric_limits<Small>::max();
    return fits ? static_cast<Small>(value) : Small(0);
}

void setWhole(resbuf& item, TvResbufKind kind, std::int64_t value)
{
    switch (kind) {
    case TvResbufKind::Real: item.resval.rreal = static_cast<double>(value); break;
    case TvResbufKind::Short: item.resval.rint = narrowed<std::int16_t>(value); break;
    case TvResbufKind::Long: item.resval.rlong = narrowed<std::int32_t>(value); break;
    case TvResbufKind::Wide: item.resval.mnInt64 = value; break;
    case TvResbufKind::Handle: item.resval.rhandle = static_cast<std::uint64_t>(value); break;
    default: break;
    }
}

void setPoint(resbuf& item, const db::Point& point)
{
    item.resval.rpoint[0] = point.x;
    item.resval.rpoint[1] = point.y;
    item.resval.rpoint[2] = point.z;
}

void setValue(resbuf& item, const db::ItemValue& value)
{
    const TvResbufKind kind = tvutResbufKind(item.restype);
    if (const auto* whole = std::get_if<std::int64_t>(&value))
        setWhole(item, kind, *whole);
    else if (const auto* real = std::get_if<double>(&value); real && kind == TvResbufKind::Real)
        item.resval.rreal = *real;
    else if (const auto* point = std::get_if<db::Point>(&value);
             point && kind == TvResbufKind::Point)
        setPoint(item, *point);
    else if (const auto* text = std::get_if<std::u16string>(&value);
             text && kind == TvResbufKind::Text)
        tvutSetText(item, *text);
    else if (const auto* id = std::get_if<TvDbObjectId>(&value)) {
        if (kind == TvResbufKind::ObjectId)
            item.resval.rlname = *id;
        else if (kind == TvResbufKind::Handle)
            item.resval.rhandle = id->handle().value();
    }
}

} // namespace

TvResbufKind tvutResbufKind(int code)
{
    switch (code) {
    case kListReal: return TvResbufKind::Real;
    case kListPoint:
    case kListPoint3: return TvResbufKind::Point;
    case kListShort: return TvResbufKind::Short;
    case kListText: return TvResbufKind::Text;
    case kListName: return TvResbufKind::ObjectId;
    case kListLong: return TvResbufKind::Long;
    default: break;
    }
    const std::optional<db::ItemKind> kind = db::xrecordItemKind(code);
    return kind ? kindOfItem(*kind) : TvResbufKind::None;
}

resbuf* tvutNewRb(int code)
{
    auto* item = new resbuf;
    item->restype = static_cast<std::int16_t>(code);
    switch (tvutResbufKind(item->restype)) {
    case TvResbufKind::Text: item->resval.rstring = newText({}); break;
    case TvResbufKind::Binary: item->resval.rbinary = {0, newBytes(nullptr, 0)}; break;
    case TvResbufKind::ObjectId: item->resval.rlname = TvDbObjectId(); break;
    default: break;
    }
    return item;
}

void tvutRelRb(resbuf* chain)
{
    while (chain) {
        resbuf* next = chain->rbnext;
        releaseValue(*chain);
        delete chain;
        chain = next;
    }
}

void tvutSetText(resbuf& item, std::u16string_view text)
{
    if (tvutResbufKind(item.restype) != TvResbufKind::Text)
        return;
    TvChar* made = newText(text);
    delete[] item.resval.rstring;
    item.resval.rstring = made;
}

void tvutSetBytes(resbuf& item, std::span<const std::uint8_t> bytes)
{
    if (tvutResbufKind(item.restype) != TvResbufKind::Binary)
        return;
    const auto count = static_cast<std::int32_t>(bytes.size());
    std::uint8_t* made = newBytes(bytes.data(), count);
    delete[] item.resval.rbinary.buf;
    item.resval.rbinary = {count, made};
}

resbuf* tvutCopyRb(const resbuf* chain)
{
    resbuf* first = nullptr;
    resbuf** end = &first;
    for (; chain; chain = chain->rbnext) {
        resbuf* item = tvutNewRb(chain->restype);
        *end = item;
        end = &item->rbnext;
        switch (tvutResbufKind(chain->restype)) {
        case TvResbufKind::Text: tvutSetText(*item, chain->resval.rstring); break;
        case TvResbufKind::Binary:
            tvutSetBytes(*item, {chain->resval.rbinary.buf,
                                 static_cast<std::size_t>(chain->resval.rbinary.clen)});
            break;
        default: item->resval = chain->resval; break;
        }
    }
    return first;
}

resbuf* db::buildList(std::span<const std::pair<int, ItemValue>> items)
{
    resbuf* first = nullptr;
    resbuf** end = &first;
    for (const auto& [code, value] : items) {
        resbuf* item = tvutNewRb(code);
        setValue(*item, value);
        *end = item;
        end = &item->rbnext;
    }
    return first;
}
