#include "viewport_headers.h"

#include <db/record_editor.h>

namespace dwg {

namespace {

constexpr int kViewport = 0x22;

class Remover
{
public:
    Remover(const db::Contents& contents, const DwgFile& origin, ViewportHeaderChanges& changes)
        : m_contents(contents), m_origin(origin), m_changes(changes)
    {
    }

    base::Status run()
    {
        findGone();
        if (m_gone.empty())
            return {};
        auto header =
            m_contents.header ? base::Result<db::Record>(*m_contents.header) : m_origin.header();
        if (!header)
            return header.status();
        const std::uint64_t first = header->handle("VPENTHDR");
        if (const std::uint64_t left = skipGone(first); left != first) {
            db::RecordEditor(*header).setHandle("VPENTHDR", left);
            m_changes.header = std::move(*header);
            return cutTable(m_changes.header->handle("VXCTL"));
        }
        return cutTable(header->handle("VXCTL"));
    }

private:
    // With the record that each of them tells before it.
    void findGone()
    {
        db::Record viewport, second;
        for (const std::uint64_t handle : *m_contents.erased) {
            const auto object = m_origin.object(handle);
            if (!object || object->type != kViewport || !m_origin.read(handle, viewport))
                continue;
            const std::uint64_t its = viewport.handle("vp_ent_hdr");
            if (its != 0 && !m_contents.erased->count(its) && m_origin.read(its, second) &&
                second.classDef()->name() == "VPENT_HDR") {
                m_gone.emplace(its, second.handle("previous"));
                m_changes.erased.insert(its);
            }
        }
    }

    // The first record from @p handle on that stays; chains in a circle end.
    std::uint64_t skipGone(std::uint64_t handle) const
    {
        for (std::size_t steps = 0; steps <= m_gone.size(); ++steps) {
            const auto gone = m_gone.find(handle);
            if (gone == m_gone.end())
                return handle;
            handle = gone->second;
        }
        return 0;
    }

    const db::Record* current(std::uint64_t handle, db::Record& scratch) const
    {
        if (m_contents.changed)
            if (const auto found = m_contents.changed->find(handle);
                found != m_contents.changed->end())
                return found->second;
        return m_origin.read(handle, scratch) ? &scratch : nullptr;
    }

    base::Status cutTable(std::uint64_t tableHandle)
    {
        db::Record scratch;
        const db::Record* const table = current(tableHandle, scratch);
        if (!table || table->classDef()->name() != "VPENT_HDR_CONTROL")
            return {};
        db::Record cut = *table;
        db::ArrayEditor entries = db::RecordEditor(cut).array("entries");
        std::uint32_t kept = 0;
        for (std::uint32_t i = 0; i < entries.size(); ++i) {
            const std::uint64_t entry = entries.handle(i);
            if (m_gone.count(entry))
                continue;
            entries.setHandle(kept++, entry);
            if (entry != 0)
                relink(entry);
        }
        entries.resize(kept);
        m_changes.changed.emplace(tableHandle, std::move(cut));
        return {};
    }

    void relink(std::uint64_t handle)
    {
        db::Record scratch;
        const db::Record* const record = current(handle, scratch);
        if (!record || !m_gone.count(record->handle("previous")))
            return;
        db::Record changed = *record;
        db::RecordEditor(changed).setHandle("previous", skipGone(record->handle("previous")));
        m_changes.changed.emplace(handle, std::move(changed));
    }

    const db::Contents& m_contents;
    const DwgFile& m_origin;
    ViewportHeaderChanges& m_changes;
    std::map<std::uint64_t, std::uint64_t> m_gone; // to what each one tells before it
};

} // namespace

base::Status removeViewportHeaders(const db::Contents& contents, const DwgFile& origin,
                                   ViewportHeaderChanges& changes)
{
    return Remover(contents, origin, changes).run();
}

} // namespace dwg
