#pragma once

#include <functional>

namespace panel {

class PanelCommands;

/// Puts the handlers of a room above into the commands of every page, for as long as it lives.
///
/// A library with windows has one with static storage, so that loading it brings its commands and
/// unloading takes them away:
/// @code
/// const panel::HandlerInstaller kInstaller([](panel::PanelCommands& commands) {
///     commands.setHandler(panel::kNewSheet, [&commands](panel::SheetListPage& page) {
///         runNewSheet(page, commands.GetInsertionPlace());
///     });
/// });
/// @endcode
/// It reaches the pages that are made from then on, not those that are there already; a page that
/// is still there when the installer goes keeps its handlers.
class HandlerInstaller
{
public:
    /// @param install  called at the end of the making of each PanelCommands, which outlives all
    ///     handlers that are put in; must not make or remove an installer. Empty: does nothing.
    /// @note  Where two put a handler in for the same command, the one that was made last wins.
    explicit HandlerInstaller(std::function<void(PanelCommands& commands)> install);
    ~HandlerInstaller();
    HandlerInstaller(const HandlerInstaller&) = delete;
    HandlerInstaller& operator=(const HandlerInstaller&) = delete;

    /// Calls all of them, in the order in which they were made.
    static void installAll(PanelCommands& commands);

private:
    std::function<void(PanelCommands&)> m_install;
};

} // namespace panel
