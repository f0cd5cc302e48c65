#pragma once

#include <set>
#include <unordered_set>

#include "drawing_auditor.h"
#include "quiet_edit.h"

namespace db {

/// One round of repairs after one audit.
///
/// Works on what the audit gathered; an object is given a place once a round, so that two findings
/// about it do not pull it to and fro. The next round sees what is still wrong.
class DrawingRepairer
{
public:
    explicit DrawingRepairer(const DrawingAuditor& audit)
        : m_audit(audit), m_database(audit.m_database), m_impl(audit.m_impl)
    {
    }
    /// Whether anything was changed.
    bool run(const std::vector<DrawingFinding>& findings);

private:
    using Handles = std::vector<std::uint64_t>;

    /// The objects that a finding of the rule is about.
    Handles about(DrawingRule rule) const;
    bool has(DrawingRule rule) const { return m_about.count(rule) > 0; }
    /// Null, or the record to be changed; what was derived from it is forgotten afterwards.
    template <class How>
    bool change(std::uint64_t handle, How how);
    bool setHeader(const char* variable, std::uint64_t target);
    bool isMissing(std::uint64_t handle) const { return handle != 0 && !m_impl.find(handle); }
    const Record* look(std::uint64_t handle);
    const AuditedObject* find(std::uint64_t handle) const { return m_audit.find(handle); }
    bool isOfClass(std::uint64_t handle, std::string_view name) const
    {
        return m_audit.isOfClass(handle, name);
    }
    /// The only object of which that is so; 0: none, or several.
    template <class Is>
    std::uint64_t onlyOne(Is is) const;

    // What a drawing must have: drawing_repair_structure.cpp
    void repairRequired();
    void repairSpace(DrawingRule rule, const char* field, const char* variable,
                     std::u16string_view name);
    void repairLayoutDictionary();
    void addLayerZero();
    void repairLayouts();
    void pairWithBlock(std::uint64_t layout);
    void repairLayoutNames();
    void repairTabOrder();

    // Lists, owners and chains: drawing_repair_owners.cpp
    void noteListers();
    void repairLists();
    void repairTableMembers();
    void repairOwners();
    void repairOwner(std::uint64_t handle, bool mayFollowDictionary);
    bool mayTakeOwner(const AuditedObject& object, const OwnedList& list) const;
    void setOwner(std::uint64_t handle, std::uint64_t owner);
    bool joinOwner(const AuditedObject& object);
    bool joinTable(const AuditedObject& object);
    void repairChains();
    bool isChainChangeable(std::uint64_t owner, const Handles& members);
    void applyLists();
    void addEntries(std::uint64_t dictionary, const std::map<std::uint64_t, TvString>& entries);
    void recoverEntities();
    void takeEnds(TvDbObjectId block, std::uint64_t formerOwner);
    std::uint64_t tableOf(std::string_view recordClass) const;
    TvString ownNameOf(std::uint64_t handle);

    // References and names: drawing_repair.cpp
    void repairHardReferences(std::uint64_t handle);
    void repairSoftReferences(std::uint64_t handle);
    void repairLayers();
    void repairNames();
    void repairKeys(std::uint64_t dictionary);
    TvString keyByHeader(std::uint64_t handle) const;

    const DrawingAuditor& m_audit;
    TvDbDatabase& m_database;
    DatabaseImpl& m_impl;
    std::map<DrawingRule, Handles> m_about;
    std::unordered_map<std::uint64_t, std::vector<const OwnedList*>> m_listers; // by member
    std::unordered_map<std::uint64_t, const OwnedList*> m_entitiesOf;           // by owner
    std::unordered_set<std::uint64_t> m_placed;                                 // in this round
    std::map<std::uint64_t, std::set<std::uint64_t>> m_remove; // by owner: out of its list
    std::map<std::uint64_t, Handles> m_append;                 // by owner: to the end of its list
    std::map<std::uint64_t, std::map<std::uint64_t, TvString>> m_entries; // by dictionary
    std::map<std::uint64_t, Handles> m_lost;              // entities by the owner that is gone
    std::multimap<std::uint64_t, std::uint64_t> m_claims; // blocks, by the layout they name
    std::set<std::uint64_t> m_twice;                      // owners that list something twice
    Record m_scratch;
    bool m_hasChanged = false;
};

/// Counts up a number behind names until none of @p taken is it. Each wanted name goes on where it
/// stopped, so that many equal ones cost no more than their number.
class FreeNames
{
public:
    void take(const TvString& name) { m_taken.insert(name.toLower()); }
    bool isTaken(const TvString& name) const { return m_taken.count(name.toLower()) > 0; }
    /// @p wanted, or with "-2" and so on behind it; taken from now on.
    TvString make(const TvString& wanted);

private:
    std::unordered_set<TvString> m_taken; // small letters
    std::unordered_map<TvString, int> m_last;
};

template <class How>
bool DrawingRepairer::change(std::uint64_t handle, How how)
{
    bool isDone = false;
    const TvDbObjectId id = m_database.find(handle);
    if (QuietEdit edit(id); edit)
        isDone = how(*edit);
    if (isDone)
        ObjectAccess::subReload(*id.slot()->object);
    m_hasChanged |= isDone;
    return isDone;
}

template <class Is>
std::uint64_t DrawingRepairer::onlyOne(Is is) const
{
    std::uint64_t found = 0;
    for (const AuditedObject& object : m_audit.m_objects) {
        if (!object.classDef || object.isRaw || !is(object))
            continue;
        if (found != 0)
            return 0;
        found = object.handle;
    }
    return found;
}

} // namespace db
