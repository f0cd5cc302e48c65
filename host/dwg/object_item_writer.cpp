#include <db/group_items.h>

#include "byte_stream.h"
#include "object_field_writer.h"

namespace dwg {

using db::ContentSlots;
using db::ItemKind;
using db::ItemSlots;
using db::Run;

namespace {

using Out = std::vector<std::uint8_t>;

void appendNumber(Out& out, std::uint64_t value, unsigned size)
{
    for (unsigned i = 0; i < size; ++i)
        out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void appendReversed(Out& out, std::uint64_t value, unsigned size)
{
    for (unsigned i = size; i-- > 0;)
        out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

template <class Units>
void appendAll(Out& out, const Units& units)
{
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(units.data());
    out.insert(out.end(), bytes, bytes + units.size() * sizeof(units[0]));
}

// What the number of an item of this kind may be.
bool fitsKind(ItemKind kind, std::int64_t value)
{
    switch (kind) {
    case ItemKind::Short: return value >= INT16_MIN && value <= INT16_MAX;
    case ItemKind::Long: return value >= INT32_MIN && value <= INT32_MAX;
    case ItemKind::Byte:
    case ItemKind::Brace: return value >= 0 && value <= 0xFF;
    default: return true;
    }
}

} // namespace

void FieldWriter::appendText(Out& out, std::uint32_t item, bool isExtended)
{
    const Run run = db::runOf(m_words[item + ItemSlots::kText]);
    if (m_isWide) {
        const std::u16string units = wideUnits(run);
        m_failed = m_failed || units.size() > 0xFFFF;
        appendNumber(out, units.size(), 2);
        return appendAll(out, units);
    }
    auto page = static_cast<int>(m_words[item + ItemSlots::kInteger]);
    if (page == 0 && !(run.count & db::TextRun::kAsStored))
        page = m_codePage.number();
    const std::string bytes = narrowBytes(run, CodePage::numbered(page), false);
    m_failed = m_failed || bytes.size() > (isExtended ? 0xFFu : 0xFFFFu);
    appendNumber(out, bytes.size(), isExtended ? 1 : 2);
    appendReversed(out, static_cast<std::uint64_t>(page), isExtended ? 2 : 1);
    appendAll(out, bytes);
}

void FieldWriter::appendItem(Out& out, std::uint32_t item, bool isExtended)
{
    const auto code = static_cast<int>(m_words[item + ItemSlots::kCode]);
    const auto kind = isExtended ? db::extendedItemKind(code) : db::xrecordItemKind(code);
    const std::uint64_t integer = m_words[item + ItemSlots::kInteger];
    if (!kind || !fitsKind(*kind, static_cast<std::int64_t>(integer))) {
        m_failed = true;
        return;
    }
    appendNumber(out, static_cast<std::uint64_t>(isExtended ? code - 1000 : code),
                 isExtended ? 1 : 2);
    const std::uint64_t target = m_words[item + ItemSlots::kHandle] & db::kTargetMask;
    const Run binary = db::runOf(m_words[item + ItemSlots::kBytes]);
    switch (*kind) {
    case ItemKind::Text: return appendText(out, item, isExtended);
    case ItemKind::Point:
        for (std::uint32_t i = 0; i < 3; ++i)
            appendNumber(out, m_words[item + ItemSlots::kPoint + i], 8);
        return;
    case ItemKind::Real: return appendNumber(out, m_words[item + ItemSlots::kPoint], 8);
    case ItemKind::Short: return appendNumber(out, integer, 2);
    case ItemKind::Long: return appendNumber(out, integer, 4);
    case ItemKind::Wide: return appendNumber(out, integer, 8);
    case ItemKind::Byte:
    case ItemKind::Brace: return appendNumber(out, integer, 1);
    case ItemKind::Handle:
        return isExtended ? appendReversed(out, target, 8) : appendNumber(out, target, 8);
    case ItemKind::Binary:
        m_failed = m_failed || binary.count > 0xFF;
        appendNumber(out, binary.count, 1);
        return appendAll(out, bytesAt(binary));
    }
}

Out FieldWriter::contentBytes(std::uint32_t slot, bool isExtended)
{
    const Run kept = db::runOf(m_words[slot + ContentSlots::kData]);
    const Run items = db::arrayOf(m_words[slot + ContentSlots::kItems]);
    Out out;
    appendAll(out, bytesAt(kept));
    // Bytes that are no items cannot be put into another version's form, nor mixed with items.
    m_failed = m_failed || (kept.count > 0 && (items.count > 0 || !m_isSameVersion));
    for (std::uint32_t i = 0; i < items.count; ++i)
        appendItem(out, items.offset + i * ItemSlots::kSize, isExtended);
    return out;
}

void FieldWriter::writeXrecord(std::uint32_t slot)
{
    const Out out = contentBytes(slot, false);
    data.writeBL(static_cast<std::uint32_t>(out.size()));
    data.writeBytes(out);
}

void FieldWriter::writeExtendedData(std::uint32_t slot)
{
    const Run groups = db::arrayOf(m_words[slot]);
    for (std::uint32_t i = 0; i < groups.count; ++i) {
        const std::uint32_t group = groups.offset + i * ContentSlots::kExtendedSize;
        const Out out = contentBytes(group, true);
        m_failed = m_failed || out.size() > 0xFFFF;
        if (out.empty())
            continue; // a size of 0 would end the list
        data.writeBS(static_cast<std::uint16_t>(out.size()));
        writeHandle(data, m_words[group + ContentSlots::kApplication], 5);
        data.writeBytes(out);
    }
    data.writeBS(0);
}

} // namespace dwg
