#include "drawing_tools.h"
#include "independent_program.h"
#include "temp_folder.h"
#include "told_objects.h"

namespace {

/// Writes the drawing, without what text cannot tell, into @p folder; its path.
std::filesystem::path writtenInto(const std::filesystem::path& folder,
                                  const std::filesystem::path& drawing, db::Version version)
{
    const OpenFile file = openDwg(drawing);
    if (!file)
        return {};
    Edit edit(*file);
    takeUntoldAway(*file, edit);
    const auto bytes = edit.write(version);
    if (bytes.status().failure() == base::Failure::Unsupported)
        return {}; // the version cannot hold it
    EXPECT_TRUE(bytes) << drawing << " " << told(bytes.status());
    if (!bytes)
        return {};
    const auto path = folder / (drawing.stem().string() + "-as-" +
                                std::to_string(static_cast<int>(version)) + ".dxf");
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes->data()),
               static_cast<std::streamsize>(bytes->size()));
    return path;
}

TEST(IndependentProgram, HasNothingAgainstOurFiles)
{
    if (runScript("audit_drawing.py", {}).isMissing())
        GTEST_SKIP() << "python3-ezdxf is not installed";
    const TempFolder folder;
    std::vector<std::filesystem::path> files;
    for (const auto& path : allDrawings()) {
        const OpenFile drawing = openDwg(path);
        ASSERT_TRUE(drawing);
        files.push_back(writtenInto(folder.path(), path, drawing->version()));
    }
    for (const auto& path : allDrawings())
        for (const db::Version version : {db::Version::Ac1015, db::Version::Ac1032})
            if (path.filename() == "leaders-ac1024.dwg" || path.filename() == "line-ac1021.dwg")
                files.push_back(writtenInto(folder.path(), path, version));
    std::erase(files, std::filesystem::path());

    const ScriptRun run = runScript("audit_drawing.py", files);

    EXPECT_EQ(run.exitCode, 0) << run.output;
}

} // namespace
