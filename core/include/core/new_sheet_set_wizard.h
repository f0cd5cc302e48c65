#pragma once

#include <functional>
#include <memory>

class TvSmDatabase;

/// Lets the user make a sheet set, and opens it in the panel when he finished and SSMAUTOOPEN is
/// not 0. While there is no wizard the command line says so.
void RunNewSheetSetWizard();

namespace core {

/// The wizard that makes sheet sets, as the session knows it.
class NewSheetSetWizard
{
public:
    /// What DoModal() answers when the user went all the way.
    static constexpr int kFinished = 12325;

    virtual ~NewSheetSetWizard() = default;
    virtual int DoModal() = 0;
    /// The set that was made; null when none was. The manager's.
    virtual TvSmDatabase* database() const = 0;
};

/// Supplied by the room that has the wizard; an empty function takes it away.
void setNewSheetSetWizard(std::function<std::unique_ptr<NewSheetSetWizard>()> make);

} // namespace core
