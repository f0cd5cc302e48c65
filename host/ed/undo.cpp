#include "ed/undo.h"

#include <limits>

#include <db/tv_db_database.h>
#include <db/tv_db_host_application_services.h>

#include "drawing_states.h"
#include "ed/system_variables.h"
#include "ed/tv_editor.h"

namespace ed {

namespace {

/// Tells what is another than before, once it is all over.
class ChangeTeller
{
public:
    explicit ChangeTeller(TvDbDatabase& database) : m_database(database), m_before(values()) {}
    ~ChangeTeller()
    {
        drawingView().reload(m_database);
        TvEditor* editor = tvedEditor();
        const std::vector<Value> after = values();
        for (std::size_t i = 0; editor && i < after.size(); ++i)
            if (m_before[i].second != after[i].second)
                editor->fireSysVarChanged(after[i].first);
        drawingView().regenerate(m_database);
    }
    ChangeTeller(const ChangeTeller&) = delete;
    ChangeTeller& operator=(const ChangeTeller&) = delete;

private:
    using Value = std::pair<const TvChar*, std::optional<VariableValue>>;

    std::vector<Value> values() const
    {
        std::vector<Value> all;
        if (tvdbHostApplicationServices()->workingDatabase() != &m_database)
            return all; // variables are those of the working drawing
        for (const VariableInfo& info : systemVariables())
            if (info.home == VariableHome::Drawing || info.home == VariableHome::Derived)
                all.emplace_back(info.name, variable(info.name));
        return all;
    }

    TvDbDatabase& m_database;
    std::vector<Value> m_before;
};

/// Groups and marks that lie behind the present are none any more.
void forgetBeyond(DrawingState& state, int depth)
{
    if (state.groupBegin && *state.groupBegin > depth)
        state.groupBegin.reset();
    while (!state.undoMarks.empty() && state.undoMarks.back() > depth)
        state.undoMarks.pop_back();
}

bool isAtMark(const DrawingState& state, int depth)
{
    return !state.undoMarks.empty() && state.undoMarks.back() == depth;
}

} // namespace

UndoOutcome undoSteps(TvDbDatabase& database, int count)
{
    const ChangeTeller teller(database);
    DrawingState& state = stateOf(database);
    UndoOutcome outcome;
    while (outcome.steps < count) {
        if (isAtMark(state, database.undoDepth())) {
            state.undoMarks.pop_back();
            outcome.isStoppedByMark = true;
            break;
        }
        const TvStatusCode status = database.undo();
        outcome.isBlocked = status == TvStatus::WasOpenForWrite;
        if (status != TvStatus::Ok)
            break;
        ++outcome.steps;
        forgetBeyond(state, database.undoDepth());
    }
    return outcome;
}

UndoOutcome redoSteps(TvDbDatabase& database, int count)
{
    const ChangeTeller teller(database);
    UndoOutcome outcome;
    while (outcome.steps < count) {
        const TvStatusCode status = database.redo();
        outcome.isBlocked = status == TvStatus::WasOpenForWrite;
        if (status != TvStatus::Ok)
            break;
        ++outcome.steps;
    }
    return outcome;
}

UndoOutcome undoToMark(TvDbDatabase& database)
{
    return undoSteps(database, std::numeric_limits<int>::max());
}

bool hasUndoMark(TvDbDatabase& database)
{
    return !stateOf(database).undoMarks.empty();
}

void setUndoMark(TvDbDatabase& database)
{
    const int depth = database.undoDepth();
    DrawingState& state = stateOf(database);
    forgetBeyond(state, depth);
    if (!isAtMark(state, depth))
        state.undoMarks.push_back(depth);
}

void beginUndoGroup(TvDbDatabase& database)
{
    endUndoGroup(database);
    database.startUndoRecord();
    stateOf(database).groupBegin = database.undoDepth();
}

bool endUndoGroup(TvDbDatabase& database)
{
    DrawingState& state = stateOf(database);
    forgetBeyond(state, database.undoDepth());
    const std::optional<int> begin = std::exchange(state.groupBegin, std::nullopt);
    if (begin)
        database.joinUndo(*begin);
    forgetBeyond(state, database.undoDepth()); // marks within the group
    return begin.has_value();
}

} // namespace ed
