#include "text_coding.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include <unicode/ucnv.h>

#include <base/tv_string.h>

namespace dxf {

namespace {

struct Page {
    int number; // as headers of drawings have it
    std::string_view name;
    const char* converter;
};

// clang-format off
constexpr Page kPages[] = {
    {30, "ANSI_1252", "windows-1252"}, {28, "ANSI_1250", "windows-1250"},
    {29, "ANSI_1251", "windows-1251"}, {32, "ANSI_1253", "windows-1253"},
    {33, "ANSI_1254", "windows-1254"}, {34, "ANSI_1255", "windows-1255"},
    {35, "ANSI_1256", "windows-1256"}, {36, "ANSI_1257", "windows-1257"},
    {44, "ANSI_1258", "windows-1258"}, {37, "ANSI_874", "windows-874"},
    {38, "ANSI_932", "windows-932"},   {39, "ANSI_936", "windows-936"},
    {40, "ANSI_949", "windows-949"},   {41, "ANSI_950", "windows-950"},
    {42, "ANSI_1361", "ibm-1363"},     {11, "DOS437", "ibm-437"},
    {12, "DOS850", "ibm-850"},         {13, "DOS852", "ibm-852"},
    {14, "DOS855", "ibm-855"},         {15, "DOS857", "ibm-857"},
    {16, "DOS860", "ibm-860"},         {17, "DOS861", "ibm-861"},
    {18, "DOS863", "ibm-863"},         {19, "DOS864", "ibm-864"},
    {20, "DOS865", "ibm-865"},         {21, "DOS869", "ibm-869"},
    {27, "DOS866", "ibm-866"},         {22, "DOS932", "windows-932"},
    {2, "ISO8859-1", "ISO-8859-1"},    {3, "ISO8859-2", "ISO-8859-2"},
    {4, "ISO8859-3", "ISO-8859-3"},    {5, "ISO8859-4", "ISO-8859-4"},
    {6, "ISO8859-5", "ISO-8859-5"},    {7, "ISO8859-6", "ISO-8859-6"},
    {8, "ISO8859-7", "ISO-8859-7"},    {9, "ISO8859-8", "ISO-8859-8"},
    {10, "ISO8859-9", "ISO-8859-9"},   {1, "ASCII", "US-ASCII"},
    {23, "MACINTOSH", "macintosh"},    {24, "BIG5", "Big5"},
    {25, "KSC5601", "windows-949"},    {26, "JOHAB", "ibm-1363"},
    {31, "GB2312", "GB2312"},
};
// clang-format on

bool sameName(std::string_view a, std::string_view b)
{
    return base::equalNoCase(base::utf16FromUtf8(a), base::utf16FromUtf8(b));
}

const Page& pageNumbered(int number)
{
    const auto* const found = std::find_if(std::begin(kPages), std::end(kPages),
                                           [&](const Page& p) { return p.number == number; });
    return found == std::end(kPages) ? kPages[0] : *found;
}

bool isPlain(std::string_view bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char c) {
        return static_cast<signed char>(c) >= 0 && c != '\\' && c != '^';
    });
}

std::optional<unsigned> fourDigits(std::string_view text)
{
    unsigned value = 0;
    if (text.size() < 4)
        return std::nullopt;
    const auto read = std::from_chars(text.data(), text.data() + 4, value, 16);
    return read.ptr == text.data() + 4 ? std::optional(value) : std::nullopt;
}

/// The unit that an escape at the beginning of @p text stands for.
std::optional<unsigned> unicodeEscape(std::string_view text)
{
    const bool begins = text.starts_with("\\U+") || text.starts_with("\\u+");
    return begins ? fourDigits(text.substr(3)) : std::nullopt;
}

std::optional<char16_t> caretEscape(std::string_view text)
{
    if (text.size() < 2 || text[0] != '^')
        return std::nullopt;
    if (text[1] == ' ')
        return u'^';
    if (text[1] >= '@' && text[1] <= '_')
        return static_cast<char16_t>(text[1] - '@');
    return std::nullopt;
}

void appendEscape(char16_t unit, std::string& out)
{
    static constexpr char kDigits[] = "0123456789ABCDEF";
    out += "\\U+";
    for (int shift = 12; shift >= 0; shift -= 4)
        out += kDigits[unit >> shift & 0xF];
}

} // namespace

int codePageNumber(std::string_view name)
{
    for (const Page& page : kPages)
        if (sameName(page.name, name))
            return page.number;
    return kPages[0].number;
}

std::string_view codePageName(int number)
{
    return pageNumbered(number).name;
}

void TextCoding::CloseConverter::operator()(UConverter* converter) const
{
    ucnv_close(converter);
}

TextCoding::Converter TextCoding::open(const char* name)
{
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(name, &error));
    if (U_FAILURE(error))
        return nullptr;
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                          &error);
    return converter;
}

TextCoding::TextCoding(db::Version version, int codePage)
    : m_codePage(pageNumbered(codePage).number),
      m_converter(db::hasWideText(version) ? nullptr : open(pageNumbered(codePage).converter))
{
}

TextCoding::~TextCoding() = default;

void TextCoding::decode(std::string_view bytes, std::u16string& out) const
{
    if (isPlain(bytes))
        out.assign(bytes.begin(), bytes.end());
    else
        decodeEscapes(bytes, out);
}

void TextCoding::decodeBytes(std::string_view bytes, std::u16string& out) const
{
    if (!m_converter) {
        out += base::utf16FromUtf8(bytes);
        return;
    }
    UErrorCode error = U_ZERO_ERROR;
    std::u16string units(bytes.size() + 1, u'\0');
    const auto size =
        ucnv_toUChars(m_converter.get(), units.data(), static_cast<int32_t>(units.size()),
                      bytes.data(), static_cast<int32_t>(bytes.size()), &error);
    if (!U_FAILURE(error) && static_cast<std::size_t>(size) <= units.size())
        out.append(units, 0, static_cast<std::size_t>(size));
}

// Escapes are looked for in the bytes; a second byte of a multibyte character that looks like one
// would need the digits behind it too, which does not happen in texts.
void TextCoding::decodeEscapes(std::string_view bytes, std::u16string& out) const
{
    out.clear();
    std::size_t kept = 0; // bytes up to here are in out
    for (std::size_t at = 0; at < bytes.size();) {
        const std::string_view rest = bytes.substr(at);
        std::u16string means;
        std::size_t taken = 0;
        if (const auto unit = unicodeEscape(rest)) {
            means = static_cast<char16_t>(*unit);
            taken = 7;
        } else if (const auto control = caretEscape(rest)) {
            means = *control;
            taken = 2;
        } else if (rest.starts_with("\\M+") && rest.size() >= 8) {
            const auto code = fourDigits(rest.substr(4));
            means = code ? decodeMultibyte(rest[3], *code) : std::u16string();
            taken = means.empty() ? 0 : 8;
        }
        if (taken) {
            decodeBytes(bytes.substr(kept, at - kept), out);
            out += means;
            kept = at + taken;
        }
        at += taken ? taken : 1;
    }
    decodeBytes(bytes.substr(kept), out);
}

std::u16string TextCoding::decodeMultibyte(char page, unsigned code)
{
    static constexpr const char* kNames[] = {"windows-932", "windows-950", "windows-949",
                                             "ibm-1363", "windows-936"};
    if (page < '1' || page > '5')
        return {};
    const Converter converter = open(kNames[page - '1']);
    const char bytes[] = {static_cast<char>(code >> 8), static_cast<char>(code)};
    UErrorCode error = U_ZERO_ERROR;
    char16_t units[4] = {};
    if (!converter)
        return {};
    const auto size = ucnv_toUChars(converter.get(), units, 4, bytes, 2, &error);
    return U_SUCCESS(error) && size > 0 ? std::u16string(units, static_cast<std::size_t>(size))
                                        : std::u16string();
}

void TextCoding::capitaliseEscapes(std::string& text, std::size_t begin)
{
    for (std::size_t at = text.find("+", begin); at != text.npos; at = text.find("+", at + 1)) {
        if (at < begin + 2 || !unicodeEscape(std::string_view(text).substr(at - 2)))
            continue;
        for (std::size_t i = at - 1; i < at + 5; ++i)
            if (text[i] >= 'a' && text[i] <= 'u')
                text[i] = static_cast<char>(text[i] - 'a' + 'A');
    }
}

std::u16string TextCoding::resolved(std::u16string_view text)
{
    std::u16string out;
    for (std::size_t at = 0; at < text.size();) {
        std::string ascii;
        for (std::size_t i = at; text[at] == u'\\' && i < text.size() && i < at + 7; ++i)
            ascii += text[i] < 0x80 ? static_cast<char>(text[i]) : '?';
        const auto unit = unicodeEscape(ascii);
        out += unit ? static_cast<char16_t>(*unit) : text[at];
        at += unit ? 7 : 1;
    }
    return out;
}

void TextCoding::encode(std::u16string_view text, std::string& out) const
{
    std::u16string kept;
    if (text.find(u"\\U+") != text.npos || text.find(u"\\u+") != text.npos) {
        kept = resolved(text);
        text = kept;
    }
    for (std::size_t at = 0; at < text.size();) {
        const char16_t unit = text[at];
        const bool isPair =
            (unit & 0xFC00) == 0xD800 && at + 1 < text.size() && (text[at + 1] & 0xFC00) == 0xDC00;
        const std::size_t count = isPair ? 2 : 1;
        if (unit < 0x20)
            out.append({'^', static_cast<char>(unit + '@')});
        else if (unit == u'^')
            out += "^ ";
        else if (unit < 0x80)
            out += static_cast<char>(unit);
        else
            encodeCharacter(text.substr(at, count), out);
        at += count;
    }
}

void TextCoding::encodeCharacter(std::u16string_view character, std::string& out) const
{
    const bool isLone = character.size() == 1 && (character[0] & 0xF800) == 0xD800;
    if (!m_converter && !isLone) {
        out += base::utf8FromUtf16(character);
        return;
    }
    char bytes[8];
    UErrorCode error = U_ZERO_ERROR;
    const auto size =
        isLone ? 0
               : ucnv_fromUChars(m_converter.get(), bytes, sizeof bytes, character.data(),
                                 static_cast<int32_t>(character.size()), &error);
    // A second byte that is a backslash, a caret or a control character would be taken for one.
    const bool isSafe = std::all_of(bytes + (size > 0 ? 1 : 0), bytes + std::max(size, 0),
                                    [](char c) { return c != '\\' && c != '^' && (c & 0xE0); });
    if (U_SUCCESS(error) && size > 0 && isSafe)
        out.append(bytes, static_cast<std::size_t>(size));
    else
        for (const char16_t unit : character)
            appendEscape(unit, out);
}

} // namespace dxf
