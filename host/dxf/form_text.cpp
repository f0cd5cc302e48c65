#include "form_text.h"

#include <charconv>
#include <map>
#include <stdexcept>
#include <string>

namespace dxf {

namespace {

[[noreturn]] void formError(std::string_view what, std::string_view where)
{
    throw std::logic_error("form: " + std::string(what) + ": " + std::string(where));
}

int numberOf(std::string_view word)
{
    int value = 0;
    const auto read = std::from_chars(word.data(), word.data() + word.size(), value);
    if (read.ptr != word.data() + word.size() || word.empty())
        formError("no number", word);
    return value;
}

/// The words of a line; one in quotes may hold spaces and keeps its first quote.
std::vector<std::string_view> wordsOf(std::string_view line)
{
    std::vector<std::string_view> words;
    for (std::size_t at = 0; at < line.size();) {
        if (line[at] == ' ') {
            ++at;
            continue;
        }
        if (line[at] == ';')
            break;
        const bool quoted = line[at] == '"';
        const std::size_t stop = line.find(quoted ? '"' : ' ', at + 1);
        words.push_back(line.substr(at, stop - at));
        at = stop == line.npos ? line.size() : stop + 1;
    }
    return words;
}

std::string_view unquoted(std::string_view word)
{
    return word.starts_with('"') ? word.substr(1) : word;
}

FormLine bitsLine(int code, std::span<const std::string_view> words)
{
    FormLine line{.kind = FormLine::Kind::Bits, .code = code};
    for (const std::string_view word : words) {
        const auto equals = word.find('=');
        if (equals == word.npos)
            formError("no value", word);
        line.bits.push_back({word.substr(0, equals), numberOf(word.substr(equals + 1))});
    }
    return line;
}

FormLine hookLine(std::span<const std::string_view> words)
{
    FormLine line{.kind = FormLine::Kind::Hook, .target = words[0]};
    for (const std::string_view word : words.subspan(1))
        if (word != "*")
            line.codes.push_back(numberOf(word));
    return line;
}

// list NAME [CODE "opening" CODE "closing"], and in NAME the same, also without an end
FormLine groupLine(std::span<const std::string_view> words)
{
    FormLine line{.kind = words[0] == "list" ? FormLine::Kind::List : FormLine::Kind::In,
                  .target = words[1]};
    if (words.size() >= 4) {
        line.code = numberOf(words[2]);
        line.convert = unquoted(words[3]);
    }
    if (words.size() == 6) {
        line.closingCode = numberOf(words[4]);
        line.closing = unquoted(words[5]);
    }
    return line;
}

void addMark(FormLine& line, std::string_view word)
{
    if (word == "?")
        line.isOptional = true;
    else if (word == "alias")
        line.isAlias = true;
    else if (word.starts_with('+'))
        line.elevation = word.substr(1);
    else
        formError("mark", word);
}

FormLine fieldLine(int code, std::span<const std::string_view> words)
{
    FormLine line{.code = code, .target = words[0]};
    if (line.target.starts_with('#')) {
        line.kind = FormLine::Kind::Count;
        line.target.remove_prefix(1);
    }
    if (const auto colon = line.target.find(':'); colon != std::string_view::npos) {
        line.convert = line.target.substr(colon + 1);
        line.target = line.target.substr(0, colon);
    }
    if (line.target.ends_with("[]")) {
        line.isArray = true;
        line.target.remove_suffix(2);
    }
    for (const std::string_view word : words.subspan(1))
        addMark(line, word);
    return line;
}

FormLine codeLine(std::string_view codeWord, std::span<const std::string_view> words)
{
    const bool grows = codeWord.ends_with('+');
    if (grows)
        codeWord.remove_suffix(1);
    const int code = numberOf(codeWord);
    if (words.empty())
        formError("nothing behind the code", codeWord);
    const std::string_view first = words[0];
    if (code == 100 || code == 101)
        return {.kind = FormLine::Kind::Marker, .code = code, .target = unquoted(first)};
    if (first == "ignored")
        return {.kind = FormLine::Kind::Ignored, .code = code};
    if (first == "bits")
        return bitsLine(code, words.subspan(1));
    if (first.starts_with('"'))
        return {.kind = FormLine::Kind::Constant, .code = code, .target = unquoted(first)};
    FormLine line = fieldLine(code, words);
    line.addsIndex = grows ? 1 : 0;
    return line;
}

FormLine parseLine(std::span<const std::string_view> words)
{
    if (words[0] == "list" || words[0] == "in")
        return groupLine(words);
    if (words[0] == "zip")
        return {.kind = FormLine::Kind::Zip};
    if (words[0] == "derived")
        return {.kind = FormLine::Kind::Derived};
    if (words[0] == "hook")
        return hookLine(words.subspan(1));
    return codeLine(words[0], words.subspan(1));
}

class FormLibrary
{
public:
    FormLibrary()
    {
        for (const std::string_view text : formTexts())
            cutText(text);
        for (const auto& [name, text] : m_texts)
            find(name);
    }

    const std::vector<FormLine>* find(std::string_view name)
    {
        if (const auto known = m_forms.find(name); known != m_forms.end())
            return &known->second;
        const auto text = m_texts.find(name);
        if (text == m_texts.end())
            return nullptr;
        std::vector<FormLine> lines = parsed(text->second);
        return &m_forms.emplace(name, std::move(lines)).first->second;
    }

private:
    static std::string_view cutLine(std::string_view& text)
    {
        const auto stop = text.find('\n');
        const std::string_view line = text.substr(0, stop);
        text.remove_prefix(stop == text.npos ? text.size() : stop + 1);
        return line;
    }

    // A form reaches from its head to the next one.
    void cutText(std::string_view text)
    {
        while (!text.empty()) {
            const auto names = wordsOf(cutLine(text));
            if (names.empty() || names[0] != "=")
                continue;
            const auto next = text.find("\n=");
            const std::string_view body = text.substr(0, text.starts_with('=') ? 0 : next);
            for (std::size_t i = 1; i < names.size(); ++i)
                m_texts[names[i]] = body;
            text.remove_prefix(body.size());
        }
    }

    std::vector<FormLine> parsed(std::string_view text)
    {
        std::vector<FormLine> lines;
        while (!text.empty()) {
            const std::string_view line = cutLine(text);
            const auto words = wordsOf(line);
            if (words.empty())
                continue;
            std::vector<FormLine>& into = linesAt(lines, line.find_first_not_of(' ') / 2);
            if (words[0] != "include") {
                into.push_back(parseLine(words));
                continue;
            }
            const auto* included = find(words.at(1));
            if (!included)
                formError("no form", words[1]);
            into.insert(into.end(), included->begin(), included->end());
        }
        return lines;
    }

    // Where a line of this depth goes; depth 1 is the form's own.
    static std::vector<FormLine>& linesAt(std::vector<FormLine>& form, std::size_t depth)
    {
        std::vector<FormLine>* lines = &form;
        for (std::size_t level = 1; level < depth; ++level) {
            if (lines->empty())
                formError("indented too far", "");
            lines = &lines->back().inner;
        }
        return *lines;
    }

    std::map<std::string_view, std::string_view> m_texts;
    std::map<std::string_view, std::vector<FormLine>> m_forms;
};

} // namespace

const std::vector<FormLine>* formLines(std::string_view name)
{
    static auto* const library = new FormLibrary; // complete: from here on find() only looks up
    return library->find(name);
}

} // namespace dxf
