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
    constexpr std::string_view kPlace = "@VALUED@";
    std::string out = kScan;
    return out.replace(out.find(kPlace), kPlace.size(),
                       patternOf([](const std::string&) { return true; }));
}

} // namespace

std::string bashCompletion()
{
    std::string out =
        "# Completion of kvsheetset for bash, made by \"kvsheetset completion bash\".\n"
        "_kvsheetset_files() {\n"
        "    compopt -o filenames 2>/dev/null\n"
        "    mapfile -t COMPREPLY < <(compgen -f -X '!*.[dD][sS][tT]' -- \"$1\"\n"
        "        compgen -d -- \"$1\")\n"
        "}\n\n"
        "_kvsheetset() {\n"
        "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
        "    local options seconds= verb arguments\n"
        "    case $before in\n" +
        valueCases() + "    esac\n" + scan();
    out += "    verb=${plain[0]:-}\n"
           "    arguments=$((${#plain[@]} - 1))\n"
           "    case $verb in\n" +
           groupCases() +
           "    esac\n"
           "    if [[ -n $seconds ]]; then\n"
           "        verb+=\" ${plain[1]:-}\"\n"
           "        arguments=$((arguments - 1))\n"
           "    fi\n"
           "    case $verb in\n" +
           optionCases() + "        *)\n            options='" + spellingsOf(nullptr) +
           "'\n            ;;\n    esac\n";
    out += "    if [[ $word == -* ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W \"$options\" -- \"$word\")\n"
           "    elif ((${#plain[@]} == 0)) || [[ $verb == help ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W '" +
           firstWords() +
           "' -- \"$word\")\n"
           "    elif [[ -n $seconds ]] && ((${#plain[@]} == 1)); then\n"
           "        mapfile -t COMPREPLY < <(compgen -W \"$seconds\" -- \"$word\")\n"
           "    elif [[ $verb == completion ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W 'bash' -- \"$word\")\n"
           "    elif ((arguments == 0)); then\n"
           "        _kvsheetset_files \"$word\"\n"
           "    fi\n"
           "}\n\n"
           "complete -F _kvsheetset kvsheetset\n";
    return out;
}

} // namespace cli
