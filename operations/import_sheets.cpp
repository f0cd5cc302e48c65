#include "operations/import_sheets.h"

#include <memory>

#include <base/path_rules.h>
#include <sm/tv_sm_database.h>

namespace operations {

namespace {

struct SheetProperty {
    TvString name;
    TvVariant value;
};

/// Those that each sheet of the set carries.
std::vector<SheetProperty> sheetPropertiesOf(const TvSmSheetSet& set)
{
    std::vector<SheetProperty> found;
    for (const sm::Property& property : sm::propertiesOf(set.getCustomProperties())) {
        if (!(property.value->getFlags() & TvSmCustomPropertyValue::kSheetProperty))
            continue;
        SheetProperty copy{property.name, {}};
        property.value->getValue(copy.value);
        found.push_back(std::move(copy));
    }
    return found;
}

bool give(TvSmSheet& sheet, const SheetProperty& property)
{
    auto value = std::make_unique<TvSmCustomPropertyValue>();
    if (!value->initNew(&sheet, {}) || !value->setFlags(TvSmCustomPropertyValue::kSheetProperty) ||
        !value->setValue(property.value) ||
        !sheet.getCustomProperties()->setProperty(property.name, value.get()))
        return false;
    value.release(); // the database's now
    return true;
}

bool fill(TvSmTvDbLayoutReference& reference, const LayoutRow& row)
{
    return reference.setFileName(row.drawing) && reference.setName(row.layout) &&
           reference.setHandle(row.handle.text());
}

} // namespace

TvString importedSheetName(const TvString& drawing, const TvString& layout, bool withPrefix)
{
    return withPrefix ? base::PathRules::native().stemOf(drawing) + u" - " + layout : layout;
}

TvSmSheet* makeImportedSheet(TvSmSubset& subset, const LayoutRow& row, bool withPrefix)
{
    TvSmSheet* sheet =
        subset.createSheet(importedSheetName(row.drawing, row.layout, withPrefix), {});
    return sheet && repointSheet(*sheet, row) ? sheet : nullptr;
}

bool repointSheet(TvSmSheet& sheet, const LayoutRow& row)
{
    if (TvSmTvDbLayoutReference* present = sheet.getLayoutReference())
        return fill(*present, row);
    auto made = std::make_unique<TvSmTvDbLayoutReference>();
    if (!made->initNew(&sheet, {}) || !fill(*made, row) || !sheet.setLayoutReference(made.get()))
        return false;
    made.release(); // the database's now
    return true;
}

bool placeImportedSheets(TvSmSubset& subset, std::span<TvSmSheet* const> sheets,
                         TvSmComponent* before)
{
    const TvSmDatabase* database = subset.database();
    if (!database)
        return false;
    const std::vector<SheetProperty> properties = sheetPropertiesOf(*database->getSheetSet());
    bool isAllDone = true;
    for (TvSmSheet* sheet : sheets) {
        if (!sheet)
            continue;
        for (const SheetProperty& property : properties)
            isAllDone = give(*sheet, property) && isAllDone;
        isAllDone = subset.insertComponent(sheet, before) && isAllDone;
    }
    return isAllDone;
}

} // namespace operations
