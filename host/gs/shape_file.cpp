#include "shape_file.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string_view>

#include "space_path.h"

namespace gs {

namespace {

constexpr std::size_t kMostBytes = 1 << 20;
constexpr std::size_t kLongestHead = 40;
constexpr char kEndOfHead = 0x1A;
constexpr double kOctant = std::numbers::pi / 4;

/// The bytes behind the head; nullopt when it does not say that shapes follow.
std::optional<std::size_t> endOfHead(std::span<const std::uint8_t> bytes)
{
    const std::string_view head(reinterpret_cast<const char*>(bytes.data()),
                                std::min(bytes.size(), kLongestHead));
    const std::size_t end = head.find(kEndOfHead);
    if (end == head.npos || head.substr(0, end).find(" shapes ") == head.npos)
        return std::nullopt;
    return end + 1;
}

} // namespace

/// Follows the strokes of a shape.
class ShapePen
{
public:
    explicit ShapePen(const ShapeFile& file) : m_file(file) {}

    void follow(std::uint16_t number, int depth = 0)
    {
        Reader strokes{m_file.strokesOf(number)};
        while (!strokes.rest.empty() && isSound()) {
            const int code = strokes.byte();
            if (code == kEnd)
                break;
            step(code, strokes, depth, true);
        }
    }

    Path drawn() const { return m_path.seenFromAbove(); }

private:
    enum : int {
        kEnd,
        kPenDown,
        kPenUp,
        kDivide,
        kMultiply,
        kPush,
        kPop,
        kSubshape,
        kMove,
        kMoves,
        kOctantArc,
        kFractionalArc,
        kBulge,
        kBulges,
        kVerticalOnly,
        kFirstVector = 16
    };
    // Shapes of real files take some hundred steps, and stand within each other twice.
    static constexpr int kMostSteps = 20'000, kDeepest = 16;
    static constexpr std::size_t kMostKept = 64;
    static constexpr double kFarthest = 1e9;

    /// Bytes as they come; zeros behind the last one.
    struct Reader {
        std::span<const std::uint8_t> rest;

        int byte()
        {
            if (rest.empty())
                return 0;
            const int value = rest.front();
            rest = rest.subspan(1);
            return value;
        }
        double number() { return static_cast<std::int8_t>(byte()); }
    };

    bool isSound()
    {
        return ++m_steps < kMostSteps && std::abs(m_at.x) < kFarthest &&
               std::abs(m_at.y) < kFarthest && m_scale < kFarthest && m_scale > 1 / kFarthest;
    }

    /// @param counts  false: the step is read and not taken.
    void step(int code, Reader& strokes, int depth, bool counts)
    {
        if (code >= kFirstVector)
            return counts ? vector(code >> 4, code & 15) : void();
        switch (code) {
        case kPenDown: m_isDown = m_isDown || counts; break;
        case kPenUp: m_isDown = m_isDown && !counts; break;
        case kDivide:
        case kMultiply:
            if (const int factor = strokes.byte(); factor != 0 && counts)
                m_scale = code == kDivide ? m_scale / factor : m_scale * factor;
            break;
        case kPush:
            if (counts && m_kept.size() < kMostKept)
                m_kept.push_back(m_at);
            break;
        case kPop:
            if (counts && !m_kept.empty()) {
                m_at = m_kept.back();
                m_kept.pop_back();
                m_isBegun = false;
            }
            break;
        case kSubshape:
            if (const int number = strokes.byte(); counts && depth < kDeepest)
                follow(static_cast<std::uint16_t>(number), depth + 1);
            break;
        case kMove:
        case kMoves: moves(strokes, code == kMoves, counts); break;
        case kOctantArc: octantArc(strokes, false, counts); break;
        case kFractionalArc: octantArc(strokes, true, counts); break;
        case kBulge:
        case kBulges: bulges(strokes, code == kBulges, counts); break;
        case kVerticalOnly: // we write along the line
            if (const int next = strokes.byte(); next != kVerticalOnly)
                step(next, strokes, depth, false);
            break;
        default: break;
        }
    }

    /// To a place @p length steps away in one of 16 directions, whose ends lie on a square.
    void vector(int length, int direction)
    {
        constexpr double kAlong[] = {1, 1, 1, 0.5, 0, -0.5, -1, -1, -1, -1, -1, -0.5, 0, 0.5, 1, 1};
        const double x = kAlong[direction], y = kAlong[(direction + 12) % 16];
        lineBy({x * length, y * length});
    }

    void moves(Reader& strokes, bool areMany, bool counts)
    {
        do {
            const double x = strokes.number(), y = strokes.number();
            if (areMany && x == 0 && y == 0)
                break;
            if (counts)
                lineBy({x, y});
        } while (areMany && !strokes.rest.empty() && isSound());
    }

    void bulges(Reader& strokes, bool areMany, bool counts)
    {
        constexpr double kHalfCircle = 127;
        do {
            const double x = strokes.number(), y = strokes.number();
            if (areMany && x == 0 && y == 0)
                break;
            const double bulge = strokes.number() / kHalfCircle;
            const TvGePoint2d to = m_at + TvGeVector2d(x, y) * m_scale;
            if (!counts)
                continue;
            if (begin())
                m_path.bulgeTo(m_at, to, bulge, 0);
            m_at = to;
        } while (areMany && !strokes.rest.empty() && isSound());
    }

    /// An arc from here on: it begins and ends at eighths of its circle, or (@p isFractional) at
    /// 256 parts of them.
    void octantArc(Reader& strokes, bool isFractional, bool counts)
    {
        constexpr double kParts = 256;
        const double first = isFractional ? strokes.byte() / kParts : 0;
        const double last = isFractional ? strokes.byte() / kParts : 0;
        const int high = isFractional ? strokes.byte() : 0;
        const double radius = (high * 256 + strokes.byte()) * m_scale;
        const int octants = strokes.byte();
        if (!counts)
            return;
        const double way = (octants & 0x80) != 0 ? -1 : 1; // clockwise: negative
        const double start = (octants >> 4 & 7) + way * first;
        double count = (octants & 7) == 0 ? 8 : octants & 7;
        // The last eighth is a part of one.
        count += last > 0 ? last - 1 - first : -first;
        const double from = start * kOctant, to = (start + way * count) * kOctant;
        const TvGePoint2d center = m_at - TvGeVector2d(std::cos(from), std::sin(from)) * radius;
        if (begin())
            m_path.bowTo({center.x, center.y, 0}, {radius, 0, 0}, {0, radius, 0}, from, to);
        m_at = center + TvGeVector2d(std::cos(to), std::sin(to)) * radius;
    }

    void lineBy(const TvGeVector2d& way)
    {
        const TvGePoint2d to = m_at + way * m_scale;
        if (begin())
            m_path.lineTo({to.x, to.y, 0});
        m_at = to;
    }

    /// Whether the pen draws; then the path is where the pen is.
    bool begin()
    {
        if (m_isDown && !m_isBegun)
            m_path.moveTo({m_at.x, m_at.y, 0});
        m_isBegun = m_isDown;
        return m_isDown;
    }

    const ShapeFile& m_file;
    SpacePath m_path;
    TvGePoint2d m_at;
    std::vector<TvGePoint2d> m_kept;
    double m_scale = 1;
    int m_steps = 0;
    bool m_isDown = true, m_isBegun = false;
};

std::optional<ShapeFile> ShapeFile::fromBytes(std::span<const std::byte> bytes)
{
    constexpr std::size_t kCountAt = 4, kTableAt = 6, kRow = 4; // behind the head
    ShapeFile file;
    const auto* const first = reinterpret_cast<const std::uint8_t*>(bytes.data());
    file.m_bytes.assign(first, first + std::min(bytes.size(), kMostBytes));
    const auto head = endOfHead(file.m_bytes);
    if (!head || file.m_bytes.size() < *head + kTableAt)
        return std::nullopt;
    const auto word = [&](std::size_t at) {
        return static_cast<std::uint16_t>(file.m_bytes[at] | file.m_bytes[at + 1] << 8);
    };
    const std::size_t count = word(*head + kCountAt), table = *head + kTableAt;
    std::size_t at = table + count * kRow;
    if (count == 0 || at > file.m_bytes.size())
        return std::nullopt;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint16_t number = word(table + i * kRow), length = word(table + i * kRow + 2);
        if (length > file.m_bytes.size() - at)
            break;
        // Its name, a zero, its strokes.
        const auto begin = file.m_bytes.begin() + static_cast<std::ptrdiff_t>(at);
        const auto name = static_cast<std::size_t>(std::find(begin, begin + length, 0) - begin);
        if (name < length)
            file.m_strokes.emplace(number, Range{at + name + 1, length - name - 1});
        at += length;
    }
    return file;
}

std::span<const std::uint8_t> ShapeFile::strokesOf(std::uint16_t number) const
{
    const auto found = m_strokes.find(number);
    return found == m_strokes.end()
               ? std::span<const std::uint8_t>()
               : std::span(m_bytes).subspan(found->second.at, found->second.length);
}

const Path* ShapeFile::shape(std::uint16_t number)
{
    if (!m_strokes.contains(number))
        return nullptr;
    const auto [at, isNew] = m_drawn.try_emplace(number);
    if (isNew) {
        ShapePen pen(*this);
        pen.follow(number);
        at->second = pen.drawn();
    }
    return &at->second;
}

} // namespace gs
