#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include <base/content_hash.h>

#include "cff_font.h"
#include "inflate.h"
#include "pdf_parts.h"

namespace plot {

namespace {

constexpr std::size_t kMostRanges = 100; // in one block of a table of characters
constexpr int kPacking = 9;
// Of a table of characters.
constexpr char kTableHead[] =
    "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
    "/CIDSystemInfo << /Registry (Adobe) /Ordering (UCS) /Supplement 0 >> def\n"
    "/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n"
    "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n";
constexpr char kTableEnd[] = "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";

/// UTF-16, hexadecimal.
std::string hexOf(char32_t character)
{
    if (character < 0x10000)
        return fmt::format("{:04X}", static_cast<unsigned>(character));
    const auto rest = static_cast<unsigned>(character - 0x10000);
    return fmt::format("{:04X}{:04X}", 0xD800 + (rest >> 10), 0xDC00 + (rest & 0x3FF));
}

/// The table by which a reader gets characters from codes, which are their places in the plane.
std::string unicodeTable(const std::vector<std::uint16_t>& codes, std::uint32_t plane)
{
    struct Range {
        std::uint16_t first, last;
    };
    std::vector<Range> ranges;
    for (const std::uint16_t code : codes)
        if (!ranges.empty() && ranges.back().last + 1 == code && (code & 0xFF) != 0)
            ranges.back().last = code;
        else
            ranges.push_back({code, code});
    std::string out = kTableHead;
    for (std::size_t first = 0; first < ranges.size(); first += kMostRanges) {
        const std::size_t end = std::min(first + kMostRanges, ranges.size());
        out += fmt::format("{} beginbfrange\n", end - first);
        for (std::size_t i = first; i < end; ++i)
            out += fmt::format("<{:04X}> <{:04X}> <{}>\n", ranges[i].first, ranges[i].last,
                               hexOf(plane << 16 | ranges[i].first));
        out += "endbfrange\n";
    }
    return out + kTableEnd;
}

/// The same for forms, each of which stands for what it tells.
std::string formTable(const std::map<std::uint16_t, UsedLetter>& letters)
{
    std::vector<std::string> rows;
    for (const auto& [code, letter] : letters) {
        std::string text;
        for (const char16_t unit : letter.text)
            text += fmt::format("{:04X}", static_cast<unsigned>(unit));
        if (!text.empty()) // else it is a part of one that stands before it
            rows.push_back(fmt::format("<{:04X}> <{}>\n", code, text));
    }
    std::string out = kTableHead;
    for (std::size_t first = 0; first < rows.size(); first += kMostRanges) {
        const std::size_t end = std::min(first + kMostRanges, rows.size());
        out += fmt::format("{} beginbfchar\n", end - first);
        for (std::size_t i = first; i < end; ++i)
            out += rows[i];
        out += "endbfchar\n";
    }
    return out + kTableEnd;
}

/// Six letters that tell this selection of a font's letters from others.
std::string tagOf(const std::string& program)
{
    const base::ContentHash hash = base::hashOf(std::as_bytes(std::span(program)));
    std::uint64_t bits = hash.low;
    std::string tag;
    for (int i = 0; i < 6; ++i, bits /= 26)
        tag += static_cast<char>('A' + bits % 26);
    return tag;
}

/// Letters, digits and dashes only.
std::string plainName(const std::string& name)
{
    std::string plain;
    for (const char c : name)
        if ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-')
            plain += c;
    plain.resize(std::min<std::size_t>(plain.size(), 60));
    return plain.empty() ? "Font" : plain;
}

/// Around the letters, in units of the font.
std::string fontBox(const std::map<std::uint16_t, UsedLetter>& letters)
{
    gs::Box box;
    box.add({0, 0});
    for (const auto& [code, letter] : letters)
        box.addBox(gs::boxOf(letter.outline));
    const auto edge = [](double value) {
        return static_cast<int>(std::clamp(value * 1000, -16000.0, 16000.0));
    };
    return fmt::format("[{} {} {} {}]", edge(box.lowX), edge(box.lowY), edge(box.highX),
                       edge(box.highY));
}

struct FontFile {
    std::string name, program;
    const std::map<std::uint16_t, UsedLetter>& letters;
    std::uint32_t plane;
};

/// Runs of codes that follow each other, as their first code and their widths.
std::string widthsOf(const std::map<std::uint16_t, UsedLetter>& letters)
{
    std::string widths;
    int next = -1;
    for (const auto& [code, letter] : letters) {
        if (code != next)
            widths += fmt::format("{}{} [", next < 0 ? "" : "] ", code);
        fmt::format_to(std::back_inserter(widths), "{} ", cffWidth(letter));
        next = code + 1;
    }
    return widths.empty() ? widths : "/W [" + widths + "]] ";
}

int writeDescriptor(PdfWriter& pdf, const FontFile& file, const std::string& name)
{
    const int program =
        pdf.writeStream("/Subtype /CIDFontType0C", deflated(file.program, kPacking), true);
    return pdf.write(
        fmt::format("<< /Type /FontDescriptor /FontName {} /Flags 4 /ItalicAngle 0 /Ascent 1300 "
                    "/Descent -400 /CapHeight 1000 /StemV 100 /FontBBox {} /FontFile3 {} 0 R >>",
                    name, fontBox(file.letters), program));
}

void writeFont(PdfWriter& pdf, int font, const FontFile& file, int defaultWidth)
{
    const std::string name = "/" + tagOf(file.program) + "+" + file.name;
    const int descriptor = writeDescriptor(pdf, file, name);
    const int inner = pdf.write(
        fmt::format("<< /Type /Font /Subtype /CIDFontType0 /BaseFont {} /CIDSystemInfo << "
                    "/Registry (Adobe) /Ordering (Identity) /Supplement 0 >> /FontDescriptor {} 0 "
                    "R /DW {} {}>>",
                    name, descriptor, defaultWidth, widthsOf(file.letters)));
    std::vector<std::uint16_t> codes;
    for (const auto& [code, letter] : file.letters)
        codes.push_back(code);
    const int characters =
        pdf.writeStream("",
                        deflated(file.plane == UsedFont::kForms ? formTable(file.letters)
                                                                : unicodeTable(codes, file.plane),
                                 kPacking),
                        true);
    pdf.write(font, fmt::format("<< /Type /Font /Subtype /Type0 /BaseFont {} /Encoding /Identity-H "
                                "/DescendantFonts [{} 0 R] /ToUnicode {} 0 R >>",
                                name, inner, characters));
}

} // namespace

/// Forms that stand for one thing on one page and for another on the next are of two fonts.
PdfFonts::Font& PdfFonts::fontFor(const UsedFont& used)
{
    const auto agrees = [&used](const Font& font) {
        return std::none_of(used.letters.begin(), used.letters.end(), [&font](const auto& letter) {
            const auto known = font.used.letters.find(letter.first);
            return known != font.used.letters.end() && !known->second.text.empty() &&
                   !letter.second.text.empty() && known->second.text != letter.second.text;
        });
    };
    auto& numbers = m_byKey[std::pair(used.face.key, used.plane)];
    for (const std::size_t number : numbers)
        if (agrees(m_fonts[number]))
            return m_fonts[number];
    numbers.push_back(m_fonts.size());
    m_fonts.push_back({m_pdf.reserve(), {used.face, used.plane, {}}});
    return m_fonts.back();
}

std::string PdfFonts::use(PageContent& content)
{
    std::string fonts;
    for (std::size_t i = 0; i < content.fonts.size(); ++i) {
        UsedFont& used = content.fonts[i];
        Font& font = fontFor(used);
        for (const auto& [code, letter] : used.letters)
            if (const auto known = font.used.letters.find(code);
                known != font.used.letters.end() && known->second.text.empty())
                known->second.text = letter.text;
        font.used.letters.merge(used.letters);
        fonts += fmt::format("/F{} {} 0 R ", i, font.object);
    }
    if (!content.hidden.empty()) {
        if (m_hidden == 0)
            m_hidden = m_pdf.reserve();
        m_hiddenLetters.merge(content.hidden);
        fonts += fmt::format("/FH {} 0 R ", m_hidden);
    }
    return fonts;
}

void PdfFonts::finish()
{
    for (const Font& font : m_fonts) {
        const std::string name = plainName(font.used.face.name);
        writeFont(m_pdf, font.object,
                  {name, cffFont(font.used.letters, name), font.used.letters, font.used.plane}, 0);
    }
    if (m_hidden != 0)
        writeHidden();
}

// Nothing is drawn of it: it needs no outlines, and all its letters are as wide.
void PdfFonts::writeHidden()
{
    std::map<std::uint16_t, UsedLetter> blanks;
    for (const char16_t letter : m_hiddenLetters)
        blanks[letter].advance = 0.5;
    writeFont(m_pdf, m_hidden, {"Hidden", cffFont(blanks, "Hidden"), blanks, 0}, 500);
}

} // namespace plot
