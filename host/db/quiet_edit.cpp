#include "quiet_edit.h"

#include "database_impl.h"

namespace db {

QuietEdit::QuietEdit(TvDbObjectId id)
{
    if (!isChangeable(id) || tvdbOpenTvDbObject(m_object, id, TvDb::kForNotify) != TvStatus::Ok)
        return;
    m_wasOpenForChange = ObjectAccess::isWritten(*m_object);
    id.database()->impl().aboutToChange(*m_object);
    m_editor = RecordEditor(ObjectAccess::record(*m_object));
}

QuietEdit::~QuietEdit()
{
    if (!m_object)
        return;
    if (!m_wasOpenForChange) {
        // Nobody will close it as changed.
        ObjectAccess::isModified(*m_object) = false;
        TvDbDatabase* database = m_object->database();
        for (TvDbDatabaseReactor* reactor : database->impl().reactors())
            reactor->objectModified(database, m_object);
        for (TvDbObjectReactor* reactor : std::vector(ObjectAccess::reactors(*m_object)))
            reactor->modified(m_object);
    }
    m_object->close();
}

bool isChangeable(TvDbObjectId id)
{
    if (!id.isValid())
        return false;
    DatabaseImpl& database = id.database()->impl();
    return database.load(*id.slot()) == TvStatus::Ok && database.isEditable(*id.slot());
}

} // namespace db
