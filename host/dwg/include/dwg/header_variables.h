#pragma once

#include <string_view>
#include <variant>
#include <vector>

#include <base/status.h>
#include <dwg/raw_text.h>
#include <dwg/record_streams.h>

namespace dwg {

/// A day and a time of day, or a span of both.
struct DateStamp {
    std::uint32_t day = 0;          ///< julian day, beginning at midnight UTC
    std::uint32_t milliseconds = 0; ///< since midnight
    friend bool operator==(const DateStamp&, const DateStamp&) = default;
};

/// A colour of the header: in AC1015 the index alone.
struct HeaderColor {
    std::int16_t index = 0;
    std::uint32_t rgb = 0;  ///< from 2004 on: method in the high byte
    std::uint8_t flags = 0; ///< 1: has a name, 2: has a book name
    RawText name, book;
    friend bool operator==(const HeaderColor&, const HeaderColor&) = default;
};

/// One value. Integers are signed as their field's width says; planar points have z = 0.
using HeaderValue =
    std::variant<std::int64_t, double, Triple, RawText, DateStamp, HeaderColor, HandleReference>;

/// The header variables of a drawing, by name.
///
/// What was not set goes back bit for bit, in whatever form the writing program had chosen.
class HeaderVariables
{
public:
    /// Reads the section AcDb:Header. Fails (Damaged) when its record cannot hold the variables.
    static base::Result<HeaderVariables> read(Version version, Bytes section);
    /// Those of a new drawing: everything 0, empty or none but for the usual defaults.
    static HeaderVariables makeDefault(Version version);

    Version version() const { return m_version; }
    /// The value; null when this version has no such variable.
    const HeaderValue* find(std::string_view name) const;
    /// The integer, or 0 when there is none of this name.
    std::int64_t integer(std::string_view name) const;
    /// The handle, or 0 when there is none of this name.
    std::uint64_t handle(std::string_view name) const;
    /// Replaces a value by one of the same kind.
    /// @return false, with nothing changed, when there is no such variable, the kind is another or
    /// the value
    ///         does not fit; and for CEPSNTYPE to or from 3, which would change what follows.
    bool set(std::string_view name, HeaderValue value);
    bool setHandle(std::string_view name, std::uint64_t value);

    /// The first handle that is free.
    std::uint64_t handSeed() const { return handle("HANDSEED"); }
    bool isChanged() const;
    bool checksumRight() const { return m_checksumRight; }
    /// The names in the order of the file.
    std::vector<std::string_view> names() const;

    /// The section: the very bytes that were read when nothing was set. Empty if a value cannot be
    /// stored.
    std::vector<std::uint8_t> section() const;

private:
    struct Spot { // bits of the record where a field begins
        std::size_t data = 0, strings = 0, handles = 0;
    };
    struct Field {
        std::size_t definition = 0; // index into the table of all variables
        HeaderValue value;
        Spot spot; // the next field's spot is this one's end
        bool changed = false;
    };
    struct Reader;
    struct Writer;

    Bytes record() const { return Bytes(m_section).subspan(m_recordAt, m_recordSize); }
    const Field* fieldNamed(std::string_view name) const;
    bool readFields(Reader& reader);
    void readTail(Reader& reader);
    void writeField(Writer& writer, std::size_t index) const;

    Version m_version = Version::Ac1015;
    std::vector<std::uint8_t> m_section;          // as read; empty for a new drawing
    std::size_t m_recordAt = 0, m_recordSize = 0; // in m_section
    std::size_t m_trailingAt = 0;                 // in m_section; what follows the end sentinel
    std::vector<Field> m_fields;
    Spot m_end;
    std::uint16_t m_tail[4] = {0, 0, 0, 0};
    bool m_hasStrings = true;
    bool m_hasHighSize = false;
    bool m_checksumRight = true;
};

} // namespace dwg
