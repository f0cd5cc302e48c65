#pragma once

#include <map>
#include <vector>

#include "page_content.h"
#include "pdf_writer.h"

namespace plot {

/// A page that is written, as others refer to it.
struct PdfPage {
    int object = 0;
    const PageOrder* order = nullptr; ///< not owned; outlives the file
};

/// The fonts of a document: of each, the letters that its pages use.
class PdfFonts
{
public:
    explicit PdfFonts(PdfWriter& pdf) : m_pdf(pdf) {}

    /// The entries of the dictionary of a page's fonts. Takes the letters from @p content.
    std::string use(PageContent& content);
    /// Writes the fonts themselves, when all pages are there.
    void finish();

private:
    struct Font {
        int object = 0;
        UsedFont used;
    };
    void writeHidden();
    Font& fontFor(const UsedFont& used);

    PdfWriter& m_pdf;
    std::vector<Font> m_fonts;
    std::map<std::pair<std::string, std::uint32_t>, std::vector<std::size_t>> m_byKey;
    int m_hidden = 0; // 0: no page needs it
    std::set<char16_t> m_hiddenLetters;
};

/// Colours along a line from x = 0 to 1, or from the middle to 1 away from it.
std::string pdfShading(const UsedShading& shading);
/// The tree of subsets with their sheets. @return its object.
int writeOutline(PdfWriter& pdf, const std::vector<PdfPage>& pages);
/// The sheets' numbers as the names of the pages. @return their object.
int writePageLabels(PdfWriter& pdf, const std::vector<PdfPage>& pages);
/// Title, author and subject, twice: for old readers and as XMP.
struct PdfInfo {
    int old = 0, xmp = 0; ///< objects
};
PdfInfo writeInfo(PdfWriter& pdf, const DocumentInfo& info);

} // namespace plot
