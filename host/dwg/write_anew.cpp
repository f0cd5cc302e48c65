// How a file is made of records, whatever they came from. What holds of it:
//
// 1. Every object of the contents is in the file under its handle, but for those whose content
//    stands elsewhere in the version; each reads back as what it was written from.
// 2. Nothing is written when anything stands in the way: all of that is told at once.
// 3. Sections of the origin are made anew, taken over where both versions understand them alike, or
//    left out where they only describe who wrote the origin.
// 4. Nothing is made of an origin that may not be saved as it is, or the damage would be hidden.

#include <algorithm>
#include <set>

#include <base/tv_db_handle.h>
#include <db/convert.h>
#include <db/entity_chain.h>
#include <db/record_editor.h>
#include <db/summary_record.h>

#include "byte_stream.h"
#include "container.h"
#include "drawing_writer.h"
#include "dwg/header_record.h"
#include "dwg/raw_save.h"
#include "known_classes.h"
#include "new_sections.h"
#include "preview_block.h"
#include "summary_section.h"
#include "written_classes.h"

namespace dwg {

namespace {

constexpr int kUsualCodePage = 30;        // Windows-1252
constexpr std::uint16_t kUnused = 0x8000; // mark of AC1015 at classes without objects
constexpr std::string_view kOrdinaryClass = "ACDBDICTIONARYWDFLT";

// Sections that are made anew, or tell only about the writer of the origin, or (a signature) hold
// no longer (3).
constexpr std::string_view kRemade[] = {
    section::kHeader,      section::kClasses,  section::kHandles,      section::kObjects,
    section::kAuxHeader,   section::kTemplate, section::kObjFreeSpace, section::kRevHistory,
    section::kSummaryInfo, section::kPreview,  section::kAppInfo,      section::kAppInfoHistory,
    section::kFileDepList, section::kSignature};

bool isPaged(Version version)
{
    return version != Version::Ac1015;
}

class NewFile
{
public:
    NewFile(const db::Contents& contents, Version version)
        : m_contents(contents), m_origin(dynamic_cast<const DwgFile*>(contents.origin)),
          m_version(version), m_conversion(databaseVersion(version)),
          m_codePage(
              CodePage::numbered(contents.origin ? contents.origin->codePage() : kUsualCodePage)),
          m_classes(version, classesOfOrigin()), m_context{version, m_classes.classes(), m_codePage}
    {
    }

    base::Result<std::vector<std::uint8_t>> write()
    {
        if (!m_contents.header || !m_contents.header->classDef())
            return base::Status(base::Failure::Usage, base::Reason::DwgSectionMissing,
                                {TvString(section::kHeader)});
        if (isOriginDamaged()) // 4
            return base::Status(base::Failure::Damaged, base::Reason::DwgDamageNotSaved);
        m_header = *m_contents.header;
        takeSummary();
        for (const auto step : {&NewFile::survey, &NewFile::surveySections})
            if (base::Status status = (this->*step)(); !status)
                return status;
        if (!m_obstacles.empty()) // 2
            return base::Status(
                base::Failure::Unsupported, base::Reason::DwgNotConverted,
                {TvString(nameOf(m_version)), listed({m_obstacles.begin(), m_obstacles.end()})});
        for (const auto step :
             {&NewFile::takeObjects, &NewFile::takeHeader, &NewFile::takeSections})
            if (base::Status status = (this->*step)(); !status)
                return status;
        const auto codePage = static_cast<std::uint16_t>(m_codePage.number());
        return save(RawDrawing::makeBlank(m_version, codePage), m_changes);
    }

private:
    // Reads all of the origin. A save in place copies records with wrong checksums as they stand;
    // here they would come out with right ones.
    bool isOriginDamaged() const
    {
        const auto found = m_origin ? m_origin->raw().check() : std::vector<Finding>();
        return std::any_of(found.begin(), found.end(), [](const Finding& finding) {
            return finding.forbidsSave() || finding.kind == FindingKind::ObjectChecksum ||
                   finding.kind == FindingKind::ObjectHandle;
        });
    }

    ClassTable classesOfOrigin() const
    {
        ClassTable table = ClassTable::makeEmpty(m_version);
        if (!m_contents.origin)
            return table;
        for (const db::ClassEntry& entry : m_contents.origin->classes()) {
            ClassRecord record = knownClass(m_version, entry.dxfName).value_or(ClassRecord());
            if (const ClassRecord* old = oldRecord(entry); old && old->version != 0) {
                record.version = old->version;
                record.maintenance = old->maintenance;
            }
            record.dxfName = asciiText(m_version, entry.dxfName);
            record.cppName = asciiText(m_version, entry.cppName);
            record.application = asciiText(m_version, entry.application);
            record.proxyFlags =
                static_cast<std::uint16_t>(entry.proxyFlags) & static_cast<std::uint16_t>(~kUnused);
            record.wasProxy = entry.wasProxy;
            record.kind = entry.isEntity ? ClassRecord::kEntity : ClassRecord::kObject;
            table.add(std::move(record));
        }
        return table;
    }

    const ClassRecord* oldRecord(const db::ClassEntry& entry) const
    {
        return m_origin ? m_origin->raw().classes().find(static_cast<std::uint16_t>(entry.number))
                        : nullptr;
    }

    // The record as the contents have it, with the list of what it owns.
    base::Result<const db::Record*> record(std::uint64_t handle)
    {
        if (m_contents.changed)
            if (const auto found = m_contents.changed->find(handle);
                found != m_contents.changed->end())
                return found->second;
        if (m_contents.record) {
            const auto given = m_contents.record(handle);
            if (!given || !lacksList(**given))
                return given;
            m_scratch = **given;
        } else if (!m_contents.origin) {
            return base::Status(base::Failure::NotFound, base::Reason::DwgObjectMissing,
                                {base::hexText(handle)});
        } else if (base::Status status = m_contents.origin->read(handle, m_scratch); !status) {
            return status;
        }
        if (m_origin && lacksList(m_scratch))
            if (base::Status status = db::fillOwnedFromChain(*m_origin, m_scratch); !status)
                return status;
        return &m_scratch;
    }

    // Whoever gives records may have left the list of AC1015 where it is: in the chain.
    bool lacksList(const db::Record& record) const
    {
        const db::FieldId list = db::ownedListOf(record.fields());
        return m_origin && list != db::FieldId::None && record.version() == db::Version::Ac1015 &&
               record.array(list).isEmpty();
    }

    std::string classNameOf(std::uint64_t handle) const
    {
        const auto kind = m_contents.origin ? m_contents.origin->kind(handle)
                                            : base::Result<db::ObjectKind>(base::Status());
        return kind && !kind->className.empty() ? std::string(kind->className)
                                                : base::hexText(handle).utf8();
    }

    base::Status survey()
    {
        m_conversion.surveyHeader(m_header);
        for (const std::uint64_t handle : m_contents.handles) {
            const auto found = record(handle);
            if (!found && found.status().failure() != base::Failure::Unsupported)
                return found.status();
            if (!found || isUnknown(**found)) {
                m_obstacles.insert(classNameOf(handle));
                continue;
            }
            if (const std::string name = m_conversion.obstacle(**found); !name.empty())
                m_obstacles.insert(name);
            m_conversion.survey(**found);
        }
        m_nextHandle = m_header.handle("HANDSEED");
        if (!m_contents.handles.empty())
            m_nextHandle = std::max(m_nextHandle, m_contents.handles.back() + 1);
        m_conversion.finishSurvey(m_nextHandle);
        return {};
    }

    // Proxies tell the number of their class, and numbers are given anew here.
    static bool isUnknown(const db::Record& record)
    {
        const std::string_view name =
            record.classDef() ? record.classDef()->name() : std::string_view("RAW_");
        return name.starts_with("RAW_") || name.starts_with("PROXY_");
    }

    base::Status surveySections()
    {
        if (!m_origin)
            return {};
        for (const std::string& name : m_origin->raw().sectionNames())
            if (std::find(std::begin(kRemade), std::end(kRemade), name) == std::end(kRemade) &&
                name != section::kDataStorage &&
                !(name == section::kVbaProject && isPaged(m_version)))
                m_obstacles.insert(name);
        return {};
    }

    // Both sides must have it for that.
    bool keepsDataStorage() const
    {
        return m_origin && m_version >= Version::Ac1027 &&
               m_origin->raw().version() >= Version::Ac1027 &&
               m_origin->raw().hasSection(section::kDataStorage);
    }

    base::Status takeObjects()
    {
        for (const std::uint64_t handle : m_contents.handles) {
            if (m_conversion.isSuperseded(handle))
                continue;
            const auto found = record(handle);
            if (!found)
                return found.status();
            db::Record converted = **found;
            const bool hasData = keepsDataStorage() && m_origin->raw().find(handle);
            if (converted.flag("has_binary") && !hasData)
                db::RecordEditor(converted).setFlag("has_binary", false);
            if (base::Status status = m_conversion.convert(converted); !status)
                return status;
            if (m_version == Version::Ac1015 && m_summary)
                fileSummary(converted);
            if (base::Status status = takeObject(converted); !status)
                return status;
        }
        for (db::Record added : m_conversion.additions())
            if (base::Status status = takeObject(added); !status)
                return status;
        return takeSummaryRecord();
    }

    base::Status takeObject(db::Record& record)
    {
        const int number = m_classes.numberOf(*record.classDef());
        if (number == 0)
            return {base::Failure::Unsupported,
                    base::Reason::DwgClassNotNamed,
                    {TvString(record.classDef()->name())}};
        record.setTypeNumber(number);
        auto bytes = encodeObject(record, m_context);
        if (!bytes)
            return bytes.status();
        const auto object = parseRecord(m_version, *bytes);
        if (!object || !reencodesExactly(*object, m_context)) // 1
            return {base::Failure::Damaged, base::Reason::DwgVerifyFailed};
        m_classes.count(number, 1);
        m_changes.objects.emplace(record.handle(), std::move(*bytes));
        return {};
    }

    base::Status takeHeader()
    {
        m_conversion.convertHeader(m_header);
        db::RecordEditor(m_header).setHandle("HANDSEED", m_nextHandle);
        auto bytes = encodeHeader(m_header, m_version, m_codePage);
        if (!bytes)
            return bytes.status();
        auto variables = HeaderVariables::read(m_version, *bytes);
        if (!variables)
            return variables.status();
        m_changes.header = std::move(*variables);
        return {};
    }

    void takeSummary()
    {
        if (m_contents.summary)
            m_summary = *m_contents.summary;
        else if (m_origin && m_origin->raw().version() == Version::Ac1015)
            m_summary = summaryOfRecord();
        else if (m_contents.origin)
            m_summary = m_contents.origin->summary();
        // In AC1015 it is an object, which may be unable to hold it.
        db::Record record = summaryRecord(1);
        if (m_summary && m_version == Version::Ac1015 && !db::putSummary(record, *m_summary))
            m_obstacles.insert(base::utf8FromUtf16(db::kSummaryKey));
    }

    // As it is now, which may not be what the origin has.
    std::optional<db::SummaryInfo> summaryOfRecord()
    {
        const auto filed = [&](std::uint64_t handle) -> const db::Record* {
            const bool isThere =
                std::binary_search(m_contents.handles.begin(), m_contents.handles.end(), handle);
            const auto found =
                isThere ? record(handle) : base::Result<const db::Record*>(base::Status());
            return isThere && found ? *found : nullptr;
        };
        const db::Record* const dictionary = filed(m_header.handle("DNAMEDOBJ"));
        const db::Record* const kept =
            dictionary ? filed(db::entryOf(*dictionary, db::kSummaryKey)) : nullptr;
        return kept ? db::summaryFromRecord(*kept) : std::nullopt;
    }

    db::Record summaryRecord(std::uint64_t handle) const
    {
        return db::newSummaryRecord(m_header.handle("DNAMEDOBJ"), handle,
                                    databaseVersion(m_version));
    }

    // The record itself comes behind all others, since it is new.
    void fileSummary(db::Record& record)
    {
        if (record.handle() != m_header.handle("DNAMEDOBJ") || !record.has("keys"))
            return;
        db::removeEntry(record, db::entryOf(record, db::kSummaryKey));
        m_summaryHandle = m_nextHandle++;
        db::addEntry(record, db::kSummaryKey, m_summaryHandle);
    }

    base::Status takeSummaryRecord()
    {
        if (m_summaryHandle == 0)
            return {};
        db::Record record = summaryRecord(m_summaryHandle);
        db::putSummary(record, *m_summary);
        return takeObject(record);
    }

    base::Status takeSections()
    {
        m_changes.sections = newSections(m_version, m_header, m_changes.objects.size());
        if (m_classes.table().records().empty() && m_classes.nameClass(kOrdinaryClass) == 0)
            return {base::Failure::Unsupported, base::Reason::DwgClassNotNamed};
        put(section::kClasses, m_classes.table().section());
        if (m_summary && isPaged(m_version))
            put(section::kSummaryInfo, writeSummary(m_version, *m_summary, m_codePage));
        db::Preview preview = m_contents.preview  ? *m_contents.preview
                              : m_contents.origin ? m_contents.origin->preview()
                                                  : db::Preview();
        if (preview.kind != db::Preview::Kind::None)
            put(section::kPreview, previewBlock(preview));
        if (m_origin)
            takeOver(section::kVbaProject);
        if (keepsDataStorage())
            takeOver(section::kDataStorage);
        for (const auto& [name, bytes] : m_changes.sections)
            if (bytes.empty())
                return {
                    base::Failure::TooLarge, base::Reason::DwgSectionNotWritten, {TvString(name)}};
        return takeDescription();
    }

    void put(std::string_view name, std::vector<std::uint8_t> bytes)
    {
        m_changes.sections[std::string(name)] = std::move(bytes);
    }

    void takeOver(std::string_view name)
    {
        const auto bytes = m_origin->raw().section(name);
        if (bytes && !bytes->empty())
            put(name, {bytes->begin(), bytes->end()});
    }

    // What the origin's template says of itself.
    base::Status takeDescription()
    {
        const auto old = m_origin ? m_origin->raw().section(section::kTemplate)
                                  : base::Result<Bytes>(base::Status());
        if (!m_origin || !old)
            return {};
        put(section::kTemplate,
            templateSection(m_version,
                            templateDescription(m_origin->raw().version(), *old, m_codePage),
                            m_codePage, static_cast<int>(m_header.integer("MEASUREMENT"))));
        return {};
    }

    const db::Contents& m_contents;
    const DwgFile* m_origin; // not owned; null when the contents come from elsewhere
    Version m_version;
    db::Conversion m_conversion;
    const CodePage& m_codePage;
    WrittenClasses m_classes;
    ObjectContext m_context;
    RawChanges m_changes;
    db::Record m_header, m_scratch;
    std::set<std::string> m_obstacles;
    std::optional<db::SummaryInfo> m_summary;
    std::uint64_t m_nextHandle = 0, m_summaryHandle = 0;
};

} // namespace

base::Result<std::vector<std::uint8_t>> writeAnew(const db::Contents& contents, Version version)
{
    return NewFile(contents, version).write();
}

} // namespace dwg
