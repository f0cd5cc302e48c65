#include "cli/console.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace cli {

namespace {

constexpr int kOneLine = -1; // an indent

constexpr std::string_view kReset = "\x1b[0m";

std::string_view colorOf(Tone tone)
{
    switch (tone) {
    case Tone::Plain: break;
    case Tone::Strong: return "\x1b[1m";
    case Tone::Faint: return "\x1b[2m";
    case Tone::Alert: return "\x1b[33m";
    }
    return {};
}

std::string safe(const TvString& text)
{
    return base::escapedForDisplay(text).utf8();
}

Json jsonOf(const Message& message)
{
    Json json = {{"code", jsonText(message.code())}, {"message", jsonText(message.text)}};
    if (!message.advice.isEmpty())
        json["advice"] = jsonText(message.advice);
    return json;
}

} // namespace

Console::Console(Ports& ports, const std::string& verb, Style style)
    : m_ports(ports), m_verb(verb), m_style(style),
      m_document(std::make_unique<Json>(Json::object())), m_error(std::make_unique<Json>()),
      m_warnings(std::make_unique<Json>(Json::array()))
{
}

Console::~Console() = default;

void Console::stopIfInterrupted() const
{
    if (isInterrupted())
        refuse(base::Status(base::Failure::Interrupted, base::Reason::Cancelled), Doing::Reading);
}

void Console::line(const std::vector<Piece>& pieces)
{
    if (m_style.json)
        return;
    std::string text;
    for (const Piece& piece : pieces) {
        const std::string_view color = m_ports.isColorful() ? colorOf(piece.tone) : "";
        text.append(color).append(safe(piece.text)).append(color.empty() ? "" : kReset);
    }
    m_ports.out(text + "\n");
}

void Console::raw(std::string_view text)
{
    if (!m_style.json)
        m_ports.out(text);
}

void Console::say(const TvString& message)
{
    if (!m_style.json && !m_style.quiet)
        m_ports.err(safe(message) + "\n");
}

void Console::event(const Json& event)
{
    m_ports.err(documentText(event, kOneLine));
}

void Console::warn(const Message& message)
{
    m_warnings->push_back(jsonOf(message));
    if (!m_style.quiet)
        tell(message, Word::WarningLine);
}

void Console::fail(const Refusal& refusal)
{
    *m_error = jsonOf(refusal.message());
    tell(refusal.message(), Word::ErrorLine);
}

void Console::tell(const Message& message, Word pattern)
{
    const TvString tool =
        m_verb.empty() ? words(Word::Tool) : words(Word::Tool) + u" " + TvString(m_verb.c_str());
    TvString text = words(pattern, tool, message.code(), message.text);
    if (!message.advice.isEmpty())
        text += TvString(u" ") + message.advice;
    m_ports.err(safe(text) + "\n");
}

void Console::finish(ExitCode code)
{
    if (!m_style.json)
        return;
    std::string name = m_verb.empty() ? "usage" : m_verb;
    std::replace(name.begin(), name.end(), ' ', '-');
    Json whole = {{"schema", "kvsheetset." + name + "/1"}, {"ok", code == ExitCode::Ok}};
    whole["exitCode"] = static_cast<int>(code);
    for (const auto& [key, value] : m_document->items())
        whole[key] = value;
    if (!m_error->is_null())
        whole["error"] = *m_error;
    whole["warnings"] = *m_warnings;
    m_ports.out(documentText(whole));
}

std::string jsonText(const TvString& text)
{
    return text.utf8();
}

std::string documentText(const Json& document, int indent)
{
    const std::string plain = document.dump(indent, ' ', false, Json::error_handler_t::replace);
    std::u16string out;
    out.reserve(plain.size() + 1);
    // Such characters stand within texts only, where a document may write them in two ways.
    for (const TvChar unit : base::utf16FromUtf8(plain)) {
        const TvString one(&unit, 1);
        const bool isSafe =
            unit == u'\n' || (unit >= 0x20 && unit < 0x7F) || base::escapedForDisplay(one) == one;
        out += isSafe ? one.view() : TvString().format(u"\\u%04x", unit).view();
    }
    return base::utf8FromUtf16(out) + "\n";
}

} // namespace cli
