#include <db/tv_db_symbol_table.h>

#include "block_names.h"
#include "quiet_edit.h"
#include "thumbnails.h"
#include "viewport_lists.h"
#include "xref_paths.h"

#include <db/tv_db_block_begin.h>
#include <db/tv_db_block_reference.h>

TVRX_DEFINE_MEMBERS(TvDbBlockTableRecord, TvDbSymbolTableRecord)

namespace {

bool isExternal(const db::RecordView& block)
{
    return block.flag("is_xref") || block.flag("xref_overlaid");
}

} // namespace

namespace db {

bool canStandInBlock(const ClassDef* of)
{
    if (!of || !of->isEntity())
        return false;
    const std::string_view name = of->name();
    return name != "BLOCK" && name != "ENDBLK" && name != "SEQEND" && name != "ATTRIB" &&
           !name.starts_with("VERTEX_");
}

} // namespace db

// Names

TvString TvDbBlockTableRecord::getName() const
{
    const TvString stored = TvDbSymbolTableRecord::getName();
    if (!db::isNumberedBlockName(stored.view()))
        return stored;
    const TvDbObjectPointer<TvDbBlockBegin> begin(blockBeginId(), TvDb::kForNotify);
    const TvString full = begin ? begin->name() : TvString();
    return db::isNumberedFrom(full.view(), stored.view()) ? full : stored;
}

TvStatusCode TvDbBlockTableRecord::setName(const TvString& name)
{
    if (!objectId() || !isWriteEnabled())
        return TvDbSymbolTableRecord::setName(name);
    if (name == getName())
        return TvStatus::Ok; // also the name of a space
    if (name.startsWith(u"*") || isLayout())
        return TvStatus::InvalidName;
    if (!db::isChangeable(blockBeginId()))
        return TvStatus::NotUnderstood;
    if (const TvStatusCode status = TvDbSymbolTableRecord::setName(name))
        return status;
    edit().setFlag("anonymous", false);
    db::QuietEdit(blockBeginId())->setText("name", name.view());
    return TvStatus::Ok;
}

void TvDbBlockTableRecord::subAppended()
{
    const TvString wanted = TvDbSymbolTableRecord::getName();
    const TvString full = db::freeBlockName(*this, wanted);
    const std::u16string stored = db::storedBlockName(full.view());
    edit().setText("name", stored);
    if (stored.front() == u'*' && !db::isSpaceName(stored))
        edit().setFlag("anonymous", true);
    TvDbObjectId id;
    const auto add = [&](TvDbEntity* entity, const char* field) {
        entity->setLayer(db::layerZero(*database()));
        database()->addTvDbObject(id, entity, objectId());
        entity->close();
        edit().setHandle(field, id.handle().value());
    };
    auto* begin = new TvDbBlockBegin;
    begin->edit().setText("name", full.view());
    add(begin, "block_entity");
    add(new TvDbBlockEnd, "endblk_entity");
}

// Entities

std::vector<TvDbObjectId> TvDbBlockTableRecord::entityIds() const
{
    std::vector<TvDbObjectId> ids;
    const db::ArrayView owned = fields().array("owned");
    ids.reserve(owned.size());
    for (std::uint32_t i = 0; i < owned.size(); ++i)
        if (const TvDbObjectId id = idOf(owned.handle(i)); id.isValid())
            ids.push_back(id);
    return ids;
}

TvStatusCode TvDbBlockTableRecord::newIterator(TvDbBlockTableRecordIterator*& out) const
{
    out = new TvDbBlockTableRecordIterator;
    out->m_ids = entityIds();
    return TvStatus::Ok;
}

TvStatusCode TvDbBlockTableRecordIterator::getEntity(TvDbEntity*& out, TvDb::OpenMode mode) const
{
    return tvdbOpenObject(out, getEntityId(), mode);
}

TvStatusCode TvDbBlockTableRecord::appendTvDbEntity(TvDbObjectId& out, TvDbEntity* entity)
{
    out.setNull();
    if (!entity)
        return TvStatus::InvalidInput;
    if (!database())
        return TvStatus::NotInDatabase;
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    if (entity->objectId())
        return TvStatus::AlreadyInDatabase;
    if (isExternal(fields()) || !db::canStandInBlock(entity->record().classDef()))
        return TvStatus::NotApplicable;
    db::RecordEditor block = edit();
    if (!block)
        return TvStatus::NotUnderstood;
    if (entity->fields().handle("layer") == 0)
        entity->setLayer(database()->clayer().isValid() ? database()->clayer()
                                                        : db::layerZero(*database()));
    if (const TvStatusCode status = database()->addTvDbObject(out, entity, objectId()))
        return status;
    db::placeInBlock(entity->edit(), objectId());
    db::ArrayEditor owned = block.array("owned");
    owned.setHandle(owned.add(), out.handle().value());
    if (entity->record().classDef()->name() == "ATTDEF")
        block.setFlag("has_attdefs", true);
    if (const auto* reference = tvrxCast<TvDbBlockReference>(entity))
        db::listReference(reference->blockTableRecord(), out);
    if (db::isViewport(out))
        db::listNewViewport(objectId(), out);
    return TvStatus::Ok;
}

TvStatusCode TvDbBlockTableRecord::appendTvDbEntity(TvDbEntity* entity)
{
    TvDbObjectId id;
    return appendTvDbEntity(id, entity);
}

TvDbObjectId TvDbBlockTableRecord::blockBeginId() const
{
    return idField("block_entity");
}

TvDbObjectId TvDbBlockTableRecord::blockEndId() const
{
    return idField("endblk_entity");
}

std::vector<TvDbObjectId> TvDbBlockTableRecord::getBlockReferenceIds() const
{
    std::vector<TvDbObjectId> ids;
    const db::ArrayView inserts = fields().array("inserts");
    for (std::uint32_t i = 0; i < inserts.size(); ++i) {
        // The list of a drawing may be stale: what stands there need not be a reference of this.
        const TvDbObjectPointer<TvDbBlockReference> reference(idOf(inserts.handle(i)),
                                                              TvDb::kForNotify);
        if (reference && reference->blockTableRecord() == objectId())
            ids.push_back(reference->objectId());
    }
    return ids;
}

// Properties

TvDbObjectId TvDbBlockTableRecord::getLayoutId() const
{
    const TvDbObjectId id = idField("layout");
    return id.isValid() ? id : TvDbObjectId();
}

TvStatusCode TvDbBlockTableRecord::setLayoutId(TvDbObjectId layout)
{
    return setIdField("layout", layout);
}

bool TvDbBlockTableRecord::isAnonymous() const
{
    return fields().flag("anonymous");
}

bool TvDbBlockTableRecord::isFromExternalReference() const
{
    return isExternal(fields());
}

bool TvDbBlockTableRecord::isFromOverlayReference() const
{
    return fields().flag("xref_overlaid");
}

bool TvDbBlockTableRecord::isUnloaded() const
{
    return isFromExternalReference() && fields().flag("xref_unloaded");
}

TvDb::XrefStatus TvDbBlockTableRecord::xrefStatus() const
{
    if (!isFromExternalReference())
        return TvDb::kXrfNotAnXref;
    if (isUnloaded())
        return TvDb::kXrfUnloaded;
    const TvString host = database() ? database()->getFilename() : TvString();
    return db::statusOf(db::findXref(pathName(), host, host));
}

bool TvDbBlockTableRecord::hasAttributeDefinitions() const
{
    return fields().flag("has_attdefs");
}

TvString TvDbBlockTableRecord::pathName() const
{
    return TvString(fields().text("xref_path"));
}

TvStatusCode TvDbBlockTableRecord::setPathName(const TvString& path)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    if (!isFromExternalReference() || path.isEmpty())
        return TvStatus::InvalidInput;
    return edit().setText("xref_path", path.view()) ? TvStatus::Ok : TvStatus::NotUnderstood;
}

TvString TvDbBlockTableRecord::comments() const
{
    return TvString(fields().text("description"));
}

db::Point TvDbBlockTableRecord::origin() const
{
    return fields().point("base_pt");
}

db::Preview TvDbBlockTableRecord::previewIcon() const
{
    return db::previewFromBytes(fields().bytes("preview"));
}
