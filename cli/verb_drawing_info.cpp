#include <nlohmann/json.hpp>

#include <base/kv_file_system.h>
#include <core/sheet_data.h>
#include <db/tv_db_summary_info.h>

#include "cli/drawing_facts.h"
#include "cli/drawing_session.h"
#include "cli/sheet_data_words.h"
#include "cli/verbs.h"
#include "columns.h"

namespace cli {

namespace {

struct Info {
    TvString file;
    std::int64_t bytes = 0;
    db::DrawingInventory inventory;
    TvDbDate created, changed, editing;
    std::vector<LayoutFacts> layouts;
    std::vector<ViewFacts> views;
    std::vector<BlockFacts> blocks;
    db::SummaryInfo summary;
    core::SheetData sheetData;
    DrawingForm form;
};

db::SummaryInfo summaryOf(TvDbDatabase& database)
{
    TvDbDatabaseSummaryInfo* info = nullptr;
    if (tvdbGetSummaryInfo(&database, info) != TvStatus::Ok)
        return {};
    const std::unique_ptr<TvDbDatabaseSummaryInfo> owned(info);
    return owned->values();
}

Info gather(OpenedDrawing& opened)
{
    TvDbDatabase& database = opened.database();
    Info info;
    info.file = opened.path();
    info.bytes = KvFileSystem::getFileSize(info.file);
    info.inventory = db::inventoryOf(database);
    info.created = database.tdcreate();
    info.changed = database.tdupdate();
    info.editing = database.tdindwg();
    info.layouts = layoutsOf(database);
    info.views = viewsOf(database);
    info.blocks = blocksOf(database);
    info.summary = summaryOf(database);
    info.sheetData = core::readSheetData(database);
    info.form = {info.inventory.format, database.originalFileVersion()};
    return info;
}

// --- the document

std::string_view pictureName(db::Preview::Kind kind)
{
    switch (kind) {
    case db::Preview::Kind::None: break;
    case db::Preview::Kind::Bmp: return "bmp";
    case db::Preview::Kind::Wmf: return "wmf";
    case db::Preview::Kind::Png: return "png";
    }
    return {};
}

Json dateJson(const TvDbDate& date)
{
    return date.isNull() ? Json() : Json(jsonText(date.text().replaced(u" ", u"T") + u"Z"));
}

Json dateJson(const db::SummaryInfo::Time& time)
{
    return dateJson(TvDbDate(time.day, time.milliseconds));
}

/// A span of days and milliseconds in seconds.
double secondsOf(std::int64_t days, std::int64_t milliseconds)
{
    return static_cast<double>(days) * 86400.0 + static_cast<double>(milliseconds) / 1000.0;
}

Json summaryJson(const db::SummaryInfo& summary)
{
    Json custom = Json::array();
    for (const db::SummaryInfo::Custom& each : summary.custom)
        custom.push_back(
            {{"name", jsonText(TvString(each.name))}, {"value", jsonText(TvString(each.value))}});
    return {{"title", jsonText(TvString(summary.title))},
            {"subject", jsonText(TvString(summary.subject))},
            {"author", jsonText(TvString(summary.author))},
            {"keywords", jsonText(TvString(summary.keywords))},
            {"comments", jsonText(TvString(summary.comments))},
            {"lastSavedBy", jsonText(TvString(summary.lastSavedBy))},
            {"revisionNumber", jsonText(TvString(summary.revisionNumber))},
            {"hyperlinkBase", jsonText(TvString(summary.hyperlinkBase))},
            {"editingSeconds", secondsOf(summary.editing.day, summary.editing.milliseconds)},
            {"created", dateJson(summary.created)},
            {"modified", dateJson(summary.modified)},
            {"custom", std::move(custom)}};
}

Json countsOf(const db::DrawingInventory& inventory)
{
    Json counts = Json::object();
    for (const db::DrawingInventory::Class& each : inventory.classes)
        counts[each.name] = each.objects;
    return counts;
}

Json rawCountsOf(const db::DrawingInventory& inventory)
{
    Json counts = Json::object();
    for (const db::DrawingInventory::Class& each : inventory.classes)
        if (each.raw > 0)
            counts[each.name] = each.raw;
    return counts;
}

Json xrefsOf(const std::vector<BlockFacts>& blocks)
{
    Json list = Json::array();
    for (const BlockFacts& block : blocks)
        if (block.isXref || block.isOverlay)
            list.push_back({{"name", jsonText(block.name)},
                            {"handle", jsonText(block.handle)},
                            {"path", jsonText(block.xrefPath)},
                            {"overlay", block.isOverlay},
                            {"references", block.references}});
    return list;
}

Json variablesOf(const TvDbDatabase& database)
{
    const db::Record& header = database.headerRecord();
    Json variables = Json::object();
    for (const char* name : {"INSUNITS", "MEASUREMENT", "TILEMODE", "PSLTSCALE"})
        variables[name] = header.integer(name);
    for (const char* name : {"FINGERPRINTGUID", "VERSIONGUID"})
        variables[name] = jsonText(TvString(header.text(name)));
    return variables;
}

struct TableRow {
    const char* name;
    TvDb::SymbolTable table;
};
constexpr TableRow kTables[] = {
    {"layers", TvDb::SymbolTable::Layer},        {"textStyles", TvDb::SymbolTable::TextStyle},
    {"linetypes", TvDb::SymbolTable::Linetype},  {"dimensionStyles", TvDb::SymbolTable::DimStyle},
    {"applications", TvDb::SymbolTable::RegApp},
};

void fill(Json& document, const Info& info, TvDbDatabase& database)
{
    document["file"] = jsonText(info.file);
    document["bytes"] = info.bytes;
    document["format"] = info.form.format == db::FileFormat::Dxf ? "dxf" : "dwg";
    document["version"] = jsonText(versionName(info.form.version));
    document["objects"] = info.inventory.objects;
    document["highestHandle"] = jsonText(base::hexText(info.inventory.highestHandle));
    document["nextHandle"] = jsonText(base::hexText(info.inventory.seed));
    document["raw"] = info.inventory.raw;
    document["damaged"] = info.inventory.damaged;
    document["created"] = dateJson(info.created);
    document["changed"] = dateJson(info.changed);
    document["editingSeconds"] =
        secondsOf(info.editing.julianDay(), info.editing.millisecondsOfDay());
    document["preview"] = info.inventory.preview == db::Preview::Kind::None
                              ? Json()
                              : Json(pictureName(info.inventory.preview));
    document["variables"] = variablesOf(database);
    document["layouts"] = jsonOf(info.layouts);
    document["views"] = jsonOf(info.views);
    document["blocks"] = jsonOf(info.blocks);
    document["xrefs"] = xrefsOf(info.blocks);
    for (const TableRow& row : kTables)
        document[row.name] = recordsOf(database, row.table);
    document["summary"] = summaryJson(info.summary);
    document["sheetData"] = jsonOf(info.sheetData);
    document["classes"] = countsOf(info.inventory);
    document["rawClasses"] = rawCountsOf(info.inventory);
}

// --- for people

using Rows = std::vector<std::pair<Word, TvString>>;

/// Comments have lines.
std::vector<TvString> linesOf(const TvString& text)
{
    const std::u16string_view all = text.view();
    std::vector<TvString> lines;
    for (std::size_t from = 0; from <= all.size();) {
        const std::size_t end = std::min(all.find(u'\n', from), all.size());
        const bool isReturn = end > from && all[end - 1] == u'\r';
        lines.emplace_back(all.substr(from, end - from - isReturn));
        from = end + 1;
    }
    return lines;
}

TvString timeText(const TvDbDate& time)
{
    return time.isNull() ? TvString() : words(Word::TimeUtc, time.text());
}

TvString rawText(const db::DrawingInventory& counts)
{
    if (counts.raw == 0)
        return {};
    return counts.damaged == 0 ? words(Word::DrawingRawCounts, counts.raw)
                               : words(Word::DrawingRawDamaged, counts.raw, counts.damaged);
}

void printRows(const Rows& rows, Console& console)
{
    Columns columns;
    for (const auto& [word, value] : rows) {
        TvString label = words(word);
        if (value.isEmpty())
            continue;
        for (const TvString& line : linesOf(value))
            columns.add({{std::exchange(label, TvString()), Tone::Faint}, {line}});
    }
    columns.print(console);
}

void printHead(const Info& info, Console& console)
{
    const db::DrawingInventory& counts = info.inventory;
    const TvString picture(pictureName(counts.preview));
    const db::SummaryInfo& summary = info.summary;
    printRows(
        {
            {Word::InfoFile, info.file},
            {Word::InfoSize, words(Word::InfoBytes, info.bytes)},
            {Word::InfoVersion, formWords(info.form)},
            {Word::DrawingCreated, timeText(info.created)},
            {Word::DrawingChanged, timeText(info.changed)},
            {Word::DrawingObjects,
             words(Word::DrawingObjectCounts, counts.objects, base::hexText(counts.highestHandle))},
            {Word::DrawingRaw, rawText(counts)},
            {Word::DrawingPreview, picture.isEmpty() ? words(Word::DrawingPreviewNone) : picture},
            {Word::DrawingTitle, TvString(summary.title)},
            {Word::DrawingSubject, TvString(summary.subject)},
            {Word::DrawingAuthor, TvString(summary.author)},
            {Word::DrawingKeywords, TvString(summary.keywords)},
            {Word::DrawingComments, TvString(summary.comments)},
            {Word::DrawingSavedBy, TvString(summary.lastSavedBy)},
            {Word::DrawingRevision, TvString(summary.revisionNumber)},
            {Word::DrawingHyperlinks, TvString(summary.hyperlinkBase)},
        },
        console);
}

void printPart(Word heading, const Columns& columns, Console& console)
{
    if (columns.isEmpty())
        return;
    console.line({});
    console.line({{words(heading), Tone::Strong}});
    columns.print(console, u"  ");
}

void printProperties(const db::SummaryInfo& summary, Console& console)
{
    Columns columns;
    for (const db::SummaryInfo::Custom& each : summary.custom)
        columns.add({{TvString(each.name)}, {TvString(each.value)}});
    printPart(Word::HeadProperties, columns, console);
}

void printViews(const std::vector<ViewFacts>& views, Console& console)
{
    Columns columns;
    for (const ViewFacts& view : views)
        columns.add({{view.handle, Tone::Faint},
                     {view.name, Tone::Strong},
                     {words(Word::ViewSize, TvString().format(u"%g", view.width),
                            TvString().format(u"%g", view.height))},
                     {view.category}});
    printPart(Word::HeadViews, columns, console);
}

/// Blocks that people made: not the content of layouts, nor references.
void printBlocks(const std::vector<BlockFacts>& blocks, Console& console)
{
    Columns own;
    Columns references;
    for (const BlockFacts& block : blocks) {
        const TvString entities = words(Word::BlockEntities, block.entities);
        if (block.isXref || block.isOverlay)
            references.add({{block.handle, Tone::Faint},
                            {block.name, Tone::Strong},
                            {block.xrefPath},
                            {block.isOverlay ? words(Word::XrefOverlay) : TvString()}});
        else if (block.layout.isEmpty() && !block.isAnonymous)
            own.add({{block.handle, Tone::Faint},
                     {block.name, Tone::Strong},
                     {entities},
                     {block.description}});
    }
    printPart(Word::HeadBlocks, own, console);
    printPart(Word::HeadXrefs, references, console);
}

/// What is drawn, then what stands behind it.
void printClasses(const db::DrawingInventory& inventory, Console& console)
{
    constexpr int kCount = 0;
    Columns drawn(kCount), others(kCount);
    for (const db::DrawingInventory::Class& each : inventory.classes)
        (each.isEntity ? drawn : others)
            .add({{TvString(std::to_string(each.objects))},
                  {TvString(std::string_view(each.name))},
                  {each.raw > 0 ? words(Word::ClassRaw, each.raw) : TvString(), Tone::Faint}});
    printPart(Word::HeadEntities, drawn, console);
    printPart(Word::HeadClasses, others, console);
}

void print(const Info& info, Console& console)
{
    printHead(info, console);
    if (info.sheetData.isThere) {
        console.line({});
        console.line({{words(Word::HeadSheetData), Tone::Strong}});
        listSheetData(info.sheetData, console, u"  ");
    }
    printProperties(info.summary, console);
    console.line({});
    console.line({{words(Word::HeadLayouts), Tone::Strong}});
    listLayouts(info.layouts, console, u"  ");
    printViews(info.views, console);
    printBlocks(info.blocks, console);
    printClasses(info.inventory, console);
}

ExitCode show(const DrawingInfoRequest& request, Console& console)
{
    OpenedDrawing opened(request.file, console);
    const Info info = gather(opened);
    console.stopIfInterrupted();
    fill(console.document(), info, opened.database());
    print(info, console);
    return ExitCode::Ok;
}

} // namespace

Outcome run(const DrawingInfoRequest& request, Console& console)
{
    return attempt(console, [&] { return show(request, console); });
}

} // namespace cli
