#pragma once

#include <base/status.h>
#include <base/tv_string.h>

namespace base {

/// Code that is loaded while the program runs: the system's loader, by full path.
///
/// Every file name is taken letter for letter: no extension is added and no folder is searched.
class SharedModule
{
public:
    using Handle = void*; ///< The system's handle; null: none.

    /// Loads the file. The same file twice gives the same handle; each load() wants its free().
    ///
    /// Symbols that are missing are found now, not at their first call.
    static Result<Handle> load(const TvString& path);
    /// The handle of a file that is loaded already, or null. Takes no hold of it.
    static Handle loaded(const TvString& path);
    /// Gives one load() back. Null is harmless.
    static void free(Handle module);
    /// The address that the module exports under @p name, letter for letter, or null; null for a
    /// null module.
    static void* symbol(Handle module, const char* name);
};

/// Where @p path really leads, if only this user and the system's administrator can exchange what
/// is there: a regular file that belongs to one of the two and that others cannot write, in a
/// folder of which the same holds, and so on up to the root (where a folder that all may write is
/// safe if nobody can rename in it what is another's).
///
/// Code is loaded from such files only: what anybody can write, anybody could make us run.
Result<TvString> fileOnlyWritableByUs(const TvString& path);

} // namespace base
