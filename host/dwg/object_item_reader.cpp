#include <bit>

#include "byte_stream.h"
#include "object_field_reader.h"
#include "object_items.h"

namespace dwg {

using db::ContentSlots;
using db::ItemKind;
using db::ItemSlots;
using db::Run;

namespace {

std::size_t sizeOfNumber(ItemKind kind)
{
    switch (kind) {
    case ItemKind::Point: return 24;
    case ItemKind::Real:
    case ItemKind::Wide:
    case ItemKind::Handle: return 8;
    case ItemKind::Long: return 4;
    case ItemKind::Short: return 2;
    default: return 1;
    }
}

bool takeBytes(Bytes& from, std::size_t count, Bytes& out)
{
    if (from.size() < count)
        return false;
    out = from.first(count);
    from = from.subspan(count);
    return true;
}

// Extended data: length in one byte and the code page in two, the high one first; in wide form the
// length in two. Xrecords: length in two, then the code page in one.
bool takeText(Bytes& bytes, ItemForm form, GroupItem& item)
{
    const bool byteLength = form.isExtended && !form.isWide;
    Bytes head;
    if (!takeBytes(bytes, byteLength ? 1 : 2, head))
        return false;
    const std::size_t length = byteLength ? head[0] : readU16(head.data());
    if (!form.isWide) {
        if (!takeBytes(bytes, form.isExtended ? 2 : 1, head))
            return false;
        item.codePage = form.isExtended ? head[0] << 8 | head[1] : head[0];
    }
    return takeBytes(bytes, form.isWide ? length * 2 : length, item.value);
}

bool takeValue(Bytes& bytes, ItemForm form, GroupItem& item)
{
    if (item.kind == ItemKind::Text)
        return takeText(bytes, form, item);
    if (item.kind != ItemKind::Binary)
        return takeBytes(bytes, sizeOfNumber(item.kind), item.value);
    Bytes length;
    return takeBytes(bytes, 1, length) && takeBytes(bytes, length[0], item.value);
}

std::uint64_t handleOf(const GroupItem& item, bool isBigEndian)
{
    std::uint64_t value = readU64(item.value.data());
    return isBigEndian ? __builtin_bswap64(value) : value;
}

std::int64_t integerOf(const GroupItem& item)
{
    const std::uint8_t* const p = item.value.data();
    switch (item.kind) {
    case ItemKind::Text: return item.codePage;
    case ItemKind::Short: return static_cast<std::int16_t>(readU16(p));
    case ItemKind::Long: return static_cast<std::int32_t>(readU32(p));
    case ItemKind::Wide: return static_cast<std::int64_t>(readU64(p));
    case ItemKind::Byte:
    case ItemKind::Brace: return *p;
    default: return 0;
    }
}

// How many items there are; nullopt where the bytes do not follow the rules to the end.
std::optional<std::uint32_t> countItems(Bytes bytes, ItemForm form)
{
    std::uint32_t count = 0;
    for (; !bytes.empty(); ++count) {
        const auto item = takeItem(bytes, form);
        if (!item)
            return std::nullopt;
        const bool tooLarge =
            item->kind == ItemKind::Handle && handleOf(*item, form.isExtended) > db::kTargetMask;
        if (tooLarge)
            return std::nullopt;
    }
    return count;
}

} // namespace

std::optional<GroupItem> takeItem(Bytes& bytes, ItemForm form)
{
    Bytes code;
    if (!takeBytes(bytes, form.isExtended ? 1 : 2, code))
        return std::nullopt;
    GroupItem item;
    item.code = form.isExtended ? 1000 + code[0] : static_cast<std::int16_t>(readU16(code.data()));
    const auto kind =
        form.isExtended ? db::extendedItemKind(item.code) : db::xrecordItemKind(item.code);
    if (!kind)
        return std::nullopt;
    item.kind = *kind;
    if (!takeValue(bytes, form, item))
        return std::nullopt;
    return item;
}

void FieldReader::putItem(std::uint32_t item, const GroupItem& value)
{
    std::fill(m_at + item, m_at + item + ItemSlots::kSize, 0);
    putSigned(item + ItemSlots::kCode, value.code);
    putSigned(item + ItemSlots::kInteger, integerOf(value));
    switch (value.kind) {
    case ItemKind::Point:
    case ItemKind::Real:
        for (std::uint32_t i = 0; i < value.value.size() / 8; ++i)
            put(item + ItemSlots::kPoint + i, readU64(value.value.data() + i * 8));
        return;
    case ItemKind::Text:
        return m_isWide ? putWideText(item + ItemSlots::kText, value.value)
                        : putNarrowText(item + ItemSlots::kText, value.value,
                                        CodePage::numbered(value.codePage));
    case ItemKind::Handle: return put(item + ItemSlots::kHandle, handleOf(value, m_isExtended));
    case ItemKind::Binary: return put(item + ItemSlots::kBytes, wordOf(putBytes(value.value)));
    default: return;
    }
}

Run FieldReader::putBytes(Bytes bytes)
{
    if (bytes.empty())
        return {};
    const std::uint32_t at = append((bytes.size() + 7) / 8);
    if (m_failed)
        return {};
    m_at[at + (bytes.size() - 1) / 8] = 0;
    std::memcpy(m_at + at, bytes.data(), bytes.size());
    return {at, static_cast<std::uint32_t>(bytes.size())};
}

// The next @p size bytes of the data as items; as bytes, where they are no items.
void FieldReader::readContent(std::uint32_t slot, std::size_t size, bool isExtended)
{
    put(slot + ContentSlots::kItems, 0);
    put(slot + ContentSlots::kData, 0);
    if (size > m_streams.data.remaining() / 8)
        return fail();
    std::vector<std::uint8_t> bytes(size);
    copyBytes(m_streams.data, bytes.data(), size);
    const ItemForm form{isExtended, m_isWide};
    const auto count = countItems(bytes, form);
    if (!count)
        return put(slot + ContentSlots::kData, wordOf(putBytes(bytes)));
    const std::uint32_t first = append(std::uint64_t(*count) * ItemSlots::kSize);
    Bytes rest = bytes;
    m_isExtended = isExtended;
    for (std::uint32_t i = 0; i < *count && ok(); ++i)
        putItem(first + i * ItemSlots::kSize, *takeItem(rest, form));
    put(slot + ContentSlots::kItems, wordOf(Run{first, *count}));
}

void FieldReader::readXrecord(std::uint32_t slot)
{
    readContent(slot, m_streams.data.readBL(), false);
}

void FieldReader::readExtendedData(std::uint32_t slot)
{
    BitReader& data = m_streams.data;
    std::uint32_t size = data.readBS();
    if (size == 0)
        return; // as nearly always
    std::vector<std::uint64_t> groups;
    const std::uint32_t scratch = append(ContentSlots::kExtendedSize);
    for (; size != 0 && ok(); size = data.readBS()) {
        readHandle(data, scratch + ContentSlots::kApplication);
        readContent(scratch, size, true);
        groups.insert(groups.end(), m_at + scratch, m_at + scratch + ContentSlots::kExtendedSize);
    }
    if (ok())
        putList(slot, groups, ContentSlots::kExtendedSize);
}

} // namespace dwg
