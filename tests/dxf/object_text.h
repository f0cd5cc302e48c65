#pragma once

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "drawing_tools.h"
#include "record_difference.h"

/// Groups as lines of text.
inline std::string groups(std::initializer_list<std::pair<int, const char*>> list)
{
    std::string text;
    for (const auto& [code, value] : list)
        text += std::to_string(code) + "\n" + value + "\n";
    return text;
}

struct NamedVersion {
    const char* name;
    db::Version version;
};
inline constexpr NamedVersion kVersions[] = {
    {"AC1015", db::Version::Ac1015}, {"AC1018", db::Version::Ac1018},
    {"AC1021", db::Version::Ac1021}, {"AC1024", db::Version::Ac1024},
    {"AC1027", db::Version::Ac1027}, {"AC1032", db::Version::Ac1032},
};

/// Reads the object 2A of the section (ENTITIES or OBJECTS) that holds it, and once more after it
/// was written from its record, as text and as bits; all must be the same. Fails, and gives an
/// empty record, when it cannot be read.
inline db::Record readTwice(const NamedVersion& version, const char* section,
                            const std::string& object)
{
    const bool isEntity = std::string_view(section) == "ENTITIES";
    const std::string named =
        isEntity
            ? ""
            : groups({{0, "DICTIONARY"}, {5, "C"}, {100, "AcDbDictionary"}, {3, "X"}, {350, "2A"}});
    const OpenFile file = openDxf(groups({{0, "SECTION"},
                                          {2, "HEADER"},
                                          {9, "$ACADVER"},
                                          {1, version.name},
                                          {9, "$HANDSEED"},
                                          {5, "FFF"},
                                          {0, "ENDSEC"},
                                          {0, "SECTION"},
                                          {2, section}}) +
                                  named + object + groups({{0, "ENDSEC"}, {0, "EOF"}}));
    if (!file)
        return {};
    Edit edit(*file);
    edit.change(0x2A);
    const OpenFile back = edit.written(version.version);
    if (!back)
        return {};
    Edit whole(*file);
    const OpenFile bits = whole.writtenAsDwg(version.version);
    if (!bits)
        return {};
    db::Record record = recordOf(*file, 0x2A);
    for (const std::string& difference : differences(record, recordOf(*back, 0x2A), {}))
        ADD_FAILURE() << version.name << " " << difference;
    for (const std::string& difference : differences(record, recordOf(*bits, 0x2A), {}))
        ADD_FAILURE() << version.name << " as bits " << difference;
    return record;
}
