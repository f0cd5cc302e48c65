#include "app/reference_report.h"

#include <ed/user_prompts.h>

namespace app {

ReferenceReport::ReferenceReport(TvEditor& editor, db::AttachedDrawings& attached)
    : m_editor(editor), m_attached(attached)
{
    m_editor.addReactor(this);
}

ReferenceReport::~ReferenceReport()
{
    m_editor.removeReactor(this);
}

void ReferenceReport::endDwgOpen(const TvChar*, TvDbDatabase* database)
{
    ed::UserPrompts* const prompts = ed::userPrompts();
    if (!database || !prompts)
        return;
    for (const db::LostReference& lost : db::lostReferences(*database, m_attached))
        prompts->say(static_cast<int>(lost.why.reason()), lost.why.arguments());
}

} // namespace app
