#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <base/path_rules.h>
#include <db/tv_db_dictionary.h>
#include <sm/tv_sm_custom_property_bag.h>
#include <sm/tv_sm_sheet_set_mgr.h>

#include "lake_house.h"

namespace samples::lake_house {

namespace {

struct SheetRow {
    const TvChar *number, *title, *description, *drawing;
};

void hold(bool isDone, const char* what)
{
    if (!isDone)
        throw std::runtime_error(std::string("sheet set: ") + what);
}

/// The handle of the sheet's layout, in a drawing that is there; empty otherwise.
TvString handleOf(const TvString& drawing, const TvString& layout)
{
    TvDbDatabase read(false, true);
    if (read.readDwgFile(drawing) != TvStatus::Ok)
        return {};
    const TvDbObjectPointer<TvDbDictionary> layouts(read.layoutDictionaryId());
    TvDbObjectId id;
    require(layouts->getAt(layout, id), "layout of a sheet");
    return id.handle().text();
}

void addProperty(TvSmComponent& object, const TvString& name, const TvString& text,
                 unsigned short flags)
{
    auto value = std::make_unique<TvSmCustomPropertyValue>();
    hold(value->initNew(object.getCustomProperties(), TvString()) &&
             value->setValue(TvVariant(text)) && value->setFlags(flags) &&
             object.getCustomProperties()->setProperty(name, value.get()),
         "property");
    value.release();
}

void addSheet(TvSmSubset& parent, const TvString& folder, const SheetRow& row)
{
    TvSmSheet* sheet = parent.createSheet(row.title, row.description);
    hold(sheet && sheet->setNumber(row.number) && sheet->setTitle(row.title) &&
             parent.insertComponent(sheet, nullptr),
         "sheet");
    const TvString path = base::PathRules::native().join(folder, row.drawing);
    const TvString layout = row.number + TvString(u" ") + row.title;
    auto reference = std::make_unique<TvSmTvDbLayoutReference>();
    hold(reference->initNew(sheet, TvString()) && reference->setFileName(path) &&
             reference->setName(layout) && reference->setHandle(handleOf(path, layout)) &&
             sheet->setLayoutReference(reference.get()),
         "layout of a sheet");
    reference.release();
}

TvSmSubset& addSubset(TvSmSubset& parent, const TvString& name, const TvString& description)
{
    TvSmSubset* subset = parent.createSubset(name, description);
    hold(subset && parent.insertComponent(subset, nullptr), "subset");
    return *subset;
}

void fill(TvSmSheetSet& set, const TvString& folder)
{
    hold(set.setName(u"House at the Lake") &&
             set.setDesc(u"A small house, drawings for the permit") &&
             set.setSheetSetText1(u"2026-014") && set.setSheetSetText2(u"House at the Lake") &&
             set.setSheetSetText3(u"Permit") && set.setSheetSetText4(u"March 2026"),
         "texts");
    addProperty(set, u"Client", u"M. and J. Holm", 1);
    addProperty(set, u"Architect", u"E. Lind", 1);
    const auto add = [&](TvSmSubset& parent, std::initializer_list<SheetRow> rows) {
        for (const SheetRow& row : rows)
            addSheet(parent, folder, row);
    };
    add(addSubset(set, u"General", u"Cover and site"),
        {{u"A-001", u"Cover", u"List of sheets", u"site.dwg"},
         {u"A-101", u"Site Plan", u"House, boundaries and trees", u"site.dwg"}});
    TvSmSubset& house = addSubset(set, u"Architecture", u"The house");
    add(addSubset(house, u"Plans", u""), {{u"A-201", u"Ground Floor", u"", u"plans.dwg"},
                                          {u"A-202", u"Upper Floor", u"", u"plans.dwg"},
                                          {u"A-203", u"Roof Plan", u"", u"plans.dwg"}});
    add(addSubset(house, u"Sections", u""),
        {{u"A-301", u"Section A-A", u"Across", u"sections.dwg"},
         {u"A-302", u"Section B-B", u"Along", u"sections.dwg"}});
    add(addSubset(house, u"Elevations", u""),
        {{u"A-401", u"South and North", u"", u"elevations.dwg"},
         {u"A-402", u"East and West", u"", u"elevations.dwg"}});
    add(addSubset(house, u"Details", u""),
        {{u"A-501", u"Eaves and Window", u"", u"details.dwg"},
         {u"A-502", u"Foundation", u"", u"details.dwg"},
         {u"A-503", u"Windows and Doors", u"Lists", u"details.dwg"}});
    // The engineer has not sent it yet.
    add(addSubset(set, u"Structure", u"Drawings of the engineer"),
        {{u"S-101", u"Foundation Plan", u"", u"structure.dwg"}});
    // New sheets go beside the others.
    auto place = std::make_unique<TvSmFileReference>();
    hold(place->initNew(&set, TvString()) && place->setFileName(folder) &&
             set.setNewSheetLocation(place.get()),
         "place of new sheets");
    place.release();
}

/// The file as if it had been made in a folder that every machine calls the same. Readers find the
/// drawings by the paths from the set's own folder.
void settle(const std::string& file, const std::string& folder)
{
    std::stringstream content;
    content << std::ifstream(file, std::ios::binary).rdbuf();
    std::string text = content.str();
    const std::string there = "/projects/lake-house";
    for (std::size_t at = text.find(folder); at != std::string::npos;
         at = text.find(folder, at + there.size()))
        text.replace(at, folder.size(), there);
    std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
}

} // namespace

void makeSheetSet(const TvString& folder)
{
    TvSmSheetSetMgr manager;
    const TvString path = base::PathRules::native().join(folder, u"lake-house.dst");
    TvSmDatabase* database = manager.createDatabase(path, TvString(), true);
    hold(database != nullptr, "file");
    fill(*database->getSheetSet(), base::PathRules::native().join(folder, kDrawingFolder));
    hold(database->save(0), "saving");
    manager.closeDatabase(database);
    for (const auto& each : std::filesystem::directory_iterator(folder.utf8()))
        if (each.path().filename().string().starts_with('.'))
            std::filesystem::remove(each.path()); // what a shared set keeps beside itself
    settle(path.utf8(), folder.utf8());
}

} // namespace samples::lake_house
