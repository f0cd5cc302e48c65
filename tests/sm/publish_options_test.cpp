#include <gtest/gtest.h>

#include "sheet_set_builder.h"

namespace {

class PublishOptions : public SheetSetTest
{
protected:
    TvSmDatabase* db = create();
    TvSmPublishOptions* options = db->getSheetSet()->getPublishOptions();
};

} // namespace

TEST_F(PublishOptions, AreAComponentWithAHandleThatIsFound)
{
    EXPECT_TRUE(options->isKindOf(TvSmComponent::desc()));
    EXPECT_TRUE(handleOf(options).startsWith(u"g"));
    EXPECT_EQ(db->findObject(handleOf(options)), options);
    EXPECT_EQ(options->owner(), db->getSheetSet());
}

TEST_F(PublishOptions, AreEmptyUntilSet)
{
    EXPECT_EQ(options->getDefaultOutputdir(), nullptr);
    EXPECT_EQ(options->getEplotFormat(), 0);
    EXPECT_EQ(options->getDefaultFileName(), u"");
    EXPECT_FALSE(options->getDwfType() || options->getPromptForName() || options->getLayerInfo() ||
                 options->getLinesMerge() || options->getIncludeSheetData() ||
                 options->getIncludeSheetSetData());
}

TEST_F(PublishOptions, EachFlagIsItsOwnAndGoesThroughAFile)
{
    using Getter = bool (TvSmPublishOptions::*)() const;
    using Setter = bool (TvSmPublishOptions::*)(bool);
    const std::pair<Getter, Setter> flags[] = {
        {&TvSmPublishOptions::getDwfType, &TvSmPublishOptions::setDwfType},
        {&TvSmPublishOptions::getPromptForName, &TvSmPublishOptions::setPromptForName},
        {&TvSmPublishOptions::getLayerInfo, &TvSmPublishOptions::setLayerInfo},
        {&TvSmPublishOptions::getLinesMerge, &TvSmPublishOptions::setLinesMerge},
        {&TvSmPublishOptions::getIncludeSheetData, &TvSmPublishOptions::setIncludeSheetData},
        {&TvSmPublishOptions::getIncludeSheetSetData, &TvSmPublishOptions::setIncludeSheetSetData},
    };
    for (const auto& [getter, setter] : flags) {
        TvSmPublishOptions& changed = *options;
        ASSERT_TRUE((changed.*setter)(true));
        ASSERT_TRUE(db->save(0));
        TvSmDatabase read;
        ASSERT_TRUE(read.load(path()));
        const TvSmPublishOptions& there = *read.getSheetSet()->getPublishOptions();
        for (const auto& [other, unused] : flags)
            EXPECT_EQ((there.*other)(), other == getter);
        ASSERT_TRUE(manager.closeDatabase(db));
        db = create();
        options = db->getSheetSet()->getPublishOptions();
    }
}

TEST_F(PublishOptions, FolderFormatAndFileNameGoThroughAFile)
{
    auto* folderReference = newFor<TvSmFileReference>(options);
    ASSERT_TRUE(folderReference->setFileName(u"out"));
    ASSERT_TRUE(options->setDefaultOutputdir(folderReference));
    ASSERT_TRUE(options->setEplotFormat(-2) && options->setDefaultFileName(u"Set.pdf"));
    ASSERT_TRUE(db->save(0) && manager.closeDatabase(db));
    const TvSmPublishOptions* read = open()->getSheetSet()->getPublishOptions();
    ASSERT_TRUE(read->getDefaultOutputdir());
    EXPECT_EQ(read->getDefaultOutputdir()->getFileName(), u"out");
    EXPECT_EQ(read->getEplotFormat(), -2);
    EXPECT_EQ(read->getDefaultFileName(), u"Set.pdf");
}

TEST_F(PublishOptions, NullDropsTheOutputFolder)
{
    auto* folderReference = newFor<TvSmFileReference>(options);
    ASSERT_TRUE(options->setDefaultOutputdir(folderReference));
    EXPECT_TRUE(options->setDefaultOutputdir(nullptr));
    EXPECT_EQ(options->getDefaultOutputdir(), nullptr);
}
