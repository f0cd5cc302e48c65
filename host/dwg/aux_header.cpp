#include "aux_header.h"

#include "byte_stream.h"

namespace dwg {

namespace {

// In one of the two forms of 2018 three numbers are wider by two bytes, the first of them before
// the count of saves: what follows them shifts.
struct AuxLayout {
    std::size_t savesAt, updateAt, seedAt, savesAgainAt;
};
constexpr AuxLayout kLayouts[] = {{0x07, 0x47, 0x4F, 0x67}, {0x09, 0x4D, 0x55, 0x6D}};

DateStamp updateOf(const HeaderVariables& variables)
{
    const HeaderValue* value = variables.find("TDUPDATE");
    return value ? std::get<DateStamp>(*value) : DateStamp{};
}

const AuxLayout* layoutOf(Bytes bytes, const HeaderVariables& variables)
{
    for (const AuxLayout& layout : kLayouts)
        if (fits(layout.savesAgainAt, 4, bytes.size()) &&
            readU64(bytes.data() + layout.seedAt) == variables.handSeed())
            return &layout;
    return nullptr;
}

} // namespace

std::optional<std::uint32_t> saveCountOf(Bytes auxHeader, const HeaderVariables& variables)
{
    const AuxLayout* layout = layoutOf(auxHeader, variables);
    if (!layout)
        return std::nullopt;
    return readU32(auxHeader.data() + layout->savesAt);
}

void updateAuxHeader(std::vector<std::uint8_t>& auxHeader, const HeaderVariables& before,
                     const HeaderVariables& after)
{
    const AuxLayout* layout = layoutOf(auxHeader, before);
    if (!layout)
        return;
    std::uint8_t* bytes = auxHeader.data();
    putU64(bytes + layout->seedAt, after.handSeed());
    const DateStamp update = updateOf(after);
    putU32(bytes + layout->updateAt, update.day);
    putU32(bytes + layout->updateAt + 4, update.milliseconds);
    const std::uint32_t saves = readU32(bytes + layout->savesAt);
    if (readU32(bytes + layout->savesAgainAt) == saves)
        putU32(bytes + layout->savesAgainAt, saves + 1);
    putU32(bytes + layout->savesAt, saves + 1);
}

} // namespace dwg
