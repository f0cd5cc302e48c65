#pragma once

#include <cstdint>
#include <optional>

#include <base/tv_string.h>
#include <core/drawing_info_cache.h>
#include <core/drawing_look.h>
#include <core/tip_style.h>

class TvSmDatabase;
class TvSmSheet;

namespace core {

/// What a tree shows for a sheet: its number, " - " behind one, its title.
TvString sheetLabel(const TvSmSheet& sheet);

/// What a tip says, and the picture in it.
struct Tip {
    TvString text; ///< its first line is the title; empty: nothing is shown
    std::shared_ptr<const db::Preview> preview; ///< null: no picture
};

/// Fills the tip for an object of a sheet set: the set, a subset or a sheet.
///
/// @param database  null, or without an object of that handle: an empty text.
/// @param tip       its preview stays when the sheet has no layout.
/// @note reads the sheet's drawing at the first time, and asks the disk for what it shows.
void fillTip(const TvSmDatabase* database, const TvString& handle, TipStyle style,
             DrawingInfoCache& drawings, Tip& tip);

/// What the disk is asked for such a tip; none when it shows nothing of a drawing.
std::optional<DrawingLook::Question> tipQuestion(const TvSmDatabase* database,
                                                 const TvString& handle, TipStyle style,
                                                 const DrawingInfoCache& drawings);
/// The same as fillTip(), of what the disk told; asks it nothing.
/// @param facts  null: it has not answered yet. What was read goes into @p drawings.
void fillTip(const TvSmDatabase* database, const TvString& handle, TipStyle style,
             DrawingFacts* facts, DrawingInfoCache& drawings, Tip& tip);

/// How a tip is painted.
struct TipParts {
    TvString title; ///< centred
    TvString rest;  ///< below a line, to the left; line feeds at its front leave room for a picture
    bool hasLine = false; ///< false: the title is all there is
};
TipParts tipParts(const Tip& tip, TipStyle style);

/// "1,234,567".
TvString withThousands(std::int64_t number);
/// "1MB" or "12KB", rounded to the nearest.
TvString roundedFileSize(std::int64_t bytes);
/// "2026-11-21 14:05:09", as clocks here show it. @param fileTime  in 100 ns since 1601.
TvString fileTimeText(std::uint64_t fileTime);

} // namespace core
