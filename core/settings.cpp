#include <core/settings.h>

#include <base/tarvik_config.h>

namespace {

constexpr int kScope = 4;

bool read(const TvString& key, TarvikConfigValue& value)
{
    TarvikConfig* config = tarvConfig();
    return config && config->getValue(kScope, key, value);
}

bool write(const TvString& key, const TarvikConfigValue& value)
{
    TarvikConfig* config = tarvConfig();
    return config && config->setValue(kScope, key, value);
}

} // namespace

bool ReadConfigText(const TvString& key, TvString& out)
{
    TarvikConfigValue value;
    if (!read(key, value))
        return false;
    out = value.textValue();
    return true;
}

bool WriteConfigText(const TvString& key, const TvString& text)
{
    return write(key, TarvikConfigValue::ofText(text));
}

bool ReadConfigInt(const TvString& key, int& out)
{
    TarvikConfigValue value;
    if (!read(key, value))
        return false;
    out = value.intValue();
    return true;
}

bool WriteConfigInt(const TvString& key, int value)
{
    return write(key, TarvikConfigValue::ofInt(value));
}

bool RemoveConfigItem(const TvString& key)
{
    TarvikConfig* config = tarvConfig();
    return config && config->removeItem(kScope, key);
}
