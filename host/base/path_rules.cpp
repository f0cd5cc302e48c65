#include "base/path_rules.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace base {

namespace {

using View = std::u16string_view;

/// What a path begins with, and how many units of it belong to that.
struct Root {
    enum class Kind {
        None,          ///< Relative.
        DriveRelative, ///< C:
        Slash,         ///< /
        Drive,         ///< C:\ (the separator is part of it)
        Share,         ///< \\host\share\ (or as much of it as there is)
        Device,        ///< \\.\  \\?\  \??\ and what follows
        Url,           ///< scheme: and //host, if it has one
    };
    Kind kind = Kind::None;
    std::size_t length = 0;
};

bool isAsciiLetter(char16_t unit)
{
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

bool isAsciiDigit(char16_t unit)
{
    return unit >= u'0' && unit <= u'9';
}

bool isSeparatorAt(View path, std::size_t at)
{
    return at < path.size() && PathRules::isSeparator(path[at]);
}

/// Position of the first separator at or after @p from, else the end.
std::size_t endOfName(View path, std::size_t from)
{
    while (from < path.size() && !PathRules::isSeparator(path[from]))
        ++from;
    return from;
}

/// Without the dot that the rules of schemes would allow: "plan.dwg:stream" is a name.
bool isSchemeUnit(char16_t unit)
{
    return isAsciiLetter(unit) || isAsciiDigit(unit) || unit == u'+' || unit == u'-';
}

/// Length of "scheme:", 0 when there is none.
std::size_t schemeLength(View path)
{
    if (path.empty() || !isAsciiLetter(path[0]))
        return 0;
    const auto end = std::find_if_not(path.begin(), path.end(), isSchemeUnit);
    const auto length = static_cast<std::size_t>(end - path.begin());
    return length >= 2 && end != path.end() && *end == u':' ? length + 1 : 0;
}

bool hasDrive(View path)
{
    return path.size() >= 2 && isAsciiLetter(path[0]) && path[1] == u':';
}

/// Whether \\ begins a host here: in the Posix flavour "//host" is an ordinary folder.
bool beginsShare(View path, PathFlavour flavour)
{
    return isSeparatorAt(path, 0) && isSeparatorAt(path, 1) &&
           (flavour == PathFlavour::Windows || path[0] == u'\\');
}

/// Length of "\\.\", "\\?\" or "\??\", the doors to the system's devices; 0 when there is none. The
/// last separator may be missing at the end.
std::size_t deviceLength(View path, PathFlavour flavour)
{
    if (path.size() < 3 || (path.size() > 3 && !isSeparatorAt(path, 3)))
        return 0;
    const std::size_t length = std::min<std::size_t>(path.size(), 4);
    if (beginsShare(path, flavour))
        return path[2] == u'.' || path[2] == u'?' ? length : 0;
    const bool isObjectPath = isSeparatorAt(path, 0) && path.substr(1, 2) == u"??";
    return flavour == PathFlavour::Windows && isObjectPath ? length : 0;
}

/// Length of "host\share\" behind @p from.
std::size_t endOfShare(View path, std::size_t from)
{
    const std::size_t host = endOfName(path, from);
    const std::size_t share = endOfName(path, std::min(host + 1, path.size()));
    return std::min(share + 1, path.size());
}

/// The end of "//host" behind a scheme.
std::size_t endOfAuthority(View path, std::size_t scheme)
{
    if (!isSeparatorAt(path, scheme) || !isSeparatorAt(path, scheme + 1))
        return scheme;
    const std::size_t end = path.find_first_of(u"/\\?#", scheme + 2);
    return end == View::npos ? path.size() : end;
}

Root rootOf(View path, PathFlavour flavour)
{
    if (const std::size_t length = deviceLength(path, flavour))
        return {Root::Kind::Device, length};
    if (beginsShare(path, flavour))
        return {Root::Kind::Share, endOfShare(path, 2)};
    if (isSeparatorAt(path, 0))
        return {Root::Kind::Slash, 1};
    if (const std::size_t length = schemeLength(path))
        return {Root::Kind::Url, endOfAuthority(path, length)};
    if (!hasDrive(path))
        return {};
    return isSeparatorAt(path, 2) ? Root{Root::Kind::Drive, 3} : Root{Root::Kind::DriveRelative, 2};
}

bool canClimbOut(Root root)
{
    return root.kind == Root::Kind::None || root.kind == Root::Kind::DriveRelative;
}

/// The names behind the root, without "." and "..", but for those that climb out of a relative
/// path.
std::vector<View> namesOf(View path, Root root)
{
    std::vector<View> names;
    for (std::size_t at = root.length; at < path.size();) {
        const std::size_t end = endOfName(path, at);
        const View name = path.substr(at, end - at);
        at = end + 1;
        if (name.empty() || name == u".")
            continue;
        if (name != u"..")
            names.push_back(name);
        else if (!names.empty() && names.back() != u"..")
            names.pop_back();
        else if (canClimbOut(root))
            names.push_back(name);
    }
    return names;
}

std::u16string joined(const std::vector<View>& names, std::size_t from, TvChar separator)
{
    std::u16string out;
    for (std::size_t i = from; i < names.size(); ++i) {
        if (i > from)
            out += separator;
        out += names[i];
    }
    return out;
}

/// The spelling of a root that normalise() writes.
std::u16string rootText(View path, Root root, TvChar separator)
{
    switch (root.kind) {
    case Root::Kind::Slash: return {separator};
    case Root::Kind::Drive: return std::u16string(path.substr(0, 2)) + separator;
    default: return std::u16string(path.substr(0, root.length));
    }
}

/// Keeps a "." where the first name alone would read as a drive, a scheme or a device: "./C:/a" is
/// a folder named "C:", and must stay one.
std::u16string guarded(std::u16string text, Root expected, PathFlavour flavour)
{
    if (rootOf(text, flavour).kind == expected.kind)
        return text;
    const TvChar separator = PathRules(flavour).separator();
    return text.insert(expected.length, std::u16string{u'.', separator});
}

/// Whether \\host\share\ is the same place in both.
bool isSameShare(View left, View right)
{
    const auto namesOfShare = [](View path) {
        const std::size_t host = endOfName(path, 2);
        const std::size_t start = std::min(host + 1, path.size());
        return std::pair(path.substr(2, host - 2),
                         path.substr(start, endOfName(path, start) - start));
    };
    const auto [host, share] = namesOfShare(left);
    const auto [otherHost, otherShare] = namesOfShare(right);
    return equalNoCase(host, otherHost) && equalNoCase(share, otherShare);
}

/// Whether two roots are one, so that a relative path leads from one to the other.
bool isSameRoot(View left, Root leftRoot, View right, Root rightRoot)
{
    if (leftRoot.kind != rightRoot.kind)
        return false;
    switch (leftRoot.kind) {
    case Root::Kind::Slash: return true;
    case Root::Kind::Drive: return equalNoCase(left.substr(0, 1), right.substr(0, 1));
    case Root::Kind::Share: return isSameShare(left, right);
    default: return false;
    }
}

std::size_t commonLength(const std::vector<View>& left, const std::vector<View>& right,
                         PathFlavour flavour)
{
    const auto isSameName = [flavour](View a, View b) {
        return flavour == PathFlavour::Windows ? equalNoCase(a, b) : a == b;
    };
    const auto differs =
        std::mismatch(left.begin(), left.end(), right.begin(), right.end(), isSameName);
    return static_cast<std::size_t>(differs.first - left.begin());
}

/// "user:word@host:445" -> "host"; "[::1]:80" -> "::1".
View hostOfAuthority(View authority)
{
    if (const std::size_t at = authority.rfind(u'@'); at != View::npos)
        authority.remove_prefix(at + 1);
    if (!authority.empty() && authority[0] == u'[')
        return authority.substr(1, std::min(authority.find(u']'), authority.size()) - 1);
    return authority.substr(0, authority.find(u':'));
}

/// The host behind "\\", or behind "\\?\UNC\".
View hostOfNetworkPath(View path, Root root)
{
    std::size_t at = 2;
    if (root.kind == Root::Kind::Device) {
        const std::size_t end = endOfName(path, root.length);
        if (!equalNoCase(path.substr(root.length, end - root.length), u"UNC"))
            return {};
        at = std::min(end + 1, path.size());
    }
    return path.substr(at, endOfName(path, at) - at);
}

/// Position of the dot that begins the extension; the end when there is none.
std::size_t extensionStart(View name)
{
    const std::size_t first = name.find_first_not_of(u'.'); // dots before it begin no extension
    const std::size_t dot = name.rfind(u'.');
    return dot == View::npos || dot < first ? name.size() : dot;
}

bool isControl(char16_t unit)
{
    return unit < 0x20 || (unit >= 0x7F && unit <= 0x9F);
}

/// Half a character: such a name cannot be written on every system.
bool hasLoneSurrogate(View text)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        if ((text[i] & 0xF800) != 0xD800)
            continue;
        const bool isPair =
            (text[i] & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
        if (!isPair)
            return true;
        ++i;
    }
    return false;
}

/// COM0..COM9 and LPT0..LPT9, and the superscript digits that count as digits there.
bool isPortName(View stem)
{
    const bool isPort = stem.size() == 4 && (equalNoCase(stem.substr(0, 3), u"COM") ||
                                             equalNoCase(stem.substr(0, 3), u"LPT"));
    return isPort &&
           (isAsciiDigit(stem[3]) || View(u"\u00B9\u00B2\u00B3").find(stem[3]) != View::npos);
}

/// A name that Windows takes for a device whatever stands behind its first dot.
bool isDeviceName(View name)
{
    View stem = name.substr(0, name.find(u'.'));
    stem = stem.substr(0, stem.find_last_not_of(u' ') + 1);
    constexpr View kDevices[] = {u"CON", u"PRN", u"AUX", u"NUL", u"CONIN$", u"CONOUT$", u"CLOCK$"};
    const auto isStem = [stem](View device) { return equalNoCase(stem, device); };
    return isPortName(stem) || std::any_of(std::begin(kDevices), std::end(kDevices), isStem);
}

} // namespace

const PathRules& PathRules::native()
{
#ifdef _WIN32
    static constexpr PathRules rules(PathFlavour::Windows);
#else
    static constexpr PathRules rules(PathFlavour::Posix);
#endif
    return rules;
}

bool PathRules::isAbsolute(View path) const
{
    switch (rootOf(path, m_flavour).kind) {
    case Root::Kind::Slash:
    case Root::Kind::Drive:
    case Root::Kind::Share:
    case Root::Kind::Device: return true;
    default: return false;
    }
}

bool PathRules::isDriveRelative(View path)
{
    return hasDrive(path) && !isSeparatorAt(path, 2);
}

bool PathRules::isNetwork(View path) const
{
    const Root::Kind kind = rootOf(path, m_flavour).kind;
    return kind == Root::Kind::Share || kind == Root::Kind::Device;
}

bool PathRules::isUrl(View path)
{
    return schemeLength(path) != 0;
}

TvString PathRules::hostOf(View path) const
{
    const Root root = rootOf(path, m_flavour);
    if (root.kind == Root::Kind::Share || root.kind == Root::Kind::Device)
        return hostOfNetworkPath(path, root);
    const std::size_t scheme = schemeLength(path);
    if (root.kind != Root::Kind::Url || root.length == scheme)
        return {};
    return hostOfAuthority(path.substr(scheme + 2, root.length - scheme - 2));
}

TvString PathRules::join(View folder, View name) const
{
    if (folder.empty() || isAbsolute(name) || isUrl(name) || isDriveRelative(name))
        return name;
    // "C:" and a name stay relative to the drive's current folder.
    const bool isBareDrive = folder.size() == 2 && isDriveRelative(folder);
    TvString out(folder);
    if (!name.empty() && !isSeparator(folder.back()) && !isBareDrive)
        out += separator();
    return out.append(name);
}

TvString PathRules::folderOf(View path) const
{
    const std::size_t last = path.find_last_of(u"/\\");
    if (last == View::npos)
        return {};
    const std::size_t root = rootOf(path, m_flavour).length;
    std::size_t end = last;
    while (end > root && isSeparator(path[end - 1]))
        --end; // a doubled separator
    return path.substr(0, std::max(end, root));
}

TvString PathRules::fileNameOf(View path) const
{
    const std::size_t last = path.find_last_of(u"/\\");
    return last == View::npos ? path : path.substr(last + 1);
}

TvString PathRules::stemOf(View path) const
{
    const TvString name = fileNameOf(path);
    return name.view().substr(0, extensionStart(name));
}

TvString PathRules::extensionOf(View path) const
{
    const TvString name = fileNameOf(path);
    return name.view().substr(extensionStart(name));
}

TvString PathRules::normalise(View path) const
{
    const Root root = rootOf(path, m_flavour);
    if (root.kind == Root::Kind::Share || root.kind == Root::Kind::Device ||
        root.kind == Root::Kind::Url)
        return path;
    std::u16string text = rootText(path, root, separator());
    text += joined(namesOf(path, root), 0, separator());
    return guarded(std::move(text), root, m_flavour);
}

TvString PathRules::relativeTo(View path, View baseFolder) const
{
    const Root root = rootOf(path, m_flavour);
    const Root baseRoot = rootOf(baseFolder, m_flavour);
    if (!isSameRoot(path, root, baseFolder, baseRoot))
        return {};
    const std::vector<View> names = namesOf(path, root);
    const std::vector<View> baseNames = namesOf(baseFolder, baseRoot);
    const std::size_t common = commonLength(names, baseNames, m_flavour);
    std::vector<View> steps(baseNames.size() - common, u"..");
    steps.insert(steps.end(), names.begin() + static_cast<std::ptrdiff_t>(common), names.end());
    return guarded(joined(steps, 0, separator()), {}, m_flavour);
}

bool PathRules::isSame(View left, View right) const
{
    return keyOf(left) == keyOf(right);
}

TvString PathRules::keyOf(View path) const
{
    return normalise(path).toLower();
}

bool PathRules::isValidNewName(View name)
{
    if (name.empty() || name.back() == u'.' || name.back() == u' ')
        return false;
    const auto isForbidden = [](char16_t unit) {
        return isControl(unit) || View(u"\\/:*?\"<>|").find(unit) != View::npos;
    };
    return std::none_of(name.begin(), name.end(), isForbidden) && !hasLoneSurrogate(name) &&
           !isDeviceName(name);
}

} // namespace base
