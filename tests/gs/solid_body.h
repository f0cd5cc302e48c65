#pragma once

#include <bit>
#include <charconv>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

/// How modelers store a body.
enum class BodyForm { Text, Binary4, Binary8 };
inline constexpr BodyForm kBodyForms[] = {BodyForm::Text, BodyForm::Binary4, BodyForm::Binary8};

/// A body of records in the form wanted, from one way to write them: as in text, but `i:3` is a
/// whole number, `1,2,3` a place, `"word"` a text, and `[1 0 0]` numbers that binary keeps as text.
class BodyWriter
{
public:
    explicit BodyWriter(BodyForm form) : m_form(form) { writeHead(); }

    void record(const std::string& values)
    {
        std::istringstream in(values);
        std::string token;
        in >> token;
        writeName(token);
        while (in >> token)
            token[0] == '[' ? writeLiteral(token.substr(1), in) : writeValue(token);
        isText() ? write(" #\n") : tag(17);
    }
    void end()
    {
        isText() ? write("End-of-ACIS-data ")
                 : write({"\x0E\x03"
                          "End\x0E\x02of\x0E\x04"
                          "ACIS\x0D\x04"
                          "data",
                          22});
    }
    const std::vector<std::uint8_t>& bytes() const { return m_bytes; }

private:
    bool isText() const { return m_form == BodyForm::Text; }
    void write(const std::string& text) { m_bytes.insert(m_bytes.end(), text.begin(), text.end()); }
    void tag(std::uint8_t value) { m_bytes.push_back(value); }
    void raw(std::uint64_t bits, int size)
    {
        for (int i = 0; i < size; ++i)
            tag(static_cast<std::uint8_t>(bits >> 8 * i));
    }
    int width() const { return m_form == BodyForm::Binary8 ? 8 : 4; }
    void whole(std::uint8_t kind, std::int64_t value)
    {
        tag(kind);
        raw(static_cast<std::uint64_t>(value), width());
    }
    void real(const std::string& text) { raw(std::bit_cast<std::uint64_t>(number(text)), 8); }
    static double number(const std::string& text)
    {
        double value = 0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        return value;
    }
    void word(std::uint8_t kind, const std::string& text)
    {
        tag(kind);
        tag(static_cast<std::uint8_t>(text.size()));
        write(text);
    }

    /// In all the ways there are.
    void longWord(const std::string& text)
    {
        tag(8);
        raw(text.size(), 2);
        write(text);
        whole(9, static_cast<std::int64_t>(text.size()));
        write(text);
        tag(2);
        raw(7, 1);
        tag(3);
        raw(0xFFFF, 2);
        tag(5);
        raw(std::bit_cast<std::uint32_t>(1.5F), 4);
        tag(22);
        raw(0, 8);
        raw(0, 8);
        tag(23);
        raw(5, 8);
        whole(18, 0);
    }

    void writeHead()
    {
        if (isText())
            return write("700 0 1 0\n@9 Our maker @8 $nowhere @4 none\n1 9.99e-007 1e-010\n");
        write(m_form == BodyForm::Binary8 ? "ASM BinaryFile8" : "ACIS BinaryFile");
        for (int i = 0; i < 4; ++i)
            raw(700, width());
        word(7, "Our maker");
        word(7, "nowhere");
        word(7, "none");
        for (const char* unit : {"1", "1e-6", "1e-10"}) {
            tag(6);
            real(unit);
        }
    }
    void writeName(std::string name)
    {
        if (isText())
            return write(name);
        for (std::size_t at; (at = name.find('-')) != name.npos; name.erase(0, at + 1))
            word(14, name.substr(0, at));
        word(13, name);
    }
    void writeLiteral(std::string token, std::istringstream& in)
    {
        std::string text;
        for (; token.back() != ']'; in >> token)
            text += token + ' ';
        text += token.substr(0, token.size() - 1);
        if (isText())
            return write(' ' + text);
        whole(18, static_cast<std::int64_t>(text.size()));
        write(text);
    }
    void writeValue(std::string token)
    {
        if (isText())
            return writeText(token);
        if (token[0] == '$')
            whole(12, std::stoll(token.substr(1)));
        else if (token.starts_with("i:"))
            whole(4, std::stoll(token.substr(2)));
        else if (token.find(',') != token.npos)
            writePlace(token);
        else if (token == "{" || token == "}")
            tag(token == "{" ? 15 : 16);
        else if (token == "reversed" || token == "forward" || token == "I")
            tag(token == "reversed" ? 10 : 11);
        else if (token == "open")
            whole(21, 0);
        else if (token.starts_with("\"long"))
            longWord(token.substr(1, token.size() - 2));
        else if (token[0] == '"')
            word(7, token.substr(1, token.size() - 2));
        else if (std::isalpha(static_cast<unsigned char>(token[0])))
            word(13, token);
        else
            tag(6), real(token);
    }
    void writePlace(std::string token)
    {
        tag(19);
        for (std::size_t at; (at = token.find(',')) != token.npos; token.erase(0, at + 1))
            real(token.substr(0, at));
        real(token);
    }
    void writeText(std::string token)
    {
        if (token.starts_with("i:"))
            token.erase(0, 2);
        if (token[0] == '"') {
            token = token.substr(1, token.size() - 2);
            token = "@" + std::to_string(token.size()) + " " + token;
        }
        for (char& letter : token)
            if (letter == ',')
                letter = ' ';
        write(' ' + token);
    }

    BodyForm m_form;
    std::vector<std::uint8_t> m_bytes;
};

/// A body of these records, the first of which is the one that pointers call 0.
inline std::vector<std::uint8_t> bodyOf(BodyForm form, const std::vector<std::string>& records)
{
    BodyWriter writer(form);
    for (const std::string& record : records)
        writer.record(record);
    writer.end();
    return writer.bytes();
}

/// The edges of a cube with sides of 10 and a corner at 0,0,0, moved by 100,200,0.
inline std::vector<std::string> cubeRecords()
{
    // 0 the body, 1 its place, 8 corners from 2, their points from 10, edges and lines from 18.
    std::vector<std::string> records{
        "body $-1 i:-1 $-1 $-1 $-1 $1 \"a#word\" \"long\"",
        "transform $-1 i:-1 $-1 [1 0 0 0 1 0 0 0 1 100 200 0 1 no_rotate no_reflect no_shear]"};
    for (int i = 0; i < 8; ++i)
        records.push_back("vertex $-1 i:-1 $-1 $18 $" + std::to_string(10 + i));
    for (int i = 0; i < 8; ++i)
        records.push_back("point $-1 i:-1 $-1 " + std::to_string(i & 1 ? 10 : 0) + ',' +
                          std::to_string(i & 2 ? 10 : 0) + ',' + std::to_string(i & 4 ? 10 : 0));
    for (int side = 1; side < 8; side *= 2)
        for (int i = 0; i < 8; ++i)
            if ((i & side) == 0) {
                const std::string line = std::to_string(records.size() + 1);
                records.push_back("edge $-1 i:-1 $-1 $" + std::to_string(2 + i) + " 0 $" +
                                  std::to_string(2 + i + side) + " 10 $-1 $" + line +
                                  " forward \"unknown\"");
                records.push_back("straight-curve $-1 i:-1 $-1 0,0,0 1,0,0 I I");
            }
    return records;
}
