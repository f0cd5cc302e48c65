#include "base/tarvik_config.h"

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <span>
#include <utility>

#include "base/atomic_replace.h"
#include "base/clock.h"
#include "base/kv_file_system.h"
#include "base/path_rules.h"
#include "config_tree.h"

namespace {

constexpr std::uint64_t kMaxFileBytes = 16 << 20;
constexpr int kReplaceAttempts = 10; // against writers that take no turns, such as a text editor

TarvikConfig* g_config = nullptr; // not owned; whoever set it takes it away

TvString scopeFile(const TvString& folder, int scope, std::u16string_view pattern)
{
    return base::PathRules::native().join(folder, TvString().format(pattern, scope));
}

std::string_view textOf(std::span<const std::byte> bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// What one reading of a scope's file found.
struct Reading {
    base::ConfigTree tree;
    base::FileStamp stamp;
    std::optional<base::ContentHash> hash; // of what was read; none when there is no file
};

base::Result<Reading> readScope(const TvString& path)
{
    const auto content = base::readWhole(base::systemFileOps(), path, kMaxFileBytes);
    if (!content && content.status().failure() == base::Failure::NotFound)
        return Reading{};
    if (!content)
        return content.status();
    std::string problem;
    auto tree = base::ConfigTree::parse(textOf(content->bytes), problem);
    if (!tree)
        return base::Status(base::Failure::Damaged, base::Reason::ConfigDamaged,
                            {path, TvString(problem.c_str())});
    return Reading{std::move(*tree), content->stamp, base::hashOf(content->bytes)};
}

base::Status replaceScope(const TvString& path, const Reading& reading)
{
    const std::string text = reading.tree.text();
    base::ReplaceRequest request;
    request.bytes = std::as_bytes(std::span(text));
    request.expected = reading.hash;
    request.mustNotExist = !reading.hash;
    return base::replaceFile(base::systemFileOps(), path, request);
}

/// Turns between our own processes: while it lives, no other of them changes the scope.
///
/// Where it cannot be had (no lock service, a folder that nobody may write, a holder that hangs)
/// the comparison before each replace still keeps a change from being overwritten, but for the
/// moment between that comparison and the replace itself.
class WriteTurn
{
public:
    explicit WriteTurn(const TvString& path)
    {
        const std::string native = base::nativePath(path);
        if (m_ops.open(native, base::FileOps::OpenMode::CreateOrOpen, m_file) != 0)
            return;
        constexpr int kTries = 400;
        constexpr std::chrono::milliseconds kPause(5);
        for (int i = 0; i < kTries && m_ops.lockByte(m_file, 0) == EAGAIN; ++i)
            base::systemClock().sleep(kPause);
    }
    ~WriteTurn()
    {
        if (m_file != base::FileOps::kNone)
            m_ops.close(m_file); // the lock goes with it
    }
    WriteTurn(const WriteTurn&) = delete;
    WriteTurn& operator=(const WriteTurn&) = delete;

private:
    base::FileOps& m_ops = base::systemFileOps();
    base::FileOps::Descriptor m_file = base::FileOps::kNone;
};

} // namespace

/// One file, and the values of its last reading.
struct TarvikConfig::Scope {
    /// A file that was written within this time before we read it may change once more without a
    /// new stamp, as file times are that coarse on some disks.
    static constexpr std::int64_t kRestlessNs = 2'000'000'000;

    TvString file;
    TvString turnFile;
    std::string native;

    base::ConfigValues values;
    std::optional<base::FileStamp> stamp; // of the reading that gave the values; none: read again

    /// Makes the values those of the file as it is now; none when it cannot be read.
    void refresh()
    {
        base::FileInfo now;
        const bool isThere = base::systemFileOps().describeTarget(native, now) == 0;
        if (isThere && stamp == now.stamp)
            return;
        values.clear();
        stamp.reset();
        if (isThere)
            read(now.stamp);
    }

    template <class Change>
    bool change(const Change& apply)
    {
        const WriteTurn turn(turnFile);
        stamp.reset();
        for (int i = 0; i < kReplaceAttempts; ++i) {
            auto reading = readScope(file);
            if (!reading)
                return false;
            if (!apply(reading->tree))
                return true;
            const base::Failure failure = replaceScope(file, *reading).failure();
            if (failure != base::Failure::Conflict && failure != base::Failure::Exists)
                return failure == base::Failure::None;
        }
        return false;
    }

private:
    void read(const base::FileStamp& seen)
    {
        const std::int64_t nowNs = base::systemClock().utcNs();
        const auto reading = readScope(file);
        if (reading)
            values = reading->tree.values();
        const base::FileStamp& read = reading ? reading->stamp : seen;
        if (nowNs - read.modifiedNs > kRestlessNs)
            stamp = read;
    }
};

TarvikConfig::TarvikConfig(TvString folder) : m_folder(std::move(folder)) {}

TarvikConfig::~TarvikConfig() = default;

TarvikConfig::Scope* TarvikConfig::scopeFor(int scope)
{
    if (scope < 0 || m_folder.isEmpty())
        return nullptr;
    std::unique_ptr<Scope>& found = m_scopes[scope];
    if (!found) {
        found = std::make_unique<Scope>();
        found->file = scopeFile(m_folder, scope, u"scope%d.json");
        found->turnFile = scopeFile(m_folder, scope, u".scope%d.lk");
        found->native = base::nativePath(found->file);
    }
    return found.get();
}

bool TarvikConfig::getValue(int scope, const TvString& key, TarvikConfigValue& out)
{
    Scope* file = scopeFor(scope);
    const base::ConfigKey parts(key);
    if (!file || !parts.isValid())
        return false;
    file->refresh();
    const auto found = file->values.find(parts.folded());
    if (found == file->values.end())
        return false;
    out = found->second;
    return true;
}

bool TarvikConfig::setValue(int scope, const TvString& key, const TarvikConfigValue& value)
{
    Scope* file = scopeFor(scope);
    const base::ConfigKey parts(key);
    if (!file || !parts.isValid() || value.type() == TarvikConfigValue::kNone)
        return false;
    if (!KvFileSystem::createDirectory(m_folder))
        return false;
    return file->change([&](base::ConfigTree& tree) { return tree.set(parts, value); });
}

bool TarvikConfig::removeItem(int scope, const TvString& key)
{
    Scope* file = scopeFor(scope);
    const base::ConfigKey parts(key);
    if (!file || !parts.isValid())
        return false;
    bool removed = false;
    const bool written =
        file->change([&](base::ConfigTree& tree) { return removed = tree.remove(parts); });
    return written && removed;
}

TarvikConfig* tarvConfig()
{
    return g_config;
}

void tarvSetConfig(TarvikConfig* config)
{
    g_config = config;
}

namespace base {

Status checkConfig(const TvString& folder, int scope)
{
    const auto reading = readScope(scopeFile(folder, scope, u"scope%d.json"));
    return reading ? Status() : reading.status();
}

} // namespace base
