#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include <cli/refusal.h>

namespace cli {

/// What the tool asks of the world around it, supplied by main() and by tests.
class Ports
{
public:
    virtual ~Ports() = default;
    /// Data, in UTF-8: the standard output.
    virtual void out(std::string_view text) = 0;
    /// Messages, in UTF-8: the standard error, at once.
    virtual void err(std::string_view text) = 0;
    /// Brings the data out. False when it could not be written; a reader that went is no failure.
    virtual bool flush() = 0;
    /// Whether the user or a signal asked us to end.
    virtual bool isInterrupted() = 0;
    /// Whether colours may be used in the data.
    virtual bool isColorful() = 0;
};

enum class Tone { Plain, Strong, Faint, Alert };

/// A piece of a line of data, with how it looks where colours may be used.
struct Piece {
    TvString text;
    Tone tone = Tone::Plain;
};

using Json = nlohmann::ordered_json;

/// Where a verb's words go: lines of data or one JSON document, messages, warnings.
///
/// No text reaches a terminal with its control characters: pieces, messages and the document are
/// made safe here, once for all verbs.
class Console
{
public:
    struct Style {
        bool json = false;
        bool quiet = false;
    };
    /// @param ports  not owned; outlives us.
    /// @param verb   as typed ("subset add"); empty before one is known.
    Console(Ports& ports, const std::string& verb, Style style);
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    bool isJson() const { return m_style.json; }
    bool isInterrupted() const { return m_ports.isInterrupted(); }
    /// Ends the verb (Refusal) when the user asked for it.
    void stopIfInterrupted() const;

    /// One line of data; nothing when a document is wanted.
    void line(std::initializer_list<Piece> pieces) { line(std::vector<Piece>(pieces)); }
    void line(const std::vector<Piece>& pieces);
    /// Data that the program made itself and that goes out as it is; nothing when a document is
    /// wanted.
    void raw(std::string_view text);
    /// The document's own fields, between "ok" and "warnings".
    Json& document() { return *m_document; }

    /// A message to a person: left out when quiet or when a document is wanted.
    void say(const TvString& message);
    /// One event of what goes on, as a line of JSON on the standard error, at once.
    void event(const Json& event);
    /// Something that the user should know although the verb goes on.
    void warn(const Message& message);
    /// Why the verb ended, on the standard error and in the document.
    void fail(const Refusal& refusal);
    /// Puts the document out, if one is wanted. Once, at the end.
    void finish(ExitCode code);

private:
    void tell(const Message& message, Word pattern);

    Ports& m_ports; // not owned
    const std::string m_verb;
    const Style m_style;
    std::unique_ptr<Json> m_document;
    std::unique_ptr<Json> m_error;
    std::unique_ptr<Json> m_warnings;
};

/// UTF-8 for a JSON document.
std::string jsonText(const TvString& text);
/// The document's text: characters that could steer a terminal are written as \\uXXXX, which means
/// the same.
/// @param indent  of each level; below 0: all on one line.
std::string documentText(const Json& document, int indent = 2);

/// How a verb ended.
struct Outcome {
    ExitCode code = ExitCode::Ok;
};

/// Runs @p work, which gives an exit code and refuses by Refusal, and reports a refusal.
template <class Work>
Outcome attempt(Console& console, Work&& work)
{
    try {
        return {work()};
    } catch (const Refusal& refusal) {
        console.fail(refusal);
        return {refusal.exitCode()};
    }
}

} // namespace cli
