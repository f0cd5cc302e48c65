#include "plot/style_table.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <unordered_map>
#include <vector>

#include <base/atomic_replace.h>
#include <base/path_rules.h>
#include <base/user_folders.h>
#include <db/palette.h>

#include "inflate.h"

namespace plot {

namespace {

constexpr std::size_t kHead = 60; // in front of the packed text: its kind, and lengths
constexpr std::string_view kByColors = "PIAFILEVERSION_2.0,CTBVER1,compress";
constexpr std::string_view kByNames = "PIAFILEVERSION_2.0,STBVER1,compress";
constexpr std::size_t kMostNamed = 10'000;
constexpr std::size_t kLargestText = 4 * 1024 * 1024;
constexpr std::uint64_t kLargestFile = 4 * 1024 * 1024;
constexpr std::uint32_t kGivenColor = 0xC2000000, kKindOfColor = 0xFF000000; // as drawings do

std::uint32_t grayOf(std::uint32_t rgb)
{
    const std::uint32_t light =
        ((rgb >> 16 & 0xFF) * 299 + (rgb >> 8 & 0xFF) * 587 + (rgb & 0xFF) * 114) / 1000;
    return light << 16 | light << 8 | light;
}

const std::unordered_map<std::uint32_t, int>& numbersOfColors()
{
    static const auto numbers = [] {
        std::unordered_map<std::uint32_t, int> made;
        for (int i = 1; i < 256; ++i)
            made.emplace(db::paletteColor(i), i); // the first of equal ones
        made.emplace(0, 7);                       // number 7 as it is on paper
        return made;
    }();
    return numbers;
}

/// The next line without its indent; nullopt at the end.
std::optional<std::string_view> nextLine(std::string_view& text)
{
    if (text.empty())
        return std::nullopt;
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t'))
        line.remove_prefix(1);
    while (!line.empty() && (line.back() == ' ' || line.back() == '\r'))
        line.remove_suffix(1);
    return line;
}

template <class T>
std::optional<T> numberOf(std::string_view text)
{
    T value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() ? std::optional(value) : std::nullopt;
}

/// What the file says of one style; the weights are looked up when all is read.
struct ReadStyle {
    std::string name;
    std::optional<long> color, weight, screen, policy;
};

void readStyleLine(ReadStyle& style, std::string_view name, std::string_view value)
{
    if (name == "name") // texts begin with a quotation mark and do not end with one
        style.name = value.substr(value.starts_with('"') ? 1 : 0);
    else if (name == "color" && !style.color)
        style.color = numberOf<long>(value);
    else if (name == "mode_color") // the exact one
        style.color = numberOf<long>(value);
    else if (name == "lineweight")
        style.weight = numberOf<long>(value);
    else if (name == "screen")
        style.screen = numberOf<long>(value);
    else if (name == "color_policy")
        style.policy = numberOf<long>(value);
}

PlotStyle styleFrom(const ReadStyle& read, const std::vector<float>& weights)
{
    enum : long { kConvertsToGray = 2 };
    PlotStyle style;
    if (read.color && *read.color != -1) {
        const auto bits = static_cast<std::uint32_t>(*read.color);
        if ((bits & kKindOfColor) == 0 || (bits & kKindOfColor) >= kGivenColor)
            style.rgb = bits & 0xFFFFFF;
    }
    if (read.weight && *read.weight > 0 && static_cast<std::size_t>(*read.weight) <= weights.size())
        style.weightMm = weights[static_cast<std::size_t>(*read.weight) - 1];
    style.screenPercent = static_cast<int>(std::clamp(read.screen.value_or(100), 0L, 100L));
    style.isGray = read.policy && (*read.policy & kConvertsToGray) != 0;
    return style;
}

} // namespace

StyleTable StyleTable::monochrome()
{
    StyleTable table;
    table.m_isPlain = false;
    for (PlotStyle& style : table.m_styles)
        style.rgb = 0;
    return table;
}

StyleTable StyleTable::grayscale()
{
    StyleTable table;
    table.m_isPlain = false;
    for (PlotStyle& style : table.m_styles)
        style.isGray = true;
    return table;
}

std::optional<StyleTable> StyleTable::fromBytes(std::span<const std::byte> bytes)
{
    const std::string_view head(reinterpret_cast<const char*>(bytes.data()),
                                std::min(bytes.size(), kHead));
    const bool goesByNames = head.starts_with(kByNames);
    if (bytes.size() <= kHead || !(goesByNames || head.starts_with(kByColors)))
        return std::nullopt;
    const auto unpacked = inflated(bytes.subspan(kHead), kLargestText);
    if (!unpacked)
        return std::nullopt;
    // Blocks within blocks: "plot_style{", within it "0{" for number 1, within it "name=value".
    std::vector<ReadStyle> styles(goesByNames ? 1 : 256);
    const long most = goesByNames ? static_cast<long>(kMostNamed) : 255;
    std::vector<float> weights;
    std::string_view rest = *unpacked, block;
    long number = -1;
    while (const auto line = nextLine(rest)) {
        if (line->ends_with('{')) {
            const std::string_view name = line->substr(0, line->size() - 1);
            if (block.empty())
                block = name;
            else
                number = numberOf<long>(name).value_or(-1);
        } else if (*line == "}") {
            if (number >= 0)
                number = -1;
            else
                block = {};
        } else if (const std::size_t at = line->find('='); at != std::string_view::npos) {
            const std::string_view name = line->substr(0, at), value = line->substr(at + 1);
            if (block == "plot_style" && number >= 0 && number < most) {
                const auto index = static_cast<std::size_t>(number) + 1;
                if (index >= styles.size())
                    styles.resize(index + 1);
                readStyleLine(styles[index], name, value);
            } else if (block == "custom_lineweight_table" && weights.size() < 1000)
                weights.push_back(std::clamp(numberOf<float>(value).value_or(0), 0.0F, 100.0F));
        }
    }
    StyleTable table;
    table.m_goesByNames = goesByNames;
    for (std::size_t i = 1; i < styles.size(); ++i) {
        if (goesByNames) {
            table.m_named.emplace_back(TvString(base::utf16FromUtf8(styles[i].name)),
                                       styleFrom(styles[i], weights));
            table.m_isPlain = table.m_isPlain && table.m_named.back().second == PlotStyle();
            continue;
        }
        table.m_styles[i] = styleFrom(styles[i], weights);
        table.m_isPlain = table.m_isPlain && table.m_styles[i] == PlotStyle();
    }
    return table;
}

std::optional<StyleTable> StyleTable::find(const TvString& name, const TvString& drawing)
{
    const base::PathRules& rules = base::PathRules::native();
    const TvString file = rules.fileNameOf(name);
    for (const TvString& folder :
         {rules.folderOf(drawing), rules.join(base::configFolder(), u"Plot Styles")}) {
        if (folder.isEmpty() || file.isEmpty())
            continue;
        const auto content =
            base::readWhole(base::systemFileOps(), rules.join(folder, file), kLargestFile);
        if (content)
            if (auto table = fromBytes(content->bytes))
                return table;
    }
    const auto isNamed = [&](const char* usual) {
        return file.compareNoCase(TvString(usual)) == 0;
    };
    if (isNamed("monochrome.ctb") || isNamed("monochrome.stb"))
        return monochrome();
    if (isNamed("grayscale.ctb"))
        return grayscale();
    return std::nullopt;
}

const PlotStyle& StyleTable::styleOf(std::uint32_t rgb) const
{
    const auto found = numbersOfColors().find(rgb);
    return m_styles[found == numbersOfColors().end() ? 0 : static_cast<std::size_t>(found->second)];
}

const PlotStyle* StyleTable::named(const TvString& name) const
{
    static const PlotStyle kAsItIs;
    if (!m_goesByNames)
        return nullptr;
    for (const auto& [own, style] : m_named)
        if (own.compareNoCase(name) == 0)
            return &style;
    return &kAsItIs;
}

std::uint32_t PlotStyle::plotted(std::uint32_t own) const
{
    std::uint32_t to = rgb.value_or(own);
    if (isGray)
        to = grayOf(to);
    if (screenPercent == 100)
        return to;
    const auto mixed = [&](int shift) {
        const std::uint32_t part = to >> shift & 0xFF;
        const auto percent = static_cast<std::uint32_t>(screenPercent);
        return (255 - (255 - part) * percent / 100) << shift;
    };
    return mixed(16) | mixed(8) | mixed(0);
}

} // namespace plot
