#pragma once

#include <optional>
#include <string>

#include "page_content.h"

namespace plot {

/// Makes a page as an SVG file of its own: lengths are hundredths of a millimetre, layers are
/// groups, and texts can be searched. nullopt when @p stop was set meanwhile.
std::optional<std::string> svgOf(const Page& page, const PageOrder& order, const Stamp& stamp,
                                 const PdfOptions& options, const std::atomic<bool>* stop);

} // namespace plot
