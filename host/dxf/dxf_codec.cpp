#include "dxf/dxf_codec.h"

#include <algorithm>

#include "binary_form.h"
#include "dxf_file.h"
#include "file_writer.h"
#include "tags.h"
#include "verify.h"

namespace dxf {

// A section, behind comments; the first line of many files may be cut off at the end of the head.
bool DxfCodec::recognises(std::span<const std::uint8_t> head) const
{
    if (isBinaryForm(head))
        return true;
    std::string_view text(reinterpret_cast<const char*>(head.data()), head.size());
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    TagScanner scanner(text);
    Tag tag;
    bool hasComment = false;
    while (scanner.next(tag) && tag.code == 999)
        hasComment = true;
    const bool isSection = tag.code == 0 && trimmed(tag.value) == "SECTION";
    const bool endsInComments = hasComment && scanner.at() == text.data() + text.size();
    return isSection || endsInComments;
}

base::Result<std::unique_ptr<db::DrawingFile>> DxfCodec::open(std::vector<std::uint8_t> file) const
{
    auto opened = DxfFile::open(std::move(file));
    if (!opened)
        return opened.status();
    return std::unique_ptr<db::DrawingFile>(std::move(*opened));
}

base::Result<std::vector<std::uint8_t>> DxfCodec::write(const db::Contents& contents,
                                                        db::Version version) const
{
    FileWriter writer(contents, version);
    if (base::Status done = writer.write(); !done)
        return done;
    std::vector<std::uint8_t> bytes(writer.text().begin(), writer.text().end());
    if (base::Status done = verify(bytes, writer); !done)
        return done;
    return bytes;
}

void install()
{
    static const DxfCodec codec;
    db::installCodec(codec);
}

} // namespace dxf
