#include <cmath>

#include <db/tv_db_layout.h>
#include <gs/picture.h>

namespace gs {

namespace {

constexpr double kFlattest = 0.25; // height by width, and width by height, of a thumbnail

db::Preview previewOf(const DisplayList& list, int longestSide, db::Preview::Kind kind)
{
    db::Preview preview;
    Box box = list.extents();
    if (list.sheet())
        box = *list.sheet();
    if (box.isEmpty() || longestSide <= 0 || longestSide > kLargestSide)
        return preview;
    const double width = std::max(box.width(), box.height() * kFlattest);
    const double height = std::max(box.height(), box.width() * kFlattest);
    const double scale = width > 0 || height > 0 ? longestSide / std::max(width, height) : 0;
    const auto pixels = [&](double side) {
        return scale > 0 ? std::clamp(static_cast<int>(std::lround(side * scale)), 1, longestSide)
                         : longestSide;
    };
    PlayOptions options;
    options.background = Background::Light;
    const Picture picture =
        pictureOf(list, View::fitting(box, pixels(width), pixels(height)), options);
    if (kind == db::Preview::Kind::Png)
        preview.bytes = pngBytes(picture);
    else if (kind == db::Preview::Kind::Bmp)
        preview.bytes = bitmapBytes(picture);
    if (!preview.bytes.empty())
        preview.kind = kind;
    return preview;
}

/// The layout that the drawing shows when it is opened; null for the model.
TvDbObjectId shownLayout(TvDbDatabase& database)
{
    if (!database.tilemode())
        for (const TvDbObjectId id : db::layoutsInTabOrder(database))
            if (const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify);
                layout && layout->getBlockTableRecordId() == database.paperSpaceId())
                return id;
    return {};
}

} // namespace

db::Preview thumbnail(TvDbObjectId layout, int longestSide, db::Preview::Kind kind)
{
    return previewOf(DisplayList::ofLayout(layout), longestSide, kind);
}

db::Preview thumbnail(TvDbDatabase& database, int longestSide, db::Preview::Kind kind)
{
    const TvDbObjectId layout = shownLayout(database);
    return previewOf(layout ? DisplayList::ofLayout(layout) : DisplayList::ofModel(database),
                     longestSide, kind);
}

} // namespace gs
