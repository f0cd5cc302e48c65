#include <stdexcept>

#include <schema/condition.h>
#include <schema/table_ast.h>

namespace {

// The number that a condition without names comes to in a version.
std::int64_t valueOf(std::string_view text, int version = 32)
{
    const db::Condition folded = db::foldCondition(db::parseCondition(text), version);
    EXPECT_TRUE(folded.isConstant()) << text;
    return folded.value;
}

} // namespace

TEST(Condition, BindsAsItReads)
{
    struct Case {
        const char* text;
        std::int64_t value;
    };
    const Case cases[] = {
        {"1 or 0 and 0", 1},        {"not 0 and 0", 0},      {"not 6 & 1", 1},
        {"6 & 2 == 2", 1},          {"(6 & 2) == 2", 1},     {"2 + 3 * 4", 14},
        {"7 - 2 - 1", 4},           {"0x1F & 0x11", 17},     {"3 >= 3 and 2 < 3", 1},
        {"1 if 0 else 2", 2},       {"1 if 1 else 2", 1},    {"1 if 0 else 2 if 0 else 3", 3},
        {"popcount(0xFF & 15)", 4}, {"5 != 5 or 4 <= 4", 1}, {"not (3 > 2)", 0},
    };
    for (const Case& one : cases)
        EXPECT_EQ(valueOf(one.text), one.value) << one.text;
}

TEST(Condition, KnowsTheVersion)
{
    EXPECT_EQ(valueOf("V>=18 and V<24", 15), 0);
    EXPECT_EQ(valueOf("V>=18 and V<24", 21), 1);
    EXPECT_EQ(valueOf("V>=18 and V<24", 24), 0);
}

TEST(Condition, FoldsAwayWhatTheVersionDecides)
{
    const db::Condition condition = db::parseCondition("V<18 or not missing");
    EXPECT_EQ(db::foldCondition(condition, 15).value, 1);
    const db::Condition later = db::foldCondition(condition, 18);
    ASSERT_TRUE(later.is(db::Expression::Code::Not));
    EXPECT_EQ(later.parts[0].name, "missing");
    EXPECT_EQ(db::foldCondition(db::parseCondition("V>=21 and flag"), 18).value, 0);
}

TEST(Condition, SumsWrapAroundInsteadOfOverflowing)
{
    constexpr std::int64_t kLargest = INT64_MAX;
    EXPECT_EQ(db::applyOperator(db::Expression::Code::Add, kLargest, 1), INT64_MIN);
    EXPECT_EQ(db::applyOperator(db::Expression::Code::Multiply, kLargest, 2), -2);
}

TEST(Condition, RefusesWhatIsNone)
{
    for (const char* text : {"1 +", "(1", "1 if 1", "a b", "any(list.flags)", "&"})
        EXPECT_THROW(db::parseCondition(text), std::logic_error) << text;
}

TEST(Table, ReadsLinesWithAllTheirParts)
{
    const db::Body body = db::parseTable("  RC[n * 2] data 310 @18-24 = 7 ; why\n"
                                         "  DD(p.x) q.x\n");
    ASSERT_EQ(body.size(), 2u);
    EXPECT_EQ(body[0].type, "RC");
    EXPECT_EQ(body[0].count, "n * 2");
    EXPECT_EQ(body[0].name, "data");
    EXPECT_EQ(body[0].dxf, 310);
    EXPECT_EQ(body[0].value, "7");
    EXPECT_TRUE(body[0].versions.contains(db::Version::Ac1024));
    EXPECT_FALSE(body[0].versions.contains(db::Version::Ac1015));
    EXPECT_FALSE(body[0].versions.contains(db::Version::Ac1027));
    EXPECT_EQ(body[1].argument, "p.x");
    EXPECT_EQ(body[1].dxf, -1);
}

TEST(Table, NestsByIndentation)
{
    const db::Body body = db::parseTable("  if a:\n"
                                         "    B x\n"
                                         "  elif b:\n"
                                         "    for n items:\n"
                                         "      B y\n"
                                         "  else:\n"
                                         "    @21+:\n"
                                         "      B z\n"
                                         "  B last\n");
    ASSERT_EQ(body.size(), 2u);
    ASSERT_EQ(body[0].branches.size(), 3u);
    EXPECT_EQ(body[0].branches[1].body[0].kind, db::Node::Kind::For);
    EXPECT_EQ(body[0].branches[1].body[0].branches[0].body[0].name, "y");
    EXPECT_EQ(body[0].branches[2].body[0].versions.first, 21);
    EXPECT_EQ(body[1].name, "last");
}

TEST(Table, RefusesWhatIsNone)
{
    for (const char* text : {"  else:\n    B x\n", "  B x\n    B y\n", "  B\n", "  RC[n x\n"})
        EXPECT_THROW(db::parseTable(text), std::logic_error) << text;
}
