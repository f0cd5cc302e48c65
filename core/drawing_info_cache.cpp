#include <core/drawing_info_cache.h>

#include <base/kv_file_system.h>
#include <core/read_drawing_file.h>
#include <core/sheet_data.h>
#include <core/templates.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_summary_info.h>
#include <ed/tv_ap_doc_manager.h>

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

std::unique_ptr<TvDbDatabase> readFile(const TvString& path)
{
    auto drawing = std::make_unique<TvDbDatabase>(false, true);
    return ReadDrawingFile(drawing.get(), path) == TvStatus::Ok ? std::move(drawing) : nullptr;
}

/// Null when it cannot be read.
std::unique_ptr<DrawingInfo> readInfo(const TvString& path, TvDbDatabase* document)
{
    auto info = std::make_unique<DrawingInfo>();
    info->path = path;
    // First, so that what is written meanwhile is read again.
    info->modificationTime = KvFileSystem::getModificationTime(path);
    info->fileSize = KvFileSystem::getFileSize(path);
    info->isOfDocument = document != nullptr;
    const std::unique_ptr<TvDbDatabase> scratch = document ? nullptr : readFile(path);
    TvDbDatabase* drawing = document ? document : scratch.get();
    if (!drawing)
        return nullptr;
    readFacts(*drawing, *info);
    return info;
}

bool isFresh(const DrawingInfo& info)
{
    return !info.isOfDocument &&
           info.modificationTime == KvFileSystem::getModificationTime(info.path) &&
           info.fileSize == KvFileSystem::getFileSize(info.path);
}

} // namespace

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
        info = readInfo(path, open ? open->database() : nullptr);
    if (!info) {
        m_drawings.erase(path);
        return false;
    }
    out = info.get();
    return true;
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
