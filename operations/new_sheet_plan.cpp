#include <base/path_rules.h>
#include <core/name_characters.h>

#include "operations/new_sheet.h"
#include "operations/sheet_duplicate.h"

namespace operations {

namespace {

constexpr TvChar kExtension[] = u".dwg";

bool isBlank(const TvString& text)
{
    return text.trimmed().isEmpty();
}

NewSheetProblem problemOf(const NewSheetFields& fields, const TvSmSubset& subset)
{
    if (HasUnsupportedSheetChar(fields.number))
        return NewSheetProblem::NumberCharacters;
    if (isBlank(fields.title))
        return NewSheetProblem::TitleMissing;
    if (HasUnsupportedSheetChar(fields.title))
        return NewSheetProblem::TitleCharacters;
    if (duplicateOf(fields.number, fields.title, &subset, nullptr))
        return NewSheetProblem::Duplicate;
    if (isBlank(fields.fileName))
        return NewSheetProblem::FileNameMissing;
    if (HasUnsupportedSheetChar(fields.fileName))
        return NewSheetProblem::FileNameCharacters;
    return NewSheetProblem::None;
}

/// A path that others can open, too; empty when there is none.
TvString pathFor(const TvString& folder, const TvString& layout)
{
    const TvString name = layout + kExtension;
    const TvString path = base::PathRules::native().join(folder, name);
    const bool isPossible =
        base::PathRules::isValidNewName(name) && path.length() < base::PathRules::kMaxNewPath;
    return isPossible ? path : TvString();
}

} // namespace

NewSheetField fieldOf(NewSheetProblem problem)
{
    switch (problem) {
    case NewSheetProblem::NumberCharacters: return NewSheetField::Number;
    case NewSheetProblem::TitleMissing:
    case NewSheetProblem::TitleCharacters:
    case NewSheetProblem::Duplicate: return NewSheetField::Title;
    case NewSheetProblem::FileNameMissing:
    case NewSheetProblem::FileNameCharacters: return NewSheetField::FileName;
    case NewSheetProblem::None:
    case NewSheetProblem::PathNotPossible: break;
    }
    return NewSheetField::None;
}

TvString composedFileName(const TvString& number, const TvString& title)
{
    return number.isEmpty() || title.isEmpty() ? number + title : number + u" " + title;
}

NewSheetPlan planNewSheet(const NewSheetFields& fields, const TvSmSubset& subset,
                          const TvString& folder)
{
    NewSheetPlan plan;
    plan.problem = problemOf(fields, subset);
    if (plan.problem != NewSheetProblem::None)
        return plan;
    plan.layout = fields.fileName.endsWithNoCase(kExtension)
                      ? fields.fileName.left(fields.fileName.length() - 4)
                      : fields.fileName;
    plan.path = pathFor(folder, plan.layout);
    if (plan.path.isEmpty())
        plan.problem = NewSheetProblem::PathNotPossible;
    return plan;
}

} // namespace operations
