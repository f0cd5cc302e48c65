#pragma once

#include <cstdint>
#include <variant>

#include <base/tv_string.h>

/// The host's variant: the value of a custom property and of a dynamic property.
///
/// A value is text exactly when its type, masked with kTypeMask, equals kString.
class TvVariant
{
public:
    /// Type numbers, as stored. Numbers are forever.
    enum Type : std::uint16_t {
        kEmpty = 0,
        kString = 1,
        kInt32 = 2,
        kInt16 = 3,
        kReal = 4,
        kBool = 5,
    };
    /// The bits of type() that hold the number; the others are marks of the holder and kept as
    /// given.
    static constexpr std::uint16_t kTypeMask = 63;

    TvVariant() = default;
    TvVariant(TvString text) : m_type(kString), m_value(std::move(text)) {}
    TvVariant(const TvChar* text) : TvVariant(TvString(text)) {}
    TvVariant(const char* utf8) : TvVariant(TvString(utf8)) {}
    TvVariant(const wchar_t* text) : TvVariant(TvString(text)) {}
    /// Any other pointer would silently become a bool.
    template <class T>
    TvVariant(const T* pointer) = delete;
    explicit TvVariant(std::int32_t value) : m_type(kInt32), m_value(value) {}
    explicit TvVariant(std::int16_t value) : m_type(kInt16), m_value(value) {}
    explicit TvVariant(double value) : m_type(kReal), m_value(value) {}
    explicit TvVariant(bool value) : m_type(kBool), m_value(value) {}

    std::uint16_t type() const { return m_type; }
    /// Puts the bits of @p marks outside kTypeMask into type(); those within are left alone.
    void setMarks(std::uint16_t marks)
    {
        m_type = static_cast<std::uint16_t>((m_type & kTypeMask) | (marks & ~kTypeMask));
    }
    bool isString() const { return (m_type & kTypeMask) == kString; }

    /// Each gives false, and leaves @p out alone, when the value is of another type.
    bool getString(TvString& out) const { return get(out); }
    bool getInt32(std::int32_t& out) const { return get(out); }
    bool getInt16(std::int16_t& out) const { return get(out); }
    bool getReal(double& out) const { return get(out); }
    bool getBool(bool& out) const { return get(out); }

    friend bool operator==(const TvVariant&, const TvVariant&) = default;

private:
    template <class T>
    bool get(T& out) const
    {
        const T* value = std::get_if<T>(&m_value);
        if (value)
            out = *value;
        return value != nullptr;
    }

    std::uint16_t m_type = kEmpty;
    std::variant<std::monostate, TvString, std::int32_t, std::int16_t, double, bool> m_value;
};
