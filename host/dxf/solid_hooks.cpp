// Bodies: the lines of their text, which is coded in the same way in files and records.

#include "hook_lists.h"
#include "object_writer.h"

namespace dxf {

namespace {

constexpr std::int64_t kTextVersion = 1;
constexpr char kLineEnd = '\n';
constexpr char16_t kLastInAscii = 0x7E;

// ---- one block with a line end behind every line, however it was cut in another record

bool readSolid(ObjectReader& reader, const Tag& tag)
{
    if (tag.code == 70)
        return true;
    std::string& text = reader.scratch().raw;
    if (tag.code == 1 && !text.empty())
        text += kLineEnd;
    for (const char16_t unit : reader.text(tag)) {
        if (unit > kLastInAscii)
            reader.refuse();
        text += static_cast<char>(unit);
    }
    return true;
}

void finishSolid(ObjectReader& reader)
{
    std::string& text = reader.scratch().raw;
    if (text.empty())
        return;
    text += kLineEnd;
    db::RecordEditor solid = reader.root();
    solid.setFlag("empty", false);
    solid.setInteger("version", kTextVersion);
    db::ArrayEditor blocks = solid.array("sat");
    blocks.resize(1);
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    if (!blocks[0].setBytes("data", {bytes, text.size()}))
        reader.refuse();
    text.clear();
}

// Long lines go on under another code.
void writeLine(ObjectWriter& writer, std::u16string_view line)
{
    constexpr std::size_t kPiece = 250;
    writer.text(1, line.substr(0, kPiece));
    for (std::size_t at = kPiece; at < line.size(); at += kPiece)
        writer.text(3, line.substr(at, kPiece));
}

void writeSolid(ObjectWriter& writer)
{
    const db::RecordView solid = writer.root();
    writer.integer(70, kTextVersion);
    if (solid.flag("empty"))
        return;
    if (solid.integer("version") != kTextVersion)
        return writer.refuse(); // a body in bits
    const db::ArrayView blocks = solid.array("sat");
    std::u16string line;
    for (std::uint32_t i = 0; i < blocks.size(); ++i)
        for (const std::uint8_t byte : blocks[i].bytes("data")) {
            if (byte > kLastInAscii)
                return writer.refuse();
            if (byte != kLineEnd) {
                line += static_cast<char16_t>(byte);
                continue;
            }
            writeLine(writer, line);
            line.clear();
        }
    if (!line.empty())
        writeLine(writer, line);
}

constexpr Hook kHooks[] = {
    {"solid", readSolid, writeSolid, finishSolid},
};

} // namespace

std::span<const Hook> solidHooks()
{
    return kHooks;
}

} // namespace dxf
