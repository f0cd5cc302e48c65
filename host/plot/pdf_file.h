#pragma once

#include <memory>

#include "page_content.h"
#include "spool.h"

namespace plot {

/// A PDF that grows page by page. A page is written when it is added, so that only what connects
/// the pages stays in memory.
///
/// The same pages give the same bytes: no date but what is given, and an id made of the content.
class PdfFile
{
public:
    PdfFile(const DocumentInfo& info, const PdfOptions& options, const TvString& folder);
    ~PdfFile();

    /// @param number  among the job's pages: what links name. @param order  outlives this.
    base::Status add(std::size_t number, const PageOrder& order, PageContent content);
    bool isEmpty() const;
    /// Writes what connects the pages. Nothing is added afterwards.
    base::Status finish();
    /// The file's bytes, when it is finished.
    const Spool& content() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace plot
