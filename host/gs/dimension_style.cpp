#include "dimension_style.h"

namespace gs {

namespace {

constexpr int kTextCode = 1000, kNumberCode = 1070;

} // namespace

DimensionStyle::DimensionStyle(const TvDbEntity& entity, TvDbObjectId style)
    : m_entity(entity), m_style(style, TvDb::kForNotify), m_own(entity.xData(TvString(u"ACAD")))
{
}

// "DSTYLE", then pairs in braces: the variable's group code, its value.
const resbuf* DimensionStyle::own(int code) const
{
    bool isInside = false;
    for (const resbuf* item = m_own.get(); item; item = item->rbnext) {
        if (item->restype == kTextCode)
            isInside = TvString(item->resval.rstring) == TvString(u"DSTYLE");
        else if (isInside && item->restype == kNumberCode && item->rbnext) {
            const resbuf* value = item->rbnext;
            if (item->resval.rint == code)
                return value;
            item = value;
        }
    }
    return nullptr;
}

double DimensionStyle::real(const char* field, int code) const
{
    if (const resbuf* value = own(code); value && value->restype == 1040)
        return value->resval.rreal;
    return m_style ? m_style->fields().real(field) : 0;
}

std::optional<std::int64_t> DimensionStyle::ownInteger(int code) const
{
    if (const resbuf* value = own(code); value && value->restype == kNumberCode)
        return value->resval.rint;
    return std::nullopt;
}

std::int64_t DimensionStyle::integer(const char* field, int code) const
{
    if (const auto value = ownInteger(code); value)
        return *value;
    return m_style ? m_style->fields().integer(field) : 0;
}

TvDbObjectId DimensionStyle::object(const char* field, int code) const
{
    if (const resbuf* value = own(code); value && value->restype == 1005)
        return m_entity.idOf(value->resval.rhandle);
    return m_style ? m_style->idOf(m_style->fields().handle(field)) : TvDbObjectId();
}

db::RecordView DimensionStyle::colorOfStyle(const char* field) const
{
    return m_style ? m_style->fields().structure(field) : db::RecordView();
}

db::Version DimensionStyle::version() const
{
    return m_style ? m_style->record().version() : db::Version::Ac1032;
}

} // namespace gs
