#include "reed_solomon.h"

#include <algorithm>
#include <array>

namespace dwg {

namespace {

// Products in GF(256) through logarithms to the base 2.
struct Field {
    std::array<std::uint8_t, 512> power{};
    std::array<std::uint8_t, 256> log{};
};

constexpr Field makeField(unsigned polynomial)
{
    Field field;
    unsigned value = 1;
    for (unsigned i = 0; i < 255; ++i) {
        field.power[i] = field.power[i + 255] = static_cast<std::uint8_t>(value);
        field.log[value] = static_cast<std::uint8_t>(i);
        value <<= 1;
        if (value & 0x100)
            value ^= polynomial;
    }
    return field;
}

constexpr Field kSystemField = makeField(0x169);
constexpr Field kDataField = makeField(0x11D);
// Lowest power first, without the leading 1.
constexpr std::uint8_t kSystemGenerator[] = {0x6A, 0xE3, 0x63, 0x1F, 0xA1, 0x24, 0x9E, 0x44,
                                             0x13, 0x1E, 0x2F, 0xFC, 0xFD, 0xCE, 0xA9, 0xDB};
constexpr std::uint8_t kDataGenerator[] = {0x74, 0xE7, 0xD8, 0x1E};

} // namespace

std::vector<std::uint8_t> parityOf(BlockCode code, Bytes data)
{
    const bool isSystem = code == BlockCode::System;
    const Field& field = isSystem ? kSystemField : kDataField;
    const Bytes generator = isSystem ? Bytes(kSystemGenerator) : Bytes(kDataGenerator);
    std::vector<std::uint8_t> parity(generator.size());
    for (std::size_t i = dataBytes(code); i-- > 0;) {
        const std::uint8_t byte = i < data.size() ? data[i] : 0;
        const std::uint8_t factor = byte ^ parity.back();
        std::copy_backward(parity.begin(), parity.end() - 1, parity.end());
        parity[0] = 0;
        if (factor == 0)
            continue;
        for (std::size_t j = 0; j < parity.size(); ++j)
            parity[j] ^= field.power[field.log[factor] + field.log[generator[j]]];
    }
    return parity;
}

std::vector<std::uint8_t> encodeInterleaved(BlockCode code, Bytes data)
{
    const std::size_t blocks = blocksFor(code, data.size()), size = dataBytes(code);
    std::vector<std::uint8_t> coded(blocks * kBlockSize);
    for (std::size_t i = 0; i < blocks; ++i) {
        const Bytes block = data.subspan(i * size, std::min(size, data.size() - i * size));
        for (std::size_t j = 0; j < block.size(); ++j)
            coded[j * blocks + i] = block[j];
        const auto parity = parityOf(code, block);
        for (std::size_t j = 0; j < parity.size(); ++j)
            coded[(size + j) * blocks + i] = parity[j];
    }
    return coded;
}

std::vector<std::uint8_t> decodeInterleaved(BlockCode code, Bytes coded, std::size_t blocks,
                                            std::size_t size)
{
    std::vector<std::uint8_t> data(size);
    const std::size_t blockData = dataBytes(code);
    for (std::size_t i = 0; i < blocks; ++i)
        for (std::size_t j = 0; j < blockData && i * blockData + j < size; ++j)
            data[i * blockData + j] = coded[j * blocks + i];
    return data;
}

} // namespace dwg
