#include <core/drawing_info_cache.h>

#include <base/kv_file_system.h>
#include <core/drawing_look.h>
#include <core/read_drawing_file.h>
#include <core/sheet_data.h>
#include <core/templates.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_summary_info.h>
#include <ed/tv_ap_doc_manager.h>

#include "drawing_info_reader.h"

namespace {

constexpr int kTries = 6, kDelayMs = 500;
constexpr double kMmPerInch = 25.4;
constexpr TvChar kModel[] = u"Model";

std::unique_ptr<DrawingInfoCache> g_cache;

TvString paperSizeOf(const TvDbLayout& layout)
{
    double widthMm = 0, heightMm = 0;
    if (layout.getPlotPaperSize(widthMm, heightMm) != TvStatus::Ok)
        return {};
    switch (layout.plotPaperUnits()) {
    case TvDbPlotSettings::kInches:
        return TvString().format(u"%.1f x %.1f", widthMm / kMmPerInch, heightMm / kMmPerInch);
    case TvDbPlotSettings::kMillimeters:
    case TvDbPlotSettings::kPixels: return TvString().format(u"%.1f x %.1f", widthMm, heightMm);
    default: return {};
    }
}

std::shared_ptr<const db::Preview> thumbnailOf(const TvDbLayout& layout)
{
    db::Preview picture = layout.getThumbnail();
    return picture.kind == db::Preview::Kind::None
               ? nullptr
               : std::make_shared<const db::Preview>(std::move(picture));
}

void readLayouts(const TvDbDatabase& drawing, DrawingInfo& info)
{
    const TvDbObjectPointer<TvDbDictionary> layouts(drawing.layoutDictionaryId());
    if (!layouts)
        return;
    for (const auto& [name, id] : layouts->entries()) {
        if (name == kModel)
            continue;
        const TvDbObjectPointer<TvDbLayout> layout(id);
        if (layout && IsLayoutPopulated(layout.object()))
            info.layouts[id.handle()] = {layout->getLayoutName(), paperSizeOf(*layout),
                                         thumbnailOf(*layout)};
    }
}

bool namesASheetSet(const TvDbDatabase& drawing)
{
    const TvDbObjectPointer<TvDbDictionary> named(drawing.namedObjectsDictionaryId());
    TvDbObjectId id;
    return named && named->getAt(core::sheet_data::kDictionary, id) == TvStatus::Ok &&
           TvDbObjectPointer<TvDbDictionary>(id);
}

void readFacts(TvDbDatabase& drawing, DrawingInfo& info)
{
    readLayouts(drawing, info);
    TvDbDatabaseSummaryInfo* summary = nullptr;
    if (tvdbGetSummaryInfo(&drawing, summary) == TvStatus::Ok) {
        const std::unique_ptr<TvDbDatabaseSummaryInfo> owned(summary);
        owned->getLastSavedBy(info.lastSavedBy);
    }
    info.hasSheetSetData = namesASheetSet(drawing);
}

std::unique_ptr<DrawingInfo> readDocument(const TvString& path, TvDbDatabase& document)
{
    auto info = std::make_unique<DrawingInfo>();
    info->path = path;
    info->isOfDocument = true;
    readFacts(document, *info);
    return info;
}

/// Null when it cannot be read.
std::unique_ptr<DrawingInfo> readFile(const TvString& path)
{
    // First, so that what is written meanwhile is read again.
    const std::uint64_t time = KvFileSystem::getModificationTime(path);
    return core::readDrawingInfo(path, time, KvFileSystem::getFileSize(path), false);
}

bool isFresh(const DrawingInfo& info)
{
    return !info.isOfDocument &&
           info.modificationTime == KvFileSystem::getModificationTime(info.path) &&
           info.fileSize == KvFileSystem::getFileSize(info.path);
}

} // namespace

std::unique_ptr<DrawingInfo> core::readDrawingInfo(const TvString& path, std::uint64_t time,
                                                   std::int64_t size, bool apart)
{
    TvDbDatabase drawing(false, true);
    if ((apart ? drawing.readDwgFile(path, TvDb::kShareAll) : ReadDrawingFile(&drawing, path)) !=
        TvStatus::Ok)
        return nullptr;
    auto info = std::make_unique<DrawingInfo>();
    info->path = path;
    info->modificationTime = time;
    info->fileSize = size;
    readFacts(drawing, *info);
    return info;
}

TvString DrawingInfo::GetPaperSize(const TvString& handle) const
{
    const auto layout = layouts.find(TvDbHandle(handle.view()));
    return layout == layouts.end() ? TvString() : layout->second.paperSize;
}

std::shared_ptr<const db::Preview> DrawingInfo::GetThumbnail(const TvString& handle) const
{
    const auto layout = layouts.find(TvDbHandle(handle.view()));
    return layout == layouts.end() ? nullptr : layout->second.thumbnail;
}

DrawingInfoCache::DrawingInfoCache() = default;
DrawingInfoCache::~DrawingInfoCache() = default;

bool DrawingInfoCache::Get(const TvString& path, const DrawingInfo*& out)
{
    if (!KvFileSystem::isFileExisting(path, kTries, kDelayMs)) {
        m_drawings.erase(path);
        return false;
    }
    const TvApDocument* open = tvDocManagerPtr() ? tvDocManagerPtr()->documentOf(path) : nullptr;
    std::unique_ptr<DrawingInfo>& info = m_drawings[path];
    if (open || !info || !isFresh(*info))
        info = open ? readDocument(path, *open->database()) : readFile(path);
    if (!info) {
        m_drawings.erase(path);
        return false;
    }
    out = info.get();
    return true;
}

const DrawingInfo* DrawingInfoCache::Known(const TvString& path) const
{
    const auto found = m_drawings.find(path);
    return found == m_drawings.end() ? nullptr : found->second.get();
}

const DrawingInfo* DrawingInfoCache::Take(core::DrawingFacts& facts)
{
    const TvString& path = facts.path();
    if (const TvApDocument* open = core::openDocumentNamed(facts.openDocument))
        facts.info = readDocument(path, *open->database());
    if (facts.info)
        m_drawings[path] = std::move(facts.info);
    else if (!facts.isInfoFresh)
        m_drawings.erase(path);
    facts.isInfoFresh = true; // it may be taken again
    return Known(path);
}

DrawingInfoCache& core::drawingInfoCache()
{
    if (!g_cache)
        g_cache = std::make_unique<DrawingInfoCache>();
    return *g_cache;
}

void core::freeDrawingInfoCache()
{
    g_cache.reset();
}
