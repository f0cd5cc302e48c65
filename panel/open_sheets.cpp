#include "panel/open_sheets.h"

#include <core/drawing_look.h>
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
    SheetOpening(const TvSmTvDbLayoutReference& reference, const core::DrawingFacts& place,
                 bool readOnly)
        : m_reference(&reference), m_place(place), m_readOnly(readOnly)
    {
    }

    Outcome run()
    {
        const TvString& path = m_place.resolved;
        if (path.isEmpty()) {
            RecoverMissingDrawing(m_reference, kNoDrawingTitle, kNoDrawing);
            return Outcome::Nothing;
        }
        TvApDocManager* documents = tvDocManagerPtr();
        if (!documents || !documents->isApplicationContext())
            return Outcome::Refresh;
        TvApDocument* document = core::openDocumentNamed(m_place.openDocument);
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
    const core::DrawingFacts& m_place;
    bool m_readOnly;
};

const TvSmTvDbLayoutReference* referenceOf(TvSmDatabase* database, const TvString& handle)
{
    if (!database || !isStillOpen(database))
        return nullptr;
    const auto* sheet = tvrxCast<TvSmSheet>(database->findObject(handle));
    return sheet ? sheet->getLayoutReference() : nullptr;
}

/// Visits the sheets that are there, until the user does not want to wait any longer.
template <class Each>
void forEachSheet(TvSmDatabase* database, const std::vector<TvString>& handles,
                  const WaitForDisk& wait, Each each)
{
    for (const TvString& handle : handles) {
        const TvSmTvDbLayoutReference* reference = referenceOf(database, handle);
        if (!reference)
            continue;
        const std::optional<core::DrawingFacts> place = placeOfDrawing(*reference, wait);
        if (!place)
            return;
        // It may have gone while the disk was waited for.
        if ((reference = referenceOf(database, handle)))
            each(*reference, *place);
    }
}

} // namespace

std::optional<core::DrawingFacts> placeOfDrawing(const TvSmTvDbLayoutReference& reference,
                                                 const WaitForDisk& wait)
{
    using core::DrawingLook;
    return lookInTime(DrawingLook::questionAbout(reference, DrawingLook::Depth::Place), wait);
}

std::optional<core::DrawingFacts> lookInTime(core::DrawingLook::Question question,
                                             const WaitForDisk& wait)
{
    const TvString name = question.stored;
    core::DrawingLook look(std::move(question));
    const bool isThere = look.hasAnswered(core::kPatienceMs) ||
                         (wait ? wait(name, [&look] { return look.hasAnswered(0); })
                               : look.hasAnswered(core::ApartWork::kForEver));
    return isThere ? std::optional(std::move(look.facts())) : std::nullopt;
}

bool openSheets(TvSmDatabase* database, const std::vector<TvString>& handles,
                const std::function<void()>& refresh, const WaitForDisk& wait)
{
    bool hasRefreshed = false;
    forEachSheet(database, handles, wait, [&](const auto& reference, const auto& place) {
        if (SheetOpening(reference, place, false).run() != Outcome::Refresh)
            return;
        hasRefreshed = true;
        if (refresh)
            refresh();
    });
    return hasRefreshed;
}

void openSheetsReadOnly(TvSmDatabase* database, const std::vector<TvString>& handles,
                        const WaitForDisk& wait)
{
    forEachSheet(database, handles, wait, [](const auto& reference, const auto& place) {
        SheetOpening(reference, place, true).run();
    });
}

} // namespace panel
