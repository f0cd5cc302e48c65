#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include <db/record.h>

#include "names.h"
#include "text_coding.h"

namespace dxf {

/// What the groups of a file's objects are read by.
class FileContext
{
public:
    FileContext(db::Version version, int codePage) : m_version(version), m_coding(version, codePage)
    {
    }

    db::Version version() const { return m_version; }
    const TextCoding& coding() const { return m_coding; }
    NameTables& names() { return m_names; }
    const NameTables& names() const { return m_names; }

    /// The record called so (as the file spells it); 0 when there is none.
    std::uint64_t recordNamed(Table table, std::string_view asWritten) const
    {
        if (const std::uint64_t* known = m_names.findWritten(table, asWritten))
            return *known;
        return m_names.find(table, m_coding.decoded(trimmedName(asWritten)));
    }

    /// The linetypes of the table, without the two that are none.
    std::vector<std::uint64_t>& linetypes() { return m_linetypes; }
    const std::vector<std::uint64_t>& linetypes() const { return m_linetypes; }
    /// The first text style that stands for a file of shapes; 0 when there is none.
    std::uint64_t shapeStyle() const { return m_shapeStyle; }
    void setShapeStyle(std::uint64_t handle) { m_shapeStyle = handle; }

private:
    // Some programs pad names.
    static std::string_view trimmedName(std::string_view name)
    {
        while (!name.empty() && name.back() == ' ')
            name.remove_suffix(1);
        return name;
    }

    db::Version m_version;
    TextCoding m_coding;
    NameTables m_names;
    std::vector<std::uint64_t> m_linetypes;
    std::uint64_t m_shapeStyle = 0;
};

/// What the place of an object in its file says about it.
struct ObjectPlace {
    std::uint64_t handle = 0;
    std::uint64_t owner = 0;
    int entityMode = 0; ///< 2 in model space, 1 in the active paper space, else 0
};

} // namespace dxf
