#pragma once

#include <filesystem>
#include <set>

#include <sys/stat.h>

#include <base/clock.h>
#include <base/faulty_file_ops.h>
#include <base/path_rules.h>
#include <base/publish.h>

#include "temp_folder.h"

inline std::span<const std::byte> bytesOf(std::string_view text)
{
    return std::as_bytes(std::span(text));
}

inline base::ContentHash hashOfText(std::string_view text)
{
    return base::hashOf(bytesOf(text));
}

/// The system's operations, but none waits for the disk: thousands of commits in a test need no
/// power cut to fear.
class UnflushedFileOps : public base::FaultyFileOps
{
public:
    UnflushedFileOps() : base::FaultyFileOps(base::systemFileOps()) {}
    int flush(Descriptor) override { return 0; }
};

/// What QuickFileOps stands on, made before it.
struct QuickFileOpsGround {
    UnflushedFileOps ground;
};

/// Operations that can fail, flushes among them, and that do not wait for the disk.
class QuickFileOps : private QuickFileOpsGround, public base::FaultyFileOps
{
public:
    QuickFileOps() : base::FaultyFileOps(static_cast<base::FileOps&>(ground)) {}
};

/// A folder with the file PLAN.dst, a clock that nobody waits for, and operations that can fail.
struct PublishScene {
    TempFolder folder;
    base::ManualClock clock;
    QuickFileOps ops;

    static constexpr char kName[] = "PLAN.dst";
    TvString path() const { return folder.file(kName); }
    std::string content() const { return folder.read(kName); }
    void put(const std::string& text) const { folder.write(kName, text); }
    bool isThere() const { return std::filesystem::exists(folder.path() / kName); }

    /// @param text  outlives the request.
    static base::PublishRequest request(std::string_view text, std::optional<std::string> from)
    {
        base::PublishRequest made;
        made.bytes = bytesOf(text);
        if (from)
            made.base = hashOfText(*from);
        return made;
    }
    /// Publishes @p text, made from @p from (nullopt: from nothing).
    base::Result<base::PublishOutcome>
    publish(std::string_view text, std::optional<std::string> from, bool haveSystemLock = false)
    {
        base::PublishRequest made = request(text, from);
        made.haveSystemLock = haveSystemLock;
        return base::publishVersion(ops, clock, path(), made);
    }

    std::set<std::string> names() const
    {
        std::set<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            found.insert(entry.path().filename().string());
        return found;
    }
    /// The names that hold @p part.
    std::set<std::string> namesWith(const std::string& part) const
    {
        std::set<std::string> found;
        for (const std::string& name : names()) {
            if (name.find(part) != std::string::npos)
                found.insert(name);
        }
        return found;
    }
    /// What a publish must not leave: payloads and their second names.
    std::set<std::string> leftovers() const
    {
        std::set<std::string> found;
        for (const char* mark : {".new.", ".pend.", ".rev."})
            found.merge(namesWith(mark));
        return found;
    }
    /// The content of the one recovery file; empty when there is not exactly one.
    std::string recovered() const
    {
        const auto found = namesWith("(recovered ");
        return found.size() == 1 ? folder.read(*found.begin()) : std::string();
    }
    unsigned modeOf(const std::string& name) const
    {
        struct stat found = {};
        ::lstat((folder.path() / name).c_str(), &found);
        return found.st_mode & 07777;
    }

    /// Number of the first operation of a kind on a name that ends like this; 0 for none. From the
    /// trace.
    int numberOf(base::FaultyFileOps::Kind kind, const std::string& end) const
    {
        int number = 0;
        for (const auto& call : ops.trace()) {
            ++number;
            const std::string& name = call.second.empty() ? call.path : call.second;
            if (call.kind == kind && name.ends_with(end))
                return number;
        }
        return 0;
    }
};
