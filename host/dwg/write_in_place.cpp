#include <base/tv_db_handle.h>
#include <db/convert.h>
#include <db/record_editor.h>
#include <db/summary_record.h>

#include "container.h"
#include "drawing_writer.h"
#include "dwg/header_record.h"
#include "dwg/raw_save.h"
#include "new_sections.h"
#include "preview_block.h"
#include "summary_section.h"
#include "viewport_headers.h"
#include "written_classes.h"

namespace dwg {

namespace {

constexpr std::size_t kMostListed = 20;

base::Status sectionNotWritten(std::string_view name)
{
    return {base::Failure::TooLarge, base::Reason::DwgSectionNotWritten, {TvString(name)}};
}

/// Works out what of a file changes, object by object.
class InPlaceWriter
{
public:
    InPlaceWriter(const db::Contents& contents, const DwgFile& origin)
        : m_contents(contents), m_origin(origin),
          m_classes(origin.raw().version(), origin.raw().classes()), m_context{
                                                                         origin.raw().version(),
                                                                         m_classes.classes(),
                                                                         origin.context().codePage}
    {
    }

    base::Result<std::vector<std::uint8_t>> write()
    {
        for (const auto step :
             {&InPlaceWriter::takeViewportHeaders, &InPlaceWriter::takeSummaryRecord,
              &InPlaceWriter::takeErased, &InPlaceWriter::takeChanged, &InPlaceWriter::takeHeader,
              &InPlaceWriter::takeSummary})
            if (base::Status status = (this->*step)(); !status)
                return status;
        if (m_contents.preview)
            m_changes.sections[std::string(section::kPreview)] = previewBlock(*m_contents.preview);
        if (m_classes.isChanged()) {
            auto bytes = m_classes.table().section();
            if (bytes.empty())
                return sectionNotWritten(section::kClasses);
            m_changes.sections[std::string(section::kClasses)] = std::move(bytes);
        }
        return save(m_origin.raw(), m_changes);
    }

private:
    Version version() const { return m_origin.raw().version(); }
    bool isErased(std::uint64_t handle) const
    {
        return m_contents.erased && m_contents.erased->count(handle) != 0;
    }

    // In AC1015 each viewport of the active layout has a second record, which goes with it.
    base::Status takeViewportHeaders()
    {
        if (version() != Version::Ac1015 || !m_contents.erased || m_contents.erased->empty())
            return {};
        return removeViewportHeaders(m_contents, m_origin, m_own);
    }

    base::Status takeErased()
    {
        const auto erase = [&](std::uint64_t handle) {
            const auto object = m_origin.raw().object(handle);
            if (m_origin.raw().find(handle) && m_changes.erased.insert(handle).second && object)
                m_classes.count(object->type, -1);
        };
        if (m_contents.erased)
            for (const std::uint64_t handle : *m_contents.erased)
                erase(handle);
        for (const std::uint64_t handle : m_own.erased)
            erase(handle);
        return {};
    }

    base::Status takeChanged()
    {
        const auto& others = m_own.changed;
        if (m_contents.changed)
            for (const auto& [handle, record] : *m_contents.changed)
                if (!m_changes.erased.count(handle) && !isErased(handle) && !others.count(handle))
                    if (base::Status status = takeObject(handle, *record); !status)
                        return status;
        for (const auto& [handle, record] : others)
            if (base::Status status = takeObject(handle, record); !status)
                return status;
        if (m_notEditable.empty())
            return {};
        return {base::Failure::Unsupported,
                base::Reason::DwgObjectsNotEditable,
                {listed(m_notEditable)}};
    }

    base::Status takeObject(std::uint64_t handle, const db::Record& record)
    {
        const bool isNew = !m_origin.raw().find(handle);
        db::Record prepared;
        const auto toWrite = prepare(record, isNew, prepared);
        if (!toWrite)
            return toWrite.status();
        auto bytes = encodeObject(**toWrite, m_context);
        if (!bytes)
            return bytes.status();
        if (!isNew && isSameAsBefore(handle, *bytes))
            return {};
        const bool isRaw = record.classDef()->name().starts_with("RAW_");
        const bool mayChange =
            isNew || (isRaw ? m_origin.isEditableRaw(handle) : m_origin.isEditable(handle));
        if (!mayChange)
            m_notEditable.push_back(base::hexText(handle).utf8());
        m_changes.objects.emplace(handle, std::move(*bytes));
        countClass(handle, (*toWrite)->typeNumber());
        return {};
    }

    bool isSameAsBefore(std::uint64_t handle, const std::vector<std::uint8_t>& bytes) const
    {
        const auto before = m_origin.raw().objectBytes(handle);
        return before && std::equal(bytes.begin(), bytes.end(), before->begin(), before->end());
    }

    void countClass(std::uint64_t handle, int typeNumber)
    {
        const auto before = m_origin.raw().object(handle);
        if (before && before->type == typeNumber)
            return;
        if (before)
            m_classes.count(before->type, -1);
        m_classes.count(typeNumber, 1);
    }

    // The record as this file stores it: itself, where nothing is to be done, else @p prepared.
    base::Result<const db::Record*> prepare(const db::Record& record, bool isNew,
                                            db::Record& prepared)
    {
        if (!record.classDef())
            return base::Status(base::Failure::Usage, base::Reason::DwgRecordInvalid,
                                {base::hexText(record.handle())});
        const int number = typeNumberOf(record, isNew);
        if (number == 0)
            return base::Status(base::Failure::Unsupported, base::Reason::DwgClassNotNamed,
                                {TvString(record.classDef()->name())});
        // What another object has outside of its record is not this one's.
        const bool dropsData = isNew && record.flag("has_binary");
        const bool isForeign = record.version() != databaseVersion(version());
        if (number == record.typeNumber() && !dropsData && !isForeign)
            return &record;
        prepared = record;
        prepared.setTypeNumber(number);
        if (dropsData)
            db::RecordEditor(prepared).setFlag("has_binary", false);
        if (isForeign)
            if (auto status = db::Conversion(databaseVersion(version())).convert(prepared); !status)
                return status;
        return &prepared;
    }

    // Fixed numbers are not the same in all versions: of a new object they say nothing.
    int typeNumberOf(const db::Record& record, bool isNew)
    {
        constexpr int kFirstNamed = 500;
        const db::ClassDef* const classDef = record.classDef();
        const bool isRaw = classDef->name().starts_with("RAW_");
        const bool isOfThisFile = !isNew || record.typeNumber() >= kFirstNamed;
        if (isRaw || (isOfThisFile && m_classes.classes().find(record.typeNumber()) == classDef))
            return record.typeNumber();
        return m_classes.numberOf(*classDef);
    }

    base::Status takeHeader()
    {
        const db::Record* header = m_own.header               ? &*m_own.header
                                   : m_contents.headerChanged ? m_contents.header
                                                              : nullptr;
        if (!header)
            return {};
        db::Record prepared;
        if (header->version() != databaseVersion(version())) {
            prepared = *header;
            db::Conversion(databaseVersion(version())).convertHeader(prepared);
            header = &prepared;
        }
        auto bytes = encodeHeader(*header, version(), m_context.codePage);
        if (!bytes)
            return bytes.status();
        auto variables = HeaderVariables::read(version(), *bytes);
        if (!variables)
            return variables.status();
        m_changes.header = std::move(*variables);
        return takeMeasurement(static_cast<int>(header->integer("MEASUREMENT")));
    }

    base::Status takeMeasurement(int measurement)
    {
        const auto before = m_origin.raw().section(section::kTemplate);
        if (before && measurementOf(version(), *before) == measurement)
            return {};
        auto bytes = before ? withMeasurement(version(), *before, measurement)
                            : templateSection(version(), {}, m_context.codePage, measurement);
        if (bytes.empty())
            return sectionNotWritten(section::kTemplate);
        m_changes.sections[std::string(section::kTemplate)] = std::move(bytes);
        return {};
    }

    // A copy of the record as it is now; nullopt when there is none.
    std::optional<db::Record> current(std::uint64_t handle) const
    {
        if (m_contents.changed)
            if (const auto found = m_contents.changed->find(handle);
                found != m_contents.changed->end())
                return *found->second;
        db::Record record;
        if (isErased(handle) || !m_origin.read(handle, record))
            return std::nullopt;
        return record;
    }

    // In AC1015 the summary information is an object.
    base::Status takeSummaryRecord()
    {
        if (!m_contents.summary || version() != Version::Ac1015)
            return {};
        const base::Status tooLarge(base::Failure::TooLarge, base::Reason::DwgSummaryTooLarge);
        auto dictionary = current(m_origin.raw().header().handle("DNAMEDOBJ"));
        if (!dictionary || !dictionary->has("keys"))
            return {base::Failure::Damaged,
                    base::Reason::DwgSectionMissing,
                    {TvString(base::utf8FromUtf16(db::kSummaryKey))}};
        const std::uint64_t filed = db::entryOf(*dictionary, db::kSummaryKey);
        auto record = current(filed);
        if (!record || !record->has("content")) {
            record = newXrecord(*dictionary);
            db::removeEntry(*dictionary, filed);
            db::addEntry(*dictionary, db::kSummaryKey, record->handle());
            m_own.changed.emplace(dictionary->handle(), *dictionary);
        } else if (db::summaryFromRecord(*record) == *m_contents.summary) {
            return {};
        }
        if (!db::putSummary(*record, *m_contents.summary))
            return tooLarge;
        m_own.changed.emplace(record->handle(), std::move(*record));
        return {};
    }

    db::Record newXrecord(const db::Record& dictionary) const
    {
        std::uint64_t handle = m_origin.raw().header().handSeed();
        if (m_contents.header)
            handle = std::max(handle, m_contents.header->handle("HANDSEED"));
        if (m_contents.changed && !m_contents.changed->empty())
            handle = std::max(handle, m_contents.changed->rbegin()->first + 1);
        return db::newSummaryRecord(dictionary.handle(), handle, databaseVersion(version()));
    }

    base::Status takeSummary()
    {
        if (!m_contents.summary || version() == Version::Ac1015 ||
            m_origin.summary() == *m_contents.summary)
            return {};
        auto bytes = writeSummary(version(), *m_contents.summary, m_context.codePage);
        if (bytes.empty())
            return {base::Failure::TooLarge, base::Reason::DwgSummaryTooLarge};
        m_changes.sections[std::string(section::kSummaryInfo)] = std::move(bytes);
        return {};
    }

    const db::Contents& m_contents;
    const DwgFile& m_origin;
    WrittenClasses m_classes;
    ObjectContext m_context;
    RawChanges m_changes;
    ViewportHeaderChanges m_own; // what follows from the changes of others
    std::vector<std::string> m_notEditable;
};

} // namespace

TvString listed(const std::vector<std::string>& items)
{
    std::string text;
    for (std::size_t i = 0; i < std::min(items.size(), kMostListed); ++i)
        text += (i == 0 ? "" : ", ") + items[i];
    if (items.size() > kMostListed)
        text += ", +" + std::to_string(items.size() - kMostListed);
    return TvString(text);
}

base::Result<std::vector<std::uint8_t>> writeInPlace(const db::Contents& contents,
                                                     const DwgFile& origin)
{
    return InPlaceWriter(contents, origin).write();
}

} // namespace dwg
