#include "container.h"

#include <algorithm>

namespace dwg {

std::size_t Container::indexOf(std::string_view name) const
{
    const auto found = std::find_if(m_sections.begin(), m_sections.end(),
                                    [&](const Section& s) { return s.name == name; });
    return static_cast<std::size_t>(found - m_sections.begin());
}

bool Finding::forbidsSave() const
{
    switch (kind) {
    case FindingKind::SectionOutsideFile:
    case FindingKind::SectionChecksum:
    case FindingKind::SectionUnreadable:
    case FindingKind::PageChecksum:
    case FindingKind::PageUnreadable:
    case FindingKind::MapOrder:
    case FindingKind::ObjectUnreadable:
    case FindingKind::ObjectsOverlap: return true;
    default: return false;
    }
}

base::Status sectionDamaged(std::string_view name)
{
    return {base::Failure::Damaged, base::Reason::DwgSectionDamaged, {TvString(name)}};
}

} // namespace dwg
