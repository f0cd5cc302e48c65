#include "binary_form.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>

#include "group_writer.h"
#include "tags.h"

namespace dxf {

namespace {

// The magic is text, but for these: a line, an end of text, a zero.
constexpr std::size_t kMagicSize = 22;
constexpr std::uint8_t kMagicEnd[] = {0x0D, 0x0A, 0x1A, 0x00};

class BinaryReader
{
public:
    explicit BinaryReader(std::span<const std::uint8_t> bytes)
        : m_bytes(bytes), m_coding(db::Version::Ac1032, 0), m_out(m_coding, "\n")
    {
    }

    bool read()
    {
        m_at = kMagicSize;
        while (m_isGood && m_at < m_bytes.size())
            readGroup();
        return m_isGood;
    }
    const std::string& text() const { return m_out.out(); }

private:
    template <class T>
    T take()
    {
        T value{};
        if (m_bytes.size() - m_at < sizeof value) {
            m_isGood = false;
            return value;
        }
        std::memcpy(&value, m_bytes.data() + m_at, sizeof value);
        m_at += sizeof value;
        return value;
    }

    std::string_view takeText()
    {
        const auto* const begin = m_bytes.data() + m_at;
        const auto* const end = m_bytes.data() + m_bytes.size();
        const auto* const stop = std::find(begin, end, 0);
        m_isGood = m_isGood && stop != end;
        m_at += static_cast<std::size_t>(stop - begin) + (stop == end ? 0 : 1);
        return {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(stop - begin)};
    }

    void readGroup()
    {
        const int code = take<std::uint16_t>();
        switch (valueKind(code)) {
        case ValueKind::Real: {
            const auto value = take<double>();
            return m_out.real(code, value);
        }
        case ValueKind::Integer: return readInteger(code);
        case ValueKind::Bytes: {
            const std::size_t size = take<std::uint8_t>();
            if (size > m_bytes.size() - m_at)
                m_isGood = false;
            else
                m_out.hex(code, m_bytes.subspan(m_at, size));
            m_at += m_isGood ? size : 0;
            return;
        }
        default: return readText(code);
        }
    }

    // A line's end within a text would end its group.
    void readText(int code)
    {
        const std::string_view value = takeText();
        m_isGood = m_isGood && value.find_first_of("\r\n") == value.npos;
        m_out.raw(code, value);
    }

    void readInteger(int code)
    {
        if (code >= 290 && code < 300)
            return m_out.integer(code, take<std::uint8_t>());
        if (code >= 160 && code < 170)
            return m_out.integer(code, take<std::int64_t>());
        const bool isLong =
            (code >= 90 && code < 100) || (code >= 420 && code < 460) || code == 1071;
        m_out.integer(code, isLong ? take<std::int32_t>() : take<std::int16_t>());
    }

    std::span<const std::uint8_t> m_bytes;
    TextCoding m_coding;
    GroupWriter m_out;
    std::size_t m_at = 0;
    bool m_isGood = true;
};

} // namespace

bool isBinaryForm(std::span<const std::uint8_t> file)
{
    return file.size() > kMagicSize && std::equal(std::begin(kMagicEnd), std::end(kMagicEnd),
                                                  file.begin() + kMagicSize - sizeof kMagicEnd);
}

base::Result<std::vector<std::uint8_t>> textFromBinary(std::span<const std::uint8_t> file)
{
    BinaryReader reader(file);
    if (!reader.read())
        return base::Status(base::Failure::Damaged, base::Reason::DxfTruncated);
    return std::vector<std::uint8_t>(reader.text().begin(), reader.text().end());
}

} // namespace dxf
