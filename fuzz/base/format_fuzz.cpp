#include <algorithm>
#include <cstdlib>
#include <vector>

#include <base/tv_string.h>

// A pattern and arguments of every kind, all from outside. Input: a byte that chooses the order of
// the arguments, a byte for the length of the text argument, that text, and the pattern; all in
// UTF-8.

namespace {

constexpr std::size_t kMaxInput = 1 << 14; // a pattern may write some 300 units for each of its own
constexpr std::size_t kLargestNumber = 1024 + 311; // 309 digits before the point, and the sign

std::vector<base::FormatArgument> argumentsFrom(const TvString& text, std::string_view bytes,
                                                std::uint8_t order)
{
    std::uint64_t number = 0;
    for (const char byte : bytes.substr(0, 8))
        number = number << 8 | static_cast<unsigned char>(byte);
    double real = 0;
    static_assert(sizeof real == sizeof number);
    std::copy_n(reinterpret_cast<const char*>(&number), sizeof real,
                reinterpret_cast<char*>(&real));
    const std::vector<base::FormatArgument> all = {
        base::FormatArgument(text),
        base::FormatArgument(static_cast<std::int32_t>(number)),
        base::FormatArgument(real),
        base::FormatArgument(bytes),
        base::FormatArgument(static_cast<char32_t>(number)),
        base::FormatArgument(number),
        base::FormatArgument(L"wide \U0001F600"),
    };
    std::vector<base::FormatArgument> rotated;
    for (std::size_t i = 0; i < all.size(); ++i)
        rotated.push_back(all[(i + order) % all.size()]);
    return rotated;
}

void check(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2 || size > kMaxInput)
        return 0;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string_view argument = input.substr(2, data[1]);
    const std::string_view rest = input.substr(2 + argument.size());
    const TvString text(argument);
    const TvString pattern(rest);

    const TvString result =
        TvString().formatArguments(pattern, argumentsFrom(text, argument, data[0]));

    const std::u16string_view units = pattern.view();
    const auto conversions = static_cast<std::size_t>(std::count(units.begin(), units.end(), u'%'));
    check(result.view().size() <= units.size() + conversions * (kLargestNumber + argument.size()));
    check(conversions > 0 || result == pattern);
    return 0;
}
