#include <algorithm>

#include <db/entity_chain.h>
#include <db/references.h>

#include "block_names.h"
#include "drawing_repairer.h"

namespace db {

namespace {

constexpr int kMostRounds = 5;
constexpr int kMostTold = 100;
constexpr int kLongestName = 255;

using Key = std::tuple<DrawingRule, std::uint64_t, std::vector<std::u16string>>;

Key keyOf(const DrawingFinding& finding)
{
    std::vector<std::u16string> arguments;
    for (const TvString& argument : finding.arguments)
        arguments.emplace_back(argument.view());
    return {finding.rule, finding.handle, std::move(arguments)};
}

/// What stands in for an object that is gone, by the field that names it.
struct Substitute {
    const char* className; ///< null: any
    const char* field;
    const char* variable; ///< of the header, that names the substitute; null: nothing stands in
};
constexpr Substitute kSubstitutes[] = {
    {"LAYER", "ltype", "LTCONTINUOUS"},  {"TEXT", "style", "TEXTSTYLE"},
    {"ATTRIB", "style", "TEXTSTYLE"},    {"ATTDEF", "style", "TEXTSTYLE"},
    {"MTEXT", "style", "TEXTSTYLE"},     {"MLINE", "style", "CMLSTYLE"},
    {nullptr, "dimstyle", "DIMSTYLE"},   {nullptr, "xdict", nullptr},
    {nullptr, "plotstyle", nullptr},     {nullptr, "material", nullptr},
    {nullptr, "visualstyle", nullptr},   {nullptr, "full_vs", nullptr},
    {nullptr, "face_vs", nullptr},       {nullptr, "edge_vs", nullptr},
    {nullptr, "base_ucs", nullptr},      {nullptr, "named_ucs", nullptr},
    {nullptr, "plot_view_ref", nullptr},
};

/// Flags of entities that say whether one of these is named at all; 0 is as the layer has it.
struct StandInFlag {
    const char* field;
    const char* flags;
};
constexpr StandInFlag kFlags[] = {
    {"ltype", "ltype_flags"},   {"plotstyle", "plotstyle_flags"}, {"material", "material_flags"},
    {"full_vs", "has_full_vs"}, {"face_vs", "has_face_vs"},       {"edge_vs", "has_edge_vs"},
};

} // namespace

// --- rounds

DrawingRepair repairDrawing(TvDbDatabase& database)
{
    DrawingAuditOptions all;
    all.mostOfOneRule = 0;
    std::map<Key, DrawingFinding> found;
    std::set<Key> left;
    for (int round = 0; round < kMostRounds; ++round) {
        DrawingAuditor auditor(database, all);
        const std::vector<DrawingFinding> findings = auditor.run();
        left.clear();
        for (const DrawingFinding& finding : findings) {
            left.insert(keyOf(finding));
            found.emplace(keyOf(finding), finding);
        }
        if (round + 1 == kMostRounds || findings.empty() || !DrawingRepairer(auditor).run(findings))
            break;
    }
    DrawingRepair repair;
    std::map<std::pair<DrawingRule, bool>, int> counts;
    for (auto& [key, finding] : found) {
        finding.isFixed = left.count(key) == 0;
        ++(finding.isFixed ? repair.fixed : repair.left);
        if (++counts[{finding.rule, finding.isFixed}] <= kMostTold)
            repair.findings.push_back(std::move(finding));
    }
    for (const auto& [kind, count] : counts)
        if (count > kMostTold) {
            DrawingFinding more{DrawingRule::MoreOfTheSame, AuditSeverity::Note, 0, {}, {}, {}};
            more.arguments = {auditCode(kind.first), TvString(std::to_string(count - kMostTold))};
            more.isFixed = kind.second;
            repair.findings.push_back(std::move(more));
        }
    std::stable_sort(repair.findings.begin(), repair.findings.end(),
                     [](const DrawingFinding& a, const DrawingFinding& b) {
                         return std::pair(a.severity, a.handle) < std::pair(b.severity, b.handle);
                     });
    return repair;
}

bool DrawingRepairer::run(const std::vector<DrawingFinding>& findings)
{
    for (const DrawingFinding& finding : findings)
        m_about[finding.rule].push_back(finding.handle);
    for (const std::uint64_t dictionary : about(DrawingRule::KeyTwice))
        repairKeys(dictionary);
    if (m_hasChanged) // the next round finds by their keys what it looks for
        return true;
    noteListers();
    repairRequired();
    repairChains();
    for (const std::uint64_t handle : about(DrawingRule::HardReferenceMissing))
        repairHardReferences(handle);
    for (const std::uint64_t handle : about(DrawingRule::SoftReferenceMissing))
        repairSoftReferences(handle);
    repairLists();
    repairOwners();
    applyLists();
    recoverEntities();
    repairLayers();
    repairLayouts();
    repairNames();
    return m_hasChanged;
}

DrawingRepairer::Handles DrawingRepairer::about(DrawingRule rule) const
{
    const auto at = m_about.find(rule);
    Handles handles = at == m_about.end() ? Handles() : at->second;
    handles.erase(std::unique(handles.begin(), handles.end()), handles.end());
    return handles;
}

const Record* DrawingRepairer::look(std::uint64_t handle)
{
    ObjectSlot* slot = m_impl.find(handle);
    if (!slot || slot->isErased || m_impl.load(*slot) != TvStatus::Ok)
        return nullptr;
    return &slot->object->record();
}

bool DrawingRepairer::setHeader(const char* variable, std::uint64_t target)
{
    if (target == 0 || m_impl.header().handle(variable) == target ||
        !m_database.editHeader().setHandle(variable, target))
        return false;
    return m_hasChanged = true;
}

TvString FreeNames::make(const TvString& wanted)
{
    TvString name = wanted;
    int& last = m_last[wanted.toLower()];
    if (last == 0)
        last = 1;
    while (isTaken(name)) {
        const TvString number = TvString().format(u"-%d", ++last);
        name = TvString(wanted.view().substr(0, static_cast<std::size_t>(kLongestName) -
                                                    number.view().size())) +
               number;
    }
    take(name);
    return name;
}

// --- references

void DrawingRepairer::repairHardReferences(std::uint64_t handle)
{
    const Record* record = look(handle);
    if (!record || !record->classDef())
        return;
    const auto missing = [&](FieldKey field) {
        return record->fields().has(field) && isMissing(record->handle(field));
    };
    for (const StandInFlag& guard : kFlags)
        if (record->has("entmode") && missing(guard.field))
            change(handle, [&](RecordEditor edit) { return edit.setInteger(guard.flags, 0); });
    for (const Substitute& each : kSubstitutes) {
        if ((each.className && record->classDef()->name() != each.className) ||
            !missing(each.field))
            continue;
        const std::uint64_t other = each.variable ? m_impl.header().handle(each.variable) : 0;
        if (each.variable && !find(other))
            continue;
        change(handle, [&](RecordEditor edit) { return edit.setHandle(each.field, other); });
        if (each.field == std::string_view("xdict"))
            change(handle, [&](RecordEditor edit) { return edit.setFlag("xdict_missing", true); });
    }
    if (isDictionary(record->classDef()->name()))
        return repairSoftReferences(handle);
    // A list of what is owned does without those that are gone.
    const FieldId list = ownedListOf(record->fields());
    if (list == FieldId::None)
        return;
    const ArrayView members = record->array(list);
    for (std::uint32_t i = 0; i < members.size(); ++i)
        if (isMissing(members.handle(i)))
            m_remove[handle].insert(members.handle(i));
    applyLists();
}

void DrawingRepairer::repairSoftReferences(std::uint64_t handle)
{
    const AuditedObject* object = find(handle);
    const Record* record = look(handle);
    if (!object || !record || !record->classDef())
        return;
    std::set<std::uint64_t> gone;
    const bool isList = isDictionary(record->classDef()->name());
    forEachReference(*record, [&](const Reference& reference) {
        if (isMissing(reference.target))
            gone.insert(reference.target);
    });
    gone.erase(object->owner);
    gone.erase(object->layer);
    forEachReference(*record, [&](const Reference& reference) {
        // Entries may go, however a dictionary holds them; what else cannot be done without stays.
        if (reference.kind == ReferenceKind::HardPointer ||
            (reference.kind == ReferenceKind::HardOwner && !isList))
            gone.erase(reference.target);
    });
    if (gone.empty() || !isChangeable(m_database.find(handle)))
        return;
    Record swept = *record;
    if (!removeReferences(swept, [&](std::uint64_t target) { return gone.count(target) > 0; }))
        return;
    const QuietEdit edit(m_database.find(handle)); // notes what it was
    TvDbObject& changed = *m_database.find(handle).slot()->object;
    ObjectAccess::record(changed) = std::move(swept);
    ObjectAccess::subReload(changed);
    m_hasChanged = true;
}

void DrawingRepairer::repairLayers()
{
    const TvDbObjectId zero = layerZero(m_database);
    if (!zero.isValid())
        return;
    for (const std::uint64_t handle : about(DrawingRule::LayerMissing))
        change(handle,
               [&](RecordEditor edit) { return edit.setHandle("layer", zero.handle().value()); });
}

// --- names

void DrawingRepairer::repairNames()
{
    std::map<std::uint64_t, FreeNames> names; // by table
    const Handles twice = about(DrawingRule::NameTwice);
    for (const std::uint64_t handle : twice)
        names[find(handle)->listedBy];
    for (const AuditedObject& object : m_audit.m_objects)
        if (const auto table = names.find(object.listedBy); table != names.end())
            if (const auto name = m_audit.m_names.find(object.handle);
                name != m_audit.m_names.end())
                table->second.take(TvString(name->second));
    for (const std::uint64_t handle : twice) {
        TvDbObjectPointer<TvDbSymbolTableRecord> record(m_database.find(handle), TvDb::kForWrite);
        // What came with an external reference has the name that it has there.
        if (!record || record->isDependent())
            continue;
        const TvString name = names[find(handle)->listedBy].make(record->getName());
        m_hasChanged |= record->setName(name) == TvStatus::Ok;
    }
}

namespace {

/// Dictionaries that the header names, too.
struct NamedDictionary {
    const char16_t* key;
    const char* variable;
};
constexpr NamedDictionary kNamedDictionaries[] = {
    {u"ACAD_LAYOUT", "DLAYOUT"},
    {u"ACAD_GROUP", "DGROUP"},
    {u"ACAD_MLINESTYLE", "DMLINESTYLE"},
    {u"ACAD_PLOTSETTINGS", "DPLOTSETTINGS"},
    {u"ACAD_PLOTSTYLENAME", "DPLOTSTYLE"},
    {u"ACAD_MATERIAL", "DMATERIAL"},
    {u"ACAD_COLOR", "DCOLOR"},
    {u"ACAD_VISUALSTYLE", "DVISUALSTYLE"},
};

} // namespace

/// The key that the header has for what stands there; empty: none.
TvString DrawingRepairer::keyByHeader(std::uint64_t handle) const
{
    for (const NamedDictionary& each : kNamedDictionaries)
        if (handle != 0 && m_impl.header().handle(each.variable) == handle)
            return TvString(each.key);
    return {};
}

void DrawingRepairer::repairKeys(std::uint64_t dictionary)
{
    const bool isNamed = dictionary == m_impl.header().handle("DNAMEDOBJ");
    change(dictionary, [&](RecordEditor edit) {
        ArrayEditor keys = edit.array("keys");
        const ArrayView values = edit.array("values");
        FreeNames names;
        std::unordered_map<TvString, std::uint32_t> keeper; // by key: whose it stays
        for (std::uint32_t i = 0; i < keys.size(); ++i) {
            const TvString key = TvString(keys.text(i)).toLower();
            names.take(key);
            keeper.emplace(key, i);
            if (isNamed && keyByHeader(values.handle(i)).toLower() == key)
                keeper[key] = i;
        }
        bool isDone = false;
        for (std::uint32_t i = 0; i < keys.size(); ++i) {
            const TvString key(keys.text(i));
            if (keeper[key.toLower()] == i)
                continue;
            const TvString known = isNamed ? keyByHeader(values.handle(i)) : TvString();
            isDone |= keys.setText(i, names.make(known.isEmpty() ? key : known).view());
        }
        return isDone;
    });
}

} // namespace db
