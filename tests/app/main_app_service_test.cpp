// What the program tells its modules of folders.

#include <app/main_app_service.h>

#include <filesystem>

#include <app/program_folders.h>
#include <gtest/gtest.h>

#include "temp_folder.h"

namespace {

TEST(MainAppService, TemplatesAreTheUsersOwnOnceHeHasSomeAndThoseOfTheProgramBefore)
{
    const TempFolder folder;
    const TvString program = folder.file("usr/bin");
    app::MainAppService service(folder.file("config"), folder.file("data"), program);
    EXPECT_EQ(service.GetUserLocalApplicationDataTemplatePath(), folder.file("data/templates"))
        << "nobody has any";
    std::filesystem::create_directories(folder.path() / "usr/share/tarvik/templates/SheetSets");
    EXPECT_EQ(service.GetUserLocalApplicationDataTemplatePath(),
              folder.file("usr/share/tarvik/templates"));
    std::filesystem::create_directories(folder.path() / "data/templates/SheetSets");
    EXPECT_EQ(service.GetUserLocalApplicationDataTemplatePath(), folder.file("data/templates"));
}

TEST(MainAppService, TheDevelopmentBuildHasTemplatesWhereAProgramLooksForThem)
{
    const TvString folder = app::templateFolderFor(TvString(std::string_view(KV_BUILD_DIR "/bin")));
    const std::filesystem::path sheets = std::filesystem::path(folder.utf8()) / "SheetSets";
    EXPECT_TRUE(std::filesystem::exists(sheets / "ISO sheets.dwt")) << sheets;
    EXPECT_TRUE(std::filesystem::exists(sheets / "Imperial sheets.dwt")) << sheets;
}

TEST(MainAppService, WithoutFoldersThereAreNoTemplates)
{
    app::MainAppService service({}, {});
    EXPECT_TRUE(service.GetUserLocalApplicationDataTemplatePath().isEmpty());
}

} // namespace
