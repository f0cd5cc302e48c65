#pragma once

#include <vector>

#include <sm/tv_sm_persist.h>

class TvSmFileReference;

namespace sm {

/// The paths under which what is referred to is looked for: the first one where something is there
/// is meant. Nothing of the disk is asked for this, so that it can be asked elsewhere and later.
/// @note lets a network host be asked as TvSmFileReference::resolveFileName() does.
std::vector<TvString> placesOf(const TvSmFileReference& reference);

} // namespace sm

/// A file or folder that a sheet set refers to.
///
/// Keeps the path as it was given, and beside it the path relative to the .dst file, which is
/// written with each save: a project folder that moves as a whole, or is mounted elsewhere, still
/// resolves.
class TvSmFileReference : public TvSmPersist
{
    TVRX_DECLARE_MEMBERS(TvSmFileReference)

    TvSmFileReference() = default;
    ~TvSmFileReference() override;

    virtual bool setFileName(const TvString& path);
    /// The path as stored, which may be relative to the .dst.
    virtual TvString getFileName(TvString& out) const;
    TvString getFileName() const;
    /// The path of something that is there, file or folder, tried in this order: the stored path,
    /// if it is absolute; the kept relative path; the stored path relative to the .dst. Empty when
    /// none is there.
    ///
    /// A network host or URL is never touched for this, unless the .dst itself lies on that host.
    /// @note at most three questions to the disk.
    virtual TvString resolveFileName(TvString& out) const;
    TvString resolveFileName() const;
    /// The path as last resolved; empty before the first time.
    virtual const TvString& getResolvedPath() const;
    /// The path as stored, letter for letter.
    virtual const TvString& getStoredPath() const;

private:
    friend struct sm::Internals;
    friend std::vector<TvString> sm::placesOf(const TvSmFileReference& reference);
    sm::StoredText m_path;
    sm::StoredText m_relative;
    struct Cache {
        TvString resolved;
        TvString stored;
    };
    mutable std::unique_ptr<Cache> m_cache;
    Cache& cache() const;
};

/// An object in a drawing: its file, its handle there (plain hexadecimal text) and its name.
class TvSmDbObjectReference : public TvSmFileReference
{
    TVRX_DECLARE_MEMBERS(TvSmDbObjectReference)

    TvSmDbObjectReference() = default;
    ~TvSmDbObjectReference() override;

    virtual bool setHandle(const TvString& handle);
    virtual TvString getHandle(TvString& out) const;
    TvString getHandle() const;
    virtual bool setName(const TvString& name);
    virtual TvString getName(TvString& out) const;
    TvString getName() const;

private:
    friend struct sm::Internals;
    sm::StoredText m_objectHandle;
    sm::StoredText m_objectName;
};

/// A paper-space layout of a drawing.
class TvSmTvDbLayoutReference : public TvSmDbObjectReference
{
    TVRX_DECLARE_MEMBERS(TvSmTvDbLayoutReference)
    TvSmTvDbLayoutReference() = default;
    ~TvSmTvDbLayoutReference() override;
};

/// A named view of a drawing.
class TvSmTvDbViewReference : public TvSmDbObjectReference
{
    TVRX_DECLARE_MEMBERS(TvSmTvDbViewReference)
    TvSmTvDbViewReference() = default;
    ~TvSmTvDbViewReference() override;
};

/// A block of a drawing.
class TvSmTvDbBlockRecordReference : public TvSmDbObjectReference
{
    TVRX_DECLARE_MEMBERS(TvSmTvDbBlockRecordReference)
    TvSmTvDbBlockRecordReference() = default;
    ~TvSmTvDbBlockRecordReference() override;
};
