#include "sample_maker/sketch.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include <base/clock.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_summary_info.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_viewport.h>

namespace samples {

namespace {

constexpr double kMmPerInch = 25.4;
constexpr double kAroundSheet = 1.05; // a sheet is shown with a little around it

/// The code under which a layer keeps the width of its lines.
std::int64_t weightCode(double weightMm)
{
    constexpr int kHundredths[] = {0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,
                                   53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};
    const auto hundredths = static_cast<int>(std::lround(weightMm * 100));
    const auto found = std::ranges::find(kHundredths, hundredths);
    if (found == std::end(kHundredths))
        throw std::runtime_error("no such line weight");
    return found - std::begin(kHundredths);
}

template <class Table>
TvDbObjectId idIn(const TvDbDatabase& drawing, const TvString& name)
{
    const TvDbObjectPointer<Table> table(drawing.symbolTableId(Table::kTable));
    TvDbObjectId id;
    if (table)
        table->getIdAt(name, id);
    if (id.isNull())
        throw std::runtime_error("there is no " + name.utf8());
    return id;
}

template <class Table, class Record>
TvDbObjectId addTo(TvDbDatabase& drawing, const TvString& name, auto&& fillIn)
{
    const TvDbObjectPointer<Table> table(drawing.symbolTableId(Table::kTable), TvDb::kForWrite);
    auto record = std::make_unique<Record>();
    require(record->setName(name), "name");
    TvDbObjectId id;
    require(table->add(id, record.get()), "record of a table");
    Record* added = record.release();
    fillIn(*added);
    added->close();
    return id;
}

} // namespace

void require(TvStatusCode status, const char* what)
{
    if (status != TvStatus::Ok)
        throw std::runtime_error(std::string(what) + ": status " +
                                 std::to_string(static_cast<int>(status)));
}

/// 2026-01-01 00:00 UTC, for ever.
class Sketch::StoppedClock : public base::ManualClock
{
public:
    StoppedClock() : ManualClock(1'767'225'600'000'000'000)
    {
        db::setDatabaseEnvironment(nullptr, this);
    }
    ~StoppedClock() override { db::setDatabaseEnvironment(nullptr, nullptr); }
};

Sketch::Sketch(Units units)
    : m_clock(std::make_unique<StoppedClock>()), m_units(units),
      m_drawing(std::make_unique<TvDbDatabase>(true, true))
{
    setMeasure();
}

Sketch::~Sketch() = default;

void Sketch::setMeasure()
{
    constexpr std::int64_t kInches = 1, kMillimetres = 4;
    const bool isMetric = m_units == Units::Millimetres;
    db::RecordEditor header = m_drawing->editHeader();
    header.setInteger("INSUNITS", isMetric ? kMillimetres : kInches);
    header.setInteger("MEASUREMENT", isMetric ? 1 : 0);
}

Sketch& Sketch::layer(const TvString& name, int color, double weightMm, const TvString& linetype,
                      bool isPlotted)
{
    const TvDbObjectId type = idIn<TvDbLinetypeTable>(*m_drawing, linetype);
    const std::uint64_t plotStyle =
        TvDbObjectPointer<TvDbLayerTableRecord>(layerId(u"0"))->fields().handle("plotstyle");
    addTo<TvDbLayerTable, TvDbLayerTableRecord>(
        *m_drawing, name, [&](TvDbLayerTableRecord& record) {
            require(record.setColorIndex(color), "colour");
            db::RecordEditor fields = record.edit();
            constexpr std::int64_t kWeightBits = 31 << 5;
            fields.setInteger("flags",
                              (fields.integer("flags") & ~kWeightBits) | weightCode(weightMm) << 5);
            fields.setHandle("ltype", type.handle().value());
            fields.setHandle("plotstyle", plotStyle);
            require(record.setIsPlottable(isPlotted), "plotted");
        });
    return *this;
}

Sketch& Sketch::linetype(const TvString& name, const TvString& description,
                         const std::vector<double>& dashes)
{
    addTo<TvDbLinetypeTable, TvDbLinetypeTableRecord>(
        *m_drawing, name, [&](TvDbLinetypeTableRecord& record) {
            db::RecordEditor fields = record.edit();
            fields.setText("description", description.view());
            double length = 0;
            db::ArrayEditor list = fields.array("dashes");
            for (const double dash : dashes) {
                list[list.add()].setReal("length", dash);
                length += std::abs(dash);
            }
            fields.setReal("pattern_len", length);
        });
    return *this;
}

Sketch& Sketch::textStyle(const TvString& name, const TvString& font)
{
    addTo<TvDbTextStyleTable, TvDbTextStyleTableRecord>(
        *m_drawing, name,
        [&](TvDbTextStyleTableRecord& record) { record.edit().setText("font", font.view()); });
    return *this;
}

Pen Sketch::model()
{
    return {*this, m_drawing->modelSpaceId()};
}

Pen Sketch::newBlock(const TvString& name)
{
    return {*this, addTo<TvDbBlockTable, TvDbBlockTableRecord>(
                       *m_drawing, name, [&](TvDbBlockTableRecord& record) {
                           record.edit().setInteger("units", m_units == Units::Millimetres ? 4 : 1);
                       })};
}

void Sketch::externalReference(const TvString& name, const TvString& path)
{
    addTo<TvDbBlockTable, TvDbBlockTableRecord>(*m_drawing, name,
                                                [&](TvDbBlockTableRecord& record) {
                                                    db::RecordEditor fields = record.edit();
                                                    fields.setFlag("is_xref", true);
                                                    fields.setText("xref_path", path.view());
                                                });
}

/// The first one takes the place of those that a new drawing has.
TvDbObjectId Sketch::layoutFor(const TvString& name)
{
    TvDbObjectId id;
    if (m_hasPaper) {
        require(db::addLayout(*m_drawing, name, id), "layout");
        return id;
    }
    m_hasPaper = true;
    TvDbObjectId other;
    {
        const TvDbObjectPointer<TvDbDictionary> layouts(m_drawing->layoutDictionaryId());
        require(layouts->getAt(u"Layout1", id), "first layout");
        require(layouts->getAt(u"Layout2", other), "second layout");
    }
    const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForWrite);
    require(layout->setLayoutName(name), "name of a layout");
    const TvDbObjectPointer<TvDbLayout> unused(other, TvDb::kForWrite);
    require(unused->erase(), "second layout");
    return id;
}

void Sketch::setPaper(TvDbObjectId layout, const Paper& paper)
{
    const bool isMetric = m_units == Units::Millimetres;
    const double toMm = isMetric ? 1 : kMmPerInch;
    const TvDbObjectPointer<TvDbLayout> opened(layout, TvDb::kForWrite);
    db::RecordEditor fields = opened->edit();
    fields.setText("paper_size_name", paper.media.view());
    fields.setInteger("paper_units",
                      isMetric ? TvDbPlotSettings::kMillimeters : TvDbPlotSettings::kInches);
    fields.setReal("paper_width", paper.width * toMm);
    fields.setReal("paper_height", paper.height * toMm);
    fields.setPoint("limmin", {});
    fields.setPoint("limmax", {paper.width, paper.height});
    fields.setPoint("extmin", {});
    fields.setPoint("extmax", {paper.width, paper.height});
}

void Sketch::showWhole(TvDbObjectId layout, const Paper& paper)
{
    const TvDbObjectPointer<TvDbViewport> sheet(db::addOverallViewport(layout), TvDb::kForWrite);
    if (!sheet)
        throw std::runtime_error("viewport of the sheet");
    const TvGePoint3d center{paper.width / 2, paper.height / 2, 0};
    sheet->setCenterPoint(center);
    sheet->setWidth(paper.width * kAroundSheet);
    sheet->setHeight(paper.height * kAroundSheet);
    sheet->setViewCenter({center.x, center.y});
    sheet->setViewHeight(paper.height * kAroundSheet);
}

Pen Sketch::newPaper(const Paper& paper)
{
    const TvDbObjectId layout = layoutFor(paper.layout);
    setPaper(layout, paper);
    showWhole(layout, paper);
    return {*this, TvDbObjectPointer<TvDbLayout>(layout)->getBlockTableRecordId()};
}

TvDbObjectId Sketch::namedView(const TvString& name, const TvGePoint2d& low,
                               const TvGePoint2d& high, const TvString& category)
{
    return addTo<TvDbViewTable, TvDbViewTableRecord>(
        *m_drawing, name, [&](TvDbViewTableRecord& view) {
            view.setCenterPoint({(low.x + high.x) / 2, (low.y + high.y) / 2});
            view.setWidth(high.x - low.x);
            view.setHeight(high.y - low.y);
            if (!category.isEmpty())
                require(view.setCategoryName(category), "category");
        });
}

void Sketch::describe(const TvString& title, const TvString& author, const TvString& comments)
{
    TvDbDatabaseSummaryInfo* info = nullptr;
    require(tvdbGetSummaryInfo(m_drawing.get(), info), "summary");
    const std::unique_ptr<TvDbDatabaseSummaryInfo> owned(info);
    info->values().title = title.view();
    info->values().author = author.view();
    info->values().comments = comments.view();
    require(tvdbPutSummaryInfo(info), "summary");
}

void Sketch::showModel(bool isShown)
{
    require(m_drawing->setTilemode(isShown), "tilemode");
}

void Sketch::save(const TvString& path, int version)
{
    const TvStatusCode status = m_drawing->saveAs(path, false, version);
    if (status != TvStatus::Ok)
        throw std::runtime_error(
            path.utf8() + ": status " + std::to_string(static_cast<int>(status)) + ", reason " +
            std::to_string(static_cast<int>(m_drawing->lastFailure().reason())));
}

TvDbObjectId Sketch::layerId(const TvString& name) const
{
    return idIn<TvDbLayerTable>(*m_drawing, name);
}

TvDbObjectId Sketch::blockId(const TvString& name) const
{
    return idIn<TvDbBlockTable>(*m_drawing, name);
}

TvDbObjectId Sketch::textStyleId(const TvString& name) const
{
    return idIn<TvDbTextStyleTable>(*m_drawing, name);
}

} // namespace samples
