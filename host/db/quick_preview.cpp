#include <base/file_ops.h>
#include <base/kv_file_system.h>
#include <base/path_rules.h>

#include "database_extras.h"

#include <db/tv_db_summary_info.h>

namespace {

constexpr std::size_t kHeadSize = 4096; // as codecs want to see it

/// A file that is read in pieces, open while this lives.
class OpenFile
{
public:
    explicit OpenFile(const TvString& path)
    {
        using base::FileOps;
        base::FileInfo info;
        if (m_ops.open(base::nativePath(path), FileOps::OpenMode::Read, m_file) != 0)
            m_file = FileOps::kNone;
        else if (m_ops.describe(m_file, info) == 0 && info.kind == base::FileInfo::Kind::Regular)
            m_size = info.stamp.size;
    }
    ~OpenFile()
    {
        if (m_file != base::FileOps::kNone)
            m_ops.close(m_file);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    std::vector<std::uint8_t> readAt(std::uint64_t offset, std::size_t count) const
    {
        if (offset >= m_size)
            return {};
        // Never more than there is, whatever the file says of itself.
        std::vector<std::uint8_t> bytes(std::min<std::uint64_t>(count, m_size - offset));
        std::size_t had = 0, got = 1;
        while (had < bytes.size() && got > 0) {
            const auto rest = std::as_writable_bytes(std::span(bytes).subspan(had));
            if (m_ops.read(m_file, offset + had, rest, got) != 0)
                got = 0;
            had += got;
        }
        bytes.resize(had);
        return bytes;
    }

private:
    base::FileOps& m_ops = db::databaseFiles();
    base::FileOps::Descriptor m_file = base::FileOps::kNone;
    std::uint64_t m_size = 0; // 0 for what is no file
};

} // namespace

db::Preview tvdbGetPreviewBitmapFromDwg(const TvString& path)
{
    if (!KvFileSystem::isTouchAllowed(path))
        return {};
    const OpenFile file(path);
    const std::vector<std::uint8_t> head = file.readAt(0, kHeadSize);
    const db::Codec* codec = db::codecFor(head);
    return codec ? codec->quickPreview([&file](std::uint64_t offset, std::size_t count) {
        return file.readAt(offset, count);
    })
                 : db::Preview();
}
