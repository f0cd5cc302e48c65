// The publish options as rows, and what stands against them.

#include <ed/user_prompts.h>
#include <publish/publish_option_rows.h>
#include <resources/texts.h>

#include "sheet_set_builder.h"

namespace {

/// A set that takes changes at any time.
class PublishOptionsTest : public SheetSetTest
{
protected:
    PublishOptionsTest()
    {
        database->getSheetSet()->setName(u"House");
        rows = publish::publishOptionRows(*options);
    }
    ed::PropertyRow& row(std::size_t index) { return *rows[index]; }
    int problem() const
    {
        const auto found = publish::problemOf(*options);
        return found ? found->text : 0;
    }

    TvSmDatabase* database = create();
    TvSmPublishOptions* options = database->getSheetSet()->getPublishOptions();
    std::vector<std::unique_ptr<ed::PropertyRow>> rows;
};

enum Row : std::size_t {
    kFolder,
    kType,
    kPrompt,
    kFileName,
    kLayers,
    kLines,
    kSetData,
    kSheetData
};

} // namespace

TEST_F(PublishOptionsTest, HaveNamesDescriptionsAndCategories)
{
    const int names[] = {1202, 1205, 1209, 1213, 1216, 1220, 1229, 1231};
    const int categories[] = {1, 2, 2, 2, 2, 2, 3, 3};
    const int categoryNames[] = {1201, 1204, 1224};
    ASSERT_EQ(rows.size(), std::size(names));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(row(i).name(), TvString(text::find(names[i])));
        EXPECT_EQ(row(i).description(), TvString(text::find(names[i] + 1)));
        EXPECT_EQ(row(i).categoryId(), categories[i]);
        EXPECT_EQ(row(i).categoryName(), TvString(text::find(categoryNames[categories[i] - 1])));
    }
}

TEST_F(PublishOptionsTest, TheFirstValueOfAChoiceIsYes)
{
    struct Choice {
        std::size_t row;
        bool (TvSmPublishOptions::*get)() const;
        int yes, no;
    };
    using Options = TvSmPublishOptions;
    const Choice choices[] = {{kType, &Options::getDwfType, 1207, 1208},
                              {kPrompt, &Options::getPromptForName, 1211, 1212},
                              {kLayers, &Options::getLayerInfo, 1218, 1219},
                              {kLines, &Options::getLinesMerge, 1222, 1223},
                              {kSetData, &Options::getIncludeSheetSetData, 1218, 1219},
                              {kSheetData, &Options::getIncludeSheetData, 1218, 1219}};
    for (const Choice& choice : choices) {
        ed::PropertyRow& one = row(choice.row);
        EXPECT_EQ(one.kind(), ed::PropertyKind::Choice);
        EXPECT_TRUE(one.setChoice(0));
        EXPECT_TRUE((options->*choice.get)());
        EXPECT_EQ(one.choice(), 0);
        EXPECT_EQ(one.choices(),
                  (std::vector<TvString>{text::find(choice.yes), text::find(choice.no)}));
        if (choice.row == kType)
            continue; // others depend on it
        EXPECT_TRUE(one.setChoice(1));
        EXPECT_FALSE((options->*choice.get)());
        EXPECT_EQ(one.choice(), 1);
    }
}

TEST_F(PublishOptionsTest, FilesOfSingleSheetsHaveNoNameOfTheirOwn)
{
    options->setDwfType(false);
    options->setPromptForName(false);
    EXPECT_TRUE(row(kPrompt).isReadOnly());
    EXPECT_FALSE(row(kPrompt).setChoice(0));
    EXPECT_EQ(row(kPrompt).choices(), std::vector<TvString>(2, text::find(1215)));
    EXPECT_TRUE(row(kFileName).isReadOnly());
    EXPECT_FALSE(row(kFileName).setText(u"other"));
    options->setDwfType(true);
    EXPECT_FALSE(row(kPrompt).isReadOnly());
    EXPECT_FALSE(row(kFileName).isReadOnly());
    options->setPromptForName(true);
    EXPECT_TRUE(row(kFileName).isReadOnly());
}

TEST_F(PublishOptionsTest, AFileNameHasItsEnding)
{
    options->setDwfType(true);
    options->setPromptForName(false);
    options->setDefaultFileName(u"old");
    EXPECT_EQ(row(kFileName).text(), TvString(u"old.dwf"));
    EXPECT_TRUE(row(kFileName).setText(u"plans"));
    EXPECT_EQ(options->getDefaultFileName(), TvString(u"plans.dwf"));
    EXPECT_TRUE(row(kFileName).setText(u"plans.DWF"));
    EXPECT_EQ(options->getDefaultFileName(), TvString(u"plans.DWF"));
}

TEST_F(PublishOptionsTest, TheOutputFolderIsMadeAtItsFirstEntry)
{
    EXPECT_TRUE(row(kFolder).text().isEmpty());
    const TvString there = folder.file("");
    EXPECT_TRUE(row(kFolder).setText(there));
    ASSERT_NE(options->getDefaultOutputdir(), nullptr);
    EXPECT_EQ(options->getDefaultOutputdir()->getFileName(), there);
    EXPECT_TRUE(row(kFolder).setText(folder.file("gone")));
    EXPECT_EQ(row(kFolder).text(), folder.file("gone")) << "as it was entered";
}

TEST_F(PublishOptionsTest, ASetWithoutAFileNameGetsItsOwn)
{
    publish::nameDefaultFile(*database, *options);
    EXPECT_EQ(options->getDefaultFileName(), TvString(u"House.dwf"));
    database->getSheetSet()->setName(u"Other");
    publish::nameDefaultFile(*database, *options);
    EXPECT_EQ(options->getDefaultFileName(), TvString(u"House.dwf"));
}

TEST_F(PublishOptionsTest, AFileNameIsTestedWhenItIsUsed)
{
    options->setDwfType(true);
    options->setPromptForName(false);
    for (const TvChar* empty : {u"", u".dwf", u"abc"}) {
        options->setDefaultFileName(empty);
        EXPECT_EQ(problem(), 332) << TvString(empty).utf8();
    }
    EXPECT_EQ(publish::problemOf(*options)->caption, 335);
    for (const TvChar bad : std::u16string_view(u"\\<>/?\":;*|,=`")) {
        const TvString name = TvString(u"a") + TvString(std::u16string(1, bad));
        options->setDefaultFileName(name + u".dwf");
        ASSERT_EQ(problem(), 611) << name.utf8();
        EXPECT_EQ(publish::problemOf(*options)->arguments, std::vector{name});
        EXPECT_EQ(publish::problemOf(*options)->caption, 0) << "the program's name";
    }
    options->setPromptForName(true);
    EXPECT_EQ(problem(), 0) << "asked for each time";
    options->setPromptForName(false);
    options->setDwfType(false);
    EXPECT_EQ(problem(), 0) << "no such file";
}

TEST_F(PublishOptionsTest, AFileNameOf64CharactersIsTakenAndOf65Refused)
{
    options->setDwfType(true);
    options->setPromptForName(false);
    options->setDefaultFileName(TvString(std::u16string(64, u'n')) + u".dwf");
    EXPECT_EQ(problem(), 0);
    options->setDefaultFileName(TvString(std::u16string(65, u'n')) + u".dwf");
    EXPECT_EQ(problem(), 580);
    EXPECT_EQ(publish::problemOf(*options)->caption, 335);
}

TEST_F(PublishOptionsTest, OfALongFileNameItsCharactersAreTestedFirst)
{
    options->setDwfType(true);
    options->setPromptForName(false);
    options->setDefaultFileName(TvString(std::u16string(65, u'*')) + u".dwf");
    EXPECT_EQ(problem(), 611);
}

TEST_F(PublishOptionsTest, AFileNameIsTestedBeforeTheFolder)
{
    options->setDwfType(true);
    options->setPromptForName(false);
    options->setDefaultFileName(u".dwf");
    row(kFolder).setText(folder.file("gone"));
    EXPECT_EQ(problem(), 332);
}

TEST_F(PublishOptionsTest, AnOutputFolderMustBeThereForOneFile)
{
    options->setDwfType(true);
    options->setPromptForName(true);
    EXPECT_EQ(problem(), 0) << "none is needed";
    row(kFolder).setText(folder.file("gone"));
    EXPECT_EQ(problem(), 1240);
    EXPECT_EQ(publish::problemOf(*options)->caption, 1239);
    row(kFolder).setText(folder.file(""));
    EXPECT_EQ(problem(), 0);
    row(kFolder).setText(folder.file("gone"));
    options->setDwfType(false);
    EXPECT_EQ(problem(), 0);
}
