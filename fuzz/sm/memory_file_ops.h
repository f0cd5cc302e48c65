#pragma once

#include <cerrno>
#include <cstring>
#include <map>
#include <memory>

#include <base/file_ops.h>

/// One folder of files in memory, quick enough for a fuzzer: "/m/NAME".
class MemoryFileOps : public base::FileOps
{
public:
    static constexpr char kFolder[] = "/m";

    void put(const std::string& path, std::span<const std::byte> bytes)
    {
        auto node = std::make_shared<Node>();
        node->bytes.assign(bytes.begin(), bytes.end());
        node->inode = ++m_lastInode;
        m_names[path] = node;
    }
    std::vector<std::byte> content(const std::string& path) const
    {
        const auto at = m_names.find(path);
        return at == m_names.end() ? std::vector<std::byte>() : at->second->bytes;
    }
    void clear() { m_names.clear(); }

    int open(const std::string& path, OpenMode mode, Descriptor& out) override
    {
        std::shared_ptr<Node> node;
        if (!isFolder(path)) {
            const auto at = m_names.find(path);
            const bool creates = mode == OpenMode::CreateExclusive ||
                                 mode == OpenMode::CreateOrdinary || mode == OpenMode::CreateOrOpen;
            if (at != m_names.end() && creates && mode != OpenMode::CreateOrOpen)
                return EEXIST;
            if (at == m_names.end() && !creates)
                return ENOENT;
            if (at == m_names.end())
                put(path, {});
            node = m_names[path];
        }
        out = m_nextDescriptor++;
        m_open[out] = node;
        return 0;
    }
    int close(Descriptor file) override { return m_open.erase(file) ? 0 : EBADF; }
    int read(Descriptor file, std::uint64_t offset, std::span<std::byte> buffer,
             std::size_t& out) override
    {
        Node* node = nodeOf(file);
        if (!node)
            return EBADF;
        const std::size_t from = std::min<std::size_t>(offset, node->bytes.size());
        out = std::min(buffer.size(), node->bytes.size() - from);
        std::copy_n(node->bytes.begin() + static_cast<std::ptrdiff_t>(from), out, buffer.begin());
        return 0;
    }
    int write(Descriptor file, std::uint64_t offset, std::span<const std::byte> bytes,
              std::size_t& out) override
    {
        Node* node = nodeOf(file);
        if (!node)
            return EBADF;
        node->bytes.resize(std::max<std::size_t>(node->bytes.size(), offset + bytes.size()));
        std::copy(bytes.begin(), bytes.end(),
                  node->bytes.begin() + static_cast<std::ptrdiff_t>(offset));
        out = bytes.size();
        return 0;
    }
    int truncate(Descriptor file, std::uint64_t size) override
    {
        if (Node* node = nodeOf(file))
            return node->bytes.resize(size), 0;
        return EBADF;
    }
    int flush(Descriptor) override { return 0; }
    int describe(Descriptor file, base::FileInfo& out) override
    {
        out = infoOf(nodeOf(file));
        return 0;
    }
    int describeName(const std::string& path, base::FileInfo& out) override
    {
        const auto at = m_names.find(path);
        if (at == m_names.end() && !isFolder(path))
            return ENOENT;
        out = infoOf(at == m_names.end() ? nullptr : at->second.get());
        return 0;
    }
    int describeTarget(const std::string& path, base::FileInfo& out) override
    {
        return describeName(path, out);
    }
    int copyMetadata(const std::string&, Descriptor, bool& ownershipKept) override
    {
        ownershipKept = true;
        return 0;
    }
    int rename(const std::string& from, const std::string& to) override
    {
        const auto at = m_names.find(from);
        if (at == m_names.end())
            return ENOENT;
        const std::shared_ptr<Node> node = at->second;
        m_names.erase(at);
        m_names[to] = node;
        return 0;
    }
    int renameNew(const std::string& from, const std::string& to) override
    {
        return m_names.count(to) ? EEXIST : rename(from, to);
    }
    int link(const std::string& from, const std::string& to) override
    {
        if (!m_names.count(from))
            return ENOENT;
        return m_names.emplace(to, m_names[from]).second ? 0 : EEXIST;
    }
    int remove(const std::string& path) override { return m_names.erase(path) ? 0 : ENOENT; }
    int makeFolder(const std::string&) override { return EROFS; }
    int list(const std::string&, std::vector<std::string>& out) override
    {
        out.clear();
        for (const auto& [path, node] : m_names)
            out.push_back(path.substr(std::strlen(kFolder) + 1));
        return 0;
    }
    int readLink(const std::string&, std::string&) override { return EINVAL; }
    int lockByte(Descriptor, std::uint64_t) override { return 0; }
    int unlockByte(Descriptor, std::uint64_t) override { return 0; }
    int isByteLocked(Descriptor, std::uint64_t, bool& out) override
    {
        out = false;
        return 0;
    }

private:
    struct Node {
        std::vector<std::byte> bytes;
        std::uint64_t inode = 0;
    };
    static bool isFolder(const std::string& path) { return path == kFolder || path == "/"; }
    Node* nodeOf(Descriptor file) const
    {
        const auto at = m_open.find(file);
        return at == m_open.end() ? nullptr : at->second.get();
    }
    static base::FileInfo infoOf(const Node* node)
    {
        base::FileInfo info;
        info.kind = node ? base::FileInfo::Kind::Regular : base::FileInfo::Kind::Folder;
        info.mode = node ? 0644 : 0755;
        info.stamp = {1, node ? node->inode : 1, node ? node->bytes.size() : 0, 1};
        return info;
    }

    std::map<std::string, std::shared_ptr<Node>> m_names;
    std::map<Descriptor, std::shared_ptr<Node>> m_open;
    std::uint64_t m_lastInode = 1;
    Descriptor m_nextDescriptor = 1000;
};
