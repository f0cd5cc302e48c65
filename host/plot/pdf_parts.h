#pragma once

#include <map>
#include <vector>

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>

#include "page_content.h"

namespace plot {

/// What connects a page with the others.
struct PdfPage {
    QPDFObjectHandle page;
    std::size_t number = 0; ///< among the job's
    TvString label, title;
    std::vector<TvString> subsets;
    std::vector<PlacedLink> links;
    double unitsPerMm = 1;
};

/// The fonts of a document: of each, the letters that its pages use.
class PdfFonts
{
public:
    explicit PdfFonts(QPDF& pdf) : m_pdf(pdf) {}

    /// The dictionary of a page's fonts. Takes the letters from @p content.
    QPDFObjectHandle use(PageContent& content);
    /// Writes the fonts themselves, when all pages are there.
    void finish();

private:
    struct Font {
        QPDFObjectHandle object;
        UsedFont used;
    };
    void write(Font& font, std::size_t number);
    void writeHidden();

    QPDF& m_pdf;
    std::vector<Font> m_fonts;
    std::map<std::pair<std::string, std::uint32_t>, std::size_t> m_byKey;
    QPDFObjectHandle m_hidden;
    std::set<char16_t> m_hiddenLetters;
};

/// Colours along a line from x = 0 to 1, or from the middle to 1 away from it.
QPDFObjectHandle shadingObject(const UsedShading& shading);
/// A destination: all of a page.
QPDFObjectHandle wholePage(const QPDFObjectHandle& page);
/// The tree of subsets with their sheets.
void addOutline(QPDF& pdf, const std::vector<PdfPage>& pages);
/// The sheets' numbers as the names of the pages.
void addPageLabels(QPDF& pdf, const std::vector<PdfPage>& pages);
/// Title, author and subject, twice: for old readers and as XMP.
void addInfo(QPDF& pdf, const DocumentInfo& info);

} // namespace plot
