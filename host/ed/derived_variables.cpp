#include "derived_variables.h"

#include <base/path_rules.h>
#include <db/dictionary_variable.h>
#include <db/tv_db_database.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_viewport.h>

#include "ed/layouts.h"
#include "ed/tv_ap_doc_manager.h"
#include "ed/tv_editor.h"

namespace ed {

namespace {

using Value = std::optional<VariableValue>;

std::int16_t asShort(bool value)
{
    return value ? 1 : 0;
}

void tellChange(const TvChar* name)
{
    if (TvEditor* editor = tvedEditor())
        editor->fireSysVarChanged(name);
}

/// The name of a symbol table's record.
Value nameOfRecord(TvDbObjectId id)
{
    const TvDbObjectPointer<TvDbSymbolTableRecord> record(id);
    return record ? Value(record->getName()) : std::nullopt;
}

/// Points a header variable at the record of that name.
bool pointAt(TvDbDatabase& database, const char* field, TvDb::SymbolTable table,
             const VariableValue& value, const TvChar* variable)
{
    const TvDbObjectPointer<TvDbSymbolTable> records(database.symbolTableId(table));
    TvDbObjectId id;
    if (!records || records->getAt(std::get<TvString>(value), id) != TvStatus::Ok)
        return false;
    if (database.headerRecord().handle(field) == id.handle().value())
        return true;
    if (!database.editHeader().setHandle(field, id.handle().value()))
        return false;
    tellChange(variable);
    return true;
}

/// Of the windows of model space the first counts; numbers begin at 2 there, as 1 is the sheet.
std::int16_t currentViewportNumber(TvDbDatabase& database)
{
    constexpr std::int16_t kModel = 2, kSheet = 1;
    if (database.tilemode())
        return kModel;
    const TvDbObjectPointer<TvDbLayout> layout(currentLayout(database));
    const TvDbObjectId active =
        layout ? layout->idOf(layout->fields().handle("active_viewport")) : TvDbObjectId();
    const TvDbObjectPointer<TvDbViewport> viewport(active);
    const int number = viewport ? viewport->number() : kSheet;
    return number > kSheet ? static_cast<std::int16_t>(number) : kSheet;
}

bool setCurrentViewport(TvDbDatabase& database, std::int16_t number)
{
    if (number == currentViewportNumber(database))
        return true;
    const TvDbObjectPointer<TvDbLayout> layout(currentLayout(database), TvDb::kForWrite);
    if (!layout || database.tilemode())
        return false;
    const std::vector<TvDbObjectId> all = layout->getViewportArray();
    if (number < 1 || static_cast<std::size_t>(number) > all.size())
        return false;
    const TvDbObjectId chosen = all[number - 1];
    const TvDbObjectPointer<TvDbViewport> viewport(chosen);
    if (!viewport || !viewport->isOn() ||
        !layout->edit().setHandle("active_viewport", chosen.handle().value()))
        return false;
    tellChange(u"CVPORT");
    return true;
}

Value documentFile(TvDbDatabase& database)
{
    const TvApDocument* document =
        tvDocManagerPtr() ? tvDocManagerPtr()->document(&database) : nullptr;
    return document ? document->fileName() : database.getFilename();
}

constexpr TvChar kTableStyle[] = u"CTABLESTYLE";
constexpr TvChar kStandardStyle[] = u"Standard";

/// As the drawing's dictionary of table styles spells it; nullopt when it has none of that name.
std::optional<TvString> tableStyleNamed(const TvDbDatabase& database, const TvString& name)
{
    const TvDbObjectPointer<TvDbDictionary> styles(database.tableStyleDictionaryId());
    TvDbObjectId style;
    TvString spelt;
    if (!styles || styles->getAt(name, style) != TvStatus::Ok ||
        styles->nameAt(style, spelt) != TvStatus::Ok)
        return std::nullopt;
    return spelt;
}

/// A style that is gone is still told: who looks for it finds none.
Value currentTableStyle(TvDbDatabase& database)
{
    const TvString kept = db::dictionaryVariable(database, kTableStyle);
    const TvString name = kept.isEmpty() ? TvString(kStandardStyle) : kept;
    return tableStyleNamed(database, name).value_or(name);
}

bool setCurrentTableStyle(TvDbDatabase& database, const TvString& wanted)
{
    const std::optional<TvString> style = tableStyleNamed(database, wanted);
    if (!style)
        return false;
    if (currentTableStyle(database) == VariableValue(*style))
        return true;
    if (db::setDictionaryVariable(database, kTableStyle, *style) != TvStatus::Ok)
        return false;
    tellChange(kTableStyle);
    return true;
}

Value daysOf(const TvDbDate& date)
{
    constexpr double kMillisecondsPerDay = 86'400'000.0;
    return date.julianDay() + date.millisecondsOfDay() / kMillisecondsPerDay;
}

const std::vector<DerivedVariable> kDerived = {
    {u"CLAYER", VariableKind::Text,
     [](TvDbDatabase& database) { return nameOfRecord(database.clayer()); },
     [](TvDbDatabase& database, const VariableValue& value) {
         return pointAt(database, "CLAYER", TvDb::SymbolTable::Layer, value, u"CLAYER");
     }},
    {u"CTAB", VariableKind::Text,
     [](TvDbDatabase& database) { return Value(currentLayoutName(database)); },
     [](TvDbDatabase& database, const VariableValue& value) {
         return setCurrentLayout(database, std::get<TvString>(value)) == TvStatus::Ok;
     }},
    {kTableStyle, VariableKind::Text, currentTableStyle,
     [](TvDbDatabase& database, const VariableValue& value) {
         return setCurrentTableStyle(database, std::get<TvString>(value));
     }},
    {u"CVPORT", VariableKind::Short,
     [](TvDbDatabase& database) { return Value(currentViewportNumber(database)); },
     [](TvDbDatabase& database, const VariableValue& value) {
         return setCurrentViewport(database, std::get<std::int16_t>(value));
     }},
    {u"DBMOD", VariableKind::Short,
     [](TvDbDatabase& database) { return Value(asShort(database.isModified())); }, nullptr},
    {u"DWGNAME", VariableKind::Text,
     [](TvDbDatabase& database) {
         return Value(
             base::PathRules::native().fileNameOf(std::get<TvString>(*documentFile(database))));
     },
     nullptr},
    {u"DWGPREFIX", VariableKind::Text,
     [](TvDbDatabase& database) {
         return Value(
             base::PathRules::native().folderOf(std::get<TvString>(*documentFile(database))));
     },
     nullptr},
    {u"DWGTITLED", VariableKind::Short,
     [](TvDbDatabase& database) { return Value(asShort(!database.getFilename().isEmpty())); },
     nullptr},
    {u"TDCREATE", VariableKind::Real,
     [](TvDbDatabase& database) { return daysOf(database.tdcreate()); }, nullptr},
    {u"TDINDWG", VariableKind::Real,
     [](TvDbDatabase& database) { return daysOf(database.tdindwg()); }, nullptr},
    {u"TDUPDATE", VariableKind::Real,
     [](TvDbDatabase& database) { return daysOf(database.tdupdate()); }, nullptr},
    {u"TEXTSTYLE", VariableKind::Text,
     [](TvDbDatabase& database) { return nameOfRecord(database.textstyle()); },
     [](TvDbDatabase& database, const VariableValue& value) {
         return pointAt(database, "TEXTSTYLE", TvDb::SymbolTable::TextStyle, value, u"TEXTSTYLE");
     }},
    {u"TILEMODE", VariableKind::Short,
     [](TvDbDatabase& database) { return Value(asShort(database.tilemode())); },
     [](TvDbDatabase& database, const VariableValue& value) {
         const bool on = std::get<std::int16_t>(value) != 0;
         if (database.tilemode() == on)
             return true;
         const TvDbObjectPointer<TvDbBlockTableRecord> space(on ? database.modelSpaceId()
                                                                : database.paperSpaceId());
         if (space && setCurrentLayout(database, space->getLayoutId()) == TvStatus::Ok)
             return true;
         database.setTilemode(on); // a damaged drawing, whose space is no layout's
         tellChange(u"TILEMODE");
         tellChange(u"CTAB");
         return true;
     }},
};

} // namespace

const std::vector<DerivedVariable>& derivedVariables()
{
    return kDerived;
}

const DerivedVariable* derivedVariable(const TvString& name)
{
    for (const DerivedVariable& variable : kDerived)
        if (name.compareNoCase(variable.name) == 0)
            return &variable;
    return nullptr;
}

} // namespace ed
