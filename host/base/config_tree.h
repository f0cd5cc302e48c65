#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <nlohmann/json.hpp>

#include "base/tarvik_config.h"

namespace base {

/// A key of the configuration, taken apart.
class ConfigKey
{
public:
    explicit ConfigKey(const TvString& key);

    /// False when no value can stand under this key.
    bool isValid() const { return m_isValid; }
    const std::vector<TvString>& parts() const { return m_parts; }
    /// The same text for each spelling of this key.
    TvString folded() const;

private:
    std::vector<TvString> m_parts;
    bool m_isValid = false;
};

/// Values by folded key.
using ConfigValues = std::unordered_map<TvString, TarvikConfigValue>;

/// The content of one configuration file: all of it, also what means nothing to us.
class ConfigTree
{
public:
    /// @param problem  what is wrong, when the result is empty.
    static std::optional<ConfigTree> parse(std::string_view text, std::string& problem);
    std::string text() const;

    ConfigValues values() const;
    /// Both give whether anything changed.
    bool set(const ConfigKey& key, const TarvikConfigValue& value);
    bool remove(const ConfigKey& key);

private:
    nlohmann::ordered_json m_root = nlohmann::ordered_json::object();
};

} // namespace base
