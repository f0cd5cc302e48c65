#include <algorithm>

#include <nlohmann/json.hpp>

#include <db/drawing_audit.h>
#include <resources/texts.h>

#include "cli/drawing_session.h"
#include "cli/verbs.h"
#include "columns.h"

namespace cli {

namespace {

using db::AuditSeverity;
using db::DrawingFinding;

TvString sentenceOf(const DrawingFinding& finding)
{
    const char16_t* pattern = text::find(static_cast<int>(finding.rule));
    if (!pattern)
        return words(Word::UnknownReason);
    std::vector<base::FormatArgument> arguments;
    for (const TvString& argument : finding.arguments)
        arguments.emplace_back(argument);
    // A finding about the file as a whole says what its status says.
    const TvString fileSentence = finding.status ? TvString() : messageOf(finding.status).text;
    if (arguments.empty() && !finding.status)
        arguments.emplace_back(fileSentence); // is not copied, so it must live on
    return TvString().formatArguments(pattern, arguments);
}

std::string_view severityName(AuditSeverity severity)
{
    switch (severity) {
    case AuditSeverity::Error: return "error";
    case AuditSeverity::Warning: return "warning";
    case AuditSeverity::Note: break;
    }
    return "note";
}

Piece severityPiece(AuditSeverity severity)
{
    switch (severity) {
    case AuditSeverity::Error: return {words(Word::CheckError), Tone::Alert};
    case AuditSeverity::Warning: return {words(Word::CheckWarning), Tone::Alert};
    case AuditSeverity::Note: break;
    }
    return {words(Word::CheckNote), Tone::Faint};
}

TvString handleOf(const DrawingFinding& finding)
{
    return finding.handle == 0 ? TvString() : base::hexText(finding.handle);
}

Json jsonOf(const DrawingFinding& finding)
{
    return {{"code", jsonText(db::auditCode(finding.rule))},
            {"severity", severityName(finding.severity)},
            {"handle", finding.handle == 0 ? Json() : Json(jsonText(handleOf(finding)))},
            {"class", finding.className.empty() ? Json() : Json(finding.className)},
            {"message", jsonText(sentenceOf(finding))}};
}

ExitCode check(const DrawingCheckRequest& request, Console& console)
{
    OpenedDrawing opened(request.file, console);
    db::DrawingAuditOptions options;
    options.trySave = true;
    const std::vector<DrawingFinding> findings = db::auditDrawing(opened.database(), options);
    console.stopIfInterrupted();
    int counts[3] = {};
    Columns columns;
    Json list = Json::array();
    for (const DrawingFinding& finding : findings) {
        ++counts[static_cast<int>(finding.severity)];
        columns.add({severityPiece(finding.severity),
                     {db::auditCode(finding.rule)},
                     {handleOf(finding), Tone::Faint},
                     {TvString(std::string_view(finding.className)), Tone::Faint},
                     {sentenceOf(finding)}});
        list.push_back(jsonOf(finding));
    }
    columns.print(console);
    console.say(words(Word::CheckDrawingSummary, opened.path(), counts[0], counts[1], counts[2]));
    console.document()["file"] = jsonText(opened.path());
    console.document()["counts"] = {
        {"errors", counts[0]}, {"warnings", counts[1]}, {"notes", counts[2]}};
    console.document()["findings"] = std::move(list);
    return counts[0] > 0 ? ExitCode::CheckFailed : ExitCode::Ok;
}

} // namespace

Outcome run(const DrawingCheckRequest& request, Console& console)
{
    return attempt(console, [&] { return check(request, console); });
}

} // namespace cli
