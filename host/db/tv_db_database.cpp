#include <db/tv_db_database.h>

#include <algorithm>

#include <db/tv_db_dictionary.h>

#include "database_extras.h"
#include "database_impl.h"

TVRX_DEFINE_MEMBERS(TvDbDatabaseReactor, TvRxObject)

TvDbDatabaseReactor::~TvDbDatabaseReactor() = default;

TvDbDatabase::TvDbDatabase(bool buildDefault, bool noDocument)
    : m_impl(std::make_unique<db::DatabaseImpl>(*this, noDocument))
{
    if (buildDefault)
        m_impl->makeDefault();
}

TvDbDatabase::~TvDbDatabase()
{
    for (TvDbDatabaseReactor* reactor : m_impl->reactors())
        reactor->databaseToBeDestroyed(this);
}

TvStatusCode TvDbDatabase::readDwgFile(const TvString& path, int mode, bool, const TvChar*)
{
    return m_impl->readFile(path, mode);
}

TvStatusCode TvDbDatabase::readDwgBytes(std::vector<std::uint8_t> bytes)
{
    return m_impl->readBytes(std::move(bytes));
}

TvStatusCode TvDbDatabase::closeInput(bool)
{
    m_impl->holdsFile = false;
    return TvStatus::Ok;
}

TvStatusCode db::saveNew(TvDbDatabase& database, const TvString& path, FileFormat format,
                         int version)
{
    const std::optional<Version> wanted = versionOfCode(database, version);
    return wanted ? database.impl().save(path, false, format, *wanted, true)
                  : TvStatus::InvalidInput;
}

TvStatusCode TvDbDatabase::saveAs(const TvString& path, bool backup, int version, const void*)
{
    const std::optional<db::Version> wanted = db::versionOfCode(*this, version);
    return wanted ? m_impl->save(path, backup, db::FileFormat::Dwg, *wanted)
                  : TvStatus::InvalidInput;
}

TvStatusCode TvDbDatabase::dxfOut(const TvString& path, int version)
{
    const std::optional<db::Version> wanted = db::versionOfCode(*this, version);
    return wanted ? m_impl->save(path, false, db::FileFormat::Dxf, *wanted)
                  : TvStatus::InvalidInput;
}

base::Result<std::vector<std::uint8_t>> TvDbDatabase::toBytes(db::FileFormat format, int version)
{
    const std::optional<db::Version> wanted = db::versionOfCode(*this, version);
    if (!wanted)
        return base::Status(base::Failure::Usage, base::Reason::DwgVersionNotWritten,
                            {TvString(std::to_string(version))});
    return m_impl->toBytes(format, *wanted);
}

const base::Status& TvDbDatabase::lastFailure() const
{
    return m_impl->lastFailure();
}

TvString TvDbDatabase::getFilename() const
{
    return m_impl->path;
}

TvStatusCode TvDbDatabase::getFilename(TvString& out) const
{
    out = m_impl->path;
    return TvStatus::Ok;
}

const TvChar* TvDbDatabase::originalFileName() const
{
    return m_impl->originalPath.kwszPtr();
}

int TvDbDatabase::originalFileVersion() const
{
    return db::codeOfVersion(m_impl->version());
}

bool TvDbDatabase::isDocumentDatabase() const
{
    return m_impl->isDocument;
}

bool TvDbDatabase::isModified() const
{
    return m_impl->isModified;
}

TvStatusCode TvDbDatabase::getTvDbObjectId(TvDbObjectId& out, bool createIfNotFound,
                                           TvDbHandle handle, std::uint32_t) const
{
    out = find(handle.value());
    if (createIfNotFound)
        return TvStatus::InvalidInput;
    return out ? TvStatus::Ok : TvStatus::UnknownHandle;
}

TvDbObjectId TvDbDatabase::find(std::uint64_t handle) const
{
    return TvDbObjectId(m_impl->find(handle));
}

TvStatusCode TvDbDatabase::addTvDbObject(TvDbObjectId& out, TvDbObject* object, TvDbObjectId owner)
{
    out.setNull();
    if (!object || (owner && owner.database() != this))
        return TvStatus::InvalidInput;
    if (object->objectId())
        return TvStatus::AlreadyInDatabase;
    out = TvDbObjectId(&m_impl->append(object));
    if (owner)
        object->setOwnerId(owner);
    db::ObjectAccess::subAppended(*object);
    for (TvDbDatabaseReactor* reactor : m_impl->reactors())
        reactor->objectAppended(this, object);
    return TvStatus::Ok;
}

std::vector<TvDbObjectId> TvDbDatabase::objectIds() const
{
    std::vector<TvDbObjectId> ids;
    ids.reserve(m_impl->slotCount());
    m_impl->forEach([&](db::ObjectSlot& slot) { ids.emplace_back(&slot); });
    return ids;
}

std::size_t TvDbDatabase::approxNumObjects() const
{
    return m_impl->slotCount();
}

TvDbHandle TvDbDatabase::handseed() const
{
    return TvDbHandle(m_impl->handseed());
}

TvDbImpDatabase* TvDbDatabase::impDatabase() const
{
    return &m_impl->face();
}

bool TvDbDatabase::undoRecording() const
{
    return m_impl->log().isRecording();
}

void TvDbDatabase::disableUndoRecording(bool disable)
{
    m_impl->log().setRecording(!disable);
}

void TvDbDatabase::startUndoRecord()
{
    m_impl->log().startUndoRecord();
}

bool TvDbDatabase::hasUndo() const
{
    return m_impl->log().hasUndo();
}

bool TvDbDatabase::hasRedo() const
{
    return m_impl->log().hasRedo();
}

int TvDbDatabase::undoDepth() const
{
    return m_impl->log().depth();
}

void TvDbDatabase::joinUndo(int depth)
{
    m_impl->log().join(depth);
}

TvStatusCode TvDbDatabase::undo()
{
    if (m_impl->writers() > 0)
        return TvStatus::WasOpenForWrite;
    return m_impl->log().undo() ? TvStatus::Ok : TvStatus::NothingToUndo;
}

TvStatusCode TvDbDatabase::redo()
{
    if (m_impl->writers() > 0)
        return TvStatus::WasOpenForWrite;
    return m_impl->log().redo() ? TvStatus::Ok : TvStatus::NothingToUndo;
}

TvDbTransactionManager* TvDbDatabase::transactionManager() const
{
    return &m_impl->transactions();
}

void TvDbDatabase::addReactor(TvDbDatabaseReactor* reactor) const
{
    std::vector<TvDbDatabaseReactor*>& all = m_impl->reactorList();
    if (reactor && std::find(all.begin(), all.end(), reactor) == all.end())
        all.push_back(reactor);
}

void TvDbDatabase::removeReactor(TvDbDatabaseReactor* reactor) const
{
    std::erase(m_impl->reactorList(), reactor);
}

TvStatusCode TvDbImpDatabase::readDwgFile(const TvString& path, int flags)
{
    return m_database.readDwgFile(path, flags);
}

TvDbImpDatabase* TvDbSystemInternals::getImpDatabase(TvDbDatabase* database)
{
    return database ? database->impDatabase() : nullptr;
}
