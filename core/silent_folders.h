#pragma once

#include <string>

namespace core {

/// A folder that some thread asks about while this lives. Where that takes long, nobody else needs
/// to ask: threads that wait for one dead share must not pile up.
class AskedFolder
{
public:
    explicit AskedFolder(std::string folder);
    ~AskedFolder();
    AskedFolder(const AskedFolder&) = delete;
    AskedFolder& operator=(const AskedFolder&) = delete;

private:
    const std::string m_folder;
};

/// Whether somebody has been waiting for that folder for longer than @p waitedMs.
bool isSilent(const std::string& folder, int waitedMs);

/// "" for a name without a folder; else with the slash at its end.
std::string folderOfNative(const std::string& path);

} // namespace core
