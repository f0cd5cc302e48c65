#include "solid_edges.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>
#include <optional>
#include <string>

#include <db/ge_values.h>

namespace gs {

namespace {

constexpr std::size_t kLongestText = 64U << 20;

/// The text: its bytes are kept mirrored, but for blanks and ends of lines.
std::string textOf(const db::RecordView& solid)
{
    constexpr std::uint8_t kLastPlain = 32, kMirror = 159;
    std::string text;
    const db::ArrayView blocks = solid.array("sat");
    for (std::uint32_t i = 0; i < blocks.size() && text.size() < kLongestText; ++i)
        for (const std::uint8_t byte : blocks[i].bytes("data"))
            text += static_cast<char>(byte > kLastPlain ? kMirror - byte : byte);
    return text;
}

using Tokens = std::vector<std::string_view>;

Tokens tokensOf(std::string_view record)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    Tokens tokens;
    for (;;) {
        const std::size_t begin = record.find_first_not_of(kBlanks);
        if (begin == std::string_view::npos)
            return tokens;
        record.remove_prefix(begin);
        const std::size_t end = std::min(record.find_first_of(kBlanks), record.size());
        tokens.push_back(record.substr(0, end));
        record.remove_prefix(end);
    }
}

/// The number of the record that a token points to; nullopt for other tokens and for none.
std::optional<std::size_t> targetOf(std::string_view token)
{
    if (token.size() < 2 || token[0] != '$' || token[1] == '-')
        return std::nullopt;
    std::size_t number = 0;
    const char* const end = token.data() + token.size();
    const auto read = std::from_chars(token.data() + 1, end, number);
    return read.ptr == end && read.ec == std::errc() ? std::optional(number) : std::nullopt;
}

std::optional<double> realOf(std::string_view token)
{
    double number = 0;
    const char* const end = token.data() + token.size();
    const auto read = std::from_chars(token.data(), end, number);
    return read.ptr == end && read.ec == std::errc() && std::isfinite(number)
               ? std::optional(number)
               : std::nullopt;
}

/// The records of a body, by their numbers.
class Body
{
public:
    explicit Body(std::string_view text)
    {
        for (;;) {
            const std::size_t end = text.find('#');
            if (end == std::string_view::npos)
                break;
            m_records.push_back(tokensOf(text.substr(0, end)));
            text.remove_prefix(end + 1);
        }
        if (!m_records.empty())
            dropHeader(m_records.front());
        for (std::size_t i = 0; i < m_records.size(); ++i)
            if (isA(i, "transform"))
                m_place = placeOf(m_records[i]);
    }

    void addEdges(SpacePath& path) const
    {
        SpacePath edges;
        for (std::size_t i = 0; i < m_records.size(); ++i)
            if (isA(i, "edge"))
                addEdge(edges, m_records[i]);
        edges.transform(m_place);
        path.append(edges);
    }

private:
    /// Before the first record stand three lines of versions and units.
    static void dropHeader(Tokens& first)
    {
        for (std::size_t i = 0; i + 1 < first.size(); ++i)
            if (std::isalpha(static_cast<unsigned char>(first[i][0])) && first[i + 1][0] == '$') {
                first.erase(first.begin(), first.begin() + static_cast<std::ptrdiff_t>(i));
                return;
            }
    }

    bool isA(std::size_t record, std::string_view name) const
    {
        if (record >= m_records.size() || m_records[record].empty())
            return false;
        const Tokens& tokens = m_records[record];
        // A record may tell its own number first.
        const std::string_view first =
            tokens[0][0] == '-' && tokens.size() > 1 ? tokens[1] : tokens[0];
        return first == name;
    }

    /// The first record of that kind that @p from points to.
    std::optional<std::size_t> pointedTo(const Tokens& from, std::string_view name,
                                         std::size_t skip = 0) const
    {
        for (const std::string_view token : from)
            if (const auto target = targetOf(token); target && isA(*target, name) && skip-- == 0)
                return target;
        return std::nullopt;
    }

    /// The numbers of a record from its end on, or its beginning.
    static std::vector<double> numbersOf(const Tokens& tokens)
    {
        std::vector<double> numbers;
        for (std::size_t i = 1; i < tokens.size(); ++i)
            if (const auto number = realOf(tokens[i]); number)
                numbers.push_back(*number);
        return numbers;
    }

    std::optional<TvGePoint3d> placeOfVertex(const Tokens& edge, std::size_t which) const
    {
        const auto vertex = pointedTo(edge, "vertex", which);
        const auto point = vertex ? pointedTo(m_records[*vertex], "point") : std::nullopt;
        if (!point)
            return std::nullopt;
        const std::vector<double> numbers = numbersOf(m_records[*point]);
        if (numbers.size() < 3)
            return std::nullopt;
        const double* const last = numbers.data() + numbers.size() - 3;
        return TvGePoint3d(last[0], last[1], last[2]);
    }

    void addEdge(SpacePath& path, const Tokens& edge) const
    {
        const auto start = placeOfVertex(edge, 0);
        auto end = placeOfVertex(edge, 1);
        if (!start)
            return;
        if (!end) // one vertex, from which the edge runs back to itself
            end = start;
        const auto curve = pointedTo(edge, "ellipse-curve");
        if (curve && addBow(path, numbersOf(m_records[*curve]), *start, *end,
                            std::find(edge.begin(), edge.end(), "reversed") != edge.end()))
            return;
        path.moveTo(*start);
        path.lineTo(*end);
    }

    /// @param curve  middle, normal, longer radius as a vector, the shorter one by it.
    static bool addBow(SpacePath& path, const std::vector<double>& curve, const TvGePoint3d& start,
                       const TvGePoint3d& end, bool isReversed)
    {
        constexpr std::size_t kNumbers = 10;
        // Records of later versions count something before them.
        if (curve.size() < kNumbers)
            return false;
        std::size_t at = 0;
        while (at + kNumbers < curve.size() &&
               !isUnit({curve[at + 3], curve[at + 4], curve[at + 5]}))
            ++at;
        const double* const n = curve.data() + at;
        const TvGePoint3d center(n[0], n[1], n[2]);
        const TvGeVector3d normal(n[3], n[4], n[5]), u(n[6], n[7], n[8]);
        const TvGeVector3d v = normal.crossProduct(u) * n[9];
        const double uu = u.dotProduct(u), vv = v.dotProduct(v);
        if (!isUnit(normal) || !(uu > 0) || !(vv > 0))
            return false;
        const auto angleOf = [&](const TvGePoint3d& point) {
            const TvGeVector3d way = point - center;
            return std::atan2(way.dotProduct(v) / vv, way.dotProduct(u) / uu);
        };
        double from = angleOf(start), to = angleOf(end);
        if (isReversed)
            std::swap(from, to);
        if (to <= from + 1e-9)
            to += 2 * std::numbers::pi;
        path.bow(center, u, v, from, to);
        return true;
    }

    static bool isUnit(const TvGeVector3d& vector) { return std::abs(vector.length() - 1) < 1e-6; }

    /// Three rows that a point is multiplied with from the left, the way, and the scale.
    static TvGeMatrix3d placeOf(const Tokens& transform)
    {
        const std::vector<double> n = numbersOf(transform);
        constexpr std::size_t kNumbers = 13;
        TvGeMatrix3d place;
        if (n.size() < kNumbers)
            return place;
        for (std::size_t row = 0; row < 3; ++row) {
            for (std::size_t column = 0; column < 3; ++column)
                place.entry[row][column] = n[column * 3 + row] * n[12];
            place.entry[row][3] = n[9 + row];
        }
        return place;
    }

    std::vector<Tokens> m_records;
    TvGeMatrix3d m_place;
};

} // namespace

void addSolidEdges(SpacePath& path, const db::RecordView& solid)
{
    const std::string text = textOf(solid);
    if (!text.empty())
        Body(text).addEdges(path);
}

} // namespace gs
