#pragma once

#include <functional>

#include <db/tv_db_database.h>

#include "drawings.h"
#include "tool_scene.h"

/// A folder with drawings in it, for the tool to work on.
class DrawingFolder
{
public:
    DrawingFolder();

    /// Puts a drawing there: one of our own, or a real one. Empty where that is absent.
    /// @param as  its name there; empty: the one that it has.
    std::string put(const std::string& drawing, const std::string& as = {}) const;
    std::string path(const std::string& name) const { return (m_folder.path() / name).string(); }
    std::string bytes(const std::string& name) const { return m_folder.read(name); }
    const TempFolder& folder() const { return m_folder; }
    /// Names of all files that are there.
    std::vector<std::string> names() const;
    /// @p text with this folder's path written as "DIR".
    std::string generalised(std::string text) const;

private:
    TempFolder m_folder;
};

/// Our own drawings: "line-ac1015.dwg", ...
std::vector<std::string> ownDrawings();
/// Names of the real drawings, those of our own among them; empty where they are absent.
std::vector<std::string> allRealDrawings();
/// Ours, and the real ones where they are.
std::vector<std::string> allDrawings();

/// Runs a verb for drawings without a process.
Said drawing(std::vector<std::string> line);
/// The same with --json.
nlohmann::ordered_json drawingJson(std::vector<std::string> line);

/// Reads a drawing, lets @p change change it, and saves it.
void damage(const std::string& path, const std::function<void(TvDbDatabase&)>& change);

/// What changes when somebody writes a file or puts another in its place.
struct FileState {
    std::string bytes;
    std::filesystem::file_time_type time;
    ino_t inode = 0;
    bool operator==(const FileState&) const = default;
};
FileState stateOf(const std::string& path);
void PrintTo(const FileState& state, std::ostream* out);

/// The fields of an object in their order.
std::vector<std::string> fieldsOf(const nlohmann::ordered_json& object);
