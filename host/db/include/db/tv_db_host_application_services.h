#pragma once

class TvDbDatabase;
class TvDbLayoutManager;

/// What the database asks of the program that it runs in.
class TvDbHostApplicationServices
{
public:
    virtual ~TvDbHostApplicationServices();
    /// The drawing that commands work on: the active document's; null when there is none.
    virtual TvDbDatabase* workingDatabase() const { return m_working; }
    virtual void setWorkingDatabase(TvDbDatabase* database) { m_working = database; }
    /// Null before the program made one.
    virtual TvDbLayoutManager* layoutManager() const;

private:
    TvDbDatabase* m_working = nullptr; // not owned
};

/// The program's; one without a working drawing until the program supplies its own. Never null.
TvDbHostApplicationServices* tvdbHostApplicationServices();
/// Not owned; null brings back the one that was there at first.
void tvdbSetHostApplicationServices(TvDbHostApplicationServices* services);

namespace db {

/// Not owned; null takes it away. Of all services alike.
void setLayoutManager(TvDbLayoutManager* manager);

} // namespace db
