#include "option_list.h"

#include <base/path_rules.h>

namespace cli {

namespace {

std::string bare(const std::string& shielded)
{
    const bool isShielded = !shielded.empty() && shielded[0] == OptionList::kShield;
    return isShielded ? shielded.substr(1) : shielded;
}

/// Text for the model. What is no UTF-8 would be stored as something else: refused.
TvString textArgument(const char* name, const std::string& bytes)
{
    if (!base::isWellFormedUtf8(bytes))
        refuseUsage(Word::NotUtf8, TvString(name));
    return TvString(std::string_view(bytes));
}

TvString fileArgument(const char* name, const std::string& bytes)
{
    if (bytes.empty())
        refuseUsage(Word::EmptyArgument, TvString(name));
    return base::pathFromNative(bytes);
}

/// A whole number from 0 to 10^6; refuses anything else.
int numberArgument(const char* name, const std::string& text)
{
    constexpr std::size_t kMostDigits = 6;
    const bool isNumber = !text.empty() && text.size() <= kMostDigits &&
                          text.find_first_not_of("0123456789") == std::string::npos;
    if (!isNumber)
        refuseUsage(Word::NotANumber, TvString(name), TvString(text.c_str()));
    return std::stoi(text);
}

} // namespace

CLI::Option* OptionList::argument(const char* name, const char* value, Word help,
                                  std::function<void(const std::string&)> take)
{
    return m_app
        .add_option_function<std::string>(
            name, [take](const std::string& shielded) { take(bare(shielded)); }, words(help).utf8())
        ->type_name(value);
}

CLI::Option* OptionList::file(const char* name, TvString& target, Word help)
{
    return argument(name, "FILE", help, [&target, name](const std::string& bytes) {
        target = fileArgument(name, bytes);
    });
}

CLI::Option* OptionList::files(const char* name, std::vector<TvString>& target, Word help)
{
    const auto take = [&target, name](const std::vector<std::string>& all) {
        for (const std::string& shielded : all)
            target.push_back(fileArgument(name, bare(shielded)));
    };
    return m_app.add_option_function<std::vector<std::string>>(name, take, words(help).utf8())
        ->type_name(name);
}

CLI::Option* OptionList::text(const char* name, const char* value, TvString& target, Word help)
{
    return argument(name, value, help, [&target, name](const std::string& bytes) {
        target = textArgument(name, bytes);
    });
}

CLI::Option* OptionList::text(const char* name, const char* value, std::optional<TvString>& target,
                              Word help)
{
    return argument(name, value, help, [&target, name](const std::string& bytes) {
        target = textArgument(name, bytes);
    });
}

CLI::Option* OptionList::texts(const char* name, std::vector<TvString>& target, Word help)
{
    const auto take = [&target, name](const std::vector<std::string>& all) {
        for (const std::string& shielded : all)
            target.push_back(textArgument(name, bare(shielded)));
    };
    return m_app.add_option_function<std::vector<std::string>>(name, take, words(help).utf8())
        ->type_name(name);
}

CLI::Option* OptionList::repeatedText(const char* name, const char* value,
                                      std::vector<TvString>& target, Word help)
{
    return texts(name, target, help)->type_name(value)->allow_extra_args(false);
}

CLI::Option* OptionList::plain(const char* name, const char* value, std::string& target, Word help)
{
    return argument(name, value, help, [&target](const std::string& bytes) { target = bytes; });
}

CLI::Option* OptionList::plains(const char* name, std::vector<std::string>& target, Word help)
{
    const auto take = [&target](const std::vector<std::string>& all) {
        for (const std::string& shielded : all)
            target.push_back(bare(shielded));
    };
    return m_app.add_option_function<std::vector<std::string>>(name, take, words(help).utf8())
        ->type_name(name);
}

CLI::Option* OptionList::number(const char* name, const char* value, std::optional<int>& target,
                                Word help)
{
    return argument(name, value, help, [&target, name](const std::string& bytes) {
        target = numberArgument(name, bytes);
    });
}

CLI::Option* OptionList::seconds(const char* name, std::chrono::milliseconds& target, Word help)
{
    return argument(name, "SECONDS", help, [&target, name](const std::string& bytes) {
        const bool hasUnit = bytes.size() > 1 && bytes.back() == 's';
        const std::string digits = hasUnit ? bytes.substr(0, bytes.size() - 1) : bytes;
        target = std::chrono::seconds(numberArgument(name, digits));
    });
}

CLI::Option* OptionList::flag(const char* name, bool& target, Word help)
{
    return m_app.add_flag(name, target, words(help).utf8());
}

CLI::Option* OptionList::choice(const char* name, const char* value, PropertyScope& target,
                                Word help)
{
    return argument(name, value, help, [&target, name](const std::string& text) {
        if (text == "set")
            target = PropertyScope::SheetSet;
        else if (text == "sheets")
            target = PropertyScope::Sheets;
        else
            refuseUsage(Word::NotAScope, TvString(name), TvString(text.c_str()));
    });
}

} // namespace cli
