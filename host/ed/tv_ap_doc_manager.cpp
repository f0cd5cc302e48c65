#include "ed/tv_ap_doc_manager.h"

#include <algorithm>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <db/drawing_inventory.h>
#include <db/file_open_info_tip_manager.h>
#include <db/tv_db_host_application_services.h>
#include <rx/tv_rx_dynamic_linker.h>

#include "ed/drawing_view.h"
#include "ed/tv_ax_doc_lock.h"
#include "ed/tv_editor.h"

TVRX_DEFINE_MEMBERS(TvApDocument, TvRxObject)
TVRX_DEFINE_MEMBERS(TvApDocManager, TvRxObject)

namespace {

constexpr TvChar kNewName[] = u"Drawing%d.dwg";
constexpr TvChar kDxfExtension[] = u".dxf";

TvApDocManager* g_manager = nullptr;

TvStatusCode codeOf(const base::Status& status)
{
    switch (status.failure()) {
    case base::Failure::Locked: return TvStatus::FileInUse;
    case base::Failure::ReadOnly:
    case base::Failure::Denied: return TvStatus::FileReadOnly;
    default: return TvStatus::FileNotReadable;
    }
}

TvStatusCode write(TvDbDatabase& database, const TvString& path, db::FileFormat format, int version)
{
    return format == db::FileFormat::Dxf ? database.dxfOut(path, version)
                                         : database.saveAs(path, false, version);
}

} // namespace

// TvApDocument

TvApDocument::TvApDocument(std::unique_ptr<TvDbDatabase> database, TvString title, bool isReadOnly)
    : m_database(std::move(database)), m_title(std::move(title)), m_isReadOnly(isReadOnly)
{
}

TvApDocument::~TvApDocument() = default;

bool TvApDocument::isNamedDrawing() const
{
    return !m_database->getFilename().isEmpty();
}

TvString TvApDocument::fileName() const
{
    return isNamedDrawing() ? m_database->getFilename() : m_title;
}

TvString TvApDocument::docTitle() const
{
    return base::PathRules::native().fileNameOf(fileName());
}

db::FileFormat TvApDocument::fileFormat() const
{
    return m_savedFormat.value_or(db::fileFormatOf(*m_database));
}

int TvApDocument::fileVersion() const
{
    return m_savedVersion ? m_savedVersion : m_database->originalFileVersion();
}

// TvApDocManager

TvApDocManager::TvApDocManager(TvRxDynamicLinkerImp* linker) : m_linker(linker)
{
    g_manager = this;
    db::setOpenDocuments(this);
}

TvApDocManager::~TvApDocManager()
{
    while (!m_documents.empty()) {
        m_documents.back()->m_locks = 0;
        closeDocument(m_documents.back().get());
    }
    db::setOpenDocuments(nullptr);
    g_manager = nullptr;
}

TvApDocumentIterator* TvApDocManager::newTvApDocumentIterator() const
{
    std::vector<TvApDocument*> all;
    for (const std::unique_ptr<TvApDocument>& document : m_documents)
        all.push_back(document.get());
    return new TvApDocumentIterator(std::move(all));
}

bool TvApDocManager::isOurs(const TvApDocument* document) const
{
    return std::ranges::any_of(m_documents,
                               [&](const auto& each) { return each.get() == document; });
}

TvApDocument* TvApDocManager::document(const TvDbDatabase* database) const
{
    for (const std::unique_ptr<TvApDocument>& document : m_documents)
        if (document->database() == database)
            return document.get();
    return nullptr;
}

TvApDocument* TvApDocManager::documentOf(const TvString& path) const
{
    const auto isOfThatName = [&](const auto& document) {
        return document->isNamedDrawing() &&
               base::PathRules::native().isSame(document->fileName(), path);
    };
    const auto named = std::ranges::find_if(m_documents, isOfThatName);
    if (named != m_documents.end())
        return named->get();
    // Only the file that is meant is asked about: those of the documents may lie where nothing
    // answers. One that was replaced meanwhile may have left its identity to any other file.
    const std::optional<base::FileIdentity> meant = base::identityOf(path);
    const auto isThatFile = [&](const auto& document) {
        return meant && document->m_fileIdentity == meant &&
               KvFileSystem::isSameFile(document->fileName(), path);
    };
    const auto found = std::ranges::find_if(m_documents, isThatFile);
    return found == m_documents.end() ? nullptr : found->get();
}

TvDbDatabase* TvApDocManager::databaseOf(const TvString& path)
{
    const TvApDocument* open = documentOf(path);
    return open ? open->database() : nullptr;
}

TvStatusCode TvApDocManager::fail(base::Status why, TvStatusCode code)
{
    m_lastFailure = std::move(why);
    return code;
}

void TvApDocManager::makeCurrent(TvApDocument* document)
{
    m_current = document;
    tvdbHostApplicationServices()->setWorkingDatabase(document ? document->database() : nullptr);
}

TvStatusCode TvApDocManager::setCurDocument(TvApDocument* document, int lockMode, bool activate)
{
    if (document ? !isOurs(document) : !m_documents.empty())
        return TvStatus::InvalidInput;
    makeCurrent(document);
    if (activate) {
        m_active = document;
        std::erase(m_activated, document);
        if (document)
            m_activated.push_back(document);
    }
    return lockMode && document ? lockDocument(document) : TvStatus::Ok;
}

TvStatusCode TvApDocManager::activateDocument(TvApDocument* document)
{
    return document ? setCurDocument(document, 0, true) : TvStatus::InvalidInput;
}

TvApDocument* TvApDocManager::add(std::unique_ptr<TvDbDatabase> database, TvString title,
                                  bool isReadOnly)
{
    m_documents.emplace_back(new TvApDocument(std::move(database), std::move(title), isReadOnly));
    TvApDocument* document = m_documents.back().get();
    activateDocument(document);
    if (m_linker)
        m_linker->sendMessage(TvRx::kLoadDwgMsg);
    return document;
}

TvApDocument* TvApDocManager::newDocument()
{
    return add(std::make_unique<TvDbDatabase>(true, false),
               TvString().format(kNewName, ++m_newDrawings), false);
}

TvStatusCode TvApDocManager::newDocument(const TvString& path, TvApDocument*& out)
{
    out = nullptr;
    m_lastFailure = {};
    TvDbDatabase model(false, true);
    if (const TvStatusCode status = model.readDwgFile(path, TvDb::kReadAllShare))
        return fail(model.lastFailure(), status);
    base::Result<std::vector<std::uint8_t>> bytes = model.toBytes(db::FileFormat::Dwg);
    auto database = std::make_unique<TvDbDatabase>(false, false);
    if (!bytes)
        return fail(bytes.status(), TvStatus::FileNotReadable);
    if (const TvStatusCode status = database->readDwgBytes(std::move(*bytes)))
        return fail(database->lastFailure(), status);
    out = add(std::move(database), TvString().format(kNewName, ++m_newDrawings), false);
    return TvStatus::Ok;
}

TvStatusCode TvApDocManager::openDocument(const TvString& path, bool readOnly, TvApDocument*& out)
{
    out = nullptr;
    m_lastFailure = {};
    if (TvApDocument* open = documentOf(path)) {
        out = open;
        return activateDocument(open);
    }
    auto database = std::make_unique<TvDbDatabase>(false, false);
    if (!readOnly) {
        if (KvFileSystem::pathFileExists(path) && KvFileSystem::isReadOnly(path))
            return fail({base::Failure::ReadOnly, base::Reason::FileReadOnly, {path}},
                        TvStatus::FileReadOnly);
        // First the use, so that nobody changes what is read next. A missing file is not made one.
        if (base::Status status =
                KvFileSystem::pathFileExists(path) ? db::beginUse(*database, path) : base::Status();
            !status) {
            const TvStatusCode code = codeOf(status);
            return fail(std::move(status), code);
        }
    }
    const TvStatusCode status =
        database->readDwgFile(path, readOnly ? TvDb::kReadAllShare : TvDb::kReadAndWrite);
    if (status != TvStatus::Ok)
        return fail(database->lastFailure(), status);
    out = add(std::move(database), {}, readOnly);
    out->m_fileIdentity = base::identityOf(path);
    if (TvEditor* editor = tvedEditor())
        editor->fireEndDwgOpen(path, out->database());
    return TvStatus::Ok;
}

TvStatusCode TvApDocManager::saveDocument(TvApDocument* document, const TvString& path, int version)
{
    m_lastFailure = {};
    if (!isOurs(document))
        return TvStatus::InvalidInput;
    const bool isOwnName = path.isEmpty();
    if (isOwnName && !document->isNamedDrawing())
        return TvStatus::InvalidInput;
    if (isOwnName && document->isReadOnly())
        return fail({base::Failure::ReadOnly, base::Reason::FileReadOnly, {document->fileName()}},
                    TvStatus::FileReadOnly);
    TvDbDatabase& database = *document->database();
    const TvString target = isOwnName ? document->fileName() : path;
    const db::FileFormat format = isOwnName                              ? document->fileFormat()
                                  : target.endsWithNoCase(kDxfExtension) ? db::FileFormat::Dxf
                                                                         : db::FileFormat::Dwg;
    const int wanted = version ? version : document->fileVersion();
    ed::drawingView().settle(database);
    if (const TvStatusCode status = write(database, target, format, wanted))
        return fail(database.lastFailure(), status);
    document->m_savedFormat = format;
    document->m_savedVersion = wanted;
    document->m_fileIdentity = base::identityOf(target); // a save makes another file
    if (!isOwnName)
        document->m_isReadOnly = !db::beginUse(database, target);
    if (TvEditor* editor = tvedEditor())
        editor->fireSaveComplete(&database, target);
    return TvStatus::Ok;
}

TvStatusCode TvApDocManager::closeDocument(TvApDocument* document)
{
    if (!isOurs(document))
        return TvStatus::InvalidInput;
    if (document->m_locks > 0)
        return TvStatus::StillInUse;
    if (TvEditor* editor = tvedEditor())
        editor->fireDocumentClosing(document->database());
    if (m_linker)
        m_linker->sendMessage(TvRx::kUnloadDwgMsg);
    std::erase(m_activated, document);
    const bool wasActive = m_active == document, wasCurrent = m_current == document;
    TvApDocument* next = m_activated.empty() ? nullptr : m_activated.back();
    if (wasActive)
        m_active = next;
    if (wasCurrent)
        makeCurrent(m_active);
    std::erase_if(m_documents, [&](const auto& each) { return each.get() == document; });
    return TvStatus::Ok;
}

TvStatusCode TvApDocManager::lockDocument(TvApDocument* document)
{
    if (!isOurs(document))
        return TvStatus::InvalidInput;
    ++document->m_locks;
    return TvStatus::Ok;
}

TvStatusCode TvApDocManager::unlockDocument(TvApDocument* document)
{
    if (!isOurs(document))
        return TvStatus::InvalidInput;
    if (document->m_locks == 0)
        return TvStatus::NotApplicable;
    --document->m_locks;
    return TvStatus::Ok;
}

TvApDocManager* tvDocManagerPtr()
{
    return g_manager;
}

TvApDocument* OpenDocument(const TvString& path)
{
    return OpenDocumentReadOnly(path, 0);
}

TvApDocument* OpenDocumentReadOnly(const TvString& path, int readOnly)
{
    TvApDocument* document = nullptr;
    if (g_manager)
        g_manager->openDocument(path, readOnly != 0, document);
    return document;
}

// TvAxDocLock

TvAxDocLock::TvAxDocLock(const TvDbDatabase* database)
{
    if (!database)
        m_status = TvStatus::NoDatabase;
    else if (g_manager)
        lock(g_manager->document(database));
}

TvAxDocLock::TvAxDocLock()
{
    if (!g_manager || !g_manager->curDocument())
        m_status = TvStatus::NoDatabase;
    else
        lock(g_manager->curDocument());
}

void TvAxDocLock::lock(TvApDocument* document)
{
    if (!document)
        return; // no document: nothing to lock
    m_status = g_manager->lockDocument(document);
    if (m_status == TvStatus::Ok)
        m_document = document;
}

TvAxDocLock::~TvAxDocLock()
{
    if (m_document && g_manager)
        g_manager->unlockDocument(m_document);
}
