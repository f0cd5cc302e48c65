#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <db/version.h>

struct UConverter;

namespace dxf {

/// The number of the code page called @p name ("ANSI_1252") in the headers of drawings; that of
/// Windows-1252 for names that are not known.
int codePageNumber(std::string_view name);
/// The way back.
std::string_view codePageName(int number);

/// Texts between files and records.
///
/// From 2007 on files are UTF-8, before that in an 8-bit code page. In all of them `\U+XXXX` is a
/// UTF-16 unit and `\M+nXXXX` a character of one of five multibyte code pages; `^J` is a line feed
/// (any control character so), and `^ ` the caret itself.
///
/// Not for several threads at once.
class TextCoding
{
public:
    TextCoding(db::Version version, int codePage);
    ~TextCoding();

    /// Bytes that mean nothing become U+FFFD.
    void decode(std::string_view bytes, std::u16string& out) const;
    std::u16string decoded(std::string_view bytes) const
    {
        std::u16string out;
        decode(bytes, out);
        return out;
    }
    /// Appends the line's text. What the code page does not have is written as `\U+XXXX`; what
    /// stands so in @p text counts as the character that it means.
    void encode(std::u16string_view text, std::string& out) const;

    /// Writes the digits of all `\U+XXXX` in @p text, from @p begin on, as capitals, as encode()
    /// does.
    static void capitaliseEscapes(std::string& text, std::size_t begin);
    /// With `\U+XXXX` as the characters that they mean.
    static std::u16string resolved(std::u16string_view text);

    int codePage() const { return m_codePage; }

private:
    struct CloseConverter {
        void operator()(UConverter* converter) const;
    };
    using Converter = std::unique_ptr<UConverter, CloseConverter>;

    static Converter open(const char* name);
    void decodeBytes(std::string_view bytes, std::u16string& out) const;
    void decodeEscapes(std::string_view bytes, std::u16string& out) const;
    void encodeCharacter(std::u16string_view character, std::string& out) const;
    static std::u16string decodeMultibyte(char page, unsigned code);

    int m_codePage;
    Converter m_converter; // null: UTF-8
};

} // namespace dxf
