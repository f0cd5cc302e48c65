#pragma once

#include <cmath>
#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include <gs/picture.h>

#include "drawings.h"

/// How much two pictures differ: the part of their blocks of 4 by 4 pixels whose mean brightness
/// is not about the same. 1 when their sizes differ.
inline double difference(const gs::Picture& a, const gs::Picture& b)
{
    constexpr int kBlock = 4;
    constexpr double kSame = 28; // of 255; a thin black line through a white block makes 64
    if (a.width != b.width || a.height != b.height || a.isEmpty())
        return 1;
    const auto mean = [](const gs::Picture& picture, int left, int top) {
        double sum = 0;
        int count = 0;
        for (int y = top; y < std::min(top + kBlock, picture.height); ++y)
            for (int x = left; x < std::min(left + kBlock, picture.width); ++x) {
                const std::uint32_t rgb = picture.at(x, y);
                sum += (rgb >> 16 & 0xFF) + (rgb >> 8 & 0xFF) + (rgb & 0xFF);
                count += 3;
            }
        return sum / count;
    };
    int blocks = 0, others = 0;
    for (int y = 0; y < a.height; y += kBlock)
        for (int x = 0; x < a.width; x += kBlock) {
            ++blocks;
            others += std::abs(mean(a, x, y) - mean(b, x, y)) > kSame ? 1 : 0;
        }
    return double(others) / blocks;
}

inline gs::Picture referencePicture(const std::string& name)
{
    const std::filesystem::path path =
        std::filesystem::path(KV_TEST_DATA) / "pictures" / (name + ".png");
    return gs::pictureFromPreview({db::Preview::Kind::Png, readFile(path)});
}

/// Fonts of machines differ, and letters with them; a line that is missing, or elsewhere, is more.
/// What was drawn is left in the build folder when it is not as expected.
inline void expectPicture(const gs::Picture& picture, const std::string& name,
                          double mostDifferent = 0.02)
{
    const double differs = difference(picture, referencePicture(name));
    EXPECT_LE(differs, mostDifferent) << name;
    if (differs > mostDifferent) {
        const auto out = std::filesystem::path(KV_BUILD_DIR) / (name + ".out.png");
        std::ofstream file(out, std::ios::binary);
        const std::vector<std::uint8_t> bytes = gs::pngBytes(picture);
        file.write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
    }
}
