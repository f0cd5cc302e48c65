#include <unordered_set>

#include <nlohmann/json.hpp>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <sm/kv_db_util.h>
#include <sm/publishing.h>

#include "cli/components.h"
#include "cli/lock_words.h"
#include "cli/property_words.h"
#include "cli/session.h"
#include "cli/verbs.h"

namespace cli {

namespace {

struct Drawings {
    int referenced = 0;
    int missing = 0;
    int notLooked = 0; // on network hosts that nobody agreed to
};

/// Each drawing file counts once, however many sheets stand in it.
Drawings countDrawings(const std::vector<TvSmSheet*>& sheets)
{
    Drawings drawings;
    std::unordered_set<TvString> seen;
    for (const TvSmSheet* sheet : sheets) {
        const TvSmTvDbLayoutReference* layout = sheet->getLayoutReference();
        const TvString path = layout ? layout->getFileName() : TvString();
        if (path.isEmpty() || !seen.insert(base::PathRules::native().keyOf(path)).second)
            continue;
        ++drawings.referenced;
        if (!layout->resolveFileName().isEmpty())
            continue;
        ++(KvFileSystem::isTouchAllowed(path) ? drawings.missing : drawings.notLooked);
    }
    return drawings;
}

struct Info {
    TvString file, handle, name, description, version;
    Counts counts;
    int unpublished = 0;
    Drawings drawings;
    base::LockInfo lock;
    std::int64_t bytes = 0;
};

Info gather(const OpenedSet& opened)
{
    const TvSmSheetSet& set = opened.set();
    std::vector<TvSmSheet*> sheets;
    std::vector<TvSmSheet*> published;
    KvDbUtil::GetAllSheetsInTheSubSet(&set, sheets);
    CollectPublishableSheets(&set, published, true);
    Info info;
    info.file = opened.database().getFileName();
    info.handle = handleOf(set);
    info.name = set.getName();
    info.description = set.getDesc();
    info.version = opened.database().getVersion();
    info.counts = countBelow(set);
    info.unpublished = static_cast<int>(sheets.size() - published.size());
    info.drawings = countDrawings(sheets);
    info.lock = sm::lockInfo(&opened.database());
    info.bytes = KvFileSystem::getFileSize(info.file);
    return info;
}

void fill(Json& document, const Info& info, const TvSmCustomPropertyBag& properties)
{
    document["file"] = jsonText(info.file);
    document["bytes"] = info.bytes;
    document["version"] = jsonText(info.version);
    document["handle"] = jsonText(info.handle);
    document["name"] = jsonText(info.name);
    document["desc"] = jsonText(info.description);
    document["subsets"] = info.counts.subsets;
    document["sheets"] = info.counts.sheets;
    document["excludedSheets"] = info.unpublished;
    document["drawings"] = {{"referenced", info.drawings.referenced},
                            {"missing", info.drawings.missing},
                            {"notLooked", info.drawings.notLooked}};
    document["lock"] = lockStateName(info.lock.state);
    document["properties"] = jsonOf(properties);
}

void row(Console& console, Word label, const TvString& value)
{
    constexpr int kLabelWidth = 13;
    TvString padded = words(label);
    while (padded.length() < kLabelWidth)
        padded += u' ';
    console.line({{padded, Tone::Faint}, {value}});
}

TvString drawingWords(const Drawings& drawings)
{
    TvString text = words(Word::InfoDrawingCounts, drawings.referenced, drawings.missing);
    if (drawings.notLooked > 0)
        text += words(Word::InfoDrawingsNotLooked, drawings.notLooked);
    return text;
}

void print(Console& console, const Info& info, const TvSmCustomPropertyBag& properties)
{
    row(console, Word::InfoName, info.name);
    if (!info.description.isEmpty())
        row(console, Word::InfoDescription, info.description);
    row(console, Word::InfoFile, info.file);
    row(console, Word::InfoSize, words(Word::InfoBytes, info.bytes));
    row(console, Word::InfoVersion, info.version);
    row(console, Word::InfoHandle, info.handle);
    row(console, Word::InfoSubsets, TvString().format(u"%d", info.counts.subsets));
    row(console, Word::InfoSheets,
        words(Word::InfoSheetCounts, info.counts.sheets, info.unpublished));
    row(console, Word::InfoDrawings, drawingWords(info.drawings));
    row(console, Word::InfoLock, lockSentence(info.lock));
    if (sm::propertiesOf(&properties).empty())
        return;
    console.line({});
    listProperties(properties, console);
}

ExitCode show(const InfoRequest& request, Console& console)
{
    const OpenedSet opened(request.file, console);
    const Info info = gather(opened);
    console.stopIfInterrupted();
    const TvSmCustomPropertyBag& properties = *opened.set().getCustomProperties();
    fill(console.document(), info, properties);
    print(console, info, properties);
    return ExitCode::Ok;
}

} // namespace

Outcome run(const InfoRequest& request, Console& console)
{
    return attempt(console, [&] { return show(request, console); });
}

} // namespace cli
