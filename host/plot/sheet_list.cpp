#include "plot/sheet_list.h"

#include <algorithm>
#include <charconv>
#include <ctime>

#include <base/file_ops.h>
#include <base/path_rules.h>
#include <base/tarvik_config.h>
#include <sm/tv_sm_database.h>
#include <sm/tv_sm_publish_options.h>
#include <sm/tv_sm_sheet.h>
#include <sm/tv_sm_sheet_set.h>

namespace plot {

namespace {

constexpr int kScope = 4;  // of the user
constexpr int kEnding = 4; // letters: what the options' file name ends with

/// One of the PDF options and where it is kept.
struct Flag {
    const char16_t* key;
    bool PdfOptions::*member;
};
constexpr Flag kFlags[] = {
    {u"Config\\publish\\pdf\\Layers", &PdfOptions::hasLayers},
    {u"Config\\publish\\pdf\\Outline", &PdfOptions::hasOutline},
    {u"Config\\publish\\pdf\\Text", &PdfOptions::hasText},
    {u"Config\\publish\\pdf\\Monochrome", &PdfOptions::isMonochrome},
};

std::vector<TvString> subsetsOf(const TvSmSheet& sheet)
{
    std::vector<TvString> names;
    for (const TvSmPersist* at = sheet.owner(); at; at = at->owner()) {
        const auto* const subset = dynamic_cast<const TvSmSubset*>(at);
        if (!subset || dynamic_cast<const TvSmSheetSet*>(at))
            break;
        names.push_back(subset->getName());
    }
    std::ranges::reverse(names);
    return names;
}

std::uint64_t handleOf(const TvString& text)
{
    const std::string digits = text.utf8();
    std::uint64_t handle = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), handle, 16);
    return handle;
}

std::optional<std::int64_t> fileSeconds(const TvString& path)
{
    base::FileInfo info;
    if (path.isEmpty() || base::systemFileOps().describeTarget(base::nativePath(path), info) != 0)
        return std::nullopt;
    return info.stamp.modifiedNs / 1'000'000'000;
}

/// As a stamp shows it: the day, in universal time, so that it is the same everywhere.
TvString dayOf(std::optional<std::int64_t> seconds)
{
    if (!seconds)
        return {};
    const auto time = static_cast<std::time_t>(*seconds);
    std::tm parts{};
    gmtime_r(&time, &parts);
    return TvString().format(TvString(u"%04d-%02d-%02d"), parts.tm_year + 1900, parts.tm_mon + 1,
                             parts.tm_mday);
}

PageOrder orderOf(const TvSmSheet& sheet)
{
    PageOrder order;
    order.number = sheet.getNumber();
    order.title = sheet.getTitle();
    order.subsets = subsetsOf(sheet);
    if (const TvSmTvDbLayoutReference* const layout = sheet.getLayoutReference()) {
        order.drawing = layout->resolveFileName();
        if (order.drawing.isEmpty())
            order.drawing = layout->getFileName(); // to be named as missing
        order.layoutName = layout->getName();
        order.layoutHandle = handleOf(layout->getHandle());
    }
    return order;
}

} // namespace

JobRequest jobOf(std::span<TvSmSheet* const> sheets, const TvSmSheetSet& set, OutputKind kind)
{
    JobRequest job;
    job.output = kind == kPdfPerSheet   ? Output::PdfPerSheet
                 : kind == kSvgPerSheet ? Output::SvgPerSheet
                                        : Output::OnePdf;
    job.options = storedPdfOptions();
    job.info.title = set.getName();
    job.info.subject = set.getDesc();
    if (set.database())
        job.info.dateUtc = fileSeconds(set.database()->getFileName());
    if (const TvSmPublishOptions* const options = set.getPublishOptions()) {
        job.options.hasLayers = job.options.hasLayers || options->getLayerInfo();
        job.options.mergesLines = options->getLinesMerge();
    }
    const bool isStamped = isStampWanted();
    if (isStamped)
        job.stamp = storedStamp();
    for (const TvSmSheet* const sheet : sheets) {
        if (!sheet)
            continue;
        job.pages.push_back(orderOf(*sheet));
        PageOrder& page = job.pages.back();
        if (isStamped)
            page.stamp = {set.getName(),   page.number,
                          page.title,      base::PathRules::native().fileNameOf(page.drawing),
                          page.layoutName, dayOf(job.info.dateUtc)};
    }
    return job;
}

bool usePageSetup(JobRequest& job, const TvSmSheetSet& set, const TvString& name)
{
    const TvSmFileReference* const setups = set.getAltPageSetups();
    const TvString drawing = setups ? setups->resolveFileName() : TvString();
    if (drawing.isEmpty())
        return false;
    job.setupDrawing = drawing;
    job.setupName = name;
    return true;
}

TvString fileNameOf(const TvSmSheetSet& set)
{
    TvString name;
    if (const TvSmPublishOptions* const options = set.getPublishOptions()) {
        name = options->getDefaultFileName();
        name = name.left(name.length() - kEnding);
    }
    return fileNameFor(name.isEmpty() ? set.getName() : name, TvString());
}

TvString targetOf(const TvSmSheetSet& set, OutputKind kind)
{
    const TvSmPublishOptions* const options = set.getPublishOptions();
    const bool isOneFile = kind == kOnePdf || kind == kToPrinter;
    if (!options || (isOneFile && options->getPromptForName()))
        return {};
    const TvSmFileReference* const folder = options->getDefaultOutputdir();
    const TvString path = folder ? folder->resolveFileName() : TvString();
    if (path.isEmpty() || !isOneFile)
        return path;
    return base::PathRules::native().join(path, fileNameOf(set) + u".pdf");
}

PdfOptions storedPdfOptions()
{
    PdfOptions options;
    TarvikConfig* const config = tarvConfig();
    TarvikConfigValue value;
    for (const Flag& flag : kFlags)
        if (config && config->getValue(kScope, flag.key, value) &&
            value.type() == TarvikConfigValue::kInt)
            options.*flag.member = value.intValue() != 0;
    return options;
}

void storePdfOptions(const PdfOptions& options)
{
    TarvikConfig* const config = tarvConfig();
    if (!config)
        return;
    for (const Flag& flag : kFlags)
        config->setValue(kScope, flag.key, TarvikConfigValue::ofInt(options.*flag.member ? 1 : 0));
}

} // namespace plot
