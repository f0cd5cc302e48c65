#pragma once

#include <db/tv_db_object.h>

/// Items of any kinds that belong to nobody but those who put them there.
class TvDbXrecord : public TvDbObject
{
    TVRX_DECLARE_MEMBERS(TvDbXrecord)
    TvDbXrecord() : TvDbObject("XRECORD") {}

    /// The items, the caller's to release; null when there are none. NotUnderstood when they do not
    /// follow the rules; they are kept as they are then.
    TvStatusCode rbChain(resbuf** out) const;
    /// Replaces all items. InvalidInput, with nothing changed, when one has a group code that may
    /// not stand there.
    TvStatusCode setFromRbChain(const resbuf& chain);
    /// No items; for null.
    TvStatusCode clear();
};
