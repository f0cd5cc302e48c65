#pragma once

#include <functional>

#include <ed/drawing_view.h>

namespace window {

class DocumentPage;

/// The views of the window's pages, as commands see them: what is shown counts before what the
/// drawing has stored.
class ProgramView : public ed::StoredDrawingView
{
public:
    /// @param pageOf  the page of a drawing; null when it has none.
    explicit ProgramView(std::function<DocumentPage*(const TvDbDatabase*)> pageOf);
    ~ProgramView() override;
    ProgramView(const ProgramView&) = delete;
    ProgramView& operator=(const ProgramView&) = delete;

    std::optional<ed::View> view(TvDbObjectId where) const override;
    bool setView(TvDbObjectId where, const ed::View& view) override;
    void regenerate(TvDbDatabase& database) override;
    void reload(TvDbDatabase& database) override;
    void settle(TvDbDatabase& database) override;

private:
    DocumentPage* pageFor(TvDbObjectId where) const;
    std::function<DocumentPage*(const TvDbDatabase*)> m_pageOf;
};

} // namespace window
