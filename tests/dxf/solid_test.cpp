#include <db/record_editor.h>

#include "object_text.h"

namespace {

// Coded: every character but blanks stands for another one.
const std::string kLong(600, '|');

std::string solid(const char* className)
{
    return std::string("0\n") + className +
           "\n5\n2A\n100\nAcDbEntity\n8\n0\n100\nAcDbModelerGeometry\n70\n1\n"
           "1\nlnn n o n\n1\n" +
           kLong.substr(0, 255) + "\n3\n" + kLong.substr(255, 255) + "\n3\n" + kLong.substr(510) +
           "\n1\n,;A^ B |\n";
}

std::string textOf(const db::Record& record)
{
    std::string text;
    const db::ArrayView blocks = record.array("sat");
    for (std::uint32_t i = 0; i < blocks.size(); ++i) {
        const auto bytes = blocks[i].bytes("data");
        text.append(bytes.begin(), bytes.end());
    }
    return text;
}

TEST(Solid, OfTextIsReadAndWrittenAsItWas)
{
    for (const char* name : {"3DSOLID", "REGION", "BODY"})
        for (const NamedVersion& version : kVersions) {
            if (version.version >= db::Version::Ac1027)
                continue;
            const db::Record record = readTwice(version, "ENTITIES", solid(name));

            EXPECT_FALSE(record.flag("empty"));
            EXPECT_EQ(record.integer("version"), 1);
            EXPECT_EQ(textOf(record), "lnn n o n\n" + kLong + "\n,;A^B |\n");
        }
}

TEST(Solid, PutsItsHistoryBehindTheText)
{
    const std::string text = solid("3DSOLID") + groups({{100, "AcDb3dSolid"}, {350, "2B"}});
    EXPECT_EQ(readTwice(kVersions[3], "ENTITIES", text).handle("history"), 0x2Bu);
}

TEST(Solid, ThatIsEmptyHasNoText)
{
    const std::string text = solid("BODY");
    const db::Record record =
        readTwice(kVersions[1], "ENTITIES", text.substr(0, text.find("1\nlnn")));
    EXPECT_TRUE(record.flag("empty"));
}

std::string written(const NamedVersion& version)
{
    const OpenFile file = openDxf(groups({{0, "SECTION"},
                                          {2, "HEADER"},
                                          {9, "$ACADVER"},
                                          {1, version.name},
                                          {0, "ENDSEC"},
                                          {0, "SECTION"},
                                          {2, "ENTITIES"}}) +
                                  solid("3DSOLID") + groups({{0, "ENDSEC"}, {0, "EOF"}}));
    if (!file)
        return {};
    Edit edit(*file);
    edit.change(0x2A);
    return edit.written(version.version) ? edit.text : std::string();
}

TEST(Solid, HasThePartOfItsHistoryWhereItHasAHistory)
{
    EXPECT_NE(written(kVersions[0]).find("AcDbModelerGeometry"), std::string::npos);
    EXPECT_EQ(written(kVersions[0]).find("AcDb3dSolid"), std::string::npos);
    EXPECT_NE(written(kVersions[3]).find("AcDb3dSolid"), std::string::npos);
}

TEST(Solid, OfBitsIsRefused)
{
    const OpenFile file = openDxf(groups({{0, "SECTION"},
                                          {2, "HEADER"},
                                          {9, "$ACADVER"},
                                          {1, "AC1024"},
                                          {0, "ENDSEC"},
                                          {0, "SECTION"},
                                          {2, "ENTITIES"}}) +
                                  solid("3DSOLID") + groups({{0, "ENDSEC"}, {0, "EOF"}}));
    ASSERT_TRUE(file);
    Edit edit(*file);
    db::RecordEditor(edit.change(0x2A)).setInteger("version", 2);

    const base::Status refused = edit.write(db::Version::Ac1024).status();

    EXPECT_EQ(refused.failure(), base::Failure::Unsupported);
    EXPECT_EQ(told(refused).find("3DSOLID") == std::string::npos, false);
}

// Their content lies elsewhere in the file.
TEST(Solid, OfLaterVersionsStaysAsItIs)
{
    const OpenFile file = openDxf(groups({{0, "SECTION"},
                                          {2, "HEADER"},
                                          {9, "$ACADVER"},
                                          {1, "AC1032"},
                                          {0, "ENDSEC"},
                                          {0, "SECTION"},
                                          {2, "ENTITIES"}}) +
                                  solid("3DSOLID") + groups({{0, "ENDSEC"}, {0, "EOF"}}));
    ASSERT_TRUE(file);
    Edit edit(*file);

    const OpenFile back = edit.written(db::Version::Ac1032);

    ASSERT_TRUE(back);
    EXPECT_NE(edit.text.find("lnn n o n"), std::string::npos);
}

} // namespace
