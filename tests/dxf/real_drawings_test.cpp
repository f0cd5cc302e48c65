#include "drawing_tools.h"
#include "told_objects.h"

namespace {

void expectNothingLost(const std::vector<std::string>& lost)
{
    constexpr std::size_t kShown = 20;
    for (std::size_t i = 0; i < std::min(lost.size(), kShown); ++i)
        ADD_FAILURE() << lost[i];
    EXPECT_EQ(lost.size(), 0u);
}

/// Keys of dictionaries whose object is away are taken out, so dictionaries are compared by their
/// other entries only.
std::set<std::uint64_t> changedBy(const Edit& edit, std::set<std::uint64_t> away)
{
    for (const auto& [handle, record] : edit.changed())
        away.insert(handle);
    return away;
}

TEST(RealDrawings, ComeBackFromTextAsTheyWere)
{
    for (const auto& path : allDrawings()) {
        SCOPED_TRACE(path.filename());
        const OpenFile drawing = openDwg(path);
        ASSERT_TRUE(drawing);
        Edit edit(*drawing);
        const std::set<std::uint64_t> away = takeUntoldAway(*drawing, edit);

        const OpenFile back = edit.written(drawing->version());

        if (!back)
            continue;
        std::vector<std::string> lost = lostBetween(*drawing, *back, changedBy(edit, away));
        for (const auto& [handle, record] : edit.changed())
            for (const std::string& difference : differences(record, recordOf(*back, handle), away))
                if (!isAccepted(record.classDef()->name(), difference))
                    lost.push_back(difference);
        expectNothingLost(lost);

        // And into a drawing again.
        Edit again(*back);
        const OpenFile third = again.writtenAsDwg(drawing->version());
        if (third)
            expectNothingLost(lostBetween(*back, *third, {}));
    }
}

// What text of a version holds is what bits of that version hold.
TEST(RealDrawings, AreTheSameInBothFormatsInEveryVersion)
{
    const auto path = drawingsFolder() / "leaders-ac1024.dwg";
    if (!std::filesystem::exists(path))
        GTEST_SKIP() << "no real drawings here";
    const OpenFile drawing = openDwg(path);
    ASSERT_TRUE(drawing);
    for (const db::Version version :
         {db::Version::Ac1015, db::Version::Ac1018, db::Version::Ac1021, db::Version::Ac1024,
          db::Version::Ac1027, db::Version::Ac1032}) {
        SCOPED_TRACE(static_cast<int>(version));
        Edit edit(*drawing);
        const std::set<std::uint64_t> away = takeUntoldAway(*drawing, edit);
        const OpenFile bits = edit.writtenAsDwg(version), text = edit.written(version);
        if (!bits || !text)
            continue;
        EXPECT_EQ(handlesOf(*text, "MULTILEADER").size(), 14u);
        expectNothingLost(lostBetween(*bits, *text, away));
    }
}

TEST(RealDrawings, AreWrittenAsTextWithNothingTakenAway)
{
    for (const char* name :
         {"leaders-ac1024.dwg", "layouts-ac1032.dwg", "tables-ac1032.dwg", "xdata-ac1032.dwg"}) {
        const auto path = drawingsFolder() / name;
        if (!std::filesystem::exists(path))
            GTEST_SKIP() << "no real drawings here";
        const OpenFile drawing = openDwg(path);
        ASSERT_TRUE(drawing);
        Edit edit(*drawing);

        const OpenFile back = edit.written(drawing->version());

        ASSERT_TRUE(back) << name;
        expectNothingLost(lostBetween(*drawing, *back, {}));
    }
}

TEST(Drawings, AreRefusedWithTheClassesThatStandInTheWay)
{
    const OpenFile drawing = openMinimal("line-ac1032.dwg");
    ASSERT_TRUE(drawing);
    Edit edit(*drawing);
    edit.add("PROXY_OBJECT", 0x500);

    const base::Status refused = edit.write(drawing->version()).status();

    EXPECT_EQ(refused.failure(), base::Failure::Unsupported);
    EXPECT_EQ(refused.reason(), base::Reason::DxfClassesNotWritten);
    ASSERT_EQ(refused.arguments().size(), 1u);
    const std::string classes = refused.arguments()[0].utf8();
    EXPECT_NE(classes.find("PROXY_OBJECT"), std::string::npos) << classes;
    EXPECT_EQ(classes.find("LINE"), std::string::npos) << classes;
}

} // namespace
