#include "arbitrary_text.h"
#include "temp_folder.h"

#include <climits>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <base/kv_error_status.h>
#include <base/tarvik_config.h>

namespace {

using namespace std::string_literals;

constexpr int kScope = 4;
constexpr const char* kFile = "scope4.json";

using Value = TarvikConfigValue;

std::vector<int> numbersOf(const std::vector<std::byte>& bytes)
{
    std::vector<int> numbers;
    for (const std::byte byte : bytes)
        numbers.push_back(std::to_integer<int>(byte));
    return numbers;
}

/// The integer under @p key; -1 when there is none.
int intAt(TarvikConfig& config, const TvString& key)
{
    Value value;
    return config.getValue(kScope, key, value) && value.type() == Value::kInt ? value.intValue()
                                                                              : -1;
}

/// The text under @p key; "(none)" when there is none.
TvString textAt(TarvikConfig& config, const TvString& key)
{
    Value value;
    const bool found = config.getValue(kScope, key, value) && value.type() == Value::kText;
    return found ? value.textValue() : TvString(u"(none)");
}

bool setInt(TarvikConfig& config, const TvString& key, int value)
{
    return config.setValue(kScope, key, Value::ofInt(value));
}

bool setText(TarvikConfig& config, const TvString& key, const TvString& text)
{
    return config.setValue(kScope, key, Value::ofText(text));
}

ino_t inodeOf(const TempFolder& folder, const std::string& name)
{
    struct stat info = {};
    ::stat((folder.path() / name).c_str(), &info);
    return info.st_ino;
}

/// Overwrites a file in place, and gives it the time @p seconds since 1970.
void writeAtTime(const TempFolder& folder, const std::string& bytes, time_t seconds)
{
    folder.write(kFile, bytes);
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ::utimensat(AT_FDCWD, (folder.path() / kFile).c_str(), times, 0);
}

/// A configuration in a folder of its own.
class TarvikConfigTest : public testing::Test
{
protected:
    TempFolder folder;
    TarvikConfig config{folder.file("")};
};

TEST(TarvikConfigValue, LaysAnIntegerOutBehindItsLength)
{
    const Value value = Value::ofInt(-2);

    EXPECT_EQ(value.type(), 1);
    EXPECT_EQ(value.intValue(), -2);
    EXPECT_EQ(numbersOf(value.payload()), (std::vector<int>{8, 0, 0, 0, 0xfe, 0xff, 0xff, 0xff}));
    EXPECT_TRUE(value.textValue().isEmpty());
}

TEST(TarvikConfigValue, LaysATextOutWithItsTerminator)
{
    const Value value = Value::ofText(u"a\u20ac");

    EXPECT_EQ(value.type(), 5);
    EXPECT_EQ(value.textValue(), u"a\u20ac");
    EXPECT_EQ(numbersOf(value.payload()),
              (std::vector<int>{10, 0, 0, 0, 'a', 0, 0xac, 0x20, 0, 0}));
    EXPECT_EQ(value.intValue(), 0);
}

TEST(TarvikConfigValue, IsOfNoTypeWhenMade)
{
    EXPECT_EQ(Value().type(), 0);
    EXPECT_EQ(Value().intValue(), 0);
    EXPECT_TRUE(Value().textValue().isEmpty());
    EXPECT_TRUE(Value().payload().empty());
    EXPECT_EQ(numbersOf(Value::ofText(u"").payload()), (std::vector<int>{6, 0, 0, 0, 0, 0}));
}

int codeThrownFor(std::int64_t length)
{
    try {
        base::allocateConfigPayload(length);
    } catch (const KvErrorStatus& status) {
        return status.code();
    }
    return 0;
}

TEST(AllocateConfigPayload, ThrowsWhatNoBufferCanBe)
{
    EXPECT_EQ(codeThrownFor(0), 3);
    EXPECT_EQ(codeThrownFor(-1), 3);
    EXPECT_EQ(codeThrownFor(INT64_MIN), 3);
    EXPECT_EQ(codeThrownFor(std::int64_t(INT_MAX) + 1), 6);
    EXPECT_EQ(codeThrownFor(INT64_MAX), 6);
}

TEST(AllocateConfigPayload, TellsItsLength)
{
    EXPECT_EQ(numbersOf(base::allocateConfigPayload(5)), (std::vector<int>{5, 0, 0, 0, 0}));
    EXPECT_EQ(numbersOf(base::allocateConfigPayload(1)), (std::vector<int>{1}));
}

TEST_F(TarvikConfigTest, GivesBackWhatWasSet)
{
    EXPECT_TRUE(setInt(config, u"Dialog\\Width", INT_MIN) &&
                setInt(config, u"Dialog\\Height", INT_MAX));
    EXPECT_TRUE(setText(config, u"Dialog\\Path", u"C:\\plans") &&
                setText(config, u"Dialog\\Empty", u""));

    TarvikConfig other(folder.file(""));
    for (TarvikConfig* each : {&config, &other}) {
        EXPECT_EQ(intAt(*each, u"Dialog\\Width"), INT_MIN);
        EXPECT_EQ(intAt(*each, u"Dialog\\Height"), INT_MAX);
        EXPECT_EQ(textAt(*each, u"Dialog\\Path"), u"C:\\plans");
        EXPECT_EQ(textAt(*each, u"Dialog\\Empty"), u"");
    }
}

TEST_F(TarvikConfigTest, LeavesTheTargetAloneWhenThereIsNoValue)
{
    Value value = Value::ofInt(7);

    EXPECT_FALSE(config.getValue(kScope, u"Dialog\\Width", value));
    EXPECT_TRUE(setInt(config, u"Dialog\\Width", 1));
    EXPECT_FALSE(config.getValue(kScope, u"Dialog", value)) << "a folder of values is none";
    EXPECT_FALSE(config.getValue(kScope, u"Dialog\\Width\\Below", value));
    EXPECT_FALSE(config.getValue(kScope + 1, u"Dialog\\Width", value)) << "another scope";

    EXPECT_EQ(value.intValue(), 7);
}

TEST_F(TarvikConfigTest, IsWrittenForPeopleToRead)
{
    setInt(config, u"UserInterfaceSettings\\Panel\\Width", 300);
    setText(config, u"UserInterfaceSettings\\Panel\\Last", u"C:\\Pl\u00e4ne");
    setInt(config, u"Config\\publish\\PublishStamp", 1);

    EXPECT_EQ(folder.read(kFile), R"({
    "UserInterfaceSettings": {
        "Panel": {
            "Width": 300,
            "Last": "C:\\Pläne"
        }
    },
    "Config": {
        "publish": {
            "PublishStamp": 1
        }
    }
}
)");
}

TEST_F(TarvikConfigTest, TakesKeysWithoutRegardToCase)
{
    setInt(config, u"Dialog\\\u00dcbersicht", 1);

    EXPECT_EQ(intAt(config, u"DIALOG\\\u00fcBERSICHT"), 1);
    EXPECT_EQ(intAt(config, u"\\dialog\\\\\u00fcbersicht\\"), 1) << "empty parts do not count";

    EXPECT_TRUE(setInt(config, u"dialog\\\u00fcbersicht", 2));
    EXPECT_EQ(intAt(config, u"Dialog\\\u00dcbersicht"), 2);
    EXPECT_EQ(folder.read(kFile), "{\n    \"Dialog\": {\n        \"\u00dcbersicht\": 2\n    }\n}\n")
        << "the first spelling stays";
}

TEST_F(TarvikConfigTest, HoldsAValueAndOthersBelowIt)
{
    EXPECT_TRUE(setInt(config, u"Tips", 1) && setInt(config, u"Tips\\Delay", 500));
    EXPECT_TRUE(setInt(config, u"Tips\\Delay\\Unit", 3) && setInt(config, u"tips", 2));

    TarvikConfig other(folder.file(""));
    EXPECT_EQ(intAt(other, u"Tips"), 2);
    EXPECT_EQ(intAt(other, u"Tips\\Delay"), 500);
    EXPECT_EQ(intAt(other, u"Tips\\Delay\\Unit"), 3);
}

TEST_F(TarvikConfigTest, RemovesAKeyAndAllBelowIt)
{
    setInt(config, u"Dialog\\Columns\\First", 1);
    setInt(config, u"Dialog\\Columns\\Second", 2);
    setInt(config, u"Dialog\\Width", 3);

    EXPECT_TRUE(config.removeItem(kScope, u"DIALOG\\columns"));

    EXPECT_EQ(intAt(config, u"Dialog\\Columns\\First"), -1);
    EXPECT_EQ(intAt(config, u"Dialog\\Width"), 3);
    EXPECT_TRUE(config.removeItem(kScope, u"Dialog\\Width"));
    EXPECT_EQ(folder.read(kFile), "{}\n") << "objects that hold nothing go too";
}

TEST_F(TarvikConfigTest, RemovesEachSpellingThatAPersonWrote)
{
    folder.write(kFile,
                 R"({"Dialog": {"Width": 1, "WIDTH": 2}, "dialog": {"width": 3, "Height": 4}})");

    EXPECT_EQ(intAt(config, u"dialog\\width"), 1) << "the first one counts";
    EXPECT_TRUE(config.removeItem(kScope, u"dialog\\width"));

    EXPECT_EQ(intAt(config, u"dialog\\width"), -1);
    EXPECT_EQ(intAt(config, u"dialog\\height"), 4);
}

TEST_F(TarvikConfigTest, TouchesNothingWhenThereIsNothingToChange)
{
    setInt(config, u"Dialog\\Width", 1);
    const ino_t inode = inodeOf(folder, kFile);

    EXPECT_TRUE(setInt(config, u"DIALOG\\width", 1));
    EXPECT_FALSE(config.removeItem(kScope, u"Dialog\\Height"));
    EXPECT_FALSE(config.removeItem(kScope, u"Dialog\\Width\\Below"));
    EXPECT_FALSE(config.removeItem(kScope, u"Other\\Width"));

    EXPECT_EQ(inodeOf(folder, kFile), inode);
}

TEST_F(TarvikConfigTest, MakesItsFolderAtTheFirstWrite)
{
    TarvikConfig later(folder.file("a/b"));
    Value value;

    EXPECT_FALSE(later.getValue(kScope, u"Width", value));
    EXPECT_FALSE(later.removeItem(kScope, u"Width"));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "a"));
    EXPECT_TRUE(setInt(later, u"Width", 1));
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "a/b/scope4.json"));
}

TEST_F(TarvikConfigTest, KeepsWhatItDoesNotKnow)
{
    folder.write(
        kFile,
        R"({"z": [1, "two", {"x": null}], "Dialog": {"ratio": 0.5, "on": true}, "a": null})");

    EXPECT_TRUE(setInt(config, u"Dialog\\Width", 1));

    EXPECT_EQ(folder.read(kFile), R"({
    "z": [
        1,
        "two",
        {
            "x": null
        }
    ],
    "Dialog": {
        "ratio": 0.5,
        "on": true,
        "Width": 1
    },
    "a": null
}
)");
}

TEST_F(TarvikConfigTest, TakesOnlyWholeNumbersAndTextsForValues)
{
    folder.write(
        kFile,
        R"({"float": 1.0, "true": true, "null": null, "large": 2147483648, "small": -2147483649,
                            "huge": 18446744073709551615, "array": ["a", "b"], "mixed": ["a", 5], "nested": [[55296]],
                            "": 5, "a\\b": 6, "max": 2147483647, "min": -2147483648})");

    Value value;
    for (const TvChar* key : {u"float", u"true", u"null", u"large", u"small", u"huge", u"array",
                              u"mixed", u"nested", u"", u"\\", u"a\\b"})
        EXPECT_FALSE(config.getValue(kScope, key, value)) << TvString(key).utf8();
    EXPECT_EQ(intAt(config, u"max"), INT_MAX);
    EXPECT_EQ(intAt(config, u"min"), INT_MIN);
}

TEST_F(TarvikConfigTest, NeitherReadsNorOverwritesADamagedFile)
{
    const std::string deep(200'000, '[');
    const std::string tooDeep = "{\"a\":" + std::string(80, '[') + std::string(80, ']') + "}";
    for (const std::string& bytes :
         {"{"s, "[]"s, "\"a\""s, "5"s, "{\"a\": 1} x"s, "{\"a\": \"\xff\"}"s, "{\"a\": 1e999}"s,
          "{\"a\": \"\\ud800\"}"s, "{\"a\": 1,}"s, "\0"s, "{\"a\": \"x\x1b\"}"s, deep, tooDeep}) {
        folder.write(kFile, bytes);
        Value value;

        EXPECT_FALSE(config.getValue(kScope, u"a", value)) << bytes.substr(0, 20);
        EXPECT_FALSE(setInt(config, u"a", 2)) << bytes.substr(0, 20);
        EXPECT_FALSE(config.removeItem(kScope, u"a")) << bytes.substr(0, 20);
        EXPECT_EQ(folder.read(kFile), bytes);
        EXPECT_EQ(base::checkConfig(folder.file(""), kScope).failure(), base::Failure::Damaged);
    }
}

TEST_F(TarvikConfigTest, ForgetsItsValuesWhenTheFileIsDamagedOrGone)
{
    setInt(config, u"a", 1);
    EXPECT_EQ(intAt(config, u"a"), 1);
    folder.write(kFile, "{");
    EXPECT_EQ(intAt(config, u"a"), -1);
    folder.write(kFile, "{\"a\": 2}");
    EXPECT_EQ(intAt(config, u"a"), 2);
    std::filesystem::remove(folder.path() / kFile);
    EXPECT_EQ(intAt(config, u"a"), -1);
}

TEST_F(TarvikConfigTest, TakesAnEmptyFileForOneWithoutValues)
{
    folder.write(kFile, "");

    EXPECT_EQ(intAt(config, u"a"), -1);
    EXPECT_TRUE(setInt(config, u"a", 1));
    EXPECT_EQ(intAt(config, u"a"), 1);
}

TEST_F(TarvikConfigTest, TellsWhyAFileCannotBeRead)
{
    EXPECT_TRUE(base::checkConfig(folder.file(""), kScope)) << "a missing file is well";
    folder.write(kFile, "{\n\"a\": }");

    const base::Status status = base::checkConfig(folder.file(""), kScope);

    EXPECT_EQ(status.reason(), base::Reason::ConfigDamaged);
    ASSERT_EQ(status.arguments().size(), 2u);
    EXPECT_EQ(status.arguments()[0], folder.file(kFile));
    EXPECT_TRUE(status.arguments()[1].startsWith(u"parse error at line 2"));
    folder.write(kFile, "{}");
    EXPECT_TRUE(base::checkConfig(folder.file(""), kScope));
}

TEST_F(TarvikConfigTest, RefusesAFileThatIsTooLargeToBeSettings)
{
    const std::string bytes = "{\"a\": 1}" + std::string(16 << 20, ' ');
    folder.write(kFile, bytes);

    EXPECT_EQ(intAt(config, u"a"), -1);
    EXPECT_FALSE(setInt(config, u"a", 2));
    EXPECT_EQ(std::filesystem::file_size(folder.path() / kFile), bytes.size());
}

TEST_F(TarvikConfigTest, RefusesKeysThatCannotStand)
{
    TvString longest(u"p0");
    for (int i = 1; i < 60; ++i)
        longest.append(u"\\p").append(TvString().format(u"%d", i));

    EXPECT_TRUE(setInt(config, longest, 1));
    EXPECT_EQ(intAt(config, longest), 1);
    const std::string before = folder.read(kFile);
    for (const std::u16string& key :
         {u""s, u"\\"s, u"a\\\xd800"s, u"\xdc00z"s, std::u16string(longest + u"\\p60")}) {
        EXPECT_FALSE(setInt(config, key, 1));
        EXPECT_FALSE(config.removeItem(kScope, key));
        EXPECT_EQ(intAt(config, key), -1);
    }
    EXPECT_EQ(folder.read(kFile), before);
}

TEST_F(TarvikConfigTest, RefusesAValueWithoutATypeAndANegativeScope)
{
    EXPECT_FALSE(config.setValue(kScope, u"a", Value()));
    EXPECT_FALSE(config.setValue(-1, u"a", Value::ofInt(1)));
    EXPECT_FALSE(config.removeItem(-1, u"a"));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));

    TarvikConfig nowhere{TvString()};
    EXPECT_FALSE(setInt(nowhere, u"a", 1));
    EXPECT_EQ(intAt(nowhere, u"a"), -1);
}

TEST_F(TarvikConfigTest, LeavesAReadOnlyFileAsItIs)
{
    folder.write(kFile, "{\"a\": 1}");
    ::chmod((folder.path() / kFile).c_str(), 0444);

    EXPECT_FALSE(setInt(config, u"a", 2));
    EXPECT_FALSE(config.removeItem(kScope, u"a"));
    EXPECT_EQ(folder.read(kFile), "{\"a\": 1}");
    EXPECT_EQ(intAt(config, u"a"), 1);
}

TEST_F(TarvikConfigTest, FollowsALinkToTheFile)
{
    folder.write("elsewhere.json", "{\"a\": 1}");
    std::filesystem::create_symlink("elsewhere.json", folder.path() / kFile);

    EXPECT_EQ(intAt(config, u"a"), 1);
    EXPECT_TRUE(setInt(config, u"a", 2));

    EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / kFile));
    EXPECT_EQ(folder.read("elsewhere.json"), "{\n    \"a\": 2\n}\n");
    EXPECT_EQ(intAt(config, u"a"), 2);
}

TEST_F(TarvikConfigTest, SeesWhatOthersWrite)
{
    TarvikConfig other(folder.file(""));
    for (int value = 1; value < 4; ++value) {
        EXPECT_TRUE(setInt(other, u"a", value)); // the same size each time
        EXPECT_EQ(intAt(config, u"a"), value);
    }
    setInt(config, u"b", 5);
    EXPECT_EQ(intAt(other, u"a"), 3) << "each change starts from what is on disk";
    EXPECT_EQ(intAt(other, u"b"), 5);
}

TEST_F(TarvikConfigTest, ReadsAnUnchangedFileOnce)
{
    writeAtTime(folder, "{\"a\": 1}", 1'000'000'000);
    EXPECT_EQ(intAt(config, u"a"), 1);

    writeAtTime(folder, "{\"a\": 2}",
                1'000'000'000); // file, size and time as before: not looked at

    EXPECT_EQ(intAt(config, u"a"), 1);
    writeAtTime(folder, "{\"a\": 3}", 1'000'000'001);
    EXPECT_EQ(intAt(config, u"a"), 3);
}

TEST_F(TarvikConfigTest, DoesNotTrustTheTimeOfAFileThatWasJustWritten)
{
    const time_t later = ::time(nullptr) + 3600;
    writeAtTime(folder, "{\"a\": 1}", later);
    EXPECT_EQ(intAt(config, u"a"), 1);

    writeAtTime(folder, "{\"a\": 2}", later);

    EXPECT_EQ(intAt(config, u"a"), 2);
}

TEST_F(TarvikConfigTest, CarriesHostileText)
{
    const std::u16string hostile[] = {u"\xdc80"s,
                                      u"/home/\xdc80\xd800/a.dwg"s,
                                      u"\xd83d\xde00"s,
                                      u"a\0b"s,
                                      u"\0"s,
                                      u"\x1b]0;x\x07\u202e\n\"\\"s,
                                      u"\ufffd\ufffe\uffff"s,
                                      std::u16string(1'000'000, u'\u6f22'),
                                      std::u16string(1000, 0xdfff)};
    for (const std::u16string& text : hostile) {
        EXPECT_TRUE(setText(config, u"a", text));
        EXPECT_EQ(unitsOf(textAt(config, u"a")), unitsOf(text));
        EXPECT_TRUE(base::isWellFormedUtf8(folder.read(kFile)));
    }
}

RC_GTEST_FIXTURE_PROP(TarvikConfigTest, CarriesAnyText, ())
{
    const std::u16string text = *rc::gen::oneOf(arbitraryText(), arbitraryUnits());

    RC_ASSERT(setText(config, u"Dialog\\Text", text));
    RC_ASSERT(unitsOf(textAt(config, u"Dialog\\Text")) == unitsOf(text));
}

/// Writes @p count keys of its own and ends; the exit code tells whether each was accepted.
[[noreturn]] void writeKeysAndExit(const TvString& folder, int writer, int count)
{
    TarvikConfig config(folder);
    bool accepted = true;
    for (int i = 0; i < count; ++i)
        accepted = setInt(config, TvString().format(u"Writer%d\\Key%d", writer, i), i) && accepted;
    ::_exit(accepted ? 0 : 1);
}

TEST_F(TarvikConfigTest, LosesNothingWhenSeveralProcessesWrite)
{
    constexpr int kWriters = 4;
    constexpr int kKeys = 15;
    std::vector<pid_t> children;
    for (int writer = 0; writer < kWriters; ++writer) {
        const pid_t child = ::fork();
        if (child == 0)
            writeKeysAndExit(folder.file(""), writer, kKeys);
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = -1;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    for (int writer = 0; writer < kWriters; ++writer)
        for (int i = 0; i < kKeys; ++i)
            EXPECT_EQ(intAt(config, TvString().format(u"Writer%d\\Key%d", writer, i)), i);
}

TEST(TarvConfig, IsNullBeforeTheHostSetsOne)
{
    TarvikConfig config{TvString()};

    EXPECT_EQ(tarvConfig(), nullptr);
    tarvSetConfig(&config);
    EXPECT_EQ(tarvConfig(), &config);
    tarvSetConfig(nullptr);
    EXPECT_EQ(tarvConfig(), nullptr);
}

} // namespace
