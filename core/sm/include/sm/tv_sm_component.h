#pragma once

#include <sm/tv_sm_custom_property_bag.h>
#include <sm/tv_sm_persist.h>

/// What has a name, a description and custom properties.
class TvSmComponent : public TvSmPersist
{
    TVRX_DECLARE_MEMBERS(TvSmComponent)

    ~TvSmComponent() override;

    /// Each text getter fills @p out and returns the same text; the form without argument is for
    /// reading only.
    virtual TvString getName(TvString& out) const;
    TvString getName() const;
    virtual bool setName(const TvString& name);
    virtual TvString getDesc(TvString& out) const;
    TvString getDesc() const;
    virtual bool setDesc(const TvString& description);
    /// Never null.
    virtual const TvSmCustomPropertyBag* getCustomProperties() const;
    virtual TvSmCustomPropertyBag* getCustomProperties();

protected:
    TvSmComponent() = default;

private:
    friend struct sm::Internals;
    sm::StoredText m_name;
    sm::StoredText m_desc;
    mutable sm::Part<TvSmCustomPropertyBag> m_properties; // made at the first need
    TvSmComponent* m_previousSibling = nullptr;           // in a subset's order; not owned
    TvSmComponent* m_nextSibling = nullptr;               // the same
};
