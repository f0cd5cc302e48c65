#include "item_chain.h"

#include <db/program.h>

namespace db {

namespace {

constexpr std::size_t kLongestText = 0xFFFF;
constexpr std::int32_t kLongestBytes = 0xFF;
constexpr std::size_t kEscapeBytes = 7;

std::u16string_view textOf(const resbuf& item)
{
    return item.resval.rstring ? item.resval.rstring : u"";
}

} // namespace

bool fitsItemText(std::u16string_view text, Version version, std::size_t limit)
{
    if (hasWideText(version))
        return text.size() <= limit;
    std::size_t bytes = 0;
    for (const char16_t unit : text)
        bytes += unit < 0x80 ? 1 : kEscapeBytes;
    return bytes <= limit;
}

void itemToChain(const RecordView& item, ItemKind kind, resbuf& out)
{
    switch (kind) {
    case ItemKind::Text: return tvutSetText(out, item.text("text"));
    case ItemKind::Point: {
        const Point point = item.point("point");
        out.resval.rpoint[0] = point.x;
        out.resval.rpoint[1] = point.y;
        out.resval.rpoint[2] = point.z;
        return;
    }
    case ItemKind::Real: out.resval.rreal = item.point("point").x; return;
    case ItemKind::Short:
    case ItemKind::Byte:
        out.resval.rint = static_cast<std::int16_t>(item.integer("integer"));
        return;
    case ItemKind::Long:
        out.resval.rlong = static_cast<std::int32_t>(item.integer("integer"));
        return;
    case ItemKind::Wide: out.resval.mnInt64 = item.integer("integer"); return;
    case ItemKind::Handle: out.resval.rhandle = item.handle("handle"); return;
    case ItemKind::Binary: return tvutSetBytes(out, item.bytes("bytes"));
    case ItemKind::Brace: return tvutSetText(out, item.integer("integer") == 0 ? u"{" : u"}");
    }
}

bool canBeItem(const resbuf& in, ItemKind kind, Version version)
{
    switch (kind) {
    case ItemKind::Text: return fitsItemText(textOf(in), version, kLongestText);
    case ItemKind::Byte: return in.resval.rint >= 0 && in.resval.rint <= 0xFF;
    case ItemKind::Binary:
        return in.resval.rbinary.clen >= 0 && in.resval.rbinary.clen <= kLongestBytes &&
               (in.resval.rbinary.buf || in.resval.rbinary.clen == 0);
    case ItemKind::Brace: return textOf(in) == u"{" || textOf(in) == u"}";
    case ItemKind::Handle: return in.resval.rhandle <= kTargetMask;
    default: return true;
    }
}

void itemFromChain(const resbuf& in, ItemKind kind, RecordEditor item)
{
    item.setInteger("code", in.restype);
    switch (kind) {
    case ItemKind::Text: item.setText("text", textOf(in)); return;
    case ItemKind::Point:
        item.setPoint("point", {in.resval.rpoint[0], in.resval.rpoint[1], in.resval.rpoint[2]});
        return;
    case ItemKind::Real: item.setPoint("point", {in.resval.rreal, 0, 0}); return;
    case ItemKind::Short:
    case ItemKind::Byte: item.setInteger("integer", in.resval.rint); return;
    case ItemKind::Long: item.setInteger("integer", in.resval.rlong); return;
    case ItemKind::Wide: item.setInteger("integer", in.resval.mnInt64); return;
    case ItemKind::Handle: item.setHandle("handle", in.resval.rhandle); return;
    case ItemKind::Binary:
        item.setBytes("bytes",
                      {in.resval.rbinary.buf, static_cast<std::size_t>(in.resval.rbinary.clen)});
        return;
    case ItemKind::Brace: item.setInteger("integer", textOf(in) == u"{" ? 0 : 1); return;
    }
}

} // namespace db
