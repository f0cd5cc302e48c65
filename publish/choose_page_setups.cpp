#include <core/watch_poller.h>
#include <ed/user_prompts.h>
#include <resources/texts.h>
#include <sm/change_scope.h>
#include <sm/tv_sm_database.h>

#include "publish/publish_commands.h"

namespace publish {

namespace {

constexpr int kAnswered = 5100;
constexpr int kTitle = 525; // text

void keep(TvSmDatabase& database, const TvString& path)
{
    sm::ChangeScope scope(core::answering(&database));
    if (!scope)
        return;
    TvSmSheetSet& set = *database.getSheetSet();
    auto reference = std::make_unique<TvSmFileReference>();
    if (!reference->initNew(&set, TvString()) || !reference->setFileName(path) ||
        !set.setAltPageSetups(reference.get()))
        return;          // and all is undone
    reference.release(); // the set's now
    scope.commit();
}

} // namespace

bool choosePageSetups(TvSmDatabase& database)
{
    ed::UserPrompts* const prompts = ed::userPrompts();
    if (!prompts)
        return false;
    ed::UserPrompts::FileQuestion question;
    question.title = TvString(text::find(kTitle));
    question.start = database.getFileName();
    question.extensions = {u"dwt", u"dwg", u"dxf"};
    question.dialogName = u"PageSetups";
    std::vector<TvString> chosen;
    if (prompts->askFiles(question, chosen) == kAnswered && !chosen.empty())
        keep(database, chosen.front());
    return true;
}

} // namespace publish
