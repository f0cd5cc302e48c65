#include <climits>
#include <filesystem>

#include "tool_scene.h"

// A verb asks now and then whether it was interrupted: at each of these moments it ends with
// nothing changed and nothing shown.

namespace {

/// Interrupted when it is asked for the n-th time.
class InterruptedAt : public TestPorts
{
public:
    explicit InterruptedAt(int time) : m_time(time) {}
    bool isInterrupted() override { return ++asked >= m_time; }
    int asked = 0;

private:
    const int m_time;
};

/// A command line that changes or reads the sample, and how often it asks at least.
struct Case {
    std::vector<std::string> words;
    std::vector<std::string> arguments;
    int questions;
};

std::vector<std::string> lineFor(const Case& each, const std::string& file)
{
    std::vector<std::string> line = each.words;
    line.push_back(file);
    line.insert(line.end(), each.arguments.begin(), each.arguments.end());
    return line;
}

const Case kCases[] = {
    {{"tree"}, {}, 1},
    {{"info"}, {}, 2}, // when it is open, and when the drawings were looked for
    {{"check"}, {}, 2},
    {{"prop", "list"}, {"g1"}, 1},
    {{"set"}, {"g1", "name=x"}, 2}, // before the lock is taken, and before the commit
    {{"subset", "add"}, {"x"}, 2},
    {{"move"}, {"g4", "--to", "g1"}, 2},
    {{"remove"}, {"g4"}, 2},
    {{"prop", "set"}, {"g1", "a=b"}, 2},
    {{"prop", "remove"}, {"g1", "Client"}, 2},
};

TEST(Interrupted, AtAnyMomentAVerbEndsWithNothingChangedOrShown)
{
    for (const Case& each : kCases) {
        const std::string name = each.words.back();
        InterruptedAt never(INT_MAX);
        const SampleFolder whole;
        ASSERT_EQ(cli::runTool(lineFor(each, whole.native()), never), 0) << name << never.errors;
        EXPECT_GE(never.asked, each.questions) << name;
        for (int time = 1; time <= never.asked; ++time) {
            const SampleFolder sample;
            const std::string before = sample.bytes();
            InterruptedAt ports(time);
            EXPECT_EQ(cli::runTool(lineFor(each, sample.native()), ports), 130) << name << time;
            EXPECT_EQ(ports.output, "") << name << time;
            EXPECT_EQ(sample.bytes(), before) << name << time;
        }
    }
}

TEST(Interrupted, ANewSetIsNotMade)
{
    const TempFolder folder;
    InterruptedAt ports(1);
    const std::vector<std::string> line = {"new", (folder.path() / "a.dst").string()};

    EXPECT_EQ(cli::runTool(line, ports), 130);

    EXPECT_EQ(ports.output, "");
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

/// Ports of a program that has a defect.
class BrokenPorts : public TestPorts
{
public:
    explicit BrokenPorts(bool isKnown) : m_isKnown(isKnown) {}
    bool isInterrupted() override
    {
        if (m_isKnown)
            throw std::runtime_error("no such luck");
        throw 1;
    }

private:
    const bool m_isKnown;
};

TEST(Defect, EndsWithItsCodeAndASentence)
{
    const SampleFolder sample;
    for (const bool isKnown : {true, false}) {
        BrokenPorts ports(isKnown);
        const std::vector<std::string> line = {"tree", sample.native()};
        EXPECT_EQ(cli::runTool(line, ports), static_cast<int>(cli::ExitCode::Internal));
        EXPECT_EQ(ports.output, "");
        EXPECT_EQ(ports.errors.rfind("kvsheetset tree: E22", 0), 0u) << ports.errors;
        EXPECT_EQ(ports.errors.find("no such luck") != std::string::npos, isKnown);
    }
}

} // namespace
