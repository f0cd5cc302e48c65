#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <base/tv_string.h>
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

/// @p stored with the escapes (`\U+XXXX`) of characters that Windows-1252 lacks as these
/// characters, as 8-bit texts are read.
inline std::string withoutForeignEscapes(std::string stored)
{
    constexpr std::size_t kLength = 7;
    constexpr char16_t kLastOfAll = 0xFF; // of the escapes there are, those above are lacked
    for (std::size_t at = stored.find("\\U+"); at != stored.npos;
         at = stored.find("\\U+", at + 1)) {
        const auto unit =
            static_cast<char16_t>(std::strtoul(stored.substr(at + 3, 4).c_str(), nullptr, 16));
        if (unit > kLastOfAll)
            stored.replace(at, kLength, base::utf8FromUtf16({&unit, 1}));
    }
    return stored;
}

/// Makes all texts of @p facts, which are as stored, such as they are read.
inline void resolveEscapes(nlohmann::json& facts)
{
    if (facts.is_string())
        facts = withoutForeignEscapes(facts.get<std::string>());
    else if (facts.is_structured())
        for (nlohmann::json& part : facts)
            resolveEscapes(part);
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
    for (const auto& [name, facts] : all.items()) {
        if (name.find(part) == std::string::npos)
            continue;
        drawings.emplace_back(name, facts);
        if (facts["version"] == "AC1015" || facts["version"] == "AC1018") // 8-bit texts
            resolveEscapes(drawings.back().second);
    }
    return drawings;
}

inline std::uint64_t hexValue(const std::string& text)
{
    return std::stoull(text, nullptr, 16);
}
