#include "ed/tarv_xml.h"

#include <sstream>
#include <unordered_map>

#include <pugixml.hpp>

#include <base/atomic_replace.h>
#include <base/kv_file_system.h>

namespace {

// A file of settings is small; a larger one is none.
constexpr std::int64_t kMostBytes = 4 << 20;
// All that stands in the file is kept: comments, instructions, what is not ours.
constexpr unsigned kParse = pugi::parse_full | pugi::parse_ws_pcdata_single;

class Element;

/// The elements that were asked for, by their nodes.
class Elements
{
public:
    Element* of(pugi::xml_node node);
    /// @p node and all within it are about to go.
    void forgetWithin(pugi::xml_node node);

private:
    std::unordered_map<std::size_t, std::unique_ptr<Element>> m_elements;
};

class Element : public TarvXmlElement
{
public:
    Element(Elements& elements, pugi::xml_node node) : m_elements(elements), m_node(node) {}

    TvString name() const override { return TvString(m_node.name()); }
    std::optional<TvString> attribute(const TvString& name) const override
    {
        const pugi::xml_attribute found = m_node.attribute(name.utf8().c_str());
        return found ? std::optional(TvString(found.value())) : std::nullopt;
    }
    void setAttribute(const TvString& name, const TvString& value) override
    {
        const std::string key = name.utf8();
        pugi::xml_attribute found = m_node.attribute(key.c_str());
        if (!found)
            found = m_node.append_attribute(key.c_str());
        found.set_value(value.utf8().c_str());
    }
    void removeAttribute(const TvString& name) override
    {
        m_node.remove_attribute(name.utf8().c_str());
    }
    std::vector<TarvXmlElement*> children() const override
    {
        std::vector<TarvXmlElement*> found;
        for (const pugi::xml_node child : m_node.children())
            if (child.type() == pugi::node_element)
                found.push_back(m_elements.of(child));
        return found;
    }
    TarvXmlElement* addChild(const TvString& name) override
    {
        return m_elements.of(m_node.append_child(name.utf8().c_str()));
    }
    void clear() override
    {
        for (const pugi::xml_node child : m_node.children())
            m_elements.forgetWithin(child);
        m_node.remove_children();
        m_node.remove_attributes();
    }
    TvString text() const override { return TvString(m_node.text().get()); }

private:
    Elements& m_elements;
    pugi::xml_node m_node;
};

Element* Elements::of(pugi::xml_node node)
{
    if (!node)
        return nullptr;
    std::unique_ptr<Element>& found = m_elements[node.hash_value()];
    if (!found)
        found = std::make_unique<Element>(*this, node);
    return found.get();
}

void Elements::forgetWithin(pugi::xml_node node)
{
    std::vector<pugi::xml_node> waiting{node};
    while (!waiting.empty()) {
        const pugi::xml_node next = waiting.back();
        waiting.pop_back();
        m_elements.erase(next.hash_value());
        for (const pugi::xml_node child : next.children())
            waiting.push_back(child);
    }
}

class Document : public TarvXmlDocument
{
public:
    bool parse(const std::vector<std::byte>& bytes)
    {
        return m_document.load_buffer(bytes.data(), bytes.size(), kParse, pugi::encoding_auto) &&
               m_document.document_element();
    }
    TarvXmlElement* root() const override { return m_elements.of(m_document.document_element()); }
    TarvXmlElement* makeRoot(const TvString& name) override
    {
        if (!m_document.document_element())
            m_document.append_child(name.utf8().c_str());
        return root();
    }
    bool save(const TvString& path) const override
    {
        std::ostringstream out;
        m_document.save(out, "  ", pugi::format_default, pugi::encoding_utf8);
        const std::string text = out.str();
        base::ReplaceRequest request;
        request.bytes = std::as_bytes(std::span(text));
        return static_cast<bool>(base::replaceFile(base::systemFileOps(), path, request));
    }

private:
    pugi::xml_document m_document;
    mutable Elements m_elements;
};

class PugiParser : public TarvXmlParser
{
public:
    bool start() override { return true; }
    std::unique_ptr<TarvXmlDocument> load(const TvString& path) override
    {
        const auto bytes = KvFileSystem::readFile(path, kMostBytes);
        auto document = std::make_unique<Document>();
        if (!bytes || !document->parse(*bytes))
            return nullptr;
        return document;
    }
    std::unique_ptr<TarvXmlDocument> makeDocument() override
    {
        return std::make_unique<Document>();
    }
};

} // namespace

std::unique_ptr<TarvXmlParser> tarvMakeXmlParser()
{
    return std::make_unique<PugiParser>();
}

TarvXmlElement* FindChildElement(const TarvXmlDocument* document, const TvString& name)
{
    TarvXmlElement* root = document ? document->root() : nullptr;
    if (!root || root->name().compareNoCase(name) == 0)
        return root;
    for (TarvXmlElement* child : root->children())
        if (child->name().compareNoCase(name) == 0)
            return child;
    return nullptr;
}

TarvXmlElement* FindOrCreateChildElement(TarvXmlDocument* document, const TvString& name,
                                         const TvString& rootName)
{
    if (!document)
        return nullptr;
    if (TarvXmlElement* found = FindChildElement(document, name))
        return found;
    return document->makeRoot(rootName)->addChild(name);
}
