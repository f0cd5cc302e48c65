#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include <base/status.h>
#include <base/tv_string.h>

/// A configuration value: a type number and a payload. The payload is a buffer whose first 4 bytes
/// hold the buffer's whole length in bytes (little endian), the data following: UTF-16 with its
/// terminator for text, 4 bytes for an integer.
class TarvikConfigValue
{
public:
    /// Type numbers, as stored. Numbers are forever.
    enum Type : int { kNone = 0, kInt = 1, kText = 5 };

    TarvikConfigValue() = default;
    /// Each throws what base::allocateConfigPayload() throws.
    static TarvikConfigValue ofInt(int value);
    static TarvikConfigValue ofText(const TvString& text);

    int type() const { return m_type; }
    /// 0 unless the type is kInt.
    int intValue() const;
    /// Empty unless the type is kText.
    TvString textValue() const;
    const std::vector<std::byte>& payload() const { return m_payload; }

    friend bool operator==(const TarvikConfigValue&, const TarvikConfigValue&) = default;

private:
    int m_type = kNone;
    std::vector<std::byte> m_payload;
};

/// The host's configuration: values under keys with backslashes between their parts
/// ("UserInterfaceSettings\Dialog\Value"), in numbered scopes. Keys are equal without regard to
/// case.
///
/// Each scope is one JSON file ("scope4.json") below the program's folder in XDG_CONFIG_HOME: an
/// object for each part of a key, in it whole numbers and texts. A key that is a value and has
/// others below it keeps its own value under the empty name:
///
///     { "UserInterfaceSettings": { "Tips": { "": 1, "Delay": 500 } } }
///
/// A text that is no well-formed UTF-16 (a file name may be none) is an array of its pieces, with
/// each lone surrogate as a number. The first spelling of a key stays, and so does each member that
/// means nothing to us. Several processes may write: each change waits its turn, reads the file
/// afresh, and replaces it atomically; a change that changes nothing does not touch it.
///
/// A key is at least one and at most 60 parts of well-formed text; empty parts do not count.
/// Anything else is a key that is never there and cannot be written.
class TarvikConfig
{
public:
    /// @param folder where the scope files lie; made at the first write.
    explicit TarvikConfig(TvString folder);
    ~TarvikConfig();

    /// False, and @p out alone, when there is no such value or it cannot be read.
    bool getValue(int scope, const TvString& key, TarvikConfigValue& out);
    /// False when it could not be written; then the file is as it was. A damaged file is never
    /// overwritten. A value without a type cannot be written: removeItem() is how a value goes.
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

/// Whether the file of @p scope in @p folder can be read, and why not (ConfigDamaged names what is
/// wrong). A missing file is well: it holds no values.
Status checkConfig(const TvString& folder, int scope);

/// A buffer of @p length bytes for a value, its own length in the first four.
///
/// Throws a KvErrorStatus: code 3 for a length below 1, code 6 when there is no memory for it, or
/// when four bytes cannot tell its length.
std::vector<std::byte> allocateConfigPayload(std::int64_t length);

} // namespace base
