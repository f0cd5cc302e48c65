#include <set>

#include <resources/dialogs.h>
#include <resources/texts.h>

using text::Control;

TEST(Dialogs, HaveNumbersAndIdsOfTheirOwn)
{
    int former = 0;
    for (const text::DialogTemplate& plan : text::allDialogs()) {
        EXPECT_GT(plan.number, former);
        former = plan.number;
        std::set<int> ids;
        for (const text::ControlTemplate& row : plan.controls)
            EXPECT_TRUE(row.id == 0 || ids.insert(row.id).second) << plan.number << ": " << row.id;
    }
    EXPECT_GT(former, 0);
}

TEST(Dialogs, SayWhatIsInTheResources)
{
    for (const text::DialogTemplate& plan : text::allDialogs()) {
        EXPECT_TRUE(plan.title == 0 || text::find(plan.title)) << plan.number;
        for (const text::ControlTemplate& row : plan.controls)
            EXPECT_TRUE(row.text == 0 || text::find(row.text)) << plan.number << ": " << row.text;
    }
}

TEST(Dialogs, HoldTheirControls)
{
    for (const text::DialogTemplate& plan : text::allDialogs())
        for (const text::ControlTemplate& row : plan.controls) {
            EXPECT_GE(std::min(row.x, row.y), 0) << plan.number << ": " << row.id;
            EXPECT_GT(std::min(row.width, row.height), 0) << plan.number << ": " << row.id;
            EXPECT_LE(row.x + row.width, plan.width) << plan.number << ": " << row.id;
            EXPECT_LE(row.y + row.height, plan.height) << plan.number << ": " << row.id;
        }
}

TEST(Dialogs, HaveAtMostOneDefaultButton)
{
    for (const text::DialogTemplate& plan : text::allDialogs()) {
        int defaults = 0;
        for (const text::ControlTemplate& row : plan.controls) {
            defaults += (row.style & text::kDefault) != 0;
            EXPECT_TRUE(!(row.style & text::kDefault) || row.kind == Control::Button);
        }
        EXPECT_LE(defaults, 1) << plan.number;
    }
}

TEST(Dialogs, AreFoundByTheirNumber)
{
    ASSERT_TRUE(text::findDialog(10001));
    EXPECT_EQ(text::findDialog(10001)->number, 10001);
    EXPECT_FALSE(text::findDialog(0));
    EXPECT_FALSE(text::findDialog(-1));
}
