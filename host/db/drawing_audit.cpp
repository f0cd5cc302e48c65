#include "db/drawing_audit.h"

#include <algorithm>

#include "db/entity_chain.h"
#include "db/references.h"
#include "drawing_auditor.h"

namespace db {

namespace {

TvString countText(std::size_t count)
{
    return TvString(std::to_string(count));
}

TvString classText(std::string_view name)
{
    return TvString(name);
}

namespace field {
const FieldId kOwner = fieldId("owner"), kEntityMode = fieldId("entmode"),
              kLayer = fieldId("layer"), kPrevious = fieldId("prev"), kNext = fieldId("next"),
              kNoLinks = fieldId("nolinks"), kName = fieldId("name"),
              kBlock = fieldId("block_record"), kTabOrder = fieldId("tab_order"),
              kLayout = fieldId("layout"), kModelSpace = fieldId("model_space"),
              kPaperSpace = fieldId("paper_space");
} // namespace field

} // namespace

TvString auditCode(DrawingRule rule)
{
    constexpr int kFirst = 22600;
    return TvString().format(u"D%02d", static_cast<int>(rule) - kFirst);
}

std::vector<DrawingFinding> auditDrawing(TvDbDatabase& database, const DrawingAuditOptions& options)
{
    return DrawingAuditor(database, options).run();
}

std::vector<DrawingFinding> DrawingAuditor::run()
{
    checkFile();
    readAll();
    tellClasses();
    checkLists();
    for (const AuditedObject& object : m_objects)
        checkOwner(object);
    checkRings();
    checkRequired();
    checkLayouts();
    checkSheetData();
    if (m_options.trySave)
        trySave();
    return sorted();
}

void DrawingAuditor::add(DrawingRule rule, AuditSeverity severity, std::uint64_t handle,
                         std::vector<TvString> arguments, base::Status status)
{
    const int number = ++m_told[static_cast<int>(rule)];
    if (m_options.mostOfOneRule == 0 || number <= m_options.mostOfOneRule)
        m_findings.push_back({rule, severity, handle, std::move(arguments), std::move(status), {}});
}

std::vector<DrawingFinding> DrawingAuditor::sorted()
{
    const int most = m_options.mostOfOneRule;
    for (const auto& [rule, count] : std::map(m_told))
        if (most != 0 && count > most)
            add(DrawingRule::MoreOfTheSame, AuditSeverity::Note, 0,
                {auditCode(static_cast<DrawingRule>(rule)),
                 countText(static_cast<std::size_t>(count - most))});
    for (DrawingFinding& finding : m_findings)
        finding.className = classOf(finding.handle);
    std::stable_sort(m_findings.begin(), m_findings.end(),
                     [](const DrawingFinding& a, const DrawingFinding& b) {
                         return std::pair(a.severity, a.handle) < std::pair(b.severity, b.handle);
                     });
    return std::move(m_findings);
}

const AuditedObject* DrawingAuditor::find(std::uint64_t handle) const
{
    const auto at = std::lower_bound(
        m_objects.begin(), m_objects.end(), handle,
        [](const AuditedObject& object, std::uint64_t wanted) { return object.handle < wanted; });
    return at != m_objects.end() && at->handle == handle ? &*at : nullptr;
}

std::string DrawingAuditor::classOf(std::uint64_t handle) const
{
    if (const AuditedObject* object = find(handle); object && object->classDef && !object->isRaw)
        return std::string(object->classDef->name());
    const base::Result<ObjectKind> kind =
        m_impl.file() ? m_impl.file()->kind(handle) : base::Result<ObjectKind>(ObjectKind{});
    return std::string(kind ? kind->className : std::string_view());
}

bool DrawingAuditor::isOfClass(std::uint64_t handle, std::string_view name) const
{
    const AuditedObject* object = find(handle);
    return object && object->classDef && object->classDef->name() == name;
}

// --- the file

void DrawingAuditor::checkFile()
{
    if (!m_impl.file())
        return;
    for (base::Status& status : m_impl.file()->check())
        add(DrawingRule::FileWrong, AuditSeverity::Error, 0, {}, std::move(status));
}

void DrawingAuditor::trySave()
{
    const FileFormat format = m_impl.file() ? m_impl.file()->format() : FileFormat::Dwg;
    const auto bytes = m_impl.toBytes(format, m_impl.version());
    if (!bytes)
        add(DrawingRule::SaveRefused, AuditSeverity::Warning, 0, {}, bytes.status());
}

// --- the objects, one by one

void DrawingAuditor::readAll()
{
    // What the database gives out next lies above every handle; the file may say otherwise.
    m_seed = m_impl.header().handle("HANDSEED");
    if (const Record* blocks = lookAgain(m_impl.header().handle("BLOCKCTL"))) {
        m_modelSpace = blocks->handle(field::kModelSpace);
        m_paperSpace = blocks->handle(field::kPaperSpace);
    }
    m_objects.reserve(m_impl.slotCount());
    m_impl.forEach([&](ObjectSlot& slot) {
        AuditedObject object;
        object.handle = slot.handle;
        bool isChainBroken = false;
        if (const Record* record = look(slot, object, isChainBroken))
            visit(*record, object, slot.isChanged);
        if (isChainBroken)
            add(DrawingRule::ChainBroken, AuditSeverity::Error, slot.handle);
        // A new object gets its handle from the database, which raises the seed at the save.
        if (slot.isStored && slot.handle >= m_seed)
            add(DrawingRule::HandleBeyondSeed, AuditSeverity::Warning, slot.handle,
                {base::hexText(m_seed)});
        m_objects.push_back(object);
    });
}

const Record* DrawingAuditor::look(ObjectSlot& slot, AuditedObject& object, bool& isChainBroken)
{
    if (slot.object && !slot.object->isRaw()) {
        // What was put right when it was opened is looked at as the file has it.
        if (slot.isChanged || m_impl.version() != Version::Ac1015)
            return &slot.object->record();
    }
    if (!m_impl.file() || !slot.isStored)
        return slot.object ? &slot.object->record() : nullptr;
    if (const base::Status status = m_impl.file()->read(slot.handle, m_scratch); !status) {
        noteUnread(slot, object, status);
        return m_impl.file()->readCommon(slot.handle, m_scratch) ? &m_scratch : nullptr;
    }
    isChainBroken = !fillOwnedFromChain(*m_impl.file(), m_scratch);
    return &m_scratch;
}

const Record* DrawingAuditor::lookAgain(std::uint64_t handle)
{
    ObjectSlot* slot = m_impl.find(handle);
    if (!slot || slot->isErased)
        return nullptr;
    if (slot->object)
        return &slot->object->record();
    return m_impl.file() && m_impl.file()->read(handle, m_scratch) ? &m_scratch : nullptr;
}

void DrawingAuditor::noteUnread(ObjectSlot& slot, AuditedObject& object, const base::Status& why)
{
    object.isRaw = true;
    const base::Result<ObjectKind> kind = m_impl.file()->kind(slot.handle);
    const std::string name(kind ? kind->className : std::string_view());
    if (why.failure() != base::Failure::Unsupported || !kind)
        return add(DrawingRule::ObjectDamaged, AuditSeverity::Error, slot.handle, {classText(name)},
                   why);
    ClassCount& count = m_classes[name];
    ++(kind->classDef ? count.odd : count.unknown);
}

void DrawingAuditor::tellClasses()
{
    for (const auto& [name, count] : m_classes) {
        if (count.unknown > 0)
            add(DrawingRule::ClassUnknown, AuditSeverity::Note, 0,
                {countText(static_cast<std::size_t>(count.unknown)), classText(name)});
        if (count.odd > 0)
            add(DrawingRule::FormUnknown, AuditSeverity::Note, 0,
                {countText(static_cast<std::size_t>(count.odd)), classText(name)});
    }
}

namespace {

/// Entities of the two spaces that are shown do not name their owner.
std::uint64_t ownerOf(const Record& record, std::uint64_t modelSpace, std::uint64_t paperSpace)
{
    switch (record.integer(field::kEntityMode)) {
    case 1: return paperSpace;
    case 2: return modelSpace;
    default: return record.handle(field::kOwner);
    }
}

} // namespace

void DrawingAuditor::visit(const Record& record, AuditedObject& object, bool isChanged)
{
    object.classDef = record.classDef();
    object.isEntity = record.has(field::kEntityMode);
    object.owner = ownerOf(record, m_modelSpace, m_paperSpace);
    if (object.isEntity) {
        object.layer = record.handle(field::kLayer);
        object.hasLinks =
            !isChanged && m_impl.version() == Version::Ac1015 && !record.flag(field::kNoLinks);
        object.previous = record.handle(field::kPrevious);
        object.next = record.handle(field::kNext);
    }
    visitReferences(record, object);
    noteLists(record, object, isChanged);
    if (object.classDef->kind() == ClassKind::Table)
        m_names.emplace(object.handle, record.text(field::kName));
    if (object.classDef->name() == "LAYOUT")
        m_layouts[object.handle] = {object.handle, record.handle(field::kBlock),
                                    TvString(record.text(field::kName)),
                                    record.integer(field::kTabOrder)};
    if (object.classDef->name() == "BLOCK_HEADER" && record.handle(field::kLayout) != 0)
        m_layoutOfBlock.emplace(object.handle, record.handle(field::kLayout));
}

void DrawingAuditor::visitReferences(const Record& record, const AuditedObject& object)
{
    std::size_t soft = 0;
    std::uint64_t firstSoft = 0;
    const auto visitOne = [&](const Reference& reference) {
        // A missing owner and a missing layer are told as such.
        if (reference.target == object.owner || reference.target == object.layer)
            return;
        // References to what was erased since are taken out when the drawing is saved.
        if (m_impl.find(reference.target))
            return;
        const bool isHard = reference.kind == ReferenceKind::HardOwner ||
                            reference.kind == ReferenceKind::HardPointer;
        if (isHard && !object.isRaw)
            return add(DrawingRule::HardReferenceMissing, AuditSeverity::Error, object.handle,
                       {base::hexText(reference.target)});
        if (soft++ == 0)
            firstSoft = reference.target;
    };
    forEachReference(record, visitOne);
    if (soft > 0)
        add(DrawingRule::SoftReferenceMissing, AuditSeverity::Note, object.handle,
            {countText(soft), base::hexText(firstSoft)});
}

} // namespace db
