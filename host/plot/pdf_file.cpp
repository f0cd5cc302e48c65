#include "pdf_file.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "pdf_parts.h"
#include "plot/reasons.h"

namespace plot {

namespace {

constexpr double kPointsPerMm = 72 / 25.4;
constexpr double kLargestPage = 14400; // points, in units of one point
constexpr std::size_t kPagesInNode = 64;

std::string box(double x1, double y1, double x2, double y2)
{
    return fmt::format("[{} {} {} {}]", pdfReal(x1, 3), pdfReal(y1, 3), pdfReal(x2, 3),
                       pdfReal(y2, 3));
}

std::string entry(const char* key, const std::string& content)
{
    return content.empty() ? content : fmt::format("/{} << {}>> ", key, content);
}

/// Objects that are there once, however many pages use them.
class SharedObjects
{
public:
    /// The object's number; @p make is asked for it when it is a new one.
    template <class Make>
    int find(std::string_view content, const Make& make)
    {
        const base::ContentHash hash = base::hashOf(std::as_bytes(std::span(content)));
        const auto [found, isNew] = m_numbers.try_emplace({hash.high, hash.low}, 0);
        if (isNew)
            found->second = make();
        return found->second;
    }

private:
    std::map<std::pair<std::uint64_t, std::uint64_t>, int> m_numbers; // by content
};

} // namespace

struct PdfFile::Impl {
    Impl(const DocumentInfo& about, const PdfOptions& wanted, const TvString& folder)
        : info(about), options(wanted), pdf(folder), fonts(pdf)
    {
    }

    int layer(const TvString& name)
    {
        const auto [found, isNew] = layers.try_emplace(name, 0);
        if (isNew)
            found->second = pdf.write(fmt::format("<< /Type /OCG /Name {} >>", pdfText(name)));
        return found->second;
    }

    std::string layersOf(const PageContent& content)
    {
        std::string all;
        for (std::size_t i = 0; i < content.layers.size(); ++i)
            all += fmt::format("/L{} {} 0 R ", i, layer(content.layers[i]));
        return all;
    }

    std::string statesOf(const PageContent& content) const
    {
        std::string all;
        for (const std::uint8_t alpha : content.alphas)
            all += fmt::format("/A{0} << /CA {1} /ca {1} >> ", alpha, pdfReal(alpha / 255.0, 3));
        if (options.mergesLines)
            all += "/M << /BM /Multiply >> ";
        return all;
    }

    std::string picturesOf(const PageContent& content)
    {
        std::string all;
        for (std::size_t i = 0; i < content.images.size(); ++i)
            all += fmt::format("/I{} {} 0 R ", i, picture(content.images[i]));
        return all;
    }

    static std::string imageEntries(const UsedImage& used, const char* colors)
    {
        return fmt::format("/Type /XObject /Subtype /Image /Width {} /Height {} /ColorSpace /{} "
                           "/BitsPerComponent 8",
                           used.width, used.height, colors);
    }

    int picture(const UsedImage& used)
    {
        return pictures.find(used.packed + used.opacity, [&] {
            std::string entries = imageEntries(used, used.isGray ? "DeviceGray" : "DeviceRGB");
            if (used.isJpeg)
                entries += " /Filter /DCTDecode";
            if (!used.opacity.empty())
                entries += " /SMask " + pdfReference(pdf.writeStream(
                                            imageEntries(used, "DeviceGray"), used.opacity, true));
            return pdf.writeStream(entries, used.packed, !used.isJpeg);
        });
    }

    static std::string shadingsOf(const PageContent& content)
    {
        std::string all;
        for (std::size_t i = 0; i < content.shadings.size(); ++i)
            all += fmt::format("/S{} {} ", i, pdfShading(content.shadings[i]));
        return all;
    }

    /// Many pages of a set need the same.
    int resourcesOf(PageContent& content)
    {
        const std::string all =
            "<< " + entry("Properties", layersOf(content)) + entry("ExtGState", statesOf(content)) +
            entry("Font", fonts.use(content)) + entry("Shading", shadingsOf(content)) +
            entry("XObject", picturesOf(content)) + ">>";
        return resources.find(all, [&] { return pdf.write(all); });
    }

    void addPage(std::size_t number, const PageOrder& order, PageContent& content)
    {
        const double width = content.widthMm * kPointsPerMm;
        const double height = content.heightMm * kPointsPerMm;
        const double unit = std::max(1.0, std::ceil(std::max(width, height) / kLargestPage));
        if (pages.size() % kPagesInNode == 0)
            nodes.push_back(pdf.reserve());
        const int page = pdf.reserve();
        std::string text = fmt::format("<< /Type /Page /Parent {} 0 R /MediaBox {} ", nodes.back(),
                                       box(0, 0, width / unit, height / unit));
        std::string contents;
        if (unit > 1) {
            text += fmt::format("/UserUnit {} ", static_cast<int>(unit));
            const std::string smaller = fmt::format("{0:.6f} 0 0 {0:.6f} 0 0 cm\n", 1 / unit);
            contents = pdfReference(pdf.writeStream("", smaller, false)) + " ";
        }
        contents += pdfReference(pdf.writeStream("", content.stream, true));
        text += fmt::format("/Contents [{}] /Resources {} 0 R ", contents, resourcesOf(content));
        if (!content.links.empty()) {
            linked.push_back({pdf.reserve(), std::move(content.links), kPointsPerMm / unit});
            text += fmt::format("/Annots {} 0 R ", linked.back().object);
        }
        pdf.write(page, text + ">>");
        pages.push_back({page, &order});
        if (number >= byNumber.size())
            byNumber.resize(number + 1);
        byNumber[number] = page;
    }

    /// When all pages are known: of those that failed none leads anywhere.
    void addLinks()
    {
        for (const LinkedPage& page : linked) {
            std::string notes;
            const double unit = page.unitsPerMm;
            for (const PlacedLink& link : page.links)
                if (link.page < byNumber.size() && byNumber[link.page] != 0)
                    notes += fmt::format(
                        "<< /Type /Annot /Subtype /Link /Rect {} /Border [0 0 0] /Dest [{} 0 R "
                        "/Fit] >> ",
                        box(link.areaMm.lowX * unit, link.areaMm.lowY * unit,
                            link.areaMm.highX * unit, link.areaMm.highY * unit),
                        byNumber[link.page]);
            pdf.write(page.object, "[" + notes + "]");
        }
    }

    /// Pages in nodes of a few, so that a viewer finds one without reading all.
    int writePageTree()
    {
        const int root = nodes.size() == 1 ? nodes.front() : pdf.reserve();
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const std::size_t first = i * kPagesInNode;
            const std::size_t end = std::min(first + kPagesInNode, pages.size());
            std::string kids;
            for (std::size_t page = first; page < end; ++page)
                kids += pdfReference(pages[page].object) + " ";
            const std::string parent =
                nodes[i] == root ? std::string() : "/Parent " + pdfReference(root);
            pdf.write(nodes[i], fmt::format("<< /Type /Pages /Kids [{}] /Count {} {}>>", kids,
                                            end - first, parent));
        }
        if (nodes.size() != 1) {
            std::string kids;
            for (const int node : nodes)
                kids += pdfReference(node) + " ";
            pdf.write(root,
                      fmt::format("<< /Type /Pages /Kids [{}] /Count {} >>", kids, pages.size()));
        }
        return root;
    }

    std::string layerList() const
    {
        std::string all;
        for (const auto& [name, group] : layers)
            all += pdfReference(group) + " ";
        return all.empty() ? all
                           : fmt::format("/OCProperties << /OCGs [{0}] /D << /Order [{0}] /ON "
                                         "[{0}] >> >> ",
                                         all);
    }

    base::Status finish()
    {
        std::string catalogue =
            fmt::format("<< /Type /Catalog /Pages {} 0 R {}", writePageTree(), layerList());
        addLinks();
        fonts.finish();
        if (options.hasOutline) {
            catalogue += fmt::format("/Outlines {} 0 R ", writeOutline(pdf, pages));
            if (pages.size() > 1)
                catalogue += "/PageMode /UseOutlines ";
        }
        catalogue += fmt::format("/PageLabels {} 0 R ", writePageLabels(pdf, pages));
        const PdfInfo about = writeInfo(pdf, info);
        catalogue += fmt::format("/Metadata {} 0 R ", about.xmp);
        if (!info.title.isEmpty())
            catalogue += "/ViewerPreferences << /DisplayDocTitle true >> ";
        return pdf.finish(pdf.write(catalogue + ">>"), about.old);
    }

    /// A page whose links wait until all pages are known.
    struct LinkedPage {
        int object = 0; ///< of its notes
        std::vector<PlacedLink> links;
        double unitsPerMm = 1;
    };

    DocumentInfo info;
    PdfOptions options;
    PdfWriter pdf;
    PdfFonts fonts;
    std::vector<PdfPage> pages;
    std::vector<int> nodes;    // of the tree of pages
    std::vector<int> byNumber; // page objects by the job's numbers; 0: failed
    std::vector<LinkedPage> linked;
    std::map<TvString, int> layers; // by name, and so shown
    SharedObjects resources, pictures;
};

PdfFile::PdfFile(const DocumentInfo& info, const PdfOptions& options, const TvString& folder)
    : m_impl(std::make_unique<Impl>(info, options, folder))
{
}

PdfFile::~PdfFile() = default;

base::Status PdfFile::add(std::size_t number, const PageOrder& order, PageContent content)
{
    m_impl->addPage(number, order, content);
    return m_impl->pdf.status();
}

bool PdfFile::isEmpty() const
{
    return m_impl->pages.empty();
}

base::Status PdfFile::finish()
{
    return m_impl->finish();
}

const Spool& PdfFile::content() const
{
    return m_impl->pdf.file();
}

} // namespace plot
