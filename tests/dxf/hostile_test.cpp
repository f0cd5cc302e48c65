// Texts that are no drawings, or say impossible things: a status or a defined reading, quickly and
// in bounded memory.

#include "drawing_tools.h"

namespace {

std::string groups(std::initializer_list<std::pair<int, std::string>> list)
{
    std::string text;
    for (const auto& [code, value] : list)
        text += std::to_string(code) + "\n" + value + "\n";
    return text;
}

std::string section(const std::string& name, const std::string& body)
{
    return groups({{0, "SECTION"}, {2, name}}) + body + groups({{0, "ENDSEC"}});
}

const std::string kHeader =
    section("HEADER", groups({{9, "$ACADVER"}, {1, "AC1032"}, {9, "$HANDSEED"}, {5, "FFFF"}}));
const std::string kEnd = groups({{0, "EOF"}});

std::string line(const std::string& handle, const std::string& more = {})
{
    return groups({{0, "LINE"}, {5, handle}, {330, "1F"}, {100, "AcDbEntity"}, {8, "0"}}) +
           groups({{100, "AcDbLine"},
                   {10, "1"},
                   {20, "2"},
                   {30, "0"},
                   {11, "3"},
                   {21, "4"},
                   {31, "0"}}) +
           more;
}

std::string drawing(const std::string& entities)
{
    return kHeader + section("ENTITIES", entities) + kEnd;
}

base::Result<OpenFile> tryOpen(const std::string& text)
{
    return dxf::DxfCodec().open(bytesOf(text));
}

/// Everything that can be asked; what it says does not matter.
void askAll(const db::DrawingFile& file)
{
    db::Record record;
    for (const std::uint64_t handle : file.handles())
        if (!file.read(handle, record))
            (void)file.readCommon(handle, record);
    (void)file.header();
    (void)file.summary();
    (void)file.classes();
    (void)file.preview();
    (void)file.check();
}

void expectReason(const std::string& text, base::Reason reason)
{
    const auto file = tryOpen(text);
    ASSERT_FALSE(file);
    EXPECT_EQ(file.status().reason(), reason) << told(file.status());
}

std::size_t linesOf(const std::string& text)
{
    const OpenFile file = openDxf(text);
    return file ? handlesOf(*file, "LINE").size() : 0;
}

// ---- the file as a whole

TEST(HostileText, OfNothingIsNoDrawing)
{
    EXPECT_FALSE(tryOpen(""));
    EXPECT_FALSE(tryOpen("\n"));
    EXPECT_FALSE(tryOpen("0"));
    EXPECT_FALSE(tryOpen("0\n"));
    EXPECT_FALSE(tryOpen("hello\nworld\n"));
    EXPECT_FALSE(tryOpen(std::string(4096, '\0')));
}

TEST(HostileText, EndingAnywhereIsAStatusUnlessWhole)
{
    const std::string whole = drawing(line("2A") + line("2B"));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const auto file = tryOpen(whole.substr(0, size));
        const bool isWhole = size + 1 == whole.size(); // only the last line's end is missing
        EXPECT_EQ(bool(file), isWhole) << size;
    }
}

TEST(HostileText, EndingAtAnyLineOfARealFileIsAStatus)
{
    const OpenFile minimal = openMinimal("line-ac1018.dwg");
    ASSERT_TRUE(minimal);
    Edit edit(*minimal);
    ASSERT_TRUE(edit.written(db::Version::Ac1018));
    const std::string& whole = edit.text;
    std::size_t refused = 0, lines = 0;
    for (std::size_t at = whole.find('\n'); at + 1 < whole.size(); at = whole.find('\n', at + 1)) {
        ++lines;
        refused += !tryOpen(whole.substr(0, at + 1));
    }
    EXPECT_EQ(refused, lines);
}

TEST(HostileText, WithoutItsEndIsCutOff)
{
    expectReason(kHeader + section("ENTITIES", line("2A")), base::Reason::DxfTruncated);
    expectReason(kHeader + groups({{0, "SECTION"}, {2, "ENTITIES"}}) + line("2A"),
                 base::Reason::DxfTruncated);
    expectReason(kHeader + groups({{0, "SECTION"}, {2, "ENTITIES"}}) + line("2A") + kEnd,
                 base::Reason::DxfTruncated);
}

TEST(HostileText, WithACodeThatIsNoneNamesTheLine)
{
    const auto file = tryOpen(kHeader + "zero\nSECTION\n" + kEnd);
    ASSERT_FALSE(file);
    EXPECT_EQ(file.status().reason(), base::Reason::DxfNotGroups);
    ASSERT_EQ(file.status().arguments().size(), 1u);
    EXPECT_EQ(file.status().arguments()[0], TvString(u"15"));
}

TEST(HostileText, OfAnUnknownVersionIsRefusedWithItsName)
{
    const auto file = tryOpen(section("HEADER", groups({{9, "$ACADVER"}, {1, "AC1099"}})) + kEnd);
    ASSERT_FALSE(file);
    EXPECT_EQ(file.status().failure(), base::Failure::Unsupported);
    EXPECT_EQ(file.status().reason(), base::Reason::DxfVersion);
}

TEST(HostileText, OfAVersionWithoutBlockRecordsIsRefusedWithItsName)
{
    for (const char* version : {"AC1006", "AC1009"}) {
        const std::string header = section("HEADER", groups({{9, "$ACADVER"}, {1, version}}));
        const auto file = tryOpen(header + section("ENTITIES", line("2A")) + kEnd);
        ASSERT_FALSE(file) << version;
        EXPECT_EQ(file.status().reason(), base::Reason::DxfVersion);
        ASSERT_EQ(file.status().arguments().size(), 1u);
        EXPECT_EQ(file.status().arguments()[0].utf8(), version);
    }
    EXPECT_TRUE(tryOpen(section("ENTITIES", line("2A")) + kEnd)) << "that states no version";
}

TEST(HostileText, OfAllLineEndsThatFilesHaveIsRead)
{
    const std::string text = drawing(line("2A"));
    std::string carriage, mixed;
    bool isOdd = false;
    for (const char c : text) {
        carriage += c == '\n' ? std::string("\r\n") : std::string(1, c);
        isOdd = c == '\n' ? !isOdd : isOdd;
        mixed += c == '\n' && isOdd ? std::string("\r\n") : std::string(1, c);
    }
    EXPECT_EQ(linesOf(text), 1u);
    EXPECT_EQ(linesOf(carriage), 1u);
    EXPECT_EQ(linesOf(mixed), 1u);
    EXPECT_EQ(linesOf("\xEF\xBB\xBF" + text), 1u);
    EXPECT_EQ(linesOf("999\nmade by hand\n" + text), 1u);
}

TEST(HostileText, WithCarriageReturnsAloneIsRefused)
{
    std::string text = drawing(line("2A"));
    std::replace(text.begin(), text.end(), '\n', '\r');
    EXPECT_FALSE(tryOpen(text));
}

TEST(HostileText, WithBinaryZerosIsReadOrRefused)
{
    const std::string text = drawing(line("2A"));
    for (std::size_t at = 0; at < text.size(); at += 3)
        for (const char c : {'\0', '\x7F', '\x80', '\xFF'}) {
            std::string changed = text;
            changed[at] = c;
            if (const auto file = tryOpen(changed))
                askAll(**file);
        }
}

TEST(HostileText, WithTheMarkOfTheBinaryFormInItIsRefused)
{
    const std::string mark = std::string(18, 'x') + std::string("\r\n\x1A\0", 4);
    EXPECT_FALSE(tryOpen(mark));
    EXPECT_FALSE(tryOpen(mark + drawing(line("2A"))));
    EXPECT_FALSE(tryOpen(drawing(mark)));
}

TEST(HostileText, WithAFloodOfCommentsIsRead)
{
    std::string flood;
    for (int i = 0; i < 200000; ++i)
        flood += "999\n\n";
    EXPECT_EQ(linesOf(flood + drawing(line("2A", flood))), 1u);
}

TEST(HostileText, WithALongLineIsRead)
{
    const std::string text = drawing(
        groups(
            {{0, "TEXT"}, {5, "2A"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbText"}, {40, "1"}}) +
        groups({{1, std::string(8 << 20, 'x')}}));
    const OpenFile file = openDxf(text);
    ASSERT_TRUE(file);
    askAll(*file); // longer than records hold: kept as it stands
    Edit edit(*file);
    EXPECT_TRUE(edit.written(db::Version::Ac1032));
    EXPECT_NE(edit.text.find(std::string(8 << 20, 'x')), std::string::npos);
}

// ---- sections and objects

TEST(HostileText, WithSectionsInSectionsIsRefused)
{
    EXPECT_FALSE(tryOpen(kHeader + section("TABLES", section("ENTITIES", line("2A"))) + kEnd));
    // In a list of objects it is one whose class is not known, up to the first end.
    const auto file =
        tryOpen(kHeader + section("ENTITIES", section("ENTITIES", line("2A"))) + kEnd);
    EXPECT_FALSE(file);
}

TEST(HostileText, WithTheSameSectionTwiceHasBoth)
{
    EXPECT_EQ(
        linesOf(kHeader + section("ENTITIES", line("2A")) + section("ENTITIES", line("2B")) + kEnd),
        2u);
}

TEST(HostileText, WithNegativeAndHugeCodesIsRead)
{
    EXPECT_EQ(linesOf(drawing(line("2A", groups({{-5, "x"}, {99999, "y"}, {-99999, "z"}})))), 1u);
    EXPECT_FALSE(tryOpen(drawing(line("2A", "2147483648\nx\n"))));
}

TEST(HostileText, WithOneHandleTwiceGivesTheSecondANewOne)
{
    const OpenFile file = openDxf(drawing(line("2A") + line("2A") + line("2A")));
    ASSERT_TRUE(file);
    EXPECT_EQ(handlesOf(*file, "LINE").size(), 3u);
    const auto findings = file->check();
    ASSERT_EQ(findings.size(), 2u);
    EXPECT_EQ(findings[0].reason(), base::Reason::DxfDoubleHandle);
}

TEST(HostileText, WithNoOrImpossibleHandlesGivesNewOnes)
{
    for (const char* handle :
         {"0", "", "-1", "xyz", "FFFFFFFFFFFFFFFF", "FFFFFFFFFFFFFFFFFFFFFFFF"}) {
        const OpenFile file = openDxf(drawing(line(handle) + line("2A")));
        ASSERT_TRUE(file) << handle;
        const auto lines = handlesOf(*file, "LINE");
        ASSERT_EQ(lines.size(), 2u) << handle;
        EXPECT_NE(lines[0], 0u);
        Edit edit(*file);
        EXPECT_TRUE(edit.written(db::Version::Ac1032)) << handle;
    }
}

TEST(HostileText, WithValuesThatAreNoneDamagesTheObjectOnly)
{
    for (const char* value : {"nan", "inf", "1e999", "", "1,5", "0x10", "one"}) {
        const std::string bad = groups({{0, "CIRCLE"}, {5, "2A"}, {100, "AcDbEntity"}, {8, "0"}}) +
                                groups({{100, "AcDbCircle"}, {10, "0"}, {20, "0"}, {40, value}});
        const OpenFile file = openDxf(drawing(bad + line("2B")));
        ASSERT_TRUE(file);
        db::Record record;
        EXPECT_EQ(file->read(0x2A, record).reason(), base::Reason::DxfObjectDamaged) << value;
        EXPECT_TRUE(file->read(0x2B, record));
        EXPECT_EQ(file->check().size(), 1u) << value;
    }
}

TEST(HostileText, WithHugeCountsTakesNoMoreThanItHas)
{
    const std::string text = drawing(
        groups(
            {{0, "LWPOLYLINE"}, {5, "2A"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbPolyline"}}) +
        groups({{90, "2147483647"}, {10, "1"}, {20, "2"}}) +
        groups({{0, "HATCH"}, {5, "2B"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbHatch"}}) +
        groups({{91, "2147483647"}, {92, "2"}, {93, "2147483647"}, {75, "0"}, {98, "-1"}}) +
        groups({{0, "MESH"}, {5, "2C"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbSubDMesh"}}) +
        groups({{92, "4294967295"}, {93, "-5"}, {94, "2147483647"}, {90, "1"}}) +
        groups(
            {{0, "INSERT"}, {5, "2D"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbMInsertBlock"}}) +
        groups({{2, "X"}, {70, "65535"}, {71, "65535"}}) +
        groups({{0, "POLYLINE"}, {5, "2E"}, {100, "AcDbEntity"}, {8, "0"}, {66, "1"}}) +
        groups({{71, "32767"}, {72, "32767"}, {70, "16"}}));
    const OpenFile file = openDxf(text);
    ASSERT_TRUE(file);
    askAll(*file);
    Edit edit(*file);
    (void)edit.write(db::Version::Ac1032);
}

TEST(HostileText, WithOddHexDamagesTheObjectOnly)
{
    const OpenFile file = openDxf(drawing(line("2A") + groups({{0, "LINE"}, {5, "2B"}}) +
                                          groups({{100, "AcDbEntity"}, {92, "3"}, {310, "ABC"}})));
    ASSERT_TRUE(file);
    db::Record record;
    EXPECT_TRUE(file->read(0x2A, record));
    EXPECT_EQ(file->read(0x2B, record).reason(), base::Reason::DxfObjectDamaged);
}

// ---- what hangs together

TEST(HostileText, WithOwnersInACircleIsRead)
{
    const auto dictionary = [](const char* handle, const char* owner, const char* entry) {
        return groups({{0, "DICTIONARY"}, {5, handle}, {330, owner}, {100, "AcDbDictionary"}}) +
               groups({{281, "1"}, {3, "X"}, {350, entry}});
    };
    const OpenFile file = openDxf(
        kHeader + section("OBJECTS", dictionary("C", "B", "B") + dictionary("B", "C", "C")) + kEnd);
    ASSERT_TRUE(file);
    askAll(*file);
    EXPECT_EQ(recordOf(*file, 0xB).handle("owner"), 0xCu);
    Edit edit(*file);
    EXPECT_TRUE(edit.written(db::Version::Ac1032));
}

TEST(HostileText, WithBlocksInsertingThemselvesIsRead)
{
    std::string blocks;
    for (int i = 0; i < 12; ++i) {
        const std::string name = "B" + std::to_string(i), next = "B" + std::to_string((i + 1) % 12);
        blocks += groups({{0, "BLOCK"}, {100, "AcDbEntity"}, {8, "0"}, {2, name}, {70, "0"}});
        for (int k = 0; k < 10; ++k)
            blocks += groups({{0, "INSERT"}, {8, "0"}, {2, next}, {10, "0"}, {20, "0"}});
        blocks += groups({{0, "ENDBLK"}, {8, "0"}});
    }
    const OpenFile file = openDxf(kHeader + section("BLOCKS", blocks) + kEnd);
    ASSERT_TRUE(file);
    askAll(*file);
    EXPECT_EQ(handlesOf(*file, "INSERT").size(), 120u);
}

TEST(HostileText, WithEndsOfNothingIsRead)
{
    const OpenFile file =
        openDxf(drawing(groups({{0, "SEQEND"}, {0, "ENDBLK"}, {0, "ENDTAB"}}) +
                        groups({{0, "VERTEX"}, {0, "ATTRIB"}, {0, "BLOCK"}}) + line("2A")));
    ASSERT_TRUE(file);
    askAll(*file);
    EXPECT_EQ(handlesOf(*file, "LINE").size(), 1u);
}

TEST(HostileText, WithBracesThatNeverCloseIsRead)
{
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "1002\n{\n";
    const std::string open = groups({{102, "{ACAD_REACTORS"}, {330, "1"}, {102, "{OTHER"}});
    const OpenFile file = openDxf(drawing(groups({{0, "LINE"}, {5, "2A"}}) + open + line("2B") +
                                          line("2C", groups({{1001, "ACAD"}}) + deep)));
    ASSERT_TRUE(file);
    askAll(*file);
    Edit edit(*file);
    EXPECT_TRUE(edit.written(db::Version::Ac1032));
}

TEST(HostileText, WithManyNamesAndLayoutsStaysQuick)
{
    std::string entities, objects;
    for (int i = 0; i < 20000; ++i) {
        const std::string number = std::to_string(i);
        entities += groups({{0, "POINT"}, {8, "L" + number}, {6, "T" + number}, {10, "0"}});
        objects +=
            groups({{0, "LAYOUT"}, {100, "AcDbPlotSettings"}, {100, "AcDbLayout"}, {1, "N"}}) +
            groups({{330, "1F"}});
    }
    const OpenFile file =
        openDxf(kHeader + section("ENTITIES", entities) + section("OBJECTS", objects) + kEnd);
    ASSERT_TRUE(file);
    askAll(*file);
}

// ---- texts

TEST(HostileText, WithEscapesThatMeanNothingKeepsThem)
{
    for (const char* value :
         {"\\U+", "\\U+12", "\\U+XYZW", "\\M+", "\\M+9", "\\M+1ZZZZ", "^", "^\x01"}) {
        const OpenFile file = openDxf(drawing(groups({{0, "TEXT"},
                                                      {5, "2A"},
                                                      {100, "AcDbEntity"},
                                                      {8, "0"},
                                                      {100, "AcDbText"},
                                                      {1, value}})));
        ASSERT_TRUE(file);
        const std::u16string text(recordOf(*file, 0x2A).text("text"));
        Edit edit(*file);
        edit.change(0x2A);
        const OpenFile back = edit.written(db::Version::Ac1032);
        ASSERT_TRUE(back) << value;
        EXPECT_EQ(recordOf(*back, 0x2A).text("text"), text) << value;
    }
}

TEST(HostileText, WithEscapesInSmallDigitsIsWrittenInCapitals)
{
    const std::string old =
        section("HEADER", groups({{9, "$ACADVER"}, {1, "AC1018"}, {9, "$HANDSEED"}, {5, "FFFF"}}));
    const auto text = [](const char* handle, const char* value) {
        return groups(
                   {{0, "TEXT"}, {5, handle}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbText"}}) +
               groups({{1, value}});
    };
    const OpenFile file = openDxf(
        old + section("ENTITIES", text("2A", "\\U+03a9+\\u+03a9 u+03a9") + text("2B", "\\U+03a9")) +
        kEnd);
    ASSERT_TRUE(file);
    EXPECT_EQ(recordOf(*file, 0x2A).text("text"), u"\u03A9+\u03A9 u+03a9");
    Edit edit(*file);
    edit.change(0x2B); // the other is copied as it stands
    const auto bytes = edit.write(db::Version::Ac1018);
    ASSERT_TRUE(bytes);
    const std::string written(bytes->begin(), bytes->end());
    EXPECT_NE(written.find("\\U+03A9+\\U+03A9 u+03a9\n"), written.npos);
    EXPECT_EQ(written.find("\\U+03a9"), written.npos);
}

TEST(HostileText, WithHalvesOfPairsIsReadAndWritten)
{
    const OpenFile file = openDxf(
        drawing(groups({{0, "TEXT"}, {5, "2A"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbText"}}) +
                groups({{1, "a\\U+D800b\\U+DC00\\U+D83D\\U+DE00"}})));
    ASSERT_TRUE(file);
    askAll(*file);
    Edit edit(*file);
    edit.change(0x2A);
    EXPECT_TRUE(edit.written(db::Version::Ac1032));
}

TEST(HostileText, WithBytesThatAreNoUtf8IsRead)
{
    const OpenFile file = openDxf(
        drawing(groups({{0, "TEXT"}, {5, "2A"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbText"}}) +
                groups({{1, "a\xC3(\xFF\xED\xA0\x80z"}})));
    ASSERT_TRUE(file);
    const db::Record record = recordOf(*file, 0x2A);
    EXPECT_EQ(record.text("text").front(), u'a');
    EXPECT_EQ(record.text("text").back(), u'z');
    EXPECT_NE(record.text("text").find(u'\xFFFD'), std::u16string::npos);
}

} // namespace
