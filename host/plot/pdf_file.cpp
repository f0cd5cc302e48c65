#include "pdf_file.h"

#include <algorithm>
#include <cmath>
#include <exception>

#include <fmt/format.h>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFWriter.hh>

#include <base/content_hash.h>

#include "cff_font.h"
#include "pdf_parts.h"
#include "plot/reasons.h"

namespace plot {

namespace {

using Object = QPDFObjectHandle;

constexpr double kPointsPerMm = 72 / 25.4;
constexpr double kLargestPage = 14400; // points, in units of one point
constexpr std::size_t kPagesInNode = 64;

/// Gives back what was put aside.
class FromSpool : public Object::StreamDataProvider
{
public:
    FromSpool(std::shared_ptr<Spool> spool, std::uint64_t offset, std::size_t size)
        : m_spool(std::move(spool)), m_offset(offset), m_size(size)
    {
    }
    void provideStreamData(QPDFObjGen const&, Pipeline* to) override
    {
        std::string bytes(m_size, '\0');
        if (!m_spool->read(m_offset, bytes))
            throw std::runtime_error("temporary file");
        to->write(bytes.data(), bytes.size());
        to->finish();
    }

private:
    std::shared_ptr<Spool> m_spool;
    std::uint64_t m_offset;
    std::size_t m_size;
};

/// Where the finished file goes.
class ToSpool : public Pipeline
{
public:
    explicit ToSpool(Spool& to) : Pipeline("file", nullptr), m_to(to) {}
    void write(unsigned char const* bytes, std::size_t size) override
    {
        m_held.append(reinterpret_cast<const char*>(bytes), size);
        if (m_held.size() >= kHeld)
            put();
    }
    void finish() override { put(); }
    const base::Status& status() const { return m_status; }

private:
    static constexpr std::size_t kHeld = 256 * 1024;
    void put()
    {
        if (m_status)
            m_status = m_to.add(m_held);
        m_held.clear();
    }
    Spool& m_to;
    std::string m_held;
    base::Status m_status;
};

Object box(double x1, double y1, double x2, double y2)
{
    const auto real = [](double value) { return Object::newReal(value, 3); };
    return Object::newArray({real(x1), real(y1), real(x2), real(y2)});
}

} // namespace

struct PdfFile::Impl {
    Impl(const DocumentInfo& about, const PdfOptions& wanted, const TvString& folder)
        : info(about), options(wanted), spool(std::make_shared<Spool>(folder))
    {
        pdf.emptyPDF();
        fonts = std::make_unique<PdfFonts>(pdf);
    }

    Object contentStream(const std::string& packed, const char* filter = "/FlateDecode")
    {
        const std::uint64_t offset = spool->size();
        status = spool->add(packed);
        Object stream = pdf.newStream();
        stream.replaceStreamData(std::make_shared<FromSpool>(spool, offset, packed.size()),
                                 Object::newName(filter), Object::newNull());
        return stream;
    }

    Object layer(const TvString& name)
    {
        auto found = layers.find(name);
        if (found == layers.end()) {
            Object group = pdf.makeIndirectObject(Object::newDictionary());
            group.replaceKey("/Type", Object::newName("/OCG"));
            group.replaceKey("/Name", Object::newUnicodeString(name.utf8()));
            found = layers.emplace(name, group).first;
        }
        return found->second;
    }

    Object resources(PageContent& content)
    {
        Object all = Object::newDictionary();
        Object properties = Object::newDictionary(), states = Object::newDictionary();
        for (std::size_t i = 0; i < content.layers.size(); ++i)
            properties.replaceKey(fmt::format("/L{}", i), layer(content.layers[i]));
        for (const std::uint8_t alpha : content.alphas)
            states.replaceKey(fmt::format("/A{}", alpha), opacity(alpha));
        if (options.mergesLines)
            states.replaceKey("/M", Object::parse("<< /BM /Multiply >>"));
        Object used = fonts->use(content);
        Object shadings = Object::newDictionary(), pictures = Object::newDictionary();
        for (std::size_t i = 0; i < content.shadings.size(); ++i)
            shadings.replaceKey(fmt::format("/S{}", i), shadingObject(content.shadings[i]));
        for (std::size_t i = 0; i < content.images.size(); ++i)
            pictures.replaceKey(fmt::format("/I{}", i), image(content.images[i]));
        if (!content.shadings.empty())
            all.replaceKey("/Shading", shadings);
        if (!content.images.empty())
            all.replaceKey("/XObject", pictures);
        if (!content.layers.empty())
            all.replaceKey("/Properties", properties);
        if (!states.getKeys().empty())
            all.replaceKey("/ExtGState", states);
        if (!used.getKeys().empty())
            all.replaceKey("/Font", used);
        return all;
    }

    /// A picture that several pages show is there once.
    Object image(const UsedImage& used)
    {
        const base::ContentHash hash = base::hashOf(std::as_bytes(std::span(used.packed)));
        Object& found = images[{hash.high, hash.low}];
        if (found.isInitialized())
            return found;
        found = contentStream(used.packed, used.isJpeg ? "/DCTDecode" : "/FlateDecode");
        Object dict = found.getDict();
        dict.replaceKey("/Type", Object::newName("/XObject"));
        dict.replaceKey("/Subtype", Object::newName("/Image"));
        dict.replaceKey("/Width", Object::newInteger(used.width));
        dict.replaceKey("/Height", Object::newInteger(used.height));
        dict.replaceKey("/ColorSpace", Object::newName(used.isGray ? "/DeviceGray" : "/DeviceRGB"));
        dict.replaceKey("/BitsPerComponent", Object::newInteger(8));
        return found;
    }

    static Object opacity(std::uint8_t alpha)
    {
        Object state = Object::newDictionary();
        state.replaceKey("/CA", Object::newReal(alpha / 255.0, 3));
        state.replaceKey("/ca", Object::newReal(alpha / 255.0, 3));
        return state;
    }

    void addPage(std::size_t number, const PageOrder& order, PageContent& content)
    {
        Object page = pdf.makeIndirectObject(Object::newDictionary());
        page.replaceKey("/Type", Object::newName("/Page"));
        double width = content.widthMm * kPointsPerMm, height = content.heightMm * kPointsPerMm;
        const double unit = std::ceil(std::max(width, height) / kLargestPage);
        std::string operators = std::move(content.stream);
        page.replaceKey("/MediaBox", box(0, 0, width / unit, height / unit));
        std::vector<Object> contents;
        if (unit > 1) {
            page.replaceKey("/UserUnit", Object::newInteger(static_cast<int>(unit)));
            contents.push_back(
                pdf.newStream(fmt::format("{0:.6f} 0 0 {0:.6f} 0 0 cm\n", 1 / unit)));
        }
        contents.push_back(contentStream(operators));
        page.replaceKey("/Contents",
                        contents.size() == 1 ? contents[0] : Object::newArray(contents));
        page.replaceKey("/Resources", resources(content));
        pages.push_back({page, number, order.number, order.title, order.subsets,
                         std::move(content.links), kPointsPerMm / unit});
    }

    void addLinks()
    {
        std::map<std::size_t, Object> byNumber;
        for (const PdfPage& page : pages)
            byNumber.emplace(page.number, page.page);
        for (const PdfPage& page : pages) {
            Object annotations = Object::newArray();
            for (const PlacedLink& link : page.links) {
                const auto target = byNumber.find(link.page);
                if (target == byNumber.end())
                    continue;
                Object note = Object::newDictionary();
                const double unit = page.unitsPerMm;
                note.replaceKey("/Type", Object::newName("/Annot"));
                note.replaceKey("/Subtype", Object::newName("/Link"));
                note.replaceKey("/Rect", box(link.areaMm.lowX * unit, link.areaMm.lowY * unit,
                                             link.areaMm.highX * unit, link.areaMm.highY * unit));
                note.replaceKey("/Border", Object::parse("[0 0 0]"));
                note.replaceKey("/Dest", wholePage(target->second));
                annotations.appendItem(pdf.makeIndirectObject(note));
            }
            if (annotations.getArrayNItems() > 0)
                Object(page.page).replaceKey("/Annots", annotations);
        }
    }

    /// Pages in nodes of a few, so that a viewer finds one without reading all.
    void addPageTree()
    {
        Object root = pdf.getRoot().getKey("/Pages");
        Object nodes = Object::newArray();
        for (std::size_t first = 0; first < pages.size(); first += kPagesInNode) {
            const std::size_t end = std::min(first + kPagesInNode, pages.size());
            const bool isOnly = pages.size() <= kPagesInNode;
            Object node = isOnly ? root : pdf.makeIndirectObject(Object::newDictionary());
            Object kids = Object::newArray();
            for (std::size_t i = first; i < end; ++i) {
                kids.appendItem(pages[i].page);
                pages[i].page.replaceKey("/Parent", node);
            }
            node.replaceKey("/Type", Object::newName("/Pages"));
            node.replaceKey("/Kids", kids);
            node.replaceKey("/Count", Object::newInteger(static_cast<int>(end - first)));
            if (isOnly)
                return;
            node.replaceKey("/Parent", root);
            nodes.appendItem(node);
        }
        root.replaceKey("/Kids", nodes);
        root.replaceKey("/Count", Object::newInteger(static_cast<int>(pages.size())));
    }

    void addLayers()
    {
        if (layers.empty())
            return;
        std::vector<Object> all;
        for (const auto& [name, group] : layers)
            all.push_back(group);
        Object shown = Object::newDictionary(), properties = Object::newDictionary();
        shown.replaceKey("/Order", Object::newArray(all));
        shown.replaceKey("/ON", Object::newArray(all));
        properties.replaceKey("/OCGs", Object::newArray(all));
        properties.replaceKey("/D", shown);
        pdf.getRoot().replaceKey("/OCProperties", properties);
    }

    void connect()
    {
        Object root = pdf.getRoot();
        addPageTree();
        addLinks();
        addLayers();
        fonts->finish();
        if (options.hasOutline)
            addOutline(pdf, pages);
        addPageLabels(pdf, pages);
        addInfo(pdf, info);
    }

    DocumentInfo info;
    PdfOptions options;
    std::shared_ptr<Spool> spool;
    QPDF pdf;
    std::unique_ptr<PdfFonts> fonts;
    std::vector<PdfPage> pages;
    std::map<TvString, Object> layers;                                // by name, and so shown
    std::map<std::pair<std::uint64_t, std::uint64_t>, Object> images; // by content
    base::Status status;
};

PdfFile::PdfFile(const DocumentInfo& info, const PdfOptions& options, const TvString& folder)
    : m_impl(std::make_unique<Impl>(info, options, folder))
{
}

PdfFile::~PdfFile() = default;

base::Status PdfFile::add(std::size_t number, const PageOrder& order, PageContent content)
{
    m_impl->addPage(number, order, content);
    return m_impl->status;
}

bool PdfFile::isEmpty() const
{
    return m_impl->pages.empty();
}

base::Status PdfFile::finish(Spool& out)
{
    try {
        m_impl->connect();
        ToSpool pipeline(out);
        QPDFWriter writer(m_impl->pdf);
        writer.setOutputPipeline(&pipeline);
        writer.setMinimumPDFVersion("1.6");
        writer.setObjectStreamMode(qpdf_o_generate);
        writer.setDeterministicID(true);
        writer.write();
        pipeline.finish();
        return pipeline.status();
    } catch (const std::exception& problem) {
        return base::Status(base::Failure::Io, kFileNotMade,
                            {TvString(), TvString(problem.what())});
    }
}

} // namespace plot
