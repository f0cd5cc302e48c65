#include "lz2004.h"

#include <array>
#include <cassert>
#include <cstring>

namespace dwg {

namespace {

constexpr unsigned kEnd = 0x11;
constexpr std::size_t kSmallestFirstRun = 4;
constexpr std::size_t kFarthest = 0xBFFF;
constexpr std::size_t kNear = 0x400;
constexpr std::size_t kMiddle = 0x4000;
// What a quick step may read and write, with the ends of words: a match of 33 bytes and 18
// literals.
constexpr std::ptrdiff_t kQuickInput = 40, kQuickRoom = 80;

// Input and output of one page; every step checks both before it moves.
class Unpacker
{
public:
    Unpacker(Bytes packed, std::span<std::uint8_t> out)
        : m_in(packed.data()), m_inEnd(packed.data() + packed.size()), m_begin(out.data()),
          m_out(out.data()), m_outEnd(out.data() + out.size())
    {
    }

    bool run()
    {
        unsigned op = next();
        if (op < 0x10) {
            if (!copyLiterals(literalLength(op)))
                return false;
            op = next();
        }
        while (op != kEnd && !m_failed) {
            quickSteps(op);
            if (op != kEnd && !m_failed && !step(op))
                return false;
        }
        return !m_failed && m_out == m_outEnd;
    }

private:
    std::size_t inputLeft() const { return static_cast<std::size_t>(m_inEnd - m_in); }
    std::size_t room() const { return static_cast<std::size_t>(m_outEnd - m_out); }

    unsigned next()
    {
        if (m_in == m_inEnd) {
            // A writer may leave out the mark at the end when nothing more fits anyway.
            m_failed = m_failed || m_out != m_outEnd;
            return kEnd;
        }
        return *m_in++;
    }

    // Zeros stand for 255 each; more of them than the output holds cannot be right.
    std::size_t extended(std::size_t base)
    {
        std::size_t length = base;
        unsigned byte;
        while ((byte = next()) == 0 && length <= room())
            length += 0xFF;
        return length + byte;
    }

    std::size_t literalLength(unsigned op)
    {
        const unsigned low = op & 0xF;
        return (low != 0 ? low : extended(0xF)) + 3;
    }

    bool copyLiterals(std::size_t count)
    {
        if (count > inputLeft() || count > room())
            return false;
        std::memcpy(m_out, m_in, count);
        m_in += count;
        m_out += count;
        return true;
    }

    bool copyMatch(std::size_t length, std::size_t offset)
    {
        if (offset > static_cast<std::size_t>(m_out - m_begin) || length > room())
            return false;
        const std::uint8_t* from = m_out - offset;
        // Eight at a time where neither the overlap nor the end of the output is near.
        if (offset >= 8 && length + 8 <= room()) {
            std::uint8_t* const end = m_out + length;
            for (; m_out < end; m_out += 8, from += 8)
                std::memcpy(m_out, from, 8);
            m_out = end;
            return true;
        }
        for (; length > 0; --length)
            *m_out++ = *from++;
        return true;
    }

    // A match of which nothing is read from more than two bytes; length 0 where it takes more.
    struct QuickMatch {
        std::size_t length, offset;
        unsigned literals, size; // of the literals behind it, and of what was read
    };
    static QuickMatch quickMatch(unsigned op, const std::uint8_t* in)
    {
        if (op >= 0x40)
            return {(op >> 4) - 1, ((op >> 2 & 3) | unsigned(in[0]) << 2) + 1, op & 3, 1};
        const bool isFar = op < 0x20;
        const unsigned told = op & (isFar ? 7 : 0x1F);
        const unsigned low = in[0], place = low >> 2 | unsigned(in[1]) << 6;
        const bool isMatch = told != 0 && op >= 0x10 && op != kEnd;
        return {isMatch ? told + 2 : 0, isFar ? (place | (op & 8) << 11) + 0x4000 : place + 1,
                low & 3, 2};
    }

    // Writes up to 15 bytes more than asked for; reads nothing that it has not written itself.
    static void copyWords(std::uint8_t* out, std::size_t length, std::size_t offset)
    {
        const std::uint8_t* from = out - offset;
        std::uint8_t* const end = out + length;
        if (offset >= 16)
            for (; out < end; out += 16, from += 16)
                std::memcpy(out, from, 16);
        else
            for (; out < end; out += 8, from += 8)
                std::memcpy(out, from, 8);
    }

    // A run of literals that is long, or near the end; its opcode was read.
    void finishRun(unsigned& op, const std::uint8_t* in, std::uint8_t* out)
    {
        m_in = in;
        m_out = out;
        m_failed = !copyLiterals(literalLength(op)) || m_failed;
        op = next();
    }

    // Steps as step() does them, while so much is left of input and output that whole words can be
    // copied. Ends before the first one that is long, near, or wrong.
    void quickSteps(unsigned& op)
    {
        const std::uint8_t* in = m_in; // kept out of memory, which every byte written might change
        std::uint8_t* out = m_out;
        while (m_inEnd - in >= kQuickInput && m_outEnd - out >= kQuickRoom) {
            const QuickMatch match = quickMatch(op, in);
            if (match.length == 0 || match.offset < 8 ||
                match.offset > static_cast<std::size_t>(out - m_begin))
                break;
            copyWords(out, match.length, match.offset);
            out += match.length;
            in += match.size;
            std::memcpy(out, in, 4); // three of them at most are meant
            out += match.literals;
            in += match.literals;
            op = *in++;
            if (match.literals != 0 || op >= 0x10)
                continue;
            const std::size_t count = op != 0 ? op + 3 : in[0] + std::size_t(18);
            const auto most = static_cast<std::ptrdiff_t>(count) + kQuickInput;
            if (op == 0 && (in[0] == 0 || m_inEnd - in < most || m_outEnd - out < most))
                return finishRun(op, in, out);
            in += op == 0;
            for (std::size_t at = 0; at < count; at += 16)
                std::memcpy(out + at, in + at, 16);
            out += count;
            in += count;
            op = *in++;
        }
        m_in = in;
        m_out = out;
    }

    // One match, the literals behind it, and the next opcode.
    bool step(unsigned& op)
    {
        std::size_t length, offset;
        unsigned literals;
        if (op >= 0x40) {
            length = (op >> 4) - 1;
            offset = ((op >> 2 & 3) | next() << 2) + 1;
            literals = op & 3;
        } else if (op >= 0x10) {
            const bool isFar = op < 0x20;
            const unsigned most = isFar ? 7 : 0x1F;
            const unsigned told = op & most;
            length = (told != 0 ? told : extended(most)) + 2;
            const unsigned low = next();
            offset = (low >> 2) | next() << 6;
            offset = isFar ? (offset | (op & 8) << 11) + 0x4000 : offset + 1;
            literals = low & 3;
        } else {
            return false;
        }
        if (m_failed || !copyMatch(length, offset))
            return false;
        if (literals != 0 && !copyLiterals(literals))
            return false;
        op = next();
        if (literals == 0 && op < 0x10) {
            if (!copyLiterals(literalLength(op)))
                return false;
            op = next();
        }
        return true;
    }

    const std::uint8_t* m_in;
    const std::uint8_t* m_inEnd;
    const std::uint8_t* m_begin;
    std::uint8_t* m_out;
    std::uint8_t* m_outEnd;
    bool m_failed = false;
};

// The number of literals behind a match stands in the match itself, so each match waits for the
// next.
class Packer
{
public:
    explicit Packer(Bytes plain) : m_plain(plain) { m_out.reserve(plain.size() / 2 + 64); }

    std::vector<std::uint8_t> run()
    {
        std::size_t at = kSmallestFirstRun;
        remember(0);
        while (at + 4 <= m_plain.size()) {
            const std::size_t from = candidate(at);
            const std::size_t length = from < at ? matchLength(from, at) : 0;
            if (length < 4) {
                // Ever longer steps through what does not repeat.
                at += 1 + ((at - m_literalsAt) >> 6);
                continue;
            }
            flush(at);
            m_length = length;
            m_offset = at - from;
            at += length;
            m_literalsAt = at;
            if (at + 4 <= m_plain.size())
                remember(at - 2);
        }
        flush(m_plain.size());
        m_out.insert(m_out.end(), {kEnd, 0, 0});
        return std::move(m_out);
    }

private:
    std::uint32_t wordAt(std::size_t at) const
    {
        std::uint32_t word;
        std::memcpy(&word, m_plain.data() + at, 4);
        return word;
    }
    std::uint32_t& slotOf(std::size_t at) { return m_last[(wordAt(at) * 2654435761u) >> 19]; }
    void remember(std::size_t at) { slotOf(at) = static_cast<std::uint32_t>(at + 1); }

    // Where the four bytes at @p at were seen last; @p at itself when nowhere near.
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
        const std::size_t most = m_plain.size() - at;
        std::size_t length = 4;
        while (length < most && m_plain[from + length] == m_plain[at + length])
            ++length;
        return length;
    }

    void putRun(unsigned op, std::size_t value, std::size_t most)
    {
        if (value <= most) {
            m_out.push_back(static_cast<std::uint8_t>(op | value));
            return;
        }
        m_out.push_back(static_cast<std::uint8_t>(op));
        putRest(value - most);
    }

    void putRest(std::size_t rest)
    {
        for (; rest > 0xFF; rest -= 0xFF)
            m_out.push_back(0);
        m_out.push_back(static_cast<std::uint8_t>(rest));
    }

    void putOffset(std::size_t offset, std::size_t literals)
    {
        m_out.push_back(static_cast<std::uint8_t>((offset & 0x3F) << 2 | literals));
        m_out.push_back(static_cast<std::uint8_t>(offset >> 6));
    }

    void putMatch(std::size_t literals)
    {
        if (m_offset <= kNear && m_length <= 14) {
            const std::size_t x = m_offset - 1;
            m_out.push_back(
                static_cast<std::uint8_t>((m_length + 1) << 4 | (x & 3) << 2 | literals));
            m_out.push_back(static_cast<std::uint8_t>(x >> 2));
        } else if (m_offset <= kMiddle) {
            putRun(0x20, m_length - 2, 31);
            putOffset(m_offset - 1, literals);
        } else {
            const std::size_t x = m_offset - kMiddle;
            putRun(static_cast<unsigned>(0x10 | (x >> 11 & 8)), m_length - 2, 7);
            putOffset(x & 0x3FFF, literals);
        }
    }

    // The waiting match, if any, and the literals up to @p end.
    void flush(std::size_t end)
    {
        const std::size_t count = end - m_literalsAt;
        const bool inMatch = m_length != 0 && count <= 3;
        if (m_length != 0)
            putMatch(inMatch ? count : 0);
        if (!inMatch) {
            if (count - 3 <= 15) {
                m_out.push_back(static_cast<std::uint8_t>(count - 3));
            } else {
                m_out.push_back(0);
                putRest(count - 18);
            }
        }
        m_out.insert(m_out.end(), m_plain.begin() + static_cast<std::ptrdiff_t>(m_literalsAt),
                     m_plain.begin() + static_cast<std::ptrdiff_t>(end));
    }

    Bytes m_plain;
    std::vector<std::uint8_t> m_out;
    std::array<std::uint32_t, 1 << 13> m_last{}; // position + 1 of the last word with this hash
    std::size_t m_literalsAt = 0;                // where literals that are not yet written begin
    std::size_t m_length = 0, m_offset = 0;      // of the waiting match; length 0 is none
};

} // namespace

bool unpack2004(Bytes packed, std::span<std::uint8_t> out)
{
    return Unpacker(packed, out).run();
}

std::vector<std::uint8_t> pack2004(Bytes plain)
{
    assert(plain.size() >= kSmallestFirstRun);
    return Packer(plain).run();
}

} // namespace dwg
