#include <pugixml.hpp>

#include "dst_reader.h"

namespace sm {

using base::Failure;
using base::Reason;
using base::Status;

DstDocument::DstDocument() : m_tree(std::make_unique<pugi::xml_document>()) {}
DstDocument::~DstDocument() = default;

void DstDocument::dropTree()
{
    m_tree.reset();
}

namespace {

TvString lineOf(std::string_view text, std::size_t offset)
{
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(offset, text.size()));
    return TvString().format(u"%d", 1 + static_cast<int>(std::count(text.begin(), end, '\n')));
}

/// What can be said before parsing: UTF-8, no NUL, none of the other encodings that XML allows.
Status checkEncoding(std::string_view text, const TvString& path)
{
    const bool wide = text.substr(0, 2) == "\xFE\xFF" || text.substr(0, 2) == "\xFF\xFE";
    const std::size_t nul = text.find('\0');
    if (!wide && nul == std::string_view::npos && base::isWellFormedUtf8(text))
        return {};
    std::size_t offset = wide ? 0 : std::min(nul, text.size());
    // The first line that is not well formed, looked for only once something is wrong.
    for (std::size_t from = 0, line = 0; !wide && from < offset; from = line + 1) {
        line = std::min(text.find('\n', from), text.size());
        if (!base::isWellFormedUtf8(text.substr(from, line - from))) {
            offset = from;
            break;
        }
    }
    return {Failure::Damaged, Reason::DstBadEncoding, {path, lineOf(text, offset)}};
}

bool isUtf8Declared(const pugi::xml_document& tree)
{
    const pugi::xml_node declaration = tree.first_child();
    if (declaration.type() != pugi::node_declaration)
        return true;
    const pugi::xml_attribute encoding = declaration.attribute("encoding");
    return !encoding || base::equalNoCase(base::utf16FromUtf8(encoding.value()), u"UTF-8");
}

bool hasDoctype(const pugi::xml_document& tree)
{
    for (pugi::xml_node child : tree.children())
        if (child.type() == pugi::node_doctype)
            return true;
    return false;
}

constexpr unsigned kParse = pugi::parse_default | pugi::parse_comments | pugi::parse_pi |
                            pugi::parse_declaration | pugi::parse_doctype |
                            pugi::parse_ws_pcdata_single;

} // namespace

Status DstDocument::parse(std::vector<std::byte> bytes, const TvString& path)
{
    m_path = path;
    m_buffer = std::move(bytes);
    const std::string_view text(reinterpret_cast<const char*>(m_buffer.data()), m_buffer.size());
    if (Status status = checkEncoding(text, path); !status)
        return status;
    const pugi::xml_parse_result result =
        m_tree->load_buffer_inplace(m_buffer.data(), m_buffer.size(), kParse, pugi::encoding_utf8);
    if (!result) {
        // Parsing in place moves text within lines: the line is right but where an attribute held a
        // line end.
        const TvString line =
            lineOf(text, static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, result.offset)));
        return {Failure::Damaged, Reason::DstNotXml, {path, line, TvString(result.description())}};
    }
    if (hasDoctype(*m_tree))
        return {Failure::Damaged, Reason::DstDoctype, {path}};
    if (!isUtf8Declared(*m_tree))
        return {Failure::Damaged, Reason::DstBadEncoding, {path, TvString(u"1")}};
    return {};
}

} // namespace sm
