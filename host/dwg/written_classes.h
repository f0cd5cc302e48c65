#pragma once

#include <unordered_map>

#include "dwg/class_table.h"
#include "dwg/object_codec.h"

namespace dwg {

/// The classes of a file that is being written: gives each object its type number, names classes
/// that the file does not name yet, and counts their objects.
class WrittenClasses
{
public:
    WrittenClasses(Version version, ClassTable table);

    /// The number of objects of that class; 0 when the file does not name it and we do not know
    /// how to.
    int numberOf(const db::ClassDef& classDef);
    /// @p change more objects of that type.
    void count(int typeNumber, int change);

    bool isChanged() const { return m_isChanged; }
    const ClassTable& table() const { return m_table; }
    const ObjectClasses& classes() const { return m_classes; }

    /// The number of the class with this name, which the file names from now on; 0 when we do not
    /// know how to.
    std::uint16_t nameClass(std::string_view dxfName);

private:
    Version m_version;
    ClassTable m_table;
    ObjectClasses m_classes;
    std::unordered_map<const db::ClassDef*, int> m_numbers;
    bool m_isChanged = false;
};

} // namespace dwg
