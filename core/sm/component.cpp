#include "sm/tv_sm_component.h"

#include "database_state.h"

using sm::Internals;

TVRX_DEFINE_MEMBERS(TvSmComponent, TvSmPersist)

TvSmComponent::~TvSmComponent()
{
    // The values are the database's; a component that its maker deletes leaves them behind.
    if (m_properties && Internals::isHeldByMaker(*this))
        for (TvSmCustomPropertyValue* value : Internals::entries(*m_properties))
            Internals::abandon(value);
}

TvString TvSmComponent::getName(TvString& out) const
{
    return out = m_name.text();
}

TvString TvSmComponent::getName() const
{
    return m_name.text();
}

bool TvSmComponent::setName(const TvString& name)
{
    return Internals::changeText(*this, m_name, name);
}

TvString TvSmComponent::getDesc(TvString& out) const
{
    return out = m_desc.text();
}

TvString TvSmComponent::getDesc() const
{
    return m_desc.text();
}

bool TvSmComponent::setDesc(const TvString& description)
{
    return Internals::changeText(*this, m_desc, description);
}

const TvSmCustomPropertyBag* TvSmComponent::getCustomProperties() const
{
    return &Internals::bagOf(*this);
}

TvSmCustomPropertyBag* TvSmComponent::getCustomProperties()
{
    return &Internals::bagOf(*this);
}
