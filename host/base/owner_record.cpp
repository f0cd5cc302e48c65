#include "owner_record.h"

// The record of an edit lock's owner: lines "key=value" in UTF-8, padded with NUL to 512 bytes.
//
//  1. A record that is written fits: each value is cut, at a character, to what its row allows.
//  2. A value is one line: control characters and the backslash travel escaped.
//  3. What is read is anybody's: only the first 512 bytes are looked at, a number out of range is
//     "unknown" (0), an unknown key is passed over, the first of two equal keys counts.

#include <cassert>
#include <charconv>

namespace base {

namespace {

constexpr int kRecordVersion = 1;
constexpr std::size_t kTokenDigits = 32;
constexpr std::int64_t kMostPid = 0xFFFFFFFF; // a process id has at most 32 bits on any system
constexpr char kHexDigits[] = "0123456789abcdef";

struct TextRow {
    std::string_view key;
    TvString LockOwner::*member;
    std::size_t room; ///< Bytes of the escaped value.
};
// clang-format off
constexpr TextRow kTexts[] = {
    {"user",    &LockOwner::user,      64},
    {"host",    &LockOwner::host,      64},
    {"machine", &LockOwner::machineId, 36},
    {"boot",    &LockOwner::bootId,    36},
    {"program", &LockOwner::program,   48},
    {"purpose", &LockOwner::purpose,   80},
};
// clang-format on

struct NumberRow {
    std::string_view key;
    std::int64_t LockOwner::*member;
    std::int64_t most;
};
constexpr NumberRow kNumbers[] = {
    {"pid", &LockOwner::pid, kMostPid},
    {"since", &LockOwner::sinceNs, INT64_MAX},
};

constexpr std::size_t longestRecord()
{
    std::size_t bytes = sizeof "version=1\ntoken=\n" - 1 + kTokenDigits;
    for (const TextRow& row : kTexts)
        bytes += row.key.size() + 2 + row.room; // "=" and the line's end
    for (const NumberRow& row : kNumbers)
        bytes += row.key.size() + 2 + 19; // digits of 2^63 - 1
    return bytes;
}
static_assert(longestRecord() < kOwnerRecordSize, "invariant 1, with a NUL behind it");

bool isControl(unsigned char byte)
{
    return byte < 0x20 || byte == 0x7F;
}

std::string escapedByte(char byte)
{
    const auto value = static_cast<unsigned char>(byte);
    if (byte == '\\')
        return "\\\\";
    if (isControl(value))
        return {'\\', 'x', kHexDigits[value >> 4], kHexDigits[value & 15]};
    return {byte};
}

/// The bytes of the character that begins @p text, which is well-formed UTF-8.
std::size_t characterLength(std::string_view text)
{
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
        ++length;
    return length;
}

std::string escaped(const TvString& value, std::size_t room)
{
    std::string out;
    const std::string utf8 = value.utf8();
    for (std::string_view rest = utf8; !rest.empty();) {
        const std::size_t length = characterLength(rest);
        const std::string piece =
            length == 1 ? escapedByte(rest[0]) : std::string(rest.substr(0, length));
        if (out.size() + piece.size() > room)
            break;
        out += piece;
        rest.remove_prefix(length);
    }
    return out;
}

/// The value of "HH", two hexadecimal digits; -1 for anything else.
int hexPair(std::string_view text)
{
    unsigned value = 0;
    if (text.size() < 2)
        return -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + 2, value, 16);
    return error == std::errc() && end == text.data() + 2 ? static_cast<int>(value) : -1;
}

TvString unescaped(std::string_view text)
{
    std::string out;
    while (!text.empty()) {
        const int byte = text.starts_with("\\x") ? hexPair(text.substr(2)) : -1;
        const std::size_t length = byte >= 0 ? 4 : text.starts_with("\\\\") ? 2 : 1;
        out += byte >= 0 ? static_cast<char>(byte) : text[0];
        text.remove_prefix(length);
    }
    return TvString(std::string_view(out));
}

std::int64_t numberFrom(std::string_view text, std::int64_t most)
{
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    return isNumber && value >= 0 && value <= most ? value : 0;
}

bool isToken(std::string_view text)
{
    return text.size() == kTokenDigits &&
           text.find_first_not_of(kHexDigits) == std::string_view::npos;
}

/// Takes lines off a record; the last one, without an end, is torn and does not count.
class Lines
{
public:
    explicit Lines(std::string_view bytes) : m_rest(bytes.substr(0, kOwnerRecordSize))
    {
        m_rest = m_rest.substr(0, m_rest.find('\0'));
    }
    bool next(std::string_view& key, std::string_view& value)
    {
        const std::size_t end = m_rest.find('\n');
        if (end == std::string_view::npos)
            return false;
        const std::string_view line = m_rest.substr(0, end);
        m_rest.remove_prefix(end + 1);
        const std::size_t equals = line.find('=');
        key = line.substr(0, equals);
        value = equals == std::string_view::npos ? std::string_view() : line.substr(equals + 1);
        return true;
    }

private:
    std::string_view m_rest;
};

void readLine(std::string_view key, std::string_view value, LockOwner& owner)
{
    if (key == "token" && owner.token.empty())
        owner.token = value;
    for (const TextRow& row : kTexts) {
        if (key == row.key && (owner.*row.member).isEmpty())
            owner.*row.member = unescaped(value);
    }
    for (const NumberRow& row : kNumbers) {
        if (key == row.key && owner.*row.member == 0)
            owner.*row.member = numberFrom(value, row.most);
    }
}

} // namespace

std::string ownerRecordText(const LockOwner& owner)
{
    assert(isToken(owner.token));
    std::string text =
        "version=" + std::to_string(kRecordVersion) + "\ntoken=" + owner.token + "\n";
    for (const TextRow& row : kTexts)
        text.append(row.key).append("=").append(escaped(owner.*row.member, row.room)).append("\n");
    for (const NumberRow& row : kNumbers) {
        const std::int64_t value = std::clamp<std::int64_t>(owner.*row.member, 0, row.most);
        text.append(row.key).append("=").append(std::to_string(value)).append("\n");
    }
    assert(text.size() < kOwnerRecordSize); // invariant 1
    text.resize(kOwnerRecordSize, '\0');
    return text;
}

std::optional<LockOwner> parseOwnerRecord(std::string_view bytes)
{
    LockOwner owner;
    Lines lines(bytes);
    std::string_view key, value;
    // A later version may add keys; that it is a record at all is what the first line and the token
    // say.
    if (!lines.next(key, value) || key != "version" || numberFrom(value, INT32_MAX) == 0)
        return std::nullopt;
    while (lines.next(key, value))
        readLine(key, value, owner);
    return isToken(owner.token) ? std::optional(owner) : std::nullopt;
}

} // namespace base
