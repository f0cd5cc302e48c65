#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include <base/status.h>
#include <base/tv_string.h>

/// A configuration value: a type number and a payload. The payload is a buffer whose first 4 bytes hold
/// the buffer's whole length in bytes (little endian), the data following: UTF-16 with its terminator for text, 4 bytes for an integer.
class TarvikConfigValue
{
public:
    /// Type numbers, as stored. Numbers are forever.
    enum Type : int { kNone = 0, kInt = 1, kText = 5 };

    TarvikConfigValue() = default;
    static TarvikConfigValue ofInt(int value);
    static TarvikConfigValue ofText(const TvString& text);

    int type() const { return m_type; }
    /// 0 unless the type is kInt.
    int intValue() const;
    /// Empty unless the type is kText.
    TvString textValue() const;
    const std::vector<std::byte>& payload() const { return m_payload; }

private:
    int m_type = kNone;
    std::vector<std::byte> m_payload;
};

/// The host's configuration: values under keys with backslashes between their parts
/// ("UserInterfaceSettings\Dialog\Value"), in numbered scopes. Keys are equal without regard to case.
///
/// Each scope is one JSON file ("scope4.json") below the program's folder in XDG_CONFIG_HOME: readable, with the
/// spelling of keys kept; members we do not know are kept. Several processes may write: each change reads the file afresh, and
/// replaces it atomically.
class TarvikConfig
{
public:
    /// @param folder where the scope files lie; made at the first write.
    explicit TarvikConfig(TvString folder);
    ~TarvikConfig();

    /// False, and @p out alone, when there is no such value or it cannot be read.
    bool getValue(int scope, const TvString& key, TarvikConfigValue& out);
    /// False when it could not be written; then the file is as it was. A damaged file is never overwritten.
    bool setValue(int scope, const TvString& key, const TarvikConfigValue& value);
    /// Removes a key and all below it. True when something was there and went.
    bool removeItem(int scope, const TvString& key);

private:
    struct Scope;
    Scope* scopeFor(int scope);
    TvString m_folder;
    std::map<int, std::unique_ptr<Scope>> m_scopes;
};

/// The program's configuration, or null before the host set one.
TarvikConfig* tarvConfig();
void tarvSetConfig(TarvikConfig* config); ///< Not owned; null takes it away.

namespace base {
/// $XDG_CONFIG_HOME/tarvik (a relative value is invalid and ignored), else $HOME/.config/tarvik.
TvString configFolder();
} // namespace base
