#include "drawing_states.h"

#include <db/tv_db_database.h>

namespace ed {

namespace {

class States : public TvDbDatabaseReactor
{
public:
    DrawingState& of(TvDbDatabase& database)
    {
        const auto [at, isNew] = m_states.try_emplace(&database);
        if (isNew)
            database.addReactor(this);
        return at->second;
    }
    void databaseToBeDestroyed(const TvDbDatabase* database) override { m_states.erase(database); }

private:
    std::unordered_map<const TvDbDatabase*, DrawingState> m_states;
};

} // namespace

DrawingState& stateOf(TvDbDatabase& database)
{
    static auto& states = *new States; // drawings may outlive what ends with the program
    return states.of(database);
}

} // namespace ed
