#include "operations/import_layout_list.h"

#include <algorithm>
#include <numeric>

#include <base/path_rules.h>
#include <core/settings.h>
#include <resources/texts.h>
#include <rx/tv_user_messages.h>
#include <sm/kv_db_util.h>

#include "operations/import_sheets.h"

namespace operations {

namespace {

constexpr int kNothingTicked = 403;
constexpr int kUnreadable = 409, kUnreadableCaption = 408;
constexpr int kWithoutLayouts = 411, kWithoutLayoutsCaption = 410;
constexpr int kNoSuchLayout = 413, kNoSuchLayoutCaption = 412;

constexpr TvChar kKeys[] = u"UserInterfaceSettings\\ImportLayoutAsSheetDialog\\";
constexpr TvChar kPrefixKey[] = u"Prefix";

TvString widthKey(int column)
{
    return TvString().format(u"%lsColumn%d", kKeys, column + 1);
}

void warn(int text, int caption, std::vector<TvString> arguments = {})
{
    TvUserMessages::Message message;
    message.text = text;
    message.caption = caption;
    message.arguments = std::move(arguments);
    message.icon = TvUserMessages::Icon::Warning;
    tvrxShowMessage(message);
}

/// A path on a line of its own, in a message.
TvString lineOf(const TvString& path)
{
    return TvString(u"\n\t") + path;
}

void sayWhatIsWrong(const LoadedLayouts& loaded)
{
    for (const LoadedLayouts::Unreadable& each : loaded.unreadable)
        warn(kUnreadable, kUnreadableCaption, {lineOf(each.drawing)});
    TvString lines;
    for (const TvString& path : loaded.withoutLayouts)
        lines += lineOf(path);
    if (!lines.isEmpty())
        warn(kWithoutLayouts, kWithoutLayoutsCaption, {lines});
}

} // namespace

bool SortDirections::turn(int column)
{
    if (column < 0 || column >= ImportLayoutList::kColumns)
        return false;
    return m_isAscending[column] = !m_isAscending[column];
}

bool SortDirections::isAscending(int column) const
{
    return column >= 0 && column < ImportLayoutList::kColumns && m_isAscending[column];
}

ImportSettings ImportSettings::read()
{
    ImportSettings settings;
    for (int column = 0; column < ImportLayoutList::kColumns; ++column)
        if (int width = 0; ReadConfigInt(widthKey(column), width) && width > 0)
            settings.widths[column] = width;
    if (int prefix = 0; ReadConfigInt(TvString(kKeys) + kPrefixKey, prefix))
        settings.withPrefix = prefix != 0;
    return settings;
}

void ImportSettings::write() const
{
    for (int column = 0; column < ImportLayoutList::kColumns; ++column)
        WriteConfigInt(widthKey(column), widths[column]);
    WriteConfigInt(TvString(kKeys) + kPrefixKey, withPrefix ? 1 : 0);
}

TvString ImportLayoutList::textAt(std::size_t row, int column) const
{
    if (row >= m_rows.size())
        return {};
    switch (column) {
    case 0: return base::PathRules::native().fileNameOf(m_rows[row].drawing);
    case 1: return m_rows[row].layout;
    case 2: return text::find(static_cast<int>(m_rows[row].use));
    default: return {};
    }
}

void ImportLayoutList::load(std::span<const TvString> drawings)
{
    m_rows.clear();
    LoadedLayouts loaded = loadLayouts(drawings, {KvDbUtil::tarvGetSheetSetMgr()});
    m_rows = std::move(loaded.rows);
    tickImportable();
    sayWhatIsWrong(loaded);
}

void ImportLayoutList::tickImportable()
{
    if (isMultiple())
        for (LayoutRow& row : m_rows)
            row.isTicked = row.isTicked || row.isImportable();
}

void ImportLayoutList::tickOnly(std::span<const TvString> layouts)
{
    if (layouts.empty())
        return;
    std::map<TvString, std::size_t> rowOf; // the first of each name
    for (std::size_t row = 0; row < m_rows.size(); ++row) {
        m_rows[row].isTicked = false;
        rowOf.emplace(m_rows[row].layout, row);
    }
    bool isOneMissing = false;
    for (const TvString& layout : layouts) {
        if (const auto row = rowOf.find(layout); row != rowOf.end())
            setTicked(row->second, true);
        else
            isOneMissing = true;
    }
    if (isOneMissing)
        warn(kNoSuchLayout, kNoSuchLayoutCaption);
}

void ImportLayoutList::setTicked(std::size_t row, bool isTicked)
{
    if (row >= m_rows.size())
        return;
    if (isTicked && !isMultiple())
        for (LayoutRow& each : m_rows)
            each.isTicked = false;
    m_rows[row].isTicked = isTicked;
}

std::vector<std::size_t> ImportLayoutList::sort(int column, SortDirections& directions)
{
    if (column < 0 || column >= kColumns)
        return {};
    const bool isAscending = directions.turn(column);
    std::vector<TvString> texts(m_rows.size());
    std::vector<std::size_t> order(m_rows.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    for (const std::size_t row : order)
        texts[row] = textAt(row, column);
    std::ranges::stable_sort(order, [&](std::size_t left, std::size_t right) {
        const int compared = texts[left].compare(texts[right]);
        return isAscending ? compared < 0 : compared > 0;
    });
    std::vector<LayoutRow> sorted;
    sorted.reserve(m_rows.size());
    for (const std::size_t row : order)
        sorted.push_back(std::move(m_rows[row]));
    m_rows = std::move(sorted);
    return order;
}

bool ImportLayoutList::accept(bool withPrefix, std::vector<TvSmSheet*>& made)
{
    if (std::ranges::none_of(m_rows, &LayoutRow::isTicked)) {
        warn(kNothingTicked, 0);
        tickImportable();
        return false;
    }
    for (const LayoutRow& row : m_rows)
        if (row.isTicked && row.isImportable())
            apply(row, withPrefix, made);
    m_rows.clear();
    return true;
}

void ImportLayoutList::apply(const LayoutRow& row, bool withPrefix, std::vector<TvSmSheet*>& made)
{
    if (m_sheet)
        repointSheet(*m_sheet, row);
    else if (TvSmSheet* sheet = m_subset ? makeImportedSheet(*m_subset, row, withPrefix) : nullptr)
        made.push_back(sheet);
}

} // namespace operations
