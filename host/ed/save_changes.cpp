#include "save_changes.h"

#include <base/path_rules.h>
#include <db/tv_db_database.h>
#include <rx/tv_user_messages.h>

#include "command_support.h"
#include "ed/program_control.h"
#include "ed/tv_ap_doc_manager.h"

namespace ed {

namespace {

enum class Wish { Save, Discard, Keep };

Wish askWish(const TvApDocument& document)
{
    enum { kSave = 101, kDiscard = 102 };
    TvUserMessages::TaskDialog question;
    question.instruction = {static_cast<int>(Wording::QuestionSave), {document.docTitle()}};
    question.icon = TvUserMessages::Icon::Question;
    question.commands = {{kSave, {static_cast<int>(Wording::ChoiceSave), {}}},
                         {kDiscard, {static_cast<int>(Wording::ChoiceDiscard), {}}}};
    question.standard = kSave;
    const TvUserMessages::TaskAnswer answer = tvrxShowTaskDialog(question);
    if (answer.hasFailed)
        return Wish::Keep;
    return answer.button == kSave      ? Wish::Save
           : answer.button == kDiscard ? Wish::Discard
                                       : Wish::Keep;
}

bool save(TvApDocument& document)
{
    return document.isNamedDrawing() && !document.isReadOnly() ? saveNamed(document, {}, 0)
                                                               : saveUnderAskedName(document);
}

std::vector<TvApDocument*> allDocuments()
{
    std::vector<TvApDocument*> documents;
    const std::unique_ptr<TvApDocumentIterator> each(
        tvDocManagerPtr() ? tvDocManagerPtr()->newTvApDocumentIterator() : nullptr);
    for (; each && !each->done(); each->step())
        documents.push_back(each->document());
    return documents;
}

} // namespace

bool mayClose(TvApDocument& document)
{
    if (!document.database()->isModified())
        return true;
    const Wish wish = askWish(document);
    if (wish == Wish::Discard || (wish == Wish::Save && save(document)))
        return true;
    say(Wording::NotClosed, {document.fileName()});
    return false;
}

bool closeAllDocuments()
{
    const std::vector<TvApDocument*> documents = allDocuments();
    for (TvApDocument* document : documents) {
        if (document->lockCount() > 0) {
            say(Wording::StillLocked, {document->fileName()});
            return false;
        }
        if (!mayClose(*document))
            return false;
    }
    for (TvApDocument* document : documents)
        tvDocManagerPtr()->closeDocument(document);
    return true;
}

} // namespace ed
