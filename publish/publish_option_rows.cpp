#include "publish/publish_option_rows.h"

#include <core/name_characters.h>
#include <ed/user_prompts.h>
#include <resources/texts.h>
#include <sm/limits.h>
#include <sm/tv_sm_database.h>
#include <sm/tv_sm_publish_options.h>

namespace publish {

namespace {

constexpr TvChar kEnding[] = u".dwf";
constexpr int kEndingLength = 4;

TvString textOf(int number)
{
    const TvChar* words = text::find(number);
    return words ? TvString(words) : TvString();
}

enum Category : int { kGeneral = 1, kFile = 2, kData = 3 };

TvString nameOf(Category category)
{
    constexpr int kNames[] = {1201, 1204, 1224};
    return textOf(kNames[category - 1]);
}

/// What all rows have: a name, with what explains it behind.
class OptionRow : public ed::PropertyRow
{
public:
    OptionRow(TvSmPublishOptions& options, Category category, int name)
        : m_options(options), m_category(category), m_name(name)
    {
    }
    TvString name() const override { return textOf(m_name); }
    TvString description() const override { return textOf(m_name + 1); }
    int categoryId() const override { return m_category; }
    TvString categoryName() const override { return nameOf(m_category); }

protected:
    TvSmPublishOptions& m_options; // the set's
private:
    Category m_category;
    int m_name;
};

class FolderRow : public OptionRow
{
public:
    explicit FolderRow(TvSmPublishOptions& options) : OptionRow(options, kGeneral, 1202) {}
    TvString text() const override
    {
        const TvSmFileReference* folder = m_options.getDefaultOutputdir();
        if (!folder)
            return {};
        const TvString path = folder->resolveFileName();
        return path.isEmpty() ? folder->getFileName() : path;
    }
    bool setText(const TvString& path) override
    {
        if (TvSmFileReference* folder = m_options.getDefaultOutputdir())
            return folder->setFileName(path);
        auto made = std::make_unique<TvSmFileReference>();
        if (!made->initNew(&m_options, TvString()) || !made->setFileName(path) ||
            !m_options.setDefaultOutputdir(made.get()))
            return false;
        made.release(); // the database's now
        return true;
    }
    bool hasDialog() const override { return ed::userPrompts() != nullptr; }
    void runDialog() override
    {
        ed::UserPrompts::FileQuestion question;
        question.title = name();
        question.start = text();
        question.dialogName = u"PublishOutputFolder";
        question.isForFolder = true;
        std::vector<TvString> chosen;
        constexpr int kAnswered = 5100;
        if (hasDialog() && ed::userPrompts()->askFiles(question, chosen) == kAnswered &&
            !chosen.empty())
            setText(chosen.front());
    }
};

struct Choice {
    Category category;
    int name;
    int yes, no; ///< texts
    bool (TvSmPublishOptions::*get)() const;
    bool (TvSmPublishOptions::*set)(bool);
};

/// A yes or no with words of its own; the first one is yes.
class ChoiceRow : public OptionRow
{
public:
    ChoiceRow(TvSmPublishOptions& options, const Choice& row)
        : OptionRow(options, row.category, row.name), m_row(row)
    {
    }
    ed::PropertyKind kind() const override { return ed::PropertyKind::Choice; }
    std::vector<TvString> choices() const override { return {textOf(m_row.yes), textOf(m_row.no)}; }
    int choice() const override { return (m_options.*m_row.get)() ? 0 : 1; }
    bool setChoice(int index) override
    {
        return !isReadOnly() && (m_options.*m_row.set)(index == 0);
    }

private:
    const Choice& m_row; // of a table
};

/// Who is asked for a file's name: only one file has one.
class PromptRow : public ChoiceRow
{
public:
    using ChoiceRow::ChoiceRow;
    bool isReadOnly() const override { return !m_options.getDwfType(); }
    std::vector<TvString> choices() const override
    {
        constexpr int kNoFileName = 1215;
        return isReadOnly() ? std::vector(2, textOf(kNoFileName)) : ChoiceRow::choices();
    }
};

TvString withEnding(const TvString& name)
{
    return name.endsWithNoCase(kEnding) ? name : name + kEnding;
}

class NameRow : public OptionRow
{
public:
    explicit NameRow(TvSmPublishOptions& options) : OptionRow(options, kFile, 1213) {}
    TvString text() const override { return withEnding(m_options.getDefaultFileName()); }
    bool setText(const TvString& name) override
    {
        return !isReadOnly() && m_options.setDefaultFileName(withEnding(name));
    }
    bool isReadOnly() const override
    {
        return !m_options.getDwfType() || m_options.getPromptForName();
    }
};

using Options = TvSmPublishOptions;
constexpr Choice kType{kFile, 1205, 1207, 1208, &Options::getDwfType, &Options::setDwfType};
constexpr Choice kPrompt{
    kFile, 1209, 1211, 1212, &Options::getPromptForName, &Options::setPromptForName};
constexpr Choice kOthers[] = {
    {kFile, 1216, 1218, 1219, &Options::getLayerInfo, &Options::setLayerInfo},
    {kFile, 1220, 1222, 1223, &Options::getLinesMerge, &Options::setLinesMerge},
    {kData, 1229, 1218, 1219, &Options::getIncludeSheetSetData, &Options::setIncludeSheetSetData},
    {kData, 1231, 1218, 1219, &Options::getIncludeSheetData, &Options::setIncludeSheetData},
};

TvUserMessages::Message warning(int text, int caption, std::vector<TvString> arguments = {})
{
    TvUserMessages::Message message;
    message.text = text;
    message.caption = caption;
    message.arguments = std::move(arguments);
    message.icon = TvUserMessages::Icon::Warning;
    return message;
}

std::optional<TvUserMessages::Message> problemOfName(const TvString& name)
{
    constexpr int kEmpty = 332, kName = 335, kTooLong = 580, kCharacters = 611, kProduct = 0;
    if (name.isEmpty())
        return warning(kEmpty, kName);
    if (HasUnsupportedSheetChar(name))
        return warning(kCharacters, kProduct, {name});
    if (name.length() > sm::kMaxNameLength)
        return warning(kTooLong, kName);
    return std::nullopt;
}

} // namespace

std::vector<std::unique_ptr<ed::PropertyRow>> publishOptionRows(TvSmPublishOptions& options)
{
    std::vector<std::unique_ptr<ed::PropertyRow>> rows;
    rows.push_back(std::make_unique<FolderRow>(options));
    rows.push_back(std::make_unique<ChoiceRow>(options, kType));
    rows.push_back(std::make_unique<PromptRow>(options, kPrompt));
    rows.push_back(std::make_unique<NameRow>(options));
    for (const Choice& row : kOthers)
        rows.push_back(std::make_unique<ChoiceRow>(options, row));
    return rows;
}

void nameDefaultFile(const TvSmDatabase& database, TvSmPublishOptions& options)
{
    if (options.getDefaultFileName().isEmpty())
        options.setDefaultFileName(database.getSheetSet()->getName() + kEnding);
}

std::optional<TvUserMessages::Message> problemOf(const TvSmPublishOptions& options)
{
    constexpr int kNoFolder = 1240, kFolder = 1239;
    if (!options.getDwfType())
        return std::nullopt;
    if (!options.getPromptForName()) {
        const TvString file = options.getDefaultFileName();
        const TvString name =
            file.length() > kEndingLength ? file.left(file.length() - kEndingLength) : TvString();
        if (auto problem = problemOfName(name))
            return problem;
    }
    const TvSmFileReference* folder = options.getDefaultOutputdir();
    if (folder && folder->resolveFileName().isEmpty())
        return warning(kNoFolder, kFolder);
    return std::nullopt;
}

} // namespace publish
