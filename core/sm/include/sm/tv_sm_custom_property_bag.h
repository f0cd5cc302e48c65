#pragma once

#include <vector>

#include <base/tv_variant.h>
#include <sm/tv_sm_persist.h>

/// The value of one custom property, with two flags that say whom it belongs to.
class TvSmCustomPropertyValue : public TvSmPersist
{
    TVRX_DECLARE_MEMBERS(TvSmCustomPropertyValue)

    TvSmCustomPropertyValue() = default;
    ~TvSmCustomPropertyValue() override;

    /// Bits of the flags word, as stored.
    enum Flag : unsigned short {
        kSheetSetProperty = 1, ///< Shown and edited at sheet-set level.
        kSheetProperty =
            2, ///< Each sheet carries its own; the sheet set's entry carries the default.
    };

    /// Empty variant when nothing was set.
    virtual void getValue(TvVariant& out) const;
    virtual bool setValue(const TvVariant& value);
    virtual unsigned short getFlags() const;
    virtual bool setFlags(unsigned short flags);

private:
    friend struct sm::Internals;
    sm::StoredText m_name; // in the bag it stands in
    sm::StoredText m_text; // when the type is text, or unknown to us
    double m_number = 0;   // any other type; integers are exact in it
    std::uint16_t m_type = TvVariant::kEmpty;
    std::uint16_t m_flags = 0;
    std::uint16_t m_marks = 0; // the variant's bits beside its type
};

/// Walks the entries of a bag, in the order in which the names were first put in. Owned by the
/// caller.
class TvSmCustomPropertyEnumerator
{
public:
    virtual ~TvSmCustomPropertyEnumerator() = default;
    /// False at the end, with both arguments left alone; either may be null.
    virtual bool next(TvString* name, TvSmCustomPropertyValue** value) = 0;
    virtual void reset() = 0;
};

/// Custom properties by name. Names are compared letter for letter.
class TvSmCustomPropertyBag : public TvSmPersist
{
    TVRX_DECLARE_MEMBERS(TvSmCustomPropertyBag)

    TvSmCustomPropertyBag() = default;
    ~TvSmCustomPropertyBag() override;

    /// Null when there is no such property.
    virtual TvSmCustomPropertyValue* getProperty(const TvString& name) const;
    /// Adds the property, or puts @p value in the place of the one of that name. False for a null
    /// value, an empty name, or a value that stands elsewhere.
    virtual bool setProperty(const TvString& name, TvSmCustomPropertyValue* value);
    virtual TvSmCustomPropertyEnumerator* getEnumerator() const;
    /// False when there is no such property.
    virtual bool removeProperty(const TvString& name);

private:
    friend struct sm::Internals;
    std::vector<TvSmCustomPropertyValue*> m_entries; // the database's
};

namespace sm {

/// The entries of a bag in a range-for: pairs of name and value, as they stand at the start of the
/// walk.
struct Property {
    TvString name;
    TvSmCustomPropertyValue* value;
};
std::vector<Property> propertiesOf(const TvSmCustomPropertyBag* bag);
/// Makes or changes the property @p name of @p bag: text and flags. False when the database refuses
/// changes.
bool setTextProperty(TvSmCustomPropertyBag* bag, const TvString& name, const TvString& text,
                     unsigned short flags);

} // namespace sm
