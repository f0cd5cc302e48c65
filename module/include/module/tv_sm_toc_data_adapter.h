#pragma once

#include <memory>

#include <base/tv_string.h>
#include <db/tv_db_data_adapter.h>

/// Fills sheet list tables from their sheet set. No table is one of its own yet: each link is
/// answered with NotThatLink.
class TvSmTocDataAdapter : public TvDbDataAdapter
{
public:
    TvStatusCode updateData(TvDbDataLink* link, TvRxObject* content, int direction) override;
    bool canWriteSource() const override { return false; }
    int sourceFlags() const override { return 0; }
    int updateKinds() const override { return 2; }
    std::unique_ptr<TvRxObject> createContent() override { return nullptr; }
};

/// Gives that adapter by its id, "AcSmTocDataAdapter2" in any case; made at the first call.
class TvSmTocDataAdapterProvider : public TvDbDataAdapterProvider
{
public:
    TvDbDataAdapter* getAdapter(const TvString& id) override;

private:
    std::unique_ptr<TvSmTocDataAdapter> m_adapter;
};
