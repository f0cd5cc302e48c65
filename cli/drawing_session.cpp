#include "cli/drawing_session.h"

#include <algorithm>

#include <base/path_rules.h>
#include <db/drawing_inventory.h>
#include <sm/environment.h>

#include "cli/session.h"

namespace cli {

using base::Failure;

namespace {

constexpr std::chrono::milliseconds kPoll{100};
constexpr char16_t kDxfExtension[] = u".dxf";

struct VersionRow {
    int version;
    const char* name;
    int year;
};
constexpr VersionRow kVersions[] = {
    {TvDb::kAc1015, "AC1015", 2000}, {TvDb::kAc1018, "AC1018", 2004},
    {TvDb::kAc1021, "AC1021", 2007}, {TvDb::kAc1024, "AC1024", 2010},
    {TvDb::kAc1027, "AC1027", 2013}, {TvDb::kAc1032, "AC1032", 2018},
};
constexpr char kDxf[] = "dxf";

const VersionRow& rowOf(int version)
{
    const auto* row = std::find_if(std::begin(kVersions), std::end(kVersions),
                                   [&](const VersionRow& each) { return each.version == version; });
    return row == std::end(kVersions) ? kVersions[std::size(kVersions) - 1] : *row;
}

/// What --as names; refuses what there is not.
const VersionRow* versionNamed(const std::string& as)
{
    std::string all;
    for (const VersionRow& row : kVersions) {
        if (TvString(as.c_str()).compareNoCase(TvString(row.name)) == 0)
            return &row;
        all += std::string(row.name) + ", ";
    }
    refuseUsage(Word::NotAVersion, TvString(as.c_str()), TvString((all + kDxf).c_str()));
}

/// Whether the sentence of a reason is about "the drawing", and leaves open which.
bool leavesDrawingOpen(base::Reason reason)
{
    const int number = static_cast<int>(reason);
    return number >= 21300 && number < 21500;
}

/// What a drawing cannot hold, or a name that cannot be written to, is no matter of how the tool
/// was called: that was looked at before the drawing was read.
ExitCode exitCodeOfDrawing(const base::Status& status, Doing doing)
{
    if (status.failure() == Failure::Usage && doing == Doing::Writing)
        return leavesDrawingOpen(status.reason()) ? ExitCode::Damaged : ExitCode::CannotWrite;
    return exitCodeOf(status.failure(), doing);
}

Word adviceFor(const base::Status& status)
{
    switch (status.failure()) {
    case Failure::NotFound: return Word::AdviceDrawingNotFound;
    case Failure::Locked: return Word::AdviceDrawingInUse;
    default: return Word::Tool; // what is said of any file
    }
}

/// What stands in the way lies in the drawing as it was read, not in the new file.
[[noreturn]] void refuseWriting(const TvDbDatabase& database, const base::Status& status,
                                const TvString& path)
{
    const TvString origin = database.getFilename();
    refuseDrawing(status, origin.isEmpty() ? path : origin, Doing::Writing);
}

base::Status tryToWrite(TvDbDatabase& database, const TvString& path, DrawingForm form)
{
    if (form.mustBeNew)
        return db::saveNew(database, path, form.format, form.version) == TvStatus::Ok
                   ? base::Status()
                   : database.lastFailure();
    const TvStatusCode code = form.format == db::FileFormat::Dwg
                                  ? database.saveAs(path, false, form.version)
                                  : database.dxfOut(path, form.version);
    return code == TvStatus::Ok ? base::Status() : database.lastFailure();
}

} // namespace

// --- messages

Message messageOfDrawing(const base::Status& status)
{
    Message message = messageOf(status);
    if (const Word advice = adviceFor(status); advice != Word::Tool)
        message.advice = words(advice);
    return message;
}

void refuseDrawing(const base::Status& status, const TvString& path, Doing doing)
{
    Message message = messageOfDrawing(status);
    if (leavesDrawingOpen(status.reason()))
        message.text = words(Word::AboutDrawing, path, message.text);
    throw Refusal(exitCodeOfDrawing(status, doing), std::move(message));
}

// --- forms

TvString versionName(int version)
{
    return TvString(rowOf(version).name);
}

int versionYear(int version)
{
    return rowOf(version).year;
}

TvString formWords(DrawingForm form)
{
    const VersionRow& row = rowOf(form.version);
    return words(form.format == db::FileFormat::Dxf ? Word::DrawingFormatDxf : Word::DrawingFormat,
                 TvString(row.name), row.year);
}

db::FileFormat formatOf(const TvDbDatabase& database)
{
    return db::fileFormatOf(database);
}

DrawingForm formFor(const std::string& as, const TvString& path)
{
    const bool isDxfWanted = TvString(as.c_str()).compareNoCase(TvString(kDxf)) == 0;
    DrawingForm form;
    if (!as.empty() && !isDxfWanted)
        form.version = versionNamed(as)->version;
    if (path.endsWithNoCase(kDxfExtension))
        form.format = db::FileFormat::Dxf;
    else if (isDxfWanted)
        refuseUsage(Word::DxfNeedsDxfName, base::PathRules::native().fileNameOf(path));
    return form;
}

// --- reading and writing

OpenedDrawing::OpenedDrawing(const TvString& file, Console& console)
    : m_console(console), m_path(fullPath(file))
{
    if (m_database.readDwgFile(m_path) != TvStatus::Ok)
        refuseDrawing(m_database.lastFailure(), m_path, Doing::Reading);
    m_console.stopIfInterrupted();
}

bool OpenedDrawing::commit(const ChangeOptions& options)
{
    if (!m_database.isModified()) {
        m_console.say(words(Word::NothingToChange));
        return false;
    }
    writeDrawing(m_database, m_path, {formatOf(m_database), 0}, options, m_console);
    return true;
}

void writeDrawing(TvDbDatabase& database, const TvString& path, DrawingForm form,
                  const ChangeOptions& options, Console& console)
{
    console.stopIfInterrupted();
    if (options.dryRun) {
        const auto bytes = database.toBytes(form.format, form.version);
        if (!bytes)
            refuseWriting(database, bytes.status(), path);
        console.say(words(Word::DryRunDone));
        return;
    }
    const std::int64_t start = sm::clock().steadyNs();
    bool said = false;
    while (true) {
        const base::Status status = tryToWrite(database, path, form);
        if (status)
            break;
        const std::chrono::nanoseconds waited(sm::clock().steadyNs() - start);
        if (status.failure() != Failure::Locked || waited >= options.lockWait)
            refuseWriting(database, status, path);
        if (!std::exchange(said, true))
            console.say(words(Word::WaitingForLock, messageOfDrawing(status).text));
        sm::clock().sleep(kPoll);
        console.stopIfInterrupted();
    }
    // In place, but not flushed to the disk.
    if (const base::Status& left = database.lastFailure();
        !left && left.reason() == base::Reason::NotFlushed)
        console.warn(messageOf(left));
}

} // namespace cli
