// What the pointer in a drawing tells the command line.

#include <QLabel>

#include <app/words.h>
#include <db/tv_db_entity.h>
#include <ui/qt_text.h>

#include "window/command_panel.h"
#include "window/document_page.h"
#include "window/main_window.h"

namespace window {

void MainWindow::followPointer(DocumentPage& page)
{
    page.canvas().onCursor = [this, &page](TvGePoint2d plan) {
        const TvGePoint3d at = page.planToWorld() * TvGePoint3d(plan.x, plan.y, 0);
        m_coordinates->setText(
            ui::toQt(app::textOf(app::Word::Coordinates, {TvString().format(u"%.4f", at.x),
                                                          TvString().format(u"%.4f", at.y)})));
        if (&page == m_asked)
            m_commands->hover(at);
    };
    page.canvas().onPoint = [this, &page](TvGePoint2d plan) {
        if (&page == m_asked)
            m_commands->pick(page.planToWorld() * TvGePoint3d(plan.x, plan.y, 0));
    };
    page.canvas().onEnter = [this] { m_commands->enter({}); };
}

/// Lets the page that is shown give the point that a command asks for.
void MainWindow::askPointer(const PointerQuestion* question)
{
    if (m_asked)
        m_asked->canvas().endPoint();
    m_asked = question ? currentPage() : nullptr;
    if (!m_asked)
        return;
    std::optional<TvGePoint2d> base;
    const std::optional<TvGeMatrix3d> toPlan = m_asked->planToWorld().inverse();
    if (question->base && toPlan) {
        const TvGePoint3d at = *toPlan * *question->base;
        base = TvGePoint2d(at.x, at.y);
    }
    m_asked->canvas().beginPoint(base, question->isCorner && base);
}

/// What is dragged is shown as the frame around it.
void MainWindow::showDragged(const TvDbEntity* entity)
{
    DocumentPage* page = currentPage();
    if (!page)
        return;
    std::optional<gs::Box> frame;
    TvDbExtents extents;
    const std::optional<TvGeMatrix3d> toPlan = page->planToWorld().inverse();
    if (entity && toPlan && entity->getGeomExtents(extents) == TvStatus::Ok && !extents.isEmpty()) {
        const TvDbExtents box = extents.transformed(*toPlan);
        frame = gs::Box{box.minPoint().x, box.minPoint().y, box.maxPoint().x, box.maxPoint().y};
    }
    page->canvas().setFrame(frame);
}

} // namespace window
