#include "drawing_scene.h"

#include <algorithm>
#include <ostream>

#include <sys/stat.h>

#include <dwg/dwg_codec.h>
#include <dxf/dxf_codec.h>

namespace fs = std::filesystem;

namespace {

fs::path ownFolder()
{
    return fs::path(KV_TEST_DATA) / "dwg";
}

} // namespace

DrawingFolder::DrawingFolder()
{
    dwg::install();
    dxf::install();
}

std::string DrawingFolder::put(const std::string& drawing, const std::string& as) const
{
    const fs::path own = ownFolder() / drawing;
    const fs::path from = fs::exists(own) ? own : drawingsFolder() / drawing;
    if (!fs::exists(from))
        return {};
    const fs::path to = m_folder.path() / (as.empty() ? drawing : as);
    fs::copy_file(from, to);
    fs::permissions(to, fs::perms::owner_write, fs::perm_options::add);
    return to.string();
}

std::vector<std::string> DrawingFolder::names() const
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(m_folder.path()))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string DrawingFolder::generalised(std::string text) const
{
    for (const std::string& from :
         {fs::canonical(m_folder.path()).string(), m_folder.path().string()})
        for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at))
            text.replace(at, from.size(), "DIR");
    return text;
}

std::vector<std::string> ownDrawings()
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(ownFolder()))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> allRealDrawings()
{
    std::vector<std::string> names;
    for (const auto& [name, facts] : realDrawings(""))
        names.push_back(name);
    return names;
}

std::vector<std::string> allDrawings()
{
    std::vector<std::string> names = ownDrawings();
    for (const std::string& name : allRealDrawings())
        if (std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
    return names;
}

Said drawing(std::vector<std::string> line)
{
    line.insert(line.begin(), "drawing");
    return runLine(line);
}

nlohmann::ordered_json drawingJson(std::vector<std::string> line)
{
    line.push_back("--json");
    return drawing(std::move(line)).json();
}

void damage(const std::string& path, const std::function<void(TvDbDatabase&)>& change)
{
    TvDbDatabase database(false, true);
    const TvString file = base::pathFromNative(path);
    ASSERT_EQ(database.readDwgFile(file), TvStatus::Ok);
    change(database);
    ASSERT_EQ(database.saveAs(file), TvStatus::Ok)
        << static_cast<int>(database.lastFailure().reason());
}

FileState stateOf(const std::string& path)
{
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    std::ifstream in(path, std::ios::binary);
    return {{std::istreambuf_iterator<char>(in), {}}, fs::last_write_time(path), status.st_ino};
}

void PrintTo(const FileState& state, std::ostream* out)
{
    *out << state.bytes.size() << " bytes, file " << state.inode << ", "
         << state.time.time_since_epoch().count();
}

std::vector<std::string> fieldsOf(const nlohmann::ordered_json& object)
{
    std::vector<std::string> names;
    for (const auto& [name, value] : object.items())
        names.push_back(name);
    return names;
}
