#include "ed/script.h"

#include <algorithm>
#include <string_view>

#include <langinfo.h>

#include <base/kv_file_system.h>

#include "ed/command_line.h"

namespace ed {

namespace {

constexpr std::int64_t kLongestScript = 16 << 20;
constexpr TvChar kComment = u';';

TvString fromUtf16(std::string_view bytes, bool isBigEndian)
{
    std::u16string text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i + (isBigEndian ? 1 : 0)]);
        const auto high = static_cast<unsigned char>(bytes[i + (isBigEndian ? 0 : 1)]);
        text += static_cast<TvChar>(high << 8 | low);
    }
    return text;
}

/// One unit a byte, as ISO 8859-1 has it: what a system that does not speak UTF-8 writes here.
TvString fromLatin(std::string_view bytes)
{
    std::u16string text;
    for (const char byte : bytes)
        text += static_cast<TvChar>(static_cast<unsigned char>(byte));
    return text;
}

TvString decoded(std::string_view bytes)
{
    constexpr std::string_view kUtf8 = "\xEF\xBB\xBF", kLittle = "\xFF\xFE", kBig = "\xFE\xFF";
    if (bytes.starts_with(kUtf8))
        return TvString(bytes.substr(kUtf8.size()));
    if (bytes.starts_with(kLittle) || bytes.starts_with(kBig))
        return fromUtf16(bytes.substr(kLittle.size()), bytes.starts_with(kBig));
    const bool isUtf8 =
        base::isWellFormedUtf8(bytes) || std::string_view(::nl_langinfo(CODESET)) == "UTF-8";
    return isUtf8 ? TvString(bytes) : fromLatin(bytes);
}

} // namespace

TvString scriptText(std::span<const std::byte> bytes)
{
    const TvString all = decoded({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    std::u16string_view rest = all;
    std::u16string text;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find_first_of(u"\r\n"), rest.size());
        const std::u16string_view line = rest.substr(0, end);
        const bool isPair = rest.substr(end).starts_with(u"\r\n");
        rest.remove_prefix(std::min(end + (isPair ? 2 : 1), rest.size()));
        if (!line.starts_with(kComment))
            text.append(line) += u'\n';
    }
    return text;
}

base::Status runScript(const TvString& path)
{
    CommandLine* line = commandLine();
    if (!line || line->isScripting())
        return {base::Failure::Usage, base::Reason::None, {path}};
    const base::Result<std::vector<std::byte>> bytes = KvFileSystem::readFile(path, kLongestScript);
    if (!bytes)
        return bytes.status();
    line->startScript(scriptText(*bytes));
    line->work();
    return {};
}

} // namespace ed
