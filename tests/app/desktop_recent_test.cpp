#include <app/desktop_recent.h>

#include <base/faulty_file_ops.h>
#include <base/kv_file_system.h>
#include <gtest/gtest.h>

#include "temp_folder.h"

namespace {

class DesktopRecent : public testing::Test
{
protected:
    base::Status note(const char* path)
    {
        return app::noteRecentFile(base::systemFileOps(), clock, folder.file("recent.xbel"),
                                   TvString(std::string_view(path)));
    }
    std::string list() { return folder.read("recent.xbel"); }
    bool has(const std::string& text) { return list().find(text) != std::string::npos; }
    int countOf(const std::string& text)
    {
        const std::string all = list();
        int count = 0;
        for (std::size_t at = all.find(text); at != std::string::npos; at = all.find(text, at + 1))
            ++count;
        return count;
    }

    TempFolder folder;
    base::ManualClock clock;
};

TEST_F(DesktopRecent, AFileGetsABookmarkWithItsTypeAndProgram)
{
    ASSERT_TRUE(note("/plans/über & all/a b.dwg"));
    EXPECT_TRUE(has("href=\"file:///plans/%C3%BCber%20%26%20all/a%20b.dwg\"")) << list();
    EXPECT_TRUE(has("<mime:mime-type type=\"image/vnd.dwg\"")) << list();
    EXPECT_TRUE(has("name=\"tarvik\"")) << list();
    EXPECT_TRUE(has("count=\"1\"")) << list();
    ASSERT_TRUE(note("/plans/über & all/a b.dwg"));
    EXPECT_EQ(countOf("<bookmark href"), 1) << list();
    EXPECT_TRUE(has("count=\"2\"")) << list();
    ASSERT_TRUE(note("/plans/house.dst"));
    EXPECT_EQ(countOf("<bookmark href"), 2);
    EXPECT_TRUE(has("application/x-tarvik-sheet-set+xml"));
}

TEST_F(DesktopRecent, WhatOthersWroteStays)
{
    folder.write(
        "recent.xbel",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xbel version=\"1.0\">\n"
        "  <!-- kept -->\n"
        "  <bookmark href=\"file:///other.txt\" added=\"2020-01-01T00:00:00Z\"><title>Öther"
        "</title><info><metadata owner=\"else\"/></info></bookmark>\n"
        "  <bookmark href=\"file:///a.dwg\" added=\"2020-01-01T00:00:00Z\"><info>"
        "<metadata owner=\"http://freedesktop.org\"><bookmark:applications>"
        "<bookmark:application name=\"viewer\" exec=\"viewer\" count=\"7\"/>"
        "</bookmark:applications></metadata></info></bookmark>\n</xbel>\n");
    ASSERT_TRUE(note("/a.dwg"));
    for (const char* kept : {"<!-- kept -->", "Öther", "owner=\"else\"", "name=\"viewer\"",
                             "count=\"7\"", "name=\"tarvik\""})
        EXPECT_TRUE(has(kept)) << kept << "\n" << list();
    EXPECT_EQ(countOf("added=\"2020-01-01T00:00:00Z\""), 2) << "when it came in stays";
}

TEST_F(DesktopRecent, WhatIsNoListIsLeftAlone)
{
    folder.write("recent.xbel", "no list");
    EXPECT_FALSE(note("/a.dwg"));
    EXPECT_EQ(list(), "no list");
    folder.write("recent.xbel", "<other/>");
    EXPECT_FALSE(note("/a.dwg"));
    EXPECT_EQ(list(), "<other/>");
}

TEST_F(DesktopRecent, OtherFilesAndNoListAreNothing)
{
    EXPECT_TRUE(note("/notes.txt"));
    EXPECT_TRUE(note("relative.dwg"));
    EXPECT_TRUE(app::noteRecentFile(base::systemFileOps(), clock, {}, u"/a.dwg"));
    EXPECT_FALSE(KvFileSystem::pathFileExists(folder.file("recent.xbel")));
}

TEST_F(DesktopRecent, IsWrittenWholeOrNotAtAll)
{
    ASSERT_TRUE(note("/a.dwg"));
    const std::string before = list();
    base::FaultyFileOps faulty(base::systemFileOps());
    faulty.failKind(base::FaultyFileOps::Kind::Write, ENOSPC);
    EXPECT_FALSE(app::noteRecentFile(faulty, clock, folder.file("recent.xbel"), u"/b.dwg"));
    EXPECT_EQ(list(), before);
}

} // namespace
