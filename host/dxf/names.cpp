#include "names.h"

#include <base/tv_string.h>

namespace dxf {

const std::array<TableFacts, kTableCount>& tables()
{
    static constexpr std::array<TableFacts, kTableCount> kTables{{
        {Table::Viewport, "VPORT", "VPORT", "VPORT_CONTROL", "VPORTCTL"},
        {Table::Linetype, "LTYPE", "LTYPE", "LTYPE_CONTROL", "LTYPECTL"},
        {Table::Layer, "LAYER", "LAYER", "LAYER_CONTROL", "LAYERCTL"},
        {Table::TextStyle, "STYLE", "STYLE", "STYLE_CONTROL", "STYLECTL"},
        {Table::View, "VIEW", "VIEW", "VIEW_CONTROL", "VIEWCTL"},
        {Table::Ucs, "UCS", "UCS", "UCS_CONTROL", "UCSCTL"},
        {Table::Application, "APPID", "APPID", "APPID_CONTROL", "APPIDCTL"},
        {Table::DimensionStyle, "DIMSTYLE", "DIMSTYLE", "DIMSTYLE_CONTROL", "DIMSTYLECTL"},
        {Table::Block, "BLOCK_RECORD", "BLOCK_HEADER", "BLOCK_CONTROL", "BLOCKCTL"},
    }};
    return kTables;
}

Table tableNamed(std::string_view name)
{
    for (const TableFacts& facts : tables())
        if (facts.name == name)
            return facts.table;
    return Table::None;
}

const TableFacts& factsOf(Table table)
{
    return tables()[static_cast<std::size_t>(table)];
}

std::u16string foldedName(std::u16string_view name)
{
    bool isAscii = true;
    std::u16string folded(name);
    for (char16_t& unit : folded) {
        isAscii = isAscii && unit < 0x80;
        if (unit >= u'A' && unit <= u'Z')
            unit = static_cast<char16_t>(unit + 32);
    }
    return isAscii ? folded : std::u16string(TvString(name).toLower().view());
}

void NameTables::add(Table table, std::string_view asWritten, std::u16string_view name,
                     std::uint64_t handle)
{
    Names& names = m_names[static_cast<std::size_t>(table)];
    const auto [known, isNew] = names.folded.try_emplace(foldedName(name), handle);
    names.written.try_emplace(asWritten, known->second);
}

std::uint64_t NameTables::find(Table table, std::u16string_view name) const
{
    const Names& names = m_names[static_cast<std::size_t>(table)];
    const auto found = names.folded.find(foldedName(name));
    return found == names.folded.end() ? 0 : found->second;
}

const std::uint64_t* NameTables::findWritten(Table table, std::string_view asWritten) const
{
    const Names& names = m_names[static_cast<std::size_t>(table)];
    const auto found = names.written.find(asWritten);
    return found == names.written.end() ? nullptr : &found->second;
}

void NameTables::remember(Table table, std::string_view asWritten, std::uint64_t handle)
{
    m_names[static_cast<std::size_t>(table)].written.try_emplace(asWritten, handle);
}

} // namespace dxf
