#include "page_setup_source.h"

#include <base/kv_file_system.h>
#include <core/drawing_look.h>
#include <db/tv_db_database.h>
#include <ed/tv_ap_doc_manager.h>
#include <sm/tv_sm_database.h>

#include "publish/page_setup_names.h"

namespace publish {

struct PageSetupSource::Shared {
    core::DrawingLook::Question question;
    Known known;           // before
    Known answer;          // what is known then
    TvString openDocument; // that has the drawing; empty: none

    void look()
    {
        const core::DrawingFacts place = core::DrawingLook::answer(question);
        openDocument = place.openDocument;
        answer.places = question.places;
        if (!place.isFile || !openDocument.isEmpty())
            return;
        answer.path = place.resolved;
        answer.time = KvFileSystem::getModificationTime(answer.path);
        answer.size = KvFileSystem::getFileSize(answer.path);
        if (known.path == answer.path && known.time == answer.time && known.size == answer.size) {
            answer.names = std::move(known.names);
            return;
        }
        TvDbDatabase drawing(false, true);
        if (drawing.readDwgFile(answer.path) == TvStatus::Ok)
            answer.names = pageSetupNames(drawing);
    }
};

PageSetupSource::~PageSetupSource()
{
    if (m_work)
        m_work->giveUp(); // nobody waits for it
}

std::vector<TvString> PageSetupSource::names(const TvSmDatabase& database)
{
    using core::DrawingLook;
    const TvSmFileReference* reference = database.getSheetSet()->getAltPageSetups();
    if (!reference)
        return {};
    DrawingLook::Question question =
        DrawingLook::questionAbout(*reference, DrawingLook::Depth::Place);
    const std::vector<TvString> places = question.places;
    if (m_work && m_work->hasDone(1, 0) && m_asked->openDocument.isEmpty())
        m_known = m_asked->answer; // it came too late for whoever asked
    const bool isAsked = m_work && !m_work->isOver() && m_asked->question.places == places;
    if (!isAsked) {
        if (m_work)
            m_work->giveUp();
        m_work.reset();
        m_asked = std::make_shared<Shared>(Shared{std::move(question), m_known, {}, {}});
        m_work.emplace(
            1, [asked = m_asked](std::size_t, const core::ApartWork::GivenUp&) { asked->look(); });
    }
    // Who asks again while the first answer is out has waited already.
    if (!m_work->hasDone(1, isAsked ? 0 : m_waitMs))
        return m_known.places == places ? m_known.names : std::vector<TvString>();
    if (TvApDocument* document = core::openDocumentNamed(m_asked->openDocument))
        return pageSetupNames(*document->database());
    m_known = m_asked->answer;
    return m_known.names;
}

} // namespace publish
