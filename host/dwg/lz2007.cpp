#include "lz2007.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace dwg {

namespace {

// Literals are stored out of order. A run shorter than 32 bytes consists of pieces taken from these
// places; pieces of 2 and 3 bytes are turned around, one of 16 has its halves exchanged.
struct Piece {
    std::uint8_t size, at;
};
constexpr std::size_t kMostPieces = 5;
// clang-format off
constexpr Piece kPieces[32][kMostPieces] = {
    {},
    {{1, 0}},
    {{2, 0}},
    {{3, 0}},
    {{4, 0}},
    {{1, 4}, {4, 0}},
    {{1, 5}, {4, 1}, {1, 0}},
    {{2, 5}, {4, 1}, {1, 0}},
    {{8, 0}},
    {{1, 8}, {8, 0}},
    {{1, 9}, {8, 1}, {1, 0}},
    {{2, 9}, {8, 1}, {1, 0}},
    {{4, 8}, {8, 0}},
    {{1, 12}, {4, 8}, {8, 0}},
    {{1, 13}, {4, 9}, {8, 1}, {1, 0}},
    {{2, 13}, {4, 9}, {8, 1}, {1, 0}},
    {{16, 0}},
    {{8, 9}, {1, 8}, {8, 0}},
    {{1, 17}, {16, 1}, {1, 0}},
    {{3, 16}, {16, 0}},
    {{4, 16}, {16, 0}},
    {{1, 20}, {4, 16}, {16, 0}},
    {{2, 20}, {4, 16}, {16, 0}},
    {{3, 20}, {4, 16}, {16, 0}},
    {{8, 16}, {16, 0}},
    {{8, 17}, {1, 16}, {16, 0}},
    {{1, 25}, {8, 17}, {1, 16}, {16, 0}},
    {{2, 25}, {8, 17}, {1, 16}, {16, 0}},
    {{4, 24}, {8, 16}, {16, 0}},
    {{1, 28}, {4, 24}, {8, 16}, {16, 0}},
    {{2, 28}, {4, 24}, {8, 16}, {16, 0}},
    {{1, 30}, {4, 26}, {8, 18}, {16, 2}, {2, 0}},
};
// clang-format on

using Order = std::array<std::uint8_t, 32>;

// [n][j]: which stored byte of a run of n is its byte j.
constexpr std::array<Order, 33> makeOrders()
{
    std::array<Order, 33> orders{};
    for (std::size_t n = 0; n < 32; ++n) {
        std::size_t j = 0;
        for (const Piece& piece : kPieces[n])
            for (std::size_t k = 0; k < piece.size; ++k) {
                std::size_t from = k;
                if (piece.size < 4)
                    from = piece.size - 1u - k;
                else if (piece.size == 16)
                    from = k ^ 8;
                orders[n][j++] = static_cast<std::uint8_t>(piece.at + from);
            }
    }
    for (std::size_t j = 0; j < 32; ++j)
        orders[32][j] = static_cast<std::uint8_t>(j ^ 24);
    return orders;
}

constexpr auto kOrders = makeOrders();

template <class Move>
void forEachLiteral(std::size_t count, Move move)
{
    for (std::size_t at = 0; at < count; at += 32) {
        const std::size_t n = std::min<std::size_t>(count - at, 32);
        for (std::size_t j = 0; j < n; ++j)
            move(at + j, at + kOrders[n][j]);
    }
}

class Unpacker
{
public:
    Unpacker(Bytes packed, std::span<std::uint8_t> out) : m_in(packed), m_out(out) {}

    bool run()
    {
        unsigned op = next();
        std::size_t literals = 0;
        if (op >> 4 == 2) {
            next16();
            literals = next() & 7;
            if (literals == 0)
                return false;
        }
        while (m_at < m_in.size() && !m_failed) {
            if (literals == 0)
                literals = runLength(op);
            if (!copyLiterals(literals))
                return false;
            if (m_at == m_in.size())
                break;
            op = next();
            if (!matches(op, literals))
                return false;
        }
        return !m_failed && m_done == m_out.size();
    }

private:
    unsigned next()
    {
        if (m_at < m_in.size())
            return m_in[m_at++];
        m_failed = true;
        return 0;
    }
    unsigned next16()
    {
        const unsigned low = next();
        return low | next() << 8;
    }

    std::size_t runLength(unsigned op)
    {
        std::size_t length = op + 8;
        if (length != 0x17)
            return length;
        unsigned more = next();
        length += more;
        if (more != 0xFF)
            return length;
        do {
            more = next16();
            length += more;
        } while (more == 0xFFFF && length <= m_out.size());
        return length;
    }

    bool copyLiterals(std::size_t count)
    {
        if (m_failed || count > m_in.size() - m_at || count > m_out.size() - m_done)
            return false;
        const std::uint8_t* from = m_in.data() + m_at;
        std::uint8_t* to = m_out.data() + m_done;
        forEachLiteral(count, [&](std::size_t j, std::size_t stored) { to[j] = from[stored]; });
        m_at += count;
        m_done += count;
        return true;
    }

    // Matches behind each other; ends with the number of literals that follow, or with the opcode
    // of a run.
    bool matches(unsigned& op, std::size_t& literals)
    {
        for (;;) {
            if (!match(op))
                return false;
            literals = op & 7;
            if (literals != 0 || m_at == m_in.size())
                return true;
            op = next();
            if (op >> 4 == 0)
                return true;
            if (op >> 4 == 15)
                op &= 15;
        }
    }

    // One match; @p op becomes its last byte, whose low bits count literals.
    bool match(unsigned& op)
    {
        std::size_t length, offset;
        const unsigned first = op;
        switch (first >> 4) {
        case 0:
            offset = next();
            op = next();
            length = (first & 15) + 0x13 + (op >> 3 & 0x10);
            offset += ((op & 0x78) << 5) + 1;
            break;
        case 1:
            offset = next();
            op = next();
            length = (first & 15) + 3;
            offset += ((op & 0xF8) << 5) + 1;
            break;
        case 2:
            offset = next16();
            length = first & 7;
            if (first & 8) {
                ++offset;
                length += next() << 3;
                op = next();
                length += ((op & 0xF8) << 8) + 0x100;
            } else {
                op = next();
                length += op & 0xF8;
            }
            break;
        default:
            op = next();
            length = first >> 4;
            offset = (first & 15) + ((op & 0xF8) << 1) + 1;
        }
        return copyMatch(length, offset);
    }

    bool copyMatch(std::size_t length, std::size_t offset)
    {
        if (m_failed || offset == 0 || offset > m_done || length > m_out.size() - m_done)
            return false;
        std::uint8_t* to = m_out.data() + m_done;
        const std::uint8_t* from = to - offset;
        for (std::size_t i = 0; i < length; ++i)
            to[i] = from[i];
        m_done += length;
        return true;
    }

    Bytes m_in;
    std::span<std::uint8_t> m_out;
    std::size_t m_at = 0, m_done = 0;
    bool m_failed = false;
};

class Packer
{
public:
    explicit Packer(Bytes plain) : m_plain(plain), m_last(1 << 14) {}

    std::vector<std::uint8_t> run()
    {
        std::size_t at = kFirstRun;
        remember(0);
        while (at + 4 <= m_plain.size()) {
            const std::size_t from = candidate(at);
            const std::size_t length = from < at ? matchLength(from, at) : 0;
            if (length < 4) {
                ++at;
                continue;
            }
            flush(at);
            m_length = length;
            m_offset = at - from;
            at += length;
            m_literalsAt = at;
        }
        flush(m_plain.size());
        return std::move(m_out);
    }

private:
    static constexpr std::size_t kFirstRun = 8;
    static constexpr std::size_t kFarthest = 0xFFFF;
    static constexpr std::size_t kLongest = 0x100 + 0xFFFF;

    std::uint32_t wordAt(std::size_t at) const
    {
        std::uint32_t word;
        std::memcpy(&word, m_plain.data() + at, 4);
        return word;
    }
    std::uint32_t& slotOf(std::size_t at) { return m_last[(wordAt(at) * 2654435761u) >> 18]; }
    void remember(std::size_t at) { slotOf(at) = static_cast<std::uint32_t>(at + 1); }

    std::size_t candidate(std::size_t at)
    {
        std::uint32_t& slot = slotOf(at);
        const std::size_t seen = slot;
        slot = static_cast<std::uint32_t>(at + 1);
        const bool isUsable = seen != 0 && at - (seen - 1) <= kFarthest;
        return isUsable && wordAt(seen - 1) == wordAt(at) ? seen - 1 : at;
    }

    std::size_t matchLength(std::size_t from, std::size_t at) const
    {
        const std::size_t most = std::min(m_plain.size() - at, kLongest);
        std::size_t length = 4;
        while (length < most && m_plain[from + length] == m_plain[at + length])
            ++length;
        return length;
    }

    void put(std::size_t byte) { m_out.push_back(static_cast<std::uint8_t>(byte)); }

    // The waiting match in the shortest form that holds it, with the number of literals behind it
    // (0 to 7).
    void putMatch(std::size_t literals)
    {
        const std::size_t far = m_offset - 1, length = m_length;
        if (length <= (m_afterMatch ? 14u : 15u) && far < 512) {
            put(length << 4 | (far & 15));
            put(far >> 4 << 3 | literals);
        } else if (length <= 18 && far < 8192) {
            put(0x10 | (length - 3));
            put(far & 0xFF);
            put(far >> 8 << 3 | literals);
        } else if (length >= 19 && length <= 50 && far < 4096) {
            const std::size_t rest = length - 0x13;
            put((m_afterMatch ? 0xF0 : 0) | (rest & 15));
            put(far & 0xFF);
            put((rest & 0x10) << 3 | far >> 8 << 3 | literals);
        } else if (length <= 0xFF) {
            put(0x20 | (length & 7));
            put(m_offset & 0xFF);
            put(m_offset >> 8);
            put((length & 0xF8) | literals);
        } else {
            const std::size_t rest = length - 0x100;
            put(0x28 | (rest & 7));
            put(far & 0xFF);
            put(far >> 8);
            put(rest >> 3 & 0xFF);
            put((rest >> 11) << 3 | literals);
        }
    }

    void putRun(std::size_t count)
    {
        if (count < 0x17)
            return put(count - 8);
        put(0x0F);
        std::size_t rest = count - 0x17;
        if (rest < 0xFF)
            return put(rest);
        put(0xFF);
        rest -= 0xFF;
        for (;; rest -= 0xFFFF) {
            const std::size_t word = std::min<std::size_t>(rest, 0xFFFF);
            put(word & 0xFF);
            put(word >> 8);
            if (word != 0xFFFF)
                return;
        }
    }

    void flush(std::size_t end)
    {
        const std::size_t count = end - m_literalsAt;
        const bool inMatch = m_length != 0 && count < 8;
        if (m_length != 0)
            putMatch(inMatch ? count : 0);
        m_afterMatch = inMatch && count == 0;
        if (!inMatch)
            putRun(count);
        const std::size_t at = m_out.size();
        m_out.resize(at + count);
        forEachLiteral(count, [&](std::size_t j, std::size_t stored) {
            m_out[at + stored] = m_plain[m_literalsAt + j];
        });
    }

    Bytes m_plain;
    std::vector<std::uint32_t> m_last;
    std::vector<std::uint8_t> m_out;
    std::size_t m_literalsAt = 0;
    std::size_t m_length = 0, m_offset = 0; // of the waiting match; length 0 is none
    bool m_afterMatch = false; // nothing stands between the waiting match and the one before it
};

} // namespace

bool unpack2007(Bytes packed, std::span<std::uint8_t> out)
{
    return Unpacker(packed, out).run();
}

std::vector<std::uint8_t> pack2007(Bytes plain)
{
    if (plain.size() < 8)
        return {};
    auto packed = Packer(plain).run();
    return packed.size() < plain.size() ? packed : std::vector<std::uint8_t>();
}

} // namespace dwg
