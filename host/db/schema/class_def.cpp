#include "db/schema.h"

#include <mutex>

#include "schema/compiler.h"
#include "schema/table_library.h"

namespace db {

namespace {

// One for all classes, because they share structs. Recursive: compile() reads the table first.
std::recursive_mutex& schemaMutex()
{
    static auto* const mutex = new std::recursive_mutex;
    return *mutex;
}

std::string_view headOf(ClassKind kind)
{
    switch (kind) {
    case ClassKind::Entity: return "EntityHead";
    case ClassKind::Header: return {};
    default: return "ObjectHead";
    }
}

} // namespace

struct ClassDef::Parts {
    Body body;
    Layout layout;
    std::vector<std::unique_ptr<Program>> programs;
};

ClassDef::ClassDef(std::string_view name, int typeNumber, ClassKind kind, std::string_view marker)
    : m_name(name), m_typeNumber(typeNumber), m_kind(kind), m_marker(marker)
{
}

ClassDef::~ClassDef() = default;

const StructDef& ClassDef::readTable() const
{
    const std::scoped_lock lock(schemaMutex());
    if (const StructDef* made = m_layout.load(std::memory_order_relaxed))
        return *made;
    auto parts = std::make_unique<Parts>();
    parts->body = parseTable(tableLibrary().classes.at(m_name).text);
    if (const std::string_view head = headOf(m_kind); !head.empty()) {
        Node include;
        include.kind = Node::Kind::Include;
        include.type = head;
        parts->body.insert(parts->body.begin(), include);
    }
    parts->layout.def.name = m_name;
    buildLayout(parts->body, parts->layout);
    m_parts = std::move(parts);
    m_layout.store(&m_parts->layout.def, std::memory_order_release);
    return m_parts->layout.def;
}

const Program& ClassDef::compile(Version version) const
{
    const std::scoped_lock lock(schemaMutex());
    std::atomic<const Program*>& slot = m_programs[indexOf(version)];
    if (const Program* made = slot.load(std::memory_order_relaxed))
        return *made;
    readTable();
    auto program = std::make_unique<Program>();
    compileProgram(m_parts->body, m_parts->layout, version, *program);
    const Program& kept = *m_parts->programs.emplace_back(std::move(program));
    slot.store(&kept, std::memory_order_release);
    return kept;
}

} // namespace db
