#include "operations/new_sheet.h"

#include <base/kv_file_system.h>
#include <core/settings.h>
#include <rx/tv_user_messages.h>
#include <sm/tv_sm_subset.h>

#include "operations/sheet_duplicate.h"

namespace operations {

namespace {

using Messages = TvUserMessages;

constexpr TvChar kOpenInEditor[] = u"UserInterfaceSettings\\CreateNewSheetDialog\\OpenInEditor";
// Texts.
constexpr int kNoTemplate = 495, kTemplateGone = 612, kTemplateTitle = 410;
constexpr int kNoFolder = 610, kSheetSets = 511;
constexpr int kMissing = 498, kMissingTitle = 497;
constexpr int kFileExists = 502, kFileExistsTitle = 501;
constexpr int kNotMade = 507;
constexpr int kTries = 6, kDelayMs = 500;

Messages::Message warning(int text, int caption, std::vector<TvString> arguments = {})
{
    Messages::Message message;
    message.text = text;
    message.caption = caption;
    message.arguments = std::move(arguments);
    message.icon = Messages::Icon::Warning;
    return message;
}

bool mayReplace(const TvString& path)
{
    Messages::Message message = warning(kFileExists, kFileExistsTitle, {path});
    message.buttons = Messages::Buttons::YesNo;
    message.standard = Messages::Answer::No;
    return tvrxShowMessage(message) == Messages::Answer::Yes;
}

} // namespace

bool NewSheet::opensInEditor()
{
    int value = 0;
    return ReadConfigInt(kOpenInEditor, value) && value != 0;
}

bool NewSheet::begin()
{
    if (!findTemplate())
        return false;
    m_folder = newSheetFolder(m_subset);
    if (KvFileSystem::isDirectory(m_folder))
        return true;
    tvrxShowMessage(warning(kNoFolder, kSheetSets, {m_folder}));
    return false;
}

bool NewSheet::findTemplate()
{
    // What is asked for each sheet is for this sheet alone, and so never remembered.
    if (m_subset.getPromptForTemplate())
        return m_window.chooseTemplate(m_template);
    m_template = inheritedTemplate(m_subset);
    if (!m_template.isComplete())
        return chooseInstead(kNoTemplate);
    return isThere(m_template) || chooseInstead(kTemplateGone);
}

bool NewSheet::chooseInstead(int text)
{
    Messages::Message message;
    message.text = text;
    message.caption = kTemplateTitle;
    message.buttons = Messages::Buttons::OkCancel;
    message.icon = Messages::Icon::Question;
    if (tvrxShowMessage(message) != Messages::Answer::Ok || !m_window.chooseTemplate(m_template))
        return false;
    m_remembersTemplate = true;
    return true;
}

std::optional<TvString> NewSheet::fileNameFor(const TvString& number, const TvString& title) const
{
    return m_composesFileName ? std::optional(composedFileName(number, title)) : std::nullopt;
}

NewSheet::Answer NewSheet::refuse(NewSheetProblem problem, const NewSheetFields& fields)
{
    switch (problem) {
    case NewSheetProblem::None: break;
    case NewSheetProblem::NumberCharacters:
    case NewSheetProblem::TitleCharacters:
    case NewSheetProblem::FileNameCharacters: m_window.tellUnsupportedCharacters(); break;
    case NewSheetProblem::TitleMissing:
    case NewSheetProblem::FileNameMissing: tvrxShowMessage(warning(kMissing, kMissingTitle)); break;
    case NewSheetProblem::Duplicate:
        IsSheetDuplicate(fields.number, fields.title, &m_subset, nullptr); // says it
        break;
    case NewSheetProblem::PathNotPossible: tvrxShowMessage(warning(kNotMade, 0)); break;
    }
    return {false, fieldOf(problem)};
}

NewSheet::Answer NewSheet::accept(const NewSheetFields& fields, bool opensInEditor)
{
    const NewSheetPlan plan = planNewSheet(fields, m_subset, m_folder);
    if (plan.problem != NewSheetProblem::None)
        return refuse(plan.problem, fields);
    if (KvFileSystem::pathFileExists(plan.path, kTries, kDelayMs) && !mayReplace(plan.path))
        return {false, NewSheetField::FileName};
    TvString handle;
    if (!CreateSheetDrawingFromTemplate(m_subset.database(), plan.path, plan.layout,
                                        m_template.drawing, m_template.layout, handle)) {
        Messages::Message message;
        message.text = kNotMade;
        tvrxShowMessage(message);
        return {};
    }
    m_sheet = makeNewSheet(m_subset, fields, plan, handle);
    if (!m_sheet)
        return {}; // nobody may change the set any more
    if (m_remembersTemplate)
        rememberTemplate(m_subset, m_template);
    WriteConfigInt(kOpenInEditor, opensInEditor ? 1 : 0);
    return {true, NewSheetField::None};
}

} // namespace operations
