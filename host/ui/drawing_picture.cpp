#include "ui/drawing_picture.h"

#include <base/kv_file_system.h>
#include <db/tv_db_database.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_summary_info.h>
#include <gs/picture.h>

#include "ui/kv_preview_static.h"

namespace ui {

namespace {

QImage imageOf(const db::Preview& preview)
{
    return previewImage(std::as_bytes(std::span(preview.bytes)));
}

} // namespace

QImage layoutPicture(TvDbObjectId layout, int longestSide)
{
    db::Preview kept;
    {
        const TvDbObjectPointer<TvDbLayout> open(layout, TvDb::kForNotify);
        if (!open)
            return {};
        kept = open->getThumbnail();
    }
    const QImage image = imageOf(kept);
    return image.isNull() ? imageOf(gs::thumbnail(layout, longestSide)) : image;
}

QImage drawingPicture(const TvString& path, int longestSide)
{
    const QImage kept = imageOf(tvdbGetPreviewBitmapFromDwg(path));
    if (!kept.isNull())
        return kept;
    const std::int64_t size = KvFileSystem::getFileSize(path);
    TvDbDatabase drawing(false, true);
    if (size <= 0 || size > kLargestDrawnFile || drawing.readDwgFile(path) != TvStatus::Ok)
        return {};
    return imageOf(gs::thumbnail(drawing, longestSide));
}

} // namespace ui
