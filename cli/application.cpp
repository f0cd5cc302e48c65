#include "cli/application.h"

#include <algorithm>
#include <filesystem>

#include <sm/environment.h>

#include "cli/help_text.h"
#include "cli/option_tree.h"
#include "cli/verbs.h"

namespace cli {

namespace {

/// A verb and its arguments, told apart.
struct Chosen {
    const Verb* verb = nullptr;
    std::vector<std::string> arguments;
};

Chosen chooseVerb(const std::vector<std::string>& rest)
{
    Chosen chosen;
    chosen.verb = findVerb(rest);
    if (chosen.verb) {
        const auto words = static_cast<std::ptrdiff_t>(wordsOf(*chosen.verb).size());
        chosen.arguments.assign(rest.begin() + words, rest.end());
        return chosen;
    }
    refuseUnknownVerb(rest);
}

/// Whether a group of verbs is asked for its help; only the form of the answer may stand beside it.
bool asksForGroup(const std::vector<std::string>& rest)
{
    const std::size_t words = groupWords(rest);
    bool asks = false;
    for (std::size_t i = words; i < rest.size(); ++i) {
        const bool isHelp = rest[i] == "-h" || rest[i] == "--help";
        if (!isHelp && rest[i] != "--json")
            return false;
        asks = asks || isHelp;
    }
    return words > 0 && asks;
}

void enterFolder(const std::string& folder)
{
    if (folder.empty())
        return;
    std::error_code failure;
    std::filesystem::current_path(folder, failure);
    if (failure)
        refuse(ExitCode::NoInput, Word::CannotEnterFolder, TvString(folder.c_str()),
               TvString(failure.message().c_str()));
}

Console::Style styleOf(const Invocation& invocation)
{
    return {invocation.json, invocation.quiet};
}

int finish(Console& console, Outcome outcome)
{
    console.finish(outcome.code);
    return static_cast<int>(outcome.code);
}

/// Wrong usage that was met before the options were known; a document is given if one was asked
/// for.
bool wantsJson(std::span<const std::string> arguments)
{
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    return std::find(arguments.begin(), end, "--json") != end;
}

int runHelp(const HelpRequest& request, const Invocation& invocation, Ports& ports)
{
    Console console(ports, "help", styleOf(invocation));
    return finish(console, run(request, console));
}

int runVerb(const Chosen& chosen, Invocation& invocation, Ports& ports)
{
    const Parsed parsed = parseVerb(*chosen.verb, chosen.arguments, invocation);
    if (parsed != Parsed::Ready)
        return runHelp({{chosen.verb->name}, false, parsed == Parsed::ShortHelp}, invocation,
                       ports);
    enterFolder(invocation.folder);
    sm::environment().purpose = chosen.verb->name;
    Console console(ports, chosen.verb->name, styleOf(invocation));
    return finish(console, chosen.verb->run(invocation, console));
}

int runRequest(std::span<const std::string> arguments, std::string& verb, Ports& ports)
{
    Invocation invocation;
    std::vector<std::string> rest;
    const Parsed parsed = parseBeforeVerb(arguments, invocation, rest);
    if (parsed != Parsed::Ready)
        return runHelp({{}, false, parsed == Parsed::ShortHelp}, invocation, ports);
    if (invocation.version) {
        Console console(ports, "version", styleOf(invocation));
        return finish(console, run(VersionRequest(), console));
    }
    if (rest.empty() && invocation.json)
        refuseUsage(Word::NoVerb);
    if (rest.empty()) {
        ports.err(toolHelp(true));
        return static_cast<int>(ExitCode::Usage);
    }
    if (asksForGroup(rest)) {
        invocation.json = invocation.json || wantsJson(rest);
        rest.resize(groupWords(rest));
        return runHelp({rest, false, true}, invocation, ports);
    }
    const Chosen chosen = chooseVerb(rest);
    verb = chosen.verb->name;
    return runVerb(chosen, invocation, ports);
}

int reported(const Refusal& refusal, const std::string& verb, bool json, Ports& ports)
{
    Console console(ports, verb, {json, false});
    console.fail(refusal);
    return finish(console, {refusal.exitCode()});
}

int runGuarded(std::span<const std::string> arguments, Ports& ports)
{
    std::string verb;
    const bool json = wantsJson(arguments);
    try {
        return runRequest(arguments, verb, ports);
    } catch (const Refusal& refusal) {
        return reported(refusal, verb, json, ports);
    } catch (const std::exception& failure) {
        return reported(
            Refusal(ExitCode::Internal, messageOf(Word::InternalError, TvString(failure.what()))),
            verb, json, ports);
    } catch (...) {
        return reported(Refusal(ExitCode::Internal, messageOf(Word::InternalError, TvString())),
                        verb, json, ports);
    }
}

} // namespace

int runTool(std::span<const std::string> arguments, Ports& ports)
{
    const int code = runGuarded(arguments, ports);
    if (ports.flush())
        return code;
    Console console(ports, {}, {});
    console.fail(Refusal(ExitCode::CannotWrite, messageOf(Word::CannotWriteOutput)));
    return code == 0 ? static_cast<int>(ExitCode::CannotWrite) : code;
}

} // namespace cli
