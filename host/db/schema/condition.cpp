#include "schema/condition.h"

#include <bit>
#include <cctype>
#include <charconv>

#include "schema/table_ast.h"

namespace db {

using Code = Expression::Code;

namespace {

struct Level {
    struct Operator {
        std::string_view text;
        Code code;
    };
    std::vector<Operator> operators;
};

// Loosest first; a longer operator before the one it begins with.
const std::vector<Level>& levels()
{
    static const std::vector<Level> all{
        {{{"or ", Code::Or}}},
        {{{"and ", Code::And}}},
        {{{"==", Code::Equal},
          {"!=", Code::NotEqual},
          {"<=", Code::LessEqual},
          {">=", Code::GreaterEqual},
          {"<", Code::Less},
          {">", Code::Greater}}},
        {{{"&", Code::BitAnd}}},
        {{{"+", Code::Add}, {"-", Code::Subtract}}},
        {{{"*", Code::Multiply}}},
    };
    return all;
}
constexpr std::size_t kComparison = 2; // "not" binds looser than this level

Condition operation(Code code, std::vector<Condition> parts)
{
    Condition made;
    made.kind = Condition::Kind::Operator;
    made.op = code;
    made.parts = std::move(parts);
    return made;
}

class Parser
{
public:
    explicit Parser(std::string_view text) : m_rest(text) {}

    Condition parseAll()
    {
        Condition all = parseChoice();
        skipSpace();
        if (!m_rest.empty())
            tableError("expression", m_rest);
        return all;
    }

private:
    // then if condition else otherwise
    Condition parseChoice()
    {
        Condition first = parseLevel(0);
        if (!take("if "))
            return first;
        Condition condition = parseLevel(0);
        if (!take("else "))
            tableError("no else", m_rest);
        Condition otherwise = parseChoice();
        return operation(Code::Select,
                         {std::move(condition), std::move(first), std::move(otherwise)});
    }

    Condition parseLevel(std::size_t level)
    {
        if (level == kComparison && take("not "))
            return operation(Code::Not, {parseLevel(level)});
        if (level == levels().size())
            return parsePrimary();
        Condition left = parseLevel(level + 1);
        for (;;) {
            const Level::Operator* found = takeOperator(levels()[level]);
            if (!found)
                return left;
            Condition right = parseLevel(level + 1);
            left = operation(found->code, {std::move(left), std::move(right)});
        }
    }

    const Level::Operator* takeOperator(const Level& level)
    {
        for (const Level::Operator& candidate : level.operators)
            if (take(candidate.text))
                return &candidate;
        return nullptr;
    }

    Condition parsePrimary()
    {
        if (take("("))
            return closed(parseChoice());
        if (take("popcount("))
            return closed(operation(Code::PopCount, {parseChoice()}));
        if (take("any("))
            return closed(parseAny());
        if (take("sum("))
            return closed(parseMember(Condition::Kind::Sum));
        if (!m_rest.empty() && std::isdigit(static_cast<unsigned char>(m_rest[0])))
            return parseNumber();
        return parseName();
    }

    Condition parseAny()
    {
        Condition any = parseMember(Condition::Kind::Any);
        if (!take("&"))
            tableError("any() without mask", m_rest);
        skipSpace();
        any.value = parseNumber().value;
        return any;
    }

    Condition parseMember(Condition::Kind kind)
    {
        Condition made = parseName();
        const auto dot = made.name.rfind('.');
        made.kind = kind;
        made.member = made.name.substr(dot + 1);
        made.name = made.name.substr(0, dot);
        return made;
    }

    Condition closed(Condition inner)
    {
        if (!take(")"))
            tableError("no )", m_rest);
        return inner;
    }

    Condition parseNumber()
    {
        const bool hex = m_rest.starts_with("0x");
        if (hex)
            m_rest.remove_prefix(2);
        Condition number;
        const auto read = std::from_chars(m_rest.data(), m_rest.data() + m_rest.size(),
                                          number.value, hex ? 16 : 10);
        m_rest.remove_prefix(static_cast<std::size_t>(read.ptr - m_rest.data()));
        return number;
    }

    Condition parseName()
    {
        skipSpace();
        std::size_t size = 0;
        while (size < m_rest.size() && (std::isalnum(static_cast<unsigned char>(m_rest[size])) ||
                                        m_rest[size] == '_' || m_rest[size] == '.'))
            ++size;
        if (size == 0)
            tableError("name", m_rest);
        Condition made;
        made.name = m_rest.substr(0, size);
        made.kind = made.name == "V" ? Condition::Kind::Version : Condition::Kind::Name;
        m_rest.remove_prefix(size);
        return made;
    }

    void skipSpace()
    {
        while (m_rest.starts_with(' '))
            m_rest.remove_prefix(1);
    }
    bool take(std::string_view text)
    {
        skipSpace();
        if (!m_rest.starts_with(text))
            return false;
        m_rest.remove_prefix(text.size());
        skipSpace();
        return true;
    }

    std::string_view m_rest;
};

Condition constant(std::int64_t value)
{
    Condition made;
    made.value = value;
    return made;
}

// Of two parts of an "and" or "or" one is constant: what remains.
Condition foldLogic(Condition folded)
{
    const bool isAnd = folded.op == Code::And;
    for (std::size_t i = 0; i < 2; ++i) {
        if (!folded.parts[i].isConstant())
            continue;
        if ((folded.parts[i].value != 0) != isAnd)
            return constant(isAnd ? 0 : 1);
        return std::move(folded.parts[1 - i]);
    }
    return folded;
}

bool allConstant(const Condition& condition)
{
    for (const Condition& part : condition.parts)
        if (!part.isConstant())
            return false;
    return true;
}

} // namespace

std::int64_t applyOperator(Code code, std::int64_t left, std::int64_t right)
{
    // Counts come from files: sums and products wrap around, and are then refused as counts.
    const auto l = static_cast<std::uint64_t>(left);
    const auto r = static_cast<std::uint64_t>(right);
    switch (code) {
    case Code::And: return left != 0 && right != 0;
    case Code::Or: return left != 0 || right != 0;
    case Code::Not: return left == 0;
    case Code::BitAnd: return left & right;
    case Code::Add: return static_cast<std::int64_t>(l + r);
    case Code::Subtract: return static_cast<std::int64_t>(l - r);
    case Code::Multiply: return static_cast<std::int64_t>(l * r);
    case Code::Equal: return left == right;
    case Code::NotEqual: return left != right;
    case Code::Less: return left < right;
    case Code::LessEqual: return left <= right;
    case Code::Greater: return left > right;
    case Code::GreaterEqual: return left >= right;
    case Code::PopCount: return std::popcount(l);
    default: return 0;
    }
}

Condition parseCondition(std::string_view text)
{
    return Parser(text).parseAll();
}

Condition foldCondition(const Condition& condition, int version)
{
    if (condition.kind == Condition::Kind::Version)
        return constant(version);
    if (condition.kind != Condition::Kind::Operator)
        return condition;
    Condition folded = condition;
    for (Condition& part : folded.parts)
        part = foldCondition(part, version);
    if (folded.op == Code::Select)
        return folded.parts[0].isConstant() ? std::move(folded.parts[folded.parts[0].value ? 1 : 2])
                                            : folded;
    if (allConstant(folded))
        return constant(applyOperator(folded.op, folded.parts[0].value, folded.parts.back().value));
    return folded.op == Code::And || folded.op == Code::Or ? foldLogic(std::move(folded)) : folded;
}

} // namespace db
