#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include <base/tv_db_handle.h>
#include <base/tv_string.h>
#include <db/drawing_file.h>

class TvDbDatabase;

namespace core {
struct DrawingFacts;
}

/// What is shown of one layout.
struct LayoutInfo {
    TvString name;
    TvString paperSize; ///< "420.0 x 297.0"; empty when no paper was chosen
    std::shared_ptr<const db::Preview> thumbnail; ///< null when the drawing keeps none
};

/// What is shown of one drawing, as it was when it was last looked at.
struct DrawingInfo {
    std::map<TvDbHandle, LayoutInfo> layouts; ///< those on which something stands
    TvString path;
    TvString lastSavedBy;
    std::uint64_t modificationTime = 0; ///< of the file, in 100 ns
    std::int64_t fileSize = -1;         ///< in bytes
    bool hasSheetSetData = false;       ///< it names a sheet set
    bool isOfDocument = false;          ///< read from the open document, not from the file

    /// Empty for an unknown handle. @param handle  hexadecimal text.
    TvString GetPaperSize(const TvString& handle) const;
    /// Null for an unknown handle and without a picture.
    std::shared_ptr<const db::Preview> GetThumbnail(const TvString& handle) const;
    const TvString& GetLastSavedBy() const { return lastSavedBy; }
};

/// Facts of drawings that are asked for again and again: each file is read once, and again when its
/// time or size is another. A drawing that is open as a document is answered from there, as it
/// is now, and not from its file.
class DrawingInfoCache
{
public:
    DrawingInfoCache();
    ~DrawingInfoCache();
    DrawingInfoCache(const DrawingInfoCache&) = delete;
    DrawingInfoCache& operator=(const DrawingInfoCache&) = delete;

    /// @param out  the cache's, good until the same path is asked for again.
    /// @return false, with @p out alone, when the file is not there or cannot be read; what was
    /// known of it is forgotten then.
    /// @note reads the drawing at the first time: its map of objects, and the few that matter.
    bool Get(const TvString& path, const DrawingInfo*& out);
    /// What was read of it, be it still so or not; null: nothing. Asks the disk nothing.
    const DrawingInfo* Known(const TvString& path) const;
    /// Takes over what was read elsewhere, or forgets what could not be read; of an open document,
    /// reads that. Asks the disk nothing.
    /// @return what is known of facts.path() now; null: nothing.
    const DrawingInfo* Take(core::DrawingFacts& facts);

private:
    std::map<TvString, std::unique_ptr<DrawingInfo>> m_drawings; // by path, letter for letter
};

namespace core {

/// The one of this process, made at the first use.
DrawingInfoCache& drawingInfoCache();
/// Forgets everything: records that were handed out are gone.
void freeDrawingInfoCache();

} // namespace core
