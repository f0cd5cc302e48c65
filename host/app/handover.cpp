#include "app/handover.h"

#include <base/path_rules.h>

namespace app {

namespace {

constexpr std::string_view kProtocol = "tarvik-handover 1";
constexpr std::size_t kLengthBytes = 4;

std::size_t lengthIn(std::string_view bytes)
{
    std::size_t length = 0;
    for (std::size_t i = 0; i < kLengthBytes; ++i)
        length |= static_cast<std::size_t>(static_cast<unsigned char>(bytes[i])) << (8 * i);
    return length;
}

void addText(std::string& to, std::string_view text)
{
    to += text.substr(0, text.find('\0'));
    to += '\0';
}

} // namespace

std::string handoverBytes(const Handover& handover)
{
    std::string body;
    addText(body, kProtocol);
    addText(body, handover.activation);
    std::size_t count = 0;
    for (const TvString& file : handover.files) {
        const std::string bytes = base::nativePath(file);
        if (body.size() + bytes.size() + 1 > HandoverReader::kMostBytes ||
            ++count > HandoverReader::kMostFiles)
            break;
        addText(body, bytes);
    }
    std::string out;
    for (std::size_t i = 0; i < kLengthBytes; ++i)
        out += static_cast<char>(body.size() >> (8 * i) & 0xFF);
    return out + body;
}

HandoverReader::State HandoverReader::feed(std::string_view bytes)
{
    if (m_state != State::Reading)
        return m_state;
    m_bytes += bytes.substr(0, kMostBytes + kLengthBytes + 1 - m_bytes.size());
    if (m_bytes.size() < kLengthBytes)
        return m_state;
    const std::size_t length = lengthIn(m_bytes);
    if (length > kMostBytes || m_bytes.size() > length + kLengthBytes)
        return m_state = State::Refused;
    if (m_bytes.size() == length + kLengthBytes)
        m_state = parse();
    return m_state;
}

HandoverReader::State HandoverReader::parse()
{
    std::string_view rest = std::string_view(m_bytes).substr(kLengthBytes);
    std::vector<std::string_view> texts;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\0');
        if (end == std::string_view::npos || texts.size() > kMostFiles + 1)
            return State::Refused;
        texts.push_back(rest.substr(0, end));
        rest.remove_prefix(end + 1);
    }
    if (texts.size() < 2 || texts[0] != kProtocol)
        return State::Refused;
    m_handover.activation = texts[1];
    for (std::size_t i = 2; i < texts.size(); ++i)
        m_handover.files.push_back(base::pathFromNative(texts[i]));
    return State::Done;
}

} // namespace app
