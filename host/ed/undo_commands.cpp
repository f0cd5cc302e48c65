#include <limits>

#include <db/tv_db_database.h>
#include <db/tv_status.h>

#include "command_support.h"
#include "ed/prompts.h"
#include "ed/undo.h"
#include "host_command_list.h"

namespace ed {

namespace {

constexpr TvChar kUndoOptions[] = u"BEgin End Mark Back";
constexpr TvChar kRedoOptions[] = u"All Last";

void tell(const UndoOutcome& outcome, Wording done, Wording nothing)
{
    if (outcome.steps > 0)
        say(done, {numberText(outcome.steps)});
    if (outcome.isBlocked)
        return say(Wording::UndoBlocked);
    if (outcome.isStoppedByMark)
        return say(Wording::UndoAtMark);
    if (outcome.steps == 0)
        say(nothing);
}

void goBack(TvDbDatabase& database, int steps)
{
    tell(undoSteps(database, steps), Wording::UndoSteps, Wording::NothingToUndo);
}

void goForward(TvDbDatabase& database, int steps)
{
    tell(redoSteps(database, steps), Wording::RedoSteps, Wording::NothingToRedo);
}

void backToMark(TvDbDatabase& database)
{
    if (hasUndoMark(database) || askYesNo(Wording::AskUndoAll, true).value_or(false))
        tell(undoToMark(database), Wording::UndoSteps, Wording::NothingToUndo);
}

} // namespace

void runUndoOne()
{
    if (TvDbDatabase* database = askedDrawing())
        goBack(*database, 1);
}

void runUndo()
{
    TvDbDatabase* database = askedDrawing();
    if (!database)
        return;
    tvedInitGet(kNoZero | kNoNegative, keywordList(Wording::KeysUndo, kUndoOptions).kwszPtr());
    int steps = 1;
    switch (tvedGetInt(textOf(Wording::AskUndo).kwszPtr(), steps)) {
    case TvStatus::Normal:
    case kNoAnswer: return goBack(*database, steps);
    case kKeyword: break;
    default: return;
    }
    const TvString option = tvedGetInput();
    if (option == u"BEgin")
        beginUndoGroup(*database);
    else if (option == u"Mark")
        setUndoMark(*database);
    else if (option == u"Back")
        backToMark(*database);
    else if (!endUndoGroup(*database))
        say(Wording::NoUndoGroup);
}

void runRedo()
{
    if (TvDbDatabase* database = askedDrawing())
        goForward(*database, 1);
}

void runMultipleRedo()
{
    TvDbDatabase* database = askedDrawing();
    if (!database)
        return;
    tvedInitGet(kNoZero | kNoNegative, keywordList(Wording::KeysMRedo, kRedoOptions).kwszPtr());
    int steps = 1;
    const int status = tvedGetInt(textOf(Wording::AskMRedo).kwszPtr(), steps);
    if (status == kKeyword)
        steps = tvedGetInput() == u"All" ? std::numeric_limits<int>::max() : 1;
    else if (status != static_cast<int>(TvStatus::Normal) && status != kNoAnswer)
        return;
    goForward(*database, steps);
}

} // namespace ed
