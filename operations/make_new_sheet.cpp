#include <memory>

#include <sm/tv_sm_database.h>

#include "operations/new_sheet.h"

namespace operations {

namespace {

bool lead(TvSmSheet& sheet, const NewSheetPlan& plan, const TvString& handle)
{
    auto reference = std::make_unique<TvSmTvDbLayoutReference>();
    if (!reference->initNew(&sheet, {}) || !reference->setFileName(plan.path) ||
        !reference->setName(plan.layout) || !reference->setHandle(handle) ||
        !sheet.setLayoutReference(reference.get()))
        return false;
    reference.release(); // the database's now
    return true;
}

bool copyProperty(TvSmSheet& sheet, const sm::Property& property)
{
    TvVariant value;
    property.value->getValue(value);
    auto copy = std::make_unique<TvSmCustomPropertyValue>();
    if (!copy->initNew(sheet.getCustomProperties(), {}) ||
        !copy->setFlags(property.value->getFlags()) || !copy->setValue(value) ||
        !sheet.getCustomProperties()->setProperty(property.name, copy.get()))
        return false;
    copy.release(); // the database's now
    return true;
}

} // namespace

TvSmSheet* makeNewSheet(TvSmSubset& subset, const NewSheetFields& fields, const NewSheetPlan& plan,
                        const TvString& handle)
{
    TvSmSheet* sheet = subset.createSheet(fields.title, {});
    return sheet && sheet->setNumber(fields.number) && lead(*sheet, plan, handle) ? sheet : nullptr;
}

bool placeNewSheet(TvSmSubset& subset, TvSmSheet& sheet, TvSmComponent* before)
{
    const TvSmDatabase* database = subset.database();
    if (!database)
        return false;
    for (const sm::Property& property :
         sm::propertiesOf(database->getSheetSet()->getCustomProperties()))
        if (property.value->getFlags() & TvSmCustomPropertyValue::kSheetProperty &&
            !copyProperty(sheet, property))
            return false;
    return subset.insertComponent(&sheet, before);
}

bool rememberTemplate(TvSmSubset& subset, const SheetTemplate& which)
{
    TvSmTvDbLayoutReference* reference = subset.getDefaultTemplateLayout();
    if (!reference) {
        auto made = std::make_unique<TvSmTvDbLayoutReference>();
        if (!made->initNew(&subset, {}) || !subset.setDefaultTemplateLayout(made.get()))
            return false;
        reference = made.release(); // the database's now
    }
    return reference->setFileName(which.drawing) && reference->setName(which.layout);
}

} // namespace operations
