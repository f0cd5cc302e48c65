#include <db/tv_db_symbol_table.h>

#include "thumbnails.h"

#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_xrecord.h>

TVRX_DEFINE_MEMBERS(TvDbViewTableRecord, TvDbSymbolTableRecord)

namespace {

// What a view's record has no field for stands in an xrecord of its extension dictionary, whose
// name ends so; what is in front of it depends on who wrote it.
constexpr std::u16string_view kInfoEnd = u"_XREC_VTRVIEWINFO";
constexpr std::u16string_view kAnyEnd = u"_XREC_";
constexpr const TvChar* kOwnPrefix = u"TARVIK";
constexpr std::u16string_view kThumbnailEnd = u"_XREC_VTRTHUMBNAIL";
constexpr std::u16string_view kNoCategory = u"<None>";

// Its items, in this order.
constexpr int kCategory = 300, kLayerState = 302, kLayout = 330, kUnknown = 294;

TvDbObjectId infoOf(const TvDbDictionary& dictionary)
{
    for (const auto& [name, id] : dictionary.entries())
        if (name.endsWithNoCase(kInfoEnd))
            return id;
    return {};
}

/// The first item with this code.
db::RecordView infoItem(const TvDbXrecord& info, int code)
{
    const db::ArrayView items = info.fields().structure("content").array("items");
    for (std::uint32_t i = 0; i < items.size(); ++i)
        if (items[i].integer("code") == code)
            return items[i];
    return {};
}

/// Calls @p look with the view's info, if it has one.
template <class Look>
void withInfo(const TvDbViewTableRecord& view, Look look)
{
    const TvDbObjectPointer<TvDbDictionary> dictionary(view.extensionDictionary(),
                                                       TvDb::kForNotify);
    const TvDbObjectPointer<TvDbXrecord> info(dictionary ? infoOf(*dictionary) : TvDbObjectId(),
                                              TvDb::kForNotify);
    if (info)
        look(*info);
}

/// As others that wrote into this dictionary have begun their names.
TvString infoName(const TvDbDictionary& dictionary)
{
    TvString prefix(kOwnPrefix);
    for (const auto& [name, id] : dictionary.entries())
        if (const int at = name.find(kAnyEnd); at > 0)
            prefix = name.left(at);
    return prefix + kInfoEnd;
}

TvStatusCode makeInfo(TvDbDictionary& dictionary, TvDbObjectId& out)
{
    auto info = std::make_unique<TvDbXrecord>();
    const TvResbufPtr items(tvutBuildList(kCategory, kNoCategory, kLayerState, u"", kLayout,
                                          TvDbHandle(), kUnknown, 0));
    info->setFromRbChain(*items.get());
    if (const TvStatusCode status = dictionary.setAt(infoName(dictionary), info.get(), out))
        return status;
    info.release()->close();
    return TvStatus::Ok;
}

/// Calls @p change with the item of that code, made when it is missing.
template <class Change>
TvStatusCode changeInfo(TvDbViewTableRecord& view, int code, Change change)
{
    if (!view.isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    if (const TvStatusCode status = view.createExtensionDictionary())
        return status;
    TvDbObjectPointer<TvDbDictionary> dictionary(view.extensionDictionary(), TvDb::kForWrite);
    if (!dictionary)
        return dictionary.openStatus();
    TvDbObjectId id = infoOf(*dictionary);
    if (!id)
        if (const TvStatusCode status = makeInfo(*dictionary, id))
            return status;
    TvDbObjectPointer<TvDbXrecord> info(id, TvDb::kForWrite);
    if (!info)
        return info.openStatus();
    db::ArrayEditor items = info->edit().structure("content").array("items");
    std::uint32_t at = 0;
    while (at < items.size() && items[at].integer("code") != code)
        ++at;
    if (at == items.size() && !items.insert(at))
        return TvStatus::NotUnderstood;
    items[at].setInteger("code", code);
    return change(items[at]) ? TvStatus::Ok : TvStatus::InvalidInput;
}

TvStatusCode statusOf(const TvDbViewTableRecord& view, bool done)
{
    return done                    ? TvStatus::Ok
           : view.isWriteEnabled() ? TvStatus::NotUnderstood
                                   : TvStatus::NotOpenForWrite;
}

} // namespace

bool TvDbViewTableRecord::isPaperspaceView() const
{
    return fields().flag("is_paperspace");
}

TvStatusCode TvDbViewTableRecord::setIsPaperspaceView(bool paper)
{
    return statusOf(*this, edit().setFlag("is_paperspace", paper));
}

TvDbObjectId TvDbViewTableRecord::getLayout() const
{
    TvDbObjectId layout;
    withInfo(*this, [&](const TvDbXrecord& info) {
        const TvDbObjectId id = idOf(infoItem(info, kLayout).handle("handle"));
        if (id.isValid() && id.objectClass()->isDerivedFrom(TvDbLayout::desc()))
            layout = id;
    });
    return layout;
}

TvStatusCode TvDbViewTableRecord::setLayout(TvDbObjectId layout)
{
    if (layout && (layout.database() != database() || !layout.isValid() ||
                   !layout.objectClass()->isDerivedFrom(TvDbLayout::desc())))
        return TvStatus::InvalidInput;
    return changeInfo(*this, kLayout, [&](db::RecordEditor item) {
        return item.setHandle("handle", layout.handle().value());
    });
}

TvString TvDbViewTableRecord::getCategoryName() const
{
    TvString name;
    withInfo(*this, [&](const TvDbXrecord& info) {
        const std::u16string_view kept = infoItem(info, kCategory).text("text");
        if (base::compareNoCase(kept, kNoCategory) != 0)
            name = TvString(kept);
    });
    return name;
}

TvStatusCode TvDbViewTableRecord::getCategoryName(TvString& out) const
{
    out = getCategoryName();
    return TvStatus::Ok;
}

TvStatusCode TvDbViewTableRecord::setCategoryName(const TvString& name)
{
    if (objectId() && getCategoryName() == name)
        return isWriteEnabled() ? TvStatus::Ok : TvStatus::NotOpenForWrite;
    return changeInfo(*this, kCategory, [&](db::RecordEditor item) {
        return item.setText("text", name.isEmpty() ? kNoCategory : name.view());
    });
}

double TvDbViewTableRecord::height() const
{
    return fields().real("height");
}

double TvDbViewTableRecord::width() const
{
    return fields().real("width");
}

db::Point TvDbViewTableRecord::centerPoint() const
{
    return fields().point("center");
}

db::Point TvDbViewTableRecord::target() const
{
    return fields().point("target");
}

db::Point TvDbViewTableRecord::viewDirection() const
{
    return fields().point("direction");
}

double TvDbViewTableRecord::viewTwist() const
{
    return fields().real("twist");
}

TvStatusCode TvDbViewTableRecord::setHeight(double height)
{
    if (!(height > 0))
        return TvStatus::OutOfRange;
    return statusOf(*this, edit().setReal("height", height));
}

TvStatusCode TvDbViewTableRecord::setWidth(double width)
{
    if (!(width > 0))
        return TvStatus::OutOfRange;
    return statusOf(*this, edit().setReal("width", width));
}

TvStatusCode TvDbViewTableRecord::setCenterPoint(const db::Point& center)
{
    return statusOf(*this, edit().setPoint("center", center));
}

db::Preview TvDbViewTableRecord::getThumbnail() const
{
    return db::thumbnailOf(*this, kThumbnailEnd);
}
