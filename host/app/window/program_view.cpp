#include "window/program_view.h"

#include "window/document_page.h"

namespace window {

namespace {

/// What the page's window shows of a view: all of it, and more along one side.
ed::View fittedTo(DocumentPage& page, ed::View view)
{
    const QSize size = page.canvas().size();
    if (size.isEmpty())
        return view;
    const double width = view.width();
    view.aspect = static_cast<double>(size.width()) / size.height();
    view.height = std::max(view.height, width / view.aspect);
    return view;
}

} // namespace

ProgramView::ProgramView(std::function<DocumentPage*(const TvDbDatabase*)> pageOf)
    : m_pageOf(std::move(pageOf))
{
    ed::setDrawingView(this);
}

ProgramView::~ProgramView()
{
    ed::setDrawingView(nullptr);
}

DocumentPage* ProgramView::pageFor(TvDbObjectId where) const
{
    return where.isValid() ? m_pageOf(where.database()) : nullptr;
}

std::optional<ed::View> ProgramView::view(TvDbObjectId where) const
{
    DocumentPage* page = pageFor(where);
    if (page)
        if (const std::optional<ed::View> shown = page->shownView(where))
            return shown;
    const std::optional<ed::View> stored = StoredDrawingView::view(where);
    return page && stored ? fittedTo(*page, *stored) : stored;
}

bool ProgramView::setView(TvDbObjectId where, const ed::View& view)
{
    DocumentPage* page = pageFor(where);
    if (!ed::isUsable(view) ||
        !StoredDrawingView::setView(where, page ? fittedTo(*page, view) : view))
        return false;
    if (page)
        page->showStoredView(where);
    return true;
}

void ProgramView::regenerate(TvDbDatabase& database)
{
    if (DocumentPage* page = m_pageOf(&database))
        page->regenerate();
}

void ProgramView::reload(TvDbDatabase& database)
{
    if (DocumentPage* page = m_pageOf(&database))
        page->forgetViews();
}

void ProgramView::settle(TvDbDatabase& database)
{
    if (const DocumentPage* page = m_pageOf(&database))
        page->eachView([this](TvDbObjectId where, const ed::View& view) {
            StoredDrawingView::setView(where, view);
        });
}

} // namespace window
