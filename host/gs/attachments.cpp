#include "attachments.h"

#include <algorithm>

#include <base/kv_file_system.h>

namespace gs {

namespace {

bool isSameFile(const base::FileStamp& a, const base::FileStamp& b)
{
    return a.device == b.device && a.inode == b.inode;
}

} // namespace

Attachments::Attachments(TvDbDatabase& host, ListWriter& writer, db::AttachedDrawings* files)
    : m_writer(writer), m_own(files ? nullptr : std::make_unique<db::AttachedDrawings>()),
      m_files(files ? *files : *m_own), m_host(host.getFilename())
{
}

Attachments::~Attachments() = default;

bool Attachments::isHost(const TvString& path) const
{
    return !m_host.isEmpty() && KvFileSystem::isSameFile(path, m_host);
}

const AttachedReference& Attachments::of(TvDbObjectId id, Scene& namer)
{
    const auto [at, isNew] = m_references.try_emplace(id);
    Reference& reference = at->second;
    if (!isNew)
        return reference;
    const TvDbObjectPointer<TvDbBlockTableRecord> block(id, TvDb::kForNotify);
    if (!block || !block->isFromExternalReference())
        return reference;
    reference.origin = db::asPoint(block->origin());
    // An overlay is for those who look at the drawing itself.
    if (!block->isUnloaded() && !(namer.isAttached() && block->isFromOverlayReference()))
        open(reference, *block, namer);
    return reference;
}

void Attachments::open(Reference& reference, const TvDbBlockTableRecord& block, Scene& namer)
{
    if (++m_count > kMostReferences || m_bytes > kMostBytes)
        return lose(
            reference, block,
            {base::Failure::TooLarge, db::kXrefTooMany, {block.getName(), block.pathName()}});
    const TvString path = namer.database().getFilename();
    db::AttachedDrawings::Opened opened = m_files.open(block.pathName(), path, m_host);
    if (!opened.database)
        return lose(reference, block,
                    db::whyNotShown(opened.status, block.getName(), block.pathName(), opened.path));
    m_bytes += opened.file.size;
    reference.drawing = std::move(opened.database);
    reference.file = opened.file;
    if (!isHost(opened.path))
        reference.scene = std::make_unique<Scene>(*reference.drawing, namer, block.getName());
}

void Attachments::lose(Reference& reference, const TvDbBlockTableRecord& block, base::Status why)
{
    reference.lost = block.pathName();
    m_writer.addLost({block.getName(), block.pathName(), std::move(why)});
}

Attachments::Opening::Opening(Attachments& all, const Reference& reference) : m_all(all)
{
    m_isOpen =
        reference.scene && std::ranges::none_of(all.m_open, [&](const base::FileStamp& file) {
            return isSameFile(file, reference.file);
        });
    if (m_isOpen)
        all.m_open.push_back(reference.file);
}

Attachments::Opening::~Opening()
{
    if (m_isOpen)
        m_all.m_open.pop_back();
}

} // namespace gs
