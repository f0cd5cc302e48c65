#include "window/program_view.h"

#include "window/document_page.h"

namespace window {

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
    if (const DocumentPage* page = pageFor(where))
        if (const std::optional<ed::View> shown = page->shownView(where))
            return shown;
    return StoredDrawingView::view(where);
}

bool ProgramView::setView(TvDbObjectId where, const ed::View& view)
{
    DocumentPage* page = pageFor(where);
    ed::View fitted = view;
    if (page && page->shownView(where)) {
        const QSize size = page->canvas().size();
        fitted.aspect = static_cast<double>(size.width()) / std::max(1, size.height());
        fitted.height = std::max(view.height, view.width() / fitted.aspect);
    }
    if (!ed::isUsable(view) || !StoredDrawingView::setView(where, fitted))
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
