#pragma once

#include <functional>
#include <map>
#include <optional>

#include <QTabBar>
#include <QWidget>

#include <db/tv_db_object_id.h>
#include <ed/drawing_view.h>
#include <window/drawing_canvas.h>

class TvApDocument;

namespace app {
class DrawingWatch;
}
namespace db {
class AttachedDrawings;
}

namespace window {

/// One open drawing: what it shows, and the tabs of its layouts below.
///
/// The page keeps a view for each layout while it is open; the drawing gets them when a command
/// asks, or when it is saved.
class DocumentPage : public QWidget
{
public:
    /// None is owned; all outlive the page.
    /// @param attached  opens the external references.
    DocumentPage(TvApDocument& document, const app::DrawingWatch& watch,
                 db::AttachedDrawings& attached, QWidget* parent = nullptr);

    TvApDocument& document() const { return m_document; }
    DrawingCanvas& canvas() { return *m_canvas; }
    QTabBar& layoutTabs() { return *m_tabs; }

    /// Brings tabs and picture up to the drawing, as far as they are behind it.
    void refresh();
    /// Draws it anew.
    void regenerate();
    /// The stored views count again.
    void forgetViews();

    /// From the plane of what is shown to the coordinates of the world: of the sheet, or of model
    /// space where one works in a window of the sheet.
    TvGeMatrix3d planToWorld() const;

    /// What is shown of that layout, in its display coordinates; nullopt for one that was not shown
    /// yet.
    std::optional<ed::View> shownView(TvDbObjectId layout) const;
    /// The stored view of that layout has changed: show it.
    void showStoredView(TvDbObjectId layout);
    /// Each view that differs from the stored one is given to @p keep.
    void eachView(const std::function<void(TvDbObjectId, const ed::View&)>& keep) const;

    std::function<void(const TvString&)> onLayoutChosen;
    std::function<void(TvDbObjectId, const QPoint&)> onLayoutMenu;

private:
    struct Shown {
        std::shared_ptr<const gs::DisplayList> list;
        std::uint64_t changes = 0; ///< of the drawing when the list was made
        std::optional<app::ViewTransform> view;
        bool isTouched = false; ///< the user has panned or zoomed: it is his view
        bool isChosen = false;  ///< a command has stored the view: it counts, even of nothing
        TvGePoint2d planOrigin; ///< of display coordinates, in the list's plane
        ed::View stored;        ///< as the drawing has it
    };
    void refreshTabs();
    void refreshList(TvDbObjectId layout);
    void show(TvDbObjectId layout);
    app::ViewTransform firstView(const Shown& shown, TvDbObjectId layout) const;

    TvApDocument& m_document;
    const app::DrawingWatch& m_watch;
    db::AttachedDrawings& m_attached;
    DrawingCanvas* m_canvas;
    QTabBar* m_tabs;
    std::map<TvDbObjectId, Shown> m_shown;
    TvDbObjectId m_current;
    std::vector<TvDbObjectId> m_layouts; ///< as the tabs have them
    std::vector<TvString> m_names;
    std::uint64_t m_tabChanges = 0;
    bool m_isFilling = false;
};

/// What a layout is shown on: the theme's screen, or paper.
gs::Background backgroundFor(const gs::DisplayList& list);

} // namespace window
