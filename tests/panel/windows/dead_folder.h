#pragma once

#include <string>
#include <vector>

/// A folder that does not answer any more, for all of this process: whoever asks the system about
/// something in it by name waits until it is back.
///
/// The window's thread never waits: that it asked is noted, and it is told that the time is out.
/// One at a time. The calls that take a name are this program's own; they go on to the system's.
class DeadFolder
{
public:
    /// Still alive. @param folder  as the system names it. Made in the window's thread.
    explicit DeadFolder(std::string folder);
    /// It is back, and nobody waits in it any more.
    ~DeadFolder();
    DeadFolder(const DeadFolder&) = delete;
    DeadFolder& operator=(const DeadFolder&) = delete;

    void die();
    void comeBack();
    /// What the window's thread asked since it died: "stat /share/a.dwg".
    std::vector<std::string> askedByWindow() const;
    /// How many threads wait in it now.
    int waiting() const;
    /// How often another thread has asked since it died.
    int asked() const;
};
