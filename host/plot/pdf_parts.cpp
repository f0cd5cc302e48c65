#include "pdf_parts.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <iterator>

#include <fmt/format.h>

namespace plot {

namespace {

/// A line of the outline: a subset, or a sheet. Its relations are places in the list of lines, 0
/// for none: there the outline itself is.
struct OutlineLine {
    std::size_t page = 0;             ///< that it leads to
    const TvString* subset = nullptr; ///< null: a sheet
    std::size_t parent = 0, first = 0, last = 0, before = 0, next = 0;
    int below = 0; ///< lines, at any depth
};

class Outline
{
public:
    explicit Outline(const std::vector<PdfPage>& pages) : m_pages(pages), m_lines(1)
    {
        for (std::size_t page = 0; page < pages.size(); ++page)
            addPage(page);
        for (std::size_t i = m_lines.size() - 1; i > 0; --i) // a line stands behind its parent
            m_lines[m_lines[i].parent].below += 1 + m_lines[i].below;
    }

    /// @return the object of the outline itself.
    int write(PdfWriter& pdf) const
    {
        std::vector<int> objects;
        std::ranges::generate_n(std::back_inserter(objects), std::ssize(m_lines),
                                [&pdf] { return pdf.reserve(); });
        for (std::size_t i = 0; i < m_lines.size(); ++i)
            pdf.write(objects[i], textOf(i, objects));
        return objects.front();
    }

private:
    void addPage(std::size_t page)
    {
        constexpr std::size_t kDeepest = 64;
        std::size_t at = 0;
        const std::vector<TvString>& subsets = m_pages[page].order->subsets;
        for (std::size_t i = 0; i < std::min(subsets.size(), kDeepest); ++i) {
            const auto [found, isNew] = m_subsets.try_emplace({at, subsets[i].view()}, 0);
            if (isNew)
                found->second = add(at, page, &subsets[i]);
            at = found->second;
        }
        add(at, page, nullptr);
    }

    std::size_t add(std::size_t parent, std::size_t page, const TvString* subset)
    {
        const std::size_t made = m_lines.size();
        const std::size_t before = m_lines[parent].last;
        m_lines.push_back({page, subset, parent, 0, 0, before});
        (before != 0 ? m_lines[before].next : m_lines[parent].first) = made;
        m_lines[parent].last = made;
        return made;
    }

    std::string textOf(std::size_t number, const std::vector<int>& objects) const
    {
        const OutlineLine& line = m_lines[number];
        std::string text = "<< ";
        const auto refer = [&](const char* key, std::size_t to) {
            if (to != 0)
                fmt::format_to(std::back_inserter(text), "/{} {} 0 R ", key, objects[to]);
        };
        if (number == 0)
            text += "/Type /Outlines ";
        else
            text +=
                fmt::format("/Title {} /Dest [{} 0 R /Fit] /Parent {} 0 R ", pdfText(titleOf(line)),
                            m_pages[line.page].object, objects[line.parent]);
        refer("First", line.first);
        refer("Last", line.last);
        refer("Prev", line.before);
        refer("Next", line.next);
        if (line.below > 0)
            text += fmt::format("/Count {} ", line.below);
        return text + ">>";
    }

    TvString titleOf(const OutlineLine& line) const
    {
        if (line.subset)
            return *line.subset;
        const PageOrder& order = *m_pages[line.page].order;
        if (order.number.isEmpty() || order.title.isEmpty())
            return order.number.isEmpty() ? order.title : order.number;
        return order.number + u" - " + order.title.view();
    }

    const std::vector<PdfPage>& m_pages;
    std::vector<OutlineLine> m_lines; // the first one is the outline itself
    std::map<std::pair<std::size_t, std::u16string_view>, std::size_t> m_subsets;
};

std::string xmlOf(const TvString& text)
{
    std::string out;
    for (const char c : text.utf8())
        switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        default:
            if (static_cast<unsigned char>(c) >= 0x20 || c == '\t' || c == '\n')
                out += c;
        }
    return out;
}

std::tm utc(std::int64_t seconds)
{
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    gmtime_r(&time, &parts);
    return parts;
}

std::string xmpOf(const DocumentInfo& info, const std::string& date)
{
    std::string out =
        "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
        "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
        "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
        "<rdf:Description rdf:about=\"\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
        "xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\" xmlns:pdf=\"http://ns.adobe.com/pdf/1.3/\">\n"
        "<dc:format>application/pdf</dc:format>\n";
    const auto alternative = [&out](const char* name, const TvString& text) {
        if (!text.isEmpty())
            out += fmt::format("<{0}><rdf:Alt><rdf:li xml:lang=\"x-default\">{1}</rdf:li></rdf:Alt>"
                               "</{0}>\n",
                               name, xmlOf(text));
    };
    alternative("dc:title", info.title);
    alternative("dc:description", info.subject);
    if (!info.author.isEmpty())
        out += fmt::format("<dc:creator><rdf:Seq><rdf:li>{}</rdf:li></rdf:Seq></dc:creator>\n",
                           xmlOf(info.author));
    if (!info.keywords.isEmpty())
        out += fmt::format("<pdf:Keywords>{}</pdf:Keywords>\n", xmlOf(info.keywords));
    if (!date.empty())
        out += fmt::format("<xmp:CreateDate>{0}</xmp:CreateDate>\n"
                           "<xmp:ModifyDate>{0}</xmp:ModifyDate>\n",
                           date);
    return out + "<pdf:Producer>TARVIK</pdf:Producer>\n</rdf:Description>\n</rdf:RDF>\n"
                 "</x:xmpmeta>\n<?xpacket end=\"r\"?>\n";
}

} // namespace

std::string pdfShading(const UsedShading& shading)
{
    const auto colorOf = [](std::uint32_t rgb) {
        const auto part = [rgb](int shift) { return pdfReal((rgb >> shift & 0xFF) / 255.0, 3); };
        return fmt::format("[{} {} {}]", part(16), part(8), part(0));
    };
    std::string functions, bounds, encode;
    const auto fineOf = [](double at) { return std::lround(at * 10'000); };
    for (std::size_t i = 0; i + 1 < shading.stops.size(); ++i) {
        const auto& [from, color] = shading.stops[i];
        const auto& [to, next] = shading.stops[i + 1];
        // Where colours change at once nothing is between them, and bounds must ascend.
        if (fineOf(from) == fineOf(to))
            continue;
        if (!functions.empty())
            bounds += pdfReal(from, 4) + " ";
        functions += fmt::format("<< /FunctionType 2 /Domain [0 1] /N 1 /C0 {} /C1 {} >> ",
                                 colorOf(color), colorOf(next));
        encode += "0 1 ";
    }
    return fmt::format("<< {} /ColorSpace /DeviceRGB /Extend [true true] /Function << "
                       "/FunctionType 3 /Domain [0 1] /Functions [{}] /Bounds [{}] /Encode [{}] >> "
                       ">>",
                       shading.isRound ? "/ShadingType 3 /Coords [0 0 0 0 0 1]"
                                       : "/ShadingType 2 /Coords [0 0 1 0]",
                       functions, bounds, encode);
}

int writeOutline(PdfWriter& pdf, const std::vector<PdfPage>& pages)
{
    return Outline(pages).write(pdf);
}

int writePageLabels(PdfWriter& pdf, const std::vector<PdfPage>& pages)
{
    std::string text = "<< /Nums [";
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const TvString& number = pages[i].order->number;
        if (number.isEmpty())
            fmt::format_to(std::back_inserter(text), "{} << /S /D /St {} >> ", i, i + 1);
        else
            fmt::format_to(std::back_inserter(text), "{} << /P {} >> ", i, pdfText(number));
    }
    return pdf.write(text + "] >>");
}

PdfInfo writeInfo(PdfWriter& pdf, const DocumentInfo& info)
{
    std::string dict = "<< ";
    const auto put = [&dict](const char* key, const TvString& text) {
        if (!text.isEmpty())
            dict += fmt::format("/{} {} ", key, pdfText(text));
    };
    put("Title", info.title);
    put("Author", info.author);
    put("Subject", info.subject);
    put("Keywords", info.keywords);
    put("Producer", TvString(u"TARVIK"));
    std::string date;
    if (info.dateUtc) {
        const std::tm t = utc(*info.dateUtc);
        const auto plain = [&t](const char* pattern) {
            return fmt::format(fmt::runtime(pattern), t.tm_year + 1900, t.tm_mon + 1, t.tm_mday,
                               t.tm_hour, t.tm_min, t.tm_sec);
        };
        date = plain("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z");
        const std::string stamp = plain("(D:{:04}{:02}{:02}{:02}{:02}{:02}Z)");
        dict += fmt::format("/CreationDate {0} /ModDate {0} ", stamp);
    }
    // Not packed, so that programs that know nothing of the rest find it.
    return {pdf.write(dict + ">>"),
            pdf.writeStream("/Type /Metadata /Subtype /XML", xmpOf(info, date), false)};
}

} // namespace plot
