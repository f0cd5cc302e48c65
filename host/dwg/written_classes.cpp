#include "written_classes.h"

#include "known_classes.h"

namespace dwg {

namespace {

// Two classes have a number of their own from 2004 on. They are named nevertheless.
constexpr int kPlaceholder = 0x50, kLayout = 0x52;

std::string_view listedName(int typeNumber)
{
    switch (typeNumber) {
    case kPlaceholder: return "ACDBPLACEHOLDER";
    case kLayout: return "LAYOUT";
    default: return {};
    }
}

} // namespace

WrittenClasses::WrittenClasses(Version version, ClassTable table)
    : m_version(version), m_table(std::move(table))
{
    for (const ClassRecord& record : m_table.records())
        m_classes.add(record.number, record.dxfNameText(), record.isEntity());
}

std::uint16_t WrittenClasses::nameClass(std::string_view dxfName)
{
    if (const ClassRecord* named = m_table.findNamed(dxfName))
        return named->number;
    const auto record = knownClass(m_version, dxfName);
    const std::uint16_t number = record ? m_table.add(*record) : std::uint16_t(0);
    if (number == 0)
        return 0;
    m_classes.add(number, dxfName, record->kind == ClassRecord::kEntity);
    m_isChanged = true;
    return number;
}

int WrittenClasses::numberOf(const db::ClassDef& classDef)
{
    const auto known = m_numbers.find(&classDef);
    if (known != m_numbers.end())
        return known->second;
    int number = classDef.typeNumber();
    const std::string_view listed = listedName(number);
    if (!listed.empty()) {
        const int asClass = nameClass(listed);
        number = m_version == Version::Ac1015 ? asClass : number;
    } else if (number == 0) {
        number = nameClass(classDef.name());
        // One named here for the other kind of objects is another class.
        number = m_classes.find(number) == &classDef ? number : 0;
    }
    m_numbers.emplace(&classDef, number);
    return number;
}

void WrittenClasses::count(int typeNumber, int change)
{
    const std::string_view listed = listedName(typeNumber);
    if (change == 0 || m_version == Version::Ac1015 || (listed.empty() && typeNumber < 500))
        return;
    const ClassRecord* const record = listed.empty()
                                          ? m_table.find(static_cast<std::uint16_t>(typeNumber))
                                          : m_table.findNamed(listed);
    if (!record)
        return;
    m_table.count(record->number, change);
    m_isChanged = true;
}

} // namespace dwg
