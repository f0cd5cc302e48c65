#include "publish_names.h"

#include <algorithm>
#include <charconv>

#include "base/path_rules.h"
#include "resolve_links.h"

namespace base {

namespace {

struct HelperRow {
    HelperFile::Kind kind;
    std::string_view mark;
};
constexpr HelperRow kHelpers[] = {
    {HelperFile::Kind::Payload, ".new."},
    {HelperFile::Kind::Pending, ".pend."},
    {HelperFile::Kind::Revoked, ".rev."},
    {HelperFile::Kind::Published, ".done."},
};
constexpr std::size_t kTokenDigits = 32;
constexpr std::size_t kMostNumberDigits =
    18; // a number that is read fits 64 bits, and so does the next

std::string_view markOf(HelperFile::Kind kind)
{
    for (const HelperRow& row : kHelpers) {
        if (row.kind == kind)
            return row.mark;
    }
    return {};
}

bool isToken(std::string_view text)
{
    return text.size() == kTokenDigits &&
           text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

bool parseNumber(std::string_view text, std::uint64_t& out)
{
    // One spelling a number: "007" and "7" would be two files of one version.
    if (text.empty() || text.size() > kMostNumberDigits || (text[0] == '0' && text.size() > 1))
        return false;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), out);
    return error == std::errc() && end == text.data() + text.size();
}

bool isFileName(std::string_view name)
{
    return !name.empty() && name != "." && name != "..";
}

} // namespace

PublishNames::PublishNames(TvString given, std::string target, std::optional<FileInfo> found)
    : m_given(std::move(given)), m_target(std::move(target)), m_folder(nativeFolderOf(m_target)),
      m_name(nativeNameOf(m_target)), m_found(found)
{
}

Result<PublishNames> PublishNames::resolve(FileOps& ops, const TvString& path)
{
    ResolvedName end;
    if (const int error = resolveLinks(ops, nativePath(path), end))
        return Status::fromSystem(error, path);
    if (!isFileName(nativeNameOf(end.path)))
        return Status(Failure::Usage, Reason::NotRegularFile, {path});
    return PublishNames(path, std::move(end.path), end.info);
}

std::string PublishNames::inFolder(std::string_view name) const
{
    return m_target.substr(0, m_target.size() - m_name.size()).append(name);
}

std::string PublishNames::sidecar() const
{
    return inFolder("." + m_name + ".lk");
}

std::string PublishNames::helper(HelperFile::Kind kind, std::string_view token) const
{
    return inFolder("." + m_name).append(markOf(kind)).append(token);
}

std::string PublishNames::published(std::uint64_t number) const
{
    return helper(HelperFile::Kind::Published, std::to_string(number));
}

std::string PublishNames::recovery(std::string_view time, std::string_view mark) const
{
    const std::size_t dot = m_name.rfind('.');
    const std::size_t stemEnd = dot == std::string::npos || dot == 0 ? m_name.size() : dot;
    return inFolder(m_name.substr(0, stemEnd))
        .append(" (recovered ")
        .append(time)
        .append(" ")
        .append(mark)
        .append(")")
        .append(m_name.substr(stemEnd));
}

std::optional<HelperFile> PublishNames::helperFrom(const std::string& name) const
{
    std::string_view rest = name;
    if (!rest.starts_with('.') || rest.substr(1, m_name.size()) != m_name)
        return std::nullopt;
    rest.remove_prefix(1 + m_name.size());
    for (const HelperRow& row : kHelpers) {
        if (!rest.starts_with(row.mark))
            continue;
        HelperFile found{row.kind, std::string(rest.substr(row.mark.size())), 0, inFolder(name)};
        if (row.kind != HelperFile::Kind::Published)
            return isToken(found.token) ? std::optional(found) : std::nullopt;
        const bool isNumber = parseNumber(found.token, found.number);
        found.token.clear();
        return isNumber ? std::optional(found) : std::nullopt;
    }
    return std::nullopt;
}

int listHelpers(FileOps& ops, const PublishNames& names, std::vector<HelperFile>& out)
{
    // Opened and closed first: a share then asks its server instead of its memory.
    FileOps::Descriptor folder = FileOps::kNone;
    if (const int error = ops.open(names.folder(), FileOps::OpenMode::Folder, folder))
        return error;
    ops.close(folder);

    std::vector<std::string> entries;
    if (const int error = ops.list(names.folder(), entries))
        return error;
    out.clear();
    for (const std::string& entry : entries) {
        if (auto helper = names.helperFrom(entry))
            out.push_back(std::move(*helper));
    }
    return 0;
}

std::vector<HelperFile> newestFirst(const std::vector<HelperFile>& helpers)
{
    std::vector<HelperFile> versions;
    for (const HelperFile& helper : helpers) {
        if (helper.kind == HelperFile::Kind::Published)
            versions.push_back(helper);
    }
    std::sort(versions.begin(), versions.end(),
              [](const HelperFile& a, const HelperFile& b) { return a.number > b.number; });
    return versions;
}

} // namespace base
