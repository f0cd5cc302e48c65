#include "schema/layout.h"

#include <bit>
#include <charconv>
#include <string>

#include "schema/field_types.h"
#include "schema/table_library.h"
#include "schema/text_cut.h"

#include "db/guard.h"

namespace db {

using Code = Expression::Code;

namespace {

std::int64_t integerOf(std::string_view text)
{
    const bool hex = text.starts_with("0x");
    if (hex)
        text.remove_prefix(2);
    std::int64_t value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value, hex ? 16 : 10);
    return value;
}

std::uint64_t realWord(std::string_view text)
{
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return std::bit_cast<std::uint64_t>(value);
}

bool isNumber(std::string_view text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

class LayoutBuilder
{
public:
    LayoutBuilder(Layout& layout, StructDef& def) : m_layout(layout), m_def(def) {}

    void addBody(const Body& body)
    {
        for (const Node& node : body)
            addNode(node);
    }

private:
    void addNode(const Node& node)
    {
        switch (node.kind) {
        case Node::Kind::Field: return addField(node);
        case Node::Kind::Point: return addPoint(node);
        case Node::Kind::Include: return addInclude(node);
        case Node::Kind::For: return addLoop(node);
        case Node::Kind::If: return addBranches(node);
        case Node::Kind::Versions: return addBody(node.branches[0].body);
        case Node::Kind::Let: return;
        }
    }

    void addInclude(const Node& node)
    {
        const NamedStruct* included = structNamed(node.type);
        if (!included)
            tableError("no struct", node.type);
        addBody(included->body);
    }

    void addBranches(const Node& node)
    {
        const std::size_t before = m_guards.size();
        for (const Branch& branch : node.branches) {
            if (!branch.condition.empty())
                addGuards(parseCondition(branch.condition), true);
            else if (node.branches.size() == 2)
                addGuards(parseCondition(node.branches[0].condition), false);
            addBody(branch.body);
            m_guards.resize(before);
        }
    }

    // What makes the condition come out as wished, where one field decides. A condition on the
    // version alone, or one too involved, sets nothing.
    void addGuards(const Condition& condition, bool wished)
    {
        if (condition.is(Code::Not))
            return addGuards(condition.parts[0], !wished);
        const bool both = condition.is(wished ? Code::And : Code::Or);
        const bool either = condition.is(wished ? Code::Or : Code::And);
        if (both || either) {
            addGuards(condition.parts[0], wished);
            if (both || dependsOnVersion(condition.parts[0]))
                addGuards(condition.parts[1], wished);
            return;
        }
        addSimpleGuard(condition, wished);
    }

    static bool dependsOnVersion(const Condition& condition)
    {
        if (condition.kind == Condition::Kind::Version)
            return true;
        for (const Condition& part : condition.parts)
            if (dependsOnVersion(part))
                return true;
        return false;
    }

    void addSimpleGuard(const Condition& condition, bool wished)
    {
        const auto rule = wished ? Guard::Rule::SetBits : Guard::Rule::ClearBits;
        if (condition.kind == Condition::Kind::Name)
            return addGuard(condition.name, rule, kAnythingSet); // or nothing of it
        const bool onConstant = condition.parts.size() == 2 && condition.parts[1].isConstant() &&
                                condition.parts[0].kind == Condition::Kind::Name;
        if (!onConstant)
            return;
        const std::int64_t value = condition.parts[1].value;
        if (condition.op == Code::BitAnd)
            addGuard(condition.parts[0].name, rule, value);
        else if (condition.op == Code::Equal && wished)
            addGuard(condition.parts[0].name, Guard::Rule::Equal, value);
    }

    void addGuard(std::string_view path, Guard::Rule rule, std::int64_t value)
    {
        const StructDef* def = &m_def;
        std::uint32_t slot = 0;
        while (!path.empty()) {
            const FieldDef* field = findIn(*def, fieldId(cutAt(path, '.')));
            const bool last = path.empty();
            if (!field || field->storage != (last ? Storage::Integer : Storage::Struct))
                return; // a name of an outer scope, a let, or a handle
            slot += field->slot;
            def = field->structure;
        }
        m_guards.push_back({rule, slot, value});
    }

    // Before the struct is indexed.
    static const FieldDef* findIn(const StructDef& def, FieldId id)
    {
        for (const FieldDef& field : def.fields)
            if (field.id == id)
                return &field;
        return nullptr;
    }

    void addField(const Node& node)
    {
        if (const auto dot = node.name.find('.'); dot != std::string_view::npos)
            return addComponentGuards(node.name.substr(0, dot));
        FieldDef field;
        field.id = fieldId(node.name);
        field.dxf = node.dxf;
        const FieldType* type = fieldType(node.type);
        if (type)
            describe(field, *type);
        else
            describeStruct(field, node.type);
        if (!node.count.empty())
            makeCounted(field, node);
        place(field, node, type);
    }

    static void describe(FieldDef& field, const FieldType& type)
    {
        field.storage = type.storage;
        field.angle = type.angle;
        field.wide = type.code == OpCode::BitLongLong;
        if (type.storage == Storage::Real || type.code == OpCode::BitLong)
            field.width = type.arity;
        if (type.code == OpCode::Handle && type.arity != kAnyHandleCode)
            field.handleCode = type.arity;
        if (type.code == OpCode::RestOfHandles)
            field.element = Storage::Handle;
        field.structure = structureOf(type.code);
        if (field.storage == Storage::Array && field.structure)
            field.element = Storage::Struct;
    }

    static const StructDef* structureOf(OpCode code)
    {
        switch (code) {
        case OpCode::ExtendedData: return extendedDataElement();
        case OpCode::XrecordItems: return xrecordContent();
        case OpCode::SatBlocks: return satBlockElement();
        default: return nullptr;
        }
    }

    static void describeStruct(FieldDef& field, std::string_view type)
    {
        const NamedStruct* named = structNamed(type);
        if (!named)
            tableError("no type", type);
        field.structure = &named->layout.def;
        field.element = Storage::Struct;
        // One that contains itself lies outside of itself, in an array of none or one.
        field.storage = named->isReady ? Storage::Struct : Storage::Array;
    }

    void makeCounted(FieldDef& field, const Node& node) const
    {
        if (isNumber(node.count))
            field.fixedCount = static_cast<std::uint32_t>(integerOf(node.count));
        else if (const FieldDef* count = findIn(m_def, fieldId(node.count));
                 count && count->storage == Storage::Integer)
            field.count = count->id;
        if (node.type == "RC") {
            field.storage = Storage::Bytes;
            return;
        }
        field.element = field.storage;
        field.storage = Storage::Array;
    }

    void addLoop(const Node& node)
    {
        auto& element = m_layout.loops[&node];
        element = std::make_unique<StructDef>();
        element->name = node.name;
        LayoutBuilder(m_layout, *element).addBody(node.branches[0].body);
        element->index();
        FieldDef field;
        field.id = fieldId(node.name);
        field.storage = Storage::Struct;
        field.structure = element.get();
        makeCounted(field, node);
        place(field, node, nullptr);
    }

    void addPoint(const Node& node)
    {
        FieldDef field;
        field.id = fieldId(node.name);
        field.dxf = node.dxf;
        field.storage = Storage::Real;
        field.width = 3;
        place(field, node, nullptr);
    }

    void addComponentGuards(std::string_view name)
    {
        for (FieldDef& field : m_def.fields)
            if (field.id == fieldId(name))
                return mergeGuards(field, field.guards.empty());
        tableError("no point", name);
    }

    // A field may stand in several branches: then only what all of them ask for holds.
    void mergeGuards(FieldDef& field, bool first)
    {
        if (first)
            field.guards = m_guards;
        else if (!sameGuards(field.guards, m_guards))
            field.guards.clear();
    }

    static bool sameGuards(const std::vector<Guard>& a, const std::vector<Guard>& b)
    {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                          [](const Guard& x, const Guard& y) {
                              return x.rule == y.rule && x.slot == y.slot && x.value == y.value;
                          });
    }

    void place(FieldDef field, const Node& node, const FieldType* type)
    {
        for (FieldDef& known : m_def.fields) {
            if (known.id != field.id)
                continue;
            if (!sameShape(known, field))
                tableError("two kinds of field", node.name);
            if (field.fixedCount == 0)
                known.fixedCount = 0; // fixed in one branch only: nothing to fill beforehand
            return mergeGuards(known, false);
        }
        field.slot = m_def.size();
        field.guards = m_guards;
        appendDefaults(field, node.value, type);
        m_def.fields.push_back(std::move(field));
    }

    static bool sameShape(const FieldDef& a, const FieldDef& b)
    {
        return a.storage == b.storage && a.width == b.width && a.element == b.element &&
               a.structure == b.structure;
    }

    void appendDefaults(const FieldDef& field, std::string_view text, const FieldType* type)
    {
        std::vector<std::uint64_t>& words = m_def.defaults;
        if (field.storage == Storage::Struct) {
            const auto& inner = field.structure->defaults;
            words.insert(words.end(), inner.begin(), inner.end());
            if (!text.empty())
                setMemberDefault(field, text);
            return;
        }
        const unsigned count = field.storage == Storage::Array ? 1 : field.width;
        for (unsigned i = 0; i < count; ++i) {
            const std::string_view one = trimmed(cutAt(text, ','));
            if (field.storage == Storage::Real)
                words.push_back(realWord(one));
            else
                words.push_back(
                    static_cast<std::uint64_t>(type ? normalised(type->code, integerOf(one)) : 0));
        }
    }

    // "member number" behind a field that is a struct
    void setMemberDefault(const FieldDef& field, std::string_view text)
    {
        const FieldDef* member = field.structure->find(fieldId(cutAt(text, ' ')));
        if (!member || member->storage != Storage::Integer)
            tableError("default", text);
        m_def.defaults[field.slot + member->slot] =
            static_cast<std::uint64_t>(normalised(OpCode::BitLong, integerOf(trimmed(text))));
    }

    Layout& m_layout;
    StructDef& m_def;
    std::vector<Guard> m_guards; // of the branches we are in
};

/// A struct that no table describes, because its codec is written out.
class FixedStruct
{
public:
    explicit FixedStruct(std::string_view name) : m_def(new StructDef) { m_def->name = name; }

    FixedStruct& add(const char* name, Storage storage, std::uint8_t width = 1)
    {
        FieldDef field;
        field.id = fieldId(name);
        field.storage = storage;
        field.width = width;
        return add(field);
    }
    FixedStruct& addWide(const char* name)
    {
        add(name, Storage::Integer);
        m_def->fields.back().wide = true;
        return *this;
    }
    FixedStruct& addHandle(const char* name, std::uint8_t code)
    {
        add(name, Storage::Handle);
        m_def->fields.back().handleCode = code;
        return *this;
    }
    FixedStruct& addArray(const char* name, const StructDef* element)
    {
        FieldDef field;
        field.id = fieldId(name);
        field.storage = Storage::Array;
        field.element = Storage::Struct;
        field.structure = element;
        return add(field);
    }
    const StructDef* done()
    {
        m_def->index();
        return m_def; // never destroyed: classes point to it
    }

private:
    FixedStruct& add(FieldDef field)
    {
        field.slot = m_def->size();
        m_def->fields.push_back(field);
        m_def->defaults.resize(m_def->size() + field.width, 0);
        return *this;
    }

    StructDef* m_def;
};

const StructDef* groupItem()
{
    static const StructDef* const def = FixedStruct("item")
                                            .add("code", Storage::Integer)
                                            .addWide("integer")
                                            .add("point", Storage::Real, 3)
                                            .add("text", Storage::Text)
                                            .addHandle("handle", 0)
                                            .add("bytes", Storage::Bytes)
                                            .done();
    return def;
}

} // namespace

void buildLayout(const Body& body, Layout& layout)
{
    LayoutBuilder(layout, layout.def).addBody(body);
    layout.def.index();
}

const NamedStruct* structNamed(std::string_view name)
{
    static auto* const made = new std::map<std::string_view, std::unique_ptr<NamedStruct>>;
    if (const auto known = made->find(name); known != made->end())
        return known->second.get();
    const auto& tables = tableLibrary().structs;
    const auto table = tables.find(name);
    if (table == tables.end())
        return nullptr;
    NamedStruct* const named =
        (made->emplace(name, std::make_unique<NamedStruct>()).first)->second.get();
    named->name = named->layout.def.name = table->first;
    named->body = parseTable(table->second.text);
    buildLayout(named->body, named->layout);
    named->isReady = true;
    return named;
}

const StructDef* extendedDataElement()
{
    static const StructDef* const def = FixedStruct("eed")
                                            .addArray("items", groupItem())
                                            .add("data", Storage::Bytes)
                                            .addHandle("app", 5)
                                            .done();
    return def;
}

const StructDef* xrecordContent()
{
    static const StructDef* const def =
        FixedStruct("xrecord").addArray("items", groupItem()).add("data", Storage::Bytes).done();
    return def;
}

const StructDef* satBlockElement()
{
    static const StructDef* const def = FixedStruct("sat").add("data", Storage::Bytes).done();
    return def;
}

} // namespace db
