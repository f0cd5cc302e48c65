#include "format_pattern.h"

#include <algorithm>

namespace {

using base::Conversion;

/// Walks over a pattern; at its end it sees zeros.
class Reader
{
public:
    explicit Reader(std::u16string_view text) : m_text(text) {}

    std::size_t position() const { return m_at; }
    void moveTo(std::size_t position) { m_at = position; }
    char16_t peek() const { return m_at < m_text.size() ? m_text[m_at] : u'\0'; }
    bool take(char16_t unit)
    {
        const bool found = m_at < m_text.size() && m_text[m_at] == unit;
        m_at += found;
        return found;
    }
    /// Decimal digits as a number, at most kMaxWidth; kNotGiven if there are none.
    int takeNumber()
    {
        int number = Conversion::kNotGiven;
        for (; peek() >= u'0' && peek() <= u'9'; ++m_at)
            number = std::min(std::max(number, 0) * 10 + (peek() - u'0'), Conversion::kMaxWidth);
        return number;
    }

private:
    std::u16string_view m_text;
    std::size_t m_at = 0;
};

void readPosition(Reader& reader, Conversion& out)
{
    const std::size_t start = reader.position();
    const int number = reader.takeNumber();
    if (number != Conversion::kNotGiven && reader.take(u'$'))
        out.position = number;
    else
        reader.moveTo(start); // it was the width
}

bool readFlag(Reader& reader, Conversion& out)
{
    bool* flag = nullptr;
    switch (reader.peek()) {
    case u'-': flag = &out.left; break;
    case u'0': flag = &out.zeros; break;
    case u'+': flag = &out.plus; break;
    case u' ': flag = &out.blank; break;
    case u'#': flag = &out.alternate; break;
    default: return false;
    }
    *flag = true;
    return reader.take(reader.peek());
}

void readWidth(Reader& reader, Conversion& out)
{
    if (!reader.take(u'*'))
        out.width = std::max(reader.takeNumber(), 0);
    if (reader.take(u'.') && !reader.take(u'*'))
        out.precision = std::max(reader.takeNumber(), 0); // a point alone means 0
}

void skipLengthMarks(Reader& reader)
{
    const char16_t mark = reader.peek();
    if ((mark == u'h' || mark == u'l') && reader.take(mark))
        reader.take(mark);
}

} // namespace

namespace base {

std::size_t readConversion(std::u16string_view rest, Conversion& out)
{
    out = {};
    Reader reader(rest);
    readPosition(reader, out);
    while (readFlag(reader, out)) {
    }
    readWidth(reader, out);
    skipLengthMarks(reader);
    out.type = reader.peek();
    constexpr std::u16string_view kTypes = u"sdiuxXcfFeEgG%";
    const bool known = out.type != u'\0' && kTypes.find(out.type) != std::u16string_view::npos;
    return known ? reader.position() + 1 : 0;
}

} // namespace base
