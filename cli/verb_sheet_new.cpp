#include <nlohmann/json.hpp>

#include <base/kv_file_system.h>
#include <operations/new_sheet.h>
#include <sm/limits.h>

#include "cli/components.h"
#include "cli/drawing_session.h"
#include "cli/session.h"
#include "cli/verbs.h"

namespace cli {

namespace {

using operations::NewSheetFields;
using operations::NewSheetPlan;
using operations::NewSheetProblem;
using operations::SheetTemplate;

/// A drawing that goes again unless the set came to know it.
class MadeDrawing
{
public:
    explicit MadeDrawing(const TvString& path) : m_path(path) {}
    ~MadeDrawing()
    {
        if (!m_isKept)
            KvFileSystem::deleteFile(m_path);
    }
    MadeDrawing(const MadeDrawing&) = delete;
    MadeDrawing& operator=(const MadeDrawing&) = delete;
    void keep() { m_isKept = true; }

private:
    TvString m_path;
    bool m_isKept = false;
};

void requireSense(const SheetNewRequest& request)
{
    requireFits(u"number", request.number, sm::kMaxNumberLength);
    requireFits(u"title", request.title, sm::kMaxNameLength);
    if (!request.templateFile.isEmpty() && request.templateLayout.isEmpty())
        refuseUsage(Word::SheetTemplateHalf);
    requireHandleIfGiven(request.in);
    requirePlace(request.place);
}

TvSmSubset& parentFor(ChangedSet& set, const SheetNewRequest& request)
{
    const TvString neighbour =
        request.place.before.isEmpty() ? request.place.after : request.place.before;
    if (!request.in.isEmpty())
        return subsetAt(set.database(), request.in);
    return neighbour.isEmpty() ? set.set() : parentOf(childAt(set.database(), neighbour));
}

SheetTemplate templateFor(const SheetNewRequest& request, const TvSmSubset& parent)
{
    SheetTemplate which{request.templateLayout, fullPath(request.templateFile)};
    if (request.templateFile.isEmpty()) {
        which = operations::inheritedTemplate(parent);
        if (!request.templateLayout.isEmpty())
            which.layout = request.templateLayout;
    }
    if (!which.isComplete())
        refuse(ExitCode::NoInput, Word::NoSheetTemplate);
    if (!operations::isThere(which))
        refuse(ExitCode::NoInput, Word::SheetTemplateGone, which.drawing, which.layout);
    return which;
}

TvString folderFor(const SheetNewRequest& request, const TvSmSubset& parent)
{
    TvString folder =
        request.folder.isEmpty() ? operations::newSheetFolder(parent) : fullPath(request.folder);
    if (folder.isEmpty())
        refuse(ExitCode::NoInput, Word::NoSheetFolderSet);
    if (!KvFileSystem::isDirectory(folder))
        refuse(ExitCode::NoInput, Word::NoSheetFolder, folder);
    return folder;
}

[[noreturn]] void refuseFields(NewSheetProblem problem, const NewSheetFields& fields,
                               const TvString& folder)
{
    switch (problem) {
    case NewSheetProblem::NumberCharacters: refuseUsage(Word::SheetCharacters, fields.number);
    case NewSheetProblem::TitleCharacters: refuseUsage(Word::SheetCharacters, fields.title);
    case NewSheetProblem::FileNameCharacters: refuseUsage(Word::SheetCharacters, fields.fileName);
    case NewSheetProblem::TitleMissing: refuseUsage(Word::SheetTitleMissing);
    case NewSheetProblem::Duplicate: refuseUsage(Word::SheetTwice, fields.title);
    case NewSheetProblem::FileNameMissing: refuseUsage(Word::SheetFileMissing);
    case NewSheetProblem::None:
    case NewSheetProblem::PathNotPossible: break;
    }
    refuseUsage(Word::SheetPathNotPossible, fields.fileName, folder);
}

NewSheetPlan planFor(const NewSheetFields& fields, const TvSmSubset& parent, const TvString& folder)
{
    NewSheetPlan plan = operations::planNewSheet(fields, parent, folder);
    if (plan.problem != NewSheetProblem::None)
        refuseFields(plan.problem, fields, folder);
    if (KvFileSystem::pathFileExists(plan.path))
        refuse({base::Failure::Exists, base::Reason::FileExists, {plan.path}}, Doing::Writing);
    return plan;
}

TvString makeDrawing(ChangedSet& set, const NewSheetPlan& plan, const SheetTemplate& from)
{
    const base::Result<TvString> handle =
        operations::makeSheetDrawing(&set.database(), {.drawing = plan.path,
                                                       .layout = plan.layout,
                                                       .templateDrawing = from.drawing,
                                                       .templateLayout = from.layout,
                                                       .isTried = set.isDryRun(),
                                                       .mustBeNew = true});
    if (!handle)
        refuseDrawing(handle.status(), plan.path, Doing::Writing);
    return *handle;
}

void tell(const SheetNewRequest& request, const TvSmSheet& sheet, const SheetTemplate& from,
          ChangedSet& set, Console& console)
{
    const TvSmTvDbLayoutReference& layout = *sheet.getLayoutReference();
    Json& document = console.document();
    document["file"] = jsonText(fullPath(request.file));
    document["handle"] = jsonText(handleOf(sheet));
    document["number"] = jsonText(sheet.getNumber());
    document["title"] = jsonText(sheet.getTitle());
    document["parent"] = jsonOf(parentOf(sheet));
    document["drawing"] = jsonText(layout.getFileName());
    document["layout"] = jsonText(layout.getName());
    document["layoutHandle"] = jsonText(layout.getHandle());
    document["template"]["file"] = jsonText(from.drawing);
    document["template"]["layout"] = jsonText(from.layout);
    document["dryRun"] = set.isDryRun();
    console.line({{handleOf(sheet)}});
}

ExitCode make(const SheetNewRequest& request, Console& console)
{
    requireSense(request);
    ChangedSet set(request.file, request.change, console);
    TvSmSubset& parent = parentFor(set, request);
    const NewSheetFields fields{
        request.number, request.title,
        request.fileName.value_or(operations::composedFileName(request.number, request.title))};
    const TvString folder = folderFor(request, parent);
    const NewSheetPlan plan = planFor(fields, parent, folder);
    const SheetTemplate from = templateFor(request, parent);
    const TvString layout = makeDrawing(set, plan, from);
    MadeDrawing drawing(plan.path);
    TvSmSheet* sheet = operations::makeNewSheet(parent, fields, plan, layout);
    if (!sheet || !operations::placeNewSheet(parent, *sheet, nullptr))
        refuse(sm::lastStatus(&set.database()), Doing::Writing);
    putAt(parent, *sheet, request.place);
    tell(request, *sheet, from, set, console);
    set.commit();
    drawing.keep();
    return ExitCode::Ok;
}

} // namespace

Outcome run(const SheetNewRequest& request, Console& console)
{
    return attempt(console, [&] { return make(request, console); });
}

} // namespace cli
