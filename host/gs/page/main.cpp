// tarvik-page PAGE PIXELS: reads a PDF from its standard input, and writes one page of it as
// pixels.
//
// A program of its own, because documents come from strangers and the library that reads them can
// neither be stopped nor told how much memory it may have: both are done to the process here.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <vector>

#include <cairo.h>
#include <poppler.h>

#include <base/confined_program.h>

#include "page_answer.h"

namespace {

constexpr std::uint64_t kMemory = 1U << 30;
constexpr std::uint64_t kSeconds = 20; // of computing; who asked has given up before
constexpr std::uint64_t kOutput =
    gs::kMostPagePixels * sizeof(std::uint32_t) + sizeof(gs::PageAnswer);
constexpr double kPointsPerInch = 72, kFinest = 300; // pixels an inch
constexpr double kFewest = 1'000'000;                // pixels, where that is finer
constexpr double kLongestPage = 1e6;                 // points
constexpr int kLongestSide = 16384;

struct Release {
    void operator()(GBytes* bytes) const { g_bytes_unref(bytes); }
    void operator()(PopplerDocument* document) const { g_object_unref(document); }
    void operator()(PopplerPage* page) const { g_object_unref(page); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};
template <class T>
using Owned = std::unique_ptr<T, Release>;

std::vector<char> wholeInput()
{
    constexpr std::size_t kStep = 1 << 20;
    std::vector<char> bytes;
    for (std::size_t more = 1; more > 0;) {
        const std::size_t before = bytes.size();
        bytes.resize(before + kStep);
        more = std::fread(bytes.data() + before, 1, kStep, stdin);
        bytes.resize(before + more);
    }
    return bytes;
}

/// Drawings name a page by its number, from 1 on; or else as the document labels it.
Owned<PopplerPage> pageNamed(PopplerDocument& document, const char* name)
{
    const std::string_view word(name);
    int number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    const bool isNumber = error == std::errc() && end == word.data() + word.size();
    if (isNumber && number >= 1 && number <= poppler_document_get_n_pages(&document))
        return Owned<PopplerPage>(poppler_document_get_page(&document, number - 1));
    return Owned<PopplerPage>(poppler_document_get_page_by_label(&document, name));
}

/// How many pixels there are to an inch: as fine as is printed, as far as there is room.
double finenessOf(double width, double height, double mostPixels)
{
    const double inches = width * height / (kPointsPerInch * kPointsPerInch);
    const double wanted = std::max(kFinest, std::sqrt(kFewest / inches));
    const double longest = std::max(width, height) / kPointsPerInch;
    return std::min({wanted, std::sqrt(mostPixels / inches), kLongestSide / longest});
}

bool writePage(PopplerPage& page, double mostPixels)
{
    double width = 0, height = 0;
    poppler_page_get_size(&page, &width, &height);
    if (!(width > 0 && width < kLongestPage && height > 0 && height < kLongestPage))
        return false;
    const double fineness = finenessOf(width, height, mostPixels);
    const auto pixels = [&](double points) {
        return std::max(1, static_cast<int>(points / kPointsPerInch * fineness));
    };
    gs::PageAnswer answer;
    answer.width = static_cast<std::uint32_t>(pixels(width));
    answer.height = static_cast<std::uint32_t>(pixels(height));
    answer.widthInch = width / kPointsPerInch;
    answer.heightInch = height / kPointsPerInch;
    const Owned<cairo_surface_t> surface(
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, pixels(width), pixels(height)));
    const Owned<cairo_t> context(cairo_create(surface.get()));
    cairo_scale(context.get(), pixels(width) / width, pixels(height) / height);
    poppler_page_render(&page, context.get());
    cairo_surface_flush(surface.get());
    if (cairo_status(context.get()) != CAIRO_STATUS_SUCCESS ||
        cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        return false;
    // Rows of four bytes a pixel have nothing between them.
    const std::size_t count = std::size_t(answer.width) * answer.height;
    return std::fwrite(&answer, sizeof answer, 1, stdout) == 1 &&
           std::fwrite(cairo_image_surface_get_data(surface.get()), sizeof(std::uint32_t), count,
                       stdout) == count &&
           std::fflush(stdout) == 0;
}

bool run(const char* name, const char* pixels)
{
    const double most = std::clamp(std::atof(pixels), 1.0, double(gs::kMostPagePixels));
    const std::vector<char> input = wholeInput();
    const Owned<GBytes> bytes(g_bytes_new_static(input.data(), input.size()));
    const Owned<PopplerDocument> document(
        poppler_document_new_from_bytes(bytes.get(), nullptr, nullptr));
    if (!document)
        return false;
    const Owned<PopplerPage> page = pageNamed(*document, name);
    return page && writePage(*page, most);
}

} // namespace

int main(int count, char** words)
{
    base::confineThisProcess(kMemory, kSeconds, kOutput);
    if (count != 3)
        return EXIT_FAILURE;
    // Nothing is put in order: the process is gone next.
    std::_Exit(run(words[1], words[2]) ? EXIT_SUCCESS : EXIT_FAILURE);
}
