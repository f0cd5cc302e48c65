#include "plot_style_names.h"

#include <limits>

#include <db/tv_db_dictionary.h>

#include "list_writer.h"

namespace gs {

namespace {

constexpr std::int64_t kPlotsByColor = 0x2000; // of the header's flags
// "plotstyle_flags"
enum : std::int64_t { kByLayer = 0, kByBlock = 1, kGiven = 3 };
const TvChar* const kUsual = u"Normal";

} // namespace

PlotStyleNames::PlotStyleNames(TvDbDatabase& database, ListWriter& writer)
{
    if ((database.headerRecord().integer("FLAGS") & kPlotsByColor) != 0)
        return;
    const TvDbObjectPointer<TvDbDictionary> root(database.namedObjectsDictionaryId(),
                                                 TvDb::kForNotify);
    TvDbObjectId id;
    if (!root || root->getAt(TvString(u"ACAD_PLOTSTYLENAME"), id) != TvStatus::Ok)
        return;
    const TvDbObjectPointer<TvDbDictionary> names(id, TvDb::kForNotify);
    if (!names)
        return;
    writer.addPlotStyle(TvString(kUsual));
    std::size_t count = 0;
    for (const auto& [name, placeholder] : names->entries())
        if (name.compareNoCase(TvString(kUsual)) != 0 &&
            ++count <= std::numeric_limits<std::uint8_t>::max()) {
            writer.addPlotStyle(name);
            m_numbers.emplace(placeholder.handle().value(), static_cast<std::uint8_t>(count));
        }
}

std::uint8_t PlotStyleNames::number(std::uint64_t placeholder) const
{
    const auto found = m_numbers.find(placeholder);
    return found == m_numbers.end() ? 0 : found->second;
}

std::uint8_t PlotStyleNames::ofEntity(const db::RecordView& entity, std::uint8_t byLayer,
                                      std::uint8_t byBlock) const
{
    switch (entity.integer("plotstyle_flags")) {
    case kByLayer: return byLayer;
    case kByBlock: return byBlock;
    case kGiven: return number(entity.handle("plotstyle"));
    default: return 0;
    }
}

} // namespace gs
