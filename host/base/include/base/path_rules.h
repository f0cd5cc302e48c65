#pragma once

#include <string>
#include <string_view>

#include <base/tv_string.h>

namespace base {

enum class PathFlavour { Posix, Windows };

/// All rules about the text of a path; none of them touches the disk.
///
/// In both flavours both slashes separate when a path is *read*: sets and drawings travel between
/// systems. What is written uses the flavour's own separator. In the Posix flavour a leading slash
/// is absolute, and so is a drive path ("C:\plans\a.dwg"): it is absolute elsewhere, and cannot be
/// found here. Names are compared without regard to case; whether two spellings that both exist are
/// two files is a question for the disk (KvFileSystem::isSameFile).
class PathRules
{
public:
    explicit constexpr PathRules(PathFlavour flavour) : m_flavour(flavour) {}
    /// The rules of the system that this program runs on.
    static const PathRules& native();

    PathFlavour flavour() const { return m_flavour; }
    TvChar separator() const { return m_flavour == PathFlavour::Windows ? u'\\' : u'/'; }
    static bool isSeparator(TvChar unit) { return unit == u'/' || unit == u'\\'; }

    bool isAbsolute(std::u16string_view path) const;
    /// "C:name": relative to the current folder of a drive. Never resolved.
    static bool isDriveRelative(std::u16string_view path);
    /// \\host\share\..., //host/... in the Windows flavour and with backslashes in the Posix
    /// flavour, and the \\?\UNC\ form. Device paths (\\.\pipe\x, \\?\C:\x) count too: nothing of
    /// the kind is touched unasked.
    bool isNetwork(std::u16string_view path) const;
    /// scheme:... with a scheme of two letters or more (so no drive letter).
    static bool isUrl(std::u16string_view path);
    /// The host of a network path or URL; empty when there is none.
    TvString hostOf(std::u16string_view path) const;

    /// @p name below @p folder; @p name itself when it is absolute, a URL or drive-relative; either
    /// may be empty.
    TvString join(std::u16string_view folder, std::u16string_view name) const;
    /// All before the last separator, without it (a root keeps its own); empty when there is none.
    TvString folderOf(std::u16string_view path) const;
    /// All behind the last separator.
    TvString fileNameOf(std::u16string_view path) const;
    /// The file name without its last extension; a leading dot begins no extension.
    TvString stemOf(std::u16string_view path) const;
    /// The last extension with its dot, as spelled; empty when there is none.
    TvString extensionOf(std::u16string_view path) const;
    /// Own separators, no "." and no "..", no doubled or trailing separator; ".." never climbs over
    /// a root. A relative path that climbs out keeps its leading "..". Network paths and URLs stay
    /// as given.
    TvString normalise(std::u16string_view path) const;
    /// @p path as seen from @p baseFolder, with "..": both absolute, same root; else empty.
    TvString relativeTo(std::u16string_view path, std::u16string_view baseFolder) const;
    /// Equal after normalise(), without regard to case.
    bool isSame(std::u16string_view left, std::u16string_view right) const;
    /// A key for tables of paths: equal exactly for paths that isSame() holds for.
    TvString keyOf(std::u16string_view path) const;

    /// Whether one name (no separators) may be given to a file that we create: not empty, no
    /// control character, none of \ / : * ? " < > |, no trailing dot or blank, no device name of
    /// Windows (CON, NUL.dwg, COM1...). The same on every system: what is made here must open
    /// there.
    static bool isValidNewName(std::u16string_view name);
    /// The limit for paths that we create, in UTF-16 units. There is none for what we read.
    static constexpr int kMaxNewPath = 260;

private:
    PathFlavour m_flavour;
};

/// The system's own bytes for a path: UTF-8 on Linux. Bytes of a name that are no UTF-8 travel as
/// lone surrogates U+DC80..U+DCFF, so that every file on disk can be named and found again.
std::string nativePath(const TvString& path);
TvString pathFromNative(std::string_view native);

} // namespace base
