// What holds of every save of a drawing, in whatever format:
//
// 1. The file on disk is at each moment the whole old or the whole new one.
// 2. A file is not replaced that is read only, that somebody else uses, or that somebody changed
//    or took away since it was read.
// 3. Everything is kept: an object that was not changed bit for bit in a file of the same version.
//    What cannot be kept makes the save fail with a reason, before anything is written.
// 4. Nothing that we understand leads to an erased object any more. One that a not understood
//    object cannot do without stays, or the save fails.
// 5. A save that failed leaves the drawing in memory as it was: it can be saved elsewhere.

#include <base/atomic_replace.h>
#include <base/kv_file_system.h>
#include <base/path_rules.h>

#include "database_extras.h"
#include "save_set.h"

#include <db/record_editor.h>

namespace db {

base::Result<std::vector<std::uint8_t>> DatabaseImpl::toBytes(FileFormat format, Version version)
{
    const Codec* codec = codecOf(format);
    if (!codec)
        return base::Status(base::Failure::Unsupported, base::Reason::DwgVersionNotWritten,
                            {TvString(format == FileFormat::Dwg ? u"DWG" : u"DXF")});
    SaveSet set(*this);
    if (base::Status status = set.gather(m_touched, version); !status)
        return status;
    Record header = m_header;
    RecordEditor edit(header);
    const bool isSeedLow = header.handle("HANDSEED") < m_handseed;
    if (isSeedLow && !(set.changed.empty() && m_file))
        edit.setHandle("HANDSEED", m_handseed);
    Contents contents;
    contents.origin = m_file.get();
    contents.changed = &set.changed;
    contents.erased = &set.erased;
    contents.header = &header;
    contents.headerChanged = m_isHeaderChanged || !m_file || (isSeedLow && !set.changed.empty());
    contents.summary = m_summary ? &*m_summary : nullptr;
    contents.preview = m_preview ? &*m_preview : nullptr;
    contents.record = [&set](std::uint64_t handle) { return set.record(handle); };
    contents.handles = set.handles;
    return codec->write(contents, version);
}

TvStatusCode DatabaseImpl::save(const TvString& target, bool backup, FileFormat format,
                                Version version, bool mustBeNew)
{
    if (isHeldByAnother(target, *this)) // invariant 2
        return fail(statusOfHeld(target), TvStatus::FileInUse);
    const bool isThere = KvFileSystem::pathFileExists(target, 1, 0);
    // The file it came from counts as read only, too, when it vanished: whoever took it away had a
    // reason, and what is in memory can be saved elsewhere.
    const bool isOwn = fileHash && isSameFile(target, path);
    if ((isThere || isOwn) && KvFileSystem::isReadOnly(target))
        return fail({base::Failure::ReadOnly, base::Reason::FileReadOnly, {target}},
                    TvStatus::FileReadOnly);
    if (isModified)
        stampUpdate();
    base::Result<std::vector<std::uint8_t>> bytes = toBytes(format, version);
    if (!bytes)
        return fail(bytes.status(), codeFor(bytes.status(), TvStatus::FileNotWritable));
    const SaveUse use(target, m_owner); // invariant 2: two saves come one after the other
    if (!use.status())
        return fail(use.status(), codeFor(use.status(), TvStatus::FileNotWritable));
    if (use.isGuarded())
        base::sweepLeftovers(databaseFiles(), target);
    base::ReplaceRequest request; // invariant 1
    request.bytes = std::as_bytes(std::span(*bytes));
    request.mustNotExist = mustBeNew;
    if (isOwn)
        request.expected = fileHash;
    if (!originalPath.isEmpty() && !KvFileSystem::isReadOnly(originalPath))
        request.rightsOf = originalPath; // a copy of what is private stays private
    if (backup && isThere && !mustBeNew) {
        const base::PathRules& rules = base::PathRules::native();
        const TvString copy = rules.join(rules.folderOf(target), rules.stemOf(target) + u".bak");
        if (!KvFileSystem::copyFile(target, copy, 0))
            return fail({base::Failure::Io, base::Reason::AccessDenied, {copy}},
                        TvStatus::FileNotWritable);
    }
    const base::Status status = base::replaceFile(databaseFiles(), target, request);
    if (!status && status.reason() != base::Reason::NotFlushed)
        return fail(status, codeFor(status, TvStatus::FileNotWritable));
    m_lastFailure = status; // not flushed: in place, but worth telling
    path = target;
    fileHash = base::hashOf(std::as_bytes(std::span(*bytes)));
    isModified = false;
    noteSaved(*this);
    return TvStatus::Ok;
}

void DatabaseImpl::stampUpdate()
{
    // Universal time; no part of the history.
    const TvDbDate now = TvDbDate::fromUnixMilliseconds(databaseClock().utcNs() / 1'000'000);
    RecordEditor(m_header).setDate("TDUPDATE", now.julianDay(), now.millisecondsOfDay());
    m_isHeaderChanged = true;
}

SummaryInfo DatabaseImpl::summary() const
{
    if (m_summary)
        return *m_summary;
    std::optional<SummaryInfo> kept = m_file ? m_file->summary() : std::nullopt;
    return kept ? std::move(*kept) : SummaryInfo();
}

void DatabaseImpl::setSummary(SummaryInfo summary)
{
    m_summary = std::move(summary);
    isModified = true;
}

void DatabaseImpl::setPreview(Preview preview)
{
    m_preview = std::move(preview);
    isModified = true;
}

} // namespace db
