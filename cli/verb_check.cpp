#include <algorithm>

#include <nlohmann/json.hpp>

#include <resources/texts.h>
#include <sm/audit.h>

#include "cli/components.h"
#include "cli/session.h"
#include "cli/verbs.h"

namespace cli {

namespace {

bool isError(const sm::Finding& finding)
{
    return finding.severity == sm::Severity::Error;
}

TvString sentenceOf(const sm::Finding& finding)
{
    const char16_t* pattern = text::find(static_cast<int>(finding.rule));
    if (!pattern)
        return words(Word::UnknownReason);
    std::vector<base::FormatArgument> arguments;
    for (const TvString& argument : finding.arguments)
        arguments.emplace_back(argument);
    return TvString().formatArguments(pattern, arguments);
}

TvString labelAt(const TvSmDatabase& db, const TvString& handle)
{
    const auto* component = tvrxCast<TvSmComponent>(db.findObject(handle));
    return component ? labelOf(*component) : TvString();
}

Json jsonOf(const sm::Finding& finding, const TvString& label)
{
    return {{"code", jsonText(sm::auditCode(finding.rule))},
            {"severity", isError(finding) ? "error" : "note"},
            {"handle", jsonText(finding.handle)},
            {"label", jsonText(label)},
            {"message", jsonText(sentenceOf(finding))}};
}

void print(const sm::Finding& finding, const TvString& label, Console& console)
{
    const Tone tone = isError(finding) ? Tone::Alert : Tone::Faint;
    console.line({{words(isError(finding) ? Word::CheckError : Word::CheckNote), tone},
                  {u" "},
                  {sm::auditCode(finding.rule)},
                  {u"  "},
                  {finding.handle, Tone::Faint},
                  {u"  "},
                  {label, Tone::Strong},
                  {label.isEmpty() ? u"" : u": "},
                  {sentenceOf(finding)}});
}

ExitCode check(const CheckRequest& request, Console& console)
{
    const OpenedSet opened(request.file, console);
    sm::AuditOptions options;
    options.drawingsMustBeThere = request.drawings;
    std::vector<sm::Finding> findings = sm::auditSheetSet(&opened.database(), options);
    console.stopIfInterrupted();
    std::stable_partition(findings.begin(), findings.end(), isError);
    const auto errors = static_cast<int>(std::count_if(findings.begin(), findings.end(), isError));
    const int notes = static_cast<int>(findings.size()) - errors;
    Json list = Json::array();
    for (const sm::Finding& finding : findings) {
        const TvString label = labelAt(opened.database(), finding.handle);
        print(finding, label, console);
        list.push_back(jsonOf(finding, label));
    }
    console.say(words(Word::CheckSummary, opened.database().getFileName(), errors, notes));
    console.document()["file"] = jsonText(opened.database().getFileName());
    console.document()["errors"] = errors;
    console.document()["notes"] = notes;
    console.document()["findings"] = std::move(list);
    return errors > 0 ? ExitCode::CheckFailed : ExitCode::Ok;
}

} // namespace

Outcome run(const CheckRequest& request, Console& console)
{
    return attempt(console, [&] { return check(request, console); });
}

} // namespace cli
