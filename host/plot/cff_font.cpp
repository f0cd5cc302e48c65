#include "cff_font.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace plot {

namespace {

constexpr double kUnits = 1000;
constexpr std::size_t kMostArguments = 48; // that a letter's program may stack
// What the tables' entries are called.
constexpr int kFirstOwnString = 391;
enum Operator : int {
    kFontBox = 5,
    kCharset = 15,
    kCharStrings = 17,
    kPrivate = 18,
    kDefaultWidth = 20,
    kNominalWidth = 21,
    kEscape = 1200,
    kRos = kEscape + 30,
    kCidCount = kEscape + 34,
    kFontArray = kEscape + 36,
    kFontSelect = kEscape + 37,
};

void addBytes(std::string& out, std::size_t value, int bytes)
{
    for (int i = bytes - 1; i >= 0; --i)
        out += static_cast<char>(value >> 8 * i & 0xFF);
}

/// A row of entries with their lengths.
std::string index(const std::vector<std::string>& entries)
{
    std::string out;
    addBytes(out, entries.size(), 2);
    if (entries.empty())
        return out;
    out += '\4';
    std::size_t offset = 1;
    addBytes(out, offset, 4);
    for (const std::string& entry : entries)
        addBytes(out, offset += entry.size(), 4);
    for (const std::string& entry : entries)
        out += entry;
    return out;
}

/// Always five bytes, so that tables keep their length when offsets become known.
void addLong(std::string& out, std::size_t value)
{
    out += '\x1D';
    addBytes(out, value, 4);
}

void addOperator(std::string& out, int op)
{
    if (op >= kEscape)
        out += '\x0C';
    out += static_cast<char>(op % kEscape);
}

/// A number in a letter's program.
void addNumber(std::string& out, int value)
{
    if (value >= -107 && value <= 107) {
        out += static_cast<char>(value + 139);
    } else if (value >= 108 && value <= 1131) {
        out += static_cast<char>(247 + (value - 108) / 256);
        out += static_cast<char>((value - 108) % 256);
    } else if (value >= -1131 && value <= -108) {
        out += static_cast<char>(251 + (-value - 108) / 256);
        out += static_cast<char>((-value - 108) % 256);
    } else {
        out += '\x1C';
        addBytes(out, static_cast<std::size_t>(static_cast<std::uint16_t>(value)), 2);
    }
}

/// Writes the outline of one letter: moves, lines and curves from one point to the next.
class LetterProgram
{
public:
    explicit LetterProgram(const UsedLetter& letter)
    {
        addNumber(m_out, cffWidth(letter));
        std::size_t index = 0;
        const auto next = [&] {
            const TvGePoint2d& p = letter.outline.points()[index++];
            return std::pair(round(p.x), round(p.y));
        };
        for (const gs::Path::Verb verb : letter.outline.verbs())
            switch (verb) {
            case gs::Path::Verb::Move:
                flush();
                step(next());
                use(kMove);
                flush();
                break;
            case gs::Path::Verb::Line:
                use(kLine);
                step(next());
                break;
            case gs::Path::Verb::Curve:
                use(kCurve);
                step(next());
                step(next());
                step(next());
                break;
            case gs::Path::Verb::Close: break; // a letter's parts are closed anyway
            }
        flush();
        m_out += static_cast<char>(kEnd);
    }
    const std::string& bytes() const { return m_out; }

private:
    enum Op { kNone = 0, kLine = 5, kCurve = 8, kEnd = 14, kMove = 21 };

    static int round(double value)
    {
        return static_cast<int>(std::lround(std::clamp(value * kUnits, -16000.0, 16000.0)));
    }
    void step(std::pair<int, int> to)
    {
        addNumber(m_out, to.first - m_x);
        addNumber(m_out, to.second - m_y);
        m_x = to.first;
        m_y = to.second;
        m_arguments += 2;
    }
    /// What follows is of this kind; as much as possible goes into one operator.
    void use(Op op)
    {
        const std::size_t more = op == kCurve ? 6 : op == kLine ? 2 : 0;
        if (op != kMove && (op != m_op || m_arguments + more > kMostArguments))
            flush();
        m_op = op;
    }
    void flush()
    {
        if (m_op != kNone)
            m_out += static_cast<char>(m_op);
        m_op = kNone;
        m_arguments = 0;
    }

    std::string m_out;
    int m_x = 0, m_y = 0;
    std::size_t m_arguments = 0;
    Op m_op = kNone;
};

} // namespace

int cffWidth(const UsedLetter& letter)
{
    return static_cast<int>(std::lround(std::clamp(letter.advance * kUnits, 0.0, 16000.0)));
}

std::string cffFont(const std::map<std::uint16_t, UsedLetter>& letters, const std::string& name)
{
    std::vector<std::string> programs{std::string("\x8B\x0E", 2)}; // the letter for what is missing
    std::string charset(1, '\0');
    for (const auto& [code, letter] : letters) {
        if (code == 0)
            continue; // that one
        programs.push_back(LetterProgram(letter).bytes());
        addBytes(charset, code, 2);
    }
    std::string select = {'\3', '\0', '\1', '\0', '\0', '\0'};
    addBytes(select, programs.size(), 2);
    const std::string charStrings = index(programs);
    std::string priv;
    addNumber(priv, 0);
    addOperator(priv, kDefaultWidth);
    addNumber(priv, 0);
    addOperator(priv, kNominalWidth);
    const auto fontArray = [&](std::size_t privateAt) {
        std::string dict;
        addLong(dict, priv.size());
        addLong(dict, privateAt);
        addOperator(dict, kPrivate);
        return index({dict});
    };
    const auto head = [&](std::size_t charsetAt, std::size_t selectAt, std::size_t stringsAt,
                          std::size_t arrayAt) {
        std::string dict;
        addLong(dict, kFirstOwnString);
        addLong(dict, kFirstOwnString + 1);
        addLong(dict, 0);
        addOperator(dict, kRos);
        addLong(dict, 0x10000);
        addOperator(dict, kCidCount);
        for (const int edge : {-2000, -1000, 4000, 2000}) {
            dict += '\x1C';
            addBytes(dict, static_cast<std::uint16_t>(edge), 2);
        }
        addOperator(dict, kFontBox);
        addLong(dict, charsetAt);
        addOperator(dict, kCharset);
        addLong(dict, selectAt);
        addOperator(dict, kFontSelect);
        addLong(dict, stringsAt);
        addOperator(dict, kCharStrings);
        addLong(dict, arrayAt);
        addOperator(dict, kFontArray);
        const std::string start("\1\0\4\4", 4);
        return start + index({name}) + index({dict}) + index({"Adobe", "Identity"}) + index({});
    };
    const std::size_t charsetAt = head(0, 0, 0, 0).size();
    const std::size_t selectAt = charsetAt + charset.size();
    const std::size_t stringsAt = selectAt + select.size();
    const std::size_t arrayAt = stringsAt + charStrings.size();
    const std::size_t privateAt = arrayAt + fontArray(0).size();
    return head(charsetAt, selectAt, stringsAt, arrayAt) + charset + select + charStrings +
           fontArray(privateAt) + priv;
}

} // namespace plot
