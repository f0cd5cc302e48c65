#include "schema/table_ast.h"

#include <charconv>
#include <stdexcept>
#include <string>

#include "schema/text_cut.h"

namespace db {

void tableError(std::string_view what, std::string_view where)
{
    throw std::logic_error(std::string(what) + ": " + std::string(where));
}

namespace {

int numberOf(std::string_view text)
{
    int value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

// "@18+", "@-21", "@15", "@21-24"
VersionRange versionsOf(std::string_view text)
{
    VersionRange range;
    const auto dash = text.find('-');
    const std::string_view first = text.substr(0, dash);
    if (dash != 0)
        range.first = numberOf(first);
    if (dash != std::string_view::npos)
        range.last = numberOf(text.substr(dash + 1));
    else if (!text.ends_with('+'))
        range.last = range.first;
    return range;
}

class Parser
{
public:
    explicit Parser(std::string_view text) : m_rest(text) { advance(); }

    Body parseBlock(std::size_t indent)
    {
        Body body;
        while (!m_line.empty() && m_indent >= indent) {
            if (m_indent > indent)
                tableError("too deep", m_line);
            parseLine(body, indent);
        }
        return body;
    }

private:
    // The next line that is not empty, without its note.
    void advance()
    {
        m_line = {};
        while (!m_rest.empty() && m_line.empty()) {
            std::string_view line = cutAt(m_rest, '\n');
            line = line.substr(0, line.find(';'));
            m_line = trimmed(line);
            m_indent = line.empty() ? 0 : static_cast<std::size_t>(m_line.data() - line.data());
        }
    }

    Body parseInner(std::size_t indent)
    {
        advance();
        return !m_line.empty() && m_indent > indent ? parseBlock(m_indent) : Body();
    }

    void parseLine(Body& body, std::size_t indent)
    {
        std::string_view line = m_line;
        const bool opens = line.ends_with(':');
        if (opens)
            line.remove_suffix(1);
        const std::string_view word = line.substr(0, line.find(' '));
        const std::string_view rest = trimmed(line.substr(word.size()));
        if (word == "elif" || word == "else")
            return parseBranch(body, rest, indent);
        Node& node = body.emplace_back();
        if (word == "if")
            return parseIf(node, rest, indent);
        if (word == "for")
            return parseFor(node, rest, indent);
        if (opens && word.starts_with('@'))
            return parseVersions(node, word, indent);
        parseSimple(node, line, word, rest);
        advance();
    }

    void parseIf(Node& node, std::string_view condition, std::size_t indent)
    {
        node.kind = Node::Kind::If;
        Branch branch{condition, parseInner(indent)};
        node.branches.push_back(std::move(branch));
    }

    void parseBranch(Body& body, std::string_view condition, std::size_t indent)
    {
        if (body.empty() || body.back().kind != Node::Kind::If)
            tableError("no if before", m_line);
        Branch branch{condition, parseInner(indent)};
        body.back().branches.push_back(std::move(branch));
    }

    void parseFor(Node& node, std::string_view text, std::size_t indent)
    {
        node.kind = Node::Kind::For;
        const auto space = text.rfind(' ');
        if (space == std::string_view::npos)
            tableError("no name", text);
        node.count = trimmed(text.substr(0, space));
        node.name = text.substr(space + 1);
        node.branches.push_back({{}, parseInner(indent)});
    }

    void parseVersions(Node& node, std::string_view word, std::size_t indent)
    {
        node.kind = Node::Kind::Versions;
        node.versions = versionsOf(word.substr(1));
        node.branches.push_back({{}, parseInner(indent)});
    }

    static void parseSimple(Node& node, std::string_view line, std::string_view word,
                            std::string_view rest)
    {
        if (word == "let") {
            node.kind = Node::Kind::Let;
            node.name = trimmed(cutAt(rest, '='));
            node.value = trimmed(rest);
        } else if (word == "include") {
            node.kind = Node::Kind::Include;
            node.type = rest;
        } else if (word == "point") {
            node.kind = Node::Kind::Point;
            parseTail(node, rest);
        } else {
            parseField(node, line);
        }
    }

    // TYPE(argument)[count] name dxf @versions = default
    static void parseField(Node& node, std::string_view line)
    {
        const auto end = line.find_first_of(" ([");
        node.type = line.substr(0, end);
        line.remove_prefix(node.type.size());
        if (line.starts_with('('))
            node.argument = cutBracket(line, ')');
        if (line.starts_with('['))
            node.count = cutBracket(line, ']');
        parseTail(node, line);
    }

    static std::string_view cutBracket(std::string_view& line, char close)
    {
        const auto end = line.find(close);
        if (end == std::string_view::npos)
            tableError("bracket", line);
        const std::string_view inner = line.substr(1, end - 1);
        line.remove_prefix(end + 1);
        return inner;
    }

    static void parseTail(Node& node, std::string_view line)
    {
        if (const auto equal = line.find('='); equal != std::string_view::npos) {
            node.value = trimmed(line.substr(equal + 1));
            line = line.substr(0, equal);
        }
        line = trimmed(line);
        node.name = cutAt(line, ' ');
        while (!(line = trimmed(line)).empty()) {
            const std::string_view word = cutAt(line, ' ');
            if (word.starts_with('@'))
                node.versions = versionsOf(word.substr(1));
            else if (word != "-")
                node.dxf = static_cast<std::int16_t>(numberOf(word));
        }
        if (node.name.empty())
            tableError("no name", node.type);
    }

    std::string_view m_rest;
    std::string_view m_line; // empty at the end
    std::size_t m_indent = 0;
};

} // namespace

Body parseTable(std::string_view text)
{
    return Parser(text).parseBlock(2);
}

} // namespace db
