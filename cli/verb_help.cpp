#include <nlohmann/json.hpp>

#include <sm/tv_sm_database.h>
#include <unicode/uversion.h>

#include "cli/help_text.h"
#include "cli/verbs.h"

namespace cli {

namespace {

/// The verb of that name, or the verbs of that group.
std::vector<const Verb*> verbsNamed(const std::vector<std::string>& typed)
{
    const std::string name = joined(typed);
    std::vector<const Verb*> found;
    for (const Verb& verb : verbs())
        if (verb.name == name || std::string(verb.name).starts_with(name + " "))
            found.push_back(&verb);
    if (found.empty())
        refuseUnknownVerb(typed);
    return found;
}

Json jsonOf(const OptionInfo& option)
{
    return {{"spellings", option.spellings},
            {"value", option.value},
            {"required", option.isRequired},
            {"repeated", option.isRepeated},
            {"help", option.help}};
}

Json jsonOf(const Verb& verb)
{
    Json options = Json::array();
    for (const OptionInfo& option : optionsOf(&verb))
        options.push_back(jsonOf(option));
    return {{"verb", verb.name},
            {"usage", usageOf(verb)},
            {"summary", words(verb.summary).utf8()},
            {"options", std::move(options)}};
}

ExitCode help(const HelpRequest& request, Console& console)
{
    std::vector<const Verb*> told;
    if (request.verb.empty()) {
        console.raw(request.manual ? manualSource() : toolHelp(request.brief));
        for (const Verb& verb : verbs())
            told.push_back(&verb);
    } else {
        told = verbsNamed(request.verb);
        console.raw(told.front()->name == joined(request.verb)
                        ? verbHelp(*told.front(), request.brief)
                        : groupHelp(request.verb, told));
    }
    Json list = Json::array();
    for (const Verb* verb : told)
        list.push_back(jsonOf(*verb));
    console.document()["verbs"] = std::move(list);
    return ExitCode::Ok;
}

ExitCode complete(const CompletionRequest& request, Console& console)
{
    if (request.shell != "bash")
        refuseUsage(Word::UnknownShell, TvString(request.shell.c_str()));
    const std::string script = bashCompletion();
    console.raw(script);
    console.document()["shell"] = request.shell;
    console.document()["script"] = script;
    return ExitCode::Ok;
}

ExitCode version(Console& console)
{
    const TvString format = TvSmDatabase().getVersion();
    console.line({{words(Word::VersionLine, TvString(KV_VERSION))}});
    console.line({{words(Word::VersionFormat, format)}});
    console.document()["version"] = KV_VERSION;
    console.document()["formats"] = {{"dst", jsonText(format)}};
    console.document()["libraries"] = {{"icu", U_ICU_VERSION}};
    return ExitCode::Ok;
}

} // namespace

Outcome run(const HelpRequest& request, Console& console)
{
    return attempt(console, [&] { return help(request, console); });
}

Outcome run(const CompletionRequest& request, Console& console)
{
    return attempt(console, [&] { return complete(request, console); });
}

Outcome run(const VersionRequest& /*request*/, Console& console)
{
    return attempt(console, [&] { return version(console); });
}

} // namespace cli
