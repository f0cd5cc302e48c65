#include <nlohmann/json.hpp>

#include <db/tv_db_layout.h>

#include "cli/drawing_facts.h"
#include "cli/drawing_layouts.h"
#include "cli/drawing_session.h"
#include "cli/sheet_data_words.h"
#include "cli/verbs.h"
#include "columns.h"

namespace cli {

namespace {

/// "Model, Layout1".
TvString namesOf(TvDbDatabase& database)
{
    TvString names;
    for (const TvDbObjectId id : db::layoutsInTabOrder(database))
        if (const TvDbObjectPointer<TvDbLayout> layout(id); layout)
            names += (names.isEmpty() ? TvString() : TvString(u", ")) + layout->getLayoutName();
    return names;
}

/// Answers that a sound drawing never gives: something that a layout leads to is not there, or is
/// not what it should be.
bool isContradiction(TvStatusCode code)
{
    switch (code) {
    case TvStatus::InvalidInput:
    case TvStatus::NotApplicable:
    case TvStatus::UnknownHandle:
    case TvStatus::NotThatObject:
    case TvStatus::NotOpenable:
    case TvStatus::NotInDatabase:
    case TvStatus::WasErased:
    case TvStatus::KeyNotFound:
    case TvStatus::OutOfRange: return true;
    default: return false;
    }
}

[[noreturn]] void refuseLayout(TvStatusCode code, const TvString& name, TvDbDatabase& database)
{
    switch (code) {
    case TvStatus::DuplicateName: refuseUsage(Word::LayoutExists, name);
    case TvStatus::InvalidName: refuseUsage(Word::LayoutBadName, name);
    case TvStatus::NameReserved: refuseUsage(Word::LayoutNameReserved, name);
    case TvStatus::StillInUse: refuseUsage(Word::LastLayoutStays, name);
    case TvStatus::NotUnderstood:
    case TvStatus::NotOpenForWrite: refuse(ExitCode::Damaged, Word::LayoutNotUnderstood, name);
    default: break;
    }
    if (!database.lastFailure())
        refuseDrawing(database.lastFailure(), database.getFilename(), Doing::Writing);
    if (isContradiction(code))
        refuse(ExitCode::Damaged, Word::LayoutsDamaged, name);
    refuse(ExitCode::Internal, Word::DrawingNotChanged, static_cast<int>(code));
}

void requireDone(TvStatusCode code, const TvString& name, TvDbDatabase& database)
{
    if (code != TvStatus::Ok)
        refuseLayout(code, name, database);
}

/// What a change of a layout tells besides its own.
void tell(const OpenedDrawing& opened, const TvString& handle, bool dryRun, Console& console)
{
    console.document()["file"] = jsonText(opened.path());
    console.document()["handle"] = jsonText(handle);
    console.document()["dryRun"] = dryRun;
}

/// A sheet set finds a layout by its handle; the drawing's own note of it is not touched here.
/// @param warning  what is said of the sheet: takes the layout's name and the set's file.
void warnIfSheet(TvDbDatabase& database, const TvString& handle, const TvString& name, Word warning,
                 Console& console)
{
    const core::SheetData data = core::readSheetData(database);
    if (data.isThere && data.texts.handle.compareNoCase(handle) == 0)
        console.warn(messageOf(warning, name, data.texts.sheetSetFile));
}

ExitCode list(const LayoutListRequest& request, Console& console)
{
    OpenedDrawing opened(request.file, console);
    const std::vector<LayoutFacts> layouts = layoutsOf(opened.database());
    listLayouts(layouts, console);
    console.document()["file"] = jsonText(opened.path());
    console.document()["layouts"] = jsonOf(layouts);
    return ExitCode::Ok;
}

ExitCode add(const LayoutAddRequest& request, Console& console)
{
    OpenedDrawing opened(request.file, console);
    TvDbDatabase& database = opened.database();
    TvDbObjectId id;
    requireDone(db::addLayout(database, request.name, id), request.name, database);
    opened.commit(request.change);
    const TvString handle = handleText(id);
    console.line({{handle}});
    tell(opened, handle, request.change.dryRun, console);
    console.document()["name"] = jsonText(request.name);
    return ExitCode::Ok;
}

ExitCode rename(const LayoutRenameRequest& request, Console& console)
{
    OpenedDrawing opened(request.file, console);
    TvDbDatabase& database = opened.database();
    const TvDbObjectId id = paperLayoutNamed(database, request.name);
    const TvString handle = handleText(id);
    TvString before;
    {
        const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForWrite);
        requireDone(layout.openStatus(), request.name, database);
        before = layout->getLayoutName();
        requireDone(layout->setLayoutName(request.newName), request.newName, database);
    }
    if (opened.commit(request.change))
        warnIfSheet(database, handle, before, Word::WarnSheetDataLayout, console);
    console.line({{words(Word::RenamedFromTo, handle, before, request.newName)}});
    tell(opened, handle, request.change.dryRun, console);
    console.document()["from"] = jsonText(before);
    console.document()["to"] = jsonText(request.newName);
    return ExitCode::Ok;
}

ExitCode remove(const LayoutRemoveRequest& request, Console& console)
{
    OpenedDrawing opened(request.file, console);
    TvDbDatabase& database = opened.database();
    const TvDbObjectId id = paperLayoutNamed(database, request.name);
    const TvString handle = handleText(id);
    TvString name;
    int entities = 0;
    for (const LayoutFacts& facts : layoutsOf(database))
        if (facts.handle == handle) {
            name = facts.name;
            entities = facts.entities;
        }
    {
        const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForWrite);
        requireDone(layout.openStatus(), name, database);
        requireDone(layout->erase(), name, database);
    }
    if (opened.commit(request.change))
        warnIfSheet(database, handle, name, Word::WarnSheetDataNoLayout, console);
    console.line({{handle, Tone::Faint},
                  {u"  "},
                  {name, Tone::Strong},
                  {u"  "},
                  {words(Word::LayoutEntities, entities)}});
    tell(opened, handle, request.change.dryRun, console);
    console.document()["name"] = jsonText(name);
    console.document()["entities"] = entities;
    return ExitCode::Ok;
}

/// In the units that the layout is drawn in.
TvString paperWords(const LayoutFacts& layout)
{
    constexpr double kMmPerInch = 25.4;
    if (layout.paperWidthMm == 0 && layout.paperHeightMm == 0)
        return words(Word::LayoutNoPaper);
    const bool isInches = layout.paperUnits == TvDbPlotSettings::kInches;
    const double unit = isInches ? kMmPerInch : 1.0;
    return words(isInches ? Word::LayoutPaperInches : Word::LayoutPaper,
                 TvString().format(u"%.5g", layout.paperWidthMm / unit),
                 TvString().format(u"%.5g", layout.paperHeightMm / unit));
}

/// Nothing for a layout without a printer, which drawings note as a printer of that name.
TvString printerWords(const LayoutFacts& layout)
{
    const bool isNone = layout.printer.compareNoCase(u"none_device") == 0 ||
                        layout.printer.compareNoCase(u"None") == 0;
    return isNone ? TvString() : layout.printer;
}

} // namespace

TvDbObjectId layoutNamed(TvDbDatabase& database, const TvString& name)
{
    for (const TvDbObjectId id : db::layoutsInTabOrder(database))
        if (const TvDbObjectPointer<TvDbLayout> layout(id);
            layout && layout->getLayoutName().compareNoCase(name) == 0)
            return id;
    const TvString names = namesOf(database);
    if (names.isEmpty()) // every sound drawing has its model layout
        refuse(ExitCode::Damaged, Word::LayoutsDamaged, name);
    refuse(ExitCode::NoInput, Word::NoSuchLayout, name, names);
}

TvDbObjectId paperLayoutNamed(TvDbDatabase& database, const TvString& name)
{
    const TvDbObjectId id = layoutNamed(database, name);
    const TvDbObjectPointer<TvDbLayout> layout(id);
    if (layout->isModelLayout())
        refuseUsage(Word::ModelLayoutStays);
    return id;
}

void listLayouts(const std::vector<LayoutFacts>& layouts, Console& console, const TvString& indent)
{
    Columns columns;
    for (const LayoutFacts& layout : layouts)
        columns.add({{layout.handle, Tone::Faint},
                     {layout.name, Tone::Strong},
                     {layout.isEmpty ? words(Word::LayoutEmpty)
                                     : words(Word::LayoutEntities, layout.entities)},
                     {paperWords(layout)},
                     {layout.paperName},
                     {printerWords(layout)}});
    columns.print(console, indent);
}

Outcome run(const LayoutListRequest& request, Console& console)
{
    return attempt(console, [&] { return list(request, console); });
}

Outcome run(const LayoutAddRequest& request, Console& console)
{
    return attempt(console, [&] { return add(request, console); });
}

Outcome run(const LayoutRenameRequest& request, Console& console)
{
    return attempt(console, [&] { return rename(request, console); });
}

Outcome run(const LayoutRemoveRequest& request, Console& console)
{
    return attempt(console, [&] { return remove(request, console); });
}

} // namespace cli
