#pragma once

#include <cstdint>
#include <string>

#include <base/tv_string.h>

namespace sm {

/// A text attribute of a persistent object, cheap to load: a slice of the file's own UTF-8 until
/// somebody sets it.
///
/// Three states: never set (answers as empty), a slice, or a text of its own. The slice belongs to
/// the database's file buffer; own() makes an object independent of it. UTF-16 that XML cannot
/// carry (control characters, lone surrogates) stands in the file as "\uXXXX;", and so does a
/// backslash that would read as the start of such a mark.
class StoredText
{
public:
    StoredText() = default;
    explicit StoredText(const TvString& text) { assign(text); }
    StoredText(StoredText&& other) noexcept { swap(other); }
    StoredText& operator=(StoredText&& other) noexcept
    {
        swap(other);
        return *this;
    }
    StoredText(const StoredText&) = delete;
    StoredText& operator=(const StoredText&) = delete;
    ~StoredText() { clear(); }

    bool isSet() const { return m_kind != Kind::Unset; }
    bool isEmpty() const;
    TvString text() const;
    bool equals(const TvString& text) const;

    void assign(const TvString& text);
    /// @param utf8 not owned; decoded XML text that outlives this object or is own()ed in time.
    void setSlice(const char* utf8, std::size_t size)
    {
        clear();
        m_data = utf8;
        m_size = static_cast<std::uint32_t>(size);
        m_kind = Kind::Slice;
    }
    void clear()
    {
        if (m_kind == Kind::Owned)
            delete &owned();
        m_data = nullptr;
        m_size = 0;
        m_kind = Kind::Unset;
    }
    /// Turns a slice into a text of its own.
    void own();
    void swap(StoredText& other) noexcept;
    /// The value as the file carries it, before XML's own escapes: a slice as it is, any other text
    /// made in @p room.
    std::string_view fileView(std::string& room) const;
    /// Appends the value to @p out, escaped for an XML attribute in double quotes.
    void appendXml(std::string& out) const;

private:
    enum class Kind : std::uint8_t { Unset, Slice, Owned };
    std::string_view slice() const { return {static_cast<const char*>(m_data), m_size}; }
    const TvString& owned() const { return *static_cast<const TvString*>(m_data); }

    const void* m_data = nullptr; // a slice of the file's buffer, or a TvString that is ours
    std::uint32_t m_size = 0;     // of the slice, in bytes
    Kind m_kind = Kind::Unset;
};

/// Escapes UTF-8 for an XML attribute in double quotes.
void appendXmlEscaped(std::string& out, std::string_view utf8);
/// UTF-16 to the UTF-8 that the file carries, with marks for what XML cannot carry; not yet
/// XML-escaped.
std::string fileUtf8(const TvString& text);
/// The way back.
TvString textFromFile(std::string_view utf8);

} // namespace sm
