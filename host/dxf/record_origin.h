#pragma once

#include <optional>

#include <db/convert.h>
#include <db/drawing_file.h>

namespace dxf {

/// The records of what is to be written, as the version of the file has them.
///
/// A drawing of another version is looked through first (survey()), since some of its objects are
/// told by others there.
class RecordOrigin
{
public:
    RecordOrigin(const db::Contents& contents, db::Version version);

    /// Notes an object; true when it can be converted. An object that cannot be read is one that
    /// cannot.
    bool survey(std::uint64_t handle);
    /// After the last object. Fails with Unsupported when the version cannot hold the summary.
    base::Status finishSurvey();

    const db::Record& header() const { return m_header; }
    /// A copy, since what is behind it lasts until the next question only.
    base::Result<db::Record> record(std::uint64_t handle);
    /// Whether the object is not written, since the version tells it in another way.
    bool isSuperseded(std::uint64_t handle) const;
    const std::optional<db::SummaryInfo>& summary() const { return m_summary; }
    /// The object that holds the summary in the oldest version, when it must be made; else 0.
    std::uint64_t summaryHandle() const { return m_summaryHandle; }

private:
    base::Result<db::Record> found(std::uint64_t handle) const;
    bool isConverted() const { return m_contents.header->version() != m_version; }

    const db::Contents& m_contents;
    const db::Version m_version;
    db::Record m_header;
    db::Conversion m_conversion;
    std::optional<db::SummaryInfo> m_summary;
    std::uint64_t m_summaryHandle = 0;
};

} // namespace dxf
