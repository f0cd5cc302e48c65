#include "operations/rename_apply.h"

#include <map>

#include <base/atomic_replace.h>
#include <base/edit_lock.h>
#include <base/path_rules.h>
#include <db/drawing_inventory.h>
#include <db/tv_db_layout.h>
#include <sm/environment.h>
#include <sm/scoped_open.h>
#include <sm/tv_sm_database.h>

#include "rename_files.h"

namespace operations {

using base::Failure;
using base::Reason;
using base::Status;

namespace {

RenameJournal journalOf(const TvSmDatabase& database, const RenamePlan& plan)
{
    RenameJournal journal;
    journal.token = base::newToken();
    journal.before = sm::committedHash(&database).value_or(base::ContentHash());
    for (const DrawingEffect& each : plan.drawings)
        journal.drawings.push_back({each.oldPath, each.newPath, each.changesLayouts, {}});
    for (const SheetEffect& each : plan.sheets)
        journal.sheets.push_back({each.handle, each.oldNumber, each.newNumber, each.oldTitle,
                                  each.newTitle, each.drawing, each.layoutHandle, each.oldLayout,
                                  each.newLayout});
    return journal;
}

// --- the drawings' contents

Status refusedLayout(const TvString& path)
{
    return {Failure::Conflict, Reason::ChangedOnDisk, {path}};
}

/// Names may be exchanged: each goes over one that nobody has.
Status renameLayouts(TvDbDatabase& drawing, const std::vector<const RenameJournal::Sheet*>& sheets,
                     const TvString& path)
{
    for (const bool isFinal : {false, true})
        for (std::size_t i = 0; i < sheets.size(); ++i) {
            const TvDbHandle handle(sheets[i]->layoutHandle.view());
            const TvDbObjectPointer<TvDbLayout> layout(drawing.find(handle.value()),
                                                       TvDb::kForWrite);
            const TvString between = TvString(u"kvrename-") + base::hexText(i);
            if (!layout ||
                layout->setLayoutName(isFinal ? sheets[i]->newLayout : between) != TvStatus::Ok)
                return refusedLayout(path);
        }
    return {};
}

Status stageDrawing(base::FileOps& ops, RenameJournal& journal, std::size_t at,
                    const std::vector<const RenameJournal::Sheet*>& sheets, RenameFiles& files)
{
    const TvString& path = journal.drawings[at].oldPath;
    base::FileInfo info;
    if (const int error = ops.describeName(base::nativePath(path), info))
        return Status::fromSystem(error, path);
    files.noteRead(at, info.stamp);
    TvDbDatabase drawing(false, true);
    if (drawing.readDwgFile(path, TvDb::kReadAllShare) != TvStatus::Ok)
        return drawing.lastFailure();
    drawing.closeInput(true);
    if (Status status = renameLayouts(drawing, sheets, path); !status)
        return status;
    const base::Result<std::vector<std::uint8_t>> bytes =
        drawing.toBytes(db::fileFormatOf(drawing), 0);
    if (!bytes)
        return bytes.status();
    journal.drawings[at].newContent = base::hashOf(std::as_bytes(std::span(*bytes)));
    return files.stage(at, std::as_bytes(std::span(*bytes)));
}

Status stageAll(base::FileOps& ops, RenameJournal& journal, RenameFiles& files)
{
    std::vector<std::vector<const RenameJournal::Sheet*>> byDrawing(journal.drawings.size());
    for (const RenameJournal::Sheet& sheet : journal.sheets)
        if (sheet.drawing >= 0 && sheet.oldLayout != sheet.newLayout)
            byDrawing[static_cast<std::size_t>(sheet.drawing)].push_back(&sheet);
    for (std::size_t i = 0; i < byDrawing.size(); ++i)
        if (journal.drawings[i].hasNewContent)
            if (Status status = stageDrawing(ops, journal, i, byDrawing[i], files); !status)
                return status;
    return {};
}

// --- the set

/// All references of the set, by the file that they lead to now; each path is looked up once.
class References
{
public:
    explicit References(const TvSmDatabase& database)
    {
        sm::forEachObject(&database, [this](TvSmPersist& object) {
            if (auto* reference = tvrxCast<TvSmFileReference>(&object))
                m_byFile[keyOf(*reference)].push_back(reference);
        });
    }
    bool repoint(const TvString& from, const TvString& to) const
    {
        const auto found = m_byFile.find(base::PathRules::native().keyOf(from.view()));
        return found == m_byFile.end() ||
               std::ranges::all_of(found->second, [&](TvSmFileReference* reference) {
                   return reference->setFileName(to);
               });
    }

private:
    const TvString& keyOf(const TvSmFileReference& reference)
    {
        const auto [at, isNew] = m_keys.try_emplace(reference.getFileName());
        if (isNew) {
            const TvString path = reference.resolveFileName();
            at->second = base::PathRules::native().keyOf(path.view());
        }
        return at->second;
    }
    std::map<TvString, TvString> m_keys; // by the stored path
    std::map<TvString, std::vector<TvSmFileReference*>> m_byFile;
};

bool changeSheet(const TvSmDatabase& database, const RenameJournal::Sheet& each)
{
    auto* sheet = tvrxCast<TvSmSheet>(database.findObject(each.handle));
    if (!sheet || !sheet->setNumber(each.newNumber))
        return false;
    // A sheet that is called by its name only keeps it so.
    if (each.newTitle != each.oldTitle && !sheet->setTitle(each.newTitle))
        return false;
    TvSmTvDbLayoutReference* layout = sheet->getLayoutReference();
    return each.oldLayout == each.newLayout || (layout && layout->setName(each.newLayout));
}

bool changeSet(const TvSmDatabase& database, const RenameJournal& journal)
{
    const bool moves = std::ranges::any_of(
        journal.drawings, [](const auto& drawing) { return drawing.oldPath != drawing.newPath; });
    if (moves) {
        // All are looked up before the first changes: names may be exchanged.
        const References references(database);
        for (const RenameJournal::Drawing& each : journal.drawings)
            if (each.oldPath != each.newPath && !references.repoint(each.oldPath, each.newPath))
                return false;
    }
    return std::ranges::all_of(journal.sheets, [&](const RenameJournal::Sheet& sheet) {
        return changeSheet(database, sheet);
    });
}

/// Whether the set's content has the new names, by the sheets that can tell.
bool hasNewNames(const TvSmDatabase& database, const RenameJournal& journal)
{
    const base::PathRules& rules = base::PathRules::native();
    int oldOnes = 0, newOnes = 0;
    const auto vote = [&](const TvString& now, const TvString& before, const TvString& after) {
        if (before != after)
            (now == after ? newOnes : oldOnes) += 1;
    };
    for (const RenameJournal::Sheet& each : journal.sheets) {
        const auto* sheet = tvrxCast<TvSmSheet>(database.findObject(each.handle));
        const TvSmTvDbLayoutReference* layout = sheet ? sheet->getLayoutReference() : nullptr;
        if (!sheet)
            continue;
        vote(sheet->getNumber(), each.oldNumber, each.newNumber);
        vote(sheet->getTitle(), each.oldTitle, each.newTitle);
        if (!layout)
            continue;
        vote(layout->getName(), each.oldLayout, each.newLayout);
        if (each.drawing >= 0) {
            const auto& drawing = journal.drawings[static_cast<std::size_t>(each.drawing)];
            vote(rules.fileNameOf(layout->getFileName().view()),
                 rules.fileNameOf(drawing.oldPath.view()),
                 rules.fileNameOf(drawing.newPath.view()));
        }
    }
    return newOnes > oldOnes;
}

// --- the end

/// Everything back to how it was, from whichever stage.
Status takeBack(base::FileOps& ops, const TvString& path, RenameJournal& journal)
{
    RenameFiles files(ops, journal);
    if (journal.stage == RenameStage::Arriving) {
        if (Status status = files.takeBackArrivals(); !status)
            return status;
        journal.stage = RenameStage::Leaving;
        if (Status status = writeJournal(ops, path, journal); !status)
            return status;
    }
    if (Status status = files.takeBackLeaves(); !status)
        return status;
    ops.remove(base::nativePath(path));
    return {};
}

/// The journal becomes the note of what can be taken back. As long as there is another try, it
/// waits for the former contents to be gone.
Status finish(base::FileOps& ops, const TvString& setPath, RenameJournal& journal, bool isLastTry)
{
    const TvString path = renameJournalPath(setPath);
    if (journal.stage != RenameStage::Done) {
        journal.stage = RenameStage::Done;
        if (Status status = writeJournal(ops, path, journal); !status)
            return status;
    }
    if (!RenameFiles(ops, journal).removeFormer() && !isLastTry)
        return {};
    const int error = ops.rename(base::nativePath(path), base::nativePath(renameUndoPath(setPath)));
    return error ? Status::fromSystem(error, path) : Status();
}

/// Up to the moment at which the set is to be written.
Status prepare(base::FileOps& ops, TvSmDatabase& database, RenameJournal& journal)
{
    const TvString path = renameJournalPath(database.getFileName());
    RenameFiles files(ops, journal);
    const auto enter = [&](RenameStage stage) {
        journal.stage = stage;
        return writeJournal(ops, path, journal);
    };
    if (Status status = enter(RenameStage::Staging); !status)
        return status;
    if (Status status = stageAll(ops, journal, files); !status)
        return status;
    if (!changeSet(database, journal))
        return {Failure::Locked, Reason::LockLost, {database.getFileName()}};
    for (const RenameStage stage : {RenameStage::Leaving, RenameStage::Arriving}) {
        if (Status status = enter(stage); !status)
            return status;
        for (std::size_t i = 0; i < journal.drawings.size(); ++i) {
            if (!files.isTouched(i))
                continue;
            if (Status status = stage == RenameStage::Leaving ? files.leave(i) : files.arrive(i);
                !status)
                return status;
        }
    }
    return files.flushFolders();
}

/// A commit that failed behind the writing itself left the new set.
bool wasWritten(const TvSmDatabase& database, const RenameJournal& journal)
{
    TvSmSheetSetMgr looking; // our own: nobody is told
    const sm::ScopedOpen opened(&looking, database.getFileName());
    const TvSmDatabase* now = opened.database();
    return now && sm::committedHash(now) != journal.before && hasNewNames(*now, journal);
}

} // namespace

Status applyRename(TvSmDatabase& database, const RenamePlan& plan,
                   const std::function<bool()>& commit)
{
    if (plan.hasClash())
        return {Failure::Usage, Reason::Cancelled, {database.getFileName()}};
    base::FileOps& ops = sm::files();
    const TvString setPath = database.getFileName();
    RenameJournal journal = journalOf(database, plan);
    const Status prepared = prepare(ops, database, journal);
    if (prepared && (commit() || wasWritten(database, journal))) {
        // The names are what they shall be; what cannot be cleared away now is at the next time.
        const Status ignored = finish(ops, setPath, journal, false);
        static_cast<void>(ignored);
        return {};
    }
    Status why = prepared ? sm::lastStatus(&database) : prepared;
    if (why) // the caller changed his mind
        why = {Failure::Interrupted, Reason::Cancelled, {setPath}};
    Status back = takeBack(ops, renameJournalPath(setPath), journal);
    return back ? why : back;
}

bool hasRenameToRecover(const TvString& setPath)
{
    base::FileInfo info;
    return !setPath.isEmpty() &&
           sm::files().describeName(base::nativePath(renameJournalPath(setPath)), info) == 0;
}

namespace {

/// Whether the set has the new names already, so that the rename counts.
bool isSetWritten(const TvSmDatabase& database, const RenameJournal& journal)
{
    return journal.stage == RenameStage::Done ||
           (journal.stage == RenameStage::Arriving &&
            sm::committedHash(&database) != journal.before && hasNewNames(database, journal));
}

} // namespace

base::Result<BrokenRename> brokenRename(TvSmDatabase& database)
{
    const base::Result<RenameJournal> journal =
        readJournal(sm::files(), renameJournalPath(database.getFileName()));
    if (!journal && journal.status().failure() != Failure::NotFound)
        return journal.status();
    BrokenRename broken;
    if (!journal)
        return broken;
    broken.way =
        isSetWritten(database, *journal) ? RenameRecovery::Finished : RenameRecovery::TakenBack;
    broken.drawings = static_cast<int>(journal->drawings.size());
    return broken;
}

base::Result<RenameRecovery> recoverRename(TvSmDatabase& database)
{
    base::FileOps& ops = sm::files();
    const TvString setPath = database.getFileName();
    const TvString path = renameJournalPath(setPath);
    base::sweepLeftovers(ops, path);
    base::Result<RenameJournal> journal = readJournal(ops, path);
    if (!journal)
        return journal.status().failure() == Failure::NotFound
                   ? base::Result<RenameRecovery>(RenameRecovery::Nothing)
                   : base::Result<RenameRecovery>(journal.status());
    const bool isWritten = isSetWritten(database, *journal);
    const Status status =
        isWritten ? finish(ops, setPath, *journal, true) : takeBack(ops, path, *journal);
    if (!status)
        return status;
    return isWritten ? RenameRecovery::Finished : RenameRecovery::TakenBack;
}

base::Result<RenamePlan> planRenameUndo(TvSmDatabase& database)
{
    const base::Result<RenameJournal> journal =
        readJournal(sm::files(), renameUndoPath(database.getFileName()));
    if (!journal)
        return journal.status();
    const base::PathRules& rules = base::PathRules::native();
    std::vector<SheetTarget> targets;
    std::vector<const RenameJournal::Sheet*> gone;
    std::vector<bool> isStale;
    for (const RenameJournal::Sheet& each : journal->sheets) {
        SheetTarget target;
        target.sheet = tvrxCast<TvSmSheet>(database.findObject(each.handle));
        if (!target.sheet) {
            gone.push_back(&each);
            continue;
        }
        isStale.push_back(target.sheet->getNumber() != each.newNumber ||
                          target.sheet->getTitle() != each.newTitle);
        target.number = each.oldNumber;
        if (each.oldTitle != each.newTitle)
            target.title = each.oldTitle;
        if (each.oldLayout != each.newLayout)
            target.layout = each.oldLayout;
        if (each.drawing >= 0) {
            const auto& drawing = journal->drawings[static_cast<std::size_t>(each.drawing)];
            if (drawing.oldPath != drawing.newPath)
                target.file = rules.fileNameOf(drawing.oldPath.view());
        }
        targets.push_back(std::move(target));
    }
    RenamePlan plan = planRename(targets);
    for (std::size_t i = 0; i < plan.sheets.size(); ++i)
        if (isStale[i])
            plan.sheets[i].clash = Clash::Stale;
    for (const RenameJournal::Sheet* each : gone) {
        SheetEffect effect;
        effect.handle = each->handle;
        effect.oldNumber = each->newNumber;
        effect.newNumber = each->oldNumber;
        effect.oldTitle = effect.newTitle = each->newTitle;
        effect.clash = Clash::Stale;
        plan.sheets.push_back(std::move(effect));
    }
    return plan;
}

} // namespace operations
