#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <base/status.h>
#include <base/tv_string.h>
#include <gs/box.h>
#include <plot/stamp.h>

namespace plot {

/// A rectangle of a page that leads to another one.
struct PageLink {
    gs::Box area;             ///< in the drawing units of the layout's paper
    std::uint64_t handle = 0; ///< above 0: the area is around this entity instead
    std::size_t page = 0;     ///< among the job's pages
};

/// One page: a layout of a drawing.
struct PageOrder {
    TvString drawing; ///< path
    /// The drawing's content when it differs from the file (somebody edits it); null: the file is
    /// read. Shared by the pages of one drawing.
    std::shared_ptr<const std::vector<std::uint8_t>> content;
    /// By name; by handle (hexadecimal number as value) when that finds a layout. Both empty: the
    /// model.
    TvString layoutName;
    std::uint64_t layoutHandle = 0;
    TvString number; ///< of the sheet: the page's label
    TvString title;
    std::vector<TvString> subsets; ///< from the outermost to the one that holds it
    /// The name of its own file, without folder and ending; empty: made of number and title. Names
    /// that are there twice get a number behind.
    TvString fileName;
    std::vector<PageLink> links;
    std::optional<StampFacts> stamp; ///< nullopt: no stamp on this page
};

/// What a PDF says of itself.
struct DocumentInfo {
    TvString title, author, subject, keywords;
    /// Seconds since 1970-01-01 UTC; nullopt: the file says no date. Never the time of writing, so
    /// that the same sheets give the same bytes.
    std::optional<std::int64_t> dateUtc;
};

/// What a PDF holds beside the drawing's lines.
struct PdfOptions {
    bool hasLayers = true;  ///< layers can be switched on and off
    bool hasOutline = true; ///< a tree of subsets and sheets
    bool hasText = true;    ///< texts can be searched and copied
    /// Lines that cross are mixed instead of hiding each other.
    bool mergesLines = false;
    bool isMonochrome = false;

    friend bool operator==(const PdfOptions&, const PdfOptions&) = default;
};

/// What a plot module is asked for, by the number in a PublishRequest.
enum OutputKind : std::int32_t {
    kToPrinter = 0, ///< where there is one, else one PDF
    kOnePdf = 1,
    kPdfPerSheet = 2,
    kSvgPerSheet = 3,
};

enum class Output { OnePdf, PdfPerSheet, SvgPerSheet };

/// A list of pages and where they go.
struct JobRequest {
    Output output = Output::OnePdf;
    TvString target; ///< the file; for a file per sheet the folder, which is made when missing
    std::vector<PageOrder> pages;
    /// A drawing with page setups, and the name of the one that takes the place of those of the
    /// layouts. Empty: each layout's own.
    TvString setupDrawing, setupName;
    DocumentInfo info;
    PdfOptions options;
    Stamp stamp;  ///< for pages that have facts to be stamped
    int jobs = 1; ///< pages that are made at the same time, 1 to 16; the bytes do not differ
};

/// What became of one page.
struct PageOutcome {
    base::Status status; ///< why it is missing
    TvString file;       ///< that it is in; empty when there is none
    /// What it lacks though it was made: external references, each with a text in its place.
    std::vector<base::Status> remarks;
};

struct JobReport {
    base::Status status; ///< of the whole: Interrupted when it was cancelled, or why nothing could
                         ///< be written; success when single pages failed
    std::vector<PageOutcome> pages; ///< as in the request
    std::vector<TvString> files;    ///< that were written
    std::size_t failures() const;
};

/// Is told how a job gets on, always in the thread that runs it.
class JobWatcher
{
public:
    virtual ~JobWatcher() = default;
    /// A page is finished, or failed. They come in the order of the request.
    virtual void pageDone(std::size_t /*page*/, const PageOutcome& /*outcome*/) {}
    /// Asked several times a second; true ends the job within a second. A job that was ended leaves
    /// the one PDF unwritten; files of single sheets that were finished stay.
    virtual bool isCancelled() { return false; }
};

/// Makes the pages and writes them. A page that cannot be made is told and left out, the others are
/// made; when all fail nothing is written. Files are replaced whole or not at all.
///
/// Each page opens its drawing by itself and is given up when it is written, so that memory does
/// not grow with their number; external references stay in memory for the pages that follow, as far
/// as there is room. The codecs must be installed.
/// @note may be called from any thread; the drawings must not be changed meanwhile through the same
///       database objects (their files may).
JobReport run(const JobRequest& request, JobWatcher& watcher);

/// What a file of a sheet is called without a name of its own: number and title, without characters
/// that no file name may have.
TvString fileNameFor(const TvString& number, const TvString& title);

} // namespace plot
