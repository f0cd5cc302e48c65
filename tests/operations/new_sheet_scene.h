#pragma once

#include <filesystem>

#include <operations/new_sheet.h>

#include "document_scene.h"

/// Answers each question in turn; Cancel when there are no answers left.
class AnswersInTurn : public ScriptedMessages
{
public:
    Answer show(const Message& message) override
    {
        asked.push_back(message);
        if (answers.empty())
            return Answer::Cancel;
        const Answer next = answers.front();
        answers.erase(answers.begin());
        return next;
    }
    std::vector<Answer> answers;
};

/// Chooses a template as it was told, and notes what it was asked.
class NotingSheetWindow : public operations::NewSheetWindow
{
public:
    bool chooseTemplate(operations::SheetTemplate& out) override
    {
        told.push_back("choose");
        if (!choice.isComplete())
            return false;
        out = choice;
        return true;
    }
    void tellUnsupportedCharacters() override { told.push_back("characters"); }

    operations::SheetTemplate choice; ///< incomplete: the user gives up
    std::vector<std::string> told;
};

/// A set with a template and a folder for its sheets.
///
/// House: Ground (1 - Plan), Roof
class NewSheetScene : public DocumentTest
{
public:
    static void setTemplate(TvSmSubset& subset, const TvString& drawing, const TvString& layout)
    {
        auto* reference = newFor<TvSmTvDbLayoutReference>(&subset);
        EXPECT_TRUE(reference->setFileName(drawing) && reference->setName(layout) &&
                    subset.setDefaultTemplateLayout(reference));
    }
    static void setFolder(TvSmSubset& subset, const TvString& where)
    {
        auto* reference = newFor<TvSmFileReference>(&subset);
        EXPECT_TRUE(reference->setFileName(where) && subset.setNewSheetLocation(reference));
    }

protected:
    void SetUp() override
    {
        DocumentTest::SetUp();
        std::filesystem::create_directory(folder.path() / "sheets");
        DrawingMaker maker;
        maker.paper(u"A1").paper(u"A3").paper(u"Details").paper(u"Cover");
        maker.saveAs(path("house.dwt"));
        house = made("house.dst");
        change(house, [this](TvSmSheetSet& top) {
            ground = addSubset(&top, u"Ground");
            roof = addSubset(&top, u"Roof");
            plan = addSheet(ground, u"1", u"Plan");
            setTemplate(top, path("house.dwt"), u"A1");
            setFolder(top, path("sheets"));
        });
    }
    TvString path(const char* name) const { return folder.file(name); }
    TvString sheetPath(const char* name) const
    {
        return folder.file("sheets/" + std::string(name));
    }
    /// Names in the folder of the sheets.
    std::vector<std::string> drawings() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path() / "sheets"))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }
    std::vector<int> askedNumbers()
    {
        std::vector<int> numbers;
        for (const TvUserMessages::Message& message : std::exchange(answers.asked, {}))
            numbers.push_back(message.text);
        return numbers;
    }

    TvSmDatabase* house = nullptr;
    TvSmSubset *ground = nullptr, *roof = nullptr;
    TvSmSheet* plan = nullptr;
    AnswersInTurn answers;
    NotingSheetWindow window;
};

/// The names of a drawing's layouts, the model first.
inline std::vector<TvString> layoutNamesOf(TvDbDatabase& drawing)
{
    std::vector<TvString> names;
    for (const TvDbObjectId id : db::layoutsInTabOrder(drawing))
        names.push_back(TvDbObjectPointer<TvDbLayout>(id)->getLayoutName());
    return names;
}
