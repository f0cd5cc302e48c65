#include "modeler_records.h"

#include <algorithm>
#include <string>

namespace gs {

namespace {

using Kind = ModelerValue::Kind;

constexpr std::size_t kLargestBody = 64U << 20; // bytes
constexpr std::size_t kMostRecords = 4U << 20;
constexpr std::size_t kMostValues = 1U << 20; // of one record
constexpr std::size_t kLongestName = 64;

ModelerKind kindNamed(std::string_view name)
{
    struct Named {
        std::string_view name;
        ModelerKind kind;
    };
    // Tolerant ones are those that do not meet exactly.
    static constexpr Named kKinds[] = {
        {"coedge", ModelerKind::Coedge},
        {"edge", ModelerKind::Edge},
        {"vertex", ModelerKind::Vertex},
        {"point", ModelerKind::Point},
        {"face", ModelerKind::Face},
        {"loop", ModelerKind::Loop},
        {"body", ModelerKind::Body},
        {"transform", ModelerKind::Transform},
        {"ellipse-curve", ModelerKind::EllipseCurve},
        {"intcurve-curve", ModelerKind::SplineCurve},
        {"cone-surface", ModelerKind::ConeSurface},
        {"sphere-surface", ModelerKind::SphereSurface},
        {"torus-surface", ModelerKind::TorusSurface},
        {"tedge-edge", ModelerKind::Edge},
        {"tcoedge-coedge", ModelerKind::Coedge},
        {"tvertex-vertex", ModelerKind::Vertex},
    };
    for (const Named& known : kKinds)
        if (known.name == name)
            return known.kind;
    return ModelerKind::Other;
}

/// Behind the body may stand its history, and the end.
bool endsBody(std::string_view name)
{
    return name.starts_with("End-of-") || name.starts_with("Begin-of-");
}

} // namespace

std::vector<double> ModelerRecord::numbers() const
{
    std::vector<double> numbers;
    for (const ModelerValue& value : values)
        if (value.kind == Kind::Number)
            numbers.push_back(value.number);
        else if (value.kind == Kind::Pointer)
            numbers.clear();
    return numbers;
}

bool ModelerRecord::isReversed() const
{
    const auto flag = std::find_if(values.begin(), values.end(), [](const ModelerValue& value) {
        return value.kind == Kind::Flag;
    });
    return flag != values.end() && flag->number != 0;
}

ModelerRecords::ModelerRecords(std::span<const std::uint8_t> body)
    : m_tokens(modelerTokens(body.first(std::min(body.size(), kLargestBody)))),
      m_budget(2 * std::min(body.size(), kLargestBody) + 1024)
{
    while (m_entries.size() < kMostRecords && addRecord()) {
    }
}

/// Finds the next record: false at the end of those that can be understood.
bool ModelerRecords::addRecord()
{
    ModelerValue value;
    if (!m_tokens->next(value))
        return false;
    // A text may tell the record's own number first.
    if (value.kind == Kind::Number && !m_tokens->next(value))
        return false;
    std::string name;
    while (value.kind == Kind::NamePart && name.size() < kLongestName) {
        name.append(value.word).push_back('-');
        if (!m_tokens->next(value))
            return false;
    }
    if (value.kind == Kind::Word)
        name += value.word.substr(0, kLongestName);
    if (endsBody(name))
        return false;
    const Entry entry{static_cast<std::uint32_t>(m_tokens->position()), kindNamed(name)};
    while (value.kind != Kind::End) {
        if (!m_tokens->next(value))
            return false;
        while (value.kind == Kind::Open)
            if (!addPart(value))
                return false;
    }
    m_entries.push_back(entry);
    return true;
}

/// What begins here, unless it is but the number of one that was told before.
/// @param next  the value behind the begin.
bool ModelerRecords::addPart(ModelerValue& next)
{
    const auto begin = static_cast<std::uint32_t>(m_tokens->position());
    if (!m_tokens->next(next))
        return false;
    if ((next.kind != Kind::Word || next.word != ModelerRecord::kReference) &&
        m_parts.size() < kMostRecords)
        m_parts.push_back(begin);
    return true;
}

bool ModelerRecords::readAt(std::size_t begin, bool isPart, ModelerRecord& out)
{
    m_tokens->seek(begin);
    ModelerValue value;
    std::size_t depth = isPart ? 1 : 0;
    while (m_budget > 0 && out.values.size() < kMostValues && m_tokens->next(value)) {
        --m_budget;
        depth += value.kind == Kind::Open;
        if (value.kind == Kind::End || (value.kind == Kind::Close && isPart && --depth == 0))
            return true;
        out.values.push_back(value);
    }
    out.values.clear();
    return false;
}

bool ModelerRecords::read(std::size_t record, ModelerRecord& out)
{
    out.values.clear();
    return record < m_entries.size() && readAt(m_entries[record].begin, false, out);
}

bool ModelerRecords::readPart(std::size_t number, ModelerRecord& out)
{
    out.values.clear();
    return number < m_parts.size() && readAt(m_parts[number], true, out);
}

std::size_t ModelerRecords::pointedTo(const ModelerRecord& from, ModelerKind kind,
                                      std::size_t which) const
{
    for (const ModelerValue& value : from.values)
        if (value.kind == Kind::Pointer && value.number >= 0 &&
            value.number < static_cast<double>(size())) {
            const auto target = static_cast<std::size_t>(value.number);
            if (kindOf(target) == kind && which-- == 0)
                return target;
        }
    return size();
}

} // namespace gs
