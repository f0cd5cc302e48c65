#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/file_ops.h"
#include "base/status.h"

namespace base {

/// One of the hidden files that stand beside a published file for a while.
struct HelperFile {
    enum class Kind {
        Payload,  ///< ".NAME.new.TOKEN": a version that wants to take the file's place.
        Pending,  ///< ".NAME.pend.TOKEN": the second name of a payload, kept past its rename.
        Revoked,  ///< ".NAME.rev.TOKEN": a payload that somebody else took out of the race.
        Published ///< ".NAME.done.NUMBER": one of the last versions; a higher number is newer.
    };
    Kind kind = Kind::Payload;
    std::string token;        ///< 32 hexadecimal digits; empty for Published.
    std::uint64_t number = 0; ///< Of Published only.
    std::string path;
};

/// Where a published file really lies, and what its helpers are called.
///
/// Links are followed to the file they end at, so that two names of one file share their helpers.
class PublishNames
{
public:
    /// The file at the end of @p path's links need not be there.
    static Result<PublishNames> resolve(FileOps& ops, const TvString& path);

    const TvString& given() const { return m_given; } ///< The path as the caller wrote it.
    const std::string& folder() const { return m_folder; }
    const std::string& target() const { return m_target; }
    /// What was there when the links were followed; nullopt for nothing.
    const std::optional<FileInfo>& found() const { return m_found; }
    /// ".NAME.lk": what the edit lock lies on.
    std::string sidecar() const;
    std::string helper(HelperFile::Kind kind, std::string_view token) const;
    std::string published(std::uint64_t number) const;
    /// "NAME (recovered TIME MARK).EXT", in sight of the user.
    std::string recovery(std::string_view time, std::string_view mark) const;
    /// nullopt when @p name, an entry of the folder, is none of ours.
    std::optional<HelperFile> helperFrom(const std::string& name) const;

private:
    PublishNames(TvString given, std::string target, std::optional<FileInfo> found);
    std::string inFolder(std::string_view name) const;

    TvString m_given;
    std::string m_target;
    std::string m_folder;
    std::string m_name; ///< Of the target, without the folder.
    std::optional<FileInfo> m_found;
};

/// The helpers that are there now, read afresh from the folder.
int listHelpers(FileOps& ops, const PublishNames& names, std::vector<HelperFile>& out);

/// The published versions among @p helpers, the newest first.
std::vector<HelperFile> newestFirst(const std::vector<HelperFile>& helpers);

} // namespace base
