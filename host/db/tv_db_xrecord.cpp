#include <db/tv_db_xrecord.h>

#include "item_chain.h"

TVRX_DEFINE_MEMBERS(TvDbXrecord, TvDbObject)

TvStatusCode TvDbXrecord::rbChain(resbuf** out) const
{
    if (!out)
        return TvStatus::InvalidInput;
    *out = nullptr;
    const db::RecordView content = fields().structure("content");
    if (!content || !content.bytes("data").empty())
        return TvStatus::NotUnderstood;
    db::ChainBuilder chain;
    const db::ArrayView items = content.array("items");
    for (std::uint32_t i = 0; i < items.size(); ++i) {
        const db::RecordView item = items[i];
        const auto code = static_cast<int>(item.integer("code"));
        const std::optional<db::ItemKind> kind = db::xrecordItemKind(code);
        if (!kind)
            return TvStatus::NotUnderstood;
        db::itemToChain(item, *kind, chain.add(code));
    }
    *out = chain.take();
    return TvStatus::Ok;
}

TvStatusCode TvDbXrecord::setFromRbChain(const resbuf& chain)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    std::uint32_t count = 0;
    for (const resbuf* item = &chain; item; item = item->rbnext, ++count) {
        const std::optional<db::ItemKind> kind = db::xrecordItemKind(item->restype);
        if (!kind || !db::canBeItem(*item, *kind, record().version()))
            return TvStatus::InvalidInput;
    }
    if (const TvStatusCode status = clear())
        return status;
    db::ArrayEditor items = edit().structure("content").array("items");
    if (!items.resize(count))
        return TvStatus::InvalidInput;
    std::uint32_t at = 0;
    for (const resbuf* item = &chain; item; item = item->rbnext, ++at)
        db::itemFromChain(*item, *db::xrecordItemKind(item->restype), items[at]);
    return TvStatus::Ok;
}

TvStatusCode TvDbXrecord::clear()
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    db::RecordEditor content = edit().structure("content");
    if (!content)
        return TvStatus::NotUnderstood;
    content.setBytes("data", {});
    content.array("items").resize(0);
    return TvStatus::Ok;
}
