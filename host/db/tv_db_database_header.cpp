#include <db/record_editor.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_symbol_table.h>

#include "database_impl.h"

namespace {

TvDbDate dateOf(const db::Record& header, const char* name)
{
    const auto [day, milliseconds] = header.date(name);
    return {day, milliseconds};
}

} // namespace

const db::Record& TvDbDatabase::headerRecord() const
{
    return m_impl->header();
}

db::RecordEditor TvDbDatabase::editHeader()
{
    m_impl->aboutToChangeHeader();
    return db::RecordEditor(m_impl->header());
}

bool TvDbDatabase::tilemode() const
{
    return headerRecord().flag("TILEMODE");
}

TvStatusCode TvDbDatabase::setTilemode(bool on)
{
    if (tilemode() == on)
        return TvStatus::Ok;
    editHeader().setFlag("TILEMODE", on);
    for (TvDbDatabaseReactor* reactor : m_impl->reactors())
        reactor->headerSysVarChanged(this, TvString(u"TILEMODE"));
    return TvStatus::Ok;
}

TvDbDate TvDbDatabase::tdcreate() const
{
    return dateOf(headerRecord(), "TDCREATE");
}

TvDbDate TvDbDatabase::tdupdate() const
{
    return dateOf(headerRecord(), "TDUPDATE");
}

TvDbDate TvDbDatabase::tdindwg() const
{
    return dateOf(headerRecord(), "TDINDWG");
}

TvDbObjectId TvDbDatabase::clayer() const
{
    return find(headerRecord().handle("CLAYER"));
}

TvDbObjectId TvDbDatabase::textstyle() const
{
    return find(headerRecord().handle("TEXTSTYLE"));
}

std::int64_t TvDbDatabase::insunits() const
{
    return headerRecord().integer("INSUNITS");
}

db::Point TvDbDatabase::extmin() const
{
    return headerRecord().point("EXTMIN");
}

db::Point TvDbDatabase::extmax() const
{
    return headerRecord().point("EXTMAX");
}

TvDbObjectId TvDbDatabase::namedObjectsDictionaryId() const
{
    return find(headerRecord().handle("DNAMEDOBJ"));
}

TvStatusCode TvDbDatabase::getNamedObjectsDictionary(TvDbDictionary*& out, TvDb::OpenMode mode)
{
    return tvdbOpenObject(out, namedObjectsDictionaryId(), mode);
}

namespace {

/// The dictionary of that name in the named objects dictionary; the header names some of them too,
/// but what stands there is often stale.
TvDbObjectId namedDictionary(const TvDbDatabase& database, const TvChar* name, const char* variable)
{
    const TvDbObjectPointer<TvDbDictionary> named(database.namedObjectsDictionaryId(),
                                                  TvDb::kForNotify);
    TvDbObjectId id;
    if (named && named->getAt(TvString(name), id) == TvStatus::Ok)
        return id;
    id = variable ? database.find(database.headerRecord().handle(variable)) : TvDbObjectId();
    return id.isValid() ? id : TvDbObjectId();
}

} // namespace

TvDbObjectId TvDbDatabase::layoutDictionaryId() const
{
    return namedDictionary(*this, u"ACAD_LAYOUT", "DLAYOUT");
}

TvStatusCode TvDbDatabase::getLayoutDictionary(TvDbDictionary*& out, TvDb::OpenMode mode)
{
    return tvdbOpenObject(out, layoutDictionaryId(), mode);
}

TvDbObjectId TvDbDatabase::tableStyleDictionaryId() const
{
    return namedDictionary(*this, u"ACAD_TABLESTYLE", nullptr);
}

TvStatusCode TvDbDatabase::getTableStyleDictionary(TvDbDictionary*& out, TvDb::OpenMode mode)
{
    return tvdbOpenObject(out, tableStyleDictionaryId(), mode);
}

TvDbObjectId TvDbDatabase::plotSettingsDictionaryId() const
{
    return namedDictionary(*this, u"ACAD_PLOTSETTINGS", "DPLOTSETTINGS");
}

TvDbObjectId TvDbDatabase::groupDictionaryId() const
{
    return namedDictionary(*this, u"ACAD_GROUP", "DGROUP");
}

TvDbObjectId TvDbDatabase::scaleListDictionaryId() const
{
    return namedDictionary(*this, u"ACAD_SCALELIST", nullptr);
}

TvDbObjectId TvDbDatabase::symbolTableId(TvDb::SymbolTable table) const
{
    static constexpr const char* kVariables[] = {"BLOCKCTL", "LAYERCTL", "STYLECTL",
                                                 "LTYPECTL", "VIEWCTL",  "UCSCTL",
                                                 "VPORTCTL", "APPIDCTL", "DIMSTYLECTL"};
    return find(headerRecord().handle(kVariables[static_cast<std::size_t>(table)]));
}

TvDbObjectId TvDbDatabase::modelSpaceId() const
{
    return find(headerRecord().handle("BRMSPACE"));
}

TvDbObjectId TvDbDatabase::paperSpaceId() const
{
    return find(headerRecord().handle("BRPSPACE"));
}

TvDbObjectId TvDbDatabase::currentSpaceId() const
{
    return tilemode() ? modelSpaceId() : paperSpaceId();
}

TvDbObjectId TvDbHeaderVar::paperSpace() const
{
    return m_database.paperSpaceId();
}

TvStatusCode TvDbHeaderVar::setpaperSpace(TvDbObjectId block)
{
    if (block.database() != &m_database)
        return TvStatus::InvalidInput;
    if (block == m_database.paperSpaceId())
        return TvStatus::Ok;
    // Table, header and the entities that note where they stand must agree: the table sees to that.
    const TvDbObjectId table = m_database.symbolTableId(TvDb::SymbolTable::Block);
    const TvDbObjectPointer<TvDbBlockTable> ours(table, TvDb::kForWrite);
    if (ours.openStatus() != TvStatus::WasOpenForWrite)
        return ours ? ours->setPaperSpaceId(block) : ours.openStatus();
    const TvDbObjectPointer<TvDbBlockTable> callers(table, TvDb::kForNotify);
    return callers ? callers->setPaperSpaceId(block) : callers.openStatus();
}
