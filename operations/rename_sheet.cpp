#include "operations/rename_sheet.h"

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <core/name_characters.h>
#include <core/read_drawing_file.h>
#include <db/file_open_info_tip_manager.h>
#include <db/tv_db_layout.h>
#include <ed/tv_ap_doc_manager.h>
#include <sm/tv_sm_sheet.h>
#include <sm/tv_sm_subset.h>

#include "operations/rename_drawing.h"
#include "operations/rename_layout.h"
#include "operations/rename_messages.h"
#include "operations/sheet_duplicate.h"
#include "operations/sheet_walk.h"

namespace operations {

namespace {

constexpr std::u16string_view kExtension = u".dwg";

const base::PathRules& paths()
{
    return base::PathRules::native();
}

/// @return false when the handle leads to no layout.
bool layoutNameIn(const TvDbDatabase& drawing, const TvString& handle, TvString& out)
{
    TvDbObjectId id;
    if (drawing.getTvDbObjectId(id, false, TvDbHandle(handle.view()), 0) != TvStatus::Ok)
        return false;
    const TvDbObjectPointer<TvDbLayout> layout(id);
    if (!layout)
        return false;
    out = layout->getLayoutName();
    return true;
}

bool isBlank(const TvString& text)
{
    return text.trimmed().isEmpty();
}

/// Only the first ".dwg" counts, in these very letters.
TvString withExtension(const TvString& file)
{
    const int at = file.find(kExtension);
    const bool isLast = at >= 0 && at + static_cast<int>(kExtension.size()) == file.length();
    return isLast ? file : file + TvString(kExtension);
}

} // namespace

bool SheetRename::load(TvSmSheet* sheet, TvSmDatabase* database)
{
    *this = {};
    const TvSmTvDbLayoutReference* layout = sheet ? sheet->getLayoutReference() : nullptr;
    if (!layout || !database || !tvDocManagerPtr())
        return false;
    m_sheet = sheet;
    m_database = database;
    m_names.number = sheet->getNumber();
    m_names.title = sheet->getTitle();
    lookAtDrawing();
    const TvString path = m_isDrawingMissing ? layout->getFileName() : m_path;
    if (m_isDrawingMissing)
        m_names.layout = layout->getName();
    m_names.file = paths().fileNameOf(path);
    m_folder = paths().folderOf(path);
    m_hasPrevious = GetPreviousSheet(sheet);
    m_hasNext = GetNextSheet(sheet);
    return true;
}

void SheetRename::lookAtDrawing()
{
    m_path = m_sheet->getLayoutReference()->resolveFileName();
    m_isLocked = !m_path.isEmpty() && CFileOpenInfoTipManager::IsInfoFileExists(m_path);
    m_isDrawingMissing = !isDrawingThere(m_path);
    m_isLayoutMissing = m_isDrawingMissing || !lookAtLayout();
}

/// The name in the drawing counts: the set may know a former one.
bool SheetRename::lookAtLayout()
{
    const TvString handle = m_sheet->getLayoutReference()->getHandle();
    if (const TvApDocument* document = tvDocManagerPtr()->documentOf(m_path)) {
        m_isOpenHere = true;
        return document->database() && layoutNameIn(*document->database(), handle, m_names.layout);
    }
    TvDbDatabase drawing(false, true);
    return ReadDrawingFile(&drawing, m_path) == TvStatus::Ok &&
           layoutNameIn(drawing, handle, m_names.layout);
}

RenameControls SheetRename::controls(const RenameOptions& options) const
{
    RenameControls controls;
    controls.layoutCheck = canRenameLayout();
    controls.layoutPrefix = canRenameLayout() && options.layoutMatchesSheet;
    controls.fileCheck = canRenameFile();
    controls.filePrefix = canRenameFile() && options.fileMatchesSheet;
    controls.layoutField = canRenameLayout() && !options.layoutMatchesSheet;
    controls.fileField = canRenameFile() && !options.fileMatchesSheet;
    controls.previous = m_hasPrevious;
    controls.next = m_hasNext;
    return controls;
}

RenameOptions SheetRename::inForce(const RenameOptions& options) const
{
    RenameOptions force = options;
    force.layoutMatchesSheet = options.layoutMatchesSheet && canRenameLayout();
    force.fileMatchesSheet = options.fileMatchesSheet && canRenameFile();
    return force;
}

/// What can be said of the texts alone. The file gets its extension.
RenameOutcome SheetRename::check(RenameNames& typed) const
{
    if (canRenameLayout() && isBlank(typed.layout))
        return RenameOutcome::TextMissing;
    if (isBlank(typed.title) || isBlank(typed.file))
        return RenameOutcome::TextMissing;
    if (HasUnsupportedNameChar(typed.number) || HasUnsupportedNameChar(typed.title) ||
        HasUnsupportedNameChar(typed.file) || HasUnsupportedSheetChar(typed.layout))
        return RenameOutcome::UnsupportedCharacter;
    if (typed.file == TvString(kExtension))
        return RenameOutcome::TextMissing;
    typed.file = withExtension(typed.file);
    if (IsSheetDuplicate(typed.number, typed.title, tvrxCast<TvSmSubset>(m_sheet->getOwner()),
                         m_sheet))
        return RenameOutcome::Duplicate;
    return m_sheet->getLayoutReference() ? RenameOutcome::Done : RenameOutcome::NoLayout;
}

RenameOutcome SheetRename::drawingGone()
{
    warn(kDrawingGoneMessage);
    m_isDrawingMissing = m_isLayoutMissing = true;
    const TvSmTvDbLayoutReference& layout = *m_sheet->getLayoutReference();
    m_names.file = paths().fileNameOf(layout.getFileName());
    m_names.layout = layout.getName();
    return RenameOutcome::DrawingGone;
}

RenameOutcome SheetRename::apply(const RenameNames& typed, const RenameOptions& options)
{
    if (!m_sheet)
        return RenameOutcome::NoLayout;
    RenameNames names = typed;
    if (const RenameOutcome refused = check(names); refused != RenameOutcome::Done)
        return refused;
    TvSmTvDbLayoutReference* layout = m_sheet->getLayoutReference();
    const TvString oldPath = layout->resolveFileName();
    const TvString newPath = paths().join(paths().folderOf(oldPath), names.file);
    bool moves = false;
    if (canRenameFile()) {
        if (!isDrawingThere(oldPath))
            return drawingGone();
        moves = oldPath.compareNoCase(newPath) != 0;
        if (moves && KvFileSystem::pathFileExists(newPath, 6, 500)) {
            warn(kFileExistsMessage);
            return RenameOutcome::FileExists;
        }
    }
    if (canRenameLayout()) {
        const TvStatusCode status = RenameLayoutOfSheetWithMessages(layout, names.layout);
        if (status == TvStatus::NotThatObject) {
            m_isLayoutMissing = true;
            m_names.layout.setEmpty();
            return RenameOutcome::LayoutGone;
        }
        if (status != TvStatus::Ok)
            return RenameOutcome::LayoutRefused;
    }
    if (moves)
        RenameSheetDrawing(oldPath, newPath);
    m_sheet->setNumber(names.number);
    m_sheet->setTitle(names.title);
    options.store();
    return RenameOutcome::Done;
}

} // namespace operations
