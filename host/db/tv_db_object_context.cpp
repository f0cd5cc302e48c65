#include <db/tv_db_object_context.h>

#include <cmath>

#include "database_impl.h"
#include "new_object.h"
#include "quiet_edit.h"

#include <db/dictionary_variable.h>
#include <db/tv_db_dictionary.h>

TVRX_DEFINE_MEMBERS(TvDbScale, TvDbObject)

const TvChar* const tvdbAnnotationScaleCollectionName = u"ACDB_ANNOTATIONSCALES";

namespace {

constexpr const TvChar* kCurrent = u"CANNOSCALE";
constexpr const TvChar* kScaleList = u"ACAD_SCALELIST";
constexpr const TvChar* kUnitScale = u"1:1";
constexpr std::u16string_view kXrefMark = u"_XREF";

bool isUnit(double value)
{
    return std::isfinite(value) && value > 0;
}

TvString currentName(const TvDbDatabase& database)
{
    const TvString name = db::dictionaryVariable(database, TvString(kCurrent));
    return name.isEmpty() ? TvString(kUnitScale) : name;
}

} // namespace

TvString TvDbScale::getName() const
{
    return TvString(fields().text("name"));
}

double TvDbScale::paperUnits() const
{
    return fields().real("paper_units");
}

double TvDbScale::drawingUnits() const
{
    return fields().real("drawing_units");
}

double TvDbScale::getScale() const
{
    return isUnit(paperUnits()) && isUnit(drawingUnits()) ? paperUnits() / drawingUnits() : 0;
}

bool TvDbScale::isUnitScale() const
{
    return fields().flag("is_unit");
}

TvDbAnnotationScale::TvDbAnnotationScale(TvString name, double paperUnits, double drawingUnits,
                                         TvDbObjectId id)
    : m_name(std::move(name)), m_paperUnits(paperUnits), m_drawingUnits(drawingUnits), m_id(id)
{
}

TvStatusCode TvDbAnnotationScale::getScale(double& out) const
{
    if (!isUnit(m_paperUnits) || !isUnit(m_drawingUnits))
        return TvStatus::InvalidInput;
    out = m_paperUnits / m_drawingUnits;
    return TvStatus::Ok;
}

TvStatusCode TvDbAnnotationScale::getPaperUnits(double& out) const
{
    out = m_paperUnits;
    return TvStatus::Ok;
}

TvStatusCode TvDbAnnotationScale::getDrawingUnits(double& out) const
{
    out = m_drawingUnits;
    return TvStatus::Ok;
}

bool TvDbAnnotationScale::isXref() const
{
    return m_name.endsWithNoCase(kXrefMark);
}

std::vector<TvDbAnnotationScale> TvDbObjectContextCollection::contexts() const
{
    std::vector<TvDbAnnotationScale> all;
    const TvDbObjectPointer<TvDbDictionary> list(m_database.scaleListDictionaryId(),
                                                 TvDb::kForNotify);
    if (!list)
        return all;
    for (const auto& [key, id] : list->entries()) {
        const TvDbObjectPointer<TvDbScale> scale(id, TvDb::kForNotify);
        if (scale)
            all.emplace_back(scale->getName(), scale->paperUnits(), scale->drawingUnits(), id);
    }
    return all;
}

TvStatusCode TvDbObjectContextCollection::getContext(const TvString& name,
                                                     TvDbAnnotationScale& out) const
{
    for (TvDbAnnotationScale& scale : contexts())
        if (scale.getName().compareNoCase(name) == 0) {
            out = std::move(scale);
            return TvStatus::Ok;
        }
    return TvStatus::KeyNotFound;
}

bool TvDbObjectContextCollection::hasContext(const TvString& name) const
{
    TvDbAnnotationScale found;
    return getContext(name, found) == TvStatus::Ok;
}

TvStatusCode TvDbObjectContextCollection::currentContext(TvDbAnnotationScale& out) const
{
    return getContext(currentName(m_database), out);
}

TvStatusCode TvDbObjectContextCollection::setCurrentContext(const TvString& name)
{
    TvDbAnnotationScale scale;
    if (const TvStatusCode status = getContext(name, scale))
        return status;
    if (currentName(m_database) == scale.getName())
        return TvStatus::Ok;
    return db::setDictionaryVariable(m_database, TvString(kCurrent), scale.getName());
}

TvStatusCode TvDbObjectContextCollection::addContext(const TvDbAnnotationScale& scale,
                                                     TvDbObjectId* out)
{
    double paper = 0, drawing = 0, ratio = 0;
    scale.getPaperUnits(paper);
    scale.getDrawingUnits(drawing);
    if (const TvStatusCode status = scale.getScale(ratio))
        return status;
    if (scale.getName().isEmpty())
        return TvStatus::InvalidName;
    if (hasContext(scale.getName()))
        return TvStatus::DuplicateName;
    const TvDbObjectPointer<TvDbDictionary> list(
        db::neededDictionaryEntry(m_database.namedObjectsDictionaryId(), TvString(kScaleList),
                                  "DICTIONARY"),
        TvDb::kForWrite);
    if (!list)
        return list.openStatus();
    auto made = std::make_unique<TvDbScale>();
    db::RecordEditor edit = made->edit();
    edit.setText("name", scale.getName().view());
    edit.setReal("paper_units", paper);
    edit.setReal("drawing_units", drawing);
    edit.setFlag("is_unit", paper == drawing);
    // The keys are but numbers behind an A.
    std::uint32_t number = list->numEntries();
    TvString key;
    do
        key = TvString(u"A") + base::utf16FromUtf8(std::to_string(number++));
    while (list->has(key));
    TvDbObjectId id;
    if (const TvStatusCode status = list->setAt(key, made.get(), id))
        return status;
    made.release()->close();
    if (out)
        *out = id;
    return TvStatus::Ok;
}

TvDbObjectContextCollection* TvDbObjectContextManager::contextCollection(const TvString& name)
{
    return name == tvdbAnnotationScaleCollectionName ? &m_scales : nullptr;
}

TvStatusCode tvdbGetCurAnnoScale(const TvDbDatabase* database, TvDbAnnotationScale& out)
{
    if (!database)
        return TvStatus::NoDatabase;
    return database->objectContextManager()
        ->contextCollection(TvString(tvdbAnnotationScaleCollectionName))
        ->currentContext(out);
}

TvDbObjectContextManager* TvDbDatabase::objectContextManager() const
{
    return &m_impl->contexts();
}
