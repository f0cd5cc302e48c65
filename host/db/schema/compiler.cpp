#include "schema/compiler.h"

#include <algorithm>
#include <string>

#include "schema/field_types.h"
#include "schema/text_cut.h"

namespace db {

using Code = Expression::Code;

namespace {

/// Where names are looked up: the fields of a struct in place, then those around it.
struct Scope {
    const Layout* layout = nullptr; // knows the elements of loops
    const StructDef* def = nullptr;
    std::uint32_t offset = 0;     // of the struct's slots in the frame
    const Scope* outer = nullptr; // null outermost
    bool sameFrame = false;       // as outer
    std::map<std::string_view, std::string_view> lets = {};
};

/// A field as an expression reaches it.
struct Place {
    const FieldDef* field = nullptr;
    std::uint8_t depth = 0;
    std::uint32_t slot = 0;
};

Place findPath(const Scope& scope, std::string_view path, std::uint8_t depth)
{
    std::string_view rest = path;
    const StructDef* def = scope.def;
    Place place{nullptr, depth, scope.offset};
    while (!rest.empty() && def) {
        place.field = def->find(fieldId(cutAt(rest, '.')));
        if (!place.field)
            break;
        place.slot += place.field->slot;
        def = place.field->structure;
    }
    if (place.field || !scope.outer)
        return place;
    return findPath(*scope.outer, path,
                    static_cast<std::uint8_t>(scope.sameFrame ? depth : depth + 1));
}

class Compiler
{
public:
    Compiler(Version version, Program& program, Program& outermost)
        : m_version(version), m_program(program), m_outermost(outermost)
    {
    }

    void addBody(const Body& body, Scope& scope)
    {
        for (const Node& node : body)
            addNode(node, scope);
    }

private:
    void addNode(const Node& node, Scope& scope)
    {
        if (!node.versions.contains(m_version))
            return;
        switch (node.kind) {
        case Node::Kind::Field: return addField(node, scope);
        case Node::Kind::Point: return;
        case Node::Kind::Include: return addBody(structNamed(node.type)->body, scope);
        case Node::Kind::For: return addLoopNode(node, scope);
        case Node::Kind::If: return addBranches(node, scope);
        case Node::Kind::Versions: return addBody(node.branches[0].body, scope);
        case Node::Kind::Let: scope.lets[node.name] = node.value; return;
        }
    }

    std::uint32_t here() const { return static_cast<std::uint32_t>(m_program.ops.size()); }

    Op& emit(OpCode code, std::uint32_t slot, const FieldDef* field = nullptr, int dxf = -1)
    {
        m_program.info.push_back({field, static_cast<std::int16_t>(dxf)});
        return m_program.ops.emplace_back(Op{code, 1, slot, 0, 0});
    }

    // ---- branches

    void addBranches(const Node& node, Scope& scope)
    {
        std::vector<std::uint32_t> toEnd;
        for (const Branch& branch : node.branches) {
            const Condition condition = branch.condition.empty()
                                            ? parseCondition("1")
                                            : resolved(parseCondition(branch.condition), scope);
            if (condition.isConstant() && condition.value == 0)
                continue;
            const bool always = condition.isConstant();
            std::vector<std::uint32_t> skips;
            if (!always)
                emitUnless(condition, scope, skips);
            addBody(branch.body, scope);
            if (always)
                break;
            const bool last = &branch == &node.branches.back();
            if (!last) {
                toEnd.push_back(here());
                emit(OpCode::Jump, 0);
            }
            for (const std::uint32_t skip : skips)
                m_program.ops[skip].b = here();
        }
        for (const std::uint32_t jump : toEnd)
            m_program.ops[jump].b = here();
    }

    // Lets put in, the version put in.
    Condition resolved(const Condition& condition, const Scope& scope) const
    {
        return foldCondition(withLets(condition, scope), static_cast<int>(m_version) - 1000);
    }

    Condition withLets(const Condition& condition, const Scope& scope) const
    {
        if (condition.kind == Condition::Kind::Name)
            for (const Scope* at = &scope; at; at = at->outer)
                if (const auto let = at->lets.find(condition.name); let != at->lets.end())
                    return withLets(parseCondition(let->second), scope);
        Condition copy = condition;
        for (Condition& part : copy.parts)
            part = withLets(part, scope);
        return copy;
    }

    // The jumps over a branch: plain ones where single fields in this frame decide.
    void emitUnless(const Condition& condition, const Scope& scope,
                    std::vector<std::uint32_t>& skips)
    {
        if (condition.is(Code::And)) {
            emitUnless(condition.parts[0], scope, skips);
            return emitUnless(condition.parts[1], scope, skips);
        }
        skips.push_back(here());
        if (emitPlainJump(condition, scope, OpCode::JumpIfZero))
            return;
        if (condition.is(Code::Not) &&
            emitPlainJump(condition.parts[0], scope, OpCode::JumpIfNonZero))
            return;
        emit(OpCode::JumpUnless, 0).a = addExpression(condition, scope);
    }

    bool emitPlainJump(const Condition& condition, const Scope& scope, OpCode code)
    {
        const bool masked = condition.is(Code::BitAnd) && condition.parts[1].isConstant();
        const bool compared = condition.is(Code::Equal) && condition.parts[1].isConstant() &&
                              code == OpCode::JumpIfZero;
        const Condition& subject = masked || compared ? condition.parts[0] : condition;
        if (subject.kind != Condition::Kind::Name)
            return false;
        const Place place = findPath(scope, subject.name, 0);
        if (!place.field || place.depth != 0 || place.field->storage != Storage::Integer)
            return false;
        Op& op = emit(compared ? OpCode::JumpUnlessEqual : code, place.slot);
        op.a =
            masked || compared ? static_cast<std::uint32_t>(condition.parts[1].value) : 0xFFFFFFFFu;
        return true;
    }

    // ---- expressions

    std::uint32_t addExpression(const Condition& condition, const Scope& scope)
    {
        Expression expression;
        if (appendSteps(expression, condition, scope) > Expression::kStackSize)
            tableError("expression too deep", condition.name);
        m_program.expressions.push_back(std::move(expression));
        return static_cast<std::uint32_t>(m_program.expressions.size() - 1);
    }
    std::uint32_t addCount(std::string_view count, const Scope& scope)
    {
        return addExpression(resolved(parseCondition(count), scope), scope);
    }

    // The most that lies on the stack at once.
    std::size_t appendSteps(Expression& expression, const Condition& condition, const Scope& scope)
    {
        Expression::Step step;
        step.code = condition.op;
        step.value = condition.value;
        if (!condition.isConstant() && condition.kind != Condition::Kind::Operator)
            loadStep(step, condition, scope);
        std::size_t deepest = 1;
        for (std::size_t i = 0; i < condition.parts.size(); ++i)
            deepest = std::max(deepest, i + appendSteps(expression, condition.parts[i], scope));
        expression.append(step);
        return deepest;
    }

    static void loadStep(Expression::Step& step, const Condition& condition, const Scope& scope)
    {
        const Place place = findPath(scope, condition.name, 0);
        if (!place.field)
            tableError("no field", condition.name);
        step.depth = place.depth;
        step.slot = place.slot;
        if (condition.kind == Condition::Kind::Name) {
            step.code = loadCode(place.field->storage);
            return;
        }
        const FieldDef* member = place.field->structure->find(fieldId(condition.member));
        if (!member)
            tableError("no member", condition.member);
        step.code = condition.kind == Condition::Kind::Any ? Code::Any : Code::Sum;
        step.stride = place.field->stride();
        step.member = member->slot;
    }

    static Code loadCode(Storage storage)
    {
        switch (storage) {
        case Storage::Real: return Code::Sign;
        case Storage::Handle: return Code::Target;
        default: return Code::Integer;
        }
    }

    // ---- fields

    void addField(const Node& node, Scope& scope)
    {
        const auto dot = node.name.find('.');
        const FieldDef* field = scope.def->find(fieldId(node.name.substr(0, dot)));
        std::uint32_t slot = scope.offset + field->slot;
        if (dot != std::string_view::npos)
            slot += static_cast<std::uint32_t>(node.name[dot + 1] - 'x');
        const FieldType* type = fieldType(node.type);
        if (!type)
            return addStruct(node, scope, *field, slot);
        if (node.count.empty())
            return addValue(node, scope, *type, field, slot);
        if (node.type == "RC" || type->code == OpCode::PointChain) {
            const OpCode code = node.type == "RC" ? OpCode::Bytes : OpCode::PointChain;
            emit(code, slot, field, node.dxf).a = addCount(node.count, scope);
            return;
        }
        const std::uint32_t loop = beginLoop(node, scope, slot, *field);
        addValue(node, scope, *type, field, 0);
        endLoop(loop, true);
    }

    void addValue(const Node& node, const Scope& scope, const FieldType& type,
                  const FieldDef* field, std::uint32_t slot)
    {
        const bool twoIntegers = type.code == OpCode::BitLong && type.arity == 2;
        for (std::uint32_t i = 0; i < (twoIntegers ? 2u : 1u); ++i) {
            Op& op = emit(type.code, slot + i, field, node.dxf);
            op.arity = twoIntegers ? 1 : type.arity;
            if (type.code == OpCode::DefaultDouble)
                op.a = defaultSlot(node, scope);
        }
    }

    static std::uint32_t defaultSlot(const Node& node, const Scope& scope)
    {
        const auto dot = node.argument.find('.');
        const Place place = findPath(scope, node.argument.substr(0, dot), 0);
        if (!place.field || place.depth != 0)
            tableError("no default", node.argument);
        if (dot == std::string_view::npos)
            return place.slot;
        return place.slot + static_cast<std::uint32_t>(node.argument[dot + 1] - 'x');
    }

    void addStruct(const Node& node, Scope& scope, const FieldDef& field, std::uint32_t slot)
    {
        const NamedStruct* named = structNamed(node.type);
        Scope inner{&named->layout, &named->layout.def, slot, &scope, true};
        if (!node.count.empty()) {
            inner.offset = 0;
            inner.sameFrame = false;
            const std::uint32_t loop = beginLoop(node, scope, slot, field);
            addBody(named->body, inner);
            return endLoop(loop, false);
        }
        if (field.storage == Storage::Struct)
            return addBody(named->body, inner);
        emit(OpCode::Box, slot, &field, node.dxf).a = boxOf(*named);
    }

    std::uint32_t boxOf(const NamedStruct& named)
    {
        auto& boxed = m_outermost.boxed;
        const auto known = std::find(boxed.begin(), boxed.end(), &named.layout.def);
        if (known != boxed.end())
            return static_cast<std::uint32_t>(known - boxed.begin());
        const auto index = static_cast<std::uint32_t>(boxed.size());
        boxed.push_back(&named.layout.def);
        m_outermost.boxes.push_back(std::make_unique<Program>());
        Program& box = *m_outermost.boxes.back();
        Scope scope{&named.layout, &named.layout.def};
        Compiler(m_version, box, m_outermost).addBody(named.body, scope);
        return index;
    }

    void addLoopNode(const Node& node, Scope& scope)
    {
        const FieldDef* field = scope.def->find(fieldId(node.name));
        const std::uint32_t loop = beginLoop(node, scope, scope.offset + field->slot, *field);
        Scope inner{scope.layout, field->structure, 0, &scope, false};
        addBody(node.branches[0].body, inner);
        endLoop(loop, false);
    }

    std::uint32_t beginLoop(const Node& node, const Scope& scope, std::uint32_t slot,
                            const FieldDef& field)
    {
        LoopInfo loop;
        loop.element = field.structure;
        loop.stride = field.stride();
        loop.count = addCount(node.count, scope);
        const std::uint32_t at = here();
        emit(OpCode::Loop, slot, &field, node.dxf).a =
            static_cast<std::uint32_t>(m_program.loops.size());
        m_program.loops.push_back(loop);
        return at;
    }
    void endLoop(std::uint32_t at, bool single)
    {
        m_program.ops[at].b = here();
        m_program.loops[m_program.ops[at].a].single = single;
    }

    Version m_version;
    Program& m_program;
    Program& m_outermost;
};

} // namespace

void compileProgram(const Body& body, const Layout& layout, Version version, Program& program)
{
    Scope scope{&layout, &layout.def};
    Compiler(version, program, program).addBody(body, scope);
}

} // namespace db
