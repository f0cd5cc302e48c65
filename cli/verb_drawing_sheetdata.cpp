#include <nlohmann/json.hpp>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <db/tv_db_layout.h>

#include "cli/drawing_facts.h"
#include "cli/drawing_layouts.h"
#include "cli/drawing_session.h"
#include "cli/session.h"
#include "cli/sheet_data_words.h"
#include "cli/verbs.h"
#include "columns.h"

namespace cli {

namespace {

constexpr std::size_t kMostDigits = 16;

/// The layout of that handle; refuses what is no handle (Usage) or leads to no layout (NoInput).
TvDbObjectId layoutAt(TvDbDatabase& database, const TvString& handle)
{
    const std::u16string_view digits = handle.view();
    if (digits.empty() || digits.size() > kMostDigits ||
        digits.find_first_not_of(u"0123456789ABCDEFabcdef") != std::u16string_view::npos)
        refuseUsage(Word::NotAnObjectHandle, handle);
    TvDbObjectId id;
    database.getTvDbObjectId(id, false, TvDbHandle(digits));
    const TvDbObjectPointer<TvDbLayout> layout(id);
    if (!layout)
        refuse(ExitCode::NoInput, Word::HandleNoLayout, handle);
    return id;
}

void requireSheet(const SheetDataWriteRequest& request)
{
    if (!request.layout && !request.handle)
        refuseUsage(Word::LayoutOrHandle);
    if (!request.set.endsWithNoCase(u".dst"))
        refuseUsage(Word::NotADstPath, request.set);
}

SheetDataRecord recordFor(const SheetDataWriteRequest& request, OpenedDrawing& opened)
{
    const TvDbObjectId id = request.handle ? layoutAt(opened.database(), *request.handle)
                                           : layoutNamed(opened.database(), *request.layout);
    const TvDbObjectPointer<TvDbLayout> layout(id);
    return {handleText(id), layout->getLayoutName(), opened.path(), fullPath(request.set)};
}

/// What all three verbs tell in the end.
void tell(OpenedDrawing& opened, Console& console)
{
    console.document()["file"] = jsonText(opened.path());
    console.document()["sheetData"] = jsonOf(core::readSheetData(opened.database()));
}

void tellChange(bool isChanged, bool dryRun, Console& console)
{
    console.document()["changed"] = isChanged;
    console.document()["dryRun"] = dryRun;
}

ExitCode show(const SheetDataShowRequest& request, Console& console)
{
    OpenedDrawing opened(request.file, console);
    const core::SheetData data = core::readSheetData(opened.database());
    if (data.isThere)
        listSheetData(data, console);
    else
        console.say(words(Word::SheetDataNone));
    tell(opened, console);
    return ExitCode::Ok;
}

ExitCode write(const SheetDataWriteRequest& request, Console& console)
{
    requireSheet(request);
    OpenedDrawing opened(request.file, console);
    const SheetDataRecord record = recordFor(request, opened);
    if (!WriteSheetData(&opened.database(), record))
        refuse(ExitCode::Damaged, Word::SheetDataIncomplete);
    const bool isChanged = opened.commit(request.change);
    if (!KvFileSystem::pathFileExists(record.sheetSetFile))
        console.warn(messageOf(Word::WarnSetMissing, record.sheetSetFile));
    listSheetData(core::readSheetData(opened.database()), console);
    tell(opened, console);
    tellChange(isChanged, request.change.dryRun, console);
    return ExitCode::Ok;
}

ExitCode remove(const SheetDataRemoveRequest& request, Console& console)
{
    OpenedDrawing opened(request.file, console);
    const core::SheetData before = core::readSheetData(opened.database());
    RemoveSheetData(&opened.database());
    const bool isChanged = opened.commit(request.change);
    if (before.isThere)
        listSheetData(before, console);
    console.document()["file"] = jsonText(opened.path());
    console.document()["removed"] = jsonOf(before);
    tellChange(isChanged, request.change.dryRun, console);
    return ExitCode::Ok;
}

} // namespace

Json jsonOf(const core::SheetData& data)
{
    if (!data.isThere)
        return {};
    return {{"layoutHandle", jsonText(data.texts.handle)},
            {"layoutName", jsonText(data.texts.layoutName)},
            {"drawing", jsonText(data.texts.drawingName)},
            {"sheetSet", jsonText(data.texts.sheetSetFile)},
            {"version", data.version},
            {"updateCount", data.updateCount},
            {"updateTime", jsonText(data.updateTime)}};
}

void listSheetData(const core::SheetData& data, Console& console, const TvString& indent)
{
    Columns columns;
    columns.add({{words(Word::DrawingSheetSet), Tone::Faint}, {data.texts.sheetSetFile}});
    columns.add({{words(Word::DrawingSheetLayout), Tone::Faint},
                 {data.texts.handle + u"  " + data.texts.layoutName}});
    columns.add({{words(Word::DrawingUpdates), Tone::Faint},
                 {words(Word::DrawingUpdatesAt, data.updateCount, data.updateTime)}});
    columns.print(console, indent);
}

Outcome run(const SheetDataShowRequest& request, Console& console)
{
    return attempt(console, [&] { return show(request, console); });
}

Outcome run(const SheetDataWriteRequest& request, Console& console)
{
    return attempt(console, [&] { return write(request, console); });
}

Outcome run(const SheetDataRemoveRequest& request, Console& console)
{
    return attempt(console, [&] { return remove(request, console); });
}

} // namespace cli
