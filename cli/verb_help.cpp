#include <nlohmann/json.hpp>

#include <sm/tv_sm_database.h>
#include <unicode/uversion.h>

#include "cli/help_text.h"
#include "cli/verbs.h"

namespace cli {

namespace {

const Verb& verbNamed(const std::vector<std::string>& typed)
{
    // A verb's whole name may come as one word too.
    std::vector<std::string> parts = typed;
    if (parts.size() == 1)
        if (const std::size_t blank = parts[0].find(' '); blank != std::string::npos)
            parts = {parts[0].substr(0, blank), parts[0].substr(blank + 1)};
    const Verb* verb = findVerb(parts);
    if (!verb)
        refuseUsage(Word::UnknownVerb, TvString(parts[0].c_str()));
    return *verb;
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
    Json& list = console.document()["verbs"] = Json::array();
    if (request.manual) {
        console.raw(manualSource());
    } else if (request.verb.empty()) {
        console.raw(toolHelp(request.brief));
    } else {
        const Verb& verb = verbNamed(request.verb);
        console.raw(verbHelp(verb, request.brief));
        list.push_back(jsonOf(verb));
        return ExitCode::Ok;
    }
    for (const Verb& verb : verbs())
        list.push_back(jsonOf(verb));
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
