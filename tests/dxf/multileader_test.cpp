#include "object_text.h"

namespace {

const std::string kHead = groups({{0, "MULTILEADER"},
                                  {5, "2A"},
                                  {100, "AcDbEntity"},
                                  {8, "0"},
                                  {100, "AcDbMLeader"},
                                  {270, "2"},
                                  {300, "CONTEXT_DATA{"},
                                  {40, "2.0"},
                                  {10, "1.0"},
                                  {20, "2.0"},
                                  {30, "3.0"}});
const std::string kLeaders = groups({{110, "0.0"},
                                     {120, "0.0"},
                                     {130, "5.0"},
                                     {297, "1"},
                                     {302, "LEADER{"},
                                     {290, "1"},
                                     {291, "1"},
                                     {10, "4.0"},
                                     {20, "5.0"},
                                     {30, "6.0"},
                                     {11, "1.0"},
                                     {21, "0.0"},
                                     {31, "0.0"},
                                     {12, "7.0"},
                                     {22, "0.0"},
                                     {32, "0.0"},
                                     {13, "8.0"},
                                     {23, "0.0"},
                                     {33, "0.0"},
                                     {90, "3"},
                                     {40, "0.25"},
                                     {304, "LEADER_LINE{"},
                                     {10, "0.0"},
                                     {20, "0.0"},
                                     {30, "0.0"},
                                     {10, "9.0"},
                                     {20, "0.0"},
                                     {30, "0.0"},
                                     {11, "1.5"},
                                     {21, "0.0"},
                                     {31, "0.0"},
                                     {12, "2.5"},
                                     {22, "0.0"},
                                     {32, "0.0"},
                                     {91, "1"},
                                     {92, "-1056964608"},
                                     {93, "9"},
                                     {305, "}"},
                                     {304, "LEADER_LINE{"},
                                     {10, "1.0"},
                                     {20, "1.0"},
                                     {30, "0.0"},
                                     {91, "2"},
                                     {305, "}"},
                                     {271, "1"},
                                     {303, "}"},
                                     {302, "LEADER{"},
                                     {290, "0"},
                                     {291, "0"},
                                     {90, "4"},
                                     {40, "0.5"},
                                     {303, "}"},
                                     {272, "9"},
                                     {273, "8"},
                                     {301, "}"}});
const std::string kTail = groups({{90, "330752"},
                                  {170, "1"},
                                  {91, "-1040187392"},
                                  {290, "1"},
                                  {41, "0.36"},
                                  {10, "1.0"},
                                  {20, "2.0"},
                                  {30, "1.0"},
                                  {330, "0"},
                                  {177, "1"},
                                  {44, "3.5"},
                                  {302, "first"},
                                  {330, "0"},
                                  {177, "2"},
                                  {44, "4.5"},
                                  {302, "second"},
                                  {178, "1"},
                                  {45, "2.0"}});

TEST(MultiLeader, WithTextIsReadAndWrittenAsItWas)
{
    const std::string content = groups({{290, "1"},
                                        {304, "a text"},
                                        {12, "3.0"},
                                        {22, "1.0"},
                                        {32, "0.0"},
                                        {90, "-1056964608"},
                                        {91, "-939524096"},
                                        {173, "2"},
                                        {144, "10.0"},
                                        {144, "11.0"},
                                        {295, "1"}});
    for (const NamedVersion& version : kVersions) {
        const db::Record leader =
            readTwice(version, "ENTITIES", kHead + content + kLeaders + kTail);

        const db::RecordView context = leader.structure("ctx");
        EXPECT_EQ(context.text("text"), u"a text");
        EXPECT_EQ(context.array("col_sizes").size(), 2u);
        EXPECT_TRUE(context.flag("reversed"));
        const db::ArrayView roots = context.array("roots");
        ASSERT_EQ(roots.size(), 2u);
        EXPECT_EQ(roots[0].point("end_pt"), (db::Point{4, 5, 6}));
        EXPECT_EQ(roots[0].array("breaks")[0].point("b_end"), (db::Point{8, 0, 0}));
        const db::ArrayView lines = roots[0].array("lines");
        ASSERT_EQ(lines.size(), 2u);
        EXPECT_EQ(lines[0].array("pts").point(1), (db::Point{9, 0, 0}));
        EXPECT_EQ(lines[0].array("breaks")[0].point("b_start"), (db::Point{1.5, 0, 0}));
        EXPECT_EQ(lines[1].integer("index"), 2);
        EXPECT_EQ(roots[1].integer("index"), 4);
        EXPECT_EQ(leader.integer("overrides"), 330752);
        const db::ArrayView labels = leader.array("labels");
        ASSERT_EQ(labels.size(), 2u);
        EXPECT_EQ(labels[1].text("lb_text"), u"second");
        EXPECT_EQ(labels[1].real("lb_width"), 4.5);
    }
}

TEST(MultiLeader, WithABlockIsReadAndWrittenAsItWas)
{
    std::string content = groups({{290, "0"},
                                  {296, "1"},
                                  {341, "1F"},
                                  {14, "0.0"},
                                  {24, "0.0"},
                                  {34, "1.0"},
                                  {16, "2.0"},
                                  {26, "2.0"},
                                  {36, "2.0"},
                                  {46, "0.5"},
                                  {93, "-1056964608"}});
    for (int i = 0; i < 16; ++i)
        content += "47\n" + std::to_string(i) + ".5\n";
    for (const NamedVersion& version : kVersions) {
        const db::Record leader =
            readTwice(version, "ENTITIES", kHead + content + kLeaders + kTail);

        const db::RecordView context = leader.structure("ctx");
        EXPECT_FALSE(context.flag("has_text"));
        EXPECT_EQ(context.point("b_scale"), (db::Point{2, 2, 2}));
        EXPECT_EQ(context.array("matrix").real(15), 15.5);
        EXPECT_EQ(context.array("roots").size(), 2u);
    }
}

} // namespace
