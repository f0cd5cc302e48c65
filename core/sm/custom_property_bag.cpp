#include "sm/tv_sm_custom_property_bag.h"

#include "database_state.h"

using sm::Internals;

TVRX_DEFINE_MEMBERS(TvSmCustomPropertyValue, TvSmPersist)
TVRX_DEFINE_MEMBERS(TvSmCustomPropertyBag, TvSmPersist)

TvSmCustomPropertyValue::TvSmCustomPropertyValue() = default;
TvSmCustomPropertyValue::~TvSmCustomPropertyValue() = default;

void TvSmCustomPropertyValue::getValue(TvVariant& out) const
{
    switch (m_type & TvVariant::kTypeMask) {
    case TvVariant::kString: out = TvVariant(m_text.text()); break;
    case TvVariant::kInt32: out = TvVariant(static_cast<std::int32_t>(m_number)); break;
    case TvVariant::kInt16: out = TvVariant(static_cast<std::int16_t>(m_number)); break;
    case TvVariant::kReal: out = TvVariant(m_number); break;
    case TvVariant::kBool: out = TvVariant(m_number != 0); break;
    default: out = TvVariant(); break;
    }
}

namespace {

double numberOf(const TvVariant& value)
{
    std::int32_t wide = 0;
    std::int16_t narrow = 0;
    bool flag = false;
    double real = 0;
    if (value.getInt32(wide))
        return wide;
    if (value.getInt16(narrow))
        return narrow;
    if (value.getBool(flag))
        return flag ? 1 : 0;
    value.getReal(real);
    return real;
}

} // namespace

bool TvSmCustomPropertyValue::setValue(const TvVariant& value)
{
    TvString text;
    value.getString(text);
    // Real numbers that are equal may still differ in their bits (-0.0), and a NaN equals nothing;
    // the type decides first.
    const double number = numberOf(value);
    return Internals::change(*this, m_type, value.type()) &&
           Internals::change(*this, m_number, number) && Internals::changeText(*this, m_text, text);
}

unsigned short TvSmCustomPropertyValue::getFlags() const
{
    return m_flags;
}

bool TvSmCustomPropertyValue::setFlags(unsigned short flags)
{
    return Internals::change(*this, m_flags, static_cast<std::uint16_t>(flags));
}

TvSmCustomPropertyBag::TvSmCustomPropertyBag() = default;
TvSmCustomPropertyBag::~TvSmCustomPropertyBag() = default;

TvSmCustomPropertyValue* TvSmCustomPropertyBag::getProperty(const TvString& name) const
{
    for (const Entry& entry : m_entries)
        if (entry.name.equals(name))
            return entry.value;
    return nullptr;
}

bool TvSmCustomPropertyBag::setProperty(const TvString& name, TvSmCustomPropertyValue* value)
{
    if (name.isEmpty() || !Internals::mayChange(*this) || !Internals::canAdopt(*this, value))
        return false;
    if (getProperty(name) == value)
        return true;
    if (Internals::life(*value) == Life::Attached)
        return false;
    for (Entry& entry : m_entries) {
        if (!entry.name.equals(name))
            continue;
        TvSmCustomPropertyValue* former = entry.value;
        // The entries of a bag move when one is added: the step finds the entry by its place.
        const auto index = static_cast<std::size_t>(&entry - m_entries.data());
        Internals::eraseAt(*this, m_entries, index);
        Internals::detach(*former);
        Entry fresh;
        fresh.name.assign(name);
        fresh.value = value;
        Internals::insertAt(*this, m_entries, index, std::move(fresh));
        Internals::attach(*value, *this);
        return true;
    }
    Entry fresh;
    fresh.name.assign(name);
    fresh.value = value;
    Internals::insertAt(*this, m_entries, m_entries.size(), std::move(fresh));
    Internals::attach(*value, *this);
    return true;
}

bool TvSmCustomPropertyBag::removeProperty(const TvString& name)
{
    const auto at = std::find_if(m_entries.begin(), m_entries.end(),
                                 [&](const Entry& entry) { return entry.name.equals(name); });
    if (at == m_entries.end() || !Internals::mayChange(*this))
        return false;
    TvSmCustomPropertyValue* value = at->value;
    Internals::eraseAt(*this, m_entries, static_cast<std::size_t>(at - m_entries.begin()));
    Internals::detach(*value);
    return true;
}

namespace {

class PropertyEnumerator : public TvSmCustomPropertyEnumerator
{
public:
    explicit PropertyEnumerator(const TvSmCustomPropertyBag& bag) : m_bag(bag) {}
    bool next(TvString* name, TvSmCustomPropertyValue** value) override
    {
        const auto& entries = Internals::entries(m_bag);
        if (m_index >= entries.size())
            return false;
        if (name)
            *name = entries[m_index].name.text();
        if (value)
            *value = entries[m_index].value;
        ++m_index;
        return true;
    }
    void reset() override { m_index = 0; }

private:
    const TvSmCustomPropertyBag& m_bag; // of a component that lives as long as its database
    std::size_t m_index = 0;
};

} // namespace

TvSmCustomPropertyEnumerator* TvSmCustomPropertyBag::getEnumerator() const
{
    return new PropertyEnumerator(*this);
}

namespace sm {

std::vector<Property> propertiesOf(const TvSmCustomPropertyBag* bag)
{
    std::vector<Property> result;
    if (bag)
        for (const auto& entry : Internals::entries(*bag))
            result.push_back({entry.name.text(), entry.value});
    return result;
}

bool setTextProperty(TvSmCustomPropertyBag* bag, const TvString& name, const TvString& text,
                     unsigned short flags)
{
    if (!bag || !Internals::mayChange(*bag))
        return false;
    TvSmCustomPropertyValue* value = bag->getProperty(name);
    if (!value) {
        auto fresh = std::make_unique<TvSmCustomPropertyValue>();
        if (!fresh->initNew(bag, TvString()) || !bag->setProperty(name, fresh.get()))
            return false;
        value = fresh.release();
    }
    return value->setFlags(flags) && value->setValue(TvVariant(text));
}

} // namespace sm
