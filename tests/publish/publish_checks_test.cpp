// The marks of the dialog that edits what is published.

#include <publish/publish_checks.h>
#include <sm/publishing.h>

#include "publish_scene.h"

namespace {

class PublishChecksTest : public PublishTest
{
protected:
    publish::PublishChecks checks() { return publish::PublishChecks(page.tree()); }
    panel::TreeItem& at(const TvSmPersist* object) { return *page.tree().itemOf(handleOf(object)); }
    void apply(const publish::PublishChecks& checks)
    {
        ASSERT_TRUE(database->lockDb(database));
        checks.apply();
        ASSERT_TRUE(database->unlockDb(database, true));
    }
    TvSmSheetSet* top() { return database->getSheetSet(); }
};

} // namespace

TEST_F(PublishChecksTest, AreReadFromTheObjects)
{
    exclude(details);
    exclude(cover);
    const publish::PublishChecks marks = checks();
    EXPECT_TRUE(marks.isChecked(at(top())));
    EXPECT_TRUE(marks.isChecked(at(ground)));
    EXPECT_FALSE(marks.isChecked(at(details)));
    EXPECT_TRUE(marks.isChecked(at(stair))) << "its own flag, whatever its subset's";
    EXPECT_FALSE(marks.isChecked(at(cover)));
    EXPECT_TRUE(marks.isChecked(at(roof))) << "an empty subset has no flag either";
}

TEST_F(PublishChecksTest, ASubsetBelowAnExcludedOneIsNotMarked)
{
    exclude(ground);
    EXPECT_FALSE(checks().isChecked(at(details)));
}

TEST_F(PublishChecksTest, TheRootIsMarkedWhileAnySheetIsPublished)
{
    exclude(ground);
    EXPECT_TRUE(checks().isChecked(at(top())));
    exclude(cover);
    EXPECT_FALSE(checks().isChecked(at(top())));
}

TEST_F(PublishChecksTest, TheRootsMarkGoesToAllSheetsAndToNoSubset)
{
    publish::PublishChecks marks = checks();
    marks.click(at(top()));
    EXPECT_FALSE(marks.isChecked(at(top())));
    for (const TvSmSheet* sheet : {plan, stair, section, cover})
        EXPECT_FALSE(marks.isChecked(at(sheet)));
    for (const TvSmSubset* subset : {ground, details, roof})
        EXPECT_TRUE(marks.isChecked(at(subset)));
    marks.click(at(details));
    marks.click(at(top()));
    for (const TvSmSheet* sheet : {plan, stair, section, cover})
        EXPECT_TRUE(marks.isChecked(at(sheet)));
    EXPECT_FALSE(marks.isChecked(at(details)));
}

TEST_F(PublishChecksTest, AMarkedSheetMarksTheRootAndNothingElse)
{
    publish::PublishChecks marks = checks();
    marks.click(at(top()));
    marks.click(at(ground));
    marks.click(at(plan));
    EXPECT_TRUE(marks.isChecked(at(plan)));
    EXPECT_TRUE(marks.isChecked(at(top())));
    EXPECT_FALSE(marks.isChecked(at(ground)));
    marks.click(at(plan));
    EXPECT_FALSE(marks.isChecked(at(plan)));
    EXPECT_TRUE(marks.isChecked(at(top())));
}

TEST_F(PublishChecksTest, NothingButAMarkedSheetMarksTheRoot)
{
    publish::PublishChecks marks = checks();
    marks.click(at(plan));
    EXPECT_TRUE(marks.isChecked(at(top())));
    marks.click(at(top()));
    marks.click(at(ground));
    marks.click(at(ground));
    EXPECT_TRUE(marks.isChecked(at(ground)));
    EXPECT_FALSE(marks.isChecked(at(top()))) << "a subset does not";

    exclude(ground);
    exclude(cover); // no sheet is published, but their own marks stand
    publish::PublishChecks none = checks();
    ASSERT_FALSE(none.isChecked(at(top())));
    none.click(at(plan));
    EXPECT_FALSE(none.isChecked(at(plan)));
    EXPECT_FALSE(none.isChecked(at(top()))) << "nor a sheet that loses its mark";
}

TEST_F(PublishChecksTest, AnUnmarkedSubsetExcludesItsSheetsWhoseOwnFlagsStay)
{
    publish::PublishChecks marks = checks();
    marks.click(at(ground));
    apply(marks);
    EXPECT_TRUE(ground->getExcludeFromPublish());
    for (const TvSmSheet* sheet : {plan, stair, section})
        EXPECT_FALSE(sheet->getExcludeFromPublish());
    std::vector<TvSmSheet*> sheets;
    CollectPublishableSheets(top(), sheets, true);
    EXPECT_EQ(sheets, std::vector{cover});
}

TEST_F(PublishChecksTest, AreWrittenForTheSetSubsetsAndSheets)
{
    exclude(cover);
    publish::PublishChecks marks = checks();
    marks.click(at(cover));
    marks.click(at(plan));
    marks.click(at(details));
    apply(marks);
    EXPECT_FALSE(cover->getExcludeFromPublish());
    EXPECT_TRUE(plan->getExcludeFromPublish());
    EXPECT_TRUE(details->getExcludeFromPublish());
    EXPECT_FALSE(ground->getExcludeFromPublish());
    EXPECT_FALSE(top()->getExcludeFromPublish());
    publish::PublishChecks again = checks();
    again.click(at(top()));
    apply(again);
    EXPECT_TRUE(top()->getExcludeFromPublish());
}
