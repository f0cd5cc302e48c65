#include <algorithm>
#include <iterator>

#include "cli/help_text.h"

// The script knows verbs and options as the option tree has them; values follow from what an option
// takes: files, folders, verbs, or nothing that could be guessed.

namespace cli {

namespace {

std::string joined(const std::vector<std::string>& list, const char* separator = " ")
{
    std::string out;
    for (const std::string& item : list)
        out += (out.empty() ? "" : separator) + item;
    return out;
}

std::string firstWords()
{
    std::vector<std::string> list;
    for (const Verb& verb : verbs()) {
        const std::string name = verb.name;
        const std::string first = name.substr(0, name.find(' '));
        if (list.empty() || list.back() != first)
            list.push_back(first);
    }
    return joined(list);
}

/// Lines of a case: a verb group and its second words.
std::string groupCases()
{
    std::string out;
    std::string group;
    for (const Verb& verb : verbs()) {
        const std::string name = verb.name;
        const std::size_t blank = name.find(' ');
        const std::string first = name.substr(0, blank);
        if (blank == std::string::npos)
            continue;
        out += first == group ? " "
                              : (group.empty() ? "" : "'\n            ;;\n        ") + first +
                                    ")\n            seconds='";
        out += name.substr(blank + 1);
        group = first;
    }
    return "        " + out + "'\n            ;;\n";
}

std::string spellingsOf(const Verb* verb)
{
    std::vector<std::string> list;
    for (const OptionInfo& option : optionsOf(verb))
        list.insert(list.end(), option.spellings.begin(), option.spellings.end());
    return joined(list);
}

std::string optionCases()
{
    std::string out;
    for (const Verb& verb : verbs())
        out += "        '" + std::string(verb.name) + "')\n            options='" +
               spellingsOf(&verb) + "'\n            ;;\n";
    return out;
}

/// Spellings of options that take a value, as a pattern of case. @p wants  by the value's name.
template <class Wants>
std::string patternOf(Wants&& wants)
{
    std::vector<std::string> seen;
    const auto take = [&](const Verb* verb) {
        for (const OptionInfo& option : optionsOf(verb))
            for (const std::string& name : option.spellings)
                if (!option.value.empty() && wants(option.value) &&
                    std::find(seen.begin(), seen.end(), name) == seen.end())
                    seen.push_back(name);
    };
    take(nullptr);
    for (const Verb& verb : verbs())
        take(&verb);
    return joined(seen, "|");
}

/// Values that can be completed, by their names in the option tree.
struct ValueRow {
    std::string_view value;
    const char* reply;
};
constexpr ValueRow kValues[] = {
    {"FILE", "_kvsheetset_files \"$word\""},
    {"DIR", "mapfile -t COMPREPLY < <(compgen -d -- \"$word\")"},
    {"set|sheets", "mapfile -t COMPREPLY < <(compgen -W 'set sheets' -- \"$word\")"},
};

std::string valueCase(const std::string& pattern, const std::string& reply)
{
    return "        " + pattern + ")\n            " + reply +
           "\n            return\n            ;;\n";
}

std::string valueCases()
{
    std::string out;
    for (const ValueRow& row : kValues)
        out += valueCase(patternOf([&](const std::string& value) { return value == row.value; }),
                         row.reply);
    const auto isOther = [](const std::string& value) {
        return std::none_of(std::begin(kValues), std::end(kValues),
                            [&](const ValueRow& row) { return row.value == value; });
    };
    return out + valueCase(patternOf(isOther), "COMPREPLY=()");
}

std::string filledIn(std::string text, std::string_view place, const std::string& value)
{
    return text.replace(text.find(place), place.size(), value);
}

/// Words before the one being typed, without options: which verb it is, and how many arguments.
constexpr char kScan[] = R"(    local plain=() at skip=
    for ((at = 1; at < COMP_CWORD; ++at)); do
        if [[ -n $skip ]]; then
            skip=
            continue
        fi
        case ${COMP_WORDS[at]} in
        @VALUED@) skip=1 ;;
        -*) ;;
        *) plain+=("${COMP_WORDS[at]}") ;;
        esac
    done
)";

std::string scan()
{
    return filledIn(kScan, "@VALUED@", patternOf([](const std::string&) { return true; }));
}

constexpr char kFiles[] =
    R"(# Completion of kvsheetset for bash, made by "kvsheetset completion bash".
_kvsheetset_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -X '!*.[dD][sS][tT]' -- "$1"
        compgen -d -- "$1")
}

)";

constexpr char kBegin[] = R"(_kvsheetset() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}
    local options seconds= verb arguments
    case $before in
)";

/// The verb, of one word or of two, and how many arguments stand behind it.
std::string chooseVerb()
{
    return R"(    verb=${plain[0]:-}
    arguments=$((${#plain[@]} - 1))
    case $verb in
)" + groupCases() +
           R"(    esac
    if [[ -n $seconds ]]; then
        verb+=" ${plain[1]:-}"
        arguments=$((arguments - 1))
    fi
    case $verb in
)" + optionCases() +
           "        *)\n            options='" + spellingsOf(nullptr) +
           "'\n            ;;\n    esac\n";
}

constexpr char kOffer[] = R"(    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
    elif ((${#plain[@]} == 0)) || [[ $verb == help ]]; then
        mapfile -t COMPREPLY < <(compgen -W '@VERBS@' -- "$word")
    elif [[ -n $seconds ]] && ((${#plain[@]} == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "$seconds" -- "$word")
    elif [[ $verb == completion ]]; then
        mapfile -t COMPREPLY < <(compgen -W 'bash' -- "$word")
    elif ((arguments == 0)); then
        _kvsheetset_files "$word"
    fi
}

complete -F _kvsheetset kvsheetset
)";

} // namespace

std::string bashCompletion()
{
    return kFiles + (kBegin + valueCases()) + "    esac\n" + scan() + chooseVerb() +
           filledIn(kOffer, "@VERBS@", firstWords());
}

} // namespace cli
