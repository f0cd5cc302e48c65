#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cli/application.h>
#include <cli/console.h>
#include <cli/verbs.h>
#include <temp_folder.h>

/// Ports that keep what the tool says.
class TestPorts : public cli::Ports
{
public:
    void out(std::string_view text) override { m_pending += text; }
    void err(std::string_view text) override { errors += text; }
    bool flush() override
    {
        output += m_pending;
        m_pending.clear();
        return canWrite;
    }
    bool isInterrupted() override { return interrupted; }
    bool isColorful() override { return colorful; }

    std::string output;
    std::string errors;
    bool canWrite = true;
    bool interrupted = false;
    bool colorful = false;

private:
    std::string m_pending;
};

/// How one run of a verb ended, and what it said.
struct Said {
    cli::ExitCode code = cli::ExitCode::Ok;
    std::string out;
    std::string err;
    nlohmann::ordered_json json() const { return nlohmann::ordered_json::parse(out); }
};

/// Runs a verb without a process.
template <class Request>
Said runVerb(const Request& request, cli::Console::Style style = {},
             const std::string& verb = "test")
{
    TestPorts ports;
    cli::Console console(ports, verb, style);
    const cli::Outcome outcome = cli::run(request, console);
    console.finish(outcome.code);
    ports.flush();
    return {outcome.code, ports.output, ports.errors};
}

constexpr cli::Console::Style kJson{true, false};

/// Runs a whole command line without a process.
inline Said runLine(const std::vector<std::string>& arguments)
{
    TestPorts ports;
    const int code = cli::runTool(arguments, ports);
    return {static_cast<cli::ExitCode>(code), ports.output, ports.errors};
}

/// A folder with a sheet set in it:
///
///     g1   Riverside house
///     g3   ├─ Plans
///     g4   │  ├─ A-101 - Ground floor     plans/a.dwg, which is there
///     g6   │  └─ A-102 - First floor      plans/b.dwg, which is not
///     g8   ├─ Details                     excluded
///     g9   │  └─ A-501 - Stairs
///     gA   └─ Cover                       a sheet without drawing
class SampleFolder
{
public:
    SampleFolder();
    TvString file() const { return m_folder.file("house.dst"); }
    std::string native() const { return base::nativePath(file()); }
    std::string bytes() const { return m_folder.read("house.dst"); }
    const TempFolder& folder() const { return m_folder; }
    /// @p text with this folder's path written as "DIR", for golden texts.
    std::string generalised(std::string text) const;
    /// The tree as the tool shows it.
    std::string tree() const;

private:
    TempFolder m_folder;
};

/// Holds @p actual against tests/data/cli/@p name; on a difference leaves it in the build folder.
void expectGolden(const std::string& name, const std::string& actual);
