#include "pdf_parts.h"

#include <cmath>
#include <ctime>
#include <memory>

#include <fmt/format.h>

namespace plot {

namespace {

using Object = QPDFObjectHandle;

Object textOf(const TvString& text)
{
    return Object::newUnicodeString(text.utf8());
}

/// A line of the outline, with those below it.
struct OutlineNode {
    TvString title;
    Object page; // that it leads to
    std::vector<std::unique_ptr<OutlineNode>> children;
    std::map<TvString, OutlineNode*> subsets; // among the children

    OutlineNode& subset(const TvString& name, const Object& first)
    {
        OutlineNode*& found = subsets[name];
        if (!found) {
            children.push_back(std::make_unique<OutlineNode>());
            found = children.back().get();
            found->title = name;
            found->page = first;
        }
        return *found;
    }
};

TvString titleOf(const PdfPage& page)
{
    if (page.label.isEmpty() || page.title.isEmpty())
        return page.label.isEmpty() ? page.title : page.label;
    return page.label + u" - " + page.title.view();
}

/// Makes the objects of all below @p node; @return how many lines they are.
int writeBelow(QPDF& pdf, const OutlineNode& node, Object self)
{
    int count = 0;
    Object former;
    for (const auto& child : node.children) {
        Object line = pdf.makeIndirectObject(Object::newDictionary());
        line.replaceKey("/Title", textOf(child->title));
        line.replaceKey("/Parent", self);
        line.replaceKey("/Dest", wholePage(child->page));
        if (former.isInitialized()) {
            line.replaceKey("/Prev", former);
            former.replaceKey("/Next", line);
        } else {
            self.replaceKey("/First", line);
        }
        former = line;
        count += 1 + writeBelow(pdf, *child, line);
    }
    if (former.isInitialized()) {
        self.replaceKey("/Last", former);
        self.replaceKey("/Count", Object::newInteger(count));
    }
    return count;
}

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

Object shadingObject(const UsedShading& shading)
{
    const auto colorOf = [](std::uint32_t rgb) {
        Object color = Object::newArray();
        for (const int shift : {16, 8, 0})
            color.appendItem(Object::newReal((rgb >> shift & 0xFF) / 255.0, 3));
        return color;
    };
    Object functions = Object::newArray(), bounds = Object::newArray(), encode = Object::newArray();
    const auto fineOf = [](double at) { return std::lround(at * 10'000); };
    for (std::size_t i = 0; i + 1 < shading.stops.size(); ++i) {
        const auto& [from, color] = shading.stops[i];
        const auto& [to, next] = shading.stops[i + 1];
        // Where colours change at once nothing is between them, and bounds must ascend.
        if (fineOf(from) == fineOf(to))
            continue;
        if (functions.getArrayNItems() > 0)
            bounds.appendItem(Object::newReal(from, 4));
        Object between = Object::parse("<< /FunctionType 2 /Domain [0 1] /N 1 >>");
        between.replaceKey("/C0", colorOf(color));
        between.replaceKey("/C1", colorOf(next));
        functions.appendItem(between);
        encode.appendItem(Object::newInteger(0));
        encode.appendItem(Object::newInteger(1));
    }
    Object all = Object::parse("<< /FunctionType 3 /Domain [0 1] >>");
    all.replaceKey("/Functions", functions);
    all.replaceKey("/Bounds", bounds);
    all.replaceKey("/Encode", encode);
    Object dict = Object::parse(
        shading.isRound ? "<< /ShadingType 3 /ColorSpace /DeviceRGB /Coords [0 0 0 0 0 1] "
                          "/Extend [true true] >>"
                        : "<< /ShadingType 2 /ColorSpace /DeviceRGB /Coords [0 0 1 0] "
                          "/Extend [true true] >>");
    dict.replaceKey("/Function", all);
    return dict;
}

Object wholePage(const Object& page)
{
    return Object::newArray({page, Object::newName("/Fit")});
}

void addOutline(QPDF& pdf, const std::vector<PdfPage>& pages)
{
    constexpr std::size_t kDeepest = 64;
    OutlineNode root;
    for (const PdfPage& page : pages) {
        OutlineNode* at = &root;
        for (std::size_t i = 0; i < std::min(page.subsets.size(), kDeepest); ++i)
            at = &at->subset(page.subsets[i], page.page);
        at->children.push_back(std::make_unique<OutlineNode>());
        at->children.back()->title = titleOf(page);
        at->children.back()->page = page.page;
    }
    Object outlines = pdf.makeIndirectObject(Object::newDictionary());
    outlines.replaceKey("/Type", Object::newName("/Outlines"));
    writeBelow(pdf, root, outlines);
    pdf.getRoot().replaceKey("/Outlines", outlines);
    if (pages.size() > 1)
        pdf.getRoot().replaceKey("/PageMode", Object::newName("/UseOutlines"));
}

void addPageLabels(QPDF& pdf, const std::vector<PdfPage>& pages)
{
    Object numbers = Object::newArray();
    for (std::size_t i = 0; i < pages.size(); ++i) {
        Object label = Object::newDictionary();
        if (pages[i].label.isEmpty()) {
            label.replaceKey("/S", Object::newName("/D"));
            label.replaceKey("/St", Object::newInteger(static_cast<int>(i) + 1));
        } else {
            label.replaceKey("/P", textOf(pages[i].label));
        }
        numbers.appendItem(Object::newInteger(static_cast<int>(i)));
        numbers.appendItem(label);
    }
    Object labels = Object::newDictionary();
    labels.replaceKey("/Nums", numbers);
    pdf.getRoot().replaceKey("/PageLabels", pdf.makeIndirectObject(labels));
}

void addInfo(QPDF& pdf, const DocumentInfo& info)
{
    Object dict = Object::newDictionary();
    const auto put = [&dict](const char* key, const TvString& text) {
        if (!text.isEmpty())
            dict.replaceKey(key, textOf(text));
    };
    put("/Title", info.title);
    put("/Author", info.author);
    put("/Subject", info.subject);
    put("/Keywords", info.keywords);
    put("/Producer", TvString(u"TARVIK"));
    std::string date;
    if (info.dateUtc) {
        const std::tm t = utc(*info.dateUtc);
        const auto plain = [&t](const char* pattern) {
            return fmt::format(fmt::runtime(pattern), t.tm_year + 1900, t.tm_mon + 1, t.tm_mday,
                               t.tm_hour, t.tm_min, t.tm_sec);
        };
        date = plain("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z");
        const Object stamp = Object::newString(plain("D:{:04}{:02}{:02}{:02}{:02}{:02}Z"));
        dict.replaceKey("/CreationDate", stamp);
        dict.replaceKey("/ModDate", stamp);
    }
    pdf.getTrailer().replaceKey("/Info", pdf.makeIndirectObject(dict));
    Object metadata = pdf.newStream(xmpOf(info, date));
    metadata.getDict().replaceKey("/Type", Object::newName("/Metadata"));
    metadata.getDict().replaceKey("/Subtype", Object::newName("/XML"));
    pdf.getRoot().replaceKey("/Metadata", metadata);
    if (!info.title.isEmpty())
        pdf.getRoot().replaceKey("/ViewerPreferences",
                                 Object::parse("<< /DisplayDocTitle true >>"));
}

} // namespace plot
