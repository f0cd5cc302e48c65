#include "independent_program.h"

#include <array>
#include <cstdio>
#include <memory>

#include <sys/wait.h>

namespace {

std::string quoted(const std::filesystem::path& path)
{
    std::string text = "'";
    for (const char c : path.string())
        text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return text + "'";
}

} // namespace

ScriptRun runScript(const std::string& name, const std::vector<std::filesystem::path>& arguments)
{
    // The system's own: the program is a package of the system.
    std::string command =
        "/usr/bin/python3 " + quoted(std::filesystem::path(KV_DXF_SCRIPTS) / name);
    for (const auto& argument : arguments)
        command += " " + quoted(argument);
    ScriptRun run;
    FILE* const pipe = ::popen((command + " 2>&1").c_str(), "r");
    if (!pipe) {
        run.exitCode = 2;
        return run;
    }
    std::array<char, 4096> buffer;
    while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), pipe))
        run.output.append(buffer.data(), size);
    const int status = ::pclose(pipe);
    constexpr int kNoShell = 127;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 1;
    if (run.exitCode == kNoShell)
        run.exitCode = 2; // no interpreter
    return run;
}
