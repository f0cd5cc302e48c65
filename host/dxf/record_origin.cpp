#include "record_origin.h"

#include <algorithm>

#include <db/entity_chain.h>
#include <db/record_editor.h>
#include <db/summary_record.h>

namespace dxf {

RecordOrigin::RecordOrigin(const db::Contents& contents, db::Version version)
    : m_contents(contents), m_version(version), m_header(*contents.header), m_conversion(version)
{
    if (isConverted())
        m_conversion.surveyHeader(m_header);
    if (contents.summary)
        m_summary = *contents.summary;
    else if (contents.origin)
        m_summary = contents.origin->summary();
}

bool RecordOrigin::survey(std::uint64_t handle)
{
    if (!isConverted())
        return true;
    const auto record = found(handle);
    if (!record || !m_conversion.obstacle(*record).empty())
        return false;
    m_conversion.survey(*record);
    if (!m_summary && record->version() == db::Version::Ac1015)
        m_summary = db::summaryFromRecord(*record);
    return true;
}

base::Status RecordOrigin::finishSurvey()
{
    if (!isConverted())
        return {};
    std::uint64_t next = m_header.handle("HANDSEED");
    if (!m_contents.handles.empty())
        next = std::max(next, m_contents.handles.back() + 1);
    m_conversion.finishSurvey(next);
    m_conversion.convertHeader(m_header);
    if (m_version == db::Version::Ac1015 && m_summary) {
        m_summaryHandle = next++;
        db::Record record =
            db::newSummaryRecord(m_header.handle("DNAMEDOBJ"), m_summaryHandle, m_version);
        if (!db::putSummary(record, *m_summary))
            return {base::Failure::Unsupported,
                    base::Reason::DxfClassesNotWritten,
                    {TvString(base::utf8FromUtf16(db::kSummaryKey).c_str())}};
    }
    db::RecordEditor(m_header).setHandle("HANDSEED", next);
    return {};
}

bool RecordOrigin::isSuperseded(std::uint64_t handle) const
{
    return isConverted() && m_conversion.isSuperseded(handle);
}

base::Result<db::Record> RecordOrigin::record(std::uint64_t handle)
{
    if (handle != 0 && handle == m_summaryHandle) {
        db::Record summary =
            db::newSummaryRecord(m_header.handle("DNAMEDOBJ"), m_summaryHandle, m_version);
        db::putSummary(summary, *m_summary);
        return summary;
    }
    auto record = found(handle);
    if (!record || !isConverted())
        return record;
    if (base::Status done = m_conversion.convert(*record); !done)
        return done;
    if (m_summaryHandle != 0 && handle == m_header.handle("DNAMEDOBJ") && record->has("keys")) {
        db::removeEntry(*record, db::entryOf(*record, db::kSummaryKey));
        db::addEntry(*record, db::kSummaryKey, m_summaryHandle);
    }
    return record;
}

// Lists of the oldest version may still be where that keeps them: in the chain of the entities.
base::Result<db::Record> RecordOrigin::found(std::uint64_t handle) const
{
    if (m_contents.changed)
        if (const auto changed = m_contents.changed->find(handle);
            changed != m_contents.changed->end())
            return *changed->second;
    if (m_contents.erased && m_contents.erased->contains(handle))
        return base::Status(base::Failure::NotFound, base::Reason::DxfObjectMissing,
                            {TvString().format(u"%X", static_cast<std::int64_t>(handle))});
    const auto given = m_contents.record(handle);
    if (!given)
        return given.status();
    db::Record record = **given;
    const db::FieldId list = db::ownedListOf(record.fields());
    const bool lacksList = list != db::FieldId::None && record.version() == db::Version::Ac1015 &&
                           record.array(list).isEmpty();
    if (m_contents.origin && lacksList)
        if (base::Status done = db::fillOwnedFromChain(*m_contents.origin, record); !done)
            return done;
    return record;
}

} // namespace dxf
