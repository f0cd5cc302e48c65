#include "publication.h"

#include <cerrno>
#include <ctime>

#include "payload.h"

namespace base {

namespace {

/// "2025-03-09 140507", in UTC: colleagues in other places read the same name.
std::string timeForName(std::int64_t utcNs)
{
    const std::time_t seconds = static_cast<std::time_t>(utcNs / 1'000'000'000);
    std::tm parts = {};
    ::gmtime_r(&seconds, &parts);
    char text[32] = {};
    return {text, std::strftime(text, sizeof text, "%Y-%m-%d %H%M%S", &parts)};
}

} // namespace

/// The bytes once more, with the rights of the file.
int Publication::writeRecovery(const std::string& path)
{
    std::string source;
    if (const int error = findMetadataSource(source))
        return error;
    return writeNewFile(m_ops, path, m_request.bytes, source);
}

/// A name in sight of the user for our version. The payload's second name is whole and flushed: one
/// more link is all it takes; where links are refused, or it has gone, the bytes are written once
/// more.
///
/// @return empty when even that fails.
std::string Publication::keepRecovery()
{
    constexpr std::size_t kMarkDigits = 4;
    const std::string time = timeForName(m_clock.utcNs());
    for (std::size_t at = 0; at + kMarkDigits <= m_token.size(); at += kMarkDigits) {
        const std::string path = m_names.recovery(time, m_token.substr(at, kMarkDigits));
        int error = m_ops.link(m_pending, path);
        if (isLinkRefused(error) || error == ENOENT)
            error = writeRecovery(path);
        if (!error) {
            m_ops.flush(m_folder.get()); // if this fails the file is there all the same
            return path;
        }
        if (error != EEXIST)
            break;
    }
    return {};
}

} // namespace base
