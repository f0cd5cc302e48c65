#include "sm/tv_sm_file_reference.h"

#include <base/kv_file_system.h>
#include <base/path_rules.h>

#include "database_state.h"

using sm::Internals;

TVRX_DEFINE_MEMBERS(TvSmFileReference, TvSmPersist)
TVRX_DEFINE_MEMBERS(TvSmDbObjectReference, TvSmFileReference)
TVRX_DEFINE_MEMBERS(TvSmTvDbLayoutReference, TvSmDbObjectReference)
TVRX_DEFINE_MEMBERS(TvSmTvDbViewReference, TvSmDbObjectReference)
TVRX_DEFINE_MEMBERS(TvSmTvDbBlockRecordReference, TvSmDbObjectReference)

TvSmFileReference::~TvSmFileReference() = default;
TvSmDbObjectReference::~TvSmDbObjectReference() = default;
TvSmTvDbLayoutReference::~TvSmTvDbLayoutReference() = default;
TvSmTvDbViewReference::~TvSmTvDbViewReference() = default;
TvSmTvDbBlockRecordReference::~TvSmTvDbBlockRecordReference() = default;

TvSmFileReference::Cache& TvSmFileReference::cache() const
{
    if (!m_cache)
        m_cache = std::make_unique<Cache>();
    return *m_cache;
}

bool TvSmFileReference::setFileName(const TvString& path)
{
    if (m_path.equals(path))
        return Internals::mayChange(*this);
    // The relative path goes with the stored one; the next save works out the new one.
    if (!Internals::changeText(*this, m_path, path))
        return false;
    if (m_cache)
        m_cache->resolved.setEmpty(); // whoever looks at it may go on looking
    return Internals::changeText(*this, m_relative, TvString());
}

TvString TvSmFileReference::getFileName(TvString& out) const
{
    return out = m_path.text();
}

TvString TvSmFileReference::getFileName() const
{
    return m_path.text();
}

namespace {

/// Both slashes are understood, but a name that really holds a backslash comes first.
void addSpellings(const TvString& path, std::vector<TvString>& places)
{
    if (path.isEmpty())
        return;
    places.push_back(path);
    const TvString normal = base::PathRules::native().normalise(path);
    if (normal != path)
        places.push_back(normal);
}

TvString relativeTarget(const TvString& folder, const TvString& relative)
{
    const base::PathRules& rules = base::PathRules::native();
    if (folder.isEmpty() || relative.isEmpty() || rules.isAbsolute(relative) ||
        rules.isNetwork(relative) || base::PathRules::isUrl(relative) ||
        base::PathRules::isDriveRelative(relative))
        return {};
    return rules.normalise(rules.join(folder, relative));
}

/// Whether a look at @p path asks nobody that the user did not turn to already by opening the set.
bool mayTouch(const TvString& path, const TvString& setFile)
{
    const TvString host = base::PathRules::native().hostOf(path);
    if (host.isEmpty() || KvFileSystem::isTouchAllowed(path))
        return KvFileSystem::isTouchAllowed(path);
    if (!base::equalNoCase(host, base::PathRules::native().hostOf(setFile)))
        return false;
    KvFileSystem::allowHost(host);
    return true;
}

} // namespace

std::vector<TvString> sm::placesOf(const TvSmFileReference& reference)
{
    const sm::DatabaseState* state = Internals::state(reference);
    const TvString setFile = state ? state->fileName() : TvString();
    const TvString folder = state ? state->folder() : TvString();
    const TvString stored = reference.m_path.text();
    std::vector<TvString> places;
    if (base::PathRules::native().isAbsolute(stored) && mayTouch(stored, setFile))
        addSpellings(stored, places);
    for (const TvString& relative : {reference.m_relative.text(), stored})
        addSpellings(relativeTarget(folder, relative), places);
    return places;
}

TvString TvSmFileReference::resolveFileName(TvString& out) const
{
    TvString found;
    for (const TvString& place : sm::placesOf(*this))
        if (KvFileSystem::pathFileExists(place)) {
            found = place;
            break;
        }
    cache().resolved = found;
    return out = found;
}

TvString TvSmFileReference::resolveFileName() const
{
    TvString out;
    return resolveFileName(out);
}

const TvString& TvSmFileReference::getResolvedPath() const
{
    static const TvString empty;
    return m_cache ? m_cache->resolved : empty;
}

const TvString& TvSmFileReference::getStoredPath() const
{
    return cache().stored = m_path.text();
}

bool TvSmDbObjectReference::setHandle(const TvString& handle)
{
    return Internals::changeText(*this, m_objectHandle, handle);
}

TvString TvSmDbObjectReference::getHandle(TvString& out) const
{
    return out = m_objectHandle.text();
}

TvString TvSmDbObjectReference::getHandle() const
{
    return m_objectHandle.text();
}

bool TvSmDbObjectReference::setName(const TvString& name)
{
    return Internals::changeText(*this, m_objectName, name);
}

TvString TvSmDbObjectReference::getName(TvString& out) const
{
    return out = m_objectName.text();
}

TvString TvSmDbObjectReference::getName() const
{
    return m_objectName.text();
}
