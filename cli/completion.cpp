#include <algorithm>
#include <iterator>

#include "cli/help_text.h"

// The script knows verbs and options as the option tree has them; values follow from what an option
// takes: files, folders, verbs, or nothing that could be guessed.

namespace cli {

namespace {

/// Lines of a case: the words with which the verbs go on behind each group.
std::string groupCases()
{
    std::string out;
    std::vector<std::string> told;
    for (const Verb& verb : verbs()) {
        const std::vector<std::string> name = wordsOf(verb);
        for (std::size_t count = 1; count < name.size(); ++count) {
            const std::span<const std::string> group(name.data(), count);
            if (std::find(told.begin(), told.end(), joined(group)) != told.end())
                continue;
            told.push_back(joined(group));
            out += "        '" + told.back() + "') more='" + joined(nextWords(group)) + "' ;;\n";
        }
    }
    return out;
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
    {"FILE", "_kvsheetset_files '' \"$word\""},
    {"DIR", "mapfile -t COMPREPLY < <(compgen -d -- \"$word\")"},
    {"set|sheets", "mapfile -t COMPREPLY < <(compgen -W 'set sheets' -- \"$word\")"},
    {"VERSION",
     "mapfile -t COMPREPLY < <(compgen -W 'AC1015 AC1018 AC1021 AC1024 AC1027 AC1032 dxf'"
     " -- \"$word\")"},
};

std::string valueCase(const std::string& pattern, const std::string& reply)
{
    if (pattern.empty())
        return {};
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
    local ending endings='[sS][tT]'
    [[ $1 == drawing* ]] && endings='[wW][gG] [xX][fF]'
    mapfile -t COMPREPLY < <(for ending in $endings; do
        compgen -f -X "!*.[dD]$ending" -- "$2"
    done
        compgen -d -- "$2")
}

# The verb that some words begin, how many of them it takes, and the words with which it may go on.
_kvsheetset_verb() {
    verb= used=0 more='@VERBS@'
    while [[ -n $more ]] && (($# > 0)); do
        verb+=${verb:+ }$1
        used=$((used + 1))
        shift
        case $verb in
@GROUPS@        *) more= ;;
        esac
    done
}

)";

constexpr char kBegin[] = R"(_kvsheetset() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}
    local options verb used more
    case $before in
)";

constexpr char kOffer[] = R"(    if [[ $verb == help ]]; then
        _kvsheetset_verb "${plain[@]:1}"
    fi
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
    elif [[ -n $more ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$more" -- "$word")
    elif [[ $verb == completion ]]; then
        mapfile -t COMPREPLY < <(compgen -W 'bash' -- "$word")
    elif [[ ${plain[0]} == help ]]; then
        COMPREPLY=()
    elif ((${#plain[@]} == used)) || [[ $verb == 'drawing copy' ]]; then
        _kvsheetset_files "$verb" "$word"
    fi
}

complete -F _kvsheetset kvsheetset
)";

std::string verbCase()
{
    return "    _kvsheetset_verb \"${plain[@]}\"\n    case $verb in\n" + optionCases() +
           "        *)\n            options='" + spellingsOf(nullptr) +
           "'\n            ;;\n    esac\n";
}

} // namespace

std::string bashCompletion()
{
    const std::string files = filledIn(kFiles, "@VERBS@", joined(nextWords({})));
    return filledIn(files, "@GROUPS@", groupCases()) + (kBegin + valueCases()) + "    esac\n" +
           scan() + verbCase() + kOffer;
}

} // namespace cli
