#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <dwg/raw_drawing.h>

/// The folder of real drawings, which are not part of the sources; may be absent.
inline std::filesystem::path drawingsFolder()
{
    const char* chosen = std::getenv("KV_DRAWINGS");
    return chosen ? chosen : KV_DRAWINGS_DEFAULT;
}

inline std::vector<std::uint8_t> readFile(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// One of our own minimal drawings, which are part of the sources.
inline std::vector<std::uint8_t> minimalDrawing(const std::string& name)
{
    const auto bytes = readFile(std::filesystem::path(KV_TEST_DATA) / "dwg" / name);
    EXPECT_FALSE(bytes.empty()) << name;
    return bytes;
}

/// The real drawings whose name contains @p part, with what is known of them; empty where they are
/// absent.
inline std::vector<std::pair<std::string, nlohmann::json>> realDrawings(const std::string& part)
{
    std::vector<std::pair<std::string, nlohmann::json>> drawings;
    std::ifstream in(drawingsFolder() / "expected.json");
    if (!in)
        return drawings;
    const nlohmann::json all = nlohmann::json::parse(in);
    for (const auto& [name, facts] : all.items())
        if (name.find(part) != std::string::npos)
            drawings.emplace_back(name, facts);
    return drawings;
}

inline std::uint64_t hexValue(const std::string& text)
{
    return std::stoull(text, nullptr, 16);
}
