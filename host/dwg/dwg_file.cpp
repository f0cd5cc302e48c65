#include "dwg_file.h"

#include <base/tv_db_handle.h>
#include <db/record_editor.h>
#include <db/summary_record.h>

#include "byte_stream.h"
#include "container.h"
#include "data_storage.h"
#include "dwg/header_record.h"
#include "object_front.h"
#include "preview_block.h"
#include "summary_section.h"

namespace dwg {

namespace {

constexpr std::size_t kPreviewFieldAt = 0x0D; // of the file
constexpr int kLastFixedType = 499, kLastKeptType = 2000;

// Fixed types that have no table; everything else unknown is a class that the drawing names.
constexpr std::pair<int, std::string_view> kFixedNames[] = {
    {0x2B, "OLEFRAME"}, {0x4B, "DUMMY"}, {0x4C, "LONG_TRANSACTION"}, {0x51, "VBA_PROJECT"}};

std::string_view fixedName(int typeNumber)
{
    for (const auto& [number, name] : kFixedNames)
        if (number == typeNumber)
            return name;
    return {};
}

base::Reason reasonOf(FindingKind kind)
{
    constexpr int kBeforeFirst = static_cast<int>(base::Reason::DwgCheckHeaderChecksum) - 1;
    return static_cast<base::Reason>(kBeforeFirst + static_cast<int>(kind));
}

base::Status statusOf(const Finding& finding)
{
    std::vector<TvString> arguments;
    switch (finding.kind) {
    case FindingKind::PageChecksum:
    case FindingKind::PageUnreadable:
        arguments = {TvString(finding.section), TvString(std::to_string(finding.number))};
        break;
    case FindingKind::ObjectUnreadable:
    case FindingKind::ObjectChecksum:
    case FindingKind::ObjectHandle:
    case FindingKind::ObjectsOverlap: arguments = {base::hexText(finding.number)}; break;
    default: arguments = {TvString(finding.section)}; break;
    }
    return {base::Failure::Damaged, reasonOf(finding.kind), std::move(arguments)};
}

} // namespace

std::string plainText(const RawText& text)
{
    ClassRecord record;
    record.dxfName = text;
    return record.dxfNameText();
}

int measurementOf(Version version, Bytes templateSection)
{
    ByteReader reader(templateSection);
    const std::size_t length = reader.u16();
    reader.take(hasStringStream(version) ? length * 2 : length);
    const int measurement = reader.u16();
    return reader.failed() ? 0 : measurement;
}

DwgFile::DwgFile(RawDrawing raw)
    : m_raw(std::move(raw)), m_context{m_raw.version(), m_classes,
                                       CodePage::numbered(m_raw.codePage())}
{
    for (const ClassRecord& record : m_raw.classes().records()) {
        m_classes.add(record.number, record.dxfNameText(), record.isEntity());
        m_classNames.emplace(record.number, record.dxfNameText());
    }
    int last = kLastFixedType;
    for (const ClassRecord& record : m_raw.classes().records())
        last = std::max<int>(last, record.number);
    for (int type = 0; type <= std::min(last, kLastKeptType); ++type)
        m_kinds.push_back(kindOfType(type));
}

DwgFile::~DwgFile() = default;

base::Result<std::unique_ptr<DwgFile>> DwgFile::open(std::vector<std::uint8_t> file)
{
    auto raw = RawDrawing::open(std::move(file));
    if (!raw)
        return raw.status();
    return std::unique_ptr<DwgFile>(new DwgFile(std::move(*raw)));
}

base::Result<ObjectRecord> DwgFile::object(std::uint64_t handle) const
{
    auto object = m_raw.object(handle);
    if (object && object->handle != handle)
        return base::Status(base::Failure::Damaged, base::Reason::DwgCheckObjectHandle,
                            {base::hexText(handle)});
    return object;
}

db::ObjectKind DwgFile::kindOfType(int type) const
{
    db::ObjectKind kind;
    kind.typeNumber = type;
    kind.classDef = m_classes.find(type);
    kind.isEntity = m_classes.isEntity(type);
    const auto named = m_classNames.find(type);
    kind.className = kind.classDef                 ? kind.classDef->name()
                     : named != m_classNames.end() ? std::string_view(named->second)
                                                   : fixedName(type);
    return kind;
}

base::Result<db::ObjectKind> DwgFile::kind(std::uint64_t handle) const
{
    const ObjectLocation* location = m_raw.find(handle);
    const ObjectFront front = location ? m_raw.front(*location) : ObjectFront();
    if (front.size == 0 || front.handle != handle) {
        const auto found = object(handle);
        return found ? base::Result<db::ObjectKind>(kindOfType(found->type)) : found.status();
    }
    return front.type < m_kinds.size() ? m_kinds[front.type] : kindOfType(front.type);
}

void DwgFile::forEachKind(
    const std::function<void(std::uint64_t, const db::ObjectKind*)>& visit) const
{
    const Container& container = m_raw.container();
    const Version version = m_raw.version();
    const std::uint64_t area = container.objectAreaSize();
    for (const ObjectLocation& location : m_raw.objects()) {
        const ObjectFront front =
            readFrontQuickly(version, container.atHand(location.offset, kMostFrontBytes));
        const bool isPlain = front.size != 0 && front.size <= area - location.offset &&
                             front.handle == location.handle && front.type < m_kinds.size();
        if (isPlain) {
            visit(location.handle, &m_kinds[front.type]);
        } else {
            const auto found = kind(location.handle);
            visit(location.handle, found ? &*found : nullptr);
        }
    }
}

std::span<const std::uint64_t> DwgFile::handles() const
{
    if (m_handles.empty()) { // not before somebody wants them
        m_handles.reserve(m_raw.objects().size());
        for (const ObjectLocation& location : m_raw.objects())
            m_handles.push_back(location.handle);
    }
    return m_handles;
}

base::Status DwgFile::read(std::uint64_t handle, db::Record& out) const
{
    const auto found = object(handle);
    return found ? decodeObject(*found, m_context, out) : found.status();
}

base::Status DwgFile::readCommon(std::uint64_t handle, db::Record& out) const
{
    const auto found = object(handle);
    if (!found)
        return found.status();
    return decodeCommonPart(*found, m_context, out);
}

bool DwgFile::isEditable(std::uint64_t handle) const
{
    const auto found = object(handle);
    return found && reencodesExactly(*found, m_context);
}

bool DwgFile::isEditableRaw(std::uint64_t handle) const
{
    const auto found = object(handle);
    const auto record =
        found ? decodeCommonPart(*found, m_context) : base::Result<db::Record>(found.status());
    if (!record)
        return false;
    const auto bytes = encodeObject(*record, m_context);
    return bytes &&
           std::equal(bytes->begin(), bytes->end(), found->frame.begin(), found->frame.end());
}

base::Result<db::Record> DwgFile::header() const
{
    const auto section = m_raw.section(section::kHeader);
    if (!section)
        return section.status();
    auto record = decodeHeader(m_raw.version(), *section, m_context.codePage);
    const auto beside = m_raw.section(section::kTemplate);
    if (record && beside)
        db::RecordEditor(*record).setInteger("MEASUREMENT",
                                             measurementOf(m_raw.version(), *beside));
    return record;
}

std::vector<db::ClassEntry> DwgFile::classes() const
{
    std::vector<db::ClassEntry> entries;
    for (const ClassRecord& record : m_raw.classes().records())
        entries.push_back({record.dxfNameText(), plainText(record.cppName),
                           plainText(record.application), record.proxyFlags, record.wasProxy,
                           record.isEntity(), record.instances, record.number});
    return entries;
}

std::optional<db::SummaryInfo> DwgFile::summary() const
{
    if (m_raw.version() == Version::Ac1015)
        return summaryOfRecord();
    const auto section = m_raw.section(section::kSummaryInfo);
    if (!section)
        return std::nullopt;
    return readSummary(m_raw.version(), *section, m_context.codePage);
}

std::optional<db::SummaryInfo> DwgFile::summaryOfRecord() const
{
    db::Record record;
    if (!read(m_raw.header().handle("DNAMEDOBJ"), record) ||
        !read(db::entryOf(record, db::kSummaryKey), record))
        return std::nullopt;
    return db::summaryFromRecord(record);
}

db::Preview DwgFile::preview() const
{
    const auto section = m_raw.section(section::kPreview);
    if (!section)
        return {};
    return pictureOf(*section, readU32(m_raw.fileBytes().data() + kPreviewFieldAt));
}

const DataStorage& DwgFile::storage() const
{
    if (!m_storage) {
        const auto section = m_raw.section(section::kDataStorage);
        m_storage = std::make_unique<DataStorage>(section ? *section : Bytes());
    }
    return *m_storage;
}

db::Preview DwgFile::thumbnail(std::uint64_t handle) const
{
    return storage().pictureOf(handle);
}

std::vector<std::uint8_t> DwgFile::modelerData(std::uint64_t handle) const
{
    return storage().bodyOf(handle);
}

std::vector<base::Status> DwgFile::check() const
{
    std::vector<base::Status> statuses;
    for (const Finding& finding : m_raw.check())
        statuses.push_back(statusOf(finding));
    return statuses;
}

} // namespace dwg
