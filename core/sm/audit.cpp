#include "sm/audit.h"

#include <set>
#include <unordered_map>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <base/tv_db_handle.h>

#include "database_state.h"
#include "sm/limits.h"

namespace sm {

namespace {

/// Handles that a set of any size could still need.
constexpr std::uint64_t kHandleReserve = std::uint64_t(1) << 32;

TvString textOf(std::size_t number)
{
    return TvString().format(u"%u", number);
}

/// The component that an object belongs to; itself if it is one with a handle.
const TvSmPersist& componentOf(const TvSmPersist& object)
{
    const TvSmPersist* at = &object;
    while (at->owner() &&
           !(at->isA()->isDerivedFrom(TvSmComponent::desc()) && !at->objectId().isNull()))
        at = at->owner();
    return *at;
}

bool isObjectHandle(const TvString& text)
{
    constexpr std::size_t kMostDigits = 16;
    const std::u16string_view digits = text.view();
    return digits.size() <= kMostDigits &&
           digits.find_first_not_of(u"0123456789ABCDEFabcdef") == std::u16string_view::npos;
}

/// What the disk says about one reference.
enum class Presence { There, Missing, NotLooked, Disagrees };

class Auditor
{
public:
    Auditor(const TvSmDatabase& db, const AuditOptions& options) : m_db(db), m_options(options) {}
    std::vector<Finding> run();

private:
    void add(AuditRule rule, Severity severity, const TvSmPersist& object,
             std::vector<TvString> arguments = {});
    void checkFile();
    void check(TvSmPersist& object);
    void checkLength(AuditRule rule, const TvSmPersist& object, const TvString& text, int limit);
    void checkComponent(TvSmComponent& component);
    void checkProperties(TvSmComponent& component);
    void checkSubset(const TvSmSubset& subset);
    void checkSheet(const TvSmSheet& sheet);
    void checkNumber(const TvSmSheet& sheet);
    void checkLayout(const TvSmSheet& sheet);
    void checkView(const TvSmSheetView& view);
    void checkSelection(const TvSmSheetSelection& selection);
    void checkReference(TvSmFileReference& reference);
    bool isToldAlready(const TvSmFileReference& reference) const;
    void tell(Presence presence, TvSmFileReference& reference);
    Presence presenceOf(TvSmFileReference& reference);
    Presence look(TvSmFileReference& reference) const;
    TvString hintTarget(TvSmFileReference& reference) const;

    const TvSmDatabase& m_db;
    const AuditOptions m_options;
    std::vector<Finding> m_findings;
    std::unordered_map<TvString, TvString> m_numbers; // to the handle of the first sheet
    std::unordered_map<TvString, TvString> m_layouts; // the same
    std::unordered_map<TvString, Presence> m_looked;  // by stored and kept relative path
};

std::vector<Finding> Auditor::run()
{
    checkFile();
    forEachObject(&m_db, [this](TvSmPersist& object) { check(object); });
    return std::move(m_findings);
}

void Auditor::add(AuditRule rule, Severity severity, const TvSmPersist& object,
                  std::vector<TvString> arguments)
{
    m_findings.push_back(
        {rule, severity, componentOf(object).objectId().getHandle(), std::move(arguments)});
}

void Auditor::checkFile()
{
    const TvSmSheetSet& set = *m_db.getSheetSet();
    if (isReadOnlyVersion(&m_db))
        add(AuditRule::NewerVersion, Severity::Note, set, {m_db.getVersion()});
    if (Internals::state(m_db).savedNextHandle() > DatabaseState::kCountedHandles - kHandleReserve)
        add(AuditRule::HandlesUsedUp, Severity::Error, set);
}

void Auditor::check(TvSmPersist& object)
{
    if (auto* component = tvrxCast<TvSmComponent>(&object))
        checkComponent(*component);
    if (const auto* sheet = tvrxCast<TvSmSheet>(&object))
        checkSheet(*sheet);
    else if (const auto* subset = tvrxCast<TvSmSubset>(&object))
        checkSubset(*subset);
    else if (const auto* view = tvrxCast<TvSmSheetView>(&object))
        checkView(*view);
    else if (const auto* selection = tvrxCast<TvSmSheetSelection>(&object))
        checkSelection(*selection);
    else if (auto* reference = tvrxCast<TvSmFileReference>(&object))
        checkReference(*reference);
}

void Auditor::checkLength(AuditRule rule, const TvSmPersist& object, const TvString& text,
                          int limit)
{
    if (text.length() > limit)
        add(rule, Severity::Error, object,
            {textOf(static_cast<std::size_t>(text.length())),
             textOf(static_cast<std::size_t>(limit))});
}

void Auditor::checkComponent(TvSmComponent& component)
{
    checkLength(AuditRule::NameTooLong, component, component.getName(), kMaxNameLength);
    checkProperties(component);
}

void Auditor::checkProperties(TvSmComponent& component)
{
    if (!Internals::hasBag(component))
        return;
    std::set<TvString> seen;
    for (const Property& property : propertiesOf(component.getCustomProperties())) {
        const TvString& name = property.name;
        if (name.isEmpty())
            add(AuditRule::PropertyNameEmpty, Severity::Error, component);
        if (name.length() > kMaxPropertyNameLength)
            add(AuditRule::PropertyNameTooLong, Severity::Error, component,
                {name, textOf(static_cast<std::size_t>(name.length())),
                 textOf(kMaxPropertyNameLength)});
        if (!seen.insert(name).second)
            add(AuditRule::PropertyTwice, Severity::Error, component, {name});
    }
}

void Auditor::checkSubset(const TvSmSubset& subset)
{
    std::size_t depth = 0;
    for (const TvSmPersist* above = subset.owner(); above && above != &m_db; above = above->owner())
        ++depth;
    if (depth == 0)
        return;
    if (subset.getName().isEmpty())
        add(AuditRule::SubsetNameEmpty, Severity::Note, subset);
    if (depth >= TvSmSubset::kMaxDepth)
        add(AuditRule::SubsetTooDeep, Severity::Error, subset,
            {textOf(depth + 1), textOf(TvSmSubset::kMaxDepth)});
}

void Auditor::checkSheet(const TvSmSheet& sheet)
{
    const TvString title = sheet.getTitle();
    checkLength(AuditRule::NumberTooLong, sheet, sheet.getNumber(), kMaxNumberLength);
    // Until a title is set, the name stands for it, and was looked at as such.
    if (title != sheet.getName())
        checkLength(AuditRule::TitleTooLong, sheet, title, kMaxNameLength);
    if (title.isEmpty())
        add(AuditRule::TitleEmpty, Severity::Note, sheet);
    checkNumber(sheet);
    checkLayout(sheet);
}

void Auditor::checkNumber(const TvSmSheet& sheet)
{
    const TvString number = sheet.getNumber();
    if (number.isEmpty())
        return;
    const auto [first, isNew] = m_numbers.try_emplace(number, sheet.objectId().getHandle());
    if (!isNew)
        add(AuditRule::NumberTwice, Severity::Note, sheet, {number, first->second});
}

void Auditor::checkLayout(const TvSmSheet& sheet)
{
    const TvSmTvDbLayoutReference* layout = sheet.getLayoutReference();
    if (!layout) {
        add(AuditRule::SheetWithoutLayout, Severity::Note, sheet);
        return;
    }
    const TvString path = layout->getFileName();
    const TvString object = layout->getHandle().isEmpty() ? TvString(u"=") + layout->getName()
                                                          : layout->getHandle().toLower();
    if (path.isEmpty() || (layout->getHandle().isEmpty() && layout->getName().isEmpty())) {
        add(AuditRule::LayoutIncomplete, Severity::Error, sheet);
        return;
    }
    // Separated by what no path has.
    const TvString key = base::PathRules::native().keyOf(path) + u"\n" + object;
    const auto [first, isNew] = m_layouts.try_emplace(key, sheet.objectId().getHandle());
    if (!isNew)
        add(AuditRule::LayoutTwice, Severity::Error, sheet, {first->second});
}

void Auditor::checkView(const TvSmSheetView& view)
{
    checkLength(AuditRule::NumberTooLong, view, view.getNumber(), kMaxNumberLength);
    checkLength(AuditRule::TitleTooLong, view, view.getTitle(), kMaxNameLength);
    if (Internals::categoryOf(view) != 0 && !view.getCategory())
        add(AuditRule::CategoryGone, Severity::Note, view);
}

void Auditor::checkSelection(const TvSmSheetSelection& selection)
{
    const DatabaseState& state = Internals::state(m_db);
    for (const std::uint64_t member : Internals::entries(selection))
        if (!tvrxCast<TvSmComponent>(state.findInSet(member)))
            add(AuditRule::SelectionMemberGone, Severity::Note, selection,
                {TvSmObjectId(member).getHandle()});
}

// --- references

void Auditor::checkReference(TvSmFileReference& reference)
{
    if (const auto* object = tvrxCast<TvSmDbObjectReference>(&reference))
        if (!isObjectHandle(object->getHandle()))
            add(AuditRule::ObjectHandleInvalid, Severity::Error, reference, {object->getHandle()});
    if (!reference.getFileName().isEmpty() && !isToldAlready(reference))
        tell(presenceOf(reference), reference);
}

/// A view stands on its sheet, in the sheet's drawing: what is wrong with that is told once.
bool Auditor::isToldAlready(const TvSmFileReference& reference) const
{
    const auto* view = tvrxCast<TvSmSheetView>(reference.owner());
    const TvSmPersist* views = view ? view->owner() : nullptr;
    const auto* sheet = views ? tvrxCast<TvSmSheet>(views->owner()) : nullptr;
    const TvSmTvDbLayoutReference* layout = sheet ? sheet->getLayoutReference() : nullptr;
    return layout && layout->getFileName() == reference.getFileName();
}

void Auditor::tell(Presence presence, TvSmFileReference& reference)
{
    const TvString path = reference.getFileName();
    // The layout reference of a subset is the template of new sheets, not a drawing of the set.
    const bool isTemplate =
        tvrxCast<TvSmTvDbLayoutReference>(&reference) && tvrxCast<TvSmSubset>(reference.owner());
    const bool isDrawing = tvrxCast<TvSmDbObjectReference>(&reference) && !isTemplate;
    switch (presence) {
    case Presence::There: return;
    case Presence::NotLooked:
        return add(AuditRule::NetworkNotLooked, Severity::Note, reference, {path});
    case Presence::Disagrees:
        return add(AuditRule::HintDisagrees, Severity::Note, reference,
                   {path, hintTarget(reference)});
    case Presence::Missing: break;
    }
    const Severity severity =
        isDrawing && m_options.drawingsMustBeThere ? Severity::Error : Severity::Note;
    add(isDrawing ? AuditRule::DrawingMissing : AuditRule::ReferenceMissing, severity, reference,
        {path});
}

Presence Auditor::presenceOf(TvSmFileReference& reference)
{
    const TvString key = reference.getFileName() + u"\n" + Internals::relativeOf(reference).text();
    const auto [known, isNew] = m_looked.try_emplace(key, Presence::There);
    if (isNew)
        known->second = look(reference);
    return known->second;
}

Presence Auditor::look(TvSmFileReference& reference) const
{
    const TvString stored = reference.getFileName();
    const TvString found = reference.resolveFileName();
    if (found.isEmpty())
        return KvFileSystem::isTouchAllowed(stored) ? Presence::Missing : Presence::NotLooked;
    // A set that moved as a whole resolves through the kept relative path, and is well.
    const TvString hint = hintTarget(reference);
    const bool isStoredThere = base::PathRules::native().isSame(found, stored);
    const bool differs = isStoredThere && KvFileSystem::pathFileExists(hint) &&
                         !base::PathRules::native().isSame(found, hint) &&
                         !KvFileSystem::isSameFile(found, hint);
    return differs ? Presence::Disagrees : Presence::There;
}

/// Where the kept relative path leads; empty when there is none.
TvString Auditor::hintTarget(TvSmFileReference& reference) const
{
    const base::PathRules& rules = base::PathRules::native();
    const TvString relative = Internals::relativeOf(reference).text();
    const TvString folder = Internals::state(m_db).folder();
    if (relative.isEmpty() || folder.isEmpty() || rules.isAbsolute(relative) ||
        rules.isNetwork(relative) || base::PathRules::isUrl(relative) ||
        base::PathRules::isDriveRelative(relative))
        return {};
    return rules.normalise(rules.join(folder, relative));
}

} // namespace

TvString auditCode(AuditRule rule)
{
    constexpr int kFirst = 22500;
    return TvString().format(u"K%03d", static_cast<int>(rule) - kFirst);
}

std::vector<Finding> auditSheetSet(const TvSmDatabase* db, const AuditOptions& options)
{
    return db ? Auditor(*db, options).run() : std::vector<Finding>();
}

} // namespace sm
