#include "spool.h"

#include <cerrno>
#include <cstring>

#include <unistd.h>

#include <base/path_rules.h>

namespace plot {

namespace {

constexpr std::size_t kMostInMemory = std::size_t(256) << 10;

} // namespace

Spool::~Spool()
{
    if (m_file != base::FileOps::kNone)
        base::systemFileOps().close(m_file);
}

base::Status Spool::open()
{
    base::FileOps& ops = base::systemFileOps();
    const std::string folder = base::nativePath(m_folder.isEmpty() ? TvString(u".") : m_folder);
    int error = EEXIST;
    for (int i = 0; error == EEXIST && i < 1000; ++i) {
        const std::string name =
            folder + "/.plot-" + std::to_string(getpid()) + "-" + std::to_string(i) + ".tmp";
        error = ops.open(name, base::FileOps::OpenMode::CreateExclusive, m_file);
        if (error == 0)
            ops.remove(name); // nobody needs its name, and nothing is left when we end
    }
    return error == 0 ? base::Status() : base::Status::fromSystem(error, m_folder);
}

base::Status Spool::write(std::string_view bytes, std::uint64_t offset)
{
    while (!bytes.empty()) {
        std::size_t written = 0;
        const int error = base::systemFileOps().write(
            m_file, offset, std::as_bytes(std::span(bytes.data(), bytes.size())), written);
        if (error != 0 || written == 0)
            return base::Status::fromSystem(error != 0 ? error : EIO, m_folder);
        bytes.remove_prefix(written);
        offset += written;
    }
    return {};
}

base::Status Spool::add(std::string_view bytes)
{
    if (m_hasFailed)
        return base::Status::fromSystem(EIO, m_folder);
    if (m_file == base::FileOps::kNone && m_memory.size() + bytes.size() <= kMostInMemory) {
        m_memory += bytes;
        m_size = m_memory.size();
        return {};
    }
    base::Status status;
    if (m_file == base::FileOps::kNone) {
        status = open();
        if (status)
            status = write(m_memory, 0);
        std::string().swap(m_memory);
    }
    if (status)
        status = write(bytes, m_size);
    m_hasFailed = !status;
    m_size += bytes.size();
    return status;
}

bool Spool::read(std::uint64_t offset, std::span<std::byte> bytes) const
{
    if (m_hasFailed || offset > m_size || bytes.size() > m_size - offset)
        return false;
    if (m_file == base::FileOps::kNone) {
        std::memcpy(bytes.data(), m_memory.data() + offset, bytes.size());
        return true;
    }
    while (!bytes.empty()) {
        std::size_t got = 0;
        if (base::systemFileOps().read(m_file, offset, bytes, got) != 0 || got == 0)
            return false;
        bytes = bytes.subspan(got);
        offset += got;
    }
    return true;
}

} // namespace plot
