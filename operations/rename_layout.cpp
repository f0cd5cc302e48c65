#include "operations/rename_layout.h"

#include <base/kv_file_system.h>
#include <db/tv_db_layout.h>
#include <ed/program_control.h>
#include <ed/tv_ap_doc_manager.h>
#include <ed/tv_ax_doc_lock.h>
#include <resources/texts.h>
#include <rx/tv_user_messages.h>
#include <sm/tv_sm_file_reference.h>

#include "operations/rename_messages.h"

namespace {

bool isHostsModelName(const TvString& name)
{
    constexpr int kModelLayout = 5294; // in the language of the host
    const TvChar* model = text::find(kModelLayout);
    return model && name.compareNoCase(model) == 0;
}

TvStatusCode renameIn(TvDbDatabase* database, const TvString& handle, const TvString& name)
{
    if (isHostsModelName(name))
        return TvStatus::NameReserved;
    if (!database)
        return TvStatus::NoDatabase;
    TvDbObjectId id;
    if (database->getTvDbObjectId(id, false, TvDbHandle(handle.view()), 0) != TvStatus::Ok)
        return TvStatus::UnknownHandle;
    TvDbObject* object = nullptr;
    if (tvdbOpenObject(object, id, TvDb::kForWrite) != TvStatus::Ok)
        return TvStatus::NotOpenable;
    auto* layout = tvrxCast<TvDbLayout>(object);
    const TvStatusCode status = layout ? layout->setLayoutName(name) : TvStatus::NotThatObject;
    object->close();
    return status;
}

TvStatusCode renameInDocument(TvApDocument& document, TvSmTvDbLayoutReference& reference,
                              const TvString& name)
{
    {
        const TvAxDocLock lock(document.database());
        document.database()->startUndoRecord();
        if (const TvStatusCode status = renameIn(document.database(), reference.getHandle(), name))
            return status;
    }
    tarvUpdateLayoutBar(&document);
    reference.setName(name);
    return TvStatus::Ok;
}

TvStatusCode renameInFile(const TvString& path, TvSmTvDbLayoutReference& reference,
                          const TvString& name)
{
    TvDbDatabase drawing(false, true);
    if (drawing.readDwgFile(path, TvDb::kReadAllShare, false, nullptr) != TvStatus::Ok)
        return TvStatus::NoDatabase;
    drawing.closeInput(true);
    if (const TvStatusCode status = renameIn(&drawing, reference.getHandle(), name))
        return status;
    const TvStatusCode status =
        drawing.saveAs(drawing.originalFileName(), false, drawing.originalFileVersion(), nullptr);
    if (status == TvStatus::Ok)
        reference.setName(name);
    return status;
}

} // namespace

TvStatusCode RenameLayoutOfSheet(TvSmTvDbLayoutReference* reference, const TvString& newName)
{
    if (!reference)
        return TvStatus::NotThatObject;
    const TvString path = reference->resolveFileName();
    TvApDocument* document = tvDocManagerPtr() ? tvDocManagerPtr()->documentOf(path) : nullptr;
    return document ? renameInDocument(*document, *reference, newName)
                    : renameInFile(path, *reference, newName);
}

TvStatusCode RenameLayoutOfSheetWithMessages(TvSmTvDbLayoutReference* reference,
                                             const TvString& newName, const void* /*window*/)
{
    using namespace operations;
    const TvStatusCode status = RenameLayoutOfSheet(reference, newName);
    switch (status) {
    case TvStatus::NameReserved: warn(kModelNameMessage); return status;
    case TvStatus::NoDatabase:
        if (isDrawingThere(reference->resolveFileName())) {
            warn(kUnreadableMessage);
            return TvStatus::NotThatObject;
        }
        warn(kDrawingGoneMessage);
        return TvStatus::FileGone;
    case TvStatus::UnknownHandle:
    case TvStatus::NotOpenable:
    case TvStatus::NotThatObject: warn(kLayoutGoneMessage); return TvStatus::NotThatObject;
    default: return status;
    }
}
