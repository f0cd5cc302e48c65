#include "panel/open_sheets.h"

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <core/sheet_data.h>
#include <ed/layouts.h>
#include <ed/tv_ap_doc_manager.h>
#include <ed/tv_ax_doc_lock.h>
#include <sm/tv_sm_database.h>

#include "panel/recover_drawing.h"

namespace panel {

namespace {

constexpr int kNoDrawingTitle = 618, kNoDrawing = 619;
constexpr int kNoLayoutTitle = 622, kNoLayout = 623;

enum class Outcome { Nothing, Refresh };

/// One sheet on its way to the screen.
class SheetOpening
{
public:
    SheetOpening(const TvSmTvDbLayoutReference& reference, bool readOnly)
        : m_reference(&reference), m_readOnly(readOnly)
    {
    }

    Outcome run()
    {
        const TvString path = m_reference->resolveFileName();
        if (path.isEmpty() || !KvFileSystem::pathFileExists(path)) {
            RecoverMissingDrawing(m_reference, kNoDrawingTitle, kNoDrawing);
            return Outcome::Nothing;
        }
        TvApDocManager* documents = tvDocManagerPtr();
        if (!documents || !documents->isApplicationContext())
            return Outcome::Refresh;
        TvApDocument* document = documents->documentOf(path);
        const bool wasOpen = document != nullptr;
        if (!wasOpen) {
            if (!open(path))
                return Outcome::Nothing;
            document = documents->documentOf(path);
        }
        if (!document)
            return Outcome::Refresh;
        return show(*documents, *document, wasOpen);
    }

private:
    /// The answer of a read-only opening is not looked at: what counts is the document.
    bool open(const TvString& path) const
    {
        return m_readOnly ? (OpenDocumentReadOnly(path, 1), true) : OpenDocument(path) != nullptr;
    }

    Outcome show(TvApDocManager& documents, TvApDocument& document, bool wasOpen)
    {
        {
            const TvAxDocLock lock(document.database());
            TvDbObjectId layout;
            if (FindLayoutOfReference(m_reference, document.database(), layout)) {
                ed::setCurrentLayout(*document.database(), layout);
                documents.activateDocument(&document);
                return Outcome::Refresh;
            }
        }
        if (wasOpen)
            RecoverMissingDrawing(m_reference, kNoLayoutTitle, kNoLayout);
        return Outcome::Nothing;
    }

    const TvSmTvDbLayoutReference* m_reference; // the set's; parked at worst by what opening brings
    bool m_readOnly;
};

template <class Each>
void forEachReference(TvSmDatabase* database, const std::vector<TvString>& handles, Each each)
{
    for (const TvString& handle : handles) {
        if (!database || !isStillOpen(database))
            return;
        const auto* sheet = tvrxCast<TvSmSheet>(database->findObject(handle));
        if (sheet && sheet->getLayoutReference())
            each(*sheet->getLayoutReference());
    }
}

} // namespace

bool openSheets(TvSmDatabase* database, const std::vector<TvString>& handles,
                const std::function<void()>& refresh)
{
    bool hasRefreshed = false;
    forEachReference(database, handles, [&](const TvSmTvDbLayoutReference& reference) {
        if (SheetOpening(reference, false).run() != Outcome::Refresh)
            return;
        hasRefreshed = true;
        if (refresh)
            refresh();
    });
    return hasRefreshed;
}

void openSheetsReadOnly(TvSmDatabase* database, const std::vector<TvString>& handles)
{
    forEachReference(database, handles, [](const TvSmTvDbLayoutReference& reference) {
        SheetOpening(reference, true).run();
    });
}

} // namespace panel
