#pragma once

#include <map>
#include <string>
#include <unordered_map>

#include <db/drawing_audit.h>

#include "database_impl.h"

namespace db {

/// Which list an object stands in tells how strictly list and object must agree.
enum class ListKind : std::uint8_t { Table, Block, Parts, Extension, Dictionary };

/// What an object says that it owns.
struct OwnedList {
    std::uint64_t owner = 0;
    ListKind kind = ListKind::Dictionary;
    std::vector<std::uint64_t> members;
    bool isChained = false; ///< the members name their neighbours in the file, unchanged
};

/// What the audit keeps of an object while it looks at the others.
struct AuditedObject {
    std::uint64_t handle = 0;
    std::uint64_t owner = 0;
    std::uint64_t layer = 0;
    std::uint64_t previous = 0, next = 0;
    std::uint64_t listedBy = 0;         ///< the first that lists it as its own
    const ClassDef* classDef = nullptr; ///< null: nothing of it could be read
    bool isEntity = false;
    bool isRaw = false;
    bool hasLinks = false;
};

bool isDictionary(std::string_view className);
/// The class of the records that a table lists.
std::string recordClassOf(std::string_view control);

struct RequiredTable {
    const char* variable; ///< of the header, that leads to it
    const char* className;
};
inline constexpr RequiredTable kRequiredTables[] = {
    {"BLOCKCTL", "BLOCK_CONTROL"},       {"LAYERCTL", "LAYER_CONTROL"},
    {"STYLECTL", "STYLE_CONTROL"},       {"LTYPECTL", "LTYPE_CONTROL"},
    {"VIEWCTL", "VIEW_CONTROL"},         {"UCSCTL", "UCS_CONTROL"},
    {"VPORTCTL", "VPORT_CONTROL"},       {"APPIDCTL", "APPID_CONTROL"},
    {"DIMSTYLECTL", "DIMSTYLE_CONTROL"},
};

/// One audit: reads every object once (drawing_audit.cpp), then holds them against each other.
class DrawingAuditor
{
public:
    DrawingAuditor(TvDbDatabase& database, const DrawingAuditOptions& options)
        : m_database(database), m_impl(database.impl()), m_options(options)
    {
    }
    std::vector<DrawingFinding> run();

private:
    friend class DrawingRepairer; // works on what was gathered
    struct Layout {
        std::uint64_t handle = 0, block = 0;
        TvString name;
        std::int64_t tabOrder = 0;
    };
    struct ClassCount {
        int unknown = 0; ///< the class has no table
        int odd = 0;     ///< the class has one, which does not fit
    };

    void add(DrawingRule rule, AuditSeverity severity, std::uint64_t handle,
             std::vector<TvString> arguments = {}, base::Status status = {});
    std::vector<DrawingFinding> sorted();
    const AuditedObject* find(std::uint64_t handle) const;
    std::string classOf(std::uint64_t handle) const;
    bool isOfClass(std::uint64_t handle, std::string_view name) const;

    // Reading: drawing_audit.cpp
    void checkFile();
    void trySave();
    const Record* look(ObjectSlot& slot, AuditedObject& object, bool& isChainBroken);
    const Record* lookAgain(std::uint64_t handle);
    void noteUnread(ObjectSlot& slot, AuditedObject& object, const base::Status& why);
    void readAll();
    void visit(const Record& record, AuditedObject& object, bool isChanged);
    void visitReferences(const Record& record, const AuditedObject& object);
    void tellClasses();

    // Owners and lists: drawing_audit_owners.cpp
    void noteLists(const Record& record, const AuditedObject& object, bool isChanged);
    void checkLists();
    void checkMember(const OwnedList& list, AuditedObject& member);
    void checkTable(const OwnedList& table);
    void checkChain(const OwnedList& list);
    void checkOwner(const AuditedObject& object);
    void checkRings();

    // What a drawing must have: drawing_audit_structure.cpp
    void checkRequired();
    void checkLayouts();
    void checkLayoutNames();
    void checkBlockOf(const Layout& layout);
    void checkSheetData();
    void checkSheetDataLayout(const std::map<std::u16string, std::u16string>& texts);
    /// Entries of a dictionary; none when it is not there or is none.
    std::vector<std::pair<TvString, std::uint64_t>> entriesOf(std::uint64_t dictionary);

    TvDbDatabase& m_database;
    DatabaseImpl& m_impl;
    const DrawingAuditOptions m_options;
    std::vector<DrawingFinding> m_findings;
    std::map<int, int> m_told;            // by rule
    std::vector<AuditedObject> m_objects; // by ascending handle
    std::vector<OwnedList> m_lists;
    std::unordered_map<std::uint64_t, std::u16string> m_names; // of table records
    std::map<std::uint64_t, Layout> m_layouts;
    std::map<std::uint64_t, std::uint64_t> m_layoutOfBlock; // blocks that name one
    std::map<std::string, ClassCount> m_classes;
    std::uint64_t m_modelSpace = 0, m_paperSpace = 0;
    std::uint64_t m_seed = 0;
    Record m_scratch;
};

} // namespace db
