#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <base/file_ops.h>
#include <base/status.h>

namespace plot {

/// Bytes that are put aside one after the other and read again: in memory while they are few, then
/// in a file without a name in @p folder.
class Spool
{
public:
    /// @param folder  where the file is made; the one of what comes out in the end.
    explicit Spool(TvString folder) : m_folder(std::move(folder)) {}
    ~Spool();
    Spool(const Spool&) = delete;
    Spool& operator=(const Spool&) = delete;

    /// Puts @p bytes behind the others. On failure the spool takes nothing any more.
    base::Status add(std::string_view bytes);
    std::uint64_t size() const { return m_size; }
    /// Reads so many bytes from @p offset on; false when they are not there.
    bool read(std::uint64_t offset, std::span<std::byte> bytes) const;

private:
    base::Status open();
    base::Status write(std::string_view bytes, std::uint64_t offset);

    TvString m_folder;
    std::string m_memory;
    std::uint64_t m_size = 0;
    base::FileOps::Descriptor m_file = base::FileOps::kNone;
    bool m_hasFailed = false;
};

} // namespace plot
