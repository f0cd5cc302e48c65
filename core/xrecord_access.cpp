#include <core/sheet_data.h>

#include <db/tv_db_dictionary.h>
#include <db/tv_db_xrecord.h>

namespace {

constexpr int kTextCode = 1;
constexpr int kIntCode = 90;

/// The items of the xrecord under @p key; none when there is no such xrecord.
TvResbufPtr itemsAt(const TvDbDictionary* dictionary, const TvString& key)
{
    TvDbObjectId id;
    if (!dictionary || dictionary->getAt(key, id) != TvStatus::Ok)
        return TvResbufPtr();
    const TvDbObjectPointer<TvDbXrecord> record(id);
    resbuf* chain = nullptr;
    if (record)
        record->rbChain(&chain);
    return TvResbufPtr(chain);
}

const resbuf* firstOf(const resbuf* chain, int code)
{
    while (chain && chain->restype != code)
        chain = chain->rbnext;
    return chain;
}

bool writeItem(TvDbDictionary* dictionary, const TvString& key, const TvResbufPtr& item)
{
    if (!dictionary || !dictionary->isWriteEnabled() || !item)
        return false;
    auto record = std::make_unique<TvDbXrecord>();
    if (record->setFromRbChain(*item.get()) != TvStatus::Ok)
        return false;
    TvDbObjectId id;
    if (dictionary->setAt(key, record.get(), id) != TvStatus::Ok)
        return false;
    record.release()->close(); // the drawing's now
    return true;
}

} // namespace

bool ReadXrecordText(const TvDbDictionary* dictionary, const TvString& key, TvString& out)
{
    const TvResbufPtr items = itemsAt(dictionary, key);
    const resbuf* item = firstOf(items.get(), kTextCode);
    if (!item)
        return false;
    out = TvString(item->resval.rstring);
    return true;
}

bool ReadXrecordInt(const TvDbDictionary* dictionary, const TvString& key, int& out)
{
    const TvResbufPtr items = itemsAt(dictionary, key);
    const resbuf* item = firstOf(items.get(), kIntCode);
    if (!item)
        return false;
    out = item->resval.rlong;
    return true;
}

bool WriteXrecordText(TvDbDictionary* dictionary, const TvString& key, const TvString& text)
{
    return writeItem(dictionary, key, TvResbufPtr(tvutBuildList(kTextCode, text, 0)));
}

bool WriteXrecordInt(TvDbDictionary* dictionary, const TvString& key, int value)
{
    return writeItem(dictionary, key, TvResbufPtr(tvutBuildList(kIntCode, value, 0)));
}
