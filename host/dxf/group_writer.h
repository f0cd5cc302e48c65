#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include <db/record.h>

#include "text_coding.h"

namespace dxf {

/// Writes groups as lines of text: codes right-aligned in three places, reals in the shortest form
/// that reads back exactly, never through a locale.
class GroupWriter
{
public:
    /// @p lineEnd: "\n" or "\r\n".
    GroupWriter(const TextCoding& coding, std::string_view lineEnd)
        : m_coding(coding), m_lineEnd(lineEnd)
    {
    }

    void text(int code, std::u16string_view value);
    /// Text that is in the file's coding already.
    void raw(int code, std::string_view value);
    void integer(int code, std::int64_t value);
    void real(int code, double value);
    /// @p components numbers, their codes @p stride apart.
    void point(int code, const db::Point& value, int components = 3, int stride = 10);
    void handle(int code, std::uint64_t value);
    /// In lines of 127 bytes; no line for none.
    void hex(int code, std::span<const std::uint8_t> bytes);
    /// Whole groups as they stand in another file; their line ends become ours.
    void copy(std::string_view groups);

    std::string& out() { return m_out; }
    const std::string& out() const { return m_out; }
    const TextCoding& coding() const { return m_coding; }
    std::string_view lineEnd() const { return m_lineEnd; }

private:
    void code(int value);
    void end() { m_out += m_lineEnd; }

    const TextCoding& m_coding;
    std::string_view m_lineEnd;
    std::string m_out;
};

} // namespace dxf
