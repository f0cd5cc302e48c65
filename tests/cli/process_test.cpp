#include <algorithm>
#include <csignal>
#include <filesystem>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tool_process.h"
#include "tool_scene.h"

// The tool as a process of its own: exit codes, what goes to which output, signals, locks.

namespace {

/// Expects a refusal: @p code, one sentence with @p message on the standard error, no data.
void expectRefused(const SampleFolder& sample, const std::vector<std::string>& line, int code,
                   const std::string& message)
{
    const std::string before = sample.bytes();
    const Ran ran = runTool(line);
    EXPECT_EQ(ran.code, code) << message;
    EXPECT_EQ(sample.generalised(ran.err), message + "\n");
    EXPECT_EQ(ran.out, "") << message;
    EXPECT_EQ(sample.bytes(), before) << message;
}

TEST(Tool, DataGoToTheStandardOutputAndMessagesToTheStandardError)
{
    const SampleFolder sample;
    const Ran tree = runTool({"tree", sample.native()});
    EXPECT_EQ(tree.code, 0);
    EXPECT_EQ(tree.out, sample.tree());
    EXPECT_EQ(tree.err, "");

    const Ran dry = runTool({"remove", sample.native(), "gA", "-n"});
    EXPECT_EQ(dry.out, "gA  Cover\n");
    EXPECT_EQ(dry.err, "Nothing was changed: this was a dry run.\n");
    EXPECT_EQ(runTool({"remove", sample.native(), "gA", "-n", "-q"}).err, "");
}

TEST(Tool, AMissingFileIsTold)
{
    const SampleFolder sample;
    expectRefused(sample, {"tree", sample.native() + "x"}, 3,
                  "kvsheetset tree: E21001: The file DIR/house.dstx is not there. Check the path; "
                  "\"kvsheetset new\" makes a sheet set.");
}

TEST(Tool, AFileThatIsNoSheetSetIsTold)
{
    const SampleFolder sample;
    sample.folder().write("page.dst", "<html><body/></html>");
    sample.folder().write("text.dst", "once upon a time");
    expectRefused(sample, {"tree", base::nativePath(sample.folder().file("page.dst"))}, 7,
                  "kvsheetset tree: E21102: DIR/page.dst is not a sheet set. Restore it from a "
                  "backup.");
    EXPECT_EQ(runTool({"info", base::nativePath(sample.folder().file("text.dst"))}).code, 7);
}

TEST(Tool, ADamagedFileIsTold)
{
    const SampleFolder sample;
    const std::string bytes = sample.bytes();
    sample.folder().write("house.dst", bytes.substr(0, bytes.size() / 2));
    const Ran ran = runTool({"set", sample.native(), "g1", "name=x"});
    EXPECT_EQ(ran.code, 7);
    EXPECT_EQ(ran.out, "");
    EXPECT_EQ(ran.err.rfind("kvsheetset set: E211", 0), 0u) << ran.err;
}

TEST(Tool, ANewerVersionIsTold)
{
    const SampleFolder sample;
    std::string bytes = sample.bytes();
    bytes.replace(bytes.find("version=\"1.0\" nextHandle"), 13, "version=\"9.0\"");
    sample.folder().write("house.dst", bytes);
    expectRefused(sample, {"set", sample.native(), "g1", "name=x"}, 7,
                  "kvsheetset set: E21103: DIR/house.dst was made by a newer version (9.0) and is "
                  "opened read only. Use a newer version of this program.");
}

TEST(Tool, AnUnknownHandleIsTold)
{
    const SampleFolder sample;
    expectRefused(sample, {"move", sample.native(), "gFFF", "--to", "g1"}, 3,
                  "kvsheetset move: E22421: There is no object with the handle gFFF in this set. "
                  "\"kvsheetset tree\" shows those that there are.");
}

TEST(Tool, ANameThatIsTooLongIsTold)
{
    const SampleFolder sample;
    expectRefused(sample, {"subset", "add", sample.native(), std::string(65, 'x')}, 2,
                  "kvsheetset subset add: E22430: The NAME is too long: 65 characters, and at most "
                  "64 are allowed.");
    // Characters outside the basic plane count as two.
    std::string wide;
    for (int at = 0; at < 33; ++at)
        wide += "\U0001F3E0";
    EXPECT_EQ(runTool({"new", sample.native() + "2.dst", "--name", wide}).code, 2);
}

TEST(Tool, ASetLockedByAnotherProcessIsTold)
{
    const SampleFolder sample;
    const LockHolder holder(sample.file());
    ASSERT_TRUE(holder.isHolding());
    const std::string before = sample.bytes();

    const Ran ran = runTool({"set", sample.native(), "g1", "name=x"});

    EXPECT_EQ(ran.code, 4);
    EXPECT_EQ(ran.out, "");
    EXPECT_EQ(ran.err.rfind("kvsheetset set: E21016: ", 0), 0u) << ran.err;
    EXPECT_NE(ran.err.find("--lock-wait"), std::string::npos) << ran.err;
    EXPECT_EQ(sample.bytes(), before);
    const auto json =
        nlohmann::ordered_json::parse(runTool({"lock", sample.native(), "--json"}).out);
    EXPECT_EQ(json["state"], "heldSameHost");
    EXPECT_EQ(json["owner"]["purpose"], "a test");
    // Reading waits for nobody.
    EXPECT_EQ(runTool({"tree", sample.native()}).code, 0);
}

TEST(Tool, AFileThatMayNotBeWrittenIsTold)
{
    const SampleFolder sample;
    ASSERT_EQ(::chmod(sample.native().c_str(), 0444), 0);
    expectRefused(
        sample, {"set", sample.native(), "g1", "name=x"}, 8,
        "kvsheetset set: E21003: DIR/house.dst is read only. Make it writable, or work on "
        "a copy.");
}

TEST(Tool, AFolderThatMayNotBeWrittenIsTold)
{
    const SampleFolder sample;
    ASSERT_EQ(::chmod(sample.folder().path().c_str(), 0555), 0);
    expectRefused(
        sample, {"set", sample.native(), "g1", "name=x"}, 8,
        "kvsheetset set: E21002: There is no right to read or write DIR/house.dst. Ask for "
        "the right to it, or work on a copy.");
    EXPECT_EQ(runTool({"tree", sample.native()}).code, 0);
    const Ran made = runTool({"new", base::nativePath(sample.folder().file("b.dst"))});
    EXPECT_EQ(made.code, 8);
    EXPECT_EQ(sample.generalised(made.err),
              "kvsheetset new: E21002: There is no right to read or write DIR. Ask for the right "
              "to it, or work on a copy.\n");
    // No right would help where the file is there already.
    const Ran again = runTool({"new", sample.native()});
    EXPECT_EQ(again.code, 8);
    EXPECT_NE(again.err.find("E21005"), std::string::npos) << again.err;
}

TEST(Tool, WaitsForALockAndGoesOn)
{
    const SampleFolder sample;
    LockHolder holder(sample.file());
    ASSERT_TRUE(holder.isHolding());
    Process waiting(toolLine({"subset", "add", sample.native(), "Late", "--lock-wait", "120"}));
    ASSERT_TRUE(waiting.waitForError("Waiting: "));

    holder.release();
    const Ran ran = waiting.wait();

    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_NE(sample.tree().find("Late"), std::string::npos);
}

class ToolSignal : public testing::TestWithParam<int>
{
};

TEST_P(ToolSignal, EndsAWaitWithNothingChangedAndTheLockFree)
{
    const SampleFolder sample;
    const std::string before = sample.bytes();
    LockHolder holder(sample.file());
    ASSERT_TRUE(holder.isHolding());
    Process waiting(toolLine({"set", sample.native(), "g1", "name=x", "--lock-wait", "120"}));
    ASSERT_TRUE(waiting.waitForError("Waiting: "));

    ::kill(waiting.id(), GetParam());
    const Ran ran = waiting.wait();

    EXPECT_EQ(ran.code, 130);
    EXPECT_EQ(ran.out, "");
    EXPECT_NE(ran.err.find("E21020"), std::string::npos) << ran.err;
    EXPECT_EQ(sample.bytes(), before);
    holder.release();
    EXPECT_EQ(runTool({"set", sample.native(), "g1", "name=y"}).code, 0);
}

INSTANTIATE_TEST_SUITE_P(Both, ToolSignal, testing::Values(SIGINT, SIGTERM));

TEST(Tool, WritersThatWaitAllSucceed)
{
    const SampleFolder sample;
    std::vector<std::unique_ptr<Process>> writers;
    const std::vector<std::string> names = {"North", "South", "East", "West"};
    for (const std::string& name : names)
        writers.push_back(std::make_unique<Process>(
            toolLine({"subset", "add", sample.native(), name, "--lock-wait", "120", "-q"})));

    std::vector<std::string> handles;
    for (const auto& writer : writers) {
        const Ran ran = writer->wait();
        EXPECT_EQ(ran.code, 0) << ran.err;
        handles.push_back(ran.out);
    }

    const std::string tree = sample.tree();
    for (const std::string& name : names)
        EXPECT_NE(tree.find("─ " + name + "\n"), std::string::npos) << tree;
    std::sort(handles.begin(), handles.end());
    EXPECT_EQ(std::unique(handles.begin(), handles.end()), handles.end());
}

TEST(Tool, AReaderThatHasSeenEnoughIsNoFailure)
{
    const SampleFolder sample;
    Process tree(toolLine({"tree", sample.native()}));
    tree.closeOutput();

    const Ran ran = tree.wait();

    EXPECT_EQ(ran.code, 0);
    EXPECT_EQ(ran.err, "");
}

TEST(Tool, AnOutputThatIsFullIsAFailure)
{
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "this system has no /dev/full";
    const SampleFolder sample;
    const Ran ran =
        runProgram({"/bin/sh", "-c", "\"$0\" tree \"$1\" >/dev/full", KV_TOOL, sample.native()});
    EXPECT_EQ(ran.code, 8);
    EXPECT_NE(ran.err.find("E22417"), std::string::npos);
}

/// What the tool shows on a terminal.
class Terminal
{
public:
    Terminal() : m_master(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        if (m_master >= 0 && ::grantpt(m_master) == 0 && ::unlockpt(m_master) == 0)
            if (const char* name = ::ptsname(m_master))
                m_name = name;
    }
    ~Terminal() { ::close(m_master); }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    bool isThere() const { return !m_name.empty(); }
    /// @param setting  of the environment, as in "TERM=xterm".
    std::string shown(const std::string& setting, const SampleFolder& sample) const
    {
        // Held open, so that what was written is there to be read when the tool has ended.
        const int held = ::open(m_name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        const Ran ran = runProgram({"/bin/sh", "-c",
                                    "env -u NO_COLOR " + setting + " \"$0\" tree \"$1\" >\"$2\"",
                                    KV_TOOL, sample.native(), m_name});
        EXPECT_EQ(ran.code, 0) << ran.err;
        char buffer[4096];
        const ssize_t count = ::read(m_master, buffer, sizeof buffer);
        ::close(held);
        return {buffer, count > 0 ? static_cast<std::size_t>(count) : 0};
    }

private:
    const int m_master;
    std::string m_name;
};

TEST(Tool, ColoursOnATerminalUnlessRefused)
{
    const SampleFolder sample;
    const auto isColorful = [&](const std::string& setting) {
        const Terminal terminal;
        const std::string text = terminal.shown(setting, sample);
        EXPECT_NE(text.find("Riverside house"), std::string::npos) << setting << text;
        return text.find('\x1b') != std::string::npos;
    };
    if (!Terminal().isThere())
        GTEST_SKIP() << "this system has no terminals to give";
    EXPECT_TRUE(isColorful("TERM=xterm"));
    EXPECT_TRUE(isColorful("TERM=xterm NO_COLOR="));
    EXPECT_FALSE(isColorful("TERM=xterm NO_COLOR=1"));
    EXPECT_FALSE(isColorful("TERM=dumb"));
    EXPECT_FALSE(isColorful("-u TERM"));
}

TEST(Tool, NoColoursWhereTheOutputIsNoTerminal)
{
    const SampleFolder sample;
    EXPECT_EQ(runTool({"tree", sample.native()}).out.find('\x1b'), std::string::npos);
}

} // namespace
