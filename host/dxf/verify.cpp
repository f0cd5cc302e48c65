#include "verify.h"

#include <cmath>

#include "dxf_file.h"
#include "file_writer.h"
#include "tags.h"

namespace dxf {

namespace {

base::Status differs(std::uint64_t handle)
{
    return {base::Failure::Damaged,
            base::Reason::DxfVerifyFailed,
            {TvString().format(u"%X", static_cast<std::int64_t>(handle))}};
}

bool sameValue(const Tag& a, const Tag& b)
{
    if (a.value == b.value)
        return true;
    if (valueKind(a.code) != ValueKind::Real)
        return false;
    const auto x = realIn(a.value), y = realIn(b.value);
    return x && y && std::fabs(*x - *y) <= 1e-12 * std::max(std::fabs(*x), std::fabs(*y));
}

} // namespace

bool sameGroups(std::string_view a, std::string_view b)
{
    TagScanner left(a), right(b);
    Tag x, y;
    for (;;) {
        const bool hasLeft = left.next(x), hasRight = right.next(y);
        if (!hasLeft || !hasRight)
            return hasLeft == hasRight;
        if (x.code != y.code || !sameValue(x, y))
            return false;
    }
}

base::Status verify(const std::vector<std::uint8_t>& bytes, const FileWriter& writer)
{
    const auto file = DxfFile::open(bytes);
    if (!file)
        return file.status();
    const DxfFile& back = **file;
    for (const std::uint64_t handle : writer.handles())
        if (!back.structure().find(handle))
            return differs(handle);
    const auto header = back.header();
    if (!header)
        return header.status();
    db::Record record;
    db::Contents contents;
    contents.origin = &back;
    contents.header = &*header;
    contents.handles = back.handles();
    contents.record = [&](std::uint64_t handle) -> base::Result<const db::Record*> {
        base::Status done = back.read(handle, record);
        if (!done)
            return done;
        return &record;
    };
    FileWriter again(contents, back.version());
    for (const FileWriter::Written& written : writer.written()) {
        const auto groups = again.groupsOf(written.handle);
        if (!groups)
            return groups.status();
        const std::string_view before =
            std::string_view(writer.text()).substr(written.begin, written.end - written.begin);
        if (!sameGroups(before, *groups))
            return differs(written.handle);
    }
    return {};
}

} // namespace dxf
