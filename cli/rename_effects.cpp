#include "rename_effects.h"

#include <nlohmann/json.hpp>

#include <base/path_rules.h>

#include "columns.h"

namespace cli {

namespace {

using operations::Clash;
using operations::DrawingEffect;
using operations::RenamePlan;
using operations::SheetEffect;

struct ClashRow {
    Clash clash;
    const char* name; ///< in JSON documents
    Word word;
};
// clang-format off
constexpr ClashRow kClashes[] = {
    {Clash::NumberTooLong,     "numberTooLong",     Word::ClashNumberTooLong},
    {Clash::NumberCharacters,  "numberCharacters",  Word::ClashNumberCharacters},
    {Clash::TitleMissing,      "titleMissing",      Word::ClashTitleMissing},
    {Clash::TitleTooLong,      "titleTooLong",      Word::ClashTitleTooLong},
    {Clash::TitleCharacters,   "titleCharacters",   Word::ClashTitleCharacters},
    {Clash::Duplicate,         "duplicate",         Word::ClashDuplicate},
    {Clash::NoLayout,          "noLayout",          Word::ClashNoLayout},
    {Clash::DrawingMissing,    "drawingMissing",    Word::ClashDrawingMissing},
    {Clash::DrawingUnreadable, "drawingUnreadable", Word::ClashDrawingUnreadable},
    {Clash::DrawingInUse,      "drawingInUse",      Word::ClashDrawingInUse},
    {Clash::DrawingReadOnly,   "drawingReadOnly",   Word::ClashDrawingReadOnly},
    {Clash::DrawingLinked,     "drawingLinked",     Word::ClashDrawingLinked},
    {Clash::LayoutMissing,     "layoutMissing",     Word::ClashLayoutMissing},
    {Clash::LayoutName,        "layoutName",        Word::ClashLayoutName},
    {Clash::LayoutTaken,       "layoutTaken",       Word::ClashLayoutTaken},
    {Clash::FileName,          "fileName",          Word::ClashFileName},
    {Clash::FilePathTooLong,   "filePathTooLong",   Word::ClashFilePathTooLong},
    {Clash::FileExists,        "fileExists",        Word::ClashFileExists},
    {Clash::FileTwice,         "fileTwice",         Word::ClashFileTwice},
    {Clash::Stale,             "stale",             Word::ClashStale},
};
// clang-format on

const ClashRow* rowOf(Clash clash)
{
    const auto row = std::ranges::find(kClashes, clash, &ClashRow::clash);
    return row == std::end(kClashes) ? nullptr : row;
}

template <class Effect>
TvString clashWords(const Effect& effect)
{
    const ClashRow* row = rowOf(effect.clash);
    if (!row)
        return {};
    return effect.about.isEmpty() ? words(row->word)
                                  : words(Word::ClashAbout, words(row->word), effect.about);
}

TvString fromTo(const TvString& from, const TvString& to)
{
    const auto shown = [](const TvString& name) {
        return name.isEmpty() ? TvString(u"\"\"") : name;
    };
    return from == to ? from : words(Word::EffectFromTo, shown(from), shown(to));
}

TvString nameOf(const TvString& path)
{
    return base::PathRules::native().fileNameOf(path.view());
}

void print(const RenamePlan& plan, Console& console)
{
    Columns columns;
    for (const SheetEffect& sheet : plan.sheets) {
        const DrawingEffect* drawing =
            sheet.drawing < 0 ? nullptr : &plan.drawings[static_cast<std::size_t>(sheet.drawing)];
        columns.add(
            {{sheet.handle, Tone::Faint},
             {fromTo(sheet.oldNumber, sheet.newNumber), Tone::Strong},
             {fromTo(sheet.oldTitle, sheet.newTitle)},
             {fromTo(sheet.oldLayout, sheet.newLayout)},
             {drawing ? fromTo(nameOf(drawing->oldPath), nameOf(drawing->newPath)) : TvString()},
             {clashWords(sheet), Tone::Alert}});
    }
    columns.print(console);
    Columns clashes;
    for (const DrawingEffect& drawing : plan.drawings)
        if (drawing.clash != Clash::None)
            clashes.add({{drawing.oldPath}, {clashWords(drawing), Tone::Alert}});
    clashes.print(console);
}

Json changeOf(const TvString& from, const TvString& to)
{
    return {{"from", jsonText(from)}, {"to", jsonText(to)}};
}

template <class Effect>
void addClash(Json& json, const Effect& effect)
{
    const ClashRow* row = rowOf(effect.clash);
    json["clash"] = row ? Json(row->name) : Json();
    json["about"] = effect.about.isEmpty() ? Json() : Json(jsonText(effect.about));
}

void document(const RenamePlan& plan, Console& console)
{
    Json sheets = Json::array();
    for (const SheetEffect& sheet : plan.sheets) {
        Json json = {{"handle", jsonText(sheet.handle)},
                     {"number", changeOf(sheet.oldNumber, sheet.newNumber)},
                     {"title", changeOf(sheet.oldTitle, sheet.newTitle)},
                     {"layout", changeOf(sheet.oldLayout, sheet.newLayout)},
                     {"drawing", sheet.drawing < 0 ? Json() : Json(sheet.drawing)}};
        addClash(json, sheet);
        sheets.push_back(std::move(json));
    }
    Json drawings = Json::array();
    for (const DrawingEffect& drawing : plan.drawings) {
        Json json = changeOf(drawing.oldPath, drawing.newPath);
        json["changesLayouts"] = drawing.changesLayouts;
        addClash(json, drawing);
        drawings.push_back(std::move(json));
    }
    console.document()["sheets"] = std::move(sheets);
    console.document()["drawings"] = std::move(drawings);
}

int countClashes(const RenamePlan& plan)
{
    const auto clashes = [](const auto& effect) { return effect.clash != Clash::None; };
    return static_cast<int>(std::ranges::count_if(plan.sheets, clashes) +
                            std::ranges::count_if(plan.drawings, clashes));
}

} // namespace

ExitCode showAndApply(ChangedSet& set, const RenamePlan& plan, Console& console)
{
    const int clashes = countClashes(plan);
    print(plan, console);
    document(plan, console);
    console.document()["clashes"] = clashes;
    console.document()["dryRun"] = set.isDryRun();
    if (clashes > 0)
        refuse(ExitCode::CheckFailed, Word::RenameClashes, clashes);
    if (!plan.changesAnything())
        console.say(words(Word::NothingToChange));
    else if (set.isDryRun())
        console.say(words(Word::DryRunDone));
    else {
        console.stopIfInterrupted();
        const base::Status status =
            operations::applyRename(set.database(), plan, [&set] { return set.tryCommit(); });
        if (!status)
            refuse(status, Doing::Writing);
    }
    return ExitCode::Ok;
}

} // namespace cli
