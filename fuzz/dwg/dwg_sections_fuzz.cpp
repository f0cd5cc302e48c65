// The first byte chooses the version, the second the kind of section that the rest is read as. What
// was read goes back and must read the same.

#include <cstdlib>

#include <preview_block.h>
#include <second_header.h>

#include <dwg/class_table.h>
#include <dwg/header_variables.h>
#include <dwg/object_map.h>
#include <dwg/object_record.h>

namespace {

constexpr dwg::Version kVersions[] = {dwg::Version::Ac1015, dwg::Version::Ac1018,
                                      dwg::Version::Ac1021, dwg::Version::Ac1024,
                                      dwg::Version::Ac1027, dwg::Version::Ac1032};

void require(bool holds)
{
    if (!holds)
        std::abort();
}

void useVariables(dwg::Version version, dwg::Bytes bytes)
{
    auto variables = dwg::HeaderVariables::read(version, bytes);
    if (!variables)
        return;
    variables->set("TILEMODE", 1 - variables->integer("TILEMODE"));
    const auto section = variables->section();
    if (section.empty())
        return;
    const auto again = dwg::HeaderVariables::read(version, section);
    require(bool(again) && again->names() == variables->names());
    require(again->integer("TILEMODE") == variables->integer("TILEMODE"));
    require(again->handSeed() == variables->handSeed());
}

void useClasses(dwg::Version version, dwg::Bytes bytes)
{
    const auto classes = dwg::ClassTable::read(version, bytes);
    if (!classes)
        return;
    const auto section = classes->section();
    const auto again = dwg::ClassTable::read(version, section);
    require(section.empty() || (bool(again) && again->records() == classes->records()));
}

void useMap(dwg::Bytes bytes)
{
    const auto map = dwg::readObjectMap(bytes, 100'000);
    if (!map)
        return;
    const auto again = dwg::readObjectMap(dwg::writeObjectMap(map->objects), 100'000);
    require(bool(again) && again->objects == map->objects);
}

void useRecord(dwg::Version version, dwg::Bytes bytes)
{
    if (const auto record = dwg::parseRecord(version, bytes))
        (void)record->streams(version).failed();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    const dwg::Version version = kVersions[data[0] % 6];
    const dwg::Bytes bytes(data + 2, size - 2);
    switch (data[1] % 6) {
    case 0: useVariables(version, bytes); break;
    case 1: useClasses(version, bytes); break;
    case 2: useMap(bytes); break;
    case 3: useRecord(version, bytes); break;
    case 4: (void)dwg::readSecondHeader(bytes, 0); break;
    default: (void)dwg::readPreview(dwg::previewBlockAt(bytes), 0);
    }
    return 0;
}
