#include <cli/console.h>

#include "tool_scene.h"

namespace {

using cli::Console;
using cli::ExitCode;
using cli::Tone;
using cli::Word;

constexpr char16_t kHostile[] = u"a\u001b[2Jb\u009bc\u202Ed\ne";

TEST(Console, ControlCharactersDoNotReachATerminal)
{
    TestPorts ports;
    Console console(ports, "tree", {});

    console.line({{kHostile}});
    console.say(kHostile);
    console.warn(cli::messageOf(Word::NotAHandle, TvString(kHostile)));
    ports.flush();

    for (const std::string& text : {ports.output, ports.errors}) {
        EXPECT_EQ(text.find('\x1b'), std::string::npos) << text;
        EXPECT_EQ(text.find("\xc2\x9b"), std::string::npos) << text;
        EXPECT_EQ(text.find("\u202E"), std::string::npos) << text;
    }
    EXPECT_EQ(ports.output, "a\\x1B[2Jb\\x9Bc\\u{202E}d\\x0Ae\n");
}

TEST(Console, ADocumentCarriesControlCharactersEscapedAndWhole)
{
    TestPorts ports;
    Console console(ports, "tree", kJson);
    console.document()["text"] = cli::jsonText(kHostile);

    console.finish(ExitCode::Ok);
    ports.flush();

    EXPECT_EQ(ports.output.find('\x1b'), std::string::npos);
    EXPECT_EQ(ports.output.find("\xc2\x9b"), std::string::npos);
    EXPECT_EQ(ports.output.find("\u202E"), std::string::npos);
    const auto json = nlohmann::ordered_json::parse(ports.output);
    EXPECT_EQ(json["text"].get<std::string>(), cli::jsonText(kHostile));
}

TEST(Console, OrdinaryTextStaysReadableInADocument)
{
    EXPECT_EQ(cli::documentText({{"a", "Grundriß – 平面"}}),
              "{\n  \"a\": \"Grundriß – 平面\"\n}\n");
}

TEST(Console, ADocumentHasSchemaOkFieldsAndWarnings)
{
    TestPorts ports;
    Console console(ports, "subset add", kJson);
    console.document()["handle"] = "g3";
    console.warn(cli::messageOf(Word::WarnNewerVersion, TvString(u"a.dst"), TvString(u"2.0")));

    console.finish(ExitCode::PartlyFailed);
    ports.flush();

    const auto json = nlohmann::ordered_json::parse(ports.output);
    EXPECT_EQ(json["schema"], "kvsheetset.subset-add/1");
    EXPECT_EQ(json["ok"], false);
    EXPECT_EQ(json["exitCode"], 1);
    EXPECT_EQ(json["handle"], "g3");
    EXPECT_EQ(json["warnings"][0]["code"], "E22451");
    EXPECT_FALSE(json.contains("error"));
}

TEST(Console, LinesAreLeftOutWhenADocumentIsWanted)
{
    TestPorts ports;
    Console console(ports, "tree", kJson);

    console.line({{u"text"}});
    console.raw("text");
    console.say(u"text");
    ports.flush();

    EXPECT_EQ(ports.output, "");
    EXPECT_EQ(ports.errors, "");
}

TEST(Console, QuietLeavesErrorsAndData)
{
    TestPorts ports;
    Console console(ports, "tree", {false, true});

    console.line({{u"data"}});
    console.say(u"message");
    console.warn(cli::messageOf(Word::NameEmpty));
    console.fail({ExitCode::Usage, cli::messageOf(Word::NameEmpty)});
    ports.flush();

    EXPECT_EQ(ports.output, "data\n");
    EXPECT_EQ(ports.errors, "kvsheetset tree: E22431: A subset needs a name.\n");
}

TEST(Console, ColoursAreUsedWhereTheyMayBe)
{
    TestPorts ports;
    ports.colorful = true;
    Console console(ports, "tree", {});

    console.line({{u"a", Tone::Strong}, {u"b"}, {u"c", Tone::Faint}, {u"d", Tone::Alert}});
    ports.flush();

    EXPECT_EQ(ports.output, "\x1b[1ma\x1b[0mb\x1b[2mc\x1b[0m\x1b[33md\x1b[0m\n");
}

TEST(Attempt, ARefusalBecomesItsOutcome)
{
    TestPorts ports;
    Console console(ports, "tree", {});

    const auto outcome =
        cli::attempt(console, []() -> ExitCode { cli::refuseUsage(Word::NameEmpty); });

    EXPECT_EQ(outcome.code, ExitCode::Usage);
    EXPECT_NE(ports.errors.find("E22431"), std::string::npos);
}

TEST(MessageOf, AStatusTellsWhatAndWhichFileAndWhatToDo)
{
    const cli::Message message = cli::messageOf(
        base::Status(base::Failure::Locked, base::Reason::LockHeld, {u"/p/a.dst", u"ann on box"}));

    EXPECT_EQ(message.code(), TvString(u"E21016"));
    EXPECT_EQ(message.text, TvString(u"/p/a.dst is locked by ann on box."));
    EXPECT_FALSE(message.advice.isEmpty());
}

TEST(MessageOf, EveryFailureOfFilesComesWithAdvice)
{
    using base::Failure;
    for (const Failure failure :
         {Failure::NotFound, Failure::Denied, Failure::ReadOnly, Failure::DiskFull, Failure::Exists,
          Failure::Locked, Failure::Conflict, Failure::Damaged, Failure::Unsupported,
          Failure::Unreachable, Failure::TooLarge}) {
        const base::Status status(failure, base::Reason::LockHeld, {u"/p/a.dst", u"x"});
        EXPECT_FALSE(cli::messageOf(status).advice.isEmpty()) << static_cast<int>(failure);
    }
}

TEST(Console, ADocumentCarriesTheAdviceOfAnError)
{
    TestPorts ports;
    Console console(ports, "tree", kJson);
    const base::Status status(base::Failure::Locked, base::Reason::LockHeld, {u"/p/a.dst", u"x"});
    console.fail({ExitCode::Locked, cli::messageOf(status)});

    console.finish(ExitCode::Locked);
    ports.flush();

    const auto error = nlohmann::ordered_json::parse(ports.output)["error"];
    EXPECT_EQ(error["code"], "E21016");
    EXPECT_EQ(error["advice"], cli::messageOf(status).advice.utf8());
}

} // namespace
