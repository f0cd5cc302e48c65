#include "dwg/code_page.h"

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>

#include <unicode/ucnv.h>

namespace dwg {

namespace {

struct PageName {
    int number;
    const char* converter;
};

// clang-format off
constexpr PageName kPages[] = {
    {0, "UTF-8"},         {1, "US-ASCII"},      {2, "ISO-8859-1"},    {3, "ISO-8859-2"},
    {4, "ISO-8859-3"},    {5, "ISO-8859-4"},    {6, "ISO-8859-5"},    {7, "ISO-8859-6"},
    {8, "ISO-8859-7"},    {9, "ISO-8859-8"},    {10, "ISO-8859-9"},   {11, "ibm-437"},
    {12, "ibm-850"},      {13, "ibm-852"},      {14, "ibm-855"},      {15, "ibm-857"},
    {16, "ibm-860"},      {17, "ibm-861"},      {18, "ibm-863"},      {19, "ibm-864"},
    {20, "ibm-865"},      {21, "ibm-869"},      {22, "windows-932"},  {23, "macintosh"},
    {24, "Big5"},         {25, "windows-949"},  {26, "ibm-1363"},     {27, "ibm-866"},
    {28, "windows-1250"}, {29, "windows-1251"}, {30, "windows-1252"}, {31, "GB2312"},
    {32, "windows-1253"}, {33, "windows-1254"}, {34, "windows-1255"}, {35, "windows-1256"},
    {36, "windows-1257"}, {37, "windows-874"},  {38, "windows-932"},  {39, "windows-936"},
    {40, "windows-949"},  {41, "windows-950"},  {42, "ibm-1363"},     {44, "windows-1258"},
};
// clang-format on

constexpr int kWindows1252 = 30;
constexpr unsigned kFirstOther = 0x80; // what lies below is ASCII

const PageName* pageNumbered(int number)
{
    const auto* const found =
        std::find_if(std::begin(kPages), std::end(kPages),
                     [number](const PageName& page) { return page.number == number; });
    return found == std::end(kPages) ? nullptr : found;
}

struct CloseConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

Converter openConverter(const char* name)
{
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(name, &error));
    return U_SUCCESS(error) ? std::move(converter) : nullptr;
}

// The bytes of one character; empty when the code page does not have it.
std::string bytesOf(UConverter* converter, std::u16string_view character)
{
    UErrorCode error = U_ZERO_ERROR;
    ucnv_setFromUCallBack(converter, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    std::string out(16, '\0');
    const int32_t size = ucnv_fromUChars(converter, out.data(), 16, character.data(),
                                         static_cast<int32_t>(character.size()), &error);
    out.resize(U_SUCCESS(error) && size > 0 && size <= 16 ? static_cast<std::size_t>(size) : 0);
    return out;
}

void appendEscape(std::string& out, char16_t unit)
{
    static constexpr char kDigits[] = "0123456789ABCDEF";
    out += "\\U+";
    for (int shift = 12; shift >= 0; shift -= 4)
        out += kDigits[unit >> shift & 0xF];
}

constexpr std::size_t kEscapeLength = 7; // \U+XXXX

int capitalHexDigit(char16_t unit)
{
    if (unit >= u'0' && unit <= u'9')
        return unit - u'0';
    return unit >= u'A' && unit <= u'F' ? unit - u'A' + 10 : -1;
}

// The unit of the escape that @p text begins with; 0 when it does not, or not as we write them.
char16_t escapedUnit(std::u16string_view text)
{
    if (!text.starts_with(u"\\U+") || text.size() < kEscapeLength)
        return 0;
    int unit = 0;
    for (std::size_t i = 3; i < kEscapeLength; ++i) {
        const int digit = capitalHexDigit(text[i]);
        if (digit < 0)
            return 0;
        unit = unit << 4 | digit;
    }
    return static_cast<char16_t>(unit);
}

bool isSurrogatePair(std::u16string_view text, std::size_t at)
{
    return (text[at] & 0xFC00) == 0xD800 && at + 1 < text.size() &&
           (text[at + 1] & 0xFC00) == 0xDC00;
}

} // namespace

const CodePage& CodePage::numbered(int number)
{
    static std::mutex mutex;
    static auto* const pages = new std::map<int, std::unique_ptr<CodePage>>;
    const PageName* found = pageNumbered(number);
    const PageName& known = found ? *found : *pageNumbered(kWindows1252);
    const std::scoped_lock lock(mutex);
    std::unique_ptr<CodePage>& page = (*pages)[known.number];
    if (!page)
        page.reset(new CodePage(known.number, known.converter));
    return *page;
}

CodePage::CodePage(int number, const char* converterName) : m_number(number), m_name(converterName)
{
    const Converter converter = openConverter(m_name);
    if (!converter)
        return; // ASCII only, by escapes: never with the ICU that we build upon
    m_isMultibyte = ucnv_getMaxCharSize(converter.get()) > 1;
    // In all of them: encode() writes these as they are. Some tables exchange control characters,
    // or have an Arabic sign in the place of one of these.
    for (unsigned byte = 0; byte < kFirstOther; ++byte)
        m_units[byte] = static_cast<char16_t>(byte);
    for (unsigned byte = kFirstOther; byte < 256 && !m_isMultibyte; ++byte) {
        UErrorCode error = U_ZERO_ERROR;
        const auto source = static_cast<char>(byte);
        char16_t units[4] = {};
        const int32_t size = ucnv_toUChars(converter.get(), units, 4, &source, 1, &error);
        const std::string back = bytesOf(converter.get(), {units, 1});
        const bool exact = U_SUCCESS(error) && size == 1 && units[0] >= kFirstOther &&
                           back == std::string(1, source);
        if (!exact)
            continue;
        m_units[byte] = units[0];
        m_bytes[units[0]] = static_cast<std::uint8_t>(byte);
    }
}

bool CodePage::mayHoldEscapes(std::span<const std::uint8_t> bytes)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return text.find("\\U+") != text.npos;
}

bool CodePage::decode(std::span<const std::uint8_t> bytes, std::u16string& out) const
{
    const bool hasOthers =
        std::any_of(bytes.begin(), bytes.end(), [](auto byte) { return byte >= kFirstOther; });
    const bool isWhole =
        m_isMultibyte && hasOthers ? decodeMultibyte(bytes, out) : decodeSingle(bytes, out);
    if (!mayHoldEscapes(bytes))
        return isWhole;
    resolveEscapes(out);
    return encode(out) ==
           std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

bool CodePage::has(char16_t unit) const
{
    return unit < kFirstOther || m_bytes.count(unit) != 0 ||
           (m_isMultibyte && !bytesOf(openConverter(m_name).get(), {&unit, 1}).empty());
}

// Unit by unit: a pair of surrogates is written as two escapes.
void CodePage::resolveEscapes(std::u16string& text) const
{
    std::u16string out;
    for (std::size_t at = 0; at < text.size();) {
        const char16_t unit = escapedUnit(std::u16string_view(text).substr(at));
        const bool isOurs = unit != 0 && !has(unit);
        out += isOurs ? unit : text[at];
        at += isOurs ? kEscapeLength : 1;
    }
    text = std::move(out);
}

bool CodePage::decodeSingle(std::span<const std::uint8_t> bytes, std::u16string& out) const
{
    out.resize(bytes.size());
    bool exact = true;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const char16_t unit = m_units[bytes[i]];
        const bool known = unit != 0 || bytes[i] == 0;
        out[i] = known ? unit : u'\uFFFD';
        exact = exact && known;
    }
    return exact;
}

bool CodePage::decodeMultibyte(std::span<const std::uint8_t> bytes, std::u16string& out) const
{
    const Converter converter = openConverter(m_name);
    UErrorCode error = U_ZERO_ERROR;
    out.resize(bytes.size());
    const auto* source = reinterpret_cast<const char*>(bytes.data());
    const auto length = static_cast<int32_t>(bytes.size());
    const int32_t size = ucnv_toUChars(converter.get(), out.data(), length, source, length, &error);
    const bool fits = !U_FAILURE(error) && size <= length;
    out.resize(fits ? static_cast<std::size_t>(size) : 0);
    return fits && encode(out) == std::string_view(source, bytes.size());
}

std::string CodePage::encode(std::u16string_view text) const
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();)
        appendUnit(text, at, out);
    return out;
}

void CodePage::appendUnit(std::u16string_view text, std::size_t& at, std::string& out) const
{
    const char16_t unit = text[at];
    if (unit < kFirstOther) {
        out += static_cast<char>(unit);
        ++at;
        return;
    }
    if (const auto known = m_bytes.find(unit); known != m_bytes.end()) {
        out += static_cast<char>(known->second);
        ++at;
        return;
    }
    const std::size_t count = isSurrogatePair(text, at) ? 2 : 1;
    std::string bytes;
    if (m_isMultibyte)
        bytes = bytesOf(openConverter(m_name).get(), text.substr(at, count));
    if (bytes.empty())
        for (std::size_t i = 0; i < count; ++i)
            appendEscape(bytes, text[at + i]);
    out += bytes;
    at += count;
}

} // namespace dwg
