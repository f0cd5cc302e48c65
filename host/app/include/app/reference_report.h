#pragma once

#include <db/attached_drawings.h>
#include <ed/tv_editor.h>

namespace app {

/// Says at the command line, once when a drawing was opened, which of its external references are
/// not shown, and why.
class ReferenceReport : private TvEditorReactor
{
public:
    /// Neither is owned; both outlive this.
    ReferenceReport(TvEditor& editor, db::AttachedDrawings& attached);
    ~ReferenceReport() override;
    ReferenceReport(const ReferenceReport&) = delete;
    ReferenceReport& operator=(const ReferenceReport&) = delete;

private:
    void endDwgOpen(const TvChar* path, TvDbDatabase* database) override;

    TvEditor& m_editor;
    db::AttachedDrawings& m_attached;
};

} // namespace app
