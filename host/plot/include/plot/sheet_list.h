#pragma once

#include <span>

#include <plot/job.h>

class TvSmSheet;
class TvSmSheetSet;

namespace plot {

/// A job for the sheets of a set, in their order: drawings, layouts, numbers, titles, subsets, and
/// what the set says of itself. Everything is copied; nothing of the set is needed afterwards.
///
/// The date of the set's file stands for the date of the pages. Sheets get the user's stamp where
/// that is switched on. A sheet without a layout becomes a page that cannot be found.
/// @param kind  decides what comes out; for a printer one PDF.
/// @note null sheets are left out. Where the result goes is left to the caller.
JobRequest jobOf(std::span<TvSmSheet* const> sheets, const TvSmSheetSet& set, OutputKind kind);

/// Puts in place of the layouts' own page setups the one of that name in the set's drawing of page
/// setups. False, and nothing changed, when the set has no such drawing.
bool usePageSetup(JobRequest& job, const TvSmSheetSet& set, const TvString& name);

/// Where the set's publish options send it: the file, or the folder. Empty when they say no folder,
/// or want the user to be asked. The ending that the options give their file name is replaced.
TvString targetOf(const TvSmSheetSet& set, OutputKind kind);
/// A name for the one file: that of the options without its ending, else the set's.
TvString fileNameOf(const TvSmSheetSet& set);

/// What the PDF options of the user are; of a new machine the defaults.
PdfOptions storedPdfOptions();
void storePdfOptions(const PdfOptions& options);

} // namespace plot
