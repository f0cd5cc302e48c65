#include "group_writer.h"

#include <charconv>
#include <cmath>

namespace dxf {

namespace {

constexpr std::size_t kBytesInLine = 127;
constexpr char kDigits[] = "0123456789ABCDEF";

} // namespace

void GroupWriter::code(int value)
{
    char digits[12];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    for (auto size = end - digits; size < 3; ++size)
        m_out += ' ';
    m_out.append(digits, end);
    this->end();
}

void GroupWriter::text(int c, std::u16string_view value)
{
    code(c);
    m_coding.encode(value, m_out);
    end();
}

void GroupWriter::raw(int c, std::string_view value)
{
    code(c);
    m_out += value;
    end();
}

void GroupWriter::integer(int c, std::int64_t value)
{
    char digits[24];
    code(c);
    m_out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    end();
}

// Records may hold what is no number, since their files may; a file of ours does not.
void GroupWriter::real(int c, double value)
{
    char digits[32];
    code(c);
    const double finite = std::isfinite(value) ? value : 0;
    const std::string_view made(digits, std::to_chars(digits, digits + sizeof digits, finite).ptr);
    m_out += made;
    if (made.find_first_of(".e") == made.npos)
        m_out += ".0";
    end();
}

void GroupWriter::point(int c, const db::Point& value, int components, int stride)
{
    const double parts[] = {value.x, value.y, value.z};
    for (int i = 0; i < components && i < 3; ++i)
        real(c + i * stride, parts[i]);
}

void GroupWriter::handle(int c, std::uint64_t value)
{
    char digits[20];
    code(c);
    for (char* at = digits;; ++at) {
        *at = kDigits[value & 0xF];
        value >>= 4;
        if (value != 0)
            continue;
        for (; at >= digits; --at)
            m_out += *at;
        break;
    }
    end();
}

void GroupWriter::hex(int c, std::span<const std::uint8_t> bytes)
{
    for (std::size_t at = 0; at < bytes.size(); at += kBytesInLine) {
        code(c);
        for (const std::uint8_t byte :
             bytes.subspan(at, std::min(kBytesInLine, bytes.size() - at))) {
            m_out += kDigits[byte >> 4];
            m_out += kDigits[byte & 0xF];
        }
        end();
    }
}

void GroupWriter::copy(std::string_view groups)
{
    while (!groups.empty()) {
        const auto stop = groups.find('\n');
        std::string_view line = groups.substr(0, stop);
        groups.remove_prefix(stop == groups.npos ? groups.size() : stop + 1);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        m_out += line;
        end();
    }
}

} // namespace dxf
