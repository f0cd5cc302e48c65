#include "database_extras.h"

namespace db {

namespace {

struct VersionCode {
    Version version;
    int code;
};
constexpr VersionCode kVersionCodes[] = {
    {Version::Ac1015, TvDb::kAc1015}, {Version::Ac1018, TvDb::kAc1018},
    {Version::Ac1021, TvDb::kAc1021}, {Version::Ac1024, TvDb::kAc1024},
    {Version::Ac1027, TvDb::kAc1027}, {Version::Ac1032, TvDb::kAc1032},
};

} // namespace

std::optional<Version> versionOfCode(const TvDbDatabase& database, int code)
{
    if (code == TvDb::kUnknownVersion)
        return database.impl().version();
    for (const VersionCode& row : kVersionCodes)
        if (row.code == code)
            return row.version;
    return std::nullopt;
}

int codeOfVersion(Version version)
{
    for (const VersionCode& row : kVersionCodes)
        if (row.version == version)
            return row.code;
    return TvDb::kUnknownVersion;
}

} // namespace db
