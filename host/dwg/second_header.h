#pragma once

#include <optional>
#include <vector>

#include "dwg/header_variables.h"

namespace dwg {

/// The copy of the essentials of an AC1015 file behind its objects.
struct SecondHeader {
    struct Section {
        std::uint8_t number = 0;
        std::uint32_t offset = 0, size = 0;
    };
    struct Handle {
        std::uint8_t index = 0; // what it is the handle of; 0 is the next free one
        std::uint8_t size = 0;  // bytes it takes
        std::uint64_t value = 0;
    };

    std::uint32_t ownOffset = 0;
    std::vector<std::uint8_t> fileHead; // 13 bytes: version, five zeros, bytes 0x0B and 0x0C
    std::uint16_t application = 0;      // bytes 0x11 and 0x12
    std::uint16_t codePage = 0;
    std::vector<Section> sections;
    std::vector<Handle> handles;
    bool hasJunk = true; // eight bytes behind the checksum, which some programs leave out
    bool checksumRight = true;
    std::size_t fileSize = 0; // bytes it takes in the file, with its sentinels; when read
};

/// Reads the one whose begin sentinel stands at @p offset of @p file; nullopt when it contradicts
/// itself.
std::optional<SecondHeader> readSecondHeader(Bytes file, std::size_t offset);
/// Its bytes, with the sentinels; they do not fit another place than `ownOffset`.
std::vector<std::uint8_t> writeSecondHeader(const SecondHeader& header);
/// The handles that it lists, from the header variables.
std::vector<SecondHeader::Handle> secondHeaderHandles(const HeaderVariables& variables);
/// Replaces the value of handle @p index, which is added when missing.
void setHandle(SecondHeader& header, std::uint8_t index, std::uint64_t value);

} // namespace dwg
