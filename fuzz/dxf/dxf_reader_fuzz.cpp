// Any bytes as a drawing in text form: every answer is a value or a status, and what was written
// has every object again, in the drawing's own version and in another one.

#include <cstdlib>

#include <dxf/dxf_codec.h>

#include "group_mutator.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t most, unsigned seed)
{
    constexpr unsigned kBytesInsteadOfGroups = 4; // one time in so many
    if (seed % kBytesInsteadOfGroups == 0)
        return LLVMFuzzerMutate(data, size, most);
    return mutateGroups(data, size, most, seed);
}

namespace {

void readAll(const db::DrawingFile& file)
{
    db::Record record;
    for (const std::uint64_t handle : file.handles()) {
        (void)file.kind(handle);
        if (!file.read(handle, record))
            (void)file.readCommon(handle, record);
    }
    (void)file.summary();
    (void)file.preview();
    (void)file.classes();
    (void)file.check();
}

base::Result<std::vector<std::uint8_t>> written(const db::DrawingFile& file,
                                                const db::Record& header, db::Version version)
{
    db::Record record;
    db::Contents contents;
    contents.origin = &file;
    contents.header = &header;
    contents.handles = file.handles();
    contents.record = [&](std::uint64_t handle) -> base::Result<const db::Record*> {
        if (base::Status done = file.read(handle, record); !done)
            return done;
        return &record;
    };
    return dxf::DxfCodec().write(contents, version);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const dxf::DxfCodec codec;
    const auto file = codec.open({data, data + size});
    if (!file)
        return 0;
    readAll(**file);
    const auto header = (*file)->header();
    if (!header)
        return 0;
    for (const db::Version version :
         {(*file)->version(), db::Version::Ac1015, db::Version::Ac1032}) {
        auto bytes = written(**file, *header, version);
        if (!bytes)
            continue;
        const auto back = codec.open(std::move(*bytes));
        if (!back)
            std::abort();
        if (version != (*file)->version())
            continue;
        for (const std::uint64_t handle : (*file)->handles())
            if (!(*back)->kind(handle))
                std::abort();
    }
    return 0;
}
