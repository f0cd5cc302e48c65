#include "sm/tv_sm_custom_property_bag.h"

#include <limits>

#include "database_state.h"

using sm::Internals;

TVRX_DEFINE_MEMBERS(TvSmCustomPropertyValue, TvSmPersist)
TVRX_DEFINE_MEMBERS(TvSmCustomPropertyBag, TvSmPersist)

TvSmCustomPropertyValue::~TvSmCustomPropertyValue() = default;

namespace {

/// The nearest integer there is; a file may hold anything. 0 for what is no number.
template <class Integer>
Integer integerFrom(double number)
{
    constexpr auto lowest = static_cast<double>(std::numeric_limits<Integer>::min());
    constexpr auto highest = static_cast<double>(std::numeric_limits<Integer>::max());
    return number == number ? static_cast<Integer>(std::clamp(number, lowest, highest))
                            : Integer(0);
}

} // namespace

void TvSmCustomPropertyValue::getValue(TvVariant& out) const
{
    switch (m_type) {
    case TvVariant::kString: out = TvVariant(m_text.text()); break;
    case TvVariant::kInt32: out = TvVariant(integerFrom<std::int32_t>(m_number)); break;
    case TvVariant::kInt16: out = TvVariant(integerFrom<std::int16_t>(m_number)); break;
    case TvVariant::kReal: out = TvVariant(m_number); break;
    case TvVariant::kBool: out = TvVariant(m_number != 0); break;
    default: out = TvVariant(); break;
    }
    out.setMarks(m_marks);
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
    const auto type = static_cast<std::uint16_t>(value.type() & TvVariant::kTypeMask);
    const auto marks = static_cast<std::uint16_t>(value.type() & ~TvVariant::kTypeMask);
    return Internals::change(*this, m_type, type) && Internals::change(*this, m_marks, marks) &&
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

TvSmCustomPropertyBag::~TvSmCustomPropertyBag() = default;

TvSmCustomPropertyValue* TvSmCustomPropertyBag::getProperty(const TvString& name) const
{
    for (TvSmCustomPropertyValue* value : m_entries)
        if (Internals::nameOf(*value).equals(name))
            return value;
    return nullptr;
}

bool TvSmCustomPropertyBag::setProperty(const TvString& name, TvSmCustomPropertyValue* value)
{
    if (name.isEmpty() || !Internals::mayChange(*this) || !Internals::canAdopt(*this, value))
        return false;
    TvSmCustomPropertyValue* former = getProperty(name);
    if (former == value)
        return true;
    if (Internals::life(*value) == Life::Attached)
        return false;
    std::size_t place = m_entries.size();
    if (former) {
        place = static_cast<std::size_t>(std::find(m_entries.begin(), m_entries.end(), former) -
                                         m_entries.begin());
        Internals::eraseAt(*this, m_entries, place);
        Internals::detach(*former);
    }
    Internals::insertAt(*this, m_entries, place, value);
    Internals::attach(*value, *this);
    return Internals::changeText(*value, Internals::nameOf(*value), name);
}

bool TvSmCustomPropertyBag::removeProperty(const TvString& name)
{
    return Internals::removeEntry(*this, m_entries, getProperty(name));
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
            *name = Internals::nameOf(*entries[m_index]).text();
        if (value)
            *value = entries[m_index];
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
        for (TvSmCustomPropertyValue* value : Internals::entries(*bag))
            result.push_back({Internals::nameOf(*value).text(), value});
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
