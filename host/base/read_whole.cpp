#include "base/atomic_replace.h"

#include "file_guard.h"

#include <algorithm>

#include "base/path_rules.h"

namespace base {

namespace {

constexpr std::uint64_t kChunk = 1 << 20;

/// Reads one file to its end, however much of it there is in the end.
class WholeReader
{
public:
    WholeReader(FileOps& ops, const TvString& path, std::uint64_t limit)
        : m_ops(ops), m_path(path), m_limit(limit), m_file(ops)
    {
    }

    Result<FileContent> run()
    {
        if (Status opened = open(); !opened)
            return opened;
        bool atEnd = false;
        while (!atEnd) {
            if (Status step = readChunk(atEnd); !step)
                return step;
        }
        return std::move(m_content);
    }

private:
    Status fromSystem(int error) const { return Status::fromSystem(error, m_path); }
    Status notRegular() const { return {Failure::Unsupported, Reason::NotRegularFile, {m_path}}; }

    Status open()
    {
        if (const int error = m_file.open(nativePath(m_path), FileOps::OpenMode::Read))
            return fromSystem(error);
        FileInfo info;
        if (const int error = m_ops.describe(m_file.get(), info))
            return fromSystem(error);
        if (info.kind != FileInfo::Kind::Regular)
            return notRegular();
        m_content.stamp = info.stamp;
        return acceptSize(info.stamp.size);
    }

    Status acceptSize(std::uint64_t size)
    {
        if (size > m_limit)
            return {Failure::TooLarge, Reason::FileTooLarge, {m_path}};
        m_size = size;
        m_content.bytes.reserve(size + kReadPadding);
        return {};
    }

    Status readChunk(bool& atEnd)
    {
        std::vector<std::byte>& bytes = m_content.bytes;
        const std::size_t had = bytes.size();
        // One byte more than it should have: so the end shows itself.
        bytes.resize(had + std::min(kChunk, m_size - had + 1));
        std::size_t got = 0;
        const int error = m_ops.read(m_file.get(), had, std::span(bytes).subspan(had), got);
        bytes.resize(had + (error ? 0 : got));
        if (error)
            return fromSystem(error);
        atEnd = got == 0;
        return bytes.size() > m_size ? acceptGrowth() : Status();
    }

    /// More came than was announced: the file has grown, or it is none that has a size at all.
    Status acceptGrowth()
    {
        FileInfo info;
        if (const int error = m_ops.describe(m_file.get(), info))
            return fromSystem(error);
        return info.stamp.size < m_content.bytes.size() ? notRegular()
                                                        : acceptSize(info.stamp.size);
    }

    FileOps& m_ops; // not owned
    const TvString& m_path;
    const std::uint64_t m_limit;
    FileGuard m_file;
    std::uint64_t m_size = 0; ///< What the system said last; bytes never exceed it.
    FileContent m_content;
};

} // namespace

Result<FileContent> readWhole(FileOps& ops, const TvString& path, std::uint64_t limit)
{
    return WholeReader(ops, path, limit).run();
}

} // namespace base
